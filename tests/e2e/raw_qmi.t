Any bytes to the extension service.

  $ . "$TESTDIR/setup.sh"
  $ boot

  $ vxk 6 3 0x01 2
  kv_qmi req data(qmi_id: 3, len: 2[max: 500]):
  0x01 0x02 KELVRA_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
  KELVRA_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
  QMI client inited
  kelvra_extend_qmi_send_sync resp_len:0
  kelvra_extend_qmi_handle_req_cb result:0
  qmi_id = 3, result = 0
  kv_qmi rsp data(qmi_id: 3, len: 0[max: 500]):
  
  $ vxk-handset log --dir "$VXK_HANDSET_DIR" | sed -n 's/.*-> request //p'
  send(2) #1 id=3 data_len=2 data=[01 02]

One byte, and bytes whose low 8 bits count.

  $ vxk 6 0 -1 | head -2
  kv_qmi req data(qmi_id: 0, len: 1[max: 500]):
  0xFF KELVRA_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
  $ vxk 6 1 0X1fF 256 x g | head -2
  kv_qmi req data(qmi_id: 1, len: 4[max: 500]):
  0xFF 0x00 0x00 0x00 KELVRA_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1

A message that is out of range, and one whose number is cut to 32 bits.

  $ for words in "65536 1" "4294967296 1"; do vxk 6 $words | helpless | sed -n 2p; done
  note: the second parameters(qmi_id) should be >= 0 && < 6
  0x01 KELVRA_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1

Numbers that are fatal, with what was printed before them.

  $ command vxk 6 1 7 0x80000001 2>&1 | aborted; echo ${PIPESTATUS[0]}
  kv_qmi req data(qmi_id: 1, len: 2[max: 500]):
  0x07 vxk: fatal: hexadecimal number 0x80000001 overflows 32 bits
  134
  $ command vxk 6 1 0x$(printf '%051d' 0) 2>&1 | aborted; echo ${PIPESTATUS[0]}
  kv_qmi req data(qmi_id: 1, len: 1[max: 500]):
  vxk: fatal: hexadecimal number of 51 digits, at most 50 are read
  134

4,000 bytes: 500 are sent.

  $ vxk 6 5 $(seq 4000) | head -2 | cut -c 1-60
  kv_qmi req data(qmi_id: 5, len: 4000[max: 500]):
  0x01 0x02 0x03 0x04 0x05 0x06 0x07 0x08 0x09 0x0A 0x0B 0x0C 
  $ vxk-handset log --dir "$VXK_HANDSET_DIR" | grep -a 'request' | tail -1 | grep -o 'data_len=[0-9]*'
  data_len=500
