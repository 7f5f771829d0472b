"""Ends the handoff copy before each of its steps, as kill -9 would, and looks what is left after the
next start.

A game that is being removed is whole and registered, or gone. A game that is being moved is whole
in the old place or in the new one, and the records point at a whole one. Nothing else changes.

A step is a change of a file, a folder, an attribute, a link or the registry. They are counted in an
undisturbed run first. TOLVAN_KILL_STEPS in the environment says how many of them are tried for each
operation (3 on the host and 1 under Wine, spread over all of them), or "all".
"""

import collections
import os
import subprocess
import unittest

from harness import LAUNCHER, BootLog, wait_until
from harness.leavecase import MOVED, LeaveTest
from harness.testcase import HELPER_FOLDER

STEP_LOG = f"{HELPER_FOLDER}\\steps"


class KillTest(LeaveTest):
    GAME = "C:\\Games\\Tolvan"

    def setUp(self):
        super().setUp()
        self.machine.make_folder(HELPER_FOLDER)
        self.kills = os.environ.get("TOLVAN_KILL_STEPS", "1" if self.machine.is_wine else "3")
        self.lay_installed(self.GAME)
        self.before = self.snapshot()
        self.game = self.tree(self.GAME, self.before)
        self.findings = collections.Counter()
        if not self.machine.is_wine:
            # The state to begin with, to be laid out again for each kill.
            self.saved = self.machine.folder.with_name(self.machine.folder.name + ".saved")
            self.addCleanup(lambda: subprocess.run(["rm", "-rf", self.saved], check=True))
            self.copy_machine(self.machine.folder, self.saved)

    @staticmethod
    def copy_machine(source, target):
        subprocess.run(["rsync", "-aX", "--delete", f"{source}/", f"{target}/"], check=True)

    def restore(self):
        if not self.machine.is_wine:
            return self.copy_machine(self.saved, self.machine.folder)
        # The registry of a machine that runs cannot be put back.
        self.machine.close()
        self.take_machine()
        self.machine.make_folder(HELPER_FOLDER)
        self.lay_installed(self.GAME)

    def run_copy(self, done, *switches, **environment):
        """Runs the handoff copy until it says that it is done, or has ended. True for done."""
        self.restore()
        program = self.place_launcher(f"{self.temporary_folder()}\\@tolvan_op_4242\\{LAUNCHER}")
        log = BootLog(self.machine.path(program).parent / "launcher_boot.log")
        copy = self.launch(*switches, f"--target={self.GAME}", program=program, **environment)
        finished = wait_until(
            lambda: "done" if done in log.texts() else not copy.is_running() and "ended",
            lambda: f"{done!r}, but {log.texts()}") == "done"
        copy.kill()
        return finished

    def count_steps(self, done, *switches):
        self.assertTrue(self.run_copy(done, *switches, TOLVAN_STEP_LOG=STEP_LOG))
        log, = self.machine.path(HELPER_FOLDER).glob("steps.*")
        return log.read_text(encoding="utf-8").splitlines()

    def kill_everywhere(self, name, done, judge, *switches):
        steps = self.count_steps(done, *switches)
        self.assertGreater(len(steps), 10)
        numbers = list(range(1, len(steps) + 1))
        if self.kills != "all":
            share = len(steps) / int(self.kills)
            numbers = [int((index + 0.5) * share) + 1 for index in range(int(self.kills))]
        for number in numbers:
            with self.subTest(operation=name, killed_before=steps[number - 1]):
                finished = self.run_copy(done, *switches, TOLVAN_KILL_AT=str(number))
                self.launch_and_quit()
                self.assertEqual(self.working_folders(), [])
                finding = judge(self.snapshot())
                self.findings[finding + (" (done before)" if finished else "")] += 1
        print(f"\n{name}: {len(numbers)} kills at {len(steps)} steps: " + "; ".join(
            f"{count} {finding}" for finding, count in sorted(self.findings.items())), flush=True)

    def assert_rest_is_untouched(self, after, *places):
        def rest(snapshot):
            ours = set().union(*(self.names_below(place, snapshot) for place in places))
            return {name: content for name, content in snapshot.items()
                    if name not in ours and "Programs/Tolvan Online" not in name
                    and not name.endswith("Tolvan Online.lnk")}
        self.assertEqual(rest(after), rest(self.before))

    def test_uninstall(self):
        def judge(after):
            left = self.tree(self.GAME, after)
            self.assert_rest_is_untouched(after, self.GAME)
            if self.registered_folder() is not None:
                self.assertEqual(left, self.game)
                return "whole and registered"
            self.assertEqual(left, {})
            return "gone"
        self.kill_everywhere("uninstall", "uninstall: finished -> receipt", judge, "--op=uninstall",
                             "--keepsettings=0")

    def kill_move_everywhere(self, name, target, *ways):
        def judge(after):
            places = {"old": self.GAME, "new": target}
            whole = {name for name, place in places.items()
                     if self.tree(place, after).items() >= self.game.items()}
            self.assertTrue(whole, after)
            self.assert_rest_is_untouched(after, self.GAME, target, *ways)
            registered = self.registered_folder()
            both = (not target.startswith(self.GAME)
                    and all(self.tree(place, after) for place in places.values()))
            self.assertIn(registered, [places[name] for name in whole])
            where = " and ".join(sorted(whole))
            return f"whole in the {where} place" + (" and a part of the other"
                                                    if both and len(whole) == 1 else "")
        self.kill_everywhere(name, MOVED, judge, "--op=move", "--sub=0", f"--dest={target}")

    def test_move_on_one_drive(self):
        self.kill_move_everywhere("move on one drive", "C:\\New\\Tolvan", "C:\\New")

    def test_move_across_drives(self):
        self.kill_move_everywhere("move across drives", "D:\\New\\Tolvan", "D:\\New")

    def test_move_into_itself(self):
        self.kill_move_everywhere("move into itself", self.GAME + "\\deep\\Tolvan")


if __name__ == "__main__":
    unittest.main()
