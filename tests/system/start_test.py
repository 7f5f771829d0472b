"""The launcher's start: routes, switches, single instance, boot log and exit codes."""

import unittest

from harness import LAUNCHER, REVEALS, MachineTest
from harness.testcase import LAUNCHER_KEY


START = [
    "wWinMain: enter",
    "wWinMain: SetDefaultDllDirectories done",
    "wWinMain: anchored to own directory",
    "wWinMain: OleInitialize -- entering",
    "wWinMain: OleInitialize -- returned",
    "CreateLauncherWindow: gui.Create -- entering (D3D10.1 + D2D device)",
    "CreateLauncherWindow: gui.Create -- returned",
    "CreateLauncherWindow: restyled to WS_POPUP",
    "CreateLauncherWindow: done (layered + colourkey + WM_CLOSE hook)",
    "wWinMain: setting fps/ups",
    "wWinMain: StartRenderingThread -- entering",
    "wWinMain: StartUpdatingThread -- entering",
    "wWinMain: both threads started",
    "wWinMain: reveal deferred to the first composited frame",
    "wWinMain: window revealed",
]
LOOP = [
    "wWinMain: MessageLoop -- entering",
    "AppLoop: tick 0",
    "AppLoop:   A newsFeed.Poll -- entering",
    "AppLoop:   C state switch -- entering",
    "AppLoop:   D RefreshUi -- entering",
    "AppLoop:   E tick complete, returning",
    "AppLoop: tick 1",
    "AppLoop: tick 2",
]
END = [
    "autoquit: requesting Halt",
    "AppLoop: Halt -> gui.Quit()",
    "wWinMain: MessageLoop -- returned",
    "teardown: g_patch.Shutdown -- entering",
    "teardown: g_newsFeed.Shutdown -- entering",
    "teardown: gui.Clear -- entering",
    "teardown: gui.Clear -- returned",
    "teardown: DestroyWindow -- entering",
    "wWinMain: teardown complete",
]
FRESH = "route: hasKey=0 hasDir=0 hasClient=0 -> FRESH (install flow)"
INSTALLED = "route: hasKey=1 hasDir=1 hasClient=1 -> INSTALLED (patch + play)"
BROKEN = "route: registry points at a missing folder -> ManageBroken (search + relink)"
RUN = "run: starting the patch pass and the two update checks"
QUIT = "--autoquit=0.3"
# Enough for three ticks, however busy the system is.
QUIT_LATER = "--autoquit=3"


class RouteTest(MachineTest):
    def run_to_end(self, *switches, autoquit=QUIT):
        """Runs the launcher until it quits by itself, and returns its log's texts."""
        self.assert_ends_well(self.launch(autoquit, *switches))
        return self.boot_log().texts()

    def test_fresh_machine(self):
        texts = self.run_to_end(autoquit=QUIT_LATER)
        self.assert_in_order(
            START + [FRESH, "route: opening on FirstRunLanguage"] + LOOP + END, texts)
        self.assertEqual(texts[0], START[0])
        self.assertEqual(texts[-1], END[-1])
        for name in ("ClientArch", "CloseAfterStart"):
            self.assertEqual(self.machine.registry_read(LAUNCHER_KEY, name), 0)

    def test_log_is_of_this_run_alone_and_its_times_never_fall(self):
        log = self.boot_log()
        log.path.write_bytes(b"[     0 ms] [tid 1] of an earlier run\r\n" * 1000)
        self.run_to_end()
        times = [line.milliseconds for line in log.read()]
        self.assertEqual(log.texts().count("wWinMain: enter"), 1)
        self.assertNotIn("of an earlier run", log.texts())
        self.assertEqual(times, sorted(times))

    def test_registered_game(self):
        probes = {
            "a missing folder": (None, "hasDir=0 hasClient=0"),
            "the launcher alone": (LAUNCHER, "hasDir=1 hasClient=0"),
        }
        self.register_game()
        for name, (content, expected) in probes.items():
            with self.subTest(name):
                if content:
                    self.place_launcher(f"{self.GAME}\\{content}")
                self.assert_in_order(
                    [f"route: hasKey=1 {expected} -> BROKEN (search + relink)", BROKEN,
                     "route: opening on ManageBroken"], self.run_to_end())
        self.place_client()
        self.assert_in_order(
            [INSTALLED, "route: installed, but --nopatch -- not starting the patch run",
             "route: opening on Ready"], self.run_to_end("--nopatch"))

    def test_switches_beat_what_is_installed(self):
        self.register_game()
        self.place_client()
        cases = [
            (["--uninstall", "--page=settings"],
             ["route: --uninstall -> UninstallConfirm", "route: opening on UninstallConfirm"]),
            (["--page=settings"],
             ["route: overridden by --page=", "route: opening on Settings"]),
            (["--page=problem"],
             ["route: overridden by --page=", "route: opening on <unknown>"]),
            (["--op=move", "--target=C:\\Games", "--page=settings"],
             ["route: handoff copy -> show first, then outlive the original",
              "route: opening on Move"]),
            (["--op=uninstall", "--target=C:\\Games"],
             ["route: handoff copy -> show first, then outlive the original",
              "route: opening on UninstallConfirm"]),
            # An empty target makes it a plain start.
            (["--op=move", "--target=", "--nopatch"], [INSTALLED, "route: opening on Ready"]),
        ]
        for switches, expected in cases:
            with self.subTest(switches=switches):
                texts = self.run_to_end(*switches)
                self.assert_in_order(expected, texts)
                self.assertNotIn(RUN, texts)

    def test_autoquit_takes_two_seconds_unless_a_number_is_given(self):
        for switch in ("--autoquit", "--autoquit=abc"):
            with self.subTest(switch):
                self.assert_ends_well(self.launch(switch))
                lines = self.boot_log().times()
                # The log's times are cut to milliseconds.
                self.assertGreaterEqual(
                    lines["autoquit: requesting Halt"] - lines["wWinMain: MessageLoop -- entering"],
                    1999)

    def test_pass_without_a_game_is_refused(self):
        old = self.machine.write_file(f"{self.HOME}\\old0", b"of the player")
        self.launch()
        self.wait_until_quiet()
        self.press("retry")
        self.boot_log().wait_for("patch: refused -- no install folder is configured")
        self.assertTrue(old.exists())

    def test_log_that_cannot_be_made_hinders_nothing(self):
        self.boot_log().path.mkdir()
        self.assert_ends_well(self.launch(QUIT))


class SingleInstanceTest(MachineTest):
    def start_first(self):
        first = self.launch()
        self.wait_until_quiet()
        return first

    def test_second_start_surfaces_the_first_and_leaves_its_log(self):
        first = self.start_first()
        log = self.boot_log()
        before = log.read()
        # The first one is in front, so it is hidden; the next start brings it back.
        for answer in ("surface: already in front -- minimising", "surface: raising"):
            self.assert_ends_well(self.launch())
            log.wait_for(answer)
        self.assertEqual(log.read()[:len(before)], before)
        self.assertNotIn("wWinMain: another launcher is already running -- asking it to surface, "
                         "and exiting", log.texts())
        self.assertTrue(first.is_running())

    def test_name_counts_and_folder_does_not(self):
        self.start_first()
        same_name = self.place_launcher(f"C:\\Elsewhere\\{LAUNCHER}")
        other_name = self.place_launcher("C:\\Elsewhere\\Another.exe")
        log = self.boot_log("C:\\Elsewhere")
        self.assert_ends_well(self.launch(QUIT, program=same_name))
        self.assertFalse(log.exists())
        self.assert_ends_well(self.launch(QUIT_LATER, program=other_name))
        self.assertIn("AppLoop: tick 2", log.texts())

    def test_objects_vanish_with_a_killed_launcher(self):
        self.start_first().kill()
        self.assert_ends_well(self.launch(QUIT))
        self.assertEqual(self.boot_log().texts()[-1], END[-1])


class RelaunchTest(MachineTest):
    """A launcher that replaces another one, as after a self-update."""

    HELD = ("route: installed, relaunched after a self-update -- holding the run until the old "
            "window has gone")
    GONE = "relaunch: the window we replaced has gone -- starting the run"

    def setUp(self):
        super().setUp()
        self.register_game()
        self.place_client()
        # The process to wait for, apart from the launcher, so that the two can end one by one.
        self.awaited, self.end_awaited = self.stay()

    def relaunch(self, *switches):
        return self.launch(f"--waitpid={self.awaited}", *switches)

    def test_run_is_held_until_the_process_has_gone(self):
        self.relaunch()
        log = self.boot_log()
        revealed = log.wait_for(*REVEALS)
        self.assertNotIn(RUN, log.texts())
        self.end_awaited()
        log.wait_for(RUN)
        self.assert_in_order([INSTALLED, self.HELD, revealed, self.GONE, RUN], log.texts())

    def test_process_that_has_gone_before_is_not_waited_for(self):
        self.end_awaited()
        self.relaunch()
        self.boot_log().wait_for(RUN)

    def test_log_and_place_of_the_old_launcher_are_taken_once_it_has_gone(self):
        old = self.launch("--page=settings")
        log = self.boot_log()
        self.wait_until_quiet()
        before = log.texts()
        new = self.relaunch("--nopatch")
        self.machine.wait_for_processes(LAUNCHER, 2)
        self.assertEqual(log.texts(), before)

        old.kill()
        self.end_awaited()
        log.wait_for("route: installed, but --nopatch -- not starting the patch run")
        texts = log.texts()
        self.assertEqual(texts[0], START[0])
        self.assertNotIn("route: overridden by --page=", texts)
        # A later start finds the new one.
        self.assert_ends_well(self.launch())
        self.assertEqual(log.texts()[:len(texts)], texts)
        self.assertTrue(new.is_running())


if __name__ == "__main__":
    unittest.main()
