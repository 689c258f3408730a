The AT channel as terminal programs find it.

  $ . "$TESTDIR/setup.sh"
  $ boot '{"at": {
  >   "answers": [{"command": "at+qeng = \"aT b\"", "lines": ["+QENG: 1", "+QENG: 2"], "result": "CONNECT"},
  >               {"command": "AT+LATE", "result": "+CME ERROR: 7", "delay_ms": 200}, {"command": "AT+MUTE", "silent": true}],
  >   "unsolicited": [{"line": "RING", "after_ms": 50, "every_ms": 50, "count": 3}]}}'
  $ at="$VXK_HANDSET_DIR/at"
  $ eventually test_count 'at - <- line="RING"' 3

Each argument is written as it stands, and what comes back until a final result printed as it stands.

  $ cat > ask.py <<'END'
  > import re, serial, sys
  > FINAL = re.compile(rb"[\r!]\n(OK|CONNECT|ERROR|NO CARRIER|\+CME ERROR: .*)[\r!]\n$|(^|\n)[034]\r$")
  > port = serial.Serial(sys.argv[1], 115200, timeout=5)
  > for line in sys.argv[2:]:
  >     port.write(line.encode().decode("unicode_escape").encode("latin-1"))
  >     answer = byte = port.read()
  >     while byte and not FINAL.search(answer):
  >         byte = port.read()
  >         answer += byte
  >     print(answer.decode("latin-1").replace("\r", "\\r").replace("\n", "\\n"))
  > END
  $ ask() { /usr/bin/python3 ask.py "$at" "$@"; }
  $ ask 'AT\r' 'ATE0\r\n' 'AT\rATI\r' 'xx at +cX\bgmi;+CGMM ; +CGMR\r' 'A/' 'AT+CGSN;+CGSN=1;+CGSN=2\r' 'ATS3?S0=7S0?\r'
  AT\r\r\nOK\r\n
  ATE0\r\r\nOK\r\n
  \r\nOK\r\n
  \r\nManufacturer: vxk\r\nModel: vxk simulated handset\r\nRevision: VXK.SIM.1.0-00042-MODEM-1\r\nIMEI: 001017000000011\r\n\r\nOK\r\n
  \r\nvxk\r\n\r\nvxk simulated handset\r\n\r\nVXK.SIM.1.0-00042-MODEM-1\r\n\r\nOK\r\n
  \r\nvxk\r\n\r\nvxk simulated handset\r\n\r\nVXK.SIM.1.0-00042-MODEM-1\r\n\r\nOK\r\n
  \r\n001017000000011\r\n\r\n+CGSN: "001017000000011"\r\n\r\n+CGSN: "0010170000000101"\r\n\r\nOK\r\n
  $ ask 'AT+CSQ;+NO;+CSQ\r' 'AT+CSQ;&Y\r' 'AT+CGDCONT=1,"IP\r' 'ATD5;\r' 'ATV0\r' 'AT+CSQ\r' 'AT+NO\r' 'ATQ1\rAT+CESQ\rATV1Q0\r' '\nAT\nAT\r'
  \r\n+CSQ: 28,99\r\n\r\nERROR\r\n
  \r\n+CSQ: 28,99\r\n\r\nERROR\r\n
  \r\nERROR\r\n
  \r\nNO CARRIER\r\n
  0\r
  +CSQ: 28,99\r\n0\r
  4\r
  +CESQ: 99,99,255,255,21,55\r\n\r\nOK\r\n
  \r\nOK\r\n
  $ ask 'AT+CFUN?;+CPIN?;+COPS?;+CREG?;+C5GREG?\r' 'AT+CREG=2;+CREG=?;+CREG?\r' 'AT+COPS=1,2,"26201"\r' 'AT+CMEE=2;+CFUN=9\r' 'AT+CMEE=1;+CFUN=9\r'
  \r\n+CFUN: 1\r\n\r\n+CPIN: READY\r\n\r\n+COPS: 0,0,"vxk test network",7\r\n\r\n+CREG: 0,1\r\n\r\n+C5GREG: 0,0\r\n\r\nOK\r\n
  \r\n+CREG: (0-2)\r\n\r\n+CREG: 2,1,"0001","01A2D001",7\r\n\r\nOK\r\n
  \r\nERROR\r\n
  \r\n+CME ERROR: Incorrect parameters\r\n
  \r\n+CME ERROR: 50\r\n
  $ ask 'AT+CFUN=4;+CSQ;+COPS?;+CREG?\r' 'AT+CFUN=1\r' 'AT\r'
  \r\n+CSQ: 99,99\r\n\r\n+COPS: 0\r\n\r\n+CREG: 2,0\r\n\r\nOK\r\n
  \r\n+CREG: 0\r\n\r\nOK\r\n
  \r\n+CREG: 1,"0001","01A2D001",7\r\n\r\nOK\r\n
  $ ask 'AT+CGDCONT=3,"IPV6","a;b c"\r' 'AT+CGDCONT?\r' 'AT+CGDCONT=3;+CGDCONT?;+CGDCONT=9\r'
  \r\nOK\r\n
  \r\n+CGDCONT: 1,"IPV4V6","internet","",0,0\r\n+CGDCONT: 3,"IPV6","a;b c","",0,0\r\n\r\nOK\r\n
  \r\n+CGDCONT: 1,"IPV4V6","internet","",0,0\r\n\r\n+CME ERROR: 50\r\n
  $ ask 'AT+CCHO="A0000000871002FFFFFFFF8900000100"\r' 'AT+CGLA=1,10,"FC00000000"\r' 'AT+CGLA=1,11,"FC00000000"\r' 'AT+CCHC=1\r' 'AT+CCHC=1\r' 'AT+CGLA=1,10,FC00000000\r'
  \r\n+CCHO: 1\r\n\r\nOK\r\n
  \r\n+CGLA: 4,"6E00"\r\n\r\nOK\r\n
  \r\n+CME ERROR: 50\r\n
  \r\nOK\r\n
  \r\n+CME ERROR: 21\r\n
  \r\n+CME ERROR: 21\r\n
  $ ask 'AT+CIMI;+CCID\r' 'AT+CPIN="1234"\r'
  \r\n001010000000019\r\n\r\n+CCID: 8900101000000000019\r\n\r\nOK\r\n
  \r\n+CME ERROR: 3\r\n
  $ ask 'AT+CCHO="A000000001"\r' 'AT+CSIM=10,"FC00000000"\r' 'AT+CSIM=8,"00X40000"\r' 'AT+CIMI=1\r'
  \r\n+CME ERROR: 22\r\n
  \r\n+CSIM: 4,"6E00"\r\n\r\nOK\r\n
  \r\n+CME ERROR: 50\r\n
  \r\nERROR\r\n
  $ ask 'at+QENG="aT b"\r' 'AT+QENG="at b"\r' 'AT+LATE\rAT+CGMI\r' '' 'AT+MUTE\rAT\r' 'ATS3=33\rAT+CGMI!ATS3=13!' '' '' "AT$(printf %05000d 0)\\r" 'ATZ\r' 'ATE0\r'
  \r\n+QENG: 1\r\n+QENG: 2\r\n\r\nCONNECT\r\n
  \r\nERROR\r\n
  \r\n+CME ERROR: 7\r\n
  \r\nvxk\r\n\r\nOK\r\n
  \r\nOK\r\n
  !\nOK!\n
  !\nvxk!\n!\nOK!\n
  \r\nOK\r\n
  \r\nERROR\r\n
  \r\nOK\r\n
  ATE0\r\r\nOK\r\n

A card that is not there; a restart of the modem, after which the settings are those of a power-up.

  $ answer 5 3 0 1 0 > /dev/null
  $ ask 'AT+CMEE=1;+CPIN?\r' 'AT+CIMI\r' 'AT+CSIM=8,FC000000\r' 'AT+CREG?\r' 'AT+CFUN=1,1\r'
  \r\n+CME ERROR: 10\r\n
  \r\n+CME ERROR: 10\r\n
  \r\n+CME ERROR: 10\r\n
  \r\n+CREG: 2,0\r\n\r\nOK\r\n
  \r\nOK\r\n
  $ restarted 1; ask 'AT+CMEE?\r'
  AT+CMEE?\r\r\n+CMEE: 0\r\n\r\nOK\r\n

What a program leaves behind, modes and unread answers, the next does not find.

  $ stty -F "$at" sane; printf 'AT+CSQ\r' > "$at"; eventually test_count 'at - <- line="+CSQ: 28,99"' 4
  $ is_raw() { stty -F "$at" -a | grep -e -icanon; }; eventually is_raw
  $ ask 'AT+CGMM\r' 'AT+NO\r'
  AT+CGMM\r\r\nvxk simulated handset\r\n\r\nOK\r\n
  AT+NO\r\r\nERROR\r\n
  $ vxk-handset log | sed -n 's/.* \(at - .*\)/\1/p' | tail -n 2
  at - -> line="AT+NO\r"
  at - <- line="ERROR"

A card that wants its PIN, then its PUK.

  $ halt; boot '{"cards": {"slots": [{"pin_enabled": true}, {}]}}'; at="$VXK_HANDSET_DIR/at"
  $ ask 'ATE0\r' 'AT+CMEE=1;+CPIN?\r' 'AT+CIMI\r' 'AT+CPIN="0000"\r' 'AT+CPIN="0000"\r' 'AT+CPIN="0000"\r' 'AT+CPIN?\r' 'AT+CPIN="12345678","4321"\r' 'AT+CPIN?;+CIMI\r'
  ATE0\r\r\nOK\r\n
  \r\n+CPIN: SIM PIN\r\n\r\nOK\r\n
  \r\n+CME ERROR: 11\r\n
  \r\n+CME ERROR: 16\r\n
  \r\n+CME ERROR: 16\r\n
  \r\n+CME ERROR: 16\r\n
  \r\n+CPIN: SIM PUK\r\n\r\nOK\r\n
  \r\nOK\r\n
  \r\n+CPIN: READY\r\n\r\n001010000000019\r\n\r\nOK\r\n
