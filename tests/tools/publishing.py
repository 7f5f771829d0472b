"""What the tests of the publisher share."""

import os
import pathlib
import random
import struct
import subprocess
import zlib

PUBLISH = pathlib.Path(os.environ["TOLVAN_HOST_BIN"]) / "tolvan-publish"
# A program of this machine stands in for a 64-bit client.
PROGRAM = pathlib.Path("/bin/true").resolve()


def wrapped(payload):
    return (b"TPK1" + bytes(4) + struct.pack("<Q", len(payload)) + payload
            + struct.pack("<I", zlib.crc32(payload)))


def make_launcher(path):
    """A program that carries the mark of a launcher: resource 1."""
    mark = b"TOLVAN-LAUNCHER"
    resources = path.with_suffix(".resources")
    resources.write_bytes(b"TOLVANRC" + struct.pack("<IIIII", 1, 0, 1, 28, len(mark)) + mark)
    subprocess.run(["objcopy", "--add-section", f".tolvan_rsrc={resources}", PROGRAM, path],
                   check=True)
    return path


def write_files(folder, files):
    """Lays files, by their names, into a folder that then holds nothing else."""
    for path in sorted(folder.rglob("*"), reverse=True):
        path.rmdir() if path.is_dir() else path.unlink()
    for name, content in files.items():
        path = folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)


def publish(tree, *arguments):
    return subprocess.run([PUBLISH, tree, *map(str, arguments)], capture_output=True, text=True,
                          errors="replace", timeout=60, check=False)


def index_of(files):
    """The update list that files, by their names, must lead to."""
    lines = [f"{name}={zlib.crc32(content)}\t{len(content) + 20}\n".encode()
             for name, content in sorted(files.items(), key=lambda item: item[0].encode())]
    return b"".join(lines)


def same_crc():
    """Two texts of one length and one CRC."""
    chance = random.Random(1)
    seen = {}
    while True:
        text = chance.randbytes(8)
        other = seen.setdefault(zlib.crc32(text), text)
        if other != text:
            return text, other
