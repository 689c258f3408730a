#!/usr/bin/env python3
"""Runs thousands of commands of all kinds, several at a time, against one handset whose modem restarts now and then.

Required: every command ends in time, with status 0 and nothing on standard error; no read brings anything but what the
last acknowledged write left; afterwards every acknowledged file and item reads back, and the handset has no more
descriptors, hardly more memory, and no other files than it needs.
"""

from __future__ import annotations

import argparse
import json
import os
import random
import re
import socket
import struct
import subprocess
import sys
import tempfile
import threading
import time
from pathlib import Path

from fault_commands import COMMANDS
from fault_matrix import SLOWNESS, WAITING, program, tlv, word

# What an allocator may keep of a busy time. Sanitizers keep freed memory on purpose.
MEMORY_GROWTH = 2 * 1024 * 1024
PROPERTIES = {"persist.radio.ssr_wait_s": "0", "persist.vendor.ssr.restart_level": "ALL_ENABLE"}
DONE = re.compile(r"^RIL\[\S+ result = 0, rsp\.result(\[\S+ is instance id\])? = 0$", re.MULTILINE)
DATA = re.compile(r"^data len\((\d+)\)\ndata: ?(.*)$", re.MULTILINE)
REFUSED = "kelvra_extend_qmi_send_sync fail, REQUEST_ID_EFS"
RESTART_EVERY = 100  # commands
# Of the handset's folder, what may hold files beside the sockets of published services.
KEPT = ("efs", "nv", "properties", "dump", "state", "kept", "cards", "log", "lock", "at", "smd8")

RARE = [words for words in {command.words for command in COMMANDS} if re.match("11 [0-6]|5 10", words)]
# Beside the matrix's, some that are refused. The AT channel's device is the machine's: only what does not reach it.
OTHER = ["1", "10 0 1", "5 7", "6 4", "9 13 0", "no number", "8 " + 101 * "A"]
OTHER += [command.words for command in COMMANDS if command.words not in RARE]


class Failed(Exception):
    """What the soak found."""


class Handset:
    """The handset under test, and its modem's files and items as the acknowledged changes left them."""

    def __init__(self, place: Path) -> None:
        self.folder = place / "h"
        # All handsets of the machine share the device of the AT channel; this one leaves it alone.
        device = str(self.folder / "smd8")
        self.environment = {**os.environ, "VXK_HANDSET_DIR": str(self.folder), "VXK_AT_DEVICE": device}
        (self.folder / "properties").mkdir(parents=True)
        for name, value in PROPERTIES.items():
            (self.folder / "properties" / name).write_text(value)
        (place / "profile").write_text(json.dumps({"modem": {"restart_ms": 100}}))
        boot = [program("vxk-handset"), "serve", "--dir", str(self.folder), "--profile", str(place / "profile")]
        self.process = subprocess.Popen(boot, stdout=subprocess.PIPE, env=self.environment, text=True)
        if not self.process.stdout.readline().startswith("vxk-handset: ready"):
            raise Failed("the handset does not start")

    def descriptors(self) -> int:
        return len(os.listdir(f"/proc/{self.process.pid}/fd"))

    def memory(self) -> int:
        return int(Path(f"/proc/{self.process.pid}/statm").read_text().split()[1]) * os.sysconf("SC_PAGE_SIZE")

    def modem(self, name: str) -> str:
        shown = (self.folder / "state/board").read_text().splitlines()
        return next((line.split("\t")[2] for line in shown if line.startswith(f"modem\t{name}\t")), "")

    def leave_in_the_middle(self) -> None:
        """Clients that ask for the beginning of a large file and go, one after the other."""
        path = b"/large"
        (self.folder / "efs/0/large").write_bytes(bytes(100_000))
        payload = struct.pack("<BBHB71s12x", 4, 0, 0, len(path), path).ljust(512, b"\0")
        body = tlv(1, word(2)) + tlv(2, word(len(payload))) + tlv(0x10, payload)
        for _ in range(50):
            with socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET) as client:
                client.connect(str(self.folder / "qmi/65508"))
                client.send(struct.pack("<BHHH", 0, 1, 2, len(body)) + body)
                if len(client.recv(65536)) < 400:
                    raise ConnectionError("the beginning of a file is not read")

    def unrest(self, descriptors: int) -> str:
        """What says that it is not at rest. A restart that was asked for last may still take the services away."""
        if self.modem("state") != "up" or self.descriptors() > descriptors:
            return f"modem {self.modem('state')}, {self.descriptors()} descriptors, {descriptors} before"
        try:
            self.leave_in_the_middle()
        except OSError as error:
            return str(error)
        return ""

    def complaints(self, descriptors: int, memory: int) -> list[str]:
        """What it still holds after it has come to rest."""
        deadline = time.monotonic() + 5 * SLOWNESS
        while error := self.unrest(descriptors):
            if time.monotonic() > deadline:
                return [error]
            time.sleep(0.05)
        found = [str(path) for path in self.folder.rglob("*") if path.is_file() and not path.is_socket()]
        left = [path for path in found if Path(path).relative_to(self.folder).parts[0] not in KEPT]
        complaints = [f"files are left: {left}"] if left else []
        if SLOWNESS == 1 and self.memory() - memory > MEMORY_GROWTH:
            complaints.append(f"{self.memory() - memory} bytes more than before")
        return complaints

    def vxk(self, words: list[str]) -> str:
        """The command's output. Raises Failed when it does not end as every command must."""
        line = "vxk " + " ".join(words)
        try:
            done = subprocess.run(
                [program("vxk"), *words], capture_output=True, timeout=30 * SLOWNESS, env=self.environment
            )
        except subprocess.TimeoutExpired:
            raise Failed(f"{line}: does not end") from None
        errors = [text for text in done.stderr.decode().splitlines() if not text.startswith(WAITING)]
        output = done.stdout.decode(errors="replace")
        if done.returncode != 0 or errors:
            raise Failed(f"{line}: status {done.returncode}, {errors}\n{output}")
        return output


class Worker:
    """Runs one command after the other, and alone knows its files and items."""

    def __init__(self, handset: Handset, seed: int, number: int) -> None:
        self.handset, self.random = handset, random.Random(f"{seed}/{number}")
        self.failure = ""
        # What may be there; None: nothing. More than one as long as the outcome of the last change is unknown.
        names = [f"/soak/{number}/{place}" for place in range(6)] + [str(100 * number + place) for place in range(6)]
        self.possible: dict[str, set[bytes | None]] = {name: {None} for name in names}

    def work(self, numbers: list[int]) -> None:
        """Takes numbers of commands as long as there are any; a failure takes all."""
        try:
            while numbers:
                if numbers.pop() % RESTART_EVERY == 0:
                    self.handset.vxk(["11", "0"])
                else:
                    actions = (self.write, self.read, self.delete, self.other, self.rare)
                    self.random.choices(actions, (40, 25, 5, 29, 1))[0]()
        except (Failed, IndexError) as failure:
            self.failure = str(failure) if isinstance(failure, Failed) else ""
            numbers.clear()

    def on_place(self, action: int, name: str, content: bytes = b"") -> str:
        words = ["4", str(action + 3 * name.startswith("/")), str(int(name[-1]) % 2), name]
        return self.handset.vxk([*words, *map(str, content)])

    def change(self, action: int, name: str, content: bytes | None) -> None:
        """Until the modem acknowledges the change, the old content and the new are both possible."""
        self.possible[name].add(content)
        output = self.on_place(action, name, content or b"")
        if DONE.search(output):
            self.possible[name] = {content}
        elif REFUSED not in output:
            raise Failed(f"{name}: neither acknowledged nor refused\n{output}")

    def write(self) -> None:
        content = self.random.randbytes(self.random.choice((1, 16, 100, 365)))
        self.change(2, self.random.choice([*self.possible]), content)

    def delete(self) -> None:
        self.change(3, self.random.choice([*self.possible]), None)

    def read(self) -> None:
        self.read_place(self.random.choice([*self.possible]), must=False)

    def read_place(self, name: str, must: bool) -> None:
        output = self.on_place(1, name)
        found = DATA.search(output)
        if re.search(r"error_code\(-10[23]\)", output) and not must:
            return  # the modem is away
        content = bytes.fromhex(found.group(2)) if found else None
        understood = int(found.group(1)) == len(content or b"") if found else "error_code(-2)" in output
        if content not in self.possible[name] or not understood:
            raise Failed(f"{name}: lost what was acknowledged\n{output}")
        self.possible[name] = {content}

    def other(self) -> None:
        self.handset.vxk(self.random.choice(OTHER).split())

    def rare(self) -> None:
        self.handset.vxk(self.random.choice(RARE).split())


def run(workers: list[Worker], commands: int) -> None:
    numbers = [*range(commands)]
    threads = [threading.Thread(target=worker.work, args=(numbers,)) for worker in workers]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    for worker in workers:
        if worker.failure:
            raise Failed(worker.failure)


def main() -> int:
    parser = argparse.ArgumentParser(description="Thousands of commands against one handset that restarts its modem.")
    parser.add_argument("--commands", type=int, default=10_000)
    parser.add_argument("--jobs", type=int, default=4, help="commands at a time")
    parser.add_argument("--seed", type=int, default=random.randrange(1_000_000), help="repeats a run, up to timing")
    options = parser.parse_args()
    print(f"{options.commands} commands, {options.jobs} at a time, seed {options.seed}", flush=True)
    with tempfile.TemporaryDirectory(prefix="vxk-") as name:
        handset = Handset(Path(name))
        workers = [Worker(handset, options.seed, number) for number in range(options.jobs)]
        growth = 0
        try:
            descriptors = handset.descriptors()
            # Memory is compared with that of a handset that has already been busy.
            run(workers, options.commands // 5)
            memory = handset.memory()
            run(workers, options.commands - options.commands // 5)
            complaints = handset.complaints(descriptors, memory)
            for worker in workers if not complaints else []:
                for place in worker.possible:
                    worker.read_place(place, must=True)
            growth = handset.memory() - memory
        except Failed as failure:
            complaints = [str(failure)]
        finally:
            handset.process.terminate()
        if status := handset.process.wait(30 * SLOWNESS):
            complaints.append(f"the handset ends with status {status}")
        restarts = handset.modem("restarts")
        if restarts == "0":
            complaints.append("the modem did not restart")

    print("\n".join(complaints) or f"{restarts} restarts, {growth // 1024} KiB more, nothing lost, nothing left")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
