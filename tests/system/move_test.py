"""The launcher moves the game, finds it again and links it."""

import unittest

from harness import LAUNCHER
from harness.leavecase import GAME_FILES, LeaveTest

DONE = "move: done, code 0, error 0, copy 0"
HANDED_OFF = "move: handing off to a copy outside the install folder"
INSTALLED = "route: hasKey=1 hasDir=1 hasClient=1 -> INSTALLED (patch + play)"


class MoveTest(LeaveTest):
    def setUp(self):
        super().setUp()
        self.lay_installed(self.GAME)
        self.before = self.snapshot()

    def tree(self, windows_path, snapshot):
        """What lies in a folder, by names relative to it."""
        return {name[len(windows_path):]: snapshot[name]
                for name in self.names_below(windows_path, snapshot)
                if len(name) > len(windows_path)}

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

    def start_installed(self, *arguments):
        """The launcher in the folder of the game."""
        original = self.begin("--nopatch", program=f"{self.GAME}\\{LAUNCHER}")
        log = self.boot_log(self.GAME)
        log.wait_for(INSTALLED)
        self.press("move", *arguments)
        return original

    def assert_moves_through_copy(self, target, *arguments, made=()):
        original = self.start_installed(*arguments)
        log = self.copy_log()
        self.assert_ends_well(original)
        log.wait_for(DONE)
        self.assert_in_order(
            ["move: copy taking over -- armed, waiting for the original to let go",
             "handoff: the original has gone -- settling before we touch the tree",
             "move: the tree is ours -- continuing the move", DONE], log.texts())
        self.assert_moved(target, made)
        self.close_copy()
        # The moved launcher is the one that goes on.
        self.assert_ends_well(
            self.begin("--nopatch", "--autoquit=0.1", program=f"{target}\\{LAUNCHER}"))
        self.assertIn(INSTALLED, self.boot_log(target).texts())

    def test_from_inside_to_a_folder_of_its_own(self):
        self.assert_moves_through_copy("C:\\Моё новое место\\Tolvan Online",
                                       "C:\\Моё новое место", "sub", made=["C:\\Моё новое место"])

    def test_from_inside_to_the_other_drive(self):
        self.assert_moves_through_copy("D:\\Spiele\\It's here", "D:\\Spiele\\It's here",
                                       made=["D:\\Spiele"])

    def test_from_inside_into_itself(self):
        target = self.GAME + "\\deep\\New"
        original = self.start_installed(target)
        log = self.copy_log()
        self.assert_ends_well(original)
        log.wait_for(DONE)
        self.assert_moved(target, made=[self.GAME + "\\deep"])
        self.close_copy()

    def test_from_outside_and_refused_onto_what_stands(self):
        launcher = self.begin("--nopatch")
        log = self.boot_log()
        log.wait_for(INSTALLED)
        self.press("move", "C:\\Games\\Tolvan Online 2")
        log.wait_for("move: FAILED, code 2, error 183, copy 0")
        self.assertEqual(self.snapshot(), self.before)
        self.assertEqual(self.registered_folder(), self.GAME)
        self.press("move", "D:\\Games", "sub")
        log.wait_for(DONE)
        self.assert_moved("D:\\Games\\Tolvan Online", made=["D:\\Games"])
        self.assertNotIn(HANDED_OFF, log.texts())
        self.press("close")
        self.assert_ends_well(launcher)


class RelinkTest(LeaveTest):
    FOUND = "D:\\Games\\Tolvan Online"
    OTHER = "D:\\Backup\\Tolvan Online"

    def setUp(self):
        super().setUp()
        self.register_game("C:\\Gone\\Tolvan Online")
        for folder in (self.FOUND, self.OTHER):
            self.lay_game(folder)
        self.launcher = self.begin()
        self.log = self.boot_log()
        self.log.wait_for("route: opening on ManageBroken")

    def relink(self, *others):
        self.press("relink", self.FOUND, *others)
        self.log.wait_for("notfound: relinked")
        self.assertEqual(self.registered_folder(), self.FOUND)
        self.press("close")
        self.assert_ends_well(self.launcher)
        self.assert_ends_well(self.begin("--nopatch", "--autoquit=0.1"))
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
        before = self.snapshot()
        no_game = "D:\\Backup\\Pictures"
        self.machine.write_file(no_game + "\\me.png", b"a picture")
        self.relink(self.OTHER, no_game, "D:\\Backup", "C:\\Users", self.FOUND)
        after = self.snapshot()
        gone = self.names_below(self.OTHER, before)
        self.assertEqual({name for name in before if name not in after}, gone)
        self.assertIn("D:/Backup/Pictures/me.png", after)
        self.assertTrue(all((self.machine.path(self.FOUND) / name).exists() for name in GAME_FILES))


if __name__ == "__main__":
    unittest.main()
