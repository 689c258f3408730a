The parser of statistics records, and what the statistics feature says of itself.

  $ . "$TESTDIR/setup.sh"

The built-in record, which needs no modem, without and with the trace of every step.

  $ vxk 7 0 0
  length = 48, print_flag = 0
  version = 196609, mcc = 29440, mnc_num 128, mnc 704, tac 497189504, cgi 2028284490176, pci 51666
  freq_band_ind = 64, dl_earfcn = 27450241, dl_bw 1280, ul_earfcn 24836608, ul_bw 1280, allow_access 128, scs 0
  $ vxk 7 0 1
  length = 48, print_flag = 1
      UNPK_I, name: version, val: 196609(0x010003), val_size: 4, unpk_cnt: 4, data_base: 0, base_bit: 0
  BASE_WITH_BIT, g_unpk_data_base_bit(32), g_unpk_data_base(4), g_unpk_data_cnt(0), bit(32), id(0x0)
  UNPK_SET_BIT, g_unpk_data_base_bit(32), g_unpk_data_base(4), g_unpk_data_cnt(31), bit(250), id(0x0)
  PRINT_CNT, base_bit: 32, base_byte: 4, data_cnt: 31, low: 3, high: 18, param: 250, name: mcc
      UNPK_I, name: mcc_tmp1, val: 721138937611013120(0x00CC01020B00020A), val_size: 8, unpk_cnt: 39, data_base: 4, base_bit: 32
      UNPK_I, name: mcc_tmp2, val: 16807562(0x8A760001), val_size: 8, unpk_cnt: 47, data_base: 4, base_bit: 32
  UNPK_HIGH, old_val: 9403656771257529088, new_val: 29440, bit_num: 126, name: mcc, id(0x0)
  UNPK_LOW, old_val: 9403656771257529088, new_val: 29440, bit_num: 16, mask_max(0xffff), old_size(2), name: mcc, id(0x0)
  UNPK_MID, old_val: 9403656771257529088, new_val: 29440, low: 3, high: 18, name: mcc, id(0x0)
      UNPK_AT, name: mcc, val: 29440(0x0073), low: 3, high: 18, bit_start: 250, bit_num: 16
  UNPK_SET_BIT, g_unpk_data_base_bit(32), g_unpk_data_base(4), g_unpk_data_cnt(33), bit(266), id(0x0)
  PRINT_CNT, base_bit: 32, base_byte: 4, data_cnt: 33, low: 3, high: 10, param: 266, name: mnc_num
      UNPK_I, name: mnc_num_tmp1, val: 8541650646968500737(0x01020B00020A8A76), val_size: 8, unpk_cnt: 41, data_base: 4, base_bit: 32
      UNPK_I, name: mnc_num_tmp2, val: 256(0x0001), val_size: 8, unpk_cnt: 49, data_base: 4, base_bit: 32
  UNPK_HIGH, old_val: 2135412661742125184, new_val: 128, bit_num: 126, name: mnc_num, id(0x0)
  UNPK_LOW, old_val: 2135412661742125184, new_val: 128, bit_num: 8, mask_max(0xff), old_size(1), name: mnc_num, id(0x0)
  UNPK_MID, old_val: 2135412661742125184, new_val: 128, low: 3, high: 10, name: mnc_num, id(0x0)
      UNPK_AT, name: mnc_num, val: 128(0x80), low: 3, high: 10, bit_start: 266, bit_num: 8
  UNPK_SET_BIT, g_unpk_data_base_bit(32), g_unpk_data_base(4), g_unpk_data_cnt(34), bit(274), id(0x0)
  PRINT_CNT, base_bit: 32, base_byte: 4, data_cnt: 34, low: 3, high: 18, param: 274, name: mnc
      UNPK_I, name: mnc_tmp1, val: 33365822839720706(0x020B00020A8A76), val_size: 8, unpk_cnt: 42, data_base: 4, base_bit: 32
      UNPK_I, name: mnc_tmp2, val: 1(0x01), val_size: 8, unpk_cnt: 50, data_base: 4, base_bit: 32
  UNPK_HIGH, old_val: 4620027474137318080, new_val: 704, bit_num: 126, name: mnc, id(0x0)
  UNPK_LOW, old_val: 4620027474137318080, new_val: 704, bit_num: 16, mask_max(0xffff), old_size(2), name: mnc, id(0x0)
  UNPK_MID, old_val: 4620027474137318080, new_val: 704, low: 3, high: 18, name: mnc, id(0x0)
      UNPK_AT, name: mnc, val: 704(0xC002), low: 3, high: 18, bit_start: 274, bit_num: 16
  UNPK_SET_BIT, g_unpk_data_base_bit(32), g_unpk_data_base(4), g_unpk_data_cnt(37), bit(298), id(0x0)
  PRINT_CNT, base_bit: 32, base_byte: 4, data_cnt: 37, low: 3, high: 34, param: 298, name: tac
      UNPK_I, name: tac_tmp1, val: 1101500385794(0x020A8A760001), val_size: 8, unpk_cnt: 45, data_base: 4, base_bit: 32
      UNPK_I, name: tac_tmp2, val: 0(0x00), val_size: 8, unpk_cnt: 53, data_base: 4, base_bit: 32
  UNPK_HIGH, old_val: 275375096448, new_val: 497189504, bit_num: 126, name: tac, id(0x0)
  UNPK_LOW, old_val: 275375096448, new_val: 497189504, bit_num: 32, mask_max(0xffffffff), old_size(4), name: tac, id(0x0)
  UNPK_MID, old_val: 275375096448, new_val: 497189504, low: 3, high: 34, name: tac, id(0x0)
      UNPK_AT, name: tac, val: 497189504(0x8082A21D), low: 3, high: 34, bit_start: 298, bit_num: 32
  UNPK_SET_BIT, g_unpk_data_base_bit(32), g_unpk_data_base(4), g_unpk_data_cnt(23), bit(186), id(0x0)
  PRINT_CNT, base_bit: 32, base_byte: 4, data_cnt: 23, low: 3, high: 66, param: 186, name: cgi
      UNPK_I, name: cgi_tmp1, val: 8113137960704(0x00C7B4FC6007), val_size: 8, unpk_cnt: 31, data_base: 4, base_bit: 32
      UNPK_I, name: cgi_tmp2, val: 721138937611013120(0x00CC01020B00020A), val_size: 8, unpk_cnt: 39, data_base: 4, base_bit: 32
  UNPK_HIGH, old_val: 2028284490176, new_val: 2028284490176, bit_num: 126, name: cgi, id(0x0)
  UNPK_LOW, old_val: 2028284490176, new_val: 2028284490176, bit_num: 64, mask_max(0xffffffffffffffff), old_size(8), name: cgi, id(0x0)
  UNPK_MID, old_val: 2028284490176, new_val: 2028284490176, low: 3, high: 66, name: cgi, id(0x0)
      UNPK_AT, name: cgi, val: 2028284490176(0xC0312D3FD801), low: 3, high: 66, bit_start: 186, bit_num: 64
  UNPK_SET_BIT, g_unpk_data_base_bit(32), g_unpk_data_base(4), g_unpk_data_cnt(1), bit(10), id(0x0)
  PRINT_CNT, base_bit: 32, base_byte: 4, data_cnt: 1, low: 3, high: 18, param: 10, name: pci
      UNPK_I, name: pci_tmp1, val: 1684624113999750985(0x492703C7B4FC6017), val_size: 8, unpk_cnt: 9, data_base: 4, base_bit: 32
      UNPK_I, name: pci_tmp2, val: 16717369012715409153(0x014F066E8B0600E8), val_size: 8, unpk_cnt: 17, data_base: 4, base_bit: 32
  UNPK_HIGH, old_val: 5032842046927325650, new_val: 51666, bit_num: 126, name: pci, id(0x0)
  UNPK_LOW, old_val: 5032842046927325650, new_val: 51666, bit_num: 16, mask_max(0xffff), old_size(2), name: pci, id(0x0)
  UNPK_MID, old_val: 5032842046927325650, new_val: 51666, low: 3, high: 18, name: pci, id(0x0)
      UNPK_AT, name: pci, val: 51666(0xD2C9), low: 3, high: 18, bit_start: 10, bit_num: 16
  UNPK_SET_BIT, g_unpk_data_base_bit(32), g_unpk_data_base(4), g_unpk_data_cnt(41), bit(330), id(0x0)
  PRINT_CNT, base_bit: 32, base_byte: 4, data_cnt: 41, low: 3, high: 18, param: 330, name: freq_band_ind
      UNPK_I, name: freq_band_ind_tmp1, val: 256(0x0001), val_size: 8, unpk_cnt: 49, data_base: 4, base_bit: 32
      UNPK_I, name: freq_band_ind_tmp2, val: 0(0x00), val_size: 8, unpk_cnt: 57, data_base: 4, base_bit: 32
  UNPK_HIGH, old_val: 64, new_val: 64, bit_num: 126, name: freq_band_ind, id(0x0)
  UNPK_LOW, old_val: 64, new_val: 64, bit_num: 16, mask_max(0xffff), old_size(2), name: freq_band_ind, id(0x0)
  UNPK_MID, old_val: 64, new_val: 64, low: 3, high: 18, name: freq_band_ind, id(0x0)
      UNPK_AT, name: freq_band_ind, val: 64(0x40), low: 3, high: 18, bit_start: 330, bit_num: 16
  UNPK_SET_BIT, g_unpk_data_base_bit(32), g_unpk_data_base(4), g_unpk_data_cnt(11), bit(90), id(0x0)
  PRINT_CNT, base_bit: 32, base_byte: 4, data_cnt: 11, low: 3, high: 34, param: 90, name: dl_earfcn
      UNPK_I, name: dl_earfcn_tmp1, val: 426689676524088838(0x066E8B0600E8EB05), val_size: 8, unpk_cnt: 19, data_base: 4, base_bit: 32
      UNPK_I, name: dl_earfcn_tmp2, val: 18209397996515234816(0x0014001400C7B4FC), val_size: 8, unpk_cnt: 27, data_base: 4, base_bit: 32
  UNPK_HIGH, old_val: 106672419131022209, new_val: 27450241, bit_num: 126, name: dl_earfcn, id(0x0)
  UNPK_LOW, old_val: 106672419131022209, new_val: 27450241, bit_num: 32, mask_max(0xffffffff), old_size(4), name: dl_earfcn, id(0x0)
  UNPK_MID, old_val: 106672419131022209, new_val: 27450241, low: 3, high: 34, name: dl_earfcn, id(0x0)
      UNPK_AT, name: dl_earfcn, val: 27450241(0x81DBA201), low: 3, high: 34, bit_start: 90, bit_num: 32
  UNPK_SET_BIT, g_unpk_data_base_bit(32), g_unpk_data_base(4), g_unpk_data_cnt(19), bit(154), id(0x0)
  PRINT_CNT, base_bit: 32, base_byte: 4, data_cnt: 19, low: 3, high: 18, param: 154, name: dl_bw
      UNPK_I, name: dl_bw_tmp1, val: 18209397996515234816(0x0014001400C7B4FC), val_size: 8, unpk_cnt: 27, data_base: 4, base_bit: 32
      UNPK_I, name: dl_bw_tmp2, val: 144620963424634720(0x6007000000CC0102), val_size: 8, unpk_cnt: 35, data_base: 4, base_bit: 32
  UNPK_HIGH, old_val: 4552349499128808704, new_val: 1280, bit_num: 126, name: dl_bw, id(0x0)
  UNPK_LOW, old_val: 4552349499128808704, new_val: 1280, bit_num: 16, mask_max(0xffff), old_size(2), name: dl_bw, id(0x0)
  UNPK_MID, old_val: 4552349499128808704, new_val: 1280, low: 3, high: 18, name: dl_bw, id(0x0)
      UNPK_AT, name: dl_bw, val: 1280(0x0005), low: 3, high: 18, bit_start: 154, bit_num: 16
  UNPK_SET_BIT, g_unpk_data_base_bit(32), g_unpk_data_base(4), g_unpk_data_cnt(15), bit(122), id(0x0)
  PRINT_CNT, base_bit: 32, base_byte: 4, data_cnt: 15, low: 3, high: 34, param: 122, name: ul_earfcn
      UNPK_I, name: ul_earfcn_tmp1, val: 1441173871090460672(0x00E8EB0500140014), val_size: 8, unpk_cnt: 23, data_base: 4, base_bit: 32
      UNPK_I, name: ul_earfcn_tmp2, val: 8113137960704(0x00C7B4FC6007), val_size: 8, unpk_cnt: 31, data_base: 4, base_bit: 32
  UNPK_HIGH, old_val: 360293467772615168, new_val: 24836608, bit_num: 126, name: ul_earfcn, id(0x0)
  UNPK_LOW, old_val: 360293467772615168, new_val: 24836608, bit_num: 32, mask_max(0xffffffff), old_size(4), name: ul_earfcn, id(0x0)
  UNPK_MID, old_val: 360293467772615168, new_val: 24836608, low: 3, high: 34, name: ul_earfcn, id(0x0)
      UNPK_AT, name: ul_earfcn, val: 24836608(0x00FA7A01), low: 3, high: 34, bit_start: 122, bit_num: 32
  UNPK_SET_BIT, g_unpk_data_base_bit(32), g_unpk_data_base(4), g_unpk_data_cnt(21), bit(170), id(0x0)
  PRINT_CNT, base_bit: 32, base_byte: 4, data_cnt: 21, low: 3, high: 18, param: 170, name: ul_bw
      UNPK_I, name: ul_bw_tmp1, val: 531702609392702464(0x001400C7B4FC6007), val_size: 8, unpk_cnt: 29, data_base: 4, base_bit: 32
      UNPK_I, name: ul_bw_tmp2, val: 3098431484592128(0x000000CC01020B), val_size: 8, unpk_cnt: 37, data_base: 4, base_bit: 32
  UNPK_HIGH, old_val: 132925652348175616, new_val: 1280, bit_num: 126, name: ul_bw, id(0x0)
  UNPK_LOW, old_val: 132925652348175616, new_val: 1280, bit_num: 16, mask_max(0xffff), old_size(2), name: ul_bw, id(0x0)
  UNPK_MID, old_val: 132925652348175616, new_val: 1280, low: 3, high: 18, name: ul_bw, id(0x0)
      UNPK_AT, name: ul_bw, val: 1280(0x0005), low: 3, high: 18, bit_start: 170, bit_num: 16
  UNPK_SET_BIT, g_unpk_data_base_bit(32), g_unpk_data_base(4), g_unpk_data_cnt(36), bit(290), id(0x0)
  PRINT_CNT, base_bit: 32, base_byte: 4, data_cnt: 36, low: 3, high: 10, param: 290, name: allow_access
      UNPK_I, name: allow_access_tmp1, val: 281984098763264(0x00020A8A760001), val_size: 8, unpk_cnt: 44, data_base: 4, base_bit: 32
      UNPK_I, name: allow_access_tmp2, val: 0(0x00), val_size: 8, unpk_cnt: 52, data_base: 4, base_bit: 32
  UNPK_HIGH, old_val: 70496024690816, new_val: 128, bit_num: 126, name: allow_access, id(0x0)
  UNPK_LOW, old_val: 70496024690816, new_val: 128, bit_num: 8, mask_max(0xff), old_size(1), name: allow_access, id(0x0)
  UNPK_MID, old_val: 70496024690816, new_val: 128, low: 3, high: 10, name: allow_access, id(0x0)
      UNPK_AT, name: allow_access, val: 128(0x80), low: 3, high: 10, bit_start: 290, bit_num: 8
  version = 196609, mcc = 29440, mnc_num 128, mnc 704, tac 497189504, cgi 2028284490176, pci 51666
  freq_band_ind = 64, dl_earfcn = 27450241, dl_bw 1280, ul_earfcn 24836608, ul_bw 1280, allow_access 128, scs 0

The verdict: the feature runs, is switched off, or meets diag logs that it does not know.

  $ boot
  $ vxk 7 1 0
  Get the debug info of modem_stats, mask = 0x0
  RIL[kelvra_common_qmi_req:#]: function entry ------------->
  KELVRA_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
  KELVRA_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
  QMI client inited
  kelvra_extend_qmi_send_sync resp_len:237
  kelvra_extend_qmi_handle_req_cb result:0
  RIL[kelvra_common_qmi_req:#]: function exit <-------------
  UNPK[size:1], version = 4
  UNPK[size:1], modem_stats_feature_enable_status = 1
  UNPK[size:8], version_not_support_num = 0
  UNPK[size:8], modem_stats_cmd_ok_count = 1284
  UNPK[size:8], modem_stats_cmd_fail_count = 3
  ===========================================
  ================ SUCCES ===================
  
  $ boot '{"debug": {"version": 0, "main": {"g_modem_stats_feature_enable_status": 0, "g_unpk_version_not_support_num": 4}}}'
  $ answer 7 1 0
  Get the debug info of modem_stats, mask = 0x0
  UNPK[size:1], version = 0
  UNPK[size:1], modem_stats_feature_enable_status = 0
  UNPK[size:8], version_not_support_num = 4
  UNPK[size:8], modem_stats_cmd_ok_count = 1284
  UNPK[size:8], modem_stats_cmd_fail_count = 3
  ===========================================
  ================ CLOSED ===================
  $ vxk-handset log | grep -o 'code=[0-9]*'
  code=20
  $ boot '{"debug": {"version": 3, "main": {"g_unpk_version_not_support_num": "0xFFFFFFFFFFFFFFFF"},
  >        "not_supported_logs": ["0xB0C0", "0x1A", 65535]}}'
  $ vxk 7 1 0
  Get the debug info of modem_stats, mask = 0x0
  RIL[kelvra_common_qmi_req:#]: function entry ------------->
  KELVRA_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
  KELVRA_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
  QMI client inited
  kelvra_extend_qmi_send_sync resp_len:229
  kelvra_extend_qmi_handle_req_cb result:0
  RIL[kelvra_common_qmi_req:#]: function exit <-------------
  UNPK[size:1], version = 3
  UNPK[size:1], modem_stats_feature_enable_status = 1
  UNPK[size:8], version_not_support_num = 18446744073709551615
  UNPK[size:8], modem_stats_cmd_ok_count = 1284
  UNPK[size:8], modem_stats_cmd_fail_count = 3
  RIL[kelvra_common_qmi_req:#]: function entry ------------->
  kelvra_extend_qmi_send_sync resp_len:24
  kelvra_extend_qmi_handle_req_cb result:0
  RIL[kelvra_common_qmi_req:#]: function exit <-------------
  UNPK[size:2], log_num = 3
  ===========================================
  ================= FAIL ====================
  ===========================================
  Diag logs to be upgraded[num:3]:
  log_id[0]: 0xB0C0
  log_id[1]: 0x001A
  log_id[2]: 0xFFFF
  $ vxk-handset log | grep -o 'code=[0-9]*'
  code=20
  code=27
  $ boot '{"debug": {"main": {"g_unpk_version_not_support_num": 1}}}'
  $ answer 7 1 0
  Get the debug info of modem_stats, mask = 0x0
  UNPK[size:1], version = 4
  UNPK[size:1], modem_stats_feature_enable_status = 1
  UNPK[size:8], version_not_support_num = 1
  UNPK[size:8], modem_stats_cmd_ok_count = 1284
  UNPK[size:8], modem_stats_cmd_fail_count = 3
  UNPK[size:2], log_num = 0
  ===========================================
  ================= FAIL ====================
  ===========================================
  Diag logs to be upgraded[num:0]:

Of a list that is not as long as it says there are the logs that came.

  $ boot '{"debug": {"main": {"g_unpk_version_not_support_num": 1}, "log_num": 65535, "not_supported_logs": [1, 2]}}'
  $ answer 7 1 0 | tail -n +7
  UNPK[size:2], log_num = 65535
  ===========================================
  ================= FAIL ====================
  ===========================================
  Diag logs to be upgraded[num:2]:
  log_id[0]: 0x0001
  log_id[1]: 0x0002
  $ boot '{"debug": {"main": {"g_unpk_version_not_support_num": 1}, "log_num": 1, "not_supported_logs": [1, 2, 3]}}'
  $ answer 7 1 0 | tail -2
  Diag logs to be upgraded[num:1]:
  log_id[0]: 0x0001

All counters, for every version of the payload. Versions above 4 have what version 4 has.

  $ changes() { diff --old-line-format='- %L' --new-line-format='+ %L' --unchanged-line-format= "$1" "$2" || true; }
  $ for version in 0 1 2 3 4 5 255; do boot "{\"debug\": {\"version\": $version}}"; answer 7 1 1 > v$version; done
  $ cat v0
  Get the debug info of modem_stats, mask = 0x1
  UNPK[size:1], version = 0
  -------- stats main info start --------
  UNPK[size:1], g_modem_stats_feature_enable_status = 1
  UNPK[size:8], g_unpk_version_not_support_num = 0
  UNPK[size:8], g_modem_stats_cmd_ok_count = 1284
  UNPK[size:8], g_modem_stats_cmd_fail_count = 3
  -------- stats main info end, cnt(26) --------
  -------- stats diag info start --------
  UNPK[size:1], init_state = 1
  UNPK[size:4], listener_event_num = 17
  UNPK[size:1], listener_event_state = 2
  UNPK[size:4], listener_event_call_num = 5203
  UNPK[size:4], listener_event_parse_num = 5201
  UNPK[size:4], listener_log_num = 23
  UNPK[size:1], listener_log_state = 3
  UNPK[size:8], listener_log_call_num = 91377
  UNPK[size:8], listener_log_parse_num = 91370
  UNPK[size:4], poll_update_call_num = 640
  UNPK[size:4], poll_update_parse_num = 639
  -------- stats diag info end, cnt(69) --------
  -------- stats cm info start --------
  UNPK[size:1], init_state = 1
  UNPK[size:1], listener_state = 2
  UNPK[size:4], listener_call_event_call_num = 301
  UNPK[size:4], listener_call_event_parse_num = 300
  UNPK[size:4], listener_subs_event_call_num = 44
  UNPK[size:4], listener_subs_event_parse_num = 43
  UNPK[size:4], listener_ss_event_call_num = 2210
  UNPK[size:4], listener_ss_event_parse_num = 2209
  UNPK[size:4], listener_stats_event_call_num = 98
  UNPK[size:4], listener_stats_event_parse_num = 97
  UNPK[size:4], poll_update_rf_call_num = 640
  UNPK[size:4], poll_update_rf_parse_num = 638
  UNPK[size:4], poll_update_lte_call_num = 512
  UNPK[size:4], poll_update_lte_parse_num = 511
  UNPK[size:4], poll_update_nr5g_call_num = 128
  UNPK[size:4], poll_update_nr5g_parse_num = 127
  -------- stats cm info end, cnt(127) --------
  -------- stats uim info start --------
  UNPK[size:1], init_state = 1
  UNPK[size:1], listener_state = 2
  UNPK[size:4], listener_event_call_num = 9
  UNPK[size:4], listener_event_parse_num = 8
  -------- stats uim info end, cnt(137) --------
  $ changes v0 v1
  - UNPK[size:1], version = 0
  + UNPK[size:1], version = 1
  - -------- stats diag info end, cnt(69) --------
  + UNPK[size:8], listener_event_callback_num = 5210
  + UNPK[size:8], listener_log_callback_num = 91401
  + UNPK[size:4], lte_cell_id_invalid_num = 12
  + UNPK[size:4], nr5g_cell_id_invalid_num = 8
  + -------- stats diag info end, cnt(93) --------
  - -------- stats cm info end, cnt(127) --------
  + -------- stats cm info end, cnt(151) --------
  - -------- stats uim info end, cnt(137) --------
  + -------- stats uim info end, cnt(161) --------
  $ changes v1 v2
  - UNPK[size:1], version = 1
  + UNPK[size:1], version = 2
  - -------- stats main info end, cnt(26) --------
  + UNPK[size:8], kolvo_system_heapi_mem_max_num = 262144
  + UNPK[size:8], kolvo_system_heapi_mem_cur_num = 73728
  + UNPK[size:4], modem_statsi_cmd_q_count = 2
  + UNPK[size:4], modem_statsi_cmd_free_q_count = 62
  + -------- stats main info end, cnt(50) --------
  - -------- stats diag info end, cnt(93) --------
  + UNPK[size:4], event_duration_ms_max = 14
  + UNPK[size:4], log_duration_ms_max = 27
  + UNPK[size:4], do_duration_ms_max = 41
  + UNPK[size:4], debug_call_num = 6
  + UNPK[size:4], debug_parse_num = 5
  + -------- stats diag info end, cnt(137) --------
  - -------- stats cm info end, cnt(151) --------
  + -------- stats cm info end, cnt(195) --------
  - -------- stats uim info end, cnt(161) --------
  + -------- stats uim info end, cnt(205) --------
  $ changes v2 v3
  - UNPK[size:1], version = 2
  + UNPK[size:1], version = 3
  - -------- stats diag info end, cnt(137) --------
  + UNPK[size:4], cust_event_call_num = 73
  + UNPK[size:4], cust_event_parse_num = 71
  + -------- stats diag info end, cnt(145) --------
  - -------- stats cm info end, cnt(195) --------
  + -------- stats cm info end, cnt(203) --------
  - -------- stats uim info end, cnt(205) --------
  + -------- stats uim info end, cnt(213) --------
  $ changes v3 v4
  - UNPK[size:1], version = 3
  + UNPK[size:1], version = 4
  - -------- stats main info end, cnt(50) --------
  + UNPK[size:4], g_kolvo_log_mask = 31
  + UNPK[size:4], g_kolvo_log_stats_mask = 7
  + -------- stats main info end, cnt(58) --------
  - -------- stats diag info end, cnt(145) --------
  + -------- stats diag info end, cnt(153) --------
  - -------- stats cm info end, cnt(203) --------
  + -------- stats cm info end, cnt(211) --------
  - -------- stats uim info end, cnt(213) --------
  + -------- stats uim info end, cnt(221) --------
  $ cat v4
  Get the debug info of modem_stats, mask = 0x1
  UNPK[size:1], version = 4
  -------- stats main info start --------
  UNPK[size:1], g_modem_stats_feature_enable_status = 1
  UNPK[size:8], g_unpk_version_not_support_num = 0
  UNPK[size:8], g_modem_stats_cmd_ok_count = 1284
  UNPK[size:8], g_modem_stats_cmd_fail_count = 3
  UNPK[size:8], kolvo_system_heapi_mem_max_num = 262144
  UNPK[size:8], kolvo_system_heapi_mem_cur_num = 73728
  UNPK[size:4], modem_statsi_cmd_q_count = 2
  UNPK[size:4], modem_statsi_cmd_free_q_count = 62
  UNPK[size:4], g_kolvo_log_mask = 31
  UNPK[size:4], g_kolvo_log_stats_mask = 7
  -------- stats main info end, cnt(58) --------
  -------- stats diag info start --------
  UNPK[size:1], init_state = 1
  UNPK[size:4], listener_event_num = 17
  UNPK[size:1], listener_event_state = 2
  UNPK[size:4], listener_event_call_num = 5203
  UNPK[size:4], listener_event_parse_num = 5201
  UNPK[size:4], listener_log_num = 23
  UNPK[size:1], listener_log_state = 3
  UNPK[size:8], listener_log_call_num = 91377
  UNPK[size:8], listener_log_parse_num = 91370
  UNPK[size:4], poll_update_call_num = 640
  UNPK[size:4], poll_update_parse_num = 639
  UNPK[size:8], listener_event_callback_num = 5210
  UNPK[size:8], listener_log_callback_num = 91401
  UNPK[size:4], lte_cell_id_invalid_num = 12
  UNPK[size:4], nr5g_cell_id_invalid_num = 8
  UNPK[size:4], event_duration_ms_max = 14
  UNPK[size:4], log_duration_ms_max = 27
  UNPK[size:4], do_duration_ms_max = 41
  UNPK[size:4], debug_call_num = 6
  UNPK[size:4], debug_parse_num = 5
  UNPK[size:4], cust_event_call_num = 73
  UNPK[size:4], cust_event_parse_num = 71
  -------- stats diag info end, cnt(153) --------
  -------- stats cm info start --------
  UNPK[size:1], init_state = 1
  UNPK[size:1], listener_state = 2
  UNPK[size:4], listener_call_event_call_num = 301
  UNPK[size:4], listener_call_event_parse_num = 300
  UNPK[size:4], listener_subs_event_call_num = 44
  UNPK[size:4], listener_subs_event_parse_num = 43
  UNPK[size:4], listener_ss_event_call_num = 2210
  UNPK[size:4], listener_ss_event_parse_num = 2209
  UNPK[size:4], listener_stats_event_call_num = 98
  UNPK[size:4], listener_stats_event_parse_num = 97
  UNPK[size:4], poll_update_rf_call_num = 640
  UNPK[size:4], poll_update_rf_parse_num = 638
  UNPK[size:4], poll_update_lte_call_num = 512
  UNPK[size:4], poll_update_lte_parse_num = 511
  UNPK[size:4], poll_update_nr5g_call_num = 128
  UNPK[size:4], poll_update_nr5g_parse_num = 127
  -------- stats cm info end, cnt(211) --------
  -------- stats uim info start --------
  UNPK[size:1], init_state = 1
  UNPK[size:1], listener_state = 2
  UNPK[size:4], listener_event_call_num = 9
  UNPK[size:4], listener_event_parse_num = 8
  -------- stats uim info end, cnt(221) --------
  $ changes v4 v5
  - UNPK[size:1], version = 4
  + UNPK[size:1], version = 5
  $ changes v5 v255
  - UNPK[size:1], version = 5
  + UNPK[size:1], version = 255

Counters at their limits, and the mask as it was given.

  $ boot '{"debug": {"version": 1, "diag": {"listener_log_call_num": "0xFFFFFFFFFFFFFFFF", "listener_event_num": 4294967295},
  >        "uim": {"init_state": 255}}}'
  $ vxk 7 1 5 | grep -E 'mask|listener_(log_call|event)_num|= 255'
  Get the debug info of modem_stats, mask = 0x5
  UNPK[size:4], listener_event_num = 4294967295
  UNPK[size:8], listener_log_call_num = 18446744073709551615
  UNPK[size:1], init_state = 255
  $ vxk 7 1 -1 | head -1
  Get the debug info of modem_stats, mask = 0xffffffff

Payloads that end too early: none, the version alone, one byte less than the verdict needs, what it needs, one byte less than the
counters of version 0 need.

  $ bytes() { printf "$1 %.0s" $(seq "$2"); }
  $ for raw in '' 04 "00 $(bytes 01 24)" "00 01 $(bytes 00 24)" "00 $(bytes 00 135)"; do
  >   boot "{\"debug\": {\"raw\": \"$raw\"}}"; answer 7 1 0; answer 7 1 1
  > done
  Get the debug info of modem_stats, mask = 0x0
  qmi response fail, result = -103, rsp.result = -103
  Get the debug info of modem_stats, mask = 0x1
  qmi response fail, result = -103, rsp.result = -103
  Get the debug info of modem_stats, mask = 0x0
  qmi response fail, result = -103, rsp.result = -103
  Get the debug info of modem_stats, mask = 0x1
  qmi response fail, result = -103, rsp.result = -103
  Get the debug info of modem_stats, mask = 0x0
  qmi response fail, result = -103, rsp.result = -103
  Get the debug info of modem_stats, mask = 0x1
  qmi response fail, result = -103, rsp.result = -103
  Get the debug info of modem_stats, mask = 0x0
  UNPK[size:1], version = 0
  UNPK[size:1], modem_stats_feature_enable_status = 1
  UNPK[size:8], version_not_support_num = 0
  UNPK[size:8], modem_stats_cmd_ok_count = 0
  UNPK[size:8], modem_stats_cmd_fail_count = 0
  ===========================================
  ================ SUCCES ===================
  
  Get the debug info of modem_stats, mask = 0x1
  qmi response fail, result = -103, rsp.result = -103
  Get the debug info of modem_stats, mask = 0x0
  UNPK[size:1], version = 0
  UNPK[size:1], modem_stats_feature_enable_status = 0
  UNPK[size:8], version_not_support_num = 0
  UNPK[size:8], modem_stats_cmd_ok_count = 0
  UNPK[size:8], modem_stats_cmd_fail_count = 0
  ===========================================
  ================ CLOSED ===================
  Get the debug info of modem_stats, mask = 0x1
  qmi response fail, result = -103, rsp.result = -103

Requests that fail: in the channel, in the modem, with an answer that is too short.

  $ boot '{"debug": {"main": {"g_unpk_version_not_support_num": 1}}, "faults": [
  >   {"service": "extension", "code": 20, "action": "result", "result": 5},
  >   {"service": "extension", "code": 20, "action": "close"},
  >   {"service": "extension", "code": 20, "action": "modem_result", "result": -7},
  >   {"service": "extension", "code": 20, "action": "payload", "bytes": "00 00 00 00"},
  >   {"service": "extension", "code": 27, "action": "result", "result": 5},
  >   {"service": "extension", "code": 27, "action": "modem_result", "result": 9},
  >   {"service": "extension", "code": 27, "action": "payload", "bytes": "00 00 00 00 00 00 00 00 1B 00 00 00 01 00 00 00 01"}]}'
  $ for fault in 1 2 3 4; do answer 7 1 1; done
  Get the debug info of modem_stats, mask = 0x1
  5 QMI service framework error. Check client
  kelvra_common_qmi_req fail, REQUEST_ID_COMMON, result = -3, rsp.result = 0
  Get the debug info of modem_stats, mask = 0x1
  send msg sync failed:-2
  kelvra_common_qmi_req fail, REQUEST_ID_COMMON, result = -3, rsp.result = 0
  Get the debug info of modem_stats, mask = 0x1
  qmi response fail, result = -7, rsp.result = -7
  Get the debug info of modem_stats, mask = 0x1
  qmi response fail, result = -103, rsp.result = -103
  $ for fault in 5 6 7; do answer 7 1 0 | tail -n +7; done
  5 QMI service framework error. Check client
  kelvra_common_qmi_req fail, result = -3, rsp_not_support.result = 0
  qmi response fail, result = 9, rsp_not_support.result = 9
  qmi response fail, result = -103, rsp_not_support.result = -103

Command lines that are wrong.

  $ vxk 7 0
  
  note: Too few parameters, Pls refer to the following cmd:
  kelvra_test_modem_stats_parsing_process FAIL
  
  =========== blew: vexkit(vxk) cmd help =======================================================
  7: kelvra modem stats test
     vxk 7 0 print                 /* modem stats diag-parsed test */
                                      print: 0 - print-off for temp info, 1 - print-on for temp info 
     vxk 7 1 type                  /* get the debug info of modem stats */
                                      type: 0 - check, 1 - debuginfo 
  =========== above: vexkit(vxk) cmd help =======================================================
  
  $ vxk 7 1 | head -5
  
  note: Too few parameters, Pls refer to the following cmd:
  kelvra_test_modem_stats_get_debug_info FAIL
  
  =========== blew: vexkit(vxk) cmd help =======================================================
  $ vxk 7 2 1 | head -4
  invalid type = 2
  
  =========== blew: vexkit(vxk) cmd help =======================================================
  7: kelvra modem stats test
  $ vxk 7 | head -4
  
  note: Too few parameters, Pls refer to the following cmd:
  
  =========== blew: vexkit(vxk) cmd help =======================================================
