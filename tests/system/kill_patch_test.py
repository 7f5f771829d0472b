"""Kills the launcher with SIGKILL at random instants of patch passes, and looks what is left.

Every file of the game has to be the old one or the new one, whole; the next pass has to end in
Ready, and nothing else may be left after it.

TOLVAN_KILLS in the environment says how often (20), TOLVAN_SEED which instants.
"""

import os
import random
import time
import unittest
import zlib
from collections import Counter

from harness import GameTest, PublishedGame, Server, make_files
from harness.progress import TERMINAL

KILLS = int(os.environ.get("TOLVAN_KILLS", "20"))
SEED = int(os.environ.get("TOLVAN_SEED", str(random.randrange(1 << 30))))

# Where to strike, in turn: a state, the longest wait in it in seconds, and how the server is to
# behave meanwhile. Without a fault a hundred renames follow one another in Update.
AIMS = [
    ("Manifest", 0.10, "*/scripts/index.txt=latency:80"),
    ("Update", 0.30, None),
    ("Parse", 0.02, None),
    ("Update", 0.30, None),
    ("Compare", 0.05, None),
    ("Update", 0.50, "*/patcher/get/*=latency:5"),
    ("Verify", 0.002, None),
    ("Update", 0.50, "*/patcher/get/*=trickle:2M"),
]
STATES = ("Manifest", "Parse", "Compare", "Update", "Verify")
PAUSE = 0.0005

# A file without a wrapper is read to its end in every pass, so that Compare lasts. It is the same
# in both builds, and sparse.
PLAIN_NAME = "film.dat"
PLAIN_SIZE = 100 << 20


def plain_line():
    crc = 0
    for _ in range(PLAIN_SIZE >> 20):
        crc = zlib.crc32(bytes(1 << 20), crc)
    return f"{PLAIN_NAME}={crc}\t{PLAIN_SIZE}\n".encode()


class KillTest(GameTest):
    def setUp(self):
        super().setUp()
        # Some files are the same in both builds, and one is large.
        old, new = make_files(150, 20_000, seed=3), make_files(150, 20_000, seed=4)
        new.update({name: old[name] for name in list(old)[::9]})
        for build, seed in ((old, 5), (new, 6)):
            build["large.dat"] = max(make_files(9, 8_000_000, seed).values(), key=len)
        self.builds = [PublishedGame(files) for files in (old, new)]
        line = plain_line()
        for build in self.builds:
            self.addCleanup(build.close)
            build.put_before_list(line)
        self.data.mkdir()
        with open(self.data / PLAIN_NAME, "wb") as file:
            file.truncate(PLAIN_SIZE)

    def installed(self):
        hidden = self.data.with_name(PLAIN_NAME)
        (self.data / PLAIN_NAME).rename(hidden)
        files = super().installed()
        hidden.rename(self.data / PLAIN_NAME)
        return files

    def bring_up_to(self, build):
        launcher, progress = self.begin(TOLVAN_PATCH_URL=build.url())
        end = progress.wait_for_end()
        launcher.kill()
        self.assertEqual(end.state, "Ready", end)

    def kill_in(self, build, state, wait):
        """Kills the launcher in a pass; returns the state it had told last."""
        launcher, progress = self.begin(TOLVAN_PATCH_URL=build.url())
        launcher.process()
        while not any(moment.state in (state, *TERMINAL) for moment in progress.read()):
            time.sleep(PAUSE)
            self.assert_runs(launcher)
        time.sleep(wait)
        launcher.kill()
        return progress.read()[-1].state

    def top_files(self):
        return {path.name for path in self.machine.path(self.GAME).iterdir() if path.is_file()}

    def assert_whole(self, before):
        """Each file is the old or the new one; returns what else lies there."""
        found = self.installed()
        parts = [name for name in found if name.endswith(".part")]
        for name in found.keys() - set(parts):
            self.assertIn(found[name], [build.files.get(name) for build in self.builds], name)
        self.assertEqual(before.files.keys() - found.keys(), set(), "lost")
        return Counter({"parts": len(parts), "files": len(found) - len(parts),
                        "old copies": sum(name.startswith("old") for name in self.top_files())})

    def test_nothing_is_lost(self):
        dice = random.Random(SEED)
        before, target = self.builds
        self.bring_up_to(before)
        struck, found = Counter(), Counter()
        aims = AIMS * (KILLS + 1)
        while sum(struck[state] for state in STATES) < KILLS:
            state, longest, fault = aims.pop(0)
            if fault:
                Server.set(fault)
            last = self.kill_in(target, state, dice.uniform(0, longest))
            Server.clear()
            struck[last] += 1
            with self.subTest(seed=SEED, kill=sum(struck.values()), struck_in=last):
                found += self.assert_whole(before)
                self.bring_up_to(target)
                self.assertEqual(self.installed(), {**before.files, **target.files})
                self.assertEqual(self.top_files(), {".Tolvan Online.exe"})
            before, target = target, before
        told = ", ".join(f"{struck[state]} in {state}" for state in STATES)
        print(f"\n{KILLS} kills (seed {SEED}): {told}; {struck['Ready']} more came too late. Found "
              f"{found['files']} whole files and no other, {found['parts']} unfinished downloads, "
              f"{found['old copies']} files moved aside; every next pass ended in Ready and left "
              "nothing", flush=True)


if __name__ == "__main__":
    unittest.main()
