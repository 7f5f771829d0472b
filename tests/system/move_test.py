"""The launcher moves the game, finds it again and links it."""

import unittest

from harness import LAUNCHER
from harness.leavecase import INSTALLED, MOVED, LeaveTest

HANDED_OFF = "move: handing off to a copy outside the install folder"


class MoveTest(LeaveTest):
    def setUp(self):
        super().setUp()
        self.lay_installed(self.GAME)
        self.before = self.snapshot()

    def assert_moved(self, target, made=()):
        """The whole game lies at the target and nowhere else; made are folders on the way."""
        after = self.snapshot()
        self.assertEqual(self.tree(target, after), self.tree(self.GAME, self.before))
        known = self.names_below(self.GAME, self.before) | self.names_below(target, after)
        known |= {name.replace("\\", "/") for name in made}
        links = {name for name in after if name.endswith("Tolvan Online.lnk")}
        self.assertEqual(len(links), 2)
        self.assertEqual({name: content for name, content in after.items()
                          if name not in known | links},
                         {name: content for name, content in self.before.items()
                          if name not in known | links})
        self.assertEqual(self.registered_folder(), target)
        for link in self.links():
            content = link.read_bytes()
            path = f"{target}\\{LAUNCHER}"
            self.assertTrue(path.encode() in content or path.encode("utf-16-le") in content, link)

    def assert_moves_through_copy(self, target, *arguments, made=()):
        """The launcher in the folder of the game moves it."""
        original = self.launch("--nopatch", program=f"{self.GAME}\\{LAUNCHER}")
        log = self.boot_log(self.GAME)
        log.wait_for(INSTALLED)
        self.press("move", *arguments)
        log = self.copy_log()
        self.assert_ends_well(original)
        log.wait_for(MOVED)
        self.assert_in_order(
            ["move: copy taking over -- armed, waiting for the original to let go",
             "handoff: the original has gone -- settling before we touch the tree",
             "move: the tree is ours -- continuing the move", MOVED], log.texts())
        self.assert_moved(target, made)
        self.close_copy()
        # The moved launcher is the one that goes on.
        self.launch_and_quit(f"{target}\\{LAUNCHER}")
        self.assertIn(INSTALLED, self.boot_log(target).texts())

    def test_from_inside_to_a_folder_of_its_own(self):
        self.assert_moves_through_copy("C:\\Моё новое место\\Tolvan Online",
                                       "C:\\Моё новое место", "sub", made=["C:\\Моё новое место"])

    def test_from_inside_to_the_other_drive(self):
        self.assert_moves_through_copy("D:\\Spiele\\It's here", "D:\\Spiele\\It's here",
                                       made=["D:\\Spiele"])

    def test_from_inside_into_itself(self):
        target = self.GAME + "\\deep\\New"
        self.assert_moves_through_copy(target, target, made=[self.GAME + "\\deep"])

    def test_from_outside_and_refused_onto_what_stands(self):
        launcher = self.launch("--nopatch")
        log = self.boot_log()
        log.wait_for(INSTALLED)
        self.press("move", "C:\\Games\\Tolvan Online 2")
        log.wait_for("move: FAILED, code 2, error 183, copy 0")
        self.assertEqual(self.snapshot(), self.before)
        self.assertEqual(self.registered_folder(), self.GAME)
        self.press("move", "D:\\Games", "sub")
        log.wait_for(MOVED)
        self.assert_moved("D:\\Games\\Tolvan Online", made=["D:\\Games"])
        self.assertNotIn(HANDED_OFF, log.texts())
        self.press("close")
        self.assert_ends_well(launcher)

    def test_a_move_that_has_begun_comes_to_its_end_before_the_program(self):
        launcher = self.launch("--nopatch")
        self.boot_log().wait_for(INSTALLED)
        # Both buttons in one look at the file, so before the first file is copied.
        self.press("move", "D:\\Games", "sub\nclose")
        self.assert_ends_well(launcher)
        self.assert_moved("D:\\Games\\Tolvan Online", made=["D:\\Games"])


class RelinkTest(LeaveTest):
    FOUND = "D:\\Games\\Tolvan Online"
    OTHER = "D:\\Backup\\Tolvan Online"

    def setUp(self):
        super().setUp()
        self.register_game("C:\\Gone\\Tolvan Online")
        for folder in (self.FOUND, self.OTHER):
            self.lay_game(folder)
        self.launcher = self.launch()
        self.log = self.boot_log()
        self.log.wait_for("route: opening on ManageBroken")

    def relink(self, *others):
        self.press("relink", self.FOUND, *others)
        self.log.wait_for("notfound: relinked")
        self.assertEqual(self.registered_folder(), self.FOUND)
        self.press("close")
        self.assert_ends_well(self.launcher)
        self.launch_and_quit()
        self.assertIn(INSTALLED, self.boot_log().texts())

    def test_search_finds_both_and_relink_keeps_the_other(self):
        self.press("search")
        self.log.wait_for("notfound: the search has ended")
        for folder in (self.FOUND, self.OTHER):
            self.log.wait_for(f"notfound: found {folder}")
        before = self.snapshot()
        self.relink()
        self.assertEqual(self.snapshot(), before)

    def test_relink_deletes_the_other_game_and_nothing_else(self):
        inside, no_client, no_data = (self.FOUND + "\\inside", "D:\\Backup\\Pictures",
                                      "D:\\Backup\\No data")
        self.lay_game(inside)
        self.machine.write_file(no_client + "\\Data\\me.png", b"a picture")
        self.place_client(f"{no_data}\\.{LAUNCHER}")
        # The launcher's own folder and what lies around the game look like games, too.
        for folder in (self.HOME, "D:\\Games"):
            self.place_client(f"{folder}\\.{LAUNCHER}")
            self.machine.make_folder(f"{folder}\\Data")
        before = self.snapshot()
        self.relink(self.OTHER, inside, no_client, no_data, "D:\\Games", "D:\\Backup",
                    self.FOUND, self.FOUND + "\\.", self.HOME, "C:\\Users", "C:\\", "")
        gone = self.names_below(self.OTHER, before)
        self.assertEqual(self.snapshot(),
                         {name: content for name, content in before.items() if name not in gone})


if __name__ == "__main__":
    unittest.main()
