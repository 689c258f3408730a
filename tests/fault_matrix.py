#!/usr/bin/env python3
"""Spoils every exchange of every command in every way, and checks how the command takes it.

Each command of fault_commands.COMMANDS runs once on a healthy handset. The handset's wire log tells which exchanges it
made; each of them is then spoilt by each fault that fits it, every time on a new handset. Required of a run:

- it ends within the time-outs of its exchanges, with status 0, or with SIGABRT and its "vxk: fatal:" line where the
  condition is fatal;
- it prints the command's failure line, or its success line where the failure does not matter, and not the other one;
- it leaves every file and property as it was, or as a success leaves it.

Prints what failed and a closing line; the status is 1 when a case failed.
"""

from __future__ import annotations

import argparse
import json
import os
import re
import signal
import subprocess
import sys
import tempfile
import time
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from fnmatch import fnmatch
from functools import cache
from pathlib import Path
from typing import Any, Iterable, Iterator

from fault_commands import COMMANDS, LIES, Command

TIME_OUTS = {"extension": 3, "uim": 3, "statistics": 30, "sar": 30, "diag": 5}

SLOWNESS = float(os.environ.get("VXK_TEST_SLOWNESS", "1"))  # of the programs, by what watches them
SLACK = 15 * SLOWNESS  # what a machine may take on top of what the protocol allows

# Cases at a time that sleep out a time-out.
SLEEPERS = 64

NEVER_MET = "vxk-handset: a fault was never met: "
# What a person at a terminal is told when the modem is away.
WAITING = ("vxk: waiting for ", "vxk: no QMI service ", "vxk: no diag interface: ")

# What the handset keeps for itself: not a file of the modem, not a property.
OWN = ("log", "state", "cards", "staging", "qmi", "lock", "diag", "at", "smd8")

# Restarts the modem without touching a property, by common request 31 in the type, length and value form, and runs the
# command when it is away.
DURING_RESTART = """
"$0" 6 4 2 0 0 0 0 0 0 0 31 0 0 0 4 0 0 0 0 0x10 0 0 > /dev/null
until grep -qs '^modem.restarts.1' "$VXK_HANDSET_DIR/state/board"; do :; done
exec "$0" "$@"
"""


@dataclass(frozen=True)
class Exchange:
    """The n-th exchange of a command with a service in its healthy run."""

    service: str
    label: str
    number: int
    answer: bytes  # without its header

    @property
    def payload(self) -> bytes:
        """Of an answer of the extension service: what is behind id and length, 7 bytes each, and a header of 3."""
        return self.answer[17:]


@dataclass(frozen=True)
class Fault:
    """One way to spoil an exchange; `effect` is what the tool's client sees of it."""

    name: str
    effect: str
    action: dict[str, Any]


# Not of an exchange, but of the whole modem.
RESTART = Fault("modem restarts", "away", {})


@dataclass(frozen=True)
class Run:
    """What a command left behind."""

    status: int | None  # None: it had to be killed
    output: str
    errors: str
    state: dict[str, bytes]
    log: list[dict[str, Any]]  # of the modem, a line an object
    seconds: float


@dataclass(frozen=True)
class Case:
    command: Command
    healthy: Run
    row: str
    fault: Fault
    limit: float
    entry: dict[str, Any] | None = None  # of the profile

    @property
    def expected(self) -> str:
        """What the command makes of the fault: "success", "failure" or "abort"."""
        if self.fits(self.command.aborts):
            return "abort"
        return "success" if self.fault.effect == "delayed" or self.fits(self.command.spares) else "failure"

    def fits(self, patterns: tuple[str, ...]) -> bool:
        names = (f"{self.row}:{self.fault.effect}", f"{self.row}:{self.fault.name}")
        return any(fnmatch(name, pattern) for name in names for pattern in patterns)

    @property
    def waits(self) -> int:
        """Seconds that the case sleeps, mostly out a time-out."""
        if self.fault is RESTART:
            return 2
        if not self.entry or self.fault.name not in ("no answer", "too late"):
            return 0
        return TIME_OUTS[self.entry.get("service", "diag")]


def tlv(kind: int, value: bytes) -> bytes:
    return bytes([kind]) + len(value).to_bytes(2, "little") + value


def word(value: int) -> bytes:
    return (value & 0xFFFFFFFF).to_bytes(4, "little")


def with_word(payload: bytes, offset: int, value: int) -> bytes:
    return payload[:offset] + word(value) + payload[offset + 4 :]


# ---- the faults that fit an exchange


def common_faults(exchange: Exchange) -> Iterator[Fault]:
    time_out = TIME_OUTS[exchange.service]
    # A restart would take the connection away before the answer.
    if exchange.label != "common 31":
        yield Fault("late", "delayed", {"action": "late", "ms": 100})
        yield Fault("too late", "silent", {"action": "late", "ms": 1000 * time_out + 1000})
    yield Fault("no answer", "silent", {"action": "no_answer"})
    yield Fault("refused", "refused", {"action": "result", "result": 3})
    yield Fault("closed", "gone", {"action": "close"})
    yield Fault("closed, acted", "gone", {"action": "close", "acts": True})
    yield Fault("withdrawn", "gone", {"action": "withdraw", "ms": 150})


def cut(keep: int, effect: str) -> Fault:
    return Fault(f"cut {keep}", effect, {"action": "cut", "keep": keep})


def lie(name: str, effect: str, tlvs: bytes) -> Fault:
    return Fault(name, effect, {"action": "tlvs", "bytes": tlvs.hex(" "), "acts": True})


def payload_lie(name: str, effect: str, payload: bytes) -> Fault:
    return Fault(name, effect, {"action": "payload", "bytes": payload.hex(" "), "acts": True})


def extension_faults(exchange: Exchange) -> Iterator[Fault]:
    payload = exchange.payload
    yield Fault("modem's", "modem", {"action": "modem_result", "result": -28})
    for keep in {0, 3, 7, 13, 16, 17, 17 + len(payload) // 2, 16 + len(payload)}:
        yield cut(keep, "garbled")
    yield cut(14, "bare")

    def answer(length: int, data: bytes, id_size: int = 4) -> bytes:
        return tlv(1, bytes(id_size)) + tlv(2, word(length)) + tlv(0x10, data)

    yield lie("length short", "garbled", answer(len(payload) - 1, payload))
    yield lie("length long", "garbled", answer(len(payload) + 1, payload))
    yield lie("length max", "garbled", answer(-1, payload))
    yield lie("narrow id", "garbled", answer(len(payload), payload, id_size=3))
    yield lie("too much", "garbled", answer(513, bytes(513)))
    yield lie("past packet", "garbled", answer(len(payload), payload)[:14] + b"\x10\xff\xff" + payload)
    yield lie("length alone", "bare", answer(-1, b"")[:14])
    yield payload_lie("no payload", "bare", b"")
    yield payload_lie("half header", "bare", payload[:10])
    if exchange.label.startswith(("nv_", "efs_")):
        yield payload_lie("all max", "lie", with_word(payload, 4, -1))
        yield payload_lie("cur max", "lie", with_word(payload, 8, -1))
        yield payload_lie("cur long", "lie", with_word(payload, 8, len(payload) - 19))
    elif exchange.label.startswith("common"):
        yield payload_lie("value long", "lie", with_word(payload, 12, len(payload) - 15))
        yield payload_lie("value max", "lie", with_word(payload, 12, 0x7FFFFFFF))
        yield payload_lie("value -1", "lie", with_word(payload, 12, -1))


def standard_faults(exchange: Exchange) -> Iterator[Fault]:
    """An answer starts with the standard result, 7 bytes."""
    for keep in (0, 3, 6):
        yield cut(keep, "garbled")
    if len(exchange.answer) > 7:
        yield cut(7, "bare")
        for keep in {8, 10, len(exchange.answer) - 1}:
            yield cut(keep, "garbled")
    done = tlv(2, bytes(4))
    yield lie("narrow result", "garbled", tlv(2, bytes(3)) + done[7:])
    yield lie("wide result", "garbled", tlv(2, bytes(5)))
    yield lie("past packet", "garbled", done + b"\x10\xff\xff\x01")
    for name, effect, content in LIES.get(exchange.label, ()):
        yield lie(name, effect, done + bytes.fromhex(content))


def diag_faults(exchange: Exchange) -> Iterator[Fault]:
    """An answer is a result of 4 bytes and what the op brings; what is missing reads as zero."""
    yield cut(0, "bare")
    yield cut(3, "bare")
    yield payload_lie("no reply", "lie", b"")
    yield payload_lie("long reply", "lie", b"\xff" * 64)


def faults_of(exchange: Exchange) -> Iterator[Fault]:
    yield from common_faults(exchange)
    special = {"diag": diag_faults, "extension": extension_faults}.get(exchange.service, standard_faults)
    yield from special(exchange)


# ---- one run


def program(name: str) -> str:
    return str(Path(os.environ.get("VXK_PROGRAMS", "build/bin")).absolute() / name)


def state_of(folder: Path) -> dict[str, bytes]:
    """Every file and property that commands can change. A dump tells of the modem's life; that it is there, counts."""
    return {
        str(path.relative_to(folder)): b"" if path.parent.name == "dump" else path.read_bytes()
        for path in sorted(folder.rglob("*"))
        if path.relative_to(folder).parts[0] not in OWN and path.is_file()
    }


def run(
    command: Command,
    faults: list[dict[str, Any]],
    limit: float,
    during_restart: bool = False,
    replayed: Iterable[str] = (),
) -> Run:
    """Runs the command on a handset of its own. It is killed, and the handset with it, when the limit is reached. With
    `replayed`, the options of a replay, there is nothing in the modem but what the trace has."""
    with tempfile.TemporaryDirectory(prefix="vxk-") as name:
        folder = Path(name) / "h"
        folder.mkdir(mode=0o700)
        for path, content in command.files.items():
            if not replayed or path.startswith("properties/"):
                (folder / path).parent.mkdir(parents=True, exist_ok=True)
                (folder / path).write_bytes(content)
        profile = {**command.profile, "faults": faults} if not replayed else {}
        if during_restart:
            profile["modem"] = {"restart_ms": 1500}
        (Path(name) / "profile.json").write_text(json.dumps(profile))

        words = [program("vxk"), *command.words.split()]
        if during_restart:
            words = ["sh", "-c", DURING_RESTART, *words]
        boot = [program("vxk-handset"), "run", "--dir", str(folder), "--profile", f"{name}/profile.json", *replayed, "--"]
        started = time.monotonic()
        process = subprocess.Popen(
            boot + words,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            start_new_session=True,
            # All handsets of the machine share the device of the AT channel; these leave it alone.
            env={**os.environ, "VXK_AT_DEVICE": str(folder / "smd8")},
        )
        status: int | None = None
        try:
            output, errors = process.communicate(timeout=limit)
            status = process.returncode
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            output, errors = process.communicate()
        log = subprocess.run([program("vxk-handset"), "log", "--json", "--dir", folder], stdout=subprocess.PIPE)
        return Run(
            status=status,
            output=output.decode(errors="replace"),
            errors=errors.decode(errors="replace"),
            state=state_of(folder),
            log=[json.loads(line) for line in log.stdout.splitlines()],
            seconds=time.monotonic() - started,
        )


# ---- the exchanges of a run


def label_of(service: str, line: dict[str, Any]) -> str:
    """What a request is about: the extension service has one message for everything."""
    fields = line["fields"]
    if service != "extension":
        return line["message"]
    if fields.get("form") in ("tlv", "direct"):
        return f"common {fields['code']}"
    return fields.get("form") or fields.get("command") or f"raw {fields['id']}"


def exchanges_of(lines: list[dict[str, Any]]) -> list[Exchange]:
    exchanges: list[Exchange] = []
    open_requests: dict[str, str] = {}
    for line in lines:
        service = line["service"] or line["road"]
        if line["kind"] == "request":
            open_requests[service] = label_of(service, line)
        elif line["kind"] == "response" and service in open_requests:
            number = sum(exchange.service == service for exchange in exchanges)
            answer = bytes.fromhex(line["bytes"])[1 if service == "diag" else 7 :]
            exchanges.append(Exchange(service, open_requests.pop(service), number, answer))
    return exchanges


# ---- the matrix


ANY = "any"


def cases_of(command: Command, healthy: Run) -> Iterator[Case]:
    # How far a detached thread comes before the process ends is chance.
    exchanges = [Exchange("diag", ANY, 0, b"")] if command.detached else exchanges_of(healthy.log)
    limit = command.seconds + sum(TIME_OUTS[exchange.service] for exchange in exchanges) + SLACK
    seen: Counter[str] = Counter()
    for exchange in exchanges:
        seen[exchange.label] += 1
        row = exchange.label if seen[exchange.label] == 1 else f"{exchange.label} #{seen[exchange.label]}"
        road = {"road": "diag"} if exchange.service == "diag" else {"service": exchange.service}
        for fault in faults_of(exchange):
            entry = {**road, "skip": exchange.number, "hits": command.hits, **fault.action}
            yield Case(command, healthy, row, fault, limit, entry)
    yield Case(command, healthy, "start", RESTART, limit + 10)


@cache
def verdict_row(words: str) -> dict[str, Any]:
    """What the verdict table says of a command."""
    table = subprocess.run([program("vxk-check"), "--table", "--", *words.split()], stdout=subprocess.PIPE, check=True)
    return json.loads(table.stdout)[0]


def prints(patterns: Iterable[str], output: str) -> bool:
    """Whether a line of the output is what one of the table's patterns says."""
    whole = ("^" + re.escape(pattern).replace(r"\*", ".*") + "$" for pattern in patterns)
    return any(re.search(pattern, output, re.MULTILINE) for pattern in whole)


def complaint_of_status(status: int | None, expected: str, result: Run) -> str | None:
    if status is None:
        return f"hangs: killed after {result.seconds:.0f} s"
    if expected == "abort":
        return None if status == 134 and "vxk: fatal: " in result.errors else f"no abort, status {status}"
    if status != 0:
        return f"status {status}"
    unexpected = [line for line in result.errors.splitlines() if not line.startswith((*WAITING, NEVER_MET))]
    return f"writes to standard error: {unexpected}" if unexpected else None


def complaint_of_output(words: str, expected: str, goes_on: bool, output: str) -> str | None:
    row = verdict_row(words)
    succeeds, fails = prints(row["success"], output), prints(row["failure"], output)
    if fails != (expected == "failure"):
        return "a failure line" if fails else "no failure line"
    if expected == "success":
        return "no success line" if row["success"] and not succeeds else None
    return "a success line with the failure" if succeeds and not goes_on else None


def complaint_of_state(case: Case, state: dict[str, bytes]) -> str | None:
    before, after = case.command.files, case.healthy.state
    for path in sorted({*before, *after, *state}):
        if state.get(path) == after.get(path):
            continue
        if case.fault.name == "late" or state.get(path) != before.get(path):
            return f"leaves another {path}"
    return None


def check(case: Case) -> tuple[str | None, Run]:
    result = run(case.command, [case.entry] if case.entry else [], case.limit, case.fault is RESTART)
    complaint = complaint_of_status(result.status, case.expected, result)
    if complaint is None and case.expected != "abort":
        goes_on = case.fits(case.command.goes_on)
        complaint = complaint_of_output(case.command.words, case.expected, goes_on, result.output)
    if complaint is None:
        complaint = complaint_of_state(case, result.state)
    # An answer that is too late for the command is too late for the log.
    struck = any(line["fault"] for line in result.log)
    happened = result.seconds >= case.waits if case.fault.name == "too late" else struck
    if complaint is None and case.entry and case.row != ANY and not happened:
        complaint = "the fault did not happen"
    return complaint, result


def chosen(cases: list[Case], short: bool, long: bool) -> list[Case]:
    """The cases of this run. Time-outs of half a minute are waited for once a kind, unless a long run is asked for; a
    short one spoils each kind of exchange by the first command that makes it."""
    seen: set[tuple[str, str]] = set()
    kept: list[Case] = []
    for case in cases:
        key = (case.row, case.fault.name)
        if key in seen and (short or (case.waits > 5 and not long)):
            continue
        if case.row != "start":
            seen.add(key)
        kept.append(case)
    return kept


def report(case: Case, complaint: str, result: Run) -> str:
    profile = {**case.command.profile, "faults": [case.entry] if case.entry else []}
    tail = "".join(f"    {line}\n" for line in result.output.splitlines()[-12:])
    return (
        f"\nvxk {case.command.words}, {case.row}, {case.fault.name}: {complaint}; expected: {case.expected}\n"
        f"    profile: {json.dumps(profile)}\n{tail}"
    )


def arguments() -> argparse.Namespace:
    parser = argparse.ArgumentParser(description="Spoils every exchange of every command in every way.")
    parser.add_argument("--only", metavar="COMMAND", help='commands that start so, for example "5 10"')
    parser.add_argument("--short", action="store_true", help="each kind of exchange once")
    parser.add_argument("--long", action="store_true", help="wait for every time-out of half a minute")
    parser.add_argument("--jobs", type=int, default=4, help="cases at a time, beside those that sleep")
    return parser.parse_args()


def main() -> int:
    options = arguments()
    commands = [c for c in COMMANDS if f"{c.words} ".startswith(f"{options.only} " if options.only else "")]
    with ThreadPoolExecutor(options.jobs) as busy, ThreadPoolExecutor(SLEEPERS) as asleep:
        healthy = list(busy.map(lambda command: run(command, [], command.seconds + SLACK), commands))
        for command, result in zip(commands, healthy):
            complaint = complaint_of_status(result.status, "success", result)
            complaint = complaint or complaint_of_output(command.words, "success", False, result.output)
            if complaint:
                print(f"vxk {command.words} on a healthy handset: {complaint}\n{result.output}")
                return 1
        cases = [case for pair in zip(commands, healthy) for case in cases_of(*pair)]
        cases = chosen(cases, options.short, options.long)
        # The longest first, so that their sleep is over when the rest is.
        order = sorted(range(len(cases)), key=lambda index: -cases[index].waits)
        pending = {index: (asleep if cases[index].waits else busy).submit(check, cases[index]) for index in order}
        checked = [pending[index].result() for index in range(len(cases))]

    failed = [(case, *outcome) for case, outcome in zip(cases, checked) if outcome[0]]
    print("".join(report(*failure) for failure in failed))
    print(f"{len(cases) - len(failed)} passed, {len(failed)} failed")
    return 1 if failed or not cases else 0


if __name__ == "__main__":
    sys.exit(main())
