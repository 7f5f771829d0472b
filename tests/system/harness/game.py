"""A small game, published for the launcher by the operator's tool and served by tolvan-server."""

import os
import random
import shutil
import struct
import subprocess
import tempfile
import zlib
from pathlib import Path

LIST = "scripts/index.txt"


def wrapped(payload):
    """The payload as game data files carry it."""
    return (struct.pack("<4sIQ", b"TPK1", 0, len(payload)) + payload
            + struct.pack("<I", zlib.crc32(payload)))


def make_files(count, largest=200_000, seed=1):
    """Game files by their names below Data, different for each seed."""
    source = random.Random(seed)
    return {f"pack/part {number % 7}/file{number:03}.epk":
            wrapped(source.randbytes(source.randrange(largest))) for number in range(count)}


class PublishedGame:
    """What stands in the tree of the tolvan-server beside the test."""

    def __init__(self, files, **others):
        self._tree = Path(tempfile.mkdtemp(dir=os.environ["TOLVAN_TEST_TREE"]))
        self.publish(files, **others)

    def close(self):
        shutil.rmtree(self._tree)

    def publish(self, files=None, base=None, **programs):
        """Makes files the game as it is from now on, base what an installation begins with, and the
        programs (client_x64, client_x86, launcher) the published ones, by their contents. What is
        not given stays as it is."""
        tool = Path(os.environ["TOLVAN_HOST_BIN"]) / "tolvan-publish"
        command = [tool, self._tree]
        if files is not None:
            self.files = files
        with tempfile.TemporaryDirectory() as folder:
            folder = Path(folder)
            for name, content in (("game", files), ("base", base)):
                if content is not None:
                    write_files(folder / name, content)
                    command += [f"--{name}", folder / name]
            for name, content in programs.items():
                write_files(folder, {name: content})
                command += [f"--{name.replace('_', '-')}", folder / name]
            subprocess.run(command, check=True, capture_output=True)

    def served(self, path):
        """Where a file lies that is served at this path below the address."""
        return self._tree / "current" / path

    def serve(self, path, content):
        """Serves a file that no publisher would make."""
        served = self.served(path)
        # The file may be shared with an earlier release.
        served.unlink(missing_ok=True)
        write_files(served.parent, {served.name: content})

    def serve_answer(self, program, content):
        """Lets the updater answer for a program (launcher, client_x64, client_x86) as if content
        was published."""
        self.serve(f"scripts/updater/{program}.txt", b"%d %d\n" % (zlib.crc32(content),
                                                                  len(content)))

    def put_before_list(self, lines):
        """Lets the list that is served begin with lines that no publisher would make."""
        self.serve(LIST, lines + self.served(LIST).read_bytes())

    def url(self, base=None):
        """What a launcher takes as TOLVAN_PATCH_URL."""
        return f"{base or os.environ['TOLVAN_TEST_HTTPS']}{self._tree.name}/current/"


def write_files(folder, files):
    for name, content in files.items():
        path = Path(folder) / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)


def read_files(folder):
    """All files below the folder, by their names with "/"."""
    folder = Path(folder)
    return {path.relative_to(folder).as_posix(): path.read_bytes()
            for path in folder.rglob("*") if path.is_file()}
