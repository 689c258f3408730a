#!/usr/bin/python3 -B
"""usage: android_services.py FOLDER

What an Android machine has beside its modem's bus: a log service, which keeps a simulated handset's system log, and a diag router,
which hands commands on to the handset's diag socket. The handset is that to which the link FOLDER/handset points at the time. A
line written to the pipe FOLDER/settle comes back from FOLDER/settled once everything logged before is in the log.
"""
import contextlib
import os
import pathlib
import select
import socket
import struct
import sys
import threading
import time

FOLDER = pathlib.Path(sys.argv[1])
HANDSET = FOLDER / "handset"
OP_OPEN, OP_SEND, EVENT_RESPONSE = 1, 4, 0x40


def write_log(entries):
    try:
        packet, control, _, _ = entries.recvmsg(65536, 256, socket.MSG_DONTWAIT)
    except BlockingIOError:
        return False
    pid = struct.unpack("iII", control[0][2])[0]
    _, thread, seconds, nanoseconds = struct.unpack_from("<BHII", packet)
    tag, text, _ = packet[12:].split(b"\0")
    stamp = time.strftime("%m-%d %H:%M:%S", time.localtime(seconds)) + f".{nanoseconds // 1000000:03}"
    # A handset that boots has no log for a moment.
    with contextlib.suppress(FileNotFoundError), open(HANDSET / "log/system.log", "ab") as log:
        log.write(f"{stamp} {pid} {thread} {'??VDIWEF'[packet[11]]} ".encode() + tag + b": " + text + b"\n")
    return True


def keep_log(entries, settle, settled):
    while True:
        ready, _, _ = select.select([entries, settle], [], [])
        while write_log(entries):
            pass
        if settle in ready:
            os.write(settled, os.read(settle, 1))


def route(client):
    handset = socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET)
    handset.connect(str(HANDSET / "diag"))
    handset.send(bytes([OP_OPEN]))

    def respond():
        while event := handset.recv(65536):
            if event[0] == EVENT_RESPONSE:
                with contextlib.suppress(BrokenPipeError):  # a client need not wait for its responses
                    client.send(event[2:])

    threading.Thread(target=respond, daemon=True).start()
    while command := client.recv(65536):
        handset.send(struct.pack("<Bi", OP_SEND, 0) + command)
    handset.shutdown(socket.SHUT_RDWR)


FOLDER.mkdir()
# A burst of messages waits until it is read, as in Android's log service; the kernel's limit is ten.
pathlib.Path("/proc/sys/net/unix/max_dgram_qlen").write_text("1000")
pathlib.Path("/dev/socket").mkdir()
log_socket = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
log_socket.setsockopt(socket.SOL_SOCKET, socket.SO_PASSCRED, 1)
log_socket.bind("/dev/socket/logdw")
router = socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET)
router.bind(b"\0diag".ljust(108, b"\0"))
router.listen()
pipes = []
for name in "settle", "settled":
    os.mkfifo(FOLDER / name)
    pipes.append(os.open(FOLDER / name, os.O_RDWR))
threading.Thread(target=keep_log, args=[log_socket, *pipes], daemon=True).start()
print("ready", flush=True)
while True:
    threading.Thread(target=route, args=[router.accept()[0]], daemon=True).start()
