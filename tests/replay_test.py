"""Record and replay: whatever a command printed against a handset, it prints again against the trace of that run.

usage: replay_test.py [NAME...]

Every command of the fault matrix, on a good modem and on sick ones; or those that are named, by their words or the sickness.
"""

from __future__ import annotations

import json
import re
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from dataclasses import replace

from fault_commands import COMMANDS, Command
from fault_matrix import SLACK, run

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

LIMIT = 60 + SLACK  # seconds that no command takes

# Printed by other threads than the command's own: where they stand is chance, and the last of them may be cut off.
ASIDE = re.compile(r"unsol_ind_cb|_thread_proc|cnt_of_100ms")


def masked(output: str, command: Command) -> list[str]:
    text = re.sub(r"RIL\[([^]:]*):\d+\]", r"RIL[\1:#]", output)
    lines = re.sub(r"0x[0-9a-f]{6,}", "ADDRESS", text).split("\n")
    lines = [line for line in lines if not ASIDE.search(line)]
    return sorted(lines) if command.words.startswith("5 0 ") else lines


def difference(command: Command, name: str) -> str:
    """What is wrong, or nothing."""
    # Longer, a command that asks again for a second would or would not see the modem come back.
    profile = {"modem": {"restart_ms": 200}, **INDICATIONS, **command.profile}
    first = run(replace(command, profile=profile), FAULTS[name], LIMIT)
    with tempfile.NamedTemporaryFile("w", prefix="vxk-trace-") as trace:
        trace.writelines(json.dumps(line) + "\n" for line in first.log)
        trace.flush()
        # A modem that refused in the recording is a good one here: what it says comes from the trace alone.
        speed = ["--fast"] if name != "late" else []
        again = run(command, [], LIMIT, replayed=["--strict", "--replay", trace.name, *speed])
    if again.status != first.status:
        return f"status {first.status}, then {again.status}"
    one, other = masked(first.output, command), masked(again.output, command)
    return again.errors or ("" if one == other else "\n".join(("recorded:", *one, "replayed:", *other)))


def main() -> int:
    only = sys.argv[1:]
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
