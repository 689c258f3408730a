What a profile is refused for, with its place, before anything is booted.

  $ . "$TESTDIR/setup.sh"
  $ refused() { while IFS= read -r profile; do printf %b "$profile" | vxk-handset run --profile - -- echo "accepted: $profile"; done 2>&1 |
  >     sed 's/^vxk-handset: standard input: *//'; }

The file itself, its root, and faults.

  $ refused <<'END'
  > 
  > {\n  "efs": tru\n}
  > []
  > {"cardz": 1}
  > {"efs": {"a/b~": 1}}
  > {"modem": {"restart_ms": 1.5}}
  > {"modem": {"restart_ms": 1, "restart_ms": 2}}
  > {"efs": {"read_only": ["/a", 7]}}
  > {"efs": {"read_only": ["../a"]}}
  > {"faults": {}}
  > {"faults": [{"action": "late"}]}
  > {"faults": [{"action": "close", "ms": 5}]}
  > {"faults": [{"action": "close", "service": "x"}]}
  > {"faults": [{"action": "close", "service": "sar", "message": "get_eid"}]}
  > {"faults": [{"action": "close", "service": "extension", "request": "file_access", "code": "reset"}]}
  > {"faults": [{"action": "close", "road": "at"}]}
  > {"faults": [{"action": "tlvs", "bytes": "0x1"}]}
  > {"faults": [{"action": "payload", "bytes": "", "service": "uim"}]}
  > {"faults": [{"action": "close", "hits": 18446744073709551616}]}
  > {"faults": [{"action": "close", "acts": 1}]}
  > END
  1:1: syntax error while parsing value - unexpected end of input; expected '[', '{', or a literal
  2:13: syntax error while parsing value - invalid literal; last read: '"efs": tru<U+000A>'
  /: expected an object, found []
  /cardz: unknown key; known here: "at", "cards", "debug", "diag", "efs", "euicc", "faults", "modem", "sar", "statistics", "uim"
  /efs/a~1b~0: unknown key; known here: "file_max", "read_only"
  /modem/restart_ms: expected a whole number from 0 to 600000, found 1.5
  /: the key "restart_ms" stands twice in one object
  /efs/read_only/1: expected a text, found 7
  /efs/read_only: "../a" is not a path in the EFS
  /faults: expected a list of at most 1000 objects, found {}
  /faults/0: the key "ms" is missing
  /faults/0/ms: unknown key; known here: "action", "acts", "hits", "message", "road", "service", "skip"
  /faults/0/service: expected a whole number from 1 to 65535 or one of "uim", "sar", "extension", "statistics", found "x"
  /faults/0/message: expected a whole number from 0 to 65535 or one of "get_dsi", found "get_eid"
  /faults/0/code: expected a whole number from 0 to 4294967295 or one of "nv_read", "nv_write", "nv_delete", "efs_read", "efs_write", "efs_delete", found "reset"
  /faults/0/road: expected one of "qmi", "diag", found "at"
  /faults/0/bytes: expected at most 65535 bytes as hexadecimal pairs ("01 02 FF"), found "0x1"
  /faults/0/action: "payload" needs "service": "extension" or "road": "diag"
  /faults/0/hits: expected a whole number from 0 to 4294967295, found 1.8446744073709552e+19
  /faults/0/acts: expected true or false, found 1

Statistics, diag.

  $ refused <<'END'
  > {"statistics": {"values": [{"id": 9}]}}
  > {"statistics": {"values": [{"id": 94, "rssi0": -1, "raw": "01"}]}}
  > {"statistics": {"values": [{"id": 94, "rssi0": "low"}]}}
  > {"statistics": {"indications": [{"message": "state", "value": 1}]}}
  > {"diag": {"results": {"dci": 1}}}
  > {"diag": {"logs": [{"code": 4096, "bytes": "00", "record": {}}]}}
  > {"diag": {"logs": [{"code": 4096, "record": {"version": 5}}]}}
  > {"diag": {"responses": [{"bytes": "00", "size": 1}]}}
  > {"diag": {"responses": [{"size": 212959}]}}
  > {"diag": {"responses": [{"size": 5, "pieces": [4096, 1]}]}}
  > {"diag": {"responses": [{"pieces": [212958, 1]}]}}
  > {"diag": {"streams": [{"event": "logs"}]}}
  > END
  /statistics/values/0/id: no record is known by this data id, only by 82, 103, 104, 105, 106, 107, 108, 94, 112, 113, 135, 6, 7, 110, 111, 100; "raw" gives the bytes
  /statistics/values/0/raw: the record's fields are given already
  /statistics/values/0/rssi0: expected one of "nan", "inf", "-inf", found "low"
  /statistics/indications/0/value: unknown key; known here: "message", "on", "state"
  /diag/results/dci: unknown key; known here: "dci_register", "dci_release", "dci_send", "dci_signal", "dci_streams", "dci_support", "open", "remote_mask", "send", "switch_logging"
  /diag/logs/0/record: the bytes are given already
  /diag/logs/0/record/version: no record has this version: 4, 0x30000, 0x30001, 0x30002
  /diag/responses/0/size: the bytes are given already
  /diag/responses/0/size: expected a whole number from 0 to 212958, found 212959
  /diag/responses/0/pieces: 4097 bytes together, but the response has 5
  /diag/responses/0/pieces: more than 212958 bytes together
  /diag/streams/0/event: expected a whole number from 0 to 127 or one of "response", "dci_response", "log", "event", found "logs"

Cards.

  $ refused <<'END'
  > {"euicc": {"profiles": ["890010123456789012x"]}}
  > {"euicc": {"profiles": ["8900101234567890123", {"iccid": "8900101234567890123"}]}}
  > {"euicc": {"profiles": [7]}}
  > {"cards": {"slots": [{"files": {"3F00/2FE2/1": "00"}}]}}
  > {"cards": {"slots": [{"pin": "123"}]}}
  > END
  /euicc/profiles: "890010123456789012x" is not an ICCID of 18 to 20 digits
  /euicc/profiles: the ICCID "8900101234567890123" stands twice
  /euicc/profiles/0: expected a text or an object, found 7
  /cards/slots/0/files/3F00~12FE2~11: no place for a file ("3F00/2FE2", "3F00/7FFF/6F46")
  /cards/slots/0/pin: "123" is not a code of 4 to 8 digits
