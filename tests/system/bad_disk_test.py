"""Passes over disks and folders that stand in the way."""

import unittest

from harness import GameTest, wrapped
from harness.disk import SmallDisk, make_read_only
from harness.progress import READY, not_verified

OLD = {"a.dat": wrapped(b"old a" * 100), "b.dat": wrapped(b"old b" * 100)}
NEW = {"a.dat": wrapped(b"newer a" * 100), "b.dat": wrapped(b"b" * 600_000)}


class BadDiskTest(GameTest):
    FILES = NEW

    def mount_game_drive(self, options):
        """Puts the installed game on a small disk of its own; the disk."""
        disk = SmallDisk(self, options)
        self.GAME = "D:\\Game"
        self.register_game()
        self.place_client()
        self.install(OLD)
        return disk

    def test_full_disk(self):
        self.mount_game_drive("size=400k")
        self.assert_pass(not_verified("b.dat"), {"a.dat": NEW["a.dat"], "b.dat": OLD["b.dat"]})

    def test_read_only_disk(self):
        self.mount_game_drive("size=4m").change("ro")
        self.assert_pass(not_verified("a.dat"), OLD)

    def test_read_only_data_folder(self):
        self.install(OLD)
        make_read_only(self, self.data)
        self.assert_pass(not_verified("a.dat"), OLD)

    def test_read_only_game_folder(self):
        """No file can be moved aside there, but what is not in use can be replaced."""
        self.install(OLD)
        make_read_only(self, self.machine.path(self.GAME))
        self.assert_pass(READY, NEW)

    def test_read_only_folder_of_the_launcher(self):
        self.install(OLD)
        make_read_only(self, self.machine.path(self.HOME))
        self.assert_pass(READY, NEW)
        self.assertFalse(self.boot_log().exists())

    def test_file_that_somebody_holds(self):
        self.install(OLD)
        release = self.hold(f"{self.GAME}\\Data\\a.dat")
        self.assert_pass(not_verified("a.dat"), OLD)
        release()
        self.assert_pass(READY, NEW)

    def test_path_of_300_characters(self):
        """Which no publisher lets through, and not every system can write."""
        name, content = f"{'l' * 150}/{'p' * 150}", NEW["a.dat"]
        self.published.serve(f"patcher/get/{name}", content)
        crc = int.from_bytes(content[-4:], "little")
        self.published.put_before_list(f"{name}={crc}\t{len(content)}\n".encode())
        _, progress = self.begin()
        self.assertIn(progress.wait_for_end().state, ("Ready", "ErrDownload"))
        self.assertIn(self.installed(), ({}, {**NEW, name: content}))

    def test_folder_where_a_file_should_be(self):
        self.install({"a.dat/inside.dat": b"kept"})
        self.assert_pass(not_verified("a.dat"), {"a.dat/inside.dat": b"kept"})

    def test_file_where_a_folder_should_be(self):
        self.published.publish({"a/b.dat": wrapped(b"new" * 100)})
        self.install({"a": b"kept"})
        self.assert_pass(not_verified("a/b.dat"), {"a": b"kept"})


if __name__ == "__main__":
    unittest.main()
