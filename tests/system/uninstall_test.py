"""The launcher removes the game, and the folder that it lives in itself."""

import shutil
import unittest

from harness import LAUNCHER, wait_until
from harness.leavecase import INSTALLED, LeaveTest
from harness.testcase import SETTINGS_KEY

DONE = "uninstall: finished -> receipt"
TREE_IS_OURS = "uninstall: the tree is ours -- starting the removal"
ARMED = "uninstall: copy taking over -- armed, waiting for the original to let go"
IN_USE = "uninstall: refused -- a file in the install folder is in use"
FAILED = "uninstall: handoff FAILED, refusing to remove from inside the folder"


class UninstallTest(LeaveTest):
    # A starter quotes blanks in its own way.
    PLAIN_PATH = "C:\\Games\\Tolvan"

    def lay(self, folder):
        self.GAME = folder
        self.lay_installed(folder)
        self.before = self.snapshot()

    def language(self):
        return self.machine.registry_read(SETTINGS_KEY, "LANGUAGE")

    def begin_uninstall(self, *options):
        """From the entry's command to the copy; returns the original."""
        original = self.launch_from_entry()
        self.boot_log(self.GAME).wait_for("route: opening on UninstallConfirm")
        self.press("uninstall", *options)
        return original

    def assert_nothing_has_gone(self):
        self.assertEqual(self.snapshot(), self.before)
        self.assertEqual(self.registered_folder(), self.GAME)

    def assert_only_game_has_gone(self, language=None):
        gone = self.names_below(self.GAME, self.before)
        links = {name for name in self.before if name.endswith("/Tolvan Online.lnk")}
        self.assertEqual(len(links), 2)
        menu = {name for name in self.before if name.endswith("Programs/Tolvan Online")}
        self.assertEqual(self.snapshot(), {name: content for name, content in self.before.items()
                                           if name not in gone | links | menu})
        self.assertIsNone(self.registered_folder())
        self.assertEqual(self.language(), language)

    def test_entry_removes_the_folder_it_lives_in(self):
        self.lay(self.GAME)
        original = self.begin_uninstall()
        log = self.copy_log()
        self.assert_ends_well(original)
        log.wait_for(DONE)
        self.assert_in_order(
            ["route: handoff copy -> show first, then outlive the original", ARMED,
             "handoff: the original has gone -- settling before we touch the tree", TREE_IS_OURS,
             DONE], log.texts())
        self.assert_only_game_has_gone()
        self.close_copy()
        self.assert_working_folder_goes()

    def test_settings_are_kept_on_a_path_with_blanks_quotes_and_other_letters(self):
        self.lay("C:\\Игры & мир\\It's 'Tolvan' — オンライン")
        self.assertEqual(self.registered_folder(), self.GAME)
        original = self.begin_uninstall("keep")
        log = self.copy_log()
        self.assert_in_order(
            ["uninstall: handing off to a copy outside the install folder",
             "handoff: replacement started -- holding the window until it draws",
             "handoff: replacement is up -- standing down"],
            self.wait_for_stand_down())
        self.assert_ends_well(original)
        log.wait_for(DONE)
        self.assert_only_game_has_gone(language=3)
        self.close_copy()

    def wait_for_stand_down(self):
        """The original's log goes with its folder, so it is read up to its last lines."""
        log, texts = self.boot_log(self.GAME), []

        def is_over():
            texts[:] = log.texts() or texts
            return any(text.endswith("standing down") for text in texts) or not log.exists()
        wait_until(is_over, "the original stands down")
        return texts

    def test_file_in_use_refuses_until_it_is_free(self):
        self.lay(self.GAME)
        release = self.hold(f"{self.GAME}\\readme.txt", sharing=1)
        self.begin_uninstall()
        log = self.copy_log()
        log.wait_for(IN_USE)
        log.wait_for("uninstall: told -- A file in the game folder is in use, so it cannot be "
                     "removed yet. Close anything using it and try again.")
        self.assert_nothing_has_gone()
        release()
        self.press("uninstall")
        log.wait_for(DONE)
        self.assert_only_game_has_gone()
        self.close_copy()

    def test_running_game_refuses(self):
        self.lay(self.PLAIN_PATH)
        self.machine.path(self.client_path).unlink()
        self.stay(program=self.client_path)
        self.before = self.snapshot()
        # The button is blocked while a client is counted, so the copy is started as by a launcher
        # whose game was started meanwhile.
        copy = self.start_copy()
        log = self.copy_log()
        log.wait_for("uninstall: told -- Tolvan Online is still running. Close the game and try "
                     "again. Nothing has been deleted.")
        self.assert_nothing_has_gone()
        copy.kill()

    def start_copy(self, wait_for=0):
        """Starts the launcher as a handoff copy of a process."""
        program = self.place_launcher(f"{self.temporary_folder()}\\@tolvan_op_4242\\{LAUNCHER}")
        return self.launch("--op=uninstall", f"--target={self.GAME}", f"--waitpid={wait_for}",
                           program=program)

    def test_original_that_never_ends_is_waited_for_and_then_ignored(self):
        self.lay(self.PLAIN_PATH)
        self.start_copy(wait_for=self.stay()[0])
        log = self.copy_log()
        log.wait_for(DONE)
        lines = log.times()
        ceiling = "handoff: the original outstayed the ceiling -- going ahead regardless"
        self.assertGreaterEqual(lines[ceiling] - lines[ARMED], 14_900)
        self.assertGreaterEqual(lines[TREE_IS_OURS] - lines[ceiling], 240)
        self.assert_only_game_has_gone()
        self.close_copy()

    def test_copy_that_never_signals_costs_six_seconds(self):
        self.lay(self.GAME)
        original = self.launch_from_entry()
        log = self.boot_log(self.GAME)
        log.wait_for("route: opening on UninstallConfirm")
        # What is copied out and started is a program that knows nothing of windows and signals.
        launcher = self.machine.path(f"{self.GAME}\\{LAUNCHER}")
        launcher.rename(launcher.with_name("running"))
        self.machine.place_program("tolvan_helper.exe", f"{self.GAME}\\{LAUNCHER}")
        self.press("uninstall")
        self.assert_ends_well(original)
        lines = log.times()
        started = "handoff: replacement started -- holding the window until it draws"
        timed_out = "handoff: replacement did not signal in time -- standing down anyway"
        self.assertGreaterEqual(lines[timed_out] - lines[started], 5_900)
        launcher.with_name("running").rename(launcher)
        self.assert_nothing_has_gone()

    def test_no_working_folder_no_removal(self):
        self.lay(self.GAME)
        # Nothing can be made below a file.
        for folder in self.machine.path("C:\\Users").rglob("Temp"):
            shutil.rmtree(folder)
            folder.write_bytes(b"")
        self.before = self.snapshot()
        original = self.begin_uninstall()
        log = self.boot_log(self.GAME)
        log.wait_for(FAILED)
        log.wait_for("uninstall: told -- Setup could not prepare the removal: could not create a "
                     "working directory. Nothing has been deleted.")
        self.assert_nothing_has_gone()
        self.press("close")
        self.assert_ends_well(original)

    def test_killed_copy_leaves_a_working_game_and_goes_at_the_next_start(self):
        self.lay(self.PLAIN_PATH)
        copy = self.start_copy(wait_for=self.stay()[0])
        self.copy_log().wait_for(ARMED)
        copy.kill()
        self.assert_nothing_has_gone()
        self.launch_and_quit()
        self.assertEqual(self.working_folders(), [])
        self.assertIn(INSTALLED, self.boot_log().texts())


if __name__ == "__main__":
    unittest.main()
