"""The launcher's own window under real events of the window system."""

import unittest

from harness import desk
from harness.testcase import MachineTest
from harness.waiting import wait_until

TITLE = "Tolvan Online"


@unittest.skipUnless(desk.is_there(), "needs a display with a window manager")
class LauncherWindowTest(MachineTest):
    def setUp(self):
        super().setUp()
        self.launcher = self.launch(TOLVAN_WINDOW="")
        self.window = desk.wait_for_window(TITLE)
        self.wait_until_quiet()

    def test_it_stands_in_the_middle_and_closing_it_leads_to_the_end(self):
        self.assertEqual(desk.place(self.window), (332, 114, 360, 540))
        desk.focus(self.window)
        desk.key("alt+F4")
        self.assert_ends_well(self.launcher)
        self.assert_in_order(["WM_CLOSE received -> Halt", "AppLoop: Halt -> gui.Quit()",
                              "wWinMain: teardown complete"], self.boot_log().texts())

    def test_a_second_start_brings_it_to_the_front_and_a_third_one_minimises_it(self):
        desk.minimise(self.window)
        wait_until(lambda: not desk.find_windows(TITLE), "it is minimised")
        self.assert_ends_well(self.launch(TOLVAN_WINDOW=""))
        self.boot_log().wait_for("surface: raising")
        wait_until(lambda: desk.find_windows(TITLE), "it is back")
        wait_until(lambda: desk.focused() == self.window, "it has the keyboard")
        self.assert_ends_well(self.launch(TOLVAN_WINDOW=""))
        self.boot_log().wait_for("surface: already in front -- minimising")
        wait_until(lambda: not desk.find_windows(TITLE), "it is minimised again")
        self.assertTrue(self.launcher.is_running())

    def test_it_lives_on_when_it_is_moved_and_typed_at(self):
        desk.focus(self.window)
        if not self.machine.is_wine:
            self.push_about()
        desk.key("Escape", "Tab", "a", "ctrl+v")
        desk.key("alt+F4")
        self.assert_ends_well(self.launcher)

    def push_about(self):
        """What works on the host only. Under Wine each frame of a layered window puts it back to
        where Wine last saw it, so no move by the window manager lasts while frames come; and the
        pointer falls through where a layered window draws nothing, as it does on Windows."""
        desk.move_window(self.window, 20, 30)
        wait_until(lambda: desk.place(self.window)[:2] == (20, 30), "it has moved")
        desk.click(100, 100)
        desk.turn_wheel(2)


if __name__ == "__main__":
    unittest.main()
