"""Installs and updates over disks, files and folders that stand in the way, until they are good."""

import re
import unittest

from harness import (CLIENT, LAUNCHER, LifeTest, Server, UpdateTest, another_build, make_files,
                     wait_until, wrapped)
from harness.disk import SmallDisk, make_read_only
from harness.progress import INSTALL_ENDS

CLIENT_PATH = "/patcher/Tolvan%20Online_x64.exe"
LAUNCHER_PATH = "/downloads/Tolvan%20Online.exe"
KB = 1 << 10

BASE_STAGE = "Downloading game files"
DATA_STAGE = "Downloading game data"
CLIENT_STAGE = "Downloading the game client"
FULL = "Write error (is the disk full?)"
NOT_MADE = "Could not create the download file"
NOT_REPLACED = r"Could not replace the file \(error (5|32)\)"

SWAP_FAILED = "selfupdate: swap FAILED, continuing on the current binary"
DEFERRED = "clientupdate: deferred -- the game is running"


class InstallTest(LifeTest):
    BASE = {"config/game.cfg": b"a=1\n", "readme.txt": b"r" * 300_000}
    DATA = {"c.dat": wrapped(b"c" * 300_000)}

    def setUp(self):
        super().setUp()
        self.published.publish(self.DATA, base=self.BASE)
        self.progress = None

    def fail_install(self, stage, error):
        """Begins the install, or goes on with it; it fails so."""
        if self.progress is None:
            self.progress = self.begin_install("full")
            end = self.wait_for_install(self.progress)
        else:
            end = self.retry_install(self.progress)
        self.assert_failed(end, stage, error)

    def assert_installed(self, *names, **others):
        """Just these of the published files are there, each whole, and the other ones."""
        published = {**self.BASE, **{f"Data/{name}": data for name, data in self.DATA.items()},
                     CLIENT: self.client, LAUNCHER: self.launcher}
        expected = {name: published[name] for name in names or published}
        self.assert_files(self.installed(), {**expected, **others})

    def test_disk_that_is_read_only_and_then_fills_up_again_and_again(self):
        self.GAME = "D:\\Games\\Tolvan"
        disk = SmallDisk(self, "size=200k,ro")
        self.fail_install(BASE_STAGE, re.escape(
            f"Could not create the installation folder: {self.GAME}"))
        disk.change("rw")
        there = ["config/game.cfg"]
        for size, stage, name in ((200 * KB, BASE_STAGE, "readme.txt"),
                                  (500 * KB, DATA_STAGE, "c.dat"),
                                  (700 * KB + len(self.client) // 2, CLIENT_STAGE, CLIENT)):
            disk.change(f"size={size}")
            # It fails as often as it is tried.
            for _ in range(2):
                self.fail_install(stage, f"Download failed: {name}  -  {re.escape(FULL)}")
                self.assert_installed(*there)
            there.append("Data/c.dat" if name == "c.dat" else name)
        # A launcher in the folder is no condition: the one that runs still is one.
        disk.change(f"size={700 * KB + len(self.client) + len(self.launcher) // 2}")
        self.assertEqual(self.retry_install(self.progress).state, "InstallDone")
        self.assert_installed(*there)
        disk.change("size=100m")
        told = len(self.progress.read())
        self.press_install("full")
        self.assertEqual(self.progress.wait_for(*INSTALL_ENDS, start=told).state, "InstallDone")
        self.assert_installed()

    def test_what_stands_in_the_way(self):
        """One install runs into one thing after another, each behind the one before."""
        parent = self.machine.make_folder("C:\\Games")
        make_writable = make_read_only(self, parent)
        self.fail_install(BASE_STAGE, re.escape(
            f"Could not create the installation folder: {self.GAME}"))
        make_writable()

        self.game.mkdir()
        make_writable = make_read_only(self, self.game)
        self.fail_install(BASE_STAGE, re.escape(f"Could not create folder: {self.GAME}\\config"))
        make_writable()

        self.machine.write_file(f"{self.GAME}\\config", b"a file")
        self.fail_install(BASE_STAGE, f"Download failed: config/game.cfg  -  {NOT_MADE}")
        self.assertEqual(self.installed(), {"config": b"a file"})
        (self.game / "config").unlink()

        self.machine.write_file(f"{self.GAME}\\readme.txt\\inside.txt", b"kept")
        self.fail_install(BASE_STAGE, f"Download failed: readme.txt  -  {NOT_REPLACED}")
        self.assert_installed("config/game.cfg", **{"readme.txt/inside.txt": b"kept"})
        (self.game / "readme.txt").rename(self.game / "aside")

        self.machine.write_file(f"{self.GAME}\\readme.txt", b"mine")
        release = self.hold(f"{self.GAME}\\readme.txt")
        self.fail_install(BASE_STAGE, f"Download failed: readme.txt  -  {NOT_REPLACED}")
        release()
        self.assert_installed("config/game.cfg",
                              **{"readme.txt": b"mine", "aside/inside.txt": b"kept"})
        (self.game / "aside" / "inside.txt").unlink()

        self.machine.write_file(f"{self.GAME}\\Data", b"a file")
        self.fail_install(DATA_STAGE, f"Download failed: c.dat  -  {NOT_MADE}")
        (self.game / "Data").unlink()

        make_writable = make_read_only(self, self.game)
        self.fail_install(DATA_STAGE, re.escape(
            f"Could not create the data folder: {self.GAME}\\Data\\"))
        make_writable()

        self.machine.write_file(self.client_path, b"an older client")
        release = self.hold(self.client_path)
        self.fail_install(CLIENT_STAGE, f"Download failed: {CLIENT}  -  {NOT_REPLACED}")
        release()
        self.assert_installed(*self.BASE, "Data/c.dat", **{CLIENT: b"an older client"})

        # A launcher that is there already does as well as the published one.
        older = another_build(self.launcher)
        self.machine.write_file(f"{self.GAME}\\{LAUNCHER}", older)
        release = self.hold(f"{self.GAME}\\{LAUNCHER}", sharing=1)
        self.assertEqual(self.retry_install(self.progress).state, "InstallDone")
        self.assert_installed(*self.BASE, "Data/c.dat", CLIENT, **{LAUNCHER: older})


class BothUpdatesTest(UpdateTest):
    """An older launcher and an older client, and a run that could bring both up to date."""

    OLDER = (CLIENT, LAUNCHER)

    def run_with(self, *lines, asking=()):
        """A run that writes these lines, asks the server for these paths, comes to Ready and
        stays."""
        asked = len(Server.log())
        launcher, progress = self.begin_run()
        for line in lines:
            self.log.wait_for(line)
        for path in asking:
            wait_until(lambda: path in Server.log()[asked:], f"{path} is asked for")
        progress.wait_for("Ready")
        self.assertTrue(launcher.is_running())
        launcher.kill()

    def assert_brought_up_to_date(self):
        """The next run replaces what is old; nothing is left of that."""
        self.log.path.unlink(missing_ok=True)
        self.begin_run()
        self.log.wait_for("selfupdate: launcher is current")
        wait_until(lambda: self.programs() == self.new, lambda: f"{self.programs().keys()}")
        self.machine.wait_for_processes(LAUNCHER, 1)

    FAILED_LINES = {CLIENT: "clientupdate: FAILED -- download failed -- ",
                    LAUNCHER: "selfupdate: update FAILED -- download failed -- "}

    def test_full_disk(self):
        self.GAME = "D:\\Tolvan"
        disk = SmallDisk(self, "size=100m")
        for name in (CLIENT, LAUNCHER):
            with self.subTest(name):
                found = {**self.new, name: self.old[name]}
                self.lay(found)
                used = sum(path.stat().st_blocks * 512 for path in self.game.rglob("*"))
                disk.change(f"size={used + len(self.new[name]) // 2}")
                self.run_with(self.FAILED_LINES[name] + FULL)
                self.assert_files(self.programs(), found)
                disk.change("size=100m")
        self.lay(self.old)
        self.assert_brought_up_to_date()

    def test_names_for_the_new_ones_that_cannot_be_used(self):
        lines = [line + NOT_MADE for line in self.FAILED_LINES.values()]
        make_writable = make_read_only(self, self.game)
        # No log can be written either.
        self.run_with(asking=(CLIENT_PATH, LAUNCHER_PATH))
        self.assert_files(self.programs(), self.old)
        make_writable()

        staged = {name: f"{self.GAME}\\{name}{end}"
                  for name, end in ((CLIENT, ".part"), (LAUNCHER, ".new"))}
        for path in staged.values():
            self.machine.write_file(f"{path}\\inside.txt", b"kept")
        self.run_with(*lines)
        inside = {f"{CLIENT}.part/inside.txt": b"kept", f"{LAUNCHER}.new/inside.txt": b"kept"}
        self.assert_files(self.programs(), {**self.old, **inside})
        for path in staged.values():
            folder = self.machine.path(path)
            (folder / "inside.txt").unlink()
            folder.rmdir()

        releases = []
        for path in staged.values():
            self.machine.write_file(path, b"of an earlier run")
            releases.append(self.hold(path))
        self.run_with(*lines)
        self.assert_files(self.programs(), {**self.old, f"{CLIENT}.part": b"of an earlier run",
                                            f"{LAUNCHER}.new": b"of an earlier run"})
        for release in releases:
            release()
        self.assert_brought_up_to_date()

    def test_old_ones_that_cannot_be_replaced(self):
        """Somebody reads the launcher, and a folder takes the client's place."""
        # The pass lasts until the folder is there, however long that takes.
        Server.set("*/patcher/get/*=latency:1000")
        self.published.publish(make_files(30, 20_000, seed=9))
        release = self.hold(self.program, sharing=1)
        self.begin_run()
        client = self.game / CLIENT
        wait_until(lambda: self.programs().get(f"{CLIENT}.part") == self.client, "it is staged")
        client.unlink()
        self.machine.write_file(f"{self.client_path}\\inside.txt", b"kept")
        Server.clear()
        self.log.wait_for(SWAP_FAILED)
        self.log.wait_for(DEFERRED)
        self.assert_files(self.programs(), {
            f"{CLIENT}/inside.txt": b"kept", f"{CLIENT}.part": self.client,
            LAUNCHER: self.old[LAUNCHER], f"{LAUNCHER}.new": self.launcher})
        # The client is tried again and again, the launcher at the next start.
        (client / "inside.txt").unlink()
        client.rmdir()
        self.log.wait_for("clientupdate: swapped in")
        release()
        self.machine.kill_all(LAUNCHER)
        self.assert_brought_up_to_date()


if __name__ == "__main__":
    unittest.main()
