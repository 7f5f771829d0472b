#!/usr/bin/env python3
"""Lays an out-of-date and partly damaged copy of a published game into an install folder.

Most files are copied from the published tree as they are. A share of them is left out, replaced by
an older version, cut short, emptied or damaged, and leftovers of earlier runs are put beside them:
what a launcher meets on a player's disk, and has to repair. The choice depends on the seed alone.
"""
import argparse
import pathlib
import random
import shutil
import struct
import sys
import zlib

HEADER = 16
TRAILER = 4


def wrap(payload):
    return (b"TPK1" + bytes(4) + struct.pack("<Q", len(payload)) + payload
            + struct.pack("<I", zlib.crc32(payload)))


def payload_of(content):
    return content[HEADER:-TRAILER]


def older(content, chance):
    """A valid file of an earlier version: of another size, or changed in place."""
    payload = bytearray(payload_of(content))
    if chance.random() < 0.5 or len(payload) < 16:
        payload += b"an earlier version was longer"
    else:
        payload[chance.randrange(len(payload))] ^= 0x55
    return wrap(bytes(payload))


def cut_short(content, chance):
    return content[:chance.randrange(len(content))]


def damaged(content, chance, begin, end):
    """A byte between begin and end is wrong."""
    content = bytearray(content)
    content[chance.randrange(begin, end)] ^= 1 << chance.randrange(8)
    return bytes(content)


def damaged_trailer(content, chance):
    return damaged(content, chance, len(content) - TRAILER, len(content))


def damaged_throughout(content, chance):
    """The payload and the trailer."""
    payload = damaged(content, chance, HEADER, len(content) - TRAILER)
    return damaged_trailer(payload, chance)


def damaged_payload(content, chance):
    return damaged(content, chance, HEADER, len(content) - TRAILER)


KINDS = {
    # name: (share of all files, what becomes of the content; None leaves the file out)
    "missing": (0.06, None),
    "older version": (0.06, older),
    "cut short": (0.03, cut_short),
    "emptied": (0.01, lambda content, chance: b""),
    "damaged trailer": (0.02, damaged_trailer),
    "damaged payload and trailer": (0.02, damaged_throughout),
}
HIDDEN = "damaged payload behind a good trailer"


def choose(names, chance, hidden):
    """The kind of each file that does not stay as it is; every kind occurs."""
    shuffled = list(names)
    chance.shuffle(shuffled)
    counts = {kind: max(1, int(share * len(names))) for kind, (share, _) in KINDS.items()}
    counts[HIDDEN] = hidden
    if sum(counts.values()) > len(shuffled):
        sys.exit("age_game.py: there are too few files to damage some of each kind")
    chosen = {}
    for kind, count in counts.items():
        for _ in range(count):
            chosen[shuffled.pop()] = kind
    return chosen


def lay_file(source, target, kind, chance):
    if kind is None:
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(source, target)
        return
    change = damaged_payload if kind == HIDDEN else KINDS[kind][1]
    if change is None:
        return
    target.parent.mkdir(parents=True, exist_ok=True)
    target.write_bytes(change(source.read_bytes(), chance))


def lay_leftovers(data, names, chance):
    """What an interrupted run leaves: an unfinished download of a file that is still missing, and
    files that were moved aside."""
    part = data / (chance.choice(names) + ".part")
    part.parent.mkdir(parents=True, exist_ok=True)
    part.write_bytes(chance.randbytes(1000))
    leftovers = [part]
    for number in (0, 3):
        leftovers.append(data.parent / f"old{number}")
        leftovers[-1].write_bytes(chance.randbytes(1000))
    return leftovers


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("published", type=pathlib.Path,
                        help="the served tree, TREE/current of tolvan-publish")
    parser.add_argument("data", type=pathlib.Path,
                        help="the Data folder of the installed game; it must not exist yet")
    parser.add_argument("--seed", type=int, default=1, help="chooses the files (%(default)s)")
    parser.add_argument("--hidden", type=int, default=0, metavar="N",
                        help="damage the payload of N files and keep their trailer good: only a "
                             "repair pass finds these (%(default)s)")
    parser.add_argument("--verbose", action="store_true", help="name every file that is touched")
    arguments = parser.parse_args()

    source = arguments.published / "patcher" / "get"
    names = sorted(str(path.relative_to(source)) for path in source.rglob("*") if path.is_file())
    if not names:
        sys.exit(f"age_game.py: {source} holds no published files")
    if arguments.data.exists():
        sys.exit(f"age_game.py: {arguments.data} exists already")

    chance = random.Random(arguments.seed)
    # An empty payload leaves nothing to damage.
    worth = [name for name in names if (source / name).stat().st_size > HEADER + TRAILER]
    chosen = choose(worth, chance, arguments.hidden)
    arguments.data.mkdir(parents=True)
    sizes = {}
    for name in names:
        kind = chosen.get(name)
        lay_file(source / name, arguments.data / name, kind, chance)
        sizes.setdefault(kind or "as published", []).append((source / name).stat().st_size)
        if kind and arguments.verbose:
            print(f"{kind:38} {name}")
    missing = [name for name in names if chosen.get(name) == "missing"]
    for leftover in lay_leftovers(arguments.data, missing, chance):
        print(f"{'leftover of an earlier run':38} {leftover.relative_to(arguments.data.parent)}")
    for kind, of_kind in sizes.items():
        print(f"{kind:38} {len(of_kind):6} files {sum(of_kind) / 1e6:8.1f} MB")


if __name__ == "__main__":
    main()
