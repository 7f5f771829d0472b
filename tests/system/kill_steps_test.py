"""Ends the launcher before each of its steps, as kill -9 would, and looks what is left.

A step is a change of a file, a folder, an attribute, a link, the registry, or the start of a
process. The steps of an install, of a self-update and of a client update are counted in an
undisturbed run first. After each kill every program has to be a whole one, the next start has to
come up, and the install, the update or the swap has to end well.

TOLVAN_KILL_STEPS in the environment says how many steps of each are tried (4, and 2 under Wine,
where a start is dear), or "all".
"""

import os
import sys
import unittest
from collections import Counter
from concurrent.futures import ThreadPoolExecutor

from harness import CLIENT, LAUNCHER, LifeTest, UpdateTest, wait_until
from harness.lifecase import HIDDEN_AND_SYSTEM
from install_test import DESKTOP_LINK, EVERYTHING, START_MENU_LINK

DEFAULT = "2" if os.environ["TOLVAN_ADAPTER"] == "win32" else "4"
STEPS = os.environ.get("TOLVAN_KILL_STEPS", DEFAULT)
# They mostly wait, but under Wine the starts keep the processors busy.
AT_ONCE = 3 if os.environ["TOLVAN_ADAPTER"] == "win32" else 6
STEP_LOG = "C:\\steps"
CURRENT = "selfupdate: launcher is current"
NO_LAUNCHER = "no launcher under its name"


class Trial:
    """One machine on which the launcher is killed once. No test by itself."""

    program = None

    def begin_counted(self, kill_at):
        self.launcher_process, progress = self.begin(
            program=self.program, TOLVAN_KILL_AT=str(kill_at), TOLVAN_STEP_LOG=STEP_LOG)
        return progress

    def steps(self):
        """The steps of the first launcher that ran."""
        logs = list(self.machine.path("C:\\").glob("steps.*"))
        # The later ones were written to later.
        first = min(logs, key=lambda path: path.stat().st_mtime_ns) if logs else None
        return first.read_text(encoding="utf-8").splitlines() if first else []

    def whole(self, path, *contents):
        """Whether a program is there; it may be nothing but one of the contents."""
        if not path.exists():
            return False
        self.assertIn(path.read_bytes(), contents, f"{path.name} is not whole")
        return True


class InstallTrial(Trial, LifeTest):
    """An install with everything onto an empty machine."""

    def run_counted(self, kill_at):
        progress = self.begin_counted(kill_at)
        self.press_install(*EVERYTHING)
        wait_until(lambda: not self.launcher_process.is_running()
                   or "InstallDone" in progress.states(), "the install ends")
        self.launcher_process.kill()

    def check(self, found):
        self.whole(self.game / CLIENT, self.client)
        self.whole(self.game / LAUNCHER, self.launcher)
        self.boot_log().path.unlink(missing_ok=True)
        launcher, progress = self.begin()
        self.boot_log().wait_for("AppLoop: tick 2")
        if any("INSTALLED" in text for text in self.boot_log().texts()):
            found["registered already"] += 1
            self.assertEqual(progress.wait_for_end().state, "Ready")
            if not all(self.machine.find(link) for link in (DESKTOP_LINK, START_MENU_LINK)):
                found["registered, but without both links"] += 1
        else:
            found["installed again"] += 1
            self.press_install(*EVERYTHING)
            end = self.wait_for_install(progress)
            self.assertEqual(end.state, "InstallDone", f"{end.current_file}: {end.error_text}")
            self.assertTrue(self.machine.find(DESKTOP_LINK))
        launcher.kill()
        self.assert_files(self.installed(), {
            **self.BASE, CLIENT: self.client, LAUNCHER: self.launcher,
            **{f"Data/{name}": content for name, content in self.published.files.items()}})


class UpdateTrial(Trial, UpdateTest):
    """A start that brings launcher and client up to date."""

    def is_current(self):
        return ((self.game / LAUNCHER).exists() and CURRENT in self.log.texts()
                and (self.game / CLIENT).read_bytes() == self.client)

    def run_counted(self, kill_at):
        self.begin_counted(kill_at)
        self.launcher_process.process()
        # It has ended, and the one that it may have started too.
        wait_until(lambda: self.is_current() or (
            not self.launcher_process.is_running() and not self.machine.processes(LAUNCHER)),
            "the update ends")
        self.machine.kill_all(LAUNCHER)

    def check(self, found):
        self.assertTrue(self.whole(self.game / CLIENT, self.client, self.old[CLIENT]))
        if not self.whole(self.game / LAUNCHER, self.launcher, self.old[LAUNCHER]):
            # Both are there and whole, under other names: the way out is to rename one by hand.
            found[NO_LAUNCHER] += 1
            aside = self.game / (LAUNCHER + ".old0")
            self.assertTrue(self.whole(aside, self.old[LAUNCHER]))
            self.assertTrue(self.whole(self.game / (LAUNCHER + ".new"), self.launcher))
            aside.rename(self.game / LAUNCHER)
        self.log.path.unlink(missing_ok=True)
        self.begin_run()
        wait_until(self.is_current, lambda: f"all is current: {self.log.texts()}")
        self.assertEqual(self.machine.attributes(self.client_path) & HIDDEN_AND_SYSTEM,
                         HIDDEN_AND_SYSTEM if CLIENT in self.OLDER else 0)
        found["brought up to date"] += 1
        self.machine.kill_all(LAUNCHER)
        left = {path.name for path in self.game.iterdir()} - {"Data", "launcher_boot.log"}
        self.assertEqual(left, {LAUNCHER, CLIENT})


class LauncherTrial(UpdateTrial):
    OLDER = (LAUNCHER,)


class ClientTrial(UpdateTrial):
    """Beside what an earlier self-update has left."""

    OLDER = (CLIENT,)

    def setUp(self):
        super().setUp()
        self.machine.write_file(self.program + ".old0", self.launcher)
        self.machine.write_file(self.program + ".new", b"half a launcher")


def run_trial(kind, kill_at):
    """Kills before a step (0: not at all). Returns the step, what was found, and what is wrong."""
    trial, found = kind("check"), Counter()
    try:
        trial.setUp()
        trial.run_counted(kill_at)
        steps = trial.steps()
        if kill_at:
            trial.check(found)
        return steps, found, None
    except AssertionError as error:
        return [], found, error
    finally:
        trial.doCleanups()


class KillTest(unittest.TestCase):
    def kill_at_every_step(self, kind, name):
        steps, _, error = run_trial(kind, 0)
        self.assertIsNone(error)
        self.assertGreater(len(steps), 5)
        numbers = list(range(1, len(steps) + 1))
        if STEPS != "all":
            wanted = int(STEPS)
            numbers = [numbers[-1 - index * (len(numbers) - 1) // wanted]
                       for index in range(wanted)]
        found = Counter()
        with ThreadPoolExecutor(AT_ONCE) as pool:
            for number, (made, seen, error) in zip(
                    numbers, pool.map(lambda number: run_trial(kind, number), numbers)):
                step = made[-1] if made else steps[number - 1]
                with self.subTest(step=step):
                    if error:
                        raise error
                if seen[NO_LAUNCHER]:
                    found[f"{NO_LAUNCHER}, before step {step!r}"] += 1
                found += seen
        told = "; ".join(f"{count} times {what}" for what, count in sorted(found.items()))
        print(f"\n{name}: {len(steps)} steps, {len(numbers)} kills: {told}", file=sys.stderr,
              flush=True)
        return found

    def test_install(self):
        self.kill_at_every_step(InstallTrial, "install")

    def test_launcher_swap(self):
        found = self.kill_at_every_step(LauncherTrial, "self-update")
        # Between the two renames, and nowhere else.
        self.assertLessEqual(found[NO_LAUNCHER], 1)

    def test_client_swap(self):
        found = self.kill_at_every_step(ClientTrial, "client update")
        self.assertEqual(found[NO_LAUNCHER], 0)


if __name__ == "__main__":
    unittest.main()
