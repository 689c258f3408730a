Restart, dump, NV sync, print switches and antenna configurations.

  $ . "$TESTDIR/setup.sh"
  $ level=persist.vendor.ssr.restart_level

A restart: the level is opened for it and put back. The modem is away for a while; the next command waits for it
and succeeds.

  $ boot '{"modem": {"restart_ms": 5000}}'
  $ set_property persist.radio.ssr_wait_s 0
  $ past_channel 11 0
  RIL[kelvra_smart_test_modem_ssr:#]: Will trigger SSR of modem, the current state: ALL_DISABLE
  
  RIL[kelvra_smart_test_modem_ssr:#]: need to open ssr
  
  RIL[kelvra_smart_test_ssr_wait_s:#]: ssr wait_s = 0
  
  RIL[kelvra_smart_test_ssr_wait_s:#]: modem ssr will not wait
  
  RIL[kelvra_send_common_qmi_msg:#]: function entry ------------->
  RIL[kelvra_send_common_qmi_msg:#]: t 31
  RIL[kelvra_send_common_qmi_msg:#]: l 4
  RIL[kelvra_send_common_qmi_msg:#]: function exit <-------------
  RIL[kelvra_smart_test_ssr_wait_s:#]: ssr wait_s = 0
  
  RIL[kelvra_smart_test_ssr_wait_s:#]: modem ssr will not wait
  
  RIL[kelvra_smart_test_modem_ssr:#]: back to old ssr state
  
  $ property $level
  ALL_DISABLE
  $ away() { ! test -S "$VXK_HANDSET_DIR/qmi/65508"; }; eventually away
  $ vxk 11 2 2>/dev/null | grep -E 'SYNC|num_services = 0|result' | folded
  RIL[kelvra_smart_test_nv_sync:#]: Will trigger NV SYNC | KELVRA_QMI_NV: qmi_client_get_service_list() returned -2 num_services = 0 | kelvra_extend_qmi_handle_req_cb result:0
  $ asked
  id=4 data_len=512 form="tlv" code=31 command="reset" value=[00 10 00 00] data=[02 00 00 00 00 00 00 00 1F 00 00 00 04 00 00 00 00 10 (+494 zero)]
  id=4 data_len=512 form="tlv" code=35 command="nv_sync" value=[] data=[02 00 00 00 00 00 00 00 23 (+503 zero)]
  $ { show modem; show maintenance; } | folded
  modem |   state     up |   restarts  1 |  | maintenance |   nv syncs  1 | 

A reader that goes away does not keep the restart from being asked for, nor the level from being put back.

  $ boot '{"modem": {"restart_ms": 0}}'
  $ set_property persist.radio.ssr_wait_s 0
  $ command vxk 11 0 | true; echo ${PIPESTATUS[0]}; property $level; asked | cut -d ' ' -f 1-5
  0
  ALL_DISABLE
  id=4 data_len=512 form="tlv" code=31 command="reset"

With a wait, there is one before the request and one behind it.

  $ boot '{"modem": {"restart_ms": 0}}'
  $ set_property persist.radio.ssr_wait_s 1
  $ set_property $level odd
  $ vxk 11 0 | grep wait
  RIL[kelvra_smart_test_ssr_wait_s:#]: ssr wait_s = 1
  RIL[kelvra_smart_test_ssr_wait_s:#]: modem ssr start to wait 1s to init
  RIL[kelvra_smart_test_ssr_wait_s:#]: modem ssr end to wait 1s to init
  RIL[kelvra_smart_test_ssr_wait_s:#]: ssr wait_s = 1
  RIL[kelvra_smart_test_ssr_wait_s:#]: modem ssr start to wait 1s to init
  RIL[kelvra_smart_test_ssr_wait_s:#]: modem ssr end to wait 1s to init
  $ property $level
  odd

A full dump: the first counts the change of the level and keeps the old one for ever; the second finds nothing to
change. The handset reboots each time.

  $ boot '{"modem": {"restart_ms": 0}}'
  $ set_property persist.radio.ssr_wait_s 0
  $ vxk 11 1 | grep smart_test
  RIL[kelvra_smart_test_full_dump:#]: need to save ssr state
  RIL[kelvra_smart_test_full_dump:#]: Will trigger Full Dump, the current state: ALL_ENABLE, the default state: 
  RIL[kelvra_smart_test_full_dump:#]: need to close ssr
  RIL[kelvra_smart_test_read_ssr_update_flag:#]: PROP_MODEM_SSR_UPDATE_COUNT read ret: -2, old update_cnt: 0, len: 0
  RIL[kelvra_smart_test_read_ssr_update_flag:#]: kelvra_efs_read failed, maybe empty
  RIL[kelvra_smart_test_save_ssr_update_flag:#]: PROP_MODEM_SSR_UPDATE_COUNT write ret: 0, new update_cnt: 1
  RIL[kelvra_smart_test_ssr_wait_s:#]: ssr wait_s = 0
  RIL[kelvra_smart_test_ssr_wait_s:#]: modem ssr will not wait
  $ restarted 1
  $ vxk 11 1 | grep full_dump
  RIL[kelvra_smart_test_full_dump:#]: Will trigger Full Dump, the current state: ALL_DISABLE, the default state: ALL_ENABLE
  $ restarted 2
  $ asked | uniq
  id=2 data_len=512 command="efs_read" sub=0 path="/nv/item_files/modem/kelvra/ssr_update_count" offset=0 data=[04 00 00 00 2C 2F 6E 76 2F 69 74 65 6D 5F 66 69 6C 65 73 2F 6D 6F 64 65 6D 2F 6B 65 6C 76 72 61 2F 73 73 72 5F 75 70 64 61 74 65 5F 63 6F 75 6E 74 (+463 zero)]
  id=2 data_len=512 command="efs_write" sub=0 path="/nv/item_files/modem/kelvra/ssr_update_count" total=4 offset=0 chunk=4 data=[05 00 00 00 2C 2F 6E 76 2F 69 74 65 6D 5F 66 69 6C 65 73 2F 6D 6F 64 65 6D 2F 6B 65 6C 76 72 61 2F 73 73 72 5F 75 70 64 61 74 65 5F 63 6F 75 6E 74 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 04 00 00 00 04 00 00 00 00 00 00 00 01 (+423 zero)]
  id=4 data_len=512 form="tlv" code=31 command="reset" value=[00 20 00 00] data=[02 00 00 00 00 00 00 00 1F 00 00 00 04 00 00 00 00 20 (+494 zero)]
  $ property $level; property ${level}_bak; efs 0/nv/item_files/modem/kelvra/ssr_update_count
  ALL_DISABLE
  ALL_ENABLE
   01 00 00 00
  $ cat "$VXK_HANDSET_DIR"/dump/*
  full dump 1 after 0 restarts since the handset was started
  full dump 2 after 1 restarts since the handset was started
  $ show maintenance | folded
  maintenance |   full dumps  2 |   reboots     2 | 

A count that cannot go on is fatal. So it is into a pipe that nobody reads any more.

  $ printf '\377\377\377\377' > "$VXK_HANDSET_DIR/efs/0/nv/item_files/modem/kelvra/ssr_update_count"
  $ set_property $level odd
  $ command vxk 11 1 2> fatal | true; echo ${PIPESTATUS[0]}; aborted < fatal
  134
  vxk: fatal: the restart level's update count 4294967295 cannot be counted up

At any other level the modem restarts alone. A request of no known kind, or cut short, does nothing.

  $ boot '{"modem": {"restart_ms": 0}}'
  $ set_property $level ALL_ENABLE
  $ for kind in '4 0 0 0 0 0x40 0 0' '3 0 0 0 0 0x20 0' '4 0 0 0 0 0x20 0 0'; do
  >     vxk 6 4 2 0 0 0 0 0 0 0 31 0 0 0 $kind > /dev/null
  > done
  $ restarted 1
  $ { show modem; show maintenance; } | folded; ls "$VXK_HANDSET_DIR/dump" 2>/dev/null
  modem |   state     up |   restarts  1 | 
  [2]

Print switches: on, off, and off once more, which finds no file.

  $ boot '{"modem": {"restart_ms": 0}, "efs": {"read_only": ["/nv/item_files/modem/kelvra/rf_print_mask"]}}'
  $ set_property $level ALL_ENABLE
  $ answer 11 4 1 | folded
  bp_kolvo_print, opt = 1 |  |  | success, pls wait 10 seconds 
  $ restarted 1; efs 0/kolvo/kolvo_print_mask
   1f 00 00 00
  $ answer 11 4 0 | folded
  bp_kolvo_print, opt = 0 |  |  | success, pls wait 10 seconds 
  $ restarted 2; efs 0/kolvo/kolvo_print_mask
  (no file)
  $ answer 11 4 0 | folded
  bp_kolvo_print, opt = 0 | kelvra_efs_delete failed
  $ answer 11 5 1 | folded
  bp_qmi_print, opt = 1 |  |  | success, pls wait 10 seconds 
  $ restarted 3; efs 0/nv/item_files/modem/kelvra/qmi_print_flag
   01
  $ answer 11 6 1 | folded
  bp_rf_print, opt = 1 | kelvra_efs_write failed
  $ vxk 11 3 0 | folded; property persist.vendor.radio.print_stats
  ap_kolvo_print, opt = 0 | success, need to reboot
  2
  $ show maintenance | folded
  maintenance |   nv syncs  3 | 

Antenna configurations: the modem keeps them in two files.

  $ boot
  $ answer 3 1 | helpless | folded
  kelvra_gpio_test_get | kelvra_extend_qmi_send_sync fail, REQUEST_ID_EFS |  | note: Error happen! error_code(-2) | 
  $ answer 3 0 5 -1 0x7 | folded
  kelvra_gpio_test_set | kelvra_gpio_test_set, gpio_v[0]: 5 | kelvra_gpio_test_set, gpio_v[1]: -1 | kelvra_gpio_test_set, gpio_v[2]: 0
  $ answer 3 1 | folded
  kelvra_gpio_test_get |  | data len(16) | data:  03 00 00 00 05 00 00 00 FF FF FF FF 00 00 00 00
  $ answer 3 3 1 4 0x80000000080 | folded
  kelvra_rf_tx_test_set, argc(6) |  v_ant(1) |  v_sys(4) |  v_band_list(8796093022336)
  $ answer 3 4 | folded
  kelvra_rf_tx_test_get |  | data len(16) | data:  01 00 00 00 04 00 00 00 80 00 00 00 00 08 00 00
  $ answer 3 2; answer 3 5; answer 3 5 | helpless | folded
  kelvra_gpio_test_closed
  kelvra_rf_tx_test_closed
  kelvra_rf_tx_test_closed | kelvra_extend_qmi_send_sync fail, REQUEST_ID_EFS |  | note: Error happen! error_code(-2) | 
  $ asked | uniq
  id=2 data_len=512 command="efs_read" sub=0 path="/nv/item_files/modem/kelvra/rf_ant_port_config\x00" offset=0 data=[04 00 00 00 2F 2F 6E 76 2F 69 74 65 6D 5F 66 69 6C 65 73 2F 6D 6F 64 65 6D 2F 6B 65 6C 76 72 61 2F 72 66 5F 61 6E 74 5F 70 6F 72 74 5F 63 6F 6E 66 69 67 (+461 zero)]
  id=4 data_len=512 form="gpio" code=0 command="gpio" data=[00 00 00 00 00 00 00 00 03 00 00 00 05 00 00 00 FF FF FF FF (+492 zero)]
  id=2 data_len=512 command="efs_read" sub=0 path="/nv/item_files/modem/kelvra/rf_ant_port_config\x00" offset=0 data=[04 00 00 00 2F 2F 6E 76 2F 69 74 65 6D 5F 66 69 6C 65 73 2F 6D 6F 64 65 6D 2F 6B 65 6C 76 72 61 2F 72 66 5F 61 6E 74 5F 70 6F 72 74 5F 63 6F 6E 66 69 67 (+461 zero)]
  id=4 data_len=512 form="tx_antenna" code=1 command="tx_antenna" data=[01 00 00 00 00 00 00 00 01 00 00 00 04 00 00 00 80 00 00 00 00 08 (+490 zero)]
  id=2 data_len=512 command="efs_read" sub=0 path="/nv/item_files/modem/antenna/ant_tx_config\x00" offset=0 data=[04 00 00 00 2B 2F 6E 76 2F 69 74 65 6D 5F 66 69 6C 65 73 2F 6D 6F 64 65 6D 2F 61 6E 74 65 6E 6E 61 2F 61 6E 74 5F 74 78 5F 63 6F 6E 66 69 67 (+465 zero)]
  id=2 data_len=512 command="efs_delete" sub=0 path="/nv/item_files/modem/kelvra/rf_ant_port_config\x00" data=[06 00 00 00 2F 2F 6E 76 2F 69 74 65 6D 5F 66 69 6C 65 73 2F 6D 6F 64 65 6D 2F 6B 65 6C 76 72 61 2F 72 66 5F 61 6E 74 5F 70 6F 72 74 5F 63 6F 6E 66 69 67 (+461 zero)]
  id=2 data_len=512 command="efs_delete" sub=0 path="/nv/item_files/modem/antenna/ant_tx_config\x00" data=[06 00 00 00 2B 2F 6E 76 2F 69 74 65 6D 5F 66 69 6C 65 73 2F 6D 6F 64 65 6D 2F 61 6E 74 65 6E 6E 61 2F 61 6E 74 5F 74 78 5F 63 6F 6E 66 69 67 (+465 zero)]
  $ answer 3 0; answer 3 1 | folded
  kelvra_gpio_test_set
  kelvra_gpio_test_get |  | data len(4) | data:  00 00 00 00
  $ answer 3 0 $(seq 101 160) | tail -1; answer 3 1 | cut -c 1-30
  kelvra_gpio_test_set, gpio_v[49]: 150
  kelvra_gpio_test_get
  
  data len(204)
  data:  32 00 00 00 65 00 00 00
  $ vxk 3 3 1 4 | helpless | folded
  kelvra_rf_tx_test_set, argc(5) |  | note: need 5 inputs, Pls refer to the following cmd: |  | note: Error happen! error_code(268431370) | 
  $ vxk 6 4 0 0 0 0 0 0 0 0 51 0 0 0 $(seq 204) > /dev/null; vxk 6 4 1 0 0 0 0 0 0 0 1 > /dev/null
  $ grep -c 'EA FF FF FF' "$VXK_HANDSET_DIR/log/wire.log"
  2
