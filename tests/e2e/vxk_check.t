Verdicts: what vxk-check makes of the tool's lines.

  $ . "$TESTDIR/setup.sh"
  $ judged() { vxk-check --json "$@" > verdict.json; echo "$? $(/usr/bin/python3 -c 'if True:
  >   import json; verdict = json.load(open("verdict.json"))
  >   print(verdict["verdict"], json.dumps([verdict["reason"]] if verdict["reason"] else verdict["values"]))')"; }

Each command on a healthy handset, and the values of its answer.

  $ boot '{"modem": {"restart_ms": 0}}'
  $ set_property persist.radio.ssr_wait_s 0; set_property persist.vendor.ssr.restart_level ALL_ENABLE
  $ all() { while IFS='|' read -ra all; do for words in "${all[@]}"; do printf '%s: ' "$words"; judged -- $words; done; done; }
  $ all <<'END'
  > 5 0 0 0 3000 0x4B|5 0 1 1 0 0|5 1|5 2 0|5 4|5 5|5 6 0|5 10 4 0|6 4 39|7 0 0|7 1 0|9 30 0
  > 11 2|11 3 1|11 0
  > END
  5 0 0 0 3000 0x4B: 0 success {"length": 2, "bytes": "13 4B"}
  5 0 1 1 0 0: 0 success {}
  5 1: 0 success {"length": 4, "bytes": "01 00 00 00", "cards": ["PRESENT"]}
  5 2 0: 0 success {"length": 4, "bytes": "01 00 00 00", "cards": ["PRESENT"]}
  5 4: 0 success {"length": 4, "bytes": "02 00 00 00", "card_type": 2}
  5 5: 0 success {"dsi": 3}
  5 6 0: 0 success {"length": 4, "bytes": "00 00 00 00"}
  5 10 4 0: 0 success {"cards": ["PRESENT", "PRESENT"]}
  6 4 39: 0 success {"result": 0}
  7 0 0: 0 success {"record": {"version": 196609, "mcc": 29440, "mnc_num": 128, "mnc": 704, "tac": 497189504, "cgi": 2028284490176, "pci": 51666, "freq_band_ind": 64, "dl_earfcn": 27450241, "dl_bw": 1280, "ul_earfcn": 24836608, "ul_bw": 1280, "allow_access": 128, "scs": 0}}
  7 1 0: 0 success {"counters": {"version": 4, "modem_stats_feature_enable_status": 1, "version_not_support_num": 0, "modem_stats_cmd_ok_count": 1284, "modem_stats_cmd_fail_count": 3}}
  9 30 0: 0 success {"measurements": {"ant_num": {"value": 4, "unit": null}, "ant_path": {"value": 258, "unit": null}, "sig_path": {"value": 515, "unit": null}, "old_config": {"value": 1, "unit": null}, "new_config": {"value": 2, "unit": null}}}
  11 2: 0 success {}
  11 3 1: 0 success {}
  11 0: 0 success {}

Command lines that the tool does not take.

  $ all <<'END'
  > 1 1|12|3 1 extra|4 4 0|4 1 0 7233|5 10 9 0|7 2|9 13 0|9 0 2|10 0 4|11 4 2
  > END
  1 1: 2 refused ["Not support"]
  12: 2 refused ["the tool has no such command"]
  3 1 extra: 2 refused ["Cmd error, should be: vxk 3 1"]
  4 4 0: 2 refused ["need 5 inputs"]
  4 1 0 7233: 2 refused ["nv_id is out range(7232)"]
  5 10 9 0: 2 refused ["the tool has no such command"]
  7 2: 2 refused ["invalid type = 2"]
  9 13 0: 2 refused ["kelvra_test_qmi_modem_stats_hdl: Unknown opt(13), sub(0)"]
  9 0 2: 2 refused ["modem_api_get_stats_parameter, sub(2) is invalid"]
  10 0 4: 2 refused ["sub_mask(4) is invalid"]
  11 4 2: 2 refused ["opt(2) is invalid"]

A sick modem, a profile a line, and what does not stop with the tool's own words.

  $ while IFS='|' read -r words profile; do boot "{$profile}"; printf '%s: ' "$words"; judged -- $words; done <<'END'
  > 5 2 1|"cards": {"slots": [{}]}
  > 11 2|"faults": [{"service": "extension", "action": "close"}]
  > 3 0 1|"faults": [{"service": "extension", "action": "result", "result": 9}]
  > 5 1|"faults": [{"service": "extension", "action": "cut", "keep": 3}]
  > 5 10 4 0|"faults": [{"service": "uim", "action": "cut", "keep": 7}]
  > 5 10 3 0|"euicc": {"eid": "8904903200100100000000ABCDEF0067"}
  > 5 10 1 0|"euicc": {"eid": "89049032001001000000000000000024"}
  > 5 10 2 0|"faults": [{"service": "uim", "action": "close"}]
  > 5 5|"faults": [{"service": "sar", "action": "cut", "keep": 7}]
  > 5 0 1 0 200 0|"diag": {"responses": [{"silent": true}]}
  > 7 1 0|"debug": {"main": {"g_unpk_version_not_support_num": 1}, "not_supported_logs": [1, 2]}
  > 7 1 0|"debug": {"main": {"g_modem_stats_feature_enable_status": 0}}
  > 9 7 0|"statistics": {"values": [{"id": 94, "rssi0": "nan", "rssi1": "inf"}]}
  > 9 10 0|"faults": [{"service": "statistics", "message": 3, "action": "result", "result": 1}]
  > 10 0 1|
  > END
  5 2 1: 1 failure ["the modem answered: malformed request (-22)"]
  11 2: 1 failure ["the modem's service went away"]
  3 0 1: 1 failure ["the modem's service refused: result 9"]
  5 1: 1 failure ["the modem's answer does not decode"]
  5 10 4 0: 1 failure ["the modem's answer has no card states"]
  5 10 3 0: 1 failure ["the EID's check digits are wrong: 8904903200100100000000abcdef0067"]
  5 10 1 0: 1 failure ["the EID's check digits are wrong: 89049032001001000000000000000024"]
  5 10 2 0: 1 failure ["value=FAILED; vxk 5 10 2 1 says why"]
  5 5: 1 failure ["the modem's answer has no DSI"]
  5 0 1 0 200 0: 1 failure ["no diag response within the command's time"]
  7 1 0: 1 failure ["the statistics feature meets diag logs that it does not know: 2"]
  7 1 0: 1 failure ["the statistics feature is switched off"]
  9 7 0: 0 success {"measurements": {"rssi_rx0": {"value": null, "unit": "dBm"}, "rssi_rx1": {"value": null, "unit": "dBm"}, "rssi_rx2": {"value": -63.75, "unit": "dBm"}, "rssi_rx3": {"value": -64.5, "unit": "dBm"}}}
  9 10 0: 0 success {"measurements": {"rsrp_rx0": {"value": -84.5, "unit": "dBm"}, "rsrp_rx1": {"value": -85.25, "unit": "dBm"}, "rsrp_rx2": {"value": -89.75, "unit": "dBm"}, "rsrp_rx3": {"value": -91.0, "unit": "dBm"}, "rsrq": {"value": -10.75, "unit": "dB"}}}
  10 0 1: 1 failure ["pdc init failed, do nothing"]

Proofs: what was written is there, what was deleted is not, and a modem that does nothing is found out.

  $ writes='3 0 5 7|3 3 1 4 0x80000000000|3 2|3 5|4 2 1 10 256 1|4 3 1 10|4 5 0 /a 1 2|4 6 0 /a|5 10 1 0|11 5 1|11 5 0'
  $ proven() { for words in "${all[@]}"; do printf '%s: ' "$words"; judged --verify -- $words; done; }
  $ IFS='|' read -ra all <<< "$writes"
  $ boot '{"modem": {"restart_ms": 0}}'
  $ set_property persist.radio.ssr_wait_s 0; set_property persist.vendor.ssr.restart_level ALL_ENABLE
  $ proven | cut -d ' ' -f 1-8
  3 0 5 7: 0 success {}
  3 3 1 4 0x80000000000: 0 success {}
  3 2: 0 success {}
  3 5: 0 success {}
  4 2 1 10 256 1: 0 success
  4 3 1 10: 0 success {}
  4 5 0 /a 1 2: 0 success
  4 6 0 /a: 0 success {}
  5 10 1 0: 0 success {"eid": "89049032001001000000000000000023"}
  11 5 1: 0 success {}
  11 5 0: 0 success {}
  $ nothing="{\"service\": \"extension\", \"action\": \"payload\", \"bytes\": \"$(printf '00 %.0s' {1..20})\"}"
  $ while read -r words; do
  >   boot "{\"faults\": [$nothing]}"; mkdir -p "$VXK_HANDSET_DIR"/{efs,nv}/0; printf 1 > "$VXK_HANDSET_DIR/efs/0/c"
  >   printf '%s: ' "$words"; judged --verify -- $words; done <<'END'
  > 3 0 5 7
  > 4 5 0 /b 1
  > 4 2 0 10 1
  > 4 6 0 /c
  > END
  3 0 5 7: 1 failure ["not proven by 3 1: reading back failed: the modem answered: no such file or item (-2)"]
  4 5 0 /b 1: 1 failure ["not proven by 4 4 0 /b: reading back failed: the modem answered: no such file or item (-2)"]
  4 2 0 10 1: 1 failure ["not proven by 4 1 0 10: reading back failed: the modem answered: no such file or item (-2)"]
  4 6 0 /c: 1 failure ["not proven by 4 4 0 /c: it is still there: 31"]
  $ judged --verify -- 4 4 0 /c; judged --expect 31 -- 4 4 0 /c; judged --expect path_len -- 4 4 0 /c
  2 refused ["nothing can be read back after 4 4 0 /c"]
  0 success {"length": 1, "bytes": "31"}
  1 failure ["the answer has no \"path_len\""]

The whole object.

  $ vxk-check --json -- 6 2 0x80000001 | sed -E 's/(_ms":)[0-9]+/\1#/'
  {"command":["6","2","0x80000001"],"verdict":"died","reason":"fatal: hexadecimal number 0x80000001 overflows 32 bits","duration_ms":#,"exit_status":null,"signal":"SIGABRT","values":{},"stdout":["kv_qmi req data(qmi_id: 2, len: 1[max: 500]):"],"stderr":["vxk: fatal: hexadecimal number 0x80000001 overflows 32 bits"]}

A tool that waits, hangs with a child, dies, talks without end, or is not there.

  $ program() { printf '#!/bin/sh\n%s\n' "$1" > "$CRAMTMP/tool"; chmod +x "$CRAMTMP/tool"; }
  $ VXK_HANDSET_DIR=$CRAMTMP/none judged --timeout 3 -- 4 1 0 1
  3 timeout ["no end within 3 s: waiting for QMI service 65508"]
  $ program 'sleep 1000 & echo $! > child; wait'; judged --vxk "$CRAMTMP/tool" --timeout 1 -- 5 1; eventually test ! -e "/proc/$(cat child)"
  3 timeout ["no end within 1 s"]
  $ program 'sleep 1000 & echo $! > child'; judged --vxk "$CRAMTMP/tool" -- 5 1; eventually test ! -e "/proc/$(cat child)"
  1 failure ["the tool printed nothing"]
  $ program 'kill -KILL $$'; judged --vxk "$CRAMTMP/tool" -- 5 1; program 'echo no library >&2; exit 127'; judged --vxk "$CRAMTMP/tool" -- 5 1
  4 died ["killed by SIGKILL"]
  4 died ["exit status 127: no library"]
  $ program 'yes | head -c 9000000'; judged --vxk "$CRAMTMP/tool" -- 5 1; test $(wc -c < verdict.json) -lt 3000000 && echo bounded
  1 failure ["more output than the tool has in it"]
  bounded
  $ judged --vxk "$CRAMTMP/nowhere" -- 5 1; program 'echo "vxk: no road" >&2'; judged --vxk "$CRAMTMP/tool" -- 4 6 0 /c
  4 died ["the tool could not be started: No such file or directory"]
  1 failure ["no road"]
  $ program 'printf "data len(3)\ndata: 01 02\n"'; judged --vxk "$CRAMTMP/tool" -- 4 4 0 /c
  1 failure ["the answer says 3 bytes and shows 2"]

Behind adb, of which this plays the part that vxk-check sees: one line for a shell elsewhere, and its status.

  $ mkdir bin; cat > bin/adb <<'END'
  > #!/bin/sh
  > serial=none; [ "$1" = -s ] && { serial=$2; shift 2; }
  > [ "$1" = devices ] && { printf 'List of devices attached\nS1\tdevice\nS2\tunauthorized\n'; exit; }
  > [ "$serial" != S9 ] || { echo "adb: device 'S9' not found" >&2; exit 1; }
  > [ "$1" = shell ] && [ $# = 2 ] || exit 99
  > echo "$serial: $2" >> adb.log
  > sh -c "$2"; exit $?
  > END
  $ chmod +x bin/adb; export PATH=$PWD/bin:$PATH
  $ judged --adb S1 -- 4 5 0 "/it's \$HOME; \"a b\"" 7; efs "0/it's \$HOME; \"a b\""; judged --adb -- 4 4 0 ''; cat adb.log
  0 success {}
   07
  2 refused ["len invalid"]
  S1: timeout -s KILL 12 vxk 4 5 0 '/it'\''s $HOME; "a b"' 7
  none: timeout -s KILL 12 vxk 4 4 0 ''
  $ judged --adb -- 6 2 0x80000001; grep -o '"signal[^,]*' verdict.json; judged --adb S9 -- 5 1; program 'exec sleep 1000'
  4 died ["fatal: hexadecimal number 0x80000001 overflows 32 bits"]
  "signal":"SIGABRT"
  4 died ["exit status 1: adb: device 'S9' not found"]
  $ judged --adb S1 --vxk "$CRAMTMP/tool" --timeout 1 -- 5 1
  3 timeout ["no end within 1 s"]

Command lines of vxk-check, and plans that are wrong.

  $ plan() { printf "$1" > plan; { vxk-check --plan plan; echo "= $?"; } 2>&1 | xargs -d '\n'; }
  $ vxk-check; vxk-check --plan nowhere; vxk-check --watch 1 --json -- 5 1; vxk-check --adb S1 --handset S2 -- 5 1; echo $?
  vxk-check: either --plan or a command behind "--" is needed
  vxk-check: cannot read the plan nowhere: No such file or directory
  vxk-check: --watch goes with one command on one handset, and makes no report
  vxk-check: --adb and --handset exclude each other
  2
  $ plan '# nothing\n\n'; plan 'a: 5 1\nb: status\n'; plan 'a:\n'; plan '5 1 =>\n'; plan ': 5 1'; plan "5 10 3\n"; plan "4 4 0 '/x\n"
  vxk-check: plan, line 2: no command in the whole plan = 2
  vxk-check: plan, line 2: a command begins with the number of its group, not with "status" = 2
  vxk-check: plan, line 1: no command = 2
  vxk-check: plan, line 1: no text behind "=>" = 2
  vxk-check: plan, line 1: no name before the colon = 2
  vxk-check: plan, line 1: the tool has no command 5 10 3 = 2
  vxk-check: plan, line 1: no closing ' = 2
  $ vxk-check --junit /nowhere/x -- 5 1; vxk-check --timeout 0 -- 5 1; echo $?
  vxk-check: cannot write /nowhere/x: No such file or directory
  --timeout: Value 0 not in range 0.001000 to 1000000.000000
  Run with --help for more information.
  2

Interrupted, a plan kills what it runs and shows what it has.

  $ echo 5 1 > short; program 'echo $$ > first; exec sleep 1000'
  $ vxk-check --vxk "$CRAMTMP/tool" --handset qrtr --plan short > partial & checking=$!
  $ eventually test -s first; kill -INT $checking; wait $checking; echo $?; eventually test ! -e "/proc/$(cat first)"; cat partial
  130
  handset  verdict     5 1
  qrtr     unfinished

A plan on three handsets at once: a table, one object, a file for the build server and a page, as a browser has it.

  $ cat > plan <<'END'
  > read '#1': 4 4 0 "/a file" => 01 02   # a comment
  > 5G: 9 10 0
  > 5 4
  > END
  $ mkdir -p "$VXK_HANDSET_DIR/efs/0" "$CRAMTMP/<h2>"; printf '\1\2' > "$VXK_HANDSET_DIR/efs/0/a file"
  $ planned() { vxk-check --handset "$VXK_HANDSET_DIR" --handset "folder:$CRAMTMP/<h2>" --handset adb:S9 --timeout 3 --plan plan "$@"; }
  $ planned --junit junit.xml --html page.html | sed -E "s|$CRAMTMP|TMP|; s|TMP/h[0-9]+|TMP/h#|" | tr -s ' '
  handset verdict read #1 5G 5 4
  TMP/h# success 01 02 -84.5 dBm type 2
  folder:TMP/<h2> timeout timeout timeout timeout
  S9 died died died died
  folder:TMP/<h2>, read #1: no end within 3 s: waiting for QMI service 65508
  folder:TMP/<h2>, 5G: no end within 3 s
  folder:TMP/<h2>, 5 4: no end within 3 s: waiting for QMI service 65508
  S9, read #1: exit status 1: adb: device 'S9' not found
  S9, 5G: exit status 1: adb: device 'S9' not found
  S9, 5 4: exit status 1: adb: device 'S9' not found
  $ vxk-check --json --handset "$VXK_HANDSET_DIR" --handset S9 --plan plan | /usr/bin/python3 -c 'if True:
  >   import json, sys; plan = json.load(sys.stdin); print(plan["verdict"], [h["verdict"] for h in plan["handsets"]])
  >   print([(s["name"], s["command"], s["values"]) for s in plan["handsets"][0]["steps"]][::2])'
  died ['success', 'died']
  [('read #1', ['4', '4', '0', '/a file'], {'length': 2, 'bytes': '01 02'}), ('5 4', ['5', '4'], {'length': 4, 'bytes': '02 00 00 00', 'card_type': 2})]
  $ /usr/bin/python3 -c 'if True:
  >   from xml.etree import ElementTree; suites = ElementTree.parse("junit.xml").getroot()
  >   for suite in suites: print(suite.get("tests"), suite.get("failures"), suite.get("errors"), [case.get("name") for case in suite])
  >   print(suites[1][0][0].tag, suites[1][0][0].attrib, repr(suites[0][0][0].text))'
  3 0 0 ['read #1', '5G', '5 4']
  3 0 3 ['read #1', '5G', '5 4']
  3 0 3 ['read #1', '5G', '5 4']
  error {'type': 'timeout', 'message': 'no end within 3 s: waiting for QMI service 65508'} 'data len(2)\ndata:  01 02\n'
  $ chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run --disable-background-networking \
  >   --disable-component-update --disable-sync --user-data-dir="$CRAMTMP/browser" --dump-dom "file://$PWD/page.html" 2> browser.err > dom.html || cat browser.err
  $ grep -o '<h1>.*</h1>' dom.html; for tag in table tr details svg rect; do echo "$tag $(grep -o "<$tag[ >]" dom.html | wc -l)"; done
  <h1>1 of 3 handsets succeed</h1>
  table 1
  tr 4
  details 6
  svg 5
  rect 5
  $ grep -c '<th>folder:.*&lt;h2&gt;</th>' dom.html; grep -c 'https\?://' dom.html
  1
  0
  [1]

The table of verdicts, and the manual's station, which finds the handsets that adb has.

  $ vxk-check --table -- 4 5 0 /x 1 | tr -d '\n' | tr -s ' '; vxk-check --table -- 5 7
  [ { "words": "4 5 SUB PATH BYTE...", "does": "write a file", "success": [], "failure": [ "kelvra_extend_qmi_send_sync fail, REQUEST_ID_EFS" ], "values": "", "verify": "4 4 SUB PATH", "unknown": "" }][]
  [2]
  $ mkfifo station; "$TESTDIR/../../docs/scripting/factory-station" plan results > station 2>&1 & station=$!
  $ read -r line < station; kill $station; echo "$line"; grep -c "type 2" results/S1.txt; ls results
  S1: PASS
  1
  S1.html
  S1.txt
  S1.xml

A measurement that is repeated: CSV in a pipe and its summary beside it, a live table on a terminal, until it is interrupted.

  $ boot '{"faults": [{"service": "statistics", "message": 519, "skip": 1, "action": "result", "result": 1}]}'
  $ vxk-check --watch 0.01 --count 3 -- 9 21 0 2> summary | sed -E 's/^[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9:]{8}\.[0-9]{3}[+-][0-9]{2}:[0-9]{2}(,[a-z]+),[0-9]+/TIME\1,#/'; cat summary
  time,verdict,duration_ms,rx_prx,rx_drx
  TIME,success,#,-63.5,-66.25
  TIME,failure,#,,
  TIME,success,#,-63.5,-66.25
  3 samples, 2 succeeded
                                 last      least       mean   greatest
  rx_prx                        -63.5     -63.50     -63.50     -63.50
  rx_drx                       -66.25     -66.25     -66.25     -66.25
  $ mkfifo samples; vxk-check --watch 0.01 -- 9 21 0 > samples 2> summary & watching=$!
  $ exec 3< samples; read -r _ <&3; read -r _ <&3; kill -INT $watching; wait $watching; echo $?; exec 3<&-; tail -2 summary | cut -c 1-35
  0
  rx_prx                        -63.5
  rx_drx                       -66.25
  $ script -qec "vxk-check --watch 0.01 --count 2 -- 9 21 0" /dev/null < /dev/null | sed 's/\x1b/ESC/g' | tr -d '\r'
  1 samples, 1 succeeded
                                 last      least       mean   greatest
  rx_prx                        -63.5     -63.50     -63.50     -63.50  \xe2\x96\x85 (esc)
  rx_drx                       -66.25     -66.25     -66.25     -66.25  \xe2\x96\x85 (esc)
  ESC[4AESC[J2 samples, 2 succeeded
                                 last      least       mean   greatest
  rx_prx                        -63.5     -63.50     -63.50     -63.50  \xe2\x96\x85\xe2\x96\x85 (esc)
  rx_drx                       -66.25     -66.25     -66.25     -66.25  \xe2\x96\x85\xe2\x96\x85 (esc)
  $ vxk-check --watch 60 -- 9 13 0 2>/dev/null | sed 's/^[^,]*//; s/[0-9]*$/#/'
  ,refused,#
