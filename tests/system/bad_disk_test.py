"""Passes over disks and folders that stand in the way."""

import unittest

from harness.disk import SmallDisk, make_read_only
from harness.patchcase import PatchTest

OLD = {"a.dat": b"old a" * 100, "b.dat": b"old b" * 100}
NEW = {"a.dat": b"newer a" * 100, "b.dat": b"b" * 600_000}


def not_verified(name):
    return ("ErrDownload", f"A file could not be downloaded or did not verify: Data/{name}")


class BadDiskTest(PatchTest):
    def setUp(self):
        super().setUp()
        self.publish(NEW)

    def mount_game_drive(self, options):
        """Puts the installed game on a small disk of its own; the disk."""
        disk = SmallDisk(self, options)
        self.game = disk.folder / "Game"
        self.data = self.game / "Data"
        self.register_game("D:\\Game")
        self.place_client("D:\\Game\\.Tolvan Online.exe")
        self.install(OLD)
        return disk

    def test_full_disk(self):
        self.mount_game_drive("size=400k")
        self.assertEqual(self.run_pass(), not_verified("b.dat"))
        self.assert_installed({"a.dat": NEW["a.dat"], "b.dat": OLD["b.dat"]})

    def test_read_only_disk(self):
        self.mount_game_drive("size=4m").change("ro")
        self.assertEqual(self.run_pass(), not_verified("a.dat"))
        self.assert_installed(OLD)

    def test_read_only_data_folder(self):
        self.install(OLD)
        make_read_only(self, self.data)
        self.assertEqual(self.run_pass(), not_verified("a.dat"))
        self.assert_installed(OLD)

    def test_read_only_game_folder(self):
        """No file can be moved aside there, but what is not in use can be replaced."""
        self.install(OLD)
        make_read_only(self, self.game)
        self.assertEqual(self.run_pass(), ("Ready", ""))
        self.assert_installed(NEW)

    def test_read_only_folder_of_the_launcher(self):
        self.install(OLD)
        make_read_only(self, self.machine.path(self.HOME))
        self.assertEqual(self.run_pass(), ("Ready", ""))
        self.assert_installed(NEW)
        self.assertFalse(self.boot_log().exists())

    def test_folder_where_a_file_should_be(self):
        self.install({"a.dat/inside.dat": b"kept"})
        self.assertEqual(self.run_pass(), not_verified("a.dat"))
        self.assert_installed({"a.dat/inside.dat": b"kept"})

    def test_file_where_a_folder_should_be(self):
        self.publish({"a/b.dat": b"new" * 100})
        self.install({"a": b"kept"})
        self.assertEqual(self.run_pass(), not_verified("a/b.dat"))
        self.assert_installed({"a": b"kept"})


if __name__ == "__main__":
    unittest.main()
