"""Record and replay: whatever a command printed against a handset, it prints again against the trace of that run.

usage: replay_test.py PROGRAMS [NAME...]

Every command of the fault matrix, on a good modem and on sick ones; or those that are named, by their words or the sickness.
"""

from __future__ import annotations

import json
import os
import re
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from fault_commands import COMMANDS, Command

EVERYWHERE = ({"road": "qmi"}, {"road": "diag"})
FAULTS: dict[str, list[dict[str, object]]] = {
    "good": [],
    "refused": [{"action": "result", "result": 74, "hits": 0, **road} for road in EVERYWHERE],
    "closed": [{"action": "close", "skip": 1, **road} for road in EVERYWHERE],
    "cut": [{"action": "cut", "keep": 9, **road} for road in EVERYWHERE],
    "withdrawn": [{"action": "withdraw", "ms": 300, **road} for road in EVERYWHERE],
    "restarted": [{"action": "restart", **road} for road in EVERYWHERE],
    "late": [{"action": "late", "ms": 200, "hits": 2, **road} for road in EVERYWHERE],
    "silent": [{"action": "no_answer", **road} for road in EVERYWHERE],
}
INDICATIONS = {"uim": {"indications": [{"before": 48}]}, "statistics": {"indications": [
    {"on": "connection", "message": "state"}, {"on": "values", "message": "status", "value": 7}]}}


# Printed by other threads than the command's own: where they stand is chance, and the last of them may be cut off.
ASIDE = re.compile(r"unsol_ind_cb|_thread_proc|cnt_of_100ms")


def masked(output: bytes, command: Command) -> list[str]:
    text = re.sub(r"RIL\[([^]:]*):\d+\]", r"RIL[\1:#]", output.decode("latin-1"))
    lines = re.sub(r"0x[0-9a-f]{6,}", "ADDRESS", text).split("\n")
    lines = [line for line in lines if not ASIDE.search(line)]
    return sorted(lines) if command.words.startswith("5 0 ") else lines


def lay(folder: Path, content: dict[str, bytes]) -> None:
    for name, data in content.items():
        (folder / name).parent.mkdir(parents=True, exist_ok=True)
        (folder / name).write_bytes(data)


def run(folder: Path, command: Command, options: list[str], profile: dict[str, object]) -> subprocess.CompletedProcess[bytes]:
    lay(folder, {f"properties/{name}": value.encode() for name, value in command.properties.items()})
    return subprocess.run(
        ["vxk-handset", "run", "--dir", str(folder), "--profile", "-", *options, "--", "vxk", *command.words.split()],
        input=json.dumps(profile).encode(), env={**os.environ, "VXK_AT_DEVICE": f"{folder}.smd8"}, capture_output=True, check=False)


def difference(command: Command, name: str) -> str:
    """What is wrong, or nothing."""
    with tempfile.TemporaryDirectory(prefix="vxk-replay-") as place:
        recorded, trace = Path(place, "a"), Path(place, "trace")
        lay(recorded, command.files)
        # Longer, a command that asks again for a second would or would not see the modem come back.
        profile = {"modem": {"restart_ms": 200}, **INDICATIONS, **command.profile, "faults": FAULTS[name]}
        first = run(recorded, command, [], profile)
        with trace.open("wb") as out:
            subprocess.run(["vxk-handset", "log", "--json", "--dir", str(recorded)], stdout=out, check=True)
        # A modem that refused in the recording is a good one here: what it says comes from the trace alone.
        speed = ["--fast"] if name != "late" else []
        again = run(Path(place, "b"), command, ["--strict", "--replay", str(trace), *speed], {})
        if again.returncode != first.returncode:
            return f"status {first.returncode}, then {again.returncode}"
        if again.stderr:
            return again.stderr.decode()
        one, other = masked(first.stdout, command), masked(again.stdout, command)
        return "" if one == other else "\n".join(("recorded:", *one, "replayed:", *other))


def main() -> int:
    os.environ["PATH"] = sys.argv[1] + ":" + os.environ["PATH"]
    only = sys.argv[2:]
    # A command that goes while its thread still sends prints what that thread comes to.
    cases = [(command, name) for name in FAULTS for command in COMMANDS if not command.detached]
    cases = [case for case in cases if not only or case[1] in only or case[0].words in only]
    with ThreadPoolExecutor(32) as pool:
        results = list(pool.map(lambda case: difference(*case), cases))
    wrong = [(case, result) for case, result in zip(cases, results) if result]
    for (command, name), result in wrong:
        print(f"vxk {command.words}, {name}: {result}\n")
    print(f"{len(cases)} runs replayed, {len(wrong)} of them with other lines")
    return 1 if wrong or not cases else 0


if __name__ == "__main__":
    sys.exit(main())
