The simulated handset's own command line: run, show, log, and what it refuses.

  $ . "$TESTDIR/setup.sh"
  $ masked() { sed -E 's/^[0-9-]+ [0-9:.]+ //; s/process [0-9]+/process #/'; }

A run has the command's status, and leaves its folder when that has a name.

  $ vxk-handset run --dir h -- sh -c 'cd /; test -S "$VXK_HANDSET_DIR/qmi/65508" && exit 7'
  [7]
  $ ls h/qmi h/staging
  h/qmi:
  
  h/staging:
  $ vxk-handset run -- sh -c 'echo "$VXK_HANDSET_DIR" > temporary; kill -9 $$'
  [137]
  $ test -e "$(cat temporary)"
  [1]
  $ vxk-handset run -- no-such-command
  vxk-handset: cannot run no-such-command: No such file or directory
  [127]
  $ vxk-handset run -- ./h
  vxk-handset: cannot run ./h: Permission denied
  [126]

The programs find each other, whatever the PATH.

  $ env -i VXK_AT_DEVICE="$VXK_AT_DEVICE" "$(command -v vxk-handset)" run -- sh -c 'vxk 4 1 0 10 > vxk.out; vxk-handset --version'
  vxk-handset \d+\.\d+\.\d+ (re)
  $ grep -c 'inited' vxk.out
  1

A run that is killed takes its command with it; its folder goes with the next run, and no other does.

  $ export TMPDIR="$CRAMTMP/t"
  $ mkdir -p t "$TMPDIR"/vxk-handset.strange "$TMPDIR"/vxk-handset.stran
  $ vxk-handset run -- sh -c 'echo $$ > t/command; exec sleep 1000' & run=$!
  $ eventually test -s t/command; vxk-handset run -- ls "$TMPDIR" 2> /dev/null | wc -l
  4
  $ { kill -9 $run; wait $run; } 2> /dev/null
  [137]
  $ gone() { ! kill -0 "$(cat t/command)"; }; eventually gone
  $ ls "$TMPDIR" | wc -l; vxk-handset run -- true; ls "$TMPDIR"
  3
  vxk-handset.stran
  vxk-handset.strange
  $ unset TMPDIR

What keeps a handset from booting is one line.

  $ vxk-handset run --dir h -- vxk-handset run --dir h -- true 2>&1 | masked
  vxk-handset: a handset is already running in /*/h (process #) (glob)
  $ vxk-handset run --dir no/where -- true
  vxk-handset: cannot create the folder /*/no/where: No such file or directory (glob)
  [125]
  $ vxk-handset serve --dir /tmp/$(printf %090d 0)
  vxk-handset: the folder's name is too long for a socket (95 characters, at most 89): /tmp/0* (glob)
  [1]
  $ echo '{"modem": {"restart_ms": "soon"}}' > p.json
  $ vxk-handset run --profile p.json -- true
  vxk-handset: p.json: /modem/restart_ms: expected a whole number from 0 to 600000, found "soon"
  [125]
  $ vxk-handset run --profile <(echo '{"sar": {"dsi": 9}}') -- vxk 5 5 | grep -o '= 9'
  = 9
  $ vxk-handset run --profile /dev/zero -- true
  vxk-handset: the profile /dev/zero is longer than 16777216 bytes
  [125]
  $ vxk-handset run --profile absent.json -- true
  vxk-handset: cannot read the profile absent.json: No such file or directory
  [125]
  $ vxk-handset show --dir nowhere
  vxk-handset: there is no handset in /*/nowhere; start one with: vxk-handset serve --dir /*/nowhere (glob)
  [1]
  $ vxk-handset run > /dev/null 2>&1
  [2]

Show and log work from the folder, whether the handset lives or not.

  $ boot
  $ mkdir -p "$VXK_HANDSET_DIR"/efs/0/nv/item_files "$VXK_HANDSET_DIR"/nv/1
  $ printf abc > "$VXK_HANDSET_DIR/efs/0/nv/item_files/demo"
  $ printf a > "$VXK_HANDSET_DIR/nv/1/10"
  $ printf 'two words' > "$VXK_HANDSET_DIR/properties/persist.demo"
  $ vxk-handset show | sed -n '/^properties/,$p' | folded
  properties |   persist.demo  "two words" |  | efs, subscription 0 |   /nv/item_files/demo  3 bytes |  | nv, subscription 0 |   none |  | nv, subscription 1 |     10  1 byte
  $ vxk-handset show | sed -n 1,4p | masked
  handset /*/h1 (glob)
    running, process #
  
  services
  $ vxk-handset show | grep 65508
    qmi 65508  extension
  $ crash
  $ vxk-handset show | sed -n 2,5p | folded
    not running |  | services |   none
  $ boot
  $ halt
  $ vxk-handset log | grep -E ' (modem|qmi/extension) - ' | masked | folded
  modem - -- boot | qmi/extension - -- published | qmi/extension - -- withdrawn | modem - -- off
  $ for what in show log; do vxk-handset $what > /dev/full; echo $?; done
  vxk-handset: cannot write to standard output: No space left on device
  1
  vxk-handset: cannot write to standard output: No space left on device
  1
  $ vxk-handset log --system
  vxk-handset: cannot read /*/h2/log/system.log: No such file or directory (glob)
  [1]

The same exchanges as JSON: each line is an object of version 1, and the fields of an answer are those of what was asked. The part that is
chosen by a process, by its number, or by a time is the part of the log itself.

  $ export VXK_HANDSET_DIR="$CRAMTMP/h3"
  $ boot '{"faults": [{"service": "extension", "code": "efs_delete", "action": "no_answer"}]}'
  $ mkdir -p "$VXK_HANDSET_DIR/efs/0"; printf '\1\2\377' > "$VXK_HANDSET_DIR/efs/0/a"; vxk 4 4 0 /a > out; vxk 9 7 0 > out; vxk 4 6 0 /a > out
  $ halt
  $ vxk-handset log --commands | cut -c 29- | sed -E 's/^ *[0-9]+//; s| [^ ]*/qemu-.*/vxk[^ ]*| vxk|' | folded
    vxk 4 4 0 /a |   vxk 9 7 0 |   vxk 4 6 0 /a
  $ vxk-handset log --since 0 | diff - "$VXK_HANDSET_DIR/log/wire.log"
  $ vxk-handset log --since 2000-01-01 | diff - "$VXK_HANDSET_DIR/log/wire.log"
  $ vxk-handset log --since 99; vxk-handset log --since noon
  vxk-handset: --since takes a time as the log writes it, "08-01 12:00:00.000" or "2026-08-01T12:00", not "noon"
  [1]
  $ vxk-handset log --command 3 | diff - <(grep -F 'qmi/extension 2 ' "$VXK_HANDSET_DIR/log/wire.log")
  $ vxk-handset log --command 5
  vxk-handset: only 3 processes spoke to the modem; --commands lists them
  [1]
  $ vxk-handset log --json > lines; head -n 1 lines | sed -E 's/"time":"[-0-9]{10}T[0-9:]{8}\.[0-9]{6}[-+][0-9]{2}:[0-9]{2}"/TIME/'
  {"v":1,TIME,"road":"modem","service":null,"service_id":null,"connection":null,"pid":null,"direction":"--","kind":"event","message":"boot","message_id":null,"transaction":null,"fields":{},"bytes":"","latency_us":null,"fault":null}
  $ python3 - <<'END'
  > import json
  > for line in map(json.loads, open("lines")):
  >     if line["connection"]:
  >         fields = {k: v for k, v in line["fields"].items() if k not in ("data", "command")}
  >         print(line["service"], line["pid"] > 0, line["direction"], line["kind"], line["message"], line["transaction"], len(line["bytes"]) // 3, line["latency_us"] is not None, line["fault"], str(fields)[:130])
  > END
  extension True -- event connected None 0 False None {}
  extension True -> request send 1 535 False None {'id': 2, 'data_len': 512, 'sub': 0, 'path': '/a', 'offset': 0}
  extension True <- response send 1 46 True None {'id': 0, 'data_len': 23, 'result': 0, 'total': 3, 'chunk': 3, 'bytes': '01 02 FF'}
  extension True -- event closed None 0 False None {'by': 'client'}
  statistics True -- event connected None 0 False None {}
  statistics True -> request feature 1 21 False None {'value': 2, 'first': 1, 'second': 0}
  statistics True <- response feature 1 13 True None {'result': 0, 'error': 0}
  statistics True -> request values 2 30 False None {'sub': 0, 'number': 1, 'entries': [{'sub': 0, 'type': 0, 'id': 94, 'value': ''}]}
  statistics True <- response values 2 47 True None {'result': 0, 'error': 0, 'entries': [{'sub': 0, 'type': 0, 'id': 94, 'version': 1, 'rssi0': -58.25, 'rssi1': -59.5, 'rssi2': -63.
  statistics True -- event closed None 0 False None {'by': 'client'}
  extension True -- event connected None 0 False None {}
  extension True -> request send 1 535 False None {'id': 2, 'data_len': 512, 'sub': 0, 'path': '/a'}
  extension True <- event unanswered 1 0 False no_answer {}
  extension True -- event closed None 0 False None {'by': 'client'}

What a running handset is changed by: the places of its profile, faults, events. What is unknown is refused with the choices, and nothing
of its command is done. A fault that was never met is named when the handset stops.

  $ boot '{"faults": [{"service": "extension", "code": "efs_read", "skip": 2, "hits": 0, "action": "close"}]}'
  $ vxk-handset set sar.dsi=7 euicc.eid_ms=5 statistics.values.94.0.rssi0=-90; vxk 5 5 | tail -n 1; vxk 9 7 0 | tail -n 1
  SAR DSI: 7
  ASDIV DATA: rssi_rx0: -90.00, rssi_rx1: -59.50, rssi_rx2: -63.75, rssi_rx3: -64.50
  $ vxk-handset set 'diag.responses=[{"command": "4B 12", "bytes": "4B 12 07"}]' 'at.answers=[{"command": "AT+X", "lines": ["+X: 1"]}]'
  $ vxk 5 0 0 0 1000 0x4b 0x12 | grep '^rsp data:'; printf 'AT+X\r' > $VXK_HANDSET_DIR/at; eventually grep 'at - <- line="+X' $VXK_HANDSET_DIR/log/wire.log
  rsp data: 0x4B 0x12 0x07
  $ for words in sar.x=1 "sar.dsi=8 cardz=1" statistics.values.94.0.y=1 sar.dsi=-1 foo ""; do vxk-handset set $words; done
  vxk-handset: set: /sar/x: unknown key; known here: "dsi", "valid"
  vxk-handset: set: /cardz: unknown key; known here: "at", "cards", "debug", "diag", "euicc", "modem", "sar", "statistics"
  vxk-handset: set: /statistics/values/94/0/y: unknown key; known here: "rssi0", "rssi1", "rssi2", "rssi3", "version"
  vxk-handset: set: /sar/dsi: expected a whole number from 0 to 4294967295, found -1
  vxk-handset: "foo" is not KEY=VALUE
  vxk-handset: nothing to set; what can be set is below at, cards, debug, diag, euicc, modem, sar, statistics
  [1]
  $ vxk-handset fault add '{"service": "sar", "message": "get_dsi", "action": "result", "result": 3}'; vxk 5 5 | tail -n 1; show faults
  SAR DSI: 0
  faults
    1  extension efs_read: close, for ever after 2 more
    2  sar get_dsi: result, 0 hits left
  
  $ vxk-handset event pull 1; vxk 5 10 4 0; vxk-handset set cards.slots.0.present=true; vxk 5 10 4 0
  ABSENT,PRESENT
  PRESENT,PRESENT
  $ vxk-handset event indication sar 5 01 01 00 07; vxk-handset event indication uim 97 0; vxk-handset event hop
  vxk-handset: the TLVs are bytes in hexadecimal, "01 02 FF"
  vxk-handset: no event "hop"; there are indication, pull, push, restart
  [1]
  $ vxk-handset event restart; show modem
  modem
    state     restarting
    restarts  1
  
  $ halt; cat "$VXK_HANDSET_DIR.err"
  vxk-handset: a fault was never met: extension efs_read: close
  $ vxk-handset event restart
  vxk-handset: no handset runs in /*/h*: No such file or directory (glob)
  [1]

No room: the write is refused with the modem's word for it, the old file stands, and nothing is left beside it.

  $ trap '' XFSZ; boot; trap - XFSZ
  $ vxk 4 5 0 /a 1 2 3 > out; prlimit --pid "$handset" --fsize=100; vxk 4 5 0 /a $(seq 1 200) | grep error_code
  note: Error happen! error_code(-28)
  $ vxk 4 4 0 /a | tail -n 1; ls "$VXK_HANDSET_DIR/staging"
  data:  01 02 03
