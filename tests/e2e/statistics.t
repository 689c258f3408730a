Measurements over the statistics service, and the SAR index.

  $ . "$TESTDIR/setup.sh"
  $ boot

Every measurement, of both subscriptions. Antenna information is that of subscription 0.

  $ for opt in 0 1 2 3 4 5 6 7 8 9 10 11 12 20 21 30; do vxk 9 $opt 0; vxk 9 $opt 1; done > all; grep -c '^Success' all; grep 'DATA\|INFO' all | sed 's/^ASDIV DATA: //' | paste -d '|' - -
  32
  earfcn: 1300, pci: 101, rx_valid: 15, rsrp_rx0: -85.50, rsrq_rx0: -9.25, rssi_rx0: -56.50, snr_rx0: 21.50, rsrp_rx1: -87.25, rsrq_rx1: -10.00, rssi_rx1: -58.25, snr_rx1: 19.75, rsrp_rx2: -91.50, rsrq_rx2: -11.75, rssi_rx2: -62.75, snr_rx2: 16.50, rsrp_rx3: -92.25, rsrq_rx3: -12.50, rssi_rx3: -63.50, snr_rx3: 15.25|earfcn: 1348, pci: 118, rx_valid: 15, rsrp_rx0: -86.25, rsrq_rx0: -9.50, rssi_rx0: -57.25, snr_rx0: 21.00, rsrp_rx1: -88.00, rsrq_rx1: -10.25, rssi_rx1: -59.00, snr_rx1: 19.25, rsrp_rx2: -92.25, rsrq_rx2: -12.00, rssi_rx2: -63.50, snr_rx2: 16.00, rsrp_rx3: -93.00, rsrq_rx3: -12.75, rssi_rx3: -64.25, snr_rx3: 14.75
  earfcn: 1396, pci: 135, rx_valid: 15, rsrp_rx0: -87.00, rsrq_rx0: -9.75, rssi_rx0: -58.00, snr_rx0: 20.50, rsrp_rx1: -88.75, rsrq_rx1: -10.50, rssi_rx1: -59.75, snr_rx1: 18.75, rsrp_rx2: -93.00, rsrq_rx2: -12.25, rssi_rx2: -64.25, snr_rx2: 15.50, rsrp_rx3: -93.75, rsrq_rx3: -13.00, rssi_rx3: -65.00, snr_rx3: 14.25|earfcn: 1444, pci: 152, rx_valid: 15, rsrp_rx0: -87.75, rsrq_rx0: -10.00, rssi_rx0: -58.75, snr_rx0: 20.00, rsrp_rx1: -89.50, rsrq_rx1: -10.75, rssi_rx1: -60.50, snr_rx1: 18.25, rsrp_rx2: -93.75, rsrq_rx2: -12.50, rssi_rx2: -65.00, snr_rx2: 15.00, rsrp_rx3: -94.50, rsrq_rx3: -13.25, rssi_rx3: -65.75, snr_rx3: 13.75
  earfcn: 1492, pci: 169, rx_valid: 15, rsrp_rx0: -88.50, rsrq_rx0: -10.25, rssi_rx0: -59.50, snr_rx0: 19.50, rsrp_rx1: -90.25, rsrq_rx1: -11.00, rssi_rx1: -61.25, snr_rx1: 17.75, rsrp_rx2: -94.50, rsrq_rx2: -12.75, rssi_rx2: -65.75, snr_rx2: 14.50, rsrp_rx3: -95.25, rsrq_rx3: -13.50, rssi_rx3: -66.50, snr_rx3: 13.25|earfcn: 1540, pci: 186, rx_valid: 15, rsrp_rx0: -89.25, rsrq_rx0: -10.50, rssi_rx0: -60.25, snr_rx0: 19.00, rsrp_rx1: -91.00, rsrq_rx1: -11.25, rssi_rx1: -62.00, snr_rx1: 17.25, rsrp_rx2: -95.25, rsrq_rx2: -13.00, rssi_rx2: -66.50, snr_rx2: 14.00, rsrp_rx3: -96.00, rsrq_rx3: -13.75, rssi_rx3: -67.25, snr_rx3: 12.75
  earfcn: 1588, pci: 203, rx_valid: 15, rsrp_rx0: -90.00, rsrq_rx0: -10.75, rssi_rx0: -61.00, snr_rx0: 18.50, rsrp_rx1: -91.75, rsrq_rx1: -11.50, rssi_rx1: -62.75, snr_rx1: 16.75, rsrp_rx2: -96.00, rsrq_rx2: -13.25, rssi_rx2: -67.25, snr_rx2: 13.50, rsrp_rx3: -96.75, rsrq_rx3: -14.00, rssi_rx3: -68.00, snr_rx3: 12.25|earfcn: 1636, pci: 220, rx_valid: 15, rsrp_rx0: -90.75, rsrq_rx0: -11.00, rssi_rx0: -61.75, snr_rx0: 18.00, rsrp_rx1: -92.50, rsrq_rx1: -11.75, rssi_rx1: -63.50, snr_rx1: 16.25, rsrp_rx2: -96.75, rsrq_rx2: -13.50, rssi_rx2: -68.00, snr_rx2: 13.00, rsrp_rx3: -97.50, rsrq_rx3: -14.25, rssi_rx3: -68.75, snr_rx3: 11.75
  earfcn: 1684, pci: 237, rx_valid: 15, rsrp_rx0: -91.50, rsrq_rx0: -11.25, rssi_rx0: -62.50, snr_rx0: 17.50, rsrp_rx1: -93.25, rsrq_rx1: -12.00, rssi_rx1: -64.25, snr_rx1: 15.75, rsrp_rx2: -97.50, rsrq_rx2: -13.75, rssi_rx2: -68.75, snr_rx2: 12.50, rsrp_rx3: -98.25, rsrq_rx3: -14.50, rssi_rx3: -69.50, snr_rx3: 11.25|earfcn: 1732, pci: 254, rx_valid: 15, rsrp_rx0: -92.25, rsrq_rx0: -11.50, rssi_rx0: -63.25, snr_rx0: 17.00, rsrp_rx1: -94.00, rsrq_rx1: -12.25, rssi_rx1: -65.00, snr_rx1: 15.25, rsrp_rx2: -98.25, rsrq_rx2: -14.00, rssi_rx2: -69.50, snr_rx2: 12.00, rsrp_rx3: -99.00, rsrq_rx3: -14.75, rssi_rx3: -70.25, snr_rx3: 10.75
  earfcn: 1780, pci: 271, rx_valid: 15, rsrp_rx0: -93.00, rsrq_rx0: -11.75, rssi_rx0: -64.00, snr_rx0: 16.50, rsrp_rx1: -94.75, rsrq_rx1: -12.50, rssi_rx1: -65.75, snr_rx1: 14.75, rsrp_rx2: -99.00, rsrq_rx2: -14.25, rssi_rx2: -70.25, snr_rx2: 11.50, rsrp_rx3: -99.75, rsrq_rx3: -15.00, rssi_rx3: -71.00, snr_rx3: 10.25|earfcn: 1828, pci: 288, rx_valid: 15, rsrp_rx0: -93.75, rsrq_rx0: -12.00, rssi_rx0: -64.75, snr_rx0: 16.00, rsrp_rx1: -95.50, rsrq_rx1: -12.75, rssi_rx1: -66.50, snr_rx1: 14.25, rsrp_rx2: -99.75, rsrq_rx2: -14.50, rssi_rx2: -71.00, snr_rx2: 11.00, rsrp_rx3: -100.50, rsrq_rx3: -15.25, rssi_rx3: -71.75, snr_rx3: 9.75
  earfcn: 1876, pci: 305, rx_valid: 15, rsrp_rx0: -94.50, rsrq_rx0: -12.25, rssi_rx0: -65.50, snr_rx0: 15.50, rsrp_rx1: -96.25, rsrq_rx1: -13.00, rssi_rx1: -67.25, snr_rx1: 13.75, rsrp_rx2: -100.50, rsrq_rx2: -14.75, rssi_rx2: -71.75, snr_rx2: 10.50, rsrp_rx3: -101.25, rsrq_rx3: -15.50, rssi_rx3: -72.50, snr_rx3: 9.25|earfcn: 1924, pci: 322, rx_valid: 15, rsrp_rx0: -95.25, rsrq_rx0: -12.50, rssi_rx0: -66.25, snr_rx0: 15.00, rsrp_rx1: -97.00, rsrq_rx1: -13.25, rssi_rx1: -68.00, snr_rx1: 13.25, rsrp_rx2: -101.25, rsrq_rx2: -15.00, rssi_rx2: -72.50, snr_rx2: 10.00, rsrp_rx3: -102.00, rsrq_rx3: -15.75, rssi_rx3: -73.25, snr_rx3: 8.75
  rssi_rx0: -58.25, rssi_rx1: -59.50, rssi_rx2: -63.75, rssi_rx3: -64.50|rssi_rx0: -60.75, rssi_rx1: -62.00, rssi_rx2: -66.25, rssi_rx3: -67.00
  snr_rx0: 24.50, snr_rx1: 23.25, snr_rx2: 20.75, snr_rx3: 20.00|snr_rx0: 23.00, snr_rx1: 21.75, snr_rx2: 19.25, snr_rx3: 18.50
  ant_rx_0_old = 0, ant_rx_0_new = 4, ant_rx_1_old = 1, ant_rx_1_new = 5, ant_rx_2_old = 2, ant_rx_2_new = 6, ant_rx_3_old = 3, ant_rx_3_new = 7, ant_tx_0_old = 8, ant_tx_0_new = 10, ant_tx_1_old = 9, ant_tx_1_new = 11|ant_rx_0_old = 1, ant_rx_0_new = 5, ant_rx_1_old = 2, ant_rx_1_new = 6, ant_rx_2_old = 3, ant_rx_2_new = 7, ant_rx_3_old = 4, ant_rx_3_new = 8, ant_tx_0_old = 9, ant_tx_0_new = 11, ant_tx_1_old = 10, ant_tx_1_new = 12
  rsrp_rx0: -84.50, rsrp_rx1: -85.25, rsrp_rx2: -89.75, rsrp_rx3: -91.00, rsrq: -10.75|rsrp_rx0: -85.75, rsrp_rx1: -86.50, rsrp_rx2: -91.00, rsrp_rx3: -92.25, rsrq: -11.00
  rsrp_rx0: -87.00, rsrp_rx1: -87.75, rsrp_rx2: -92.25, rsrp_rx3: -93.50, rsrq: -11.25|rsrp_rx0: -88.25, rsrp_rx1: -89.00, rsrp_rx2: -93.50, rsrp_rx3: -94.75, rsrq: -11.50
  rsrp_rx0: -89.50, rsrp_rx1: -90.25, rsrp_rx2: -94.75, rsrp_rx3: -96.00, rsrq: -11.75|rsrp_rx0: -90.75, rsrp_rx1: -91.50, rsrp_rx2: -96.00, rsrp_rx3: -97.25, rsrq: -12.00
  rx_agc_0: -71.25, rx_agc_1: -73.50|rx_agc_0: -73.00, rx_agc_1: -75.25
  rx_prx: -63.50, rx_drx: -66.25|rx_prx: -65.75, rx_drx: -68.50
  ANT INFO: ant_num: 4, ant_path: 258, sig_path: 515, old_config: 1, new_config: 2|ANT INFO: ant_num: 4, ant_path: 258, sig_path: 515, old_config: 1, new_config: 2

What the modem does not have.

  $ for words in "-1 1" "30 2" "7 -1" 7; do vxk 9 $words | helpless | folded; done
  opt = -1, sub = 1, g_kolvo_client_id = 0 | kelvra_test_qmi_modem_stats_hdl: Unknown opt(-1), sub(1)
  opt = 30, sub = 2, g_kolvo_client_id = 0 | Success to get data, number = 1, sub = 0, ret id_num = 1, id = 100, data_len = 8 | ANT INFO: ant_num: 4, ant_path: 258, sig_path: 515, old_config: 1, new_config: 2
  opt = 7, sub = -1, g_kolvo_client_id = 0 | modem_api_get_stats_parameter, sub(-1) is invalid
   | note: Too few parameters, Pls refer to the following cmd: | 

Every session is a connection of its own: the feature, then one value. Nothing is asked of a subscription that no modem has.

  $ vxk-handset show | grep -A2 '^statistics' | folded
  statistics |   values       32 |   indications  0
  $ vxk-handset log | grep -c 'qmi/statistics .* request feature'
  35
  $ vxk-handset log | grep -c 'qmi/statistics .* request values'
  33
  $ vxk-handset log | grep -F 'qmi/statistics 14 ' | sed -E 's/^[0-9-]+ [0-9:.]+ //'
  qmi/statistics 14 -- connected (pid=\d+ command="[^"]*vxk[^ ]* 9 6 1"|address="1:\d+") (re)
  qmi/statistics 14 -> request feature(3) #1 value=2 first=1 second=0
  qmi/statistics 14 <- response feature(3) #1 result=0 error=0
  qmi/statistics 14 -> request values(519) #2 sub=1 number=1 entries=1 entries.0.sub=0 entries.0.type=0 entries.0.id=108 entries.0.value=[]
  qmi/statistics 14 <- response values(519) #2 result=0 error=0 entries=1 entries.0.sub=1 entries.0.type=0 entries.0.id=108 entries.0.version=1 entries.0.version_ssmr=2 entries.0.earfcn=1924 entries.0.pci=322 entries.0.is_srv_cell=1 entries.0.rx_valid=15 entries.0.rsrp_rx0=-95.25 entries.0.rsrq_rx0=-12.5 entries.0.rssi_rx0=-66.25 entries.0.snr_rx0=15 entries.0.rsrp_rx1=-97 entries.0.rsrq_rx1=-13.25 entries.0.rssi_rx1=-68 entries.0.snr_rx1=13.25 entries.0.rsrp_rx2=-101.25 entries.0.rsrq_rx2=-15 entries.0.rssi_rx2=-72.5 entries.0.snr_rx2=10 entries.0.rsrp_rx3=-102 entries.0.rsrq_rx3=-15.75 entries.0.rssi_rx3=-73.25 entries.0.snr_rx3=8.75 entries.0.value=[01 02 84 07 00 00 42 01 01 0F 00 00 80 BE C2 00 00 48 C1 00 80 84 C2 00 00 70 41 00 00 C2 C2 00 00 54 C1 00 00 88 C2 00 00 54 41 00 80 CA C2 00 00 70 C1 00 00 91 C2 00 00 20 41 00 00 CC C2 00 00 7C C1 00 80 92 C2 00 00 0C 41]
  qmi/statistics 14 -- closed
  $ vxk-handset log | grep -F 'qmi/statistics 35 ' | grep -c values
  0
  [1]

Values that the modem would not send: not a number, infinite, negative, longer than the record, cut in a field or
between two.

  $ boot '{"statistics": {"values": [
  >   {"id": 94, "rssi0": "nan", "rssi1": "inf", "rssi2": "-inf", "rssi3": -3e38},
  >   {"id": 112, "snr0": 0.004, "snr1": -0.004, "snr2": 0.125, "snr3": 1e10},
  >   {"id": 82, "earfcn": 4294967295, "pci": 65535, "rx_valid": 65535, "length": 700},
  >   {"id": 103, "length": 1}, {"id": 104, "length": 5}, {"id": 105, "length": 74}, {"id": 106, "length": 75},
  >   {"id": 113, "length": 3}, {"id": 135, "length": 4}, {"id": 110, "raw": "01 00 00 80 3F 00 00"},
  >   {"id": 6, "length": 23}, {"id": 111, "length": 5}, {"id": 100, "length": 7}]}}'
  $ for opt in 7 8 0 1 2 3 4 9 10 20 11 21 30; do vxk 9 $opt 0 | tail -1; done
  ASDIV DATA: rssi_rx0: nan, rssi_rx1: inf, rssi_rx2: -inf, rssi_rx3: -300000000549775575777803994281145270272.00
  ASDIV DATA: snr_rx0: 0.00, snr_rx1: -0.00, snr_rx2: 0.12, snr_rx3: 10000000000.00
  ASDIV DATA: earfcn: -1, pci: 65535, rx_valid: 65535, rsrp_rx0: -85.50, rsrq_rx0: -9.25, rssi_rx0: -56.50, snr_rx0: 21.50, rsrp_rx1: -87.25, rsrq_rx1: -10.00, rssi_rx1: -58.25, snr_rx1: 19.75, rsrp_rx2: -91.50, rsrq_rx2: -11.75, rssi_rx2: -62.75, snr_rx2: 16.50, rsrp_rx3: -92.25, rsrq_rx3: -12.50, rssi_rx3: -63.50, snr_rx3: 15.25
  g_kolvo_data_left(0) is not enough for version_ssmr, id(0x67)
  g_kolvo_data_left(3) is not enough for earfcn, id(0x68)
  g_kolvo_data_left(3) is not enough for snr_rx3, id(0x69)
  ASDIV DATA: earfcn: 1684, pci: 237, rx_valid: 15, rsrp_rx0: -91.50, rsrq_rx0: -11.25, rssi_rx0: -62.50, snr_rx0: 17.50, rsrp_rx1: -93.25, rsrq_rx1: -12.00, rssi_rx1: -64.25, snr_rx1: 15.75, rsrp_rx2: -97.50, rsrq_rx2: -13.75, rssi_rx2: -68.75, snr_rx2: 12.50, rsrp_rx3: -98.25, rsrq_rx3: -14.50, rssi_rx3: -69.50, snr_rx3: 11.25
  g_kolvo_data_left(3) is not enough for version, id(0x71)
  g_kolvo_data_left(0) is not enough for rsrp_rx0, id(0x87)
  g_kolvo_data_left(2) is not enough for rx_agc_1, id(0x6e)
  g_kolvo_data_left(3) is not enough for rsrq, id(0x6)
  g_kolvo_data_left(0) is not enough for rx_drx, id(0x6f)
  g_kolvo_data_left(0) is not enough for new_config, id(0x64)

Answers that are not what was asked for.

  $ boot '{"statistics": {"values": [
  >   {"id": 82, "entries": 0}, {"id": 103, "entries": 2}, {"id": 104, "entries": 12}, {"id": 105, "answer_id": 104},
  >   {"id": 106, "answer_sub": 1}, {"id": 107, "length": 0}, {"id": 108, "length": 701},
  >   {"id": 94, "answer_length": 21}, {"id": 112, "answer_length": 19}, {"id": 113, "answer_id": 4294967295}]}}'
  $ for opt in 0 1 2 3 4 5 6 7 8 9; do vxk 9 $opt 0 | tail -n +2; done
  Fail to get data, empty, number = 1, sub = 0, ret id_num = 0, id = 82
  Fail to get data, id num error, number = 1, sub = 0, ret id_num = 2, id = 103
  Fail to get data, id num error, number = 1, sub = 0, ret id_num = 10, id = 104
  Fail to get data, ret_id(104) is invalid, number = 1, sub = 0, ret id_num = 1, id = 105
  Fail to get data, ret_sub(1) is invalid, number = 1, sub = 0, ret id_num = 1, id = 106
  Fail to get data, data_len(0) is invalid, should be in (0, 700], number = 1, sub = 0, ret id_num = 1, id = 107
  Fail to get data, data_len(701) is invalid, should be in (0, 700], number = 1, sub = 0, ret id_num = 1, id = 108
  Fail to get data fail, number = 1, ret = 12, sub = 0, id = 94
  Success to get data, number = 1, sub = 0, ret id_num = 1, id = 112, data_len = 19
  g_kolvo_data_left(3) is not enough for snr3, id(0x70)
  Fail to get data, ret_id(-1) is invalid, number = 1, sub = 0, ret id_num = 1, id = 113

When the service is gone it is looked for again after a second.

  $ boot '{"faults": [{"service": "statistics", "message": 3, "action": "withdraw", "ms": 2500}]}'
  $ vxk 9 21 1 | folded
  opt = 21, sub = 1, g_kolvo_client_id = 0 | Fail to get data fail, number = 1, ret = 1, sub = 1, id = 111
  $ grep -o 'KOLVO: vs_client_service_down_event: .*' "$VXK_HANDSET_DIR/log/system.log"
  KOLVO: vs_client_service_down_event: service down with error -2
  $ vxk 9 21 1
  vxk: no QMI service 65509: (no handset publishes it in|nothing publishes it on the QRTR bus).* (re)
  opt = 21, sub = 1, g_kolvo_client_id = 0
  Success to get data, number = 1, sub = 1, ret id_num = 1, id = 111, data_len = 9
  ASDIV DATA: rx_prx: -65.75, rx_drx: -68.50
  $ grep -oE 'KOLVO: vs_client_init_client_handles: Trying.* try # 1 .*' "$VXK_HANDSET_DIR/log/system.log"
  KOLVO: vs_client_init_client_handles: Trying qmi_client_init_instance() try # 1 port[65535]

The SAR index. The error of an answer is not looked at, and an index that is not valid is still printed.

  $ boot
  $ vxk 5 5
  RIL[kelvra_get_sar_dsi:#]: function entry ------------->
  RIL[kelvra_get_sar_dsi:#]: dsi vailid = 1 , dsi value = 3
  RIL[kelvra_get_sar_dsi:#]: function exit <-------------
  SAR DSI: 3
  $ boot '{"sar": {"dsi": 7, "valid": false}}'
  $ answer 5 5
  SAR DSI: 0
  $ boot '{"sar": {"dsi": 4294967295}, "faults": [
  >   {"service": "sar", "action": "result", "result": 3},
  >   {"service": "sar", "action": "close"},
  >   {"service": "sar", "skip": 1, "action": "withdraw", "ms": 60000}]}'
  $ for fault in 1 2 none 3 gone; do vxk 5 5 | grep -v function; done
  RIL[kelvra_get_sar_dsi:#]: dsi vailid = 0 , dsi value = 0
  SAR DSI: 0
  RIL[kelvra_get_sar_dsi:#]: qmi_client_send_msg_sync failed, qmi_client_error = -2
  SAR DSI: -1
  RIL[kelvra_get_sar_dsi:#]: dsi vailid = 1 , dsi value = -1
  SAR DSI: -1
  RIL[kelvra_get_sar_dsi:#]: qmi_client_send_msg_sync failed, qmi_client_error = -2
  SAR DSI: -1
  vxk: no QMI service 17: (no handset publishes it in|nothing publishes it on the QRTR bus).* (re)
  RIL[kelvra_get_sar_dsi:#]: qmi_client_init_instance failed, qmi_client_error = -3
  SAR DSI: -1
  $ vxk-handset log | grep -o 'response get_dsi.* dsi=4294967295'
  response get_dsi(2) #1 result=0 error=0 dsi=4294967295

What the service says unasked changes no measurement.

  $ boot '{"statistics": {"indications": [
  >   {"on": "connection", "message": "state", "state": 3},
  >   {"message": "status", "value": 5, "first": 2, "second": 0},
  >   {"message": "report", "value": 6, "first": [{"id": 1, "first": 2, "second": 3, "value": "04 05"}], "second": [{}], "last": 7},
  >   {"message": "bytes", "value": 8, "bytes": "09 0A", "first": 11, "second": 12},
  >   {"message": "raw", "number": 516, "tlvs": "01 04 00 08 00 00 00 02 02 00 05 01"},
  >   {"message": "raw", "number": 99, "tlvs": "01 00 00"}]},
  >   "faults": [{"service": "statistics", "message": 519, "action": "late", "ms": 2000}]}'
  $ vxk 9 21 0 | tail -1
  ASDIV DATA: rx_prx: -63.50, rx_drx: -66.25
  $ vxk-handset log | grep -F 'qmi/statistics 1 <- indication' | sed -E 's/^[0-9-]+ [0-9:.]+ //'
  qmi/statistics 1 <- indication state(1537) #0 state=3
  qmi/statistics 1 <- indication status(4) #0 value=5 first=2 second=0
  qmi/statistics 1 <- indication report(515) #0 value=6 first=1 first.0.id=1 first.0.first=2 first.0.second=3 first.0.value=[04 05] second=1 second.0.id=0 second.0.first=0 second.0.second=0 second.0.value=[] last=7
  qmi/statistics 1 <- indication bytes(516) #0 value=8 bytes=[09 0A] first=11 second=12
  qmi/statistics 1 <- indication bytes(516) #0 value=8 0x02=[05 01]
  qmi/statistics 1 <- indication message(99) #0 0x01=[]
  $ grep -oE 'KOLVO: vs_client_(unsol_ind_cb: [^f]|ind).*' "$VXK_HANDSET_DIR/log/system.log"
  KOLVO: vs_client_ind_hdlr: Handling indication msg 0x601
  KOLVO: vs_client_ind_hdlr: Handling indication msg 0x4
  KOLVO: vs_client_ind_hdlr: Handling indication msg 0x203
  KOLVO: vs_client_ind_hdlr: Handling indication msg 0x204
  KOLVO: vs_client_unsol_ind_cb: Indication decode failed for msg 0x204 with error -1
  KOLVO: vs_client_unsol_ind_cb: decoded_payload_len(0) can not <= 0
