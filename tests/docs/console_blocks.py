#!/usr/bin/python3
"""Turns the examples of a document into a transcript test: what a reader would type must print what the document shows.

usage: console_blocks.py [--bus] DOCUMENT.md

Each ```console block is a piece of one shell session: lines behind "$ " are typed, the others are printed. Each ```json block
must be a profile that a handset boots with. Numbers that differ from run to run (source lines,
processes, times) are matched by their shape.

The ```console bus blocks are another session, of a machine with the modem bus and a handset on it; tabs and blanks at a line's
end are left to the program.
"""
import re
import sys

VARYING = re.compile(r"RIL\[[^:]+:\d+\]|process \d+|\d\d-\d\d \d\d:\d\d:\d\d\.\d\d\d")


def expected(line):
    """The transcript's form of one line of output."""
    pattern, end = "", 0
    for match in VARYING.finditer(line):
        pattern += re.escape(line[end:match.start()])
        pattern += re.sub(r"\d+", r"\\d+", re.escape(match.group()))
        end = match.end()
    return pattern + re.escape(line[end:]) + " (re)" if end else line


def bus_transcript(document):
    """Yields the lines of the test on the bus."""
    yield "Examples of a document, on the modem bus."
    yield ""
    yield "  $ vxk-handset serve --dir handset --bus qrtr > ready 2> errors & handset=$!"
    yield "  $ until [ -s ready ]; do sleep 0.1; done"
    yield "  $ qmicli() { command qmicli \"$@\" 2>&1 | expand | sed 's/ *$//'; }"
    for block in re.findall(r"^```console bus\n(.*?)^```$", document, re.M | re.S):
        yield ""
        yield from ("  " + line for line in block.splitlines())
    yield ""
    yield "  $ kill $handset; wait $handset; cat errors"


def transcript(document):
    """Yields the lines of the test."""
    yield "Examples of a document."
    yield ""
    yield "  $ set -o pipefail"
    yield '  $ mkdir work && cd work && ln -s "$VXK_BUILD" build && ln -s "$VXK_DOCS" docs'
    yield "  $ exec 2> ../errors"
    profiles = 0
    kind = None
    block = []
    for line in document.splitlines():
        if kind is None:
            opening = re.fullmatch(r"```(console|json)", line)
            if opening:
                kind, block = opening.group(1), []
            continue
        if line != "```":
            block.append(line)
            continue
        yield ""
        if kind == "json":
            profiles += 1
            yield f"  $ cat > profile{profiles}.json << 'END'"
            yield from ("  > " + text for text in block)
            yield "  > END"
            yield f"  $ vxk-handset run --profile profile{profiles}.json -- true"
        else:
            for text in block:
                yield "  " + (text if text.startswith(("$ ", "> ")) else expected(text))
        kind = None
    # Two handsets at once cannot both have the AT device, and say so; a profile that is only booted meets no fault.
    yield ""
    yield "  $ grep -vE '/dev/smd8|: a fault was never met: ' ../errors"
    yield "  [1]"


test = bus_transcript if sys.argv[1] == "--bus" else transcript
for out in test(open(sys.argv[-1], encoding="utf-8").read()):
    print(out)
