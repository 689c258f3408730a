Files and NV items of the modem.

  $ . "$TESTDIR/setup.sh"
  $ boot

A file is written and deleted.

  $ vxk 4 5 0 /nv/item_files/demo 1 2 255
  RIL[kelvra_efs_write:#]: kelvra_efs_write, sub_id 0, path_len: 19, buf_len: 3
  RIL[kelvra_efs_write:#]: path_value: /nv/item_files/demo
  RIL[kelvra_efs_write:#]: send_num(3)
  RIL[kelvra_efs_write:#]: left_num(3)
  RIL[kelvra_efs_write:#]: data_len_all = 3, data_len_send = 0, data_len_recv = 0, send_count = 0, data_len_cur = 3
  KELVRA_QMI_NV: qmi_client_get_service_list() returned 0 num_services = 1
  KELVRA_QMI_NV: qmi_client_get_service_list() returned 0 num_entries = 1 num_services = 1
  QMI client inited
  kelvra_extend_qmi_send_sync resp_len:20
  kelvra_extend_qmi_handle_req_cb result:0
  RIL[kelvra_qmi_result_map:#]: kelvra_qmi_result_map, old_result 0, new_result 0
  RIL[kelvra_efs_write:#]: result = 0, rsp.result[>=0 is instance id] = 0
  $ vxk 4 6 0 /nv/item_files/demo | grep delete | folded
  RIL[kelvra_efs_delete:#]: kelvra_efs_delete, sub_id 0, path_len: 19 | RIL[kelvra_efs_delete:#]: path_value: /nv/item_files/demo | RIL[kelvra_efs_delete:#]: result = 0, rsp.result = 0
  $ answer 4 4 0 /nv/item_files/demo | helpless | folded
  kelvra_extend_qmi_send_sync fail, REQUEST_ID_EFS |  | note: Error happen! error_code(-2) | 

Any subscription but 0 is 1. A byte is decimal, and its low 8 bits count.

  $ answer 4 5 2 /a 256 -1 0x10 abc 300 ' 7'
  $ answer 4 5 -1 /b 1
  $ answer 4 5 zero /c 1
  $ efs 1/a; efs 1/b; efs 0/c
   00 ff 00 00 2c 07
   01
   01

A command writes and reads 365 bytes at most.

  $ answer 4 5 0 /long $(seq 4000)
  $ efs 0/long | wc -w
  365
  $ answer 4 4 0 /long | sed -n 2p
  data len(365)
  $ answer 4 4 0 /long | sed -n '3s/^data: //p' | tr A-F a-f | diff - <(efs 0/long | tr -d '\n'; echo)
  $ head -c 1000 /dev/zero > "$VXK_HANDSET_DIR/efs/0/longer"
  $ vxk 4 4 0 /longer | grep -a abort
  RIL[kelvra_efs_read:#]: errro, abort, buf_len <= req.data_len_cur
  $ answer 4 4 0 /longer | head -2
  
  data len(365)
  $ : > "$VXK_HANDSET_DIR/efs/0/empty"
  $ answer 4 4 0 /empty | folded
   | data len(0) | data: 

A path has 1 to 71 characters, of any kind.

  $ path71=/$(printf '%070d' 1)
  $ answer 4 5 0 $path71 5; efs 0$path71
   05
  $ for path in ${path71}2 "" $(printf '/%099999d' 1); do vxk 4 4 0 "$path" | grep -oE 'path_len.*|len inv.*|error_code.*' | xargs; done
  path_len: 72 len invalid error_code(-106)
  path_len: 0 len invalid error_code(-106)
  path_len: 100000 len invalid error_code(-106)
  $ vxk 4 5 0 /%s%n%d 9 | head -2; efs 0/%s%n%d
  RIL[kelvra_efs_write:#]: kelvra_efs_write, sub_id 0, path_len: 7, buf_len: 1
  RIL[kelvra_efs_write:#]: path_value: /%s%n%d
   09
  $ answer 4 4 0 /../../../etc/passwd | grep error
  note: Error happen! error_code(-13)

NV items.

  $ vxk 4 2 1 10 1 2 3 | grep nv_write | folded
  RIL[kelvra_nv_write_ex:#]: kelvra_nv_write_ex, sub_id 1, nv_id: 10 | RIL[kelvra_nv_write_ex:#]: buf_len: 3 | RIL[kelvra_nv_write_ex:#]: result = 0, rsp.result = 0
  $ vxk 4 1 1 10 | grep -v '^K\|^k\|^Q'
  RIL[kelvra_nv_read:#]: kelvra_nv_read, sub_id 1, nv_id: 10
  RIL[kelvra_nv_read:#]: buf_len: 365
  RIL[kelvra_qmi_result_map:#]: kelvra_qmi_result_map, old_result 0, new_result 0
  RIL[kelvra_nv_read:#]: result = 0, rsp.result = 0
  RIL[kelvra_nv_read:#]: rsp.data_len_all = 3
  
  data len(3)
  data:  01 02 03
  $ vxk 4 3 1 10 | grep nv_delete
  RIL[kelvra_nv_delete:#]: kelvra_nv_delete, sub_id 1, nv_id: 10
  RIL[kelvra_nv_delete:#]: result = 0, rsp.result = 0
  $ answer 4 1 1 10 | grep error
  note: Error happen! error_code(-2)
  $ answer 4 2 5 7232 9; answer 4 1 -3 7232
  
  data len(1)
  data:  09
  $ for words in "1 0 7232" "1 0 7233" "2 0 65537 1" "3 0 -1"; do
  >   vxk 4 $words | grep -oE '[a-z_]*: (buf_len.*|nv_id.*|qmi resp.*)|error_code.*' | xargs; done
  : buf_len: 365 : qmi response fail error_code(-2)
  : buf_len: 365 : nv_id is out range(7232) error_code(-109)
  : buf_len: 1 : nv_id is out range(7232) error_code(-109)
  : nv_id is out range(7232) error_code(-109)
  $ answer 4 2 0 100 $(seq 400); answer 4 1 0 100 | cut -c 1-30
  
  data len(365)
  data:  01 02 03 04 05 06 07 08

Too many and too few arguments.

  $ answer 4 4 1 /nv/item_files/x extra | helpless | folded
   | note: need 5 inputs, Pls refer to the following cmd: |  | note: Error happen! error_code(268431370) | 
  $ for command in "1 0" "1 0 1 2" "3 0" "3 0 1 2" "4 0" "6 0" "6 0 /x 1"; do answer 4 $command | sed -n 2p; done | uniq -c
        7 note: need 5 inputs, Pls refer to the following cmd:
  $ for command in "2 0" "2 0 1" "5" "5 0 /x"; do answer 4 $command | sed -n 2p; done | uniq -c
        4 note: Too few inputs, Pls refer to the following cmd:

What the modem and the channel can do to an exchange.

  $ faults='{"service": "extension", "request": 2, "action"'
  $ boot "{\"faults\": [$faults: \"modem_result\", \"result\": 5, \"hits\": 2}, $faults: \"close\"}]}"
  $ answer 4 5 0 /x 1
  $ answer 4 6 0 /x | grep error
  note: Error happen! error_code(5)
  $ answer 4 1 0 1 | sed 4q | folded
  send msg sync failed:-2 | kelvra_extend_qmi_send_sync fail, REQUEST_ID_EFS |  | note: Error happen! error_code(-103)

With its standard streams closed the tool sends its request, and no line goes anywhere else.

  $ boot
  $ command vxk 4 5 0 /x 1 <&- >&- 2>&-; efs 0/x
   01
  $ grep -c -e ' -> ' "$VXK_HANDSET_DIR/log/wire.log"; grep -c '^RIL' "$VXK_HANDSET_DIR/log/system.log"
  1
  0
  [1]

A handset that comes later is found, and what is printed meanwhile is not held back.

  $ halt
  $ export VXK_HANDSET_DIR="$CRAMTMP/h$((handsets + 1))"
  $ command vxk 4 5 0 /late 1 > "$CRAMTMP/late.out" 2> "$CRAMTMP/late.err" &
  $ until [ -s "$CRAMTMP/late.err" ]; do sleep 0.01; done
  $ tail -1 "$CRAMTMP/late.out"
  KELVRA_QMI_NV: qmi_client_get_service_list() returned -2 num_services = 0
  $ boot
  $ wait %1; efs 0/late
   01
  $ tail -1 "$CRAMTMP/late.out" | grep -o 'result = .*'
  result = 0, rsp.result[>=0 is instance id] = 0
  $ sed "s|$VXK_HANDSET_DIR|DIR|g" "$CRAMTMP/late.err"
  vxk: waiting for QMI service 65508: (no handset publishes it in DIR\. Start one with: vxk-handset serve --dir DIR|nothing publishes it on the QRTR bus) (re)
