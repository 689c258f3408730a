#!/usr/bin/python3
"""What tells people how to use the programs is what the programs say: tables of the documents, verdicts for all that the help
lists, completion as shells do it. The scripts tell about themselves.

usage: help_test.py SOURCE_FOLDER PROGRAM_FOLDER
"""
import json
import os
import pty
import re
import select
import subprocess
import sys
import tempfile
from collections import defaultdict
from pathlib import Path

SOURCE, PROGRAMS = Path(sys.argv[1]), Path(sys.argv[2])
MADE = PROGRAMS.parent / "packaging"
BASH, ZSH = (f"{{{SOURCE}/packaging,{MADE}}}/completion" + end for end in ("/*.bash", ""))

# A shell, and how it is told to insert all completions of the word at once by control-O.
SHELLS = {
    "bash --norc --noprofile -i": f"""for file in {BASH}; do . $file; done; bind '"\\C-o": insert-completions'""",
    "zsh -f -i": f"""fpath=({ZSH} $fpath); autoload -U compinit; compinit -D -u; bindkey '^O' all
        zle -C all menu-complete _generic; zstyle ':completion:all::::' completer _all_matches _complete""".replace("\n", ";"),
}

# A line, and the words that the shell makes of its last one.
LINES = {
    "vxk-handset run --dir a": ["a b"],
    "vxk-handset run --profile my": ["my profile.json"],
    "vxk-handset serve --profile 'my p": ["my profile.json"],
    "vxk-handset serve --profile s": ["single-sim", "slow-modem"],
    "vxk-handset --h": ["--help"],
    "vxk-handset log --f": ["--follow"],
    "vxk-handset set --h": ["--help"],
    "vxk-handset run -- vxk-h": ["vxk-handset"],
    "vxk-handset run --dir x -- vxk 5 1": ["1", "10"],
    "vxk-handset run -- cat my\\ ": ["my profile.json"],
    "vxk-check --js": ["--json"],
    "vxk-check --plan my": ["my profile.json"],
    "vxk-check --timeout 1 -- 5 1": ["1", "10"],
}


def completions(shell, lines, folder):
    """Types each line and control-O into the shell; yields the words of the line that comes of it."""
    process, terminal = pty.fork()
    if process == 0:
        os.chdir(folder)
        environment = {"PATH": f"{PROGRAMS}:/usr/bin:/bin", "TERM": "dumb", "HOME": folder, "PS1": "READY"}
        os.execvpe(shell.split()[0], shell.split(), environment)

    def answer(typed, end):
        os.write(terminal, typed.encode())
        seen = b""
        while not re.search(end, seen, re.DOTALL):
            if not select.select([terminal], [], [], 30)[0]:
                raise SystemExit(f"{shell} is stuck after {typed!r}: {seen!r}")
            seen += os.read(terminal, 4096)
        return seen.decode()

    answer("", b"READY")
    answer(SHELLS[shell] + "\r", b"\n.*READY")
    for line in lines:
        said = answer(line + "\x0f\x01printf 'word:%s\\n' \x05 END\r", b"\nword:END\r.*READY")
        yield re.findall(r"(?m)^word:(.*?)\r*$", said)[:-1]
    os.close(terminal)
    os.waitpid(process, 0)


def pairs(pattern, text):
    """The sub-options of each option, as a pattern finds them in a text."""
    found = defaultdict(set)
    for option, sub in re.findall(pattern, text, re.MULTILINE):
        found[option].add(sub)
    return found


complaints = []


def compare(what, expected, found):
    if found != expected:
        complaints.append(f"{what}: expected {expected}, found {found}")


help_text = subprocess.run([PROGRAMS / "vxk"], stdout=subprocess.PIPE, text=True, check=True).stdout
options = pairs(r"^   vxk (\d+) (\d+)\b", help_text)
# The help of 6 and 8 begins with a person's own value, that of 10 has no lines. 1 and 2 do nothing; of 9, the help is the list.
listed = {option: options[option] for option in options if option not in ("1", "2", "9")}
for document in ("README.md", "docs/scripting.md"):
    text = (SOURCE / document).read_bytes()
    filled = subprocess.run([MADE / "vxk_commands"], input=text, stdout=subprocess.PIPE, check=True).stdout
    compare(f"{document} has a table, as scripts/doc-tables makes it", (1, True), (text.count(b"made of the tables: "), text == filled))

verdicts = subprocess.run([PROGRAMS / "vxk-check", "--table"], stdout=subprocess.PIPE, text=True, check=True).stdout
for option, subs in listed.items():
    judged = "".join(row["words"] + "\n" for row in json.loads(verdicts)).replace("4|5|6", "4\n11 5\n11 6")
    compare("vxk-check", subs, pairs(r"^(\d+) (\d+)\b", judged)[option])

for shell in SHELLS:
    with tempfile.TemporaryDirectory() as folder:
        (Path(folder) / "a b").mkdir()
        (Path(folder) / "my profile.json").touch()
        expected = {**LINES, **{f"vxk {option} ": sorted(subs) for option, subs in options.items() if int(option) > 2}}
        for line, words in zip(expected, completions(shell, expected, folder)):
            typed = len(re.sub(r"'.*|\\ ", "x", line).split())
            compare(f"{shell}: {line}", expected[line], sorted(words[typed - (not line.endswith(" ") or "\\" in line) :]))

for script in sorted(path for path in (SOURCE / "scripts").iterdir() if path.name not in ("lib.sh", "machine-init")):
    for argument, status in (("--help", 0), ("--nonsense", 2)):
        done = subprocess.run([script, argument], stdin=subprocess.DEVNULL, capture_output=True, timeout=60)
        compare(f"{script.name} {argument}", (status, True), (done.returncode, bool(done.stderr if status else done.stdout)))

print("\n".join(complaints))
sys.exit(bool(complaints))
