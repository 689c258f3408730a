"""The commands of the fault matrix, and which faults each overcomes, does not look at, or dies of. What it prints when it
succeeds and when it fails is in the verdict table of vxk-check."""

from __future__ import annotations

from dataclasses import dataclass, field
from typing import Any


@dataclass(frozen=True)
class Command:
    """A command line and what is known of it.

    The tuples hold patterns of "exchange:effect" or "exchange:fault": `aborts` are fatal, `spares` do not keep the command
    from its success, `goes_on` are those that it prints its success line behind the failure line of. The exchange "start" with
    the effect "away" is a command that begins while the modem restarts.
    """

    words: str
    spares: tuple[str, ...] = ()
    aborts: tuple[str, ...] = ()
    goes_on: tuple[str, ...] = ()
    files: dict[str, bytes] = field(default_factory=dict)  # in the handset's folder, properties among them
    profile: dict[str, Any] = field(default_factory=dict)
    hits: int = 1  # how many exchanges in a row a fault spoils; 0: all
    seconds: float = 0  # that the command sleeps on its own account
    detached: bool = False  # sends from a thread that ends with the process


# Lies that only one message can tell, behind a good result: name, effect, TLVs.
LIES: dict[str, tuple[tuple[str, str, str], ...]] = {
    "get_card_status": (
        ("no cards", "lie", "15 09 00 FF FF FF FF FF FF FF FF 00"),
        ("count long", "garbled", "15 09 00 FF FF FF FF FF FF FF FF 02"),
        ("three cards", "three", "15 1B 00 FF FF FF FF FF FF FF FF 03" + 3 * " 01 00 00 00 00 00"),
        ("six cards", "garbled", "15 2D 00 FF FF FF FF FF FF FF FF 06" + 6 * " 01 00 00 00 00 00"),
        ("nine applications", "garbled", "15 0F 00 FF FF FF FF FF FF FF FF 01 01 00 00 00 00 09"),
    ),
    "open_logical_channel": (("words alone", "lie", "11 02 00 90 00"), ("channel of two", "garbled", "10 02 00 01 01")),
    "send_apdu": (
        ("count long", "garbled", "10 04 00 FF FF 90 00"),
        ("refused words", "lie", "10 04 00 02 00 6A 88"),
        ("beyond bound", "garbled", "10 03 04 01 04" + 1025 * " 00"),
        ("a full answer", "lie", "10 02 04 00 04" + 1024 * " 00"),
    ),
    "get_eid": (
        ("count long", "garbled", "10 03 00 10 89 04"),
        ("short", "short", "10 10 00 0F" + 15 * " 11"),
        ("beyond bound", "garbled", "10 12 00 11" + 17 * " 11"),
        ("zeros", "lie", "10 11 00 10" + 16 * " 00"),
    ),
    "get_dsi": (("narrow index", "garbled", "10 03 00 01 02 03"),),
    "values": (
        ("no entries", "lie", "10 01 00 00"),
        ("count long", "garbled", "10 01 00 05"),
        ("value long", "garbled", "10 0B 00 01 00 00 00 00 52 00 00 00 FF 02"),
        ("two entries", "lie", "10 15 00 02" + 2 * " 00 00 00 00 52 00 00 00 00 00"),
        ("another id", "lie", "10 0C 00 01 00 00 00 00 53 00 00 00 01 00 01"),
        ("short value", "lie", "10 0C 00 01 00 00 00 00 52 00 00 00 01 00 01"),
    ),
}

CHANNEL_WAITS = ("start:away",)  # a client of the extension service waits until it is there

# Only the channel's result is looked at.
CHANNEL_ONLY = (*CHANNEL_WAITS, "*:modem", "*:bare", "*:lie")

NO_WAIT = {"properties/persist.radio.ssr_wait_s": b"0"}
LEVEL = "properties/persist.vendor.ssr.restart_level"
PRINT_FLAG = "efs/0/nv/item_files/modem/kelvra/qmi_print_flag"


def card(words: str) -> Command:
    """A card slot command: its answer is dumped as long as it says it is."""
    return Command(words, CHANNEL_WAITS, aborts=("*:value max", "*:value -1"))


def file_change(words: str, files: dict[str, bytes] | None = None) -> Command:
    """Writes and deletes take nothing but the result from the answer."""
    return Command(words, (*CHANNEL_WAITS, "*:lie"), files=files or {})


def file_read(words: str, files: dict[str, bytes]) -> Command:
    """A file that claims to go on is asked for the rest, and there is none."""
    return Command(words, (*CHANNEL_WAITS, "*:all max"), files=files)


def print_switch(words: str, files: dict[str, bytes] | None = None) -> Command:
    """Sync and restart follow the file, whatever becomes of them."""
    return Command(words, (*CHANNEL_WAITS, "common *:*", "*:lie"), files={**NO_WAIT, **(files or {})})


def restart(words: str, files: dict[str, bytes]) -> Command:
    """Goes on, whatever becomes of the request."""
    return Command(words, CHANNEL_ONLY, files=files)


def measurement(words: str) -> Command:
    """Without the feature request the values are asked for all the same. The service is waited for."""
    goes_on = ("feature:silent", "feature:refused", "feature:garbled")
    return Command(words, ("start:away",), goes_on=goes_on, seconds=9)


# Neither the remote processors nor the mode of logging decide about a response.
UNLOOKED = tuple(
    f"{op}:{effect}"
    for op in ("remote_mask", "switch_logging")
    for effect in ("silent", "refused", "bare", "lie")
)


def diag(words: str, *spares: str) -> Command:
    return Command(words, spares, seconds=3)


def esim(words: str, *spares: str, hits: int = 1) -> Command:
    """A verdict in one line. The service is waited for."""
    return Command(words, ("start:away", *spares), hits=hits, seconds=8)


COMMANDS = (
    Command("3 0 7 8", CHANNEL_ONLY),
    file_read("3 1", {"efs/0/nv/item_files/modem/kelvra/rf_ant_port_config": b"\1\0\0\0\7\0\0\0"}),
    file_change("3 2", {"efs/0/nv/item_files/modem/kelvra/rf_ant_port_config": b"\1\0\0\0\7\0\0\0"}),
    Command("3 3 1 4 0x80", CHANNEL_ONLY),
    file_read("3 4", {"efs/0/nv/item_files/modem/antenna/ant_tx_config": bytes(16)}),
    file_change("3 5", {"efs/0/nv/item_files/modem/antenna/ant_tx_config": bytes(16)}),
    Command("4 1 0 10", (*CHANNEL_WAITS, "*:cur *"), files={"nv/0/10": b"\1\2\3"}),
    file_change("4 2 1 10 1 2 3", {"nv/1/10": b"old"}),
    file_change("4 3 0 10", {"nv/0/10": b"\1"}),
    file_read("4 4 0 /demo", {"efs/0/demo": b"\1\2\3"}),
    file_change("4 5 0 /demo 1 2 3", {"efs/0/demo": b"the old content"}),
    file_change("4 6 1 /demo", {"efs/1/demo": b"\1"}),
    diag("5 0 0 0 1000 0", *UNLOOKED, "switch_logging #2:*", "open:lie", "send:bare", "send:lie"),
    diag("5 0 1 0 1000 0", "open:lie", "dci_s*:lie"),
    Command("5 0 0 1 0 0", ("*:*",), hits=0, detached=True),
    Command("5 0 1 1 0 0", ("*:*",), hits=0, detached=True),
    # An EID that does not come is asked for again, and it is printed whatever becomes of the file. A power-up that is
    # refused shows only there.
    esim("5 10 1 0", "power_down:refused", "get_eid:[!s]*", "common 84:*", "efs_*:*"),
    esim("5 10 1 1", "power_down:refused", "get_eid:[!s]*", "common 84:*", "efs_*:*"),
    esim("5 10 2 1", "power_down:refused", "power_up:refused", "common 84:*"),
    esim("5 10 3 1", "get_eid:*"),
    esim("5 10 3 0", "get_eid:short", hits=0),
    Command("5 10 4 1", ("start:away",), aborts=("*:three",), seconds=4),
    esim("5 10 5 1", "logical_channel:*"),
    card("5 1"),
    card("5 2 0"),
    card("5 3 0 0 1"),
    card("5 4"),
    card("5 6 0"),
    card("5 6 1 1 1 1"),
    Command("5 5"),
    Command("6 0 1 2 3", CHANNEL_ONLY),
    Command("6 2 4 0 0 0 1 47", CHANNEL_ONLY),
    Command("6 4 39", CHANNEL_ONLY),
    Command("7 1 0", CHANNEL_WAITS),
    Command("7 1 1", CHANNEL_WAITS),
    *(measurement(f"9 {opt} 0") for opt in (*range(13), 20, 21, 30)),
    restart("11 0", {**NO_WAIT, LEVEL: b"ALL_DISABLE"}),
    restart("11 0", {LEVEL: b"ALL_ENABLE"}),
    restart("11 1", {**NO_WAIT, LEVEL: b"ALL_ENABLE"}),
    restart("11 1", {LEVEL: b"ALL_DISABLE"}),
    restart("11 2", {}),
    print_switch("11 4 1"),
    print_switch("11 5 0", {PRINT_FLAG: b"\1"}),
    print_switch("11 6 1"),
)
