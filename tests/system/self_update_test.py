"""The launcher replaces itself: a real older program finds the published newer one."""

import unittest
from pathlib import Path

from harness import LAUNCHER, Server, UpdateTest, make_files, wait_until

STAGED = "selfupdate: staged -> swapping and relaunching"
SWAP_FAILED = "selfupdate: swap FAILED, continuing on the current binary"
UP = "handoff: replacement is up -- standing down"
TIMED_OUT = "handoff: replacement did not signal in time -- standing down anyway"
GONE = "relaunch: the window we replaced has gone -- starting the run"
CURRENT = "selfupdate: launcher is current"
UPDATER = "*updater.php?f=launcher/*"
DOWNLOAD = "*/downloads/*"

# Programs that carry the launcher's mark and that no system starts.
CORPUS = Path(__file__).resolve().parents[2] / "fuzz" / "corpus" / "executable_image"


class SelfUpdateTest(UpdateTest):
    OLDER = (LAUNCHER,)

    def setUp(self):
        super().setUp()
        self.older = self.old[LAUNCHER]

    def launchers(self):
        return self.programs(LAUNCHER)

    def wait_for_new(self):
        """The published launcher runs in the old one's place, with nothing left of that."""
        self.log.wait_for(CURRENT)
        self.machine.wait_for_processes(LAUNCHER, 1)
        self.assert_files(self.launchers(), {LAUNCHER: self.launcher})

    def test_older_launcher_is_replaced(self):
        old, _ = self.begin_run()
        self.assert_ends_well(old)
        self.wait_for_new()
        self.assert_in_order(
            ["route: installed, relaunched after a self-update -- holding the run until the old "
             "window has gone", GONE, "run: starting the patch pass and the two update checks",
             CURRENT], self.log.texts())
        # It stands where the old one stood.
        command = self.command_line(self.machine.processes(LAUNCHER)[0])
        self.assertRegex(command, r"--x=-?\d+ --y=-?\d+ --waitpid=\d+")

    @staticmethod
    def command_line(process):
        return Path(f"/proc/{process}/cmdline").read_bytes().replace(b"\0", b" ").decode()

    def test_answers_and_files_that_are_no_launcher(self):
        """The running launcher stays as it is, nothing stays beside it, and the game is Ready."""
        cases = {
            f"{UPDATER}=status:500": "COULD NOT CHECK -- check failed -- "
                                     "The manifest request failed (HTTP 500)",
            f"{UPDATER}=body:x12": "COULD NOT CHECK -- the update endpoint answered something "
                                   "that is not a CRC",
            f"{UPDATER}=big:5000": "COULD NOT CHECK -- check failed -- "
                                   "The manifest was larger than expected",
            f"{UPDATER}=body:12x": "update FAILED -- the downloaded launcher did not match its "
                                   "published CRC",
            f"{DOWNLOAD}=status:404": "update FAILED -- download failed -- ",
            f"{DOWNLOAD}=cut:50%": "update FAILED -- download failed -- ",
            f"{DOWNLOAD}=flip:1000": "update FAILED -- the downloaded launcher did not match its "
                                     "published CRC",
        }
        for rule, telling in cases.items():
            with self.subTest(rule):
                Server.set(rule)
                self.assert_refused("selfupdate: " + telling)
                Server.clear()
        with self.subTest("no marker"):
            self.publish_as_launcher(self.client)
            self.assert_refused("selfupdate: update FAILED -- the downloaded file is not a "
                                "launcher")

    def publish_as_launcher(self, content):
        self.published.serve("downloads/Tolvan Online.exe", content)
        self.published.serve_answer("launcher", content)

    def test_other_names_and_checkonly_fetch_nothing(self):
        program = f"{self.GAME}\\Renamed.exe"
        self.machine.write_file(program, self.older).chmod(0o755)
        for start, telling in (
                (lambda: self.begin(program=program),
                 "selfupdate: disabled -- running under a non-published name"),
                (lambda: self.begin_run("--checkonly"), "selfupdate: update available -- "
                 "an update is published, not fetched under --checkonly")):
            with self.subTest(telling):
                self.log.path.unlink(missing_ok=True)
                launcher, _ = start()
                self.log.wait_for(telling)
                launcher.kill()
        self.assert_files(self.launchers(), {LAUNCHER: self.older})

    def test_old_copy_that_is_locked_moves_the_swap_to_the_next_number(self):
        self.machine.write_file(self.program + ".old0", b"locked")
        release = self.hold(self.program + ".old0", sharing=1)
        old, _ = self.begin_run()
        self.assert_ends_well(old)
        self.log.wait_for(CURRENT)
        self.assert_files(self.launchers(), {LAUNCHER: self.launcher,
                                            LAUNCHER + ".old0": b"locked"})
        release()

    def test_swap_whose_second_rename_fails(self):
        """Somebody holds the staged file: the running one goes back to its place."""
        # The pass lasts until the hold is taken, however long that takes.
        Server.set("*/patcher/get/*=latency:1000")
        self.published.publish(make_files(30, 20_000, seed=9))
        launcher, progress = self.begin_run()
        staged = self.game / (LAUNCHER + ".new")
        wait_until(lambda: staged.exists() and staged.read_bytes() == self.launcher,
                   "the new one is staged")
        release = self.hold(self.program + ".new", sharing=1)
        self.assertNotIn("Ready", progress.states())
        Server.clear()
        self.log.wait_for(SWAP_FAILED)
        self.assert_files(self.launchers(), {LAUNCHER: self.older, LAUNCHER + ".new": self.launcher})
        self.assertTrue(launcher.is_running())
        self.assertEqual(progress.states()[-1], "Ready")
        release()
        launcher.kill()
        # The next start tries again.
        old, _ = self.begin_run()
        self.assert_ends_well(old)
        self.wait_for_new()

    def test_newer_program_that_never_signals_costs_six_seconds(self):
        mute = (self.machine.bin / "mute_launcher.exe").read_bytes()
        self.published.publish(launcher=mute)
        old, _ = self.begin_run()
        self.assert_ends_well(old)
        lines = self.log.times()
        self.assertGreaterEqual(lines[TIMED_OUT] - lines[STAGED], 5_900)
        self.assertNotIn(UP, lines)
        self.assert_files(self.launchers(), {LAUNCHER: mute, LAUNCHER + ".old0": self.older})

    def test_newer_program_that_cannot_be_started(self):
        """Both renames are taken back."""
        name = "pe64_marker.dll" if self.machine.is_wine else "elf64_marker.o"
        broken = (CORPUS / name).read_bytes()
        self.publish_as_launcher(broken)
        launcher, _ = self.begin_run()
        self.log.wait_for(SWAP_FAILED)
        self.assert_files(self.launchers(), {LAUNCHER: self.older, LAUNCHER + ".new": broken})
        self.assertTrue(launcher.is_running())


if __name__ == "__main__":
    unittest.main()
