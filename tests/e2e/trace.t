What VXK_TRACE keeps is what the modem's own log has: the same lines, but for time, process and latency, the number of a connection, and
the fault that struck, which only the handset knows.

  $ . "$TESTDIR/setup.sh"
  $ export VXK_TRACE="$PWD/trace.jsonl"
  $ cat > same <<'END'
  > import json
  > def lines(name):
  >     stories = {}
  >     for line in map(json.loads, open(name)):
  >         if line["connection"]:
  >             story = stories.setdefault((line["pid"], line["service"], line["connection"]), [])
  >             assert (line["latency_us"] is None) == (line["kind"] != "response"), line
  >             story.append({key: value for key, value in line.items() if key not in ("time", "pid", "connection", "latency_us", "fault")})
  >     return list(stories.values())
  > trace, log = lines("trace.jsonl"), lines("log.jsonl")
  > if len(trace) == 2 * len(log):
  >     log = [story for story in log for _ in range(2)]
  >     for story in trace + log: story.sort(key=lambda line: line["kind"] == "indication")
  > for ours, theirs in zip(trace, log):
  >     if ours != theirs:
  >         print(*({key: a[key] for key in a if a[key] != b[key]} for a, b in zip(ours, theirs)), len(ours), len(theirs))
  > print(len(trace), len(log), sum(map(len, trace)) == sum(map(len, log)))
  > END
  $ faults='{"faults": [{"service": "extension", "code": "nv_read", "action": "no_answer"}, {"service": "sar", "hits": 1, "action": "close"},
  >   {"service": "sar", "hits": 1, "action": "cut", "keep": 9}, {"service": "extension", "code": "nv_delete", "action": "restart"}]}'; boot "$faults"
  $ commands=("4 5 0 /a 1 2 255" "4 4 0 /a" "4 1 0 10" "5 5" "5 5" "5 5" "5 1" "5 10 3 0" "5 10 4 1" "5 10 5 1" "6 5 1 2" "7 0" "9 7 0" "9 10 0"
  >     "5 0 0 0 3000 0x00" "5 0 1 0 3000 0x7C" "5 0 0 0 3000 0x99" "4 3 0 10")
  $ for words in "${commands[@]}"; do command vxk $words > out 2>&1; done
  $ halt; vxk-handset log --json > log.jsonl; python3 same
  17 17 True

A device build sees structures above its SDK's libraries, not packets. It makes the same lines of them: here it runs above the Linux
library, which traces too: each connection is told twice. An answer that does not decode has no structure, and a diag event may be early.

  $ rm trace.jsonl; boot "$faults"; for words in "${commands[@]}"; do command vxk-wrapped $words > out 2>&1; done
  $ halt; vxk-handset log --json > log.jsonl; python3 same
  {} {} {'kind': 'event', 'message': 'unanswered', 'message_id': None, 'fields': {}, 'bytes': ''} {} 4 4
  34 34 True

A process that reaches nobody leaves no line.

  $ wc -l < trace.jsonl > before; command vxk 5 10 > out; VXK_MODEM=folder:nowhere command vxk 5 5 2> out > out; wc -l < trace.jsonl | diff - before

The open diag router's packets are bare commands and responses; they are told as the ops that they stand for.

  $ cat > router <<'END'
  > import os, socket
  > server = socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET); server.bind(b"\0diag" + bytes(103)); server.listen()
  > os.environ.update(VXK_MODEM="qrtr", VXK_TRACE="router.jsonl")
  > if os.fork() == 0:
  >     os.execlp("vxk", "vxk", "5", "0", "0", "0", "3000", "0x00")
  > session = server.accept()[0]; assert session.recv(100) == b"\0"; session.send(b"\0vers"); os.wait()
  > END
  $ unshare -rn python3 router > out; python3 -c 'for line in map(__import__("json").loads, open("router.jsonl")): print(line["direction"], line["message"], line["bytes"])' | sort -k 3
  -- closed 
  -- connected 
  -> open 01
  -> remote_mask 02
  -> switch_logging 03 01 00 00 00
  -> switch_logging 03 06 00 00 00
  -> send 04 00 00 00 00 00
  <- response 40 00 00 76 65 72 73
  <- open 81 01 00 00 00
  <- remote_mask 82 00 00 00 00
  <- switch_logging 83 00 00 00 00
  <- switch_logging 83 00 00 00 00
  <- send 84 00 00 00 00

A trace that cannot be written is one line, and the command goes on; so it does when there is no room for more.

  $ boot; for file in /no/where /dev/full .; do VXK_TRACE=$file vxk 5 5 2>&1 | grep -v RIL; done
  vxk: cannot write the trace /no/where: No such file or directory
  SAR DSI: 3
  vxk: cannot write the trace /dev/full: No space left on device
  SAR DSI: 3
  vxk: cannot write the trace .: Is a directory
  SAR DSI: 3
  $ rm *.jsonl; unset VXK_TRACE; vxk 5 5 > out; ls *.jsonl
  ls: *.jsonl* (glob)
  [2]
