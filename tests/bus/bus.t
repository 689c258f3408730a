What there is on the modem bus alone. The output of the tool's commands is the other transcripts'.

  $ . "$TESTDIR/../e2e/setup.sh"
  $ published() { [ "$(qrtr-lookup | grep -c "^ *$1 ")" -eq "$2" ]; }

Each service is there once for each handset, under the lowest free instance.

  $ boot
  $ services() { qrtr-lookup | sed -E 's/^((  +[0-9]+){4}) .*/\1/; s/[0-9]+$/PORT/' | sort -n; }
  $ vxk-handset serve --dir second --bus qrtr > second.out 2> /dev/null & second=$!
  $ eventually grep -q ready second.out
  $ services
    Service Version Instance Node  Port
         11       1        0    PORT
         11       1        1    PORT
         17       1        0    PORT
         17       1        1    PORT
      65508       1        0    PORT
      65508       1        1    PORT
      65509       1        0    PORT
      65509       1        1    PORT

The lowest instance is taken, and the other one when that is gone. An instance that was given up is the next handset's.

  $ answer 4 5 0 /who 1 | tail -1
  $ halt
  $ answer 4 4 0 /who | grep note; answer 4 5 0 /who 2 | tail -1
  note: Error happen! error_code(-2)
  $ boot; services | grep 65508
      65508       1        0    PORT
      65508       1        1    PORT
  $ answer 4 4 0 /who | grep -E "^(data:|note)"
  note: Error happen! error_code(-2)
  $ VXK_MODEM=qrtr:1 answer 4 4 0 /who | grep -E "^(data:|note)"; VXK_MODEM=qrtr:7 timeout 5 vxk 4 4 0 /who | tail -1; echo ${PIPESTATUS[0]}
  note: Error happen! error_code(-2)
  vxk: waiting for QMI service 65508: nothing publishes it on node 7 of the QRTR bus
  KELVRA_QMI_NV: qmi_client_get_service_list() returned -2 num_services = 0
  124
  $ kill $second; wait $second

A service that goes away under a command, by itself, with its handset, and because it closes the connection of another client.

  $ boot '{"faults": [{"service": "extension", "action": "withdraw", "ms": 8000}]}'
  $ vxk 4 1 0 10 | grep -a fail; published 65508 0 && vxk 4 1 0 10 2> waiting | grep -a fail
  send msg sync failed:-2
  RIL[kelvra_nv_read:#]: kelvra_extend_qmi_send_sync fail
  kelvra_extend_qmi_send_sync fail, REQUEST_ID_EFS
  RIL[kelvra_nv_read:#]: qmi response fail
  kelvra_extend_qmi_send_sync fail, REQUEST_ID_EFS
  $ boot '{"faults": [{"service": "uim", "message": 47, "action": "no_answer"}]}'
  $ command vxk 5 10 4 0 > dying.out & dying=$!
  $ eventually grep -q none "$VXK_HANDSET_DIR/log/wire.log"; crash; wait $dying; echo "ended with $?"
  ended with 0
  $ published 11 0 && boot && vxk 5 10 4 0 | tail -1
  PRESENT,PRESENT
  $ boot '{"faults": [{"service": "uim", "message": 47, "action": "no_answer"},
  >   {"service": "uim", "message": 47, "action": "close"}]}'
  $ command vxk 5 10 4 0 > other.out & other=$!
  $ eventually grep -q none "$VXK_HANDSET_DIR/log/wire.log"; vxk 5 10 4 0 > /dev/null; wait $other; echo "ended with $?"
  ended with 0
  $ grep -oE 'qmi/uim .*(connected|closed|withdrawn|published)' "$VXK_HANDSET_DIR/log/wire.log"
  qmi/uim - -- published
  qmi/uim 1 -- connected
  qmi/uim 2 -- connected
  qmi/uim 2 -- closed
  qmi/uim 1 -- closed

Packets that are none are dropped, as in the folder.

  $ boot
  $ /usr/bin/python3 -c 'if True:
  >     import socket, sys
  >     client = socket.socket(socket.AF_QIPCRTR, socket.SOCK_DGRAM)
  >     for packet in b"", bytes(6), bytes([0, 1, 0, 2, 0, 9, 0, 1]):
  >         client.sendto(packet, (1, int(sys.argv[1])))' "$(qrtr-lookup | awk '$1 == 65508 { print $5 }')"
  $ grep -c malformed "$VXK_HANDSET_DIR/log/wire.log"; vxk 4 1 0 10 | grep -o 'result = .*'
  3
  result = 0, rsp.result = -2

Diag goes through the router, which has no DCI; without a router nothing is sent.

  $ vxk 5 0 0 0 3000 0x00 | grep -E 'response from|data hex show, len.5'
  RIL[kelvra_diag_cmd_response_check:#]: ================ response from 0[MSM], len = 55 ========================
  RIL[kelvra_print_data_with_hex:#]: data hex show, len(55), data: 00 4D 61 72 20 31 34 20 32 30 32 34 30 39 3A 32 36 3A 35 33 4D 61 72 20 31 35 20 32 30 32 34 31 32 3A 30 30 3A 30 30 76 78 6B 2E 73 69 6D 20 2A 06 A5 00 01 02 01 00
  $ vxk 5 0 1 0 3000 0x00 | grep -E 'fail|error'
  vxk: the open diag router has no DCI road; the callback road is mode 0
  kelvra_diag_cmd_send fail
  note: Error happen! error_code(1)
  $ command unshare --net vxk 5 0 0 0 3000 0x00 2>&1 | masked_log | grep -E 'fail|error'
  RIL[kelvra_diag_init_with_result:#]: LSM init failed
  kelvra_diag_cmd_send fail
  note: Error happen! error_code(1)
