Card slots: status, type, and the hot-swap test.

  $ . "$TESTDIR/setup.sh"
  $ boot
  $ past_channel 5 1
  kelvra_cmn_card_status_query
  param(cnt: 0):
  
  kelvra_cmn_cmd_send, t: 39, l: 0
  result = 0, rsp.result = 0
  
  data len(12)
  data: 27 00 00 00 04 00 00 00 01 00 00 00
  $ told() { answer "$@" | folded; }
  $ told 5 2 1
   | param(cnt: 1): |  1 | kelvra_cmn_cmd_send, t: 55, l: 4 | result = 0, rsp.result = 0 |  | data len(12) | data: 37 00 00 00 04 00 00 00 01 00 00 00
  $ told 5 3 0 2 5
   | param(cnt: 3): |  0 1 1 | kelvra_cmn_cmd_send, t: 57, l: 12 | result = 0, rsp.result = 0 |  | data len(12) | data: 39 00 00 00 04 00 00 00 01 00 00 00
  $ grep -o 'SUB.shell..kelvra_qmi_test_cmn.*' "$VXK_HANDSET_DIR/log/system.log"
  SUB[shell][kelvra_qmi_test_cmn:403] kelvra_cmn_card_status_get: kelvra_cmn_card_status_get
  SUB[shell][kelvra_qmi_test_cmn:409] kelvra_cmn_card_status_set: kelvra_cmn_card_status_set
  $ told 5 4
  kelvra_cmn_card_type_query | param(cnt: 0): |  | kelvra_cmn_cmd_send, t: 56, l: 0 | result = 0, rsp.result = 0 |  | data len(12) | data: 38 00 00 00 04 00 00 00 02 00 00 00
  $ asked
  id=4 data_len=512 form="tlv" code=39 command="card_status_query" value=[] data=[02 00 00 00 00 00 00 00 27 (+503 zero)]
  id=4 data_len=512 form="tlv" code=55 command="card_status_get" value=[01 00 00 00] data=[02 00 00 00 00 00 00 00 37 00 00 00 04 00 00 00 01 (+495 zero)]
  id=4 data_len=512 form="tlv" code=57 command="card_status_set" value=[00 00 00 00 01 00 00 00 01 00 00 00] data=[02 00 00 00 00 00 00 00 39 00 00 00 0C 00 00 00 00 00 00 00 01 00 00 00 01 (+487 zero)]
  id=4 data_len=512 form="tlv" code=56 command="card_type_query" value=[] data=[02 00 00 00 00 00 00 00 38 (+503 zero)]

The card of a slot is pulled and pushed by its detect line's level.

  $ told 5 3 0 1 0
   | param(cnt: 3): |  0 1 0 | kelvra_cmn_cmd_send, t: 57, l: 12 | result = 0, rsp.result = 0 |  | data len(12) | data: 39 00 00 00 04 00 00 00 00 00 00 00
  $ told 5 2 0
   | param(cnt: 1): |  0 | kelvra_cmn_cmd_send, t: 55, l: 4 | result = 0, rsp.result = 0 |  | data len(12) | data: 37 00 00 00 04 00 00 00 00 00 00 00
  $ show cards | folded
  cards |   slot 1  empty |   slot 2  card | 
  $ answer 5 3 0 1 7 | tail -1
  data: 39 00 00 00 04 00 00 00 01 00 00 00

The hot-swap test runs in the background, as often as asked.

  $ told 5 6 1 0 0 3
  kelvra_cmn_card_hotswap_test | opt: 1 | param(cnt: 4): |  1 0 0 3 | kelvra_cmn_cmd_send, t: 80, l: 16 | result = 0, rsp.result = 0 |  | data len(12) | data: 50 00 00 00 04 00 00 00 01 00 00 00
  $ eventually test_count 'card of slot 1 pushed' 4
  $ grep -o 'card of slot .*' "$VXK_HANDSET_DIR/log/wire.log" | cut -d ' ' -f 5 | xargs
  pulled pushed pulled pushed pulled pushed pulled pushed

Started with waits, it goes on behind the tool; stopped, it puts the card back.

  $ told 5 6 1 5 5 3
  kelvra_cmn_card_hotswap_test | opt: 1 | param(cnt: 4): |  1 5 5 3 | kelvra_cmn_cmd_send, t: 80, l: 16 | result = 0, rsp.result = 0 |  | data len(12) | data: 50 00 00 00 04 00 00 00 01 00 00 00
  $ eventually test_count "card of slot 1 pulled" 5
  $ told 5 6 0
  kelvra_cmn_card_hotswap_test | opt: 0 | kelvra_cmn_cmd_send, t: 80, l: 4 | result = 0, rsp.result = 0 |  | data len(12) | data: 50 00 00 00 04 00 00 00 00 00 00 00
  $ show cards | folded
  cards |   slot 1     card |   slot 2     card |   hot-swaps  0 of 3 | 
  $ asked | grep 'code=80'
  id=4 data_len=512 form="tlv" code=80 command="hotswap" value=[01 00 00 00 00 00 00 00 00 00 00 00 03 00 00 00] data=[02 00 00 00 00 00 00 00 50 00 00 00 10 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 03 (+483 zero)]
  id=4 data_len=512 form="tlv" code=80 command="hotswap" value=[01 00 00 00 05 00 00 00 05 00 00 00 03 00 00 00] data=[02 00 00 00 00 00 00 00 50 00 00 00 10 00 00 00 01 00 00 00 05 00 00 00 05 00 00 00 03 (+483 zero)]
  id=4 data_len=512 form="tlv" code=80 command="hotswap" value=[00 00 00 00] data=[02 00 00 00 00 00 00 00 50 00 00 00 04 (+499 zero)]

A handset with one slot, and one without; a modem that refuses is no error of the command.

  $ boot '{"cards": {"slots": [{"present": false}]}}'
  $ answer 5 1 | tail -1; answer 5 4 | tail -1; answer 5 2 0 | tail -1
  data: 27 00 00 00 04 00 00 00 00 00 00 00
  data: 38 00 00 00 04 00 00 00 01 00 00 00
  data: 37 00 00 00 04 00 00 00 00 00 00 00
  $ boot '{"cards": {"slots": []}}'
  $ answer 5 1 | tail -1; answer 5 4 | tail -1; told 5 6 1 1 1 1
  data: 27 00 00 00 04 00 00 00 00 00 00 00
  data: 38 00 00 00 04 00 00 00 00 00 00 00
  kelvra_cmn_card_hotswap_test | opt: 1 | param(cnt: 4): |  1 1 1 1 | kelvra_cmn_cmd_send, t: 80, l: 16 | result = 0, rsp.result = -22 | rsp.result fail

Answers as the modem may cut or stretch them, by their result, their length, and how many bytes come. A length without sense is fatal.

  $ word() { printf '%08X' $(($1 & 0xffffffff)) | sed -E 's/(..)(..)(..)(..)/\4\3\2\1/'; }
  $ lie() { payload=ABABABAB$(word $1)ABABABAB$(word $2)$(printf 'AB%.0s' {1..492})
  >   printf ',{"service": "extension", "action": "payload", "bytes": "%s"}' "${payload:0:$((2 * $3))}"; }
  $ lies="$(lie 0 1 17; lie 0 492 508; lie -9 1 508; lie -9 0 8; lie 0 -9 16; lie 0 492 507; lie 0 0 15; lie -1 0 7; lie 0 -8 16; lie 0 493 16)"
  $ boot "{\"faults\": [${lies#,}]}"
  $ for lie in {1..10}; do command vxk 5 2 0 2>&1 | aborted | grep -aoE '^(result|data|kelvra_extend_qmi_send_sync f|rsp|vxk).*' | folded | cut -c 1-120; done
  result = 0, rsp.result = 0 | data len(9) | data: AB AB AB AB 01 00 00 00 AB
  result = 0, rsp.result = 0 | data len(500) | data: AB AB AB AB EC 01 00 00 AB AB AB AB AB AB AB AB AB AB AB AB AB AB AB 
  result = 0, rsp.result = -9 | rsp.result fail
  result = 0, rsp.result = -9 | rsp.result fail
  result = 0, rsp.result = 0 | data len(-1) | data:
  result = -103, rsp.result = 0 | kelvra_extend_qmi_send_sync fail
  result = -103, rsp.result = 0 | kelvra_extend_qmi_send_sync fail
  result = -103, rsp.result = 0 | kelvra_extend_qmi_send_sync fail
  result = 0, rsp.result = 0 | vxk: fatal: response length word -8
  result = 0, rsp.result = 0 | vxk: fatal: response dump of 501 bytes, at most 500 are printed

Wrong numbers of inputs send nothing.

  $ asked > /dev/null; for words in 2 "1 x" 6 "6 1 5"; do answer 5 $words | helpless | folded; done
   |  | note: need 4 inputs, Pls refer to the following cmd: |  | note: Error happen! error_code(268431370) | 
  kelvra_cmn_card_status_query |  | note: need 3 inputs, Pls refer to the following cmd: |  | note: Error happen! error_code(268431370) | 
  kelvra_cmn_card_hotswap_test |  | note: need 4 inputs at least, Pls refer to the following cmd: |  | note: Error happen! error_code(268431370) | 
  kelvra_cmn_card_hotswap_test | opt: 1 |  | note: need 7 inputs, Pls refer to the following cmd: |  | note: Error happen! error_code(268431370) | 
  $ asked
