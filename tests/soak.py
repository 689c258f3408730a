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
import subprocess
import sys
import tempfile
import threading
import time
from collections import Counter
from dataclasses import dataclass, field
from pathlib import Path
from typing import Callable

SLOWNESS = float(os.environ.get("VXK_TEST_SLOWNESS", "1"))
COMMAND_LIMIT = 30 * SLOWNESS

# What an allocator may keep of a busy time. Sanitizers keep freed memory on purpose.
MEMORY_GROWTH = 2 * 1024 * 1024

PROFILE = {"modem": {"restart_ms": 100}}
PROPERTIES = {"persist.radio.ssr_wait_s": "0", "persist.vendor.ssr.restart_level": "ALL_ENABLE"}

# What a person at a terminal is told when the modem is away.
WAITING = "vxk: waiting for "

WRITTEN = re.compile(r"^RIL\[\S+ result = 0, rsp\.result(\[\S+ is instance id\])? = 0$", re.MULTILINE)
DATA = re.compile(r"^data len\((\d+)\)\ndata: ?(.*)$", re.MULTILINE)
REFUSED = "kelvra_extend_qmi_send_sync fail, REQUEST_ID_EFS"
NO_SUCH = "error_code(-2)"
NO_CHANNEL = re.compile(r"error_code\(-10[23]\)")

RESTART_EVERY = 100  # commands

FILES = ("efs", "nv", "properties", "dump", "state", "log")
KEPT = ("lock", "diag", "at", "smd8")


def program(name: str) -> str:
    return str(Path(os.environ.get("VXK_PROGRAMS", "build/bin")).absolute() / name)


class Failed(Exception):
    """What the soak found."""


@dataclass
class Place:
    """A file or an item of the modem that one worker alone uses."""

    name: str  # "/soak/1/2", or an item's number
    subscription: int
    # What may be there; None: nothing. More than one as long as the outcome of the last change is unknown.
    possible: set[bytes | None] = field(default_factory=lambda: {None})

    @property
    def is_file(self) -> bool:
        return self.name.startswith("/")

    def command(self, action: str) -> list[str]:
        number = {"read": 1, "write": 2, "delete": 3}[action] + (3 if self.is_file else 0)
        return ["4", str(number), str(self.subscription), self.name]


class Handset:
    """The handset under test."""

    def __init__(self, folder: Path) -> None:
        self.folder = folder
        self.environment = {
            **os.environ,
            "VXK_HANDSET_DIR": str(folder),
            # All handsets of the machine share the device of the AT channel; this one leaves it alone.
            "VXK_AT_DEVICE": str(folder / "smd8"),
        }
        (folder / "properties").mkdir(parents=True)
        for name, value in PROPERTIES.items():
            (folder / "properties" / name).write_text(value)
        profile = folder.parent / "profile.json"
        profile.write_text(json.dumps(PROFILE))
        self.process = subprocess.Popen(
            [program("vxk-handset"), "serve", "--dir", str(folder), "--profile", str(profile)],
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            env=self.environment,
            text=True,
        )
        assert self.process.stdout
        if not self.process.stdout.readline().startswith("vxk-handset: ready"):
            raise Failed("the handset does not start")

    def descriptors(self) -> int:
        return len(os.listdir(f"/proc/{self.process.pid}/fd"))

    def memory(self) -> int:
        resident = int(Path(f"/proc/{self.process.pid}/statm").read_text().split()[1])
        return resident * os.sysconf("SC_PAGE_SIZE")

    def state(self, subject: str, name: str) -> str:
        for line in (self.folder / "state" / subject).read_text().splitlines():
            key, _, value = line.partition("\t")
            if key == name:
                return value
        return ""

    def other_files(self) -> list[str]:
        """Everything but the modem's files, the properties, the logs and the sockets of published services."""
        names = []
        for path in self.folder.rglob("*"):
            relative = path.relative_to(self.folder)
            known = relative.parts[0] in FILES or relative.parts[0] in KEPT or path.is_dir() or path.is_socket()
            if not known:
                names.append(str(relative))
        return names

    def stop(self) -> int:
        self.process.terminate()
        return self.process.wait(30 * SLOWNESS)


class Soak:
    """The commands, and what they have left on the handset."""

    def __init__(self, handset: Handset, seed: int, jobs: int) -> None:
        self.handset = handset
        self.seed = seed
        self.jobs = jobs
        self.failures: list[str] = []
        self.counts: Counter[str] = Counter()
        self.left = 0
        self.lock = threading.Lock()
        self.workers = [Worker(self, number) for number in range(jobs)]

    def run(self, commands: int) -> None:
        """Ends with the commands, or early after a failure."""
        self.left = commands
        threads = [threading.Thread(target=worker.work) for worker in self.workers]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()

    def next(self) -> int:
        """The number of the command that is to come, counted down; 0: none."""
        with self.lock:
            number = 0 if self.failures else self.left
            self.left = max(0, number - 1)
            return number

    def fail(self, what: str) -> None:
        with self.lock:
            self.failures.append(what)

    def vxk(self, words: list[str]) -> str:
        """The command's output. Raises Failed when it does not end as every command must."""
        line = " ".join(words)
        try:
            done = subprocess.run(
                [program("vxk"), *words],
                stdin=subprocess.DEVNULL,
                capture_output=True,
                timeout=COMMAND_LIMIT,
                env=self.handset.environment,
            )
        except subprocess.TimeoutExpired:
            raise Failed(f"vxk {line}: does not end within {COMMAND_LIMIT:.0f} s") from None
        errors = [text for text in done.stderr.decode().splitlines() if not text.startswith(WAITING)]
        output = done.stdout.decode(errors="replace")
        if done.returncode != 0 or errors:
            raise Failed(f"vxk {line}: status {done.returncode}, {errors}\n{output}")
        return output


class Worker:
    """Runs one command after the other."""

    def __init__(self, soak: Soak, number: int) -> None:
        self.soak = soak
        self.random = random.Random(f"{soak.seed}/{number}")
        self.places = [Place(f"/soak/{number}/{place}", place % 2) for place in range(6)]
        self.places += [Place(str(100 * number + place), place % 2) for place in range(6)]
        self.actions: list[Callable[[], None]] = [self.write, self.read, self.delete, self.other, self.rare]

    def work(self) -> None:
        try:
            while number := self.soak.next():
                if number % RESTART_EVERY == RESTART_EVERY // 2:
                    self.vxk(["11", "0"])
                else:
                    self.random.choices(self.actions, (40, 25, 5, 29, 1))[0]()
        except Failed as failure:
            self.soak.fail(str(failure))

    def count(self, words: list[str]) -> None:
        with self.soak.lock:
            self.soak.counts[" ".join(words[: 1 if words[0] in ("6", "8", "9", "10") else 2])] += 1

    def vxk(self, words: list[str]) -> str:
        self.count(words)
        return self.soak.vxk(words)

    def change(self, words: list[str], place: Place, content: bytes | None) -> None:
        """Until the modem acknowledges the change, the old content and the new are both possible."""
        place.possible.add(content)
        output = self.vxk(words)
        if WRITTEN.search(output):
            place.possible = {content}
        elif REFUSED not in output:
            raise Failed(f"vxk {' '.join(words)}: neither acknowledged nor refused\n{output}")

    def write(self) -> None:
        place = self.random.choice(self.places)
        content = self.random.randbytes(self.random.choice((1, 16, 100, 365)))
        self.change([*place.command("write"), *map(str, content)], place, content)

    def delete(self) -> None:
        place = self.random.choice(self.places)
        self.change(place.command("delete"), place, None)

    def read(self) -> None:
        self.read_place(self.random.choice(self.places))

    def read_place(self, place: Place) -> bool:
        """Whether the modem could be read at all. Raises Failed when what it said is not what was written."""
        words = place.command("read")
        output = self.vxk(words)
        found = DATA.search(output)
        if NO_CHANNEL.search(output):
            return False
        content = bytes.fromhex(found.group(2)) if found else None
        understood = int(found.group(1)) == len(content or b"") if found else NO_SUCH in output
        if content not in place.possible or not understood:
            raise Failed(f"vxk {' '.join(words)}: lost what was acknowledged\n{output}")
        place.possible = {content}
        return True

    def other(self) -> None:
        number = str(self.random.randrange(10))
        bit = str(self.random.randrange(2))
        words = self.random.choice(
            (
                f"3 0 {number} {bit}",
                f"3 3 {bit} {number} 0x80000000000",
                f"3 {self.random.choice('1245')}",
                f"5 0 {bit} 0 1000 0x4B {number}",
                f"5 0 {bit} 1 0 0x00",
                f"5 {self.random.choice('14')}",
                f"5 2 {bit}",
                f"5 3 {bit} 0 {bit}",
                "5 5",
                f"5 6 {bit} 1 1 1",
                f"6 {self.random.randrange(6)} 1 2 {number}",
                f"7 0 {bit}",
                f"7 1 {bit}",
                # The AT channel's device is the machine's: only what does not reach it.
                "8 " + 101 * "A",
                f"9 {self.random.choice((*range(13), 20, 21, 30))} {bit}",
                f"10 0 {number}",
                "11 2",
                f"11 3 {bit}",
                f"{number}",
                "no number",
            )
        )
        self.vxk(words.split())

    def rare(self) -> None:
        """What restarts the modem, or may take long."""
        bit = str(self.random.randrange(2))
        words = self.random.choice(
            ("11 1", f"11 {self.random.choice('456')} {bit}", *(f"5 10 {action} {bit}" for action in range(1, 6)))
        )
        self.vxk(words.split())


def wait_for(condition: Callable[[], bool]) -> bool:
    """Whether it comes true within a few seconds."""
    deadline = time.monotonic() + 5 * SLOWNESS
    while not condition():
        if time.monotonic() > deadline:
            return False
        time.sleep(0.05)
    return True


def check_handset(handset: Handset, descriptors: int, memory: int) -> list[str]:
    """What the handset still holds after it has come to rest."""
    complaints = []
    if not wait_for(lambda: handset.state("modem", "state") == "up"):
        complaints.append("the modem does not come back")
    if not wait_for(lambda: handset.descriptors() <= descriptors):
        complaints.append(f"the handset keeps {handset.descriptors()} descriptors, {descriptors} before")
    growth = handset.memory() - memory
    if SLOWNESS == 1 and growth > MEMORY_GROWTH:
        complaints.append(f"the handset keeps {growth} bytes more than before")
    if handset.other_files():
        complaints.append(f"files are left: {handset.other_files()}")
    return complaints


def read_back(soak: Soak) -> None:
    for worker in soak.workers:
        for place in worker.places:
            if not worker.read_place(place):
                raise Failed(f"{place.name} cannot be read although the modem is up")


def arguments() -> argparse.Namespace:
    parser = argparse.ArgumentParser(description="Thousands of commands against one handset that restarts its modem.")
    parser.add_argument("--commands", type=int, default=10_000)
    parser.add_argument("--jobs", type=int, default=4, help="commands at a time")
    parser.add_argument("--seed", type=int, default=random.randrange(1_000_000), help="repeats a run, up to timing")
    return parser.parse_args()


def main() -> int:
    options = arguments()
    print(f"{options.commands} commands, {options.jobs} at a time, seed {options.seed}", flush=True)
    with tempfile.TemporaryDirectory(prefix="vxk-") as name:
        handset = Handset(Path(name) / "h")
        try:
            descriptors = handset.descriptors()
            soak = Soak(handset, options.seed, options.jobs)
            # Memory is compared with that of a handset that has already been busy.
            soak.run(options.commands // 5)
            memory = handset.memory()
            soak.run(options.commands - options.commands // 5)
            complaints = soak.failures or check_handset(handset, descriptors, memory)
            if not complaints:
                read_back(soak)
            growth = handset.memory() - memory
        except Failed as failure:
            complaints = [str(failure)]
        finally:
            status = handset.stop()
        if status != 0:
            complaints.append(f"the handset ends with status {status}")
        restarts = handset.state("modem", "restarts")
        if not complaints and restarts == "0":
            complaints.append("the modem did not restart")

    for group in sorted(soak.counts, key=lambda group: [f"{word:>9}" for word in group.split()]):
        print(f"{soak.counts[group]:7}  vxk {group}")
    print("\n".join(complaints) or f"{restarts} restarts, {growth // 1024} KiB more, nothing lost, nothing left")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
