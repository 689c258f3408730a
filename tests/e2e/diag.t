Diag commands over both roads.

  $ . "$TESTDIR/setup.sh"

What the tick counter prints depends on when the command ends, and it is not waited for.

  $ unchecked() { grep -vE 'function e|_check:|with_hex:'; }
  $ certain() { vxk "$@" | grep -v _wait_thread_proc; }

The road's own messages and the outcome in one line, without what the checks and callbacks say.

  $ steps() {
  >     vxk "$@" | sed '/error_code/q; s/^RIL.*_mode:#]: //' | grep -vE 'RIL|function e|^$|^diag cmd|^0x|with result$|reply_len' | folded
  > }

An op that is never answered is given up after 5 seconds; this one is waited for at the end.

  $ cat > mute.json <<E
  > {"faults": [{"road": "diag", "message": "send", "action": "no_answer"}]}
  > E
  $ { time vxk-handset run --profile mute.json -- vxk 5 0 0 0 3000 0; } > mute.out 2> mute.time &
  $ mute=$!

Both roads with a result. The modem takes a while, so that the road's messages come before the response's.

  $ boot '{"diag": {"delay_ms": 1500}}'
  $ certain 5 0 0 0 3000 0x00
  RIL[kelvra_cmn_diag_cmd_send:#]: function entry ------------->
  diag cmd:
  0x00 
  callback mode with result
  RIL[kelvra_diag_cmd_send_with_result_by_callback_mode:#]: function entry ------------->
  RIL[kelvra_diag_comand_input_check:#]: function entry ------------->
  RIL[kelvra_diag_comand_input_check:#]: diag_comand, data_len = 1
  RIL[kelvra_print_data_with_hex:#]: function entry ------------->
  RIL[kelvra_print_data_with_hex:#]: data hex show, len(1), data: 00
  RIL[kelvra_print_data_with_hex:#]: function exit <-------------
  RIL[kelvra_diag_comand_input_check:#]: function exit <-------------
  RIL[kelvra_diag_comand_output_check:#]: function entry ------------->
  RIL[kelvra_diag_comand_output_check:#]: reply_len = 10240
  RIL[kelvra_diag_comand_output_check:#]: function exit <-------------
  RIL[kelvra_diag_init_with_result:#]: function entry ------------->
  RIL[kelvra_diag_init_with_result:#]: function exit <-------------
  RIL[kelvra_diag_register_callback:#]: function entry ------------->
  RIL[kelvra_print_diag_mask_name:#]: function entry ------------->
  RIL[kelvra_print_diag_mask_name:#]: function exit <-------------
  RIL[kelvra_diag_register_callback:#]: register call back, g_diag_channel = [0]MSM, data_primary = 0, remote_mask = [0]
  RIL[kelvra_diag_register_callback:#]: function exit <-------------
  RIL[kelvra_diag_cmd_send_with_result_by_callback_mode:#]: ret_send = 0, will wait callback
  RIL[kelvra_diag_cmd_send_with_result_by_callback_mode:#]: Command time = 30 * 100ms
  RIL[kelvra_diag_cmd_send_with_result_wait_create_thread:#]: function entry ------------->
  RIL[kelvra_diag_cmd_send_with_result_wait_create_thread:#]: kelvra daig is created, conf = 0
  RIL[kelvra_diag_cmd_send_with_result_wait_create_thread:#]: function exit <-------------
  RIL[kelvra_diag_cmd_response_by_callback:#]: function entry ------------->
  RIL[kelvra_diag_cmd_response_check:#]: function entry ------------->
  RIL[kelvra_diag_cmd_response_check:#]: ================ response from 0[MSM], len = 55 ========================
  RIL[kelvra_print_data_with_hex:#]: function entry ------------->
  RIL[kelvra_print_data_with_hex:#]: data hex show, len(55), data: 00 4D 61 72 20 31 34 20 32 30 32 34 30 39 3A 32 36 3A 35 33 4D 61 72 20 31 35 20 32 30 32 34 31 32 3A 30 30 3A 30 30 76 78 6B 2E 73 69 6D 20 2A 06 A5 00 01 02 01 00
  RIL[kelvra_print_data_with_hex:#]: function exit <-------------
  RIL[kelvra_diag_cmd_response_check:#]: function exit <-------------
  RIL[kelvra_diag_cmd_response_by_callback:#]: callback, cmd_code = 0x00, data_size = 55
  RIL[kelvra_diag_cmd_response_by_callback:#]: function exit <-------------
  RIL[kelvra_diag_cmd_send_with_result_by_callback_mode:#]: req end, data_size = 55, g_qcril_diag_rsp_buf.length = 55, reply_len = 10240
  RIL[kelvra_diag_deinit_with_result:#]: function entry ------------->
  RIL[kelvra_diag_deinit_with_result:#]: function exit <-------------
  RIL[kelvra_diag_cmd_send_with_result_by_callback_mode:#]: function exit <-------------
  
  rsp data len(55)
  rsp data: 0x00 0x4D 0x61 0x72 0x20 0x31 0x34 0x20 0x32 0x30 0x32 0x34 0x30 0x39 0x3A 0x32 0x36 0x3A 0x35 0x33 0x4D 0x61 0x72 0x20 0x31 0x35 0x20 0x32 0x30 0x32 0x34 0x31 0x32 0x3A 0x30 0x30 0x3A 0x30 0x30 0x76 0x78 0x6B 0x2E 0x73 0x69 0x6D 0x20 0x2A 0x06 0xA5 0x00 0x01 0x02 0x01 0x00
  RIL[kelvra_cmn_diag_cmd_send:#]: function exit <-------------
  $ certain 5 0 1 0 3000 0x00 | unchecked
  diag cmd:
  0x00 
  dci mode with result
  RIL[kelvra_diag_cmd_send_with_result_by_dci_mode:#]: Successfully registered with DCI for ch:0, client ID = 1
  RIL[kelvra_diag_cmd_send_with_result_by_dci_mode:#]: DCI Status on Processors for ch0:
  RIL[kelvra_diag_cmd_send_with_result_by_dci_mode:#]: MPSS on ch:0: UP
  RIL[kelvra_diag_cmd_send_with_result_by_dci_mode:#]: Opening Data Stream, registering listeners for ch:0
  RIL[kelvra_diag_cmd_send_with_result_by_dci_mode:#]: Sending Asynchronous Command for ch:0
  RIL[kelvra_diag_cmd_send_with_result_by_dci_mode:#]: Dci Command time = 30
  RIL[kelvra_diag_cmd_send_with_result_wait_create_thread:#]: kelvra daig is created, conf = 0
  RIL[kelvra_diag_cmd_response_by_dci:#]: response, cmd_code = 0x00, data_size = 55
  RIL[kelvra_diag_cmd_send_with_result_by_dci_mode:#]: req end, data_size = 55, g_qcril_diag_rsp_buf.length = 55, reply_len = 10240
  RIL[kelvra_diag_cmd_send_with_result_by_dci_mode:#]: Releasing DCI connection, err: 1001, errno: 0
  
  rsp data len(55)
  rsp data: 0x00 0x4D 0x61 0x72 0x20 0x31 0x34 0x20 0x32 0x30 0x32 0x34 0x30 0x39 0x3A 0x32 0x36 0x3A 0x35 0x33 0x4D 0x61 0x72 0x20 0x31 0x35 0x20 0x32 0x30 0x32 0x34 0x31 0x32 0x3A 0x30 0x30 0x3A 0x30 0x30 0x76 0x78 0x6B 0x2E 0x73 0x69 0x6D 0x20 0x2A 0x06 0xA5 0x00 0x01 0x02 0x01 0x00

Without a result. The process may end before its worker gets anywhere.

  $ started() { vxk "$@" | grep -vE '_thread_proc|_no_handle|_register_callback|_mask_name' | unchecked; }
  $ started 5 0 0 1 0 0x00
  diag cmd:
  0x00 
  callback mode without result
  RIL[kelvra_diag_cmd_send_without_result_start_thread:#]: kelvra daig is created, conf = 0, diag_work_mode = 0
  
  done without rsp data
  $ started 5 0 1 1 0 0x00
  diag cmd:
  0x00 
  dci mode without result
  RIL[kelvra_diag_cmd_send_without_result_start_thread:#]: kelvra daig is created, conf = 0, diag_work_mode = 1
  
  done without rsp data

What the modem heard and said.

  $ for n in 1 2; do vxk-handset log | grep -a " diag $n [-<]" | sed -E 's/.* diag [12] //' | cut -c 1-72 | grep -v connected | folded; done
  -> open(1) | <- open(1) result=1 | -> remote_mask(2) | <- remote_mask(2) result=0 mask=0 | -> switch_logging(3) mode=6 | <- switch_logging(3) result=0 | -> send(4) processor=0 code="version" command=[00] | <- send(4) result=0 | <- response(64) processor=0 code="version" response=[00 4D 61 72 20 31 3 | -> switch_logging(3) mode=1 | <- switch_logging(3) result=0 | -- closed
  -> open(1) | <- open(1) result=1 | -> dci_register(5) peripherals=2 processor=0 | <- dci_register(5) result=1001 client=1 | -> dci_signal(6) client=1 signal=64 | <- dci_signal(6) result=1001 | -> dci_support(7) processor=0 | <- dci_support(7) result=1001 peripherals=2 | -> dci_streams(8) client=1 | <- dci_streams(8) result=1001 | -> dci_send(9) client=1 code="version" command=[00] | <- dci_send(9) result=1001 | <- dci_response(65) code="version" response=[00 4D 61 72 20 31 34 20 32  | -- closed

Commands as they are typed.

  $ boot
  $ vxk 5 0 0 0 3000 | head -7
  RIL[kelvra_cmn_diag_cmd_send:#]: function entry ------------->
  
  note: Too few inputs, Pls refer to the following cmd:
  RIL[kelvra_cmn_diag_cmd_send:#]: function exit <-------------
  
  =========== blew: vexkit(vxk) cmd help =======================================================
  5: cmn option cmd: 
  $ answer 5 0 2 0 3000 0X7b 300 -1 x 0xABCD | folded
  diag cmd: | 0x7B 0x2C 0xFF 0x00 0xCD  | dci mode with result |  | rsp data len(5) | rsp data: 0x7B 0x2C 0xFF 0x00 0xCD
  $ answer 5 0 x x x 0x4B | folded
  diag cmd: | 0x4B  | callback mode with result |  | rsp data len(2) | rsp data: 0x13 0x4B
  $ for n in 4096 4097; do vxk 5 0 0 0 3000 $(seq 123 $((122 + n))) | sed '/error_code/q' | grep -avE '^0x|^RIL' | cut -c 1-60; done
  diag cmd:
  callback mode with result
  
  rsp data len(4096)
  rsp data: 0x7B 0x7C 0x7D 0x7E 0x7F 0x80 0x81 0x82 0x83 0x84 
  diag cmd:
  callback mode with result
  kelvra_diag_cmd_send fail
  
  note: Error happen! error_code(1)
  $ vxk 5 0 1 7 0 $(seq 4097) | grep -E 'data_len|fail|done'
  RIL[kelvra_diag_comand_input_check:#]: diag_comand, data_len = 4097
  RIL[kelvra_diag_comand_input_check:#]: Invalid input parameter, data_len = 4097
  RIL[kelvra_diag_cmd_send_without_result_start_thread:#]: kelvra_diag_comand_input_check fail
  kelvra_diag_cmd_send fail

Remote processors, and who responds.

  $ boot '{"diag": {"remote_mask": 5, "responses": [
  >     {"command": "01", "processor": 1, "bytes": "01"}, {"command": "03", "processor": 3, "bytes": "03"}]}}'
  $ for command in 1 3; do vxk 5 0 0 0 3000 $command | grep -E 'register.*data_|response from|^rsp' | sed 's/.*#]: //' | folded; done
  register call back, g_diag_channel = [0]MSM, data_primary = 0, remote_mask = [5] APSS | register remote call back, data_remote = 1 | register remote call back, data_remote = 3 | ================ response from 1[MDM], len = 1 ======================== | rsp data len(1) | rsp data: 0x01
  register call back, g_diag_channel = [0]MSM, data_primary = 0, remote_mask = [5] APSS | register remote call back, data_remote = 1 | register remote call back, data_remote = 3 | ================ response from 3[Unknown], len = 1 ======================== | rsp data len(1) | rsp data: 0x03

Sizes of responses over the callback road, where every piece is a response.

  $ sizes='{"command": "00", "size": 0}, {"command": "01", "size": 1}, {"command": "02", "size": 4096},
  >     {"command": "03", "size": 8192}, {"command": "04", "size": 10240}, {"command": "05", "size": 10241}'
  $ boot "{\"diag\": {\"responses\": [$sizes]}}"
  $ bytes() { answer "$@" | sed -nE 's/^rsp data: //p; /len|fail/p' | awk '/len|fail/ { print; next }
  >     { for (i = 1; i <= NF; i++) if ($i != sprintf("0x%02X", 1 + (i - 1) % 251)) { print "byte", i; exit } }'; }
  $ for command in 0 5; do bytes 5 0 0 0 100 $command; done | xargs
  kelvra_diag_cmd_send fail kelvra_diag_cmd_send fail
  $ for command in 1 2 3 4; do bytes 5 0 0 0 3000 $command; done | xargs
  rsp data len(1) rsp data len(4096) rsp data len(8192) rsp data len(10240)

Over the DCI road full pieces are joined; a response that ends with one waits out the time.

  $ for command in 0 2 3; do bytes 5 0 1 0 1500 $command; done | xargs
  kelvra_diag_cmd_send fail rsp data len(4096) rsp data len(8192)
  $ for command in 1 4 5; do bytes 5 0 1 0 3000 $command; done | xargs
  rsp data len(1) rsp data len(10240) rsp data len(10240)
  $ boot '{"diag": {"gap_ms": 50, "responses": [
  >     {"command": "00", "pieces": [4096, 100]}, {"command": "01", "pieces": [100, 4096], "gap_ms": 2000},
  >     {"command": "02", "pieces": [8192]}, {"command": "03", "pieces": [10241]},
  >     {"command": "04", "pieces": [4096, 0, 5]}, {"command": "05", "pieces": [4096, 16385]}]}}'
  $ for command in 0 1 2 4; do bytes 5 0 1 0 3000 $command; done | xargs
  rsp data len(4196) rsp data len(100) rsp data len(8192) rsp data len(4101)
  $ for command in 3 5; do bytes 5 0 1 0 1500 $command; done | xargs
  kelvra_diag_cmd_send fail rsp data len(4096)
  $ vxk 5 0 1 0 3000 0 | grep -E 'response from|_code|req end'
  RIL[kelvra_diag_cmd_response_check:#]: ================ response from -1[Unknown], len = 4096 ========================
  RIL[kelvra_diag_cmd_response_by_dci:#]: response, cmd_code = 0x01, data_size = 4096
  RIL[kelvra_diag_cmd_response_check:#]: ================ response from -1[Unknown], len = 100 ========================
  RIL[kelvra_diag_cmd_response_by_dci:#]: response, cmd_code = 0x51, data_size = 100
  RIL[kelvra_diag_cmd_send_with_result_by_dci_mode:#]: req end, data_size = 4196, g_qcril_diag_rsp_buf.length = 4196, reply_len = 10240

Log and event streams, and an event of another kind, on the library's thread.

  $ boot '{"diag": {"delay_ms": 100, "streams": [{"event": "log", "bytes": "10 00"}, {"event": 99, "bytes": "01"},
  >     {"event": "event", "size": 3}, {"event": "event"}]}}'
  $ vxk 5 0 1 0 3000 0x7B | grep -oE '_[a-z]*_stream:.*|.*data.*hex.*len.*' | grep -v ': 7B'
  _log_stream:#]: function entry ------------->
  RIL[kelvra_print_data_with_hex:#]: data hex show, len(2), data: 10 00
  _log_stream:#]: function exit <-------------
  _event_stream:#]: function entry ------------->
  RIL[kelvra_print_data_with_hex:#]: data hex show, len(3), data: 01 02 03
  _event_stream:#]: function exit <-------------
  _event_stream:#]: function entry ------------->
  RIL[kelvra_print_data_with_hex:#]: print_data_with_hex, invalid data len(0)
  _event_stream:#]: function exit <-------------

A modem that is down, an event without its processor, and answers without their fields.

  $ boot '{"diag": {"mpss_up": false, "remote_mask": 5, "responses": [{"bytes": "01", "delay_ms": 100}],
  >     "streams": [{"event": "response", "after": "send"}]},
  >     "faults": [{"road": "diag", "message": "remote_mask", "action": "cut", "keep": 4},
  >         {"road": "diag", "message": "dci_support", "skip": 1, "action": "cut", "keep": 0},
  >         {"road": "diag", "message": "dci_register", "skip": 2, "action": "cut", "keep": 4}]}'
  $ vxk 5 0 0 0 3000 0 | grep -E 'call back|rsp'
  RIL[kelvra_diag_register_callback:#]: register call back, g_diag_channel = [0]MSM, data_primary = 0, remote_mask = [0]
  RIL[kelvra_diag_cmd_send_with_result_by_callback_mode:#]: req end, data_size = 1, g_qcril_diag_rsp_buf.length = 1, reply_len = 10240
  rsp data len(1)
  rsp data: 0x01
  $ for opened in 1 2 3; do steps 5 0 1 0 3000 0; done
  Successfully registered with DCI for ch:0, client ID = 1 | DCI Status on Processors for ch0: | MPSS on ch:0: DOWN | Opening Data Stream, registering listeners for ch:0 | Sending Asynchronous Command for ch:0 | Dci Command time = 30 | Releasing DCI connection, err: 1001, errno: 0 | rsp data len(1) | rsp data: 0x01
  Successfully registered with DCI for ch:0, client ID = 2 | DCI Status on Processors for ch0: | Could not get support list for ch 0, err: 0, errno: 0 | Releasing DCI connection, err: 1001, errno: 0 | kelvra_diag_cmd_send fail | note: Error happen! error_code(1)
  Successfully registered with DCI for ch:0, client ID = 0 | Could not register signal for DCI Data for ch:0, err: 1003, errno: 0 | Releasing DCI connection, err: 1001, errno: 0 | kelvra_diag_cmd_send fail | note: Error happen! error_code(1)

Refused steps: each fault strikes one command after the other.

  $ boot '{"faults": [
  >     {"road": "diag", "message": "dci_signal", "action": "result", "result": 1000},
  >     {"road": "diag", "message": "dci_support", "action": "result", "result": 0},
  >     {"road": "diag", "message": "dci_streams", "action": "close"},
  >     {"road": "diag", "message": "dci_send", "action": "result", "result": -1},
  >     {"road": "diag", "message": "send", "action": "result", "result": 5},
  >     {"road": "diag", "message": "open", "skip": 5, "action": "result", "result": 0}]}'
  $ for step in signal support streams send; do steps 5 0 1 0 3000 0x7B; done
  Successfully registered with DCI for ch:0, client ID = 1 | Could not register signal for DCI Data for ch:0, err: 1000, errno: 0 | Releasing DCI connection, err: 1001, errno: 0 | kelvra_diag_cmd_send fail | note: Error happen! error_code(1)
  Successfully registered with DCI for ch:0, client ID = 2 | DCI Status on Processors for ch0: | Could not get support list for ch 0, err: 0, errno: 0 | Releasing DCI connection, err: 1001, errno: 0 | kelvra_diag_cmd_send fail | note: Error happen! error_code(1)
  Successfully registered with DCI for ch:0, client ID = 3 | DCI Status on Processors for ch0: | MPSS on ch:0: UP | Opening Data Stream, registering listeners for ch:0 | Unable to register DCI stream for ch:0, err: 1003, errno: 0 | Releasing DCI connection, err: 1001, errno: 0 | kelvra_diag_cmd_send fail | note: Error happen! error_code(1)
  Successfully registered with DCI for ch:0, client ID = 4 | DCI Status on Processors for ch0: | MPSS on ch:0: UP | Opening Data Stream, registering listeners for ch:0 | Sending Asynchronous Command for ch:0 | Error sending SEND_REQUEST_ASYNC to peripheral -1 for ch:0 | Releasing DCI connection, err: 1001, errno: 0 | kelvra_diag_cmd_send fail | note: Error happen! error_code(1)
  $ steps 5 0 0 0 3000 0x7B
  ret_send = 5, will wait callback | Fail to send diag cmd | kelvra_diag_cmd_send fail | note: Error happen! error_code(1)
  $ vxk 5 0 0 0 3000 0x7B | grep -A1 'init_with_result.*entry'
  RIL[kelvra_diag_init_with_result:#]: function entry ------------->
  RIL[kelvra_diag_init_with_result:#]: LSM init failed
  --
  RIL[kelvra_diag_deinit_with_result:#]: function entry ------------->
  RIL[kelvra_diag_deinit_with_result:#]: function exit <-------------
  $ answer 5 0 0 0 3000 0x7B | tail -1
  rsp data: 0x7B

No diag service at all.

  $ halt
  $ steps 5 0 0 0 3000 0x7B
  vxk: no diag interface: no handset runs in .* (re)
  ret_send = -1, will wait callback | Fail to send diag cmd | kelvra_diag_cmd_send fail | note: Error happen! error_code(1)
  $ steps 5 0 1 0 3000 0x7B
  vxk: no diag interface: no handset runs in .* (re)
  Could not register with DCI, err: 1003, errno: 0 ch:0 | kelvra_diag_cmd_send fail | note: Error happen! error_code(1)

The op that was never answered.

  $ wait $mute; grep -c 'ret_send = -1, will wait callback' mute.out; grep -cE '^real.*m([5-9]|[1-5][0-9])\.' mute.time
  1
  1
