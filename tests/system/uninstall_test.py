"""The launcher removes the game, and the folder that it lives in itself."""

import shutil
import unittest

from harness import LAUNCHER, wait_until
from harness.leavecase import HELPER, PRODUCT_KEY, LeaveTest

DONE = "uninstall: finished -> receipt"
TREE_IS_OURS = "uninstall: the tree is ours -- starting the removal"
ARMED = "uninstall: copy taking over -- armed, waiting for the original to let go"
IN_USE = "uninstall: refused -- a file in the install folder is in use"
FAILED = "uninstall: handoff FAILED, refusing to remove from inside the folder"


class UninstallTest(LeaveTest):
    def language(self):
        return self.machine.registry_read(rf"{PRODUCT_KEY}\Settings", "LANGUAGE")

    def begin_uninstall(self, *options):
        """From the entry's command to the copy; returns the original."""
        original = self.begin_from_entry()
        self.boot_log(self.GAME).wait_for("route: opening on UninstallConfirm")
        self.press("uninstall", *options)
        return original

    def assert_only_game_has_gone(self, before, links):
        after = self.snapshot()
        lost = before.keys() - after.keys()
        expected = self.names_below(self.GAME, before)
        drive = self.machine.path("C:\\")
        for link in links:
            expected.add("C:/" + link.relative_to(drive).as_posix())
        expected |= {name for name in before if name.endswith("Programs/Tolvan Online")}
        self.assertEqual(lost, expected)
        self.assertEqual({name: after[name] for name in after},
                         {name: before[name] for name in before if name not in lost})

    def test_entry_removes_the_folder_it_lives_in(self):
        self.lay_installed(self.GAME)
        links = self.links()
        self.assertEqual(len(links), 2)
        before = self.snapshot()
        original = self.begin_uninstall()
        log = self.copy_log()
        self.assert_ends_well(original)
        log.wait_for(DONE)
        self.assert_in_order(
            ["route: handoff copy -> show first, then outlive the original", ARMED,
             "handoff: the original has gone -- settling before we touch the tree", TREE_IS_OURS,
             DONE], log.texts())
        self.assert_only_game_has_gone(before, links)
        self.assertIsNone(self.registered_folder())
        self.assertIsNone(self.language())
        self.close_copy()
        self.assert_working_folder_goes()

    def test_settings_are_kept_on_a_path_with_blanks_quotes_and_other_letters(self):
        self.GAME = "C:\\Игры & мир\\It's 'Tolvan' — オンライン"
        self.lay_installed(self.GAME)
        self.assertEqual(self.registered_folder(), self.GAME)
        before, links = self.snapshot(), self.links()
        original = self.begin_uninstall("keep")
        log = self.copy_log()
        self.assert_in_order(
            ["uninstall: handing off to a copy outside the install folder",
             "handoff: replacement started -- holding the window until it draws",
             "handoff: replacement is up -- standing down"],
            self.wait_for_stand_down())
        self.assert_ends_well(original)
        log.wait_for(DONE)
        self.assert_only_game_has_gone(before, links)
        self.assertIsNone(self.registered_folder())
        self.assertEqual(self.language(), 3)
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
        self.GAME = "C:\\Games\\Tolvan"
        self.lay_installed(self.GAME)
        before = self.snapshot()
        held, ready, stop = (f"{self.GAME}\\readme.txt", "C:\\Helper\\ready", "C:\\Helper\\stop")
        self.machine.start(HELPER, f"open|{held}|1|1|{ready}|{stop}")
        wait_until(self.machine.path(ready).exists, "the file is held")
        self.begin_uninstall()
        log = self.copy_log()
        log.wait_for(IN_USE)
        log.wait_for("uninstall: told -- A file in the game folder is in use, so it cannot be "
                     "removed yet. Close anything using it and try again.")
        self.assertEqual(self.snapshot(), before)
        self.assertEqual(self.registered_folder(), self.GAME)

        self.machine.path(stop).touch()
        self.machine.wait_for_processes("tolvan_helper.exe", 0)
        self.press("uninstall")
        log.wait_for(DONE)
        self.assertFalse(self.machine.path(self.GAME).exists())
        self.close_copy()

    def test_running_game_refuses(self):
        self.GAME = "C:\\Games\\Tolvan"
        self.lay_installed(self.GAME)
        client = f"{self.GAME}\\.{LAUNCHER}"
        self.machine.path(client).unlink()
        self.start_helper(client, "stay", "C:\\Helper\\ready", "C:\\Helper\\stop")
        wait_until(self.machine.path("C:\\Helper\\ready").exists, "the game runs")
        self.machine.make_folder("C:\\Users\\Player")
        before = self.snapshot()
        # The button is blocked while a client is counted, so the copy is started as by a launcher
        # whose game was started meanwhile.
        copy = self.start_copy("C:\\Users\\Player")
        log = self.copy_log()
        log.wait_for("uninstall: told -- Tolvan Online is still running. Close the game and try "
                     "again. Nothing has been deleted.")
        self.assertEqual(self.snapshot(), before)
        copy.kill()

    def start_copy(self, users_folder, *switches, wait_for=0):
        """Starts the launcher as a handoff copy of a process. GAME may hold no blank: a starter
        quotes in its own way."""
        folder = f"{users_folder}\\@tolvan_op_4242"
        program = self.place_launcher(f"{folder}\\{LAUNCHER}")
        return self.begin("--op=uninstall", f"--target={self.GAME}", f"--waitpid={wait_for}",
                          *switches, program=program)

    def test_original_that_never_ends_is_waited_for_and_then_ignored(self):
        self.GAME = "C:\\Games\\Tolvan"
        self.lay_installed(self.GAME)
        ready = self.machine.path("C:\\Helper\\ready")
        self.machine.start(HELPER, "stay|C:\\Helper\\ready|C:\\Helper\\stop")
        awaited = wait_until(lambda: ready.exists() and ready.read_text().strip(), "it runs")
        self.start_copy("C:\\Users\\Player", wait_for=awaited)
        log = self.copy_log()
        log.wait_for(DONE)
        lines = {line.text: line.milliseconds for line in log.read()}
        ceiling = "handoff: the original outstayed the ceiling -- going ahead regardless"
        self.assertGreaterEqual(lines[ceiling] - lines[ARMED], 14_900)
        self.assertGreaterEqual(lines[TREE_IS_OURS] - lines[ceiling], 240)
        self.assertFalse(self.machine.path(self.GAME).exists())
        self.close_copy()

    def test_copy_that_never_signals_costs_six_seconds(self):
        self.lay_installed(self.GAME)
        before = self.snapshot()
        original = self.begin_from_entry()
        log = self.boot_log(self.GAME)
        log.wait_for("route: opening on UninstallConfirm")
        # What is copied out and started is a program that knows nothing of windows and signals.
        launcher = self.machine.path(f"{self.GAME}\\{LAUNCHER}")
        launcher.rename(launcher.with_name("running"))
        self.machine.place_program("tolvan_helper.exe", f"{self.GAME}\\{LAUNCHER}")
        self.press("uninstall")
        self.assert_ends_well(original)
        lines = {line.text: line.milliseconds for line in log.read()}
        started = "handoff: replacement started -- holding the window until it draws"
        timed_out = "handoff: replacement did not signal in time -- standing down anyway"
        self.assertGreaterEqual(lines[timed_out] - lines[started], 5_900)
        launcher.with_name("running").rename(launcher)
        self.assertEqual(self.snapshot(), before)
        self.assertEqual(self.registered_folder(), self.GAME)

    def test_no_working_folder_no_removal(self):
        self.lay_installed(self.GAME)
        # Nothing can be made below a file.
        for folder in self.machine.path("C:\\Users").rglob("Temp"):
            shutil.rmtree(folder)
            folder.write_bytes(b"")
        before = self.snapshot()
        original = self.begin_uninstall()
        log = self.boot_log(self.GAME)
        log.wait_for(FAILED)
        log.wait_for("uninstall: told -- Setup could not prepare the removal: could not create a "
                     "working directory. Nothing has been deleted.")
        self.assertEqual(self.snapshot(), before)
        self.assertEqual(self.registered_folder(), self.GAME)
        self.press("close")
        self.assert_ends_well(original)

    def test_killed_copy_leaves_a_working_game_and_goes_at_the_next_start(self):
        self.GAME = "C:\\Games\\Tolvan"
        self.lay_installed(self.GAME)
        before = self.snapshot()
        self.machine.start(HELPER, "stay|C:\\Helper\\ready|C:\\Helper\\stop")
        ready = self.machine.path("C:\\Helper\\ready")
        awaited = wait_until(lambda: ready.exists() and ready.read_text().strip(), "it runs")
        copy = self.start_copy(self.temporary_folder(), wait_for=awaited)
        self.copy_log().wait_for(ARMED)
        copy.kill()
        self.assertEqual(self.snapshot(), before)
        self.assert_ends_well(self.begin("--autoquit=0.1", "--nopatch"))
        self.assertEqual(self.working_folders(), [])
        self.assertIn("route: hasKey=1 hasDir=1 hasClient=1 -> INSTALLED (patch + play)",
                      self.boot_log().texts())


if __name__ == "__main__":
    unittest.main()
