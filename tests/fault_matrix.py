#!/usr/bin/env python3
"""Spoils every exchange of every command in every way, and checks how the command takes it.

Each command of fault_commands.COMMANDS runs once on a healthy handset. The handset's wire log tells which exchanges it
made; each of them is then spoilt by each fault that fits it, every time on a new handset. Required of a run:

- it ends within the time-outs of its exchanges, with status 0, or with SIGABRT and its "vxk: fatal:" line where the
  condition is fatal;
- it prints the command's failure line, or its success line where the failure does not matter, and not the other one;
- it leaves every file and property as it was, or as a success leaves it.

Prints one table and a closing line; the status is 1 when a case failed.
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
from functools import cache
from pathlib import Path
from typing import Any, Iterable, Iterator

from fault_commands import COMMANDS, LIES, Command

TIME_OUTS = {"extension": 3, "uim": 3, "statistics": 30, "sar": 30, "diag": 5}
COLUMNS = ("late", "no answer", "result", "cut", "lie", "closed", "withdrawn")

# What a machine may take on top of what the protocol allows; more of it where the programs are slowed down.
SLACK = 15 * float(os.environ.get("VXK_TEST_SLOWNESS", "1"))

# Cases at a time that sleep out a time-out.
SLEEPERS = 64

# What a person at a terminal is told when the modem is away.
NEVER_MET = "vxk-handset: a fault was never met: "
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
    """The n-th exchange of a command with a service, as the wire log of its healthy run has it."""

    service: str
    label: str
    number: int
    fields: str  # of the answer

    @property
    def payload(self) -> bytes:
        """Of an answer of the extension service."""
        return logged_bytes(self.fields, "data")

    @property
    def has_content(self) -> bool:
        """Whether there is more in an answer of another service than its result."""
        return bool(re.sub(r"\b(result|error)=\S+|\btlvs=\[.*\]", "", self.fields).strip())

    @property
    def last_byte(self) -> int:
        """The place of an answer's last byte; 0 when the log does not tell."""
        return len(logged_bytes(self.fields, "tlvs") or b"0") - 1


@dataclass(frozen=True)
class Fault:
    """One way to spoil an exchange; `effect` is what the tool's client sees of it."""

    column: str
    name: str
    effect: str
    action: dict[str, Any]


@dataclass(frozen=True)
class Run:
    """What a command left behind."""

    status: int | None  # None: it had to be killed
    output: str
    errors: str
    state: dict[str, bytes]
    wire: str
    seconds: float


@dataclass(frozen=True)
class Case:
    command: Command
    healthy: Run
    row: str
    column: str
    name: str
    expected: str  # "success", "failure" or "abort"
    limit: float
    goes_on: bool = False
    fault: dict[str, Any] | None = None
    during_restart: bool = False


def hex_bytes(data: bytes) -> str:
    return data.hex(" ").upper()


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
        yield Fault("late", "late", "delayed", {"action": "late", "ms": 100})
        yield Fault("late", "too late", "silent", {"action": "late", "ms": 1000 * time_out + 1000})
    yield Fault("no answer", "no answer", "silent", {"action": "no_answer"})
    yield Fault("result", "refused", "refused", {"action": "result", "result": 3})
    yield Fault("closed", "closed", "gone", {"action": "close"})
    yield Fault("closed", "closed, acted", "gone", {"action": "close", "acts": True})
    yield Fault("withdrawn", "withdrawn", "gone", {"action": "withdraw", "ms": 150})


def cut(keep: int, effect: str) -> Fault:
    return Fault("cut", f"cut {keep}", effect, {"action": "cut", "keep": keep})


def lie(name: str, effect: str, tlvs: bytes) -> Fault:
    return Fault("lie", name, effect, {"action": "tlvs", "bytes": hex_bytes(tlvs), "acts": True})


def payload_lie(name: str, effect: str, payload: bytes) -> Fault:
    return Fault("lie", name, effect, {"action": "payload", "bytes": hex_bytes(payload), "acts": True})


def extension_faults(exchange: Exchange) -> Iterator[Fault]:
    """An answer is id and length of the data, 7 bytes each, and the data behind a header of 3."""
    payload = exchange.payload
    yield Fault("result", "modem's", "modem", {"action": "modem_result", "result": -28})
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
    if exchange.has_content:
        yield cut(7, "bare")
        for keep in {8, 10, exchange.last_byte} - {0}:
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
    if exchange.service == "diag":
        yield from diag_faults(exchange)
    elif exchange.service == "extension":
        yield from extension_faults(exchange)
    else:
        yield from standard_faults(exchange)


# ---- one run


def program(name: str) -> str:
    return str(Path(os.environ.get("VXK_PROGRAMS", "build/bin")).absolute() / name)


def write_file(path: Path, content: bytes) -> None:
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content)


def state_of(folder: Path) -> dict[str, bytes]:
    """Every file and property that commands can change. A dump tells of the modem's life; that it is there, counts."""
    return {
        str(path.relative_to(folder)): b"" if path.parent.name == "dump" else path.read_bytes()
        for path in sorted(folder.rglob("*"))
        if path.relative_to(folder).parts[0] not in OWN and path.is_file()
    }


def run(command: Command, faults: list[dict[str, Any]], limit: float, during_restart: bool = False) -> Run:
    """Runs the command on a handset of its own. It is killed, and the handset with it, when the limit is reached."""
    with tempfile.TemporaryDirectory(prefix="vxk-") as name:
        folder = Path(name) / "h"
        folder.mkdir(mode=0o700)
        for path, content in command.files.items():
            write_file(folder / path, content)
        for key, value in command.properties.items():
            write_file(folder / "properties" / key, value.encode())
        profile = {**command.profile, "faults": faults}
        if during_restart:
            profile["modem"] = {"restart_ms": 1500}
        (Path(name) / "profile.json").write_text(json.dumps(profile))

        words = [program("vxk"), *command.words.split()]
        if during_restart:
            words = ["sh", "-c", DURING_RESTART, *words]
        boot = [program("vxk-handset"), "run", "--dir", str(folder), "--profile", f"{name}/profile.json", "--"]
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
        wire_log = folder / "log" / "wire.log"
        return Run(
            status=status,
            output=output.decode(errors="replace"),
            errors=errors.decode(errors="replace"),
            state=state_of(folder),
            wire=wire_log.read_text(errors="replace") if wire_log.exists() else "",
            seconds=time.monotonic() - started,
        )


# ---- the exchanges of a run


LINE = re.compile(r"^\S+ \S+ (?:qmi/)?(\S+) \S+ (->|<-) (?:request |response )?(\w+)\(\d+\) ?(?:#\d+ ?)?(.*)$")


def field(fields: str, name: str) -> str | None:
    found = re.search(rf'\b{name}="?([^" ]*)', fields)
    return found.group(1) if found else None


def logged_bytes(fields: str, name: str) -> bytes:
    """The bytes of a field, with the zeros of a tail that is written as its count; none when it is not there."""
    found = re.search(rf"\b{name}=\[([0-9A-F ]*)(?:\(\+(\d+) zero\))?\]", fields)
    return bytes.fromhex(found.group(1)) + bytes(int(found.group(2) or 0)) if found else b""


def label_of(service: str, name: str, fields: str) -> str:
    """What the request is about: the extension service has one message for everything."""
    if service != "extension":
        return name
    command, form = field(fields, "command"), field(fields, "form")
    if form in ("tlv", "direct"):
        return f"common {field(fields, 'code')}"
    return form or command or f"raw {field(fields, 'id')}"


def exchanges_of(wire: str) -> list[Exchange]:
    exchanges: list[Exchange] = []
    open_requests: dict[str, str] = {}
    counts: Counter[str] = Counter()
    for line in wire.splitlines():
        found = LINE.match(line)
        if not found or found.group(1) not in TIME_OUTS:
            continue
        service, direction, name, fields = found.groups()
        if direction == "->":
            open_requests[service] = label_of(service, name, fields)
        elif service in open_requests:
            label = open_requests.pop(service)
            exchanges.append(Exchange(service, label, counts[service], fields))
            counts[service] += 1
    return exchanges


# ---- the matrix


def fault_entry(command: Command, exchange: Exchange, fault: Fault) -> dict[str, Any]:
    road = {"road": "diag"} if exchange.service == "diag" else {"service": exchange.service}
    return {**road, "skip": exchange.number, "hits": command.hits, **fault.action}


ANY = "any"


def cases_of(command: Command, healthy: Run) -> Iterator[Case]:
    # How far a detached thread comes before the process ends is chance.
    exchanges = [Exchange("diag", ANY, 0, "")] if command.detached else exchanges_of(healthy.wire)
    limit = command.seconds + sum(TIME_OUTS[exchange.service] for exchange in exchanges) + SLACK
    seen: Counter[str] = Counter()
    for exchange in exchanges:
        seen[exchange.label] += 1
        row = exchange.label if seen[exchange.label] == 1 else f"{exchange.label} #{seen[exchange.label]}"
        for fault in faults_of(exchange):
            yield Case(
                command=command,
                healthy=healthy,
                row=row,
                column=fault.column,
                name=fault.name,
                expected=command.expected(row, fault.effect, fault.name),
                goes_on=command.goes_on_after(row, fault.effect, fault.name),
                limit=limit,
                fault=fault_entry(command, exchange, fault),
            )
    yield Case(
        command=command,
        healthy=healthy,
        row="start",
        column="withdrawn",
        name="modem restarts",
        expected=command.expected("start", "away", "modem restarts"),
        limit=limit + 10,
        during_restart=True,
    )


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


def complaint_of_output(command: Command, expected: str, goes_on: bool, output: str) -> str | None:
    row = verdict_row(command.words)
    success = command.success or row["success"]
    succeeds, fails = prints(success, output), prints(command.failure or row["failure"], output)
    if expected == "success" and success and not succeeds:
        return "no success line"
    if expected == "success" and fails:
        return "a failure line"
    if expected == "failure" and not fails:
        return "no failure line"
    if expected == "failure" and succeeds and not goes_on:
        return "a success line with the failure"
    return None


def complaint_of_state(case: Case, state: dict[str, bytes]) -> str | None:
    before = {**case.command.files}
    before.update({f"properties/{key}": value.encode() for key, value in case.command.properties.items()})
    after = case.healthy.state
    for path in sorted({*before, *after, *state}):
        if state.get(path) == after.get(path):
            continue
        if case.name == "late" or state.get(path) != before.get(path):
            return f"leaves another {path}"
    return None


def check(case: Case) -> tuple[str | None, Run]:
    result = run(case.command, [case.fault] if case.fault else [], case.limit, case.during_restart)
    complaint = complaint_of_status(result.status, case.expected, result)
    if complaint is None and case.expected != "abort":
        complaint = complaint_of_output(case.command, case.expected, case.goes_on, result.output)
    if complaint is None:
        complaint = complaint_of_state(case, result.state)
    # An answer that is too late for the command is too late for the log.
    happened = result.seconds >= waits(case) if case.name == "too late" else 'fault="' in result.wire
    if complaint is None and case.fault and case.row != ANY and not happened:
        complaint = "the fault did not happen"
    return complaint, result


def waits(case: Case) -> int:
    """Seconds that the case sleeps, mostly out a time-out."""
    if case.during_restart:
        return 2
    if not case.fault or case.name not in ("no answer", "too late"):
        return 0
    return TIME_OUTS[case.fault.get("service", "diag")]


def chosen(cases: list[Case], short: bool, long: bool) -> list[Case]:
    """The cases of this run. Time-outs of half a minute are waited for once a kind, unless a long run is asked for; a
    short one spoils each kind of exchange by the first command that makes it."""
    seen: set[tuple[str, str]] = set()
    kept: list[Case] = []
    for case in cases:
        key = (case.row, case.name)
        if key in seen and (short or (waits(case) > 5 and not long)):
            continue
        if case.row != "start":
            seen.add(key)
        kept.append(case)
    return kept


def table(results: list[tuple[Case, str | None]]) -> list[str]:
    rows: dict[tuple[str, str], dict[str, bool]] = {}
    for case, complaint in results:
        cells = rows.setdefault((case.command.words, case.row), {})
        cells[case.column] = cells.get(case.column, True) and complaint is None
    first = max((len(words) for words, _ in rows), default=0)
    second = max((len(row) for _, row in rows), default=0)
    lines = [" ".join([f"{'vxk':{first}} {'exchange':{second}}", *COLUMNS])]
    for (words, row), cells in rows.items():
        texts = [
            f"{('ok' if cells[column] else 'FAIL') if column in cells else '-':{len(column)}}" for column in COLUMNS
        ]
        lines.append(" ".join([f"{words:{first}} {row:{second}}", *texts]).rstrip())
    return lines


def report(case: Case, complaint: str, result: Run) -> str:
    profile = {**case.command.profile, "faults": [case.fault] if case.fault else []}
    tail = "".join(f"    {line}\n" for line in result.output.splitlines()[-12:])
    return (
        f"\nvxk {case.command.words}, {case.row}, {case.name}: {complaint}; expected: {case.expected}\n"
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
            complaint = complaint_of_status(result.status, "success", result) or complaint_of_output(
                command, "success", False, result.output
            )
            if complaint:
                print(f"vxk {command.words} on a healthy handset: {complaint}\n{result.output}")
                return 1
        cases = [case for pair in zip(commands, healthy) for case in cases_of(*pair)]
        cases = chosen(cases, options.short, options.long)
        # The longest first, so that their sleep is over when the rest is.
        order = sorted(range(len(cases)), key=lambda index: -waits(cases[index]))
        pending = {index: (asleep if waits(cases[index]) else busy).submit(check, cases[index]) for index in order}
        checked = [pending[index].result() for index in range(len(cases))]

    print("\n".join(table([(case, complaint) for case, (complaint, _) in zip(cases, checked)])))
    failed = 0
    for case, (complaint, result) in zip(cases, checked):
        if complaint:
            failed += 1
            print(report(case, complaint, result), end="")
    print(f"\n{len(cases) - failed} passed, {failed} failed")
    return 1 if failed or not cases else 0


if __name__ == "__main__":
    sys.exit(main())
