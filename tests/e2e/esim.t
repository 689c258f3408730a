The eSIM state command, vxk 5 10.

  $ . "$TESTDIR/setup.sh"
  $ quiet() { command vxk 5 10 $1 0; }
  $ unframed() { vxk "$@" | grep -vE 'function e|^(KELVRA_QMI_NV|QMI client|kelvra_extend_qmi_)'; }

What takes seconds runs beside the rest, each on a handset of its own: no EID ever, no service.

  $ slow() { echo "$2" > $1.json; (vxk-handset run --profile $1.json -- sh -c "$3" > $1.out 2> /dev/null) & slow+=($!); }
  $ slow no_eid '{"euicc": {"eid": "8904903200100100000000000000002300"}}' "vxk 5 10 1 1"
  $ slow no_service '{"faults": [{"service": "uim", "action": "withdraw", "ms": 60000}]}' "vxk 5 10 2 0; vxk 5 10 4 1"

The requests of the last run: service, message, and the bytes of the body or of the payload.

  $ requests() { log=$VXK_HANDSET_DIR/log/wire.log
  >   sed -nE "$((seen + 1)),\$ s/^.* qmi\/([a-z]+) [0-9]+ -> request [a-z_]+\(([0-9]+)\).*(tlvs|data)=(.*)/\1 \2 \4/p" "$log"
  >   seen=$(wc -l < "$log"); }

Action 1 switches to the eSIM. A quiet run prints its verdict and nothing else.

  $ boot; seen=0
  $ quiet 1
  eID=89049032001001000000000000000023
  $ requests
  uim 48 [01 01 00 02]
  extension 2 [02 00 00 00 00 00 00 00 54 00 00 00 08 (+499 zero)]
  uim 49 [01 01 00 02 10 01 00 01 11 04 00 00 00 00 00]
  uim 101 [01 01 00 02]
  extension 2 [04 01 00 00 28 2F 6E 76 2F 69 74 65 6D 5F 66 69 6C 65 73 2F 6D 6F 64 65 6D 2F 75 69 6D 2F 75 69 6D 64 72 76 2F 65 73 69 6D 5F 65 69 64 (+467 zero)]
  extension 2 [05 01 00 00 28 2F 6E 76 2F 69 74 65 6D 5F 66 69 6C 65 73 2F 6D 6F 64 65 6D 2F 75 69 6D 2F 75 69 6D 64 72 76 2F 65 73 69 6D 5F 65 69 64 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 10 00 00 00 10 00 00 00 00 00 00 00 89 04 90 32 00 10 01 00 00 00 00 00 00 00 00 23 (+408 zero)]
  $ efs 1/nv/item_files/modem/uim/uimdrv/esim_eid
   89 04 90 32 00 10 01 00 00 00 00 00 00 00 00 23

The second run finds the stored EID.

  $ unframed 5 10 1 1 | grep -vE 'kelvra_(efs_read|qmi_result_map)'
  RIL[kelvra_cmn_esim_test:#]: switch to eSIM
  RIL[init_uim_qmi_client:380]: init_uim_qmi_client CLIENT
  RIL[kelvra_uim_request_uicc_power_ex:#]: kelvra_uim_request_uicc_power_ex try init_uim_qmi_client CLIENT
  RIL[kelvra_uim_request_uicc_power_ex:#]: kelvra_uim_request_uicc_power_ex uim_qmi_client CLIENT
  RIL[kelvra_uim_request_uicc_power_ex:#]: kelvra_uim_request_uicc_power_ex power down sim
  RIL[kelvra_uim_request_uicc_power_ex:#]: uicc_power_ex res = 0, failed_cnt = 0
  RIL[kelvra_cmn_esim_test:#]: POWER_DOWN_UIM2 res = 0
  RIL[kelvra_send_common_qmi_msg:#]: t 84
  RIL[kelvra_send_common_qmi_msg:#]: l 8
  RIL[kelvra_uim_request_uicc_power_ex:#]: kelvra_uim_request_uicc_power_ex uim_qmi_client CLIENT
  RIL[kelvra_uim_request_uicc_power_ex:#]: kelvra_uim_request_uicc_power_ex power up sim, ignore hotswap = 1 
  RIL[kelvra_uim_request_uicc_power_ex:#]: uicc_power_ex res = 0, failed_cnt = 0
  RIL[kelvra_cmn_esim_test:#]: POWER_UP_UIM2 res = 0
  RIL[kelvra_cmn_esim_test:#]: try get eid loop = 0
  RIL[kelvra_uim_request_eid:#]: kelvra_uim_request_eid uim_qmi_client CLIENT
  RIL[is_eid_valid:#]: check whether eid valid
  
  RIL[is_eid_valid:#]: eid validate pass
  
  RIL[save_eid_to_efs:#]: EID already exists, set IS_EID_SAVE TRUE
  eID=89049032001001000000000000000023

The first one stores it.

  $ boot; seen=0
  $ answer 5 10 1 1 | folded
   |  |  | save eid efs result = 0 | eID=89049032001001000000000000000023

Action 2 switches to the card.

  $ requests > /dev/null
  $ answer 5 10 2 1
  value=SUCCEED
  $ requests
  uim 48 [01 01 00 02]
  extension 2 [02 00 00 00 00 00 00 00 54 00 00 00 08 00 00 00 01 (+495 zero)]
  uim 49 [01 01 00 02 10 01 00 00 11 04 00 00 00 00 00]

A card has neither an EID nor an ISD-R.

  $ quiet 3
  value=FAILED
  $ vxk 5 10 5 1 | grep -E 'failed|res =|value' | folded
  RIL[kelvra_uim_open_channel:#]: kelvra_uim_open_channel failed | RIL[kelvra_cmn_esim_test:#]: kelvra_uim_open_channel res = -1, channel_id = 0 | value=FAILED

Action 4 asks for the cards' states.

  $ boot; seen=0
  $ unframed 5 10 4 1
  RIL[kelvra_cmn_esim_test:#]: try get simcard status
  RIL[init_uim_qmi_client:380]: init_uim_qmi_client CLIENT
  RIL[kelvra_uim_get_card_status:#]: kelvra_uim_get_card_status try init_uim_qmi_client CLIENT
  RIL[kelvra_uim_get_card_status:#]: kelvra_uim_get_card_status uim_qmi_client CLIENT
  RIL[kelvra_uim_get_card_status:#]: kelvra_uim_get_card_status check response
  RIL[kelvra_uim_get_card_status:#]: SIM[0] State = 1
  RIL[kelvra_uim_get_card_status:#]: SIM[1] State = 1
  RIL[kelvra_cmn_esim_test:#]: card_status, [1, 1]
  RIL[map_sim_state:#]: map_sim_state ...
  
  PRESENT,PRESENT

Action 5 resets the eUICC's memory, and is content when there is nothing to delete.

  $ unframed 5 10 5 1
  RIL[kelvra_cmn_esim_test:#]: Start eUICC Reset
  RIL[init_uim_qmi_client:380]: init_uim_qmi_client CLIENT
  RIL[kelvra_uim_open_channel:#]: kelvra_uim_open_channel try init_uim_qmi_client CLIENT
  RIL[kelvra_uim_open_channel:#]: kelvra_uim_open_channel uim_qmi_client CLIENT
  RIL[kelvra_uim_open_channel:#]: kelvra_uim_open_channel successfully
  RIL[kelvra_cmn_esim_test:#]: kelvra_uim_open_channel res = 0, channel_id = 1
  RIL[kelvra_uim_send_apdu:#]: kelvra_uim_send_apdu uim_qmi_client CLIENT
  RIL[kelvra_uim_send_apdu:#]: kelvra_uim_send_apdu apdu_len = 13
  RIL[kelvra_uim_send_apdu:#]: kelvra_uim_send_apdu successfully
  RIL[kelvra_cmn_esim_test:#]: kelvra_uim_send_apdu res = 0
  RIL[kelvra_cmn_esim_test:#]: apdu=08bf34038001009000
  RIL[kelvra_cmn_esim_test:#]: kelvra_uim_send_apdu, delete profile successfully.
  RIL[kelvra_uim_close_channel:#]: kelvra_uim_close_channel uim_qmi_client CLIENT
  RIL[kelvra_cmn_esim_test:#]: kelvra_uim_close_channel res = 0
  value=SUCCEED
  $ vxk 5 10 5 1 | grep -A1 apdu=
  RIL[kelvra_cmn_esim_test:#]: apdu=08bf34038001019000
  RIL[kelvra_cmn_esim_test:#]: kelvra_uim_send_apdu, nothing to delete.

What is missing or no action.

  $ requests > /dev/null
  $ vxk 5 10 1 | head -6 | folded
  RIL[kelvra_cmn_esim_test:#]: invalid input |  |  | note: Error happen! error_code(-1) |  | =========== blew: vexkit(vxk) cmd help =======================================================
  $ vxk 5 10 | sed -n 1p
  RIL[kelvra_cmn_esim_test:#]: invalid input
  $ vxk 5 10 0 1
  RIL[kelvra_cmn_esim_test:#]: invalid input skip
  value=FAILED
  $ for action in 0 6 -1 text; do quiet $action; done | uniq -c
        4 value=FAILED
  $ requests

EIDs: wrong check digits, letters that pass, letters that do not, zeros in front, all zero, 15 and 17 bytes, and
the first byte that is not 0 at the last place that counts and behind it.

  $ with_eid() { boot "{\"euicc\": {\"eid\": \"$1\"}}"; }
  $ with_eid 89049032001001000000000000000024
  $ vxk 5 10 1 1 | sed -n '/is_eid_valid/,$p' | folded
  RIL[is_eid_valid:#]: check whether eid valid |  | RIL[is_eid_valid:#]: eid validate failed, result = 2 |  | value=FAILED - 89049032001001000000000000000024
  $ quiet 3; efs 1/nv/item_files/modem/uim/uimdrv/esim_eid
  eID=89049032001001000000000000000024
  (no file)
  $ with_eid 8904903200100100000000ABCDEF0067
  $ quiet 1; efs 1/nv/item_files/modem/uim/uimdrv/esim_eid
  eID=8904903200100100000000abcdef0067
   89 04 90 32 00 10 01 00 00 00 00 ab cd ef 00 67
  $ with_eid FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF
  $ quiet 1; quiet 3
  value=FAILED - ffffffffffffffffffffffffffffffff
  eID=ffffffffffffffffffffffffffffffff
  $ for eid in 00000000000000000000000000000001 00000000000000000000000000000000 890490320010010000000000000000 \
  >     00000000000000010000000000000000 00000000000000000100000000000000; do with_eid $eid; quiet 3; done > eids; xargs < eids
  value=FAILED value=FAILED eID=89049032001001000000000000000000 eID=00000000000000010000000000000000 value=FAILED
  $ with_eid 8904903200100100000000000000002300
  $ vxk 5 10 3 1 | grep -E 'error|value' | folded
  RIL[kelvra_uim_request_eid:#]: send msg sync client error = -1 | RIL[kelvra_uim_request_eid:#]: send msg sync client error = -1 | value=FAILED

A stored EID of another length is a stored EID; one that cannot be stored is told.

  $ stored=efs/1/nv/item_files/modem/uim/uimdrv/esim_eid
  $ boot; mkdir -p "$VXK_HANDSET_DIR/${stored%/*}"
  $ for size in 0 5 17 500; do
  >   head -c $size /dev/zero > "$VXK_HANDSET_DIR/$stored"; vxk 5 10 1 1 | grep -oE 'EID already exists|^eID.*'; done | sort | uniq -c
        4 EID already exists
        4 eID=89049032001001000000000000000023
  $ boot '{"efs": {"read_only": ["/nv/item_files/modem/uim"]}}'
  $ vxk 5 10 1 1 | grep 'save'
  RIL[save_eid_to_efs:#]: efs read failed and try save it. error_code : -2
  save eid efs result = -13
  $ quiet 1
  eID=89049032001001000000000000000023

Cards that are absent or broken; no third one is expected.

  $ with_cards() { boot "{\"euicc\": {\"wired\": false}, \"cards\": {\"slots\": [$1]}}"; }
  $ with_cards '{"present": false}, {"error": 6}'; quiet 4; with_cards ''; quiet 4
  ABSENT,ERROR
  ABSENT,ABSENT
  $ with_cards '{}, {}, {}'
  $ command vxk 5 10 4 0 2>&1 | aborted; echo ${PIPESTATUS[0]}
  vxk: fatal: card 2 in the card status is out of range: there are 2 slots
  134

Card status: none told, none extended, no card, an unknown state, and more cards, applications or AID bytes counted
than came.

  $ answers() { message=$1; shift; boot "{\"faults\": [$(for tlvs; do
  >   printf '%s{"service": "uim", "message": %d, "action": "tlvs", "bytes": "02 0400 00000000 %s"}' "$comma" $message "$tlvs"
  >   comma=,; done)]}"; }
  $ none="FFFF FFFF FFFF FFFF"
  $ answers 47 "" "10 0F00 $none 01 01 00 00 00 00 00" "15 0900 $none 00" "15 1500 $none 02 01 00 00 00 00 00 09 00 00 00 00 00" \
  >   "15 0F00 $none 02 01 00 00 00 00 00" "15 0F00 $none FF 01 00 00 00 00 00" "15 0F00 $none 01 01 00 00 00 00 01" \
  >   "15 1600 $none 01 01 00 00 00 00 01 02 07 02 00 00 00 FF" "15 0F00 $none 01 01 00 00 00 00 00"
  $ vxk 5 10 4 1 | grep -E 'check response|card_status,|^[A-Z]+,' | folded
  RIL[kelvra_uim_get_card_status:#]: kelvra_uim_get_card_status check response | RIL[kelvra_cmn_esim_test:#]: card_status, [3, 3] | UNKNOWN,UNKNOWN
  $ for run in 1 2 3; do quiet 4; done | xargs
  UNKNOWN,UNKNOWN UNKNOWN,UNKNOWN PRESENT,UNKNOWN
  $ vxk 5 10 4 1 | grep -E 'error|card_status,|^[A-Z]+,' | folded
  RIL[kelvra_uim_get_card_status:#]: send msg sync client error = -1 | RIL[kelvra_cmn_esim_test:#]: card_status, [0, 0] | ABSENT,ABSENT
  $ for run in 1 2 3; do quiet 4; done | xargs
  ABSENT,ABSENT ABSENT,ABSENT ABSENT,ABSENT
  $ quiet 4
  PRESENT,ABSENT

The service goes away, at length.

  $ boot '{"faults": [{"service": "uim", "message": 48, "action": "close"}, {"service": "uim", "message": 101, "action": "close"}]}'
  $ vxk 5 10 2 1 | grep -E ' SIM2|res = |failed_cnt|recovery qmi'
  RIL[kelvra_cmn_esim_test:#]: switch to SIM2
  RIL[kelvra_uim_request_uicc_power_ex:#]: send msg sync client error = -2, failed_cnt = 1
  RIL[kelvra_uim_request_uicc_power_ex:#]: uicc_power_ex res = -2, failed_cnt = 1
  RIL[uim_qmi_client_recovery:283]: uim_qmi_client_recovery qmi_client_release CLIENT
  RIL[kelvra_cmn_esim_test:#]: POWER_DOWN_UIM2 res = -2
  $ vxk 5 10 3 1 | grep -E 'loop|SSR_Detected|eID'
  RIL[kelvra_cmn_esim_test:#]: try get eid loop = 0
  RIL[error_cb:306]: SSR Detected, set SSR_Detected 1
  RIL[kelvra_cmn_esim_test:#]: try get eid loop = 1
  RIL[kelvra_uim_request_eid:#]: SSR_Detected, try recovery
  eID=89049032001001000000000000000023

The modem restarts in the middle of a memory reset: the channel is lost, the profiles are not.

  $ boot '{"modem": {"restart_ms": 50}, "faults": [{"service": "uim", "message": 59, "action": "restart"}]}'
  $ vxk 5 10 5 1 | grep -E 'res =|error|value'
  RIL[kelvra_cmn_esim_test:#]: kelvra_uim_open_channel res = 0, channel_id = 1
  RIL[error_cb:303]: QMI error callback -2
  RIL[error_cb:306]: SSR Detected, set SSR_Detected 1
  RIL[kelvra_uim_send_apdu:#]: send msg sync client error = -2
  RIL[kelvra_uim_send_apdu:#]: QMI error, try recovery
  RIL[kelvra_cmn_esim_test:#]: kelvra_uim_send_apdu res = -2
  value=FAILED
  $ vxk 5 10 5 1 | grep -E 'channel_id|profile|value' | folded
  RIL[kelvra_cmn_esim_test:#]: kelvra_uim_open_channel res = 0, channel_id = 1 | RIL[kelvra_cmn_esim_test:#]: kelvra_uim_send_apdu, delete profile successfully. | value=SUCCEED

A memory reset that is answered with something else leaves its channel open, and there are only three.

  $ answers 59 "10 0400 0200 6D00" "" "10 6600 6400 $(printf 'AB%.0s' {1..100})"
  $ for run in 1 2 3; do vxk 5 10 5 1 | grep -oE 'apdu=.*|check failed.|value.*' | xargs; done
  apdu=026d00000000000000 check failed. value=FAILED
  apdu=000000000000000000 check failed. value=FAILED
  apdu=3fabababababababab check failed. value=FAILED
  $ vxk-handset show | grep 'slot 2  eUICC'
    slot 2  eUICC, power on, logical channels open: 3
  $ quiet 5
  value=FAILED

A channel that the service opens without a number, or refuses and yet numbers, is none.

  $ answers 66 "11 0200 9000"
  $ vxk 5 10 5 1 | grep -E 'failed|res =|value' | folded
  RIL[kelvra_uim_open_channel:#]: kelvra_uim_open_channel failed | RIL[kelvra_cmn_esim_test:#]: kelvra_uim_open_channel res = -1, channel_id = 0 | value=FAILED
  $ boot '{"faults": [{"service": "uim", "message": 66, "action": "tlvs", "bytes": "02 0400 01000300 10 0100 01"}]}'; seen=0
  $ quiet 5; requests | cut -d ' ' -f 1,2
  value=FAILED
  uim 66

Nor is an EID one that comes with a refusal.

  $ boot "{\"faults\": [{\"service\": \"uim\", \"message\": 101, \"hits\": 0, \"action\": \"tlvs\", \"bytes\": \"02 0400 01000300 10 1100 10 $(printf 89%.0s {1..16})\"}]}"; quiet 3
  value=FAILED

Any number but 0 as debug_on lets the log be printed, and what is no number is 0.

  $ boot
  $ for debug in 0 text 2 -1; do command vxk 5 10 4 $debug | grep -c .; done | xargs
  1 1 12 12

The handset tells what passed, and what it has become.

  $ boot; for action in 4 5 3; do quiet $action > out; done
  $ sed -n 's/^.*qmi\/uim [0-9]* \([-<>]* re.*\) tlvs=.*/\1/p' "$VXK_HANDSET_DIR/log/wire.log"
  -> request get_card_status(47) #1 extended=1
  <- response get_card_status(47) #1 result=0 cards="present:1 present:1" extended_cards="present:1 present:1"
  -> request open_logical_channel(66) #1 slot=2 aid=[A0 00 00 05 59 10 10 FF FF FF FF 89 00 00 01 00] fci=1
  <- response open_logical_channel(66) #1 result=0 channel=1 sw=[90 00] select=[6F 12 84 10 A0 00 00 05 59 10 10 FF FF FF FF 89 00 00 01 00]
  -> request send_apdu(59) #2 slot=2 apdu=[80 E2 91 00 07 BF 34 04 82 02 05 E0 00] channel=1 procedure_bytes=0
  <- response send_apdu(59) #2 result=0 apdu=[BF 34 03 80 01 00 90 00]
  -> request logical_channel(63) #3 slot=2 channel=1 terminate=1
  <- response logical_channel(63) #3 result=0 sw=[90 00]
  -> request get_eid(101) #1 slot=2
  <- response get_eid(101) #1 result=0 eid=[89 04 90 32 00 10 01 00 00 00 00 00 00 00 00 23]
  $ quiet 2
  value=SUCCEED
  $ { show euicc; show uim; } | folded
  euicc |   slot 2 wired  no |   profiles      none |   eid           89 04 90 32 00 10 01 00 00 00 00 00 00 00 00 23 |  | uim |   slot 1  card slot, power on, logical channels open: 0 |   slot 2  card slot, power on, logical channels open: 0 | 

Indications: 97 is decoded, others are only logged.

  $ boot '{"uim": {"indications": [{"before": 48}, {"before": 49, "tlvs": "01 0400 07000000"},
  >   {"before": 49, "id": 50}]}}'
  $ vxk 5 10 1 1 | grep unsol_ind
  RIL[kelvra_uim_qmi_client_unsol_ind_cb:323]: msg_id 97
  RIL[kelvra_uim_qmi_client_unsol_ind_cb:340]: qmi_client_message_decode result = 0
  RIL[kelvra_uim_qmi_client_unsol_ind_cb:323]: msg_id 97
  RIL[kelvra_uim_qmi_client_unsol_ind_cb:340]: qmi_client_message_decode result = -1
  RIL[kelvra_uim_qmi_client_unsol_ind_cb:350]: purge guti failed. resp.result = 7 ,resp.result = 0
  RIL[kelvra_uim_qmi_client_unsol_ind_cb:323]: msg_id 50
  $ grep -o 'qmi/uim 1 <- indication .*' "$VXK_HANDSET_DIR/log/wire.log"
  qmi/uim 1 <- indication recovery(97) #0 first=0 second=0 tlvs=[01 04 00 00 00 00 00 02 04 00 00 00 00 00]
  qmi/uim 1 <- indication recovery(97) #0 first=7 tlvs=[01 04 00 07 00 00 00]
  qmi/uim 1 <- indication card_status(50) #0 tlvs=[01 04 00 00 00 00 00 02 04 00 00 00 00 00]

No EID: the client is made anew after every third failure. No service in 4 s.

  $ wait "${slow[@]}"
  $ grep -c 'QMI error, try recovery' no_eid.out; masked_log < no_eid.out | grep -E 'loop = (0|29)$|time|value'
  10
  RIL[kelvra_cmn_esim_test:#]: try get eid loop = 0
  RIL[kelvra_cmn_esim_test:#]: try get eid loop = 29
  RIL[kelvra_cmn_esim_test:#]: get eid timeout
  value=FAILED
  $ masked_log < no_service.out | grep -E 'failed|value'
  value=FAILED
  RIL[init_uim_qmi_client:373]: qmi_client_init UIM instance failed, qmi_client_error = -3
  RIL[kelvra_uim_get_card_status:#]: init_uim_qmi_client failed
  value=FAILED
