#!/usr/bin/env python3
"""A publish goes on, or is killed, while a player downloads: neither may ever see half a build."""

import argparse
import pathlib
import random
import subprocess
import sys
import tempfile
import threading
import time

from publishing import PUBLISH, index_of, publish, wrapped, write_files

NAMES = [f"folder {n % 7}/file {n}.dat" for n in range(150)]


def make_builds():
    """Two builds: some files differ, some are in one of them only, the rest is the same."""
    chance = random.Random(1)
    builds = []
    for build in range(2):
        files = {}
        for number, name in enumerate(NAMES):
            if number % 10 == build:
                continue
            same = random.Random(number) if number % 3 else chance
            files[name] = same.randbytes(200 + number * 13)
        builds.append(files)
    return builds


class Downloader(threading.Thread):
    """Reads the list, and what it names, again and again as launchers do."""

    def __init__(self, served, builds):
        super().__init__()
        self.served = served
        self.builds = builds
        self.passes = 0
        self.disturbed = 0
        self.problems = []
        self.stopping = threading.Event()

    def run(self):
        while not self.stopping.is_set() and not self.problems:
            self.problems += self.read_build()
            self.passes += 1

    def read_build(self):
        """Every file that a list names has to be there. Unless another release took the place of
        this one meanwhile, it has to be the one that the list means, else that of either build."""
        release = self.served.readlink()
        text = (self.served / "scripts/index.txt").read_bytes()
        build = build_of(text, self.builds)
        if build is None:
            return ["the list belongs to neither build"]
        seen = {}
        for name in build:
            try:
                seen[name] = (self.served / "patcher/get" / name).read_bytes()
            except FileNotFoundError:
                return [f"{name} is in the list, but not there"]
        undisturbed = self.served.readlink() == release
        self.disturbed += not undisturbed
        allowed = [build] if undisturbed else self.builds
        return [f"{name} is of another build than its list" for name, content in seen.items()
                if content not in [wrapped(one[name]) for one in allowed if name in one]]


def build_of(text, builds):
    """The build that a list stands for."""
    listed = b"".join(line for line in text.splitlines(keepends=True)
                      if not line.startswith(b"deleted:"))
    return next((build for build in builds if index_of(build) == listed), None)


def leftovers(tree):
    return [path.name for path in [*tree.iterdir(), *(tree / "releases").iterdir()]
            if path.suffix in (".new", ".old")]


def publish_and_kill(tree, game, after):
    """Whether the kill came before the end."""
    with subprocess.Popen([PUBLISH, tree, "--game", game], stdout=subprocess.DEVNULL) as run:
        time.sleep(after)
        run.kill()
        return run.wait() != 0


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--kills", type=int, default=20)
    parser.add_argument("--seed", type=int, default=random.randrange(1 << 30))
    arguments = parser.parse_args()
    chance = random.Random(arguments.seed)
    print(f"seed {arguments.seed}")

    builds = make_builds()
    with tempfile.TemporaryDirectory(prefix="tolvan-publish.") as name:
        folder = pathlib.Path(name)
        tree = folder / "tree"
        games = [folder / "a", folder / "b"]
        for game, files in zip(games, builds):
            game.mkdir()
            write_files(game, files)
        assert publish(tree, "--game", games[0]).returncode == 0

        downloader = Downloader(tree / "current", builds)
        downloader.start()
        outcomes = {"killed, old build served": 0, "killed, new build served": 0, "in time": 0}
        begin = time.monotonic()
        assert publish(tree, "--game", games[1]).returncode == 0
        usual = time.monotonic() - begin
        littered = 0
        try:
            for kill in range(arguments.kills):
                wanted = kill % 2
                killed = publish_and_kill(tree, games[wanted], chance.uniform(0, 1.2 * usual))
                text = (tree / "current/scripts/index.txt").read_bytes()
                is_new = build_of(text, builds) is builds[wanted]
                outcomes["in time" if not killed else "killed, new build served" if is_new
                         else "killed, old build served"] += 1
                littered += bool(leftovers(tree))
                again = publish(tree, "--game", games[wanted])
                assert again.returncode == 0, again.stderr
                assert not leftovers(tree), leftovers(tree)
                text = (tree / "current/scripts/index.txt").read_bytes()
                assert build_of(text, builds) is builds[wanted], "the run after a kill went wrong"
        finally:
            downloader.stopping.set()
            downloader.join()
        print(f"{outcomes}, {littered} left something behind for the next run to clear")
        print(f"{downloader.passes} downloads of a whole build meanwhile, "
              f"{downloader.disturbed} of them across a publish")
        assert not downloader.problems, downloader.problems
        # Without these the test would not have tried what it is for.
        assert outcomes["killed, old build served"] > 0 and downloader.disturbed > 0


if __name__ == "__main__":
    sys.exit(main())
