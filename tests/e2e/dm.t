The diagnostic port as a reader on a serial port finds it.

  $ . "$TESTDIR/setup.sh"
  $ boot '{"diag": {"responses": [{"command": "99", "bytes": "7E 7D 00"}, {"command": "98", "silent": true}, {"command": "97", "bytes": "97", "delay_ms": 100}],
  >   "logs": [{"code": "0xB0C2", "record": {"version": 4, "mcc": 262, "mnc": 7, "cgi": "0x0102030405060708"}, "every_ms": 3000, "count": 2},
  >            {"code": "0x1234", "bytes": "7D 7E"}, {"code": "0xB0C2", "record": {}}]}}'
  $ dm="$VXK_HANDSET_DIR/dm"

Words are written as frames, "raw:" ones as they stand; "=2" reads two frames, and prints them without the time of a log.

  $ cat > dm.py <<'END'
  > import serial, struct, sys
  > def crc(data):
  >     value = 0xFFFF
  >     for byte in data:
  >         value ^= byte
  >         for _ in range(8):
  >             value = value >> 1 ^ 0x8408 if value & 1 else value >> 1
  >     return struct.pack("<H", value ^ 0xFFFF)
  > port = serial.Serial(sys.argv[1], timeout=9)
  > for word in sys.argv[2:]:
  >     packet = bytes.fromhex(word.lstrip("raw:=").rjust(2, "0"))
  >     frame = (packet + crc(packet)).replace(b"}", b"}]").replace(b"~", b"}^") + b"~"
  >     if word[0] != "=":
  >         port.write(packet if word.startswith("raw:") else frame)
  >     for _ in range(int(word[1:]) if word[0] == "=" else 0):
  >         frame = port.read_until(b"~")[:-1].replace(b"}^", b"~").replace(b"}]", b"}")
  >         packet = frame[:-2]
  >         assert frame[-2:] == crc(packet), frame
  >         print((packet[:8] + b"time" + packet[16:] if packet[:1] == b"\x10" else packet[:72]).hex(" ", -4))
  > END
  $ dm() { /usr/bin/python3 dm.py "$dm" "$@"; eventually unread; }
  $ unread() { show dm | grep 'reader *no'; }
  $ dm 00 7C 7B7D7E 4B1200 99 98 6001 97 =7
  004d6172 20313420 32303234 30393a32 363a3533 4d617220 31352032 30323431 323a3030 3a303076 786b2e73 696d202a 06a50001 020100
  7c020000 021b0a00 a50f0000 56584b2e 53494d2e 312e302d 30303034 322d4d4f 44454d2d 31007678 6b207369 6d756c61 74656420 68616e64 73657400
  7b7d7e
  134b1200
  7e7d00
  600000
  97

A log comes from the moment its mask lets it through, and anew when that was off; what masks are set ends with the reader.

  $ mask="73000000030000000B000000C3000000$(printf %048d 0)04"
  $ dm 7300000001000000 "$mask" =5
  73000000 01000000 00000000 00000000 ff0f0000 ff0f0000 ff0f0000 ff0f0000 ff0f0000 ff0f0000 ff0f0000 ff0f0000 ff0f0000 ff0f0000 ff0f0000 ff0f0000 ff0f0000 ff0f0000
  73000000 03000000 00000000 0b000000 c3000000 00000000 00000000 00000000 00000000 00000000 00000000 04
  10003200 3200c2b0 74696d65 04000000 65001405 0000644b 00006400 64000807 06050403 02010601 02070001 01000000 0300
  10003d00 3d00c2b0 74696d65 02000300 00000065 00000000 00000000 00140500 00644b00 00640064 0001d0a2 01000000 00010002 01000101 00000003 00
  10003200 3200c2b0 74696d65 04000000 65001405 0000644b 00006400 64000807 06050403 02010601 02070001 01000000 0300
  $ dm 73000000040000000B000000 =1 "$mask" =3 7300000000000000 =1 "$mask" =3 | cut -c 1-71
  73000000 04000000 00000000 0b000000 00100000 00000000 00000000 00000000
  73000000 03000000 00000000 0b000000 c3000000 00000000 00000000 00000000
  10003200 3200c2b0 74696d65 04000000 65001405 0000644b 00006400 64000807
  10003d00 3d00c2b0 74696d65 02000300 00000065 00000000 00000000 00140500
  73000000 00000000 00000000
  73000000 03000000 00000000 0b000000 c3000000 00000000 00000000 00000000
  10003200 3200c2b0 74696d65 04000000 65001405 0000644b 00006400 64000807
  10003d00 3d00c2b0 74696d65 02000300 00000065 00000000 00000000 00140500
  $ dm 7D01 7D04040006000000010000000200000003000000 7D0305000700 7D050000FFFFFFFF 7D0376007600 7D02F401F501 =6
  7d010100 07000000 00007600 f401fa01 e803ef03 d007d807 9411e811 8813ac13 1c253125
  7d040400 06000100 01000000 02000000 03000000
  7d030500 07000100 02000000 03000000 00000000
  7d050100 ffffffff
  7d037600 76000100 ffffffff
  7d02f401 f5010100 1f000000 1f000000

What lies or does not end.

  $ dm 73 7300000009000000 730000000300000010000000FFFFFFFF 730000000300000001000000FFFFFFFF 73000000030000000100000010000000FF \
  >     60 7D09 7D0305000400 7D04F401F50100000000000000 7D050000 =10
  1573
  73000000 09000000 01000000
  73000000 03000000 01000000
  73000000 03000000 01000000
  15730000 00030000 00010000 00100000 00ff
  1560
  147d09
  7d030500 04000000
  157d04f4 01f50100 00000000 0000
  157d0500 00
  $ dm raw:00FFFF7E raw:7E7E raw:007D7E raw:0041 raw:7E "raw:$(printf %040000d 0)" raw:7E 1D =1 | cut -c 1-2
  1d
  $ grep -c 'dm - -> malformed' "$VXK_HANDSET_DIR/log/wire.log"
  4
  $ grep -o ' dm - .*' "$VXK_HANDSET_DIR/log/wire.log" | sed -n '1p;/log code/{p;q}'
   dm - -> code="version" command=[00]
   dm - <- log code=45250 data=[04 00 00 00 65 00 14 05 00 00 64 4B 00 00 64 00 64 00 08 07 06 05 04 03 02 01 06 01 02 07 00 01 01 00 00 00 03 00]
  $ show dm | grep -v terminal
  dm
    reader               no
    logs of the profile  3
  

A thousand that open the terminals and say half a word, and one that never ends, leave nothing behind.

  $ cat > crowd.py <<'END'
  > import os, sys
  > pid, *ports = sys.argv[1:]
  > size = lambda: (len(os.listdir(f"/proc/{pid}/fd")), int(open(f"/proc/{pid}/statm").read().split()[1]))
  > before = size()
  > for _ in range(5):
  >     crowd = [os.open(port, os.O_RDWR | os.O_NOCTTY) for port in ports * 98]
  >     for one in crowd:
  >         os.write(one, b"AT+CGDCONT=1,\x7d")
  > for _ in range(5000):
  >     os.write(crowd[1], bytes(4000))
  > print(size()[0] == before[0], size()[1] - before[1] < 4096)
  > END
  $ /usr/bin/python3 crowd.py "$handset" "$VXK_HANDSET_DIR/at" "$dm"; eventually unread
  True True
  $ dm 00 =1 | cut -c 1-8
  004d6172
