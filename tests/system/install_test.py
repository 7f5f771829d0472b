"""Installs from a server onto an empty machine, with the real launcher."""

import re
import time
import unittest

from harness import CLIENT, LAUNCHER, LifeTest, Server, wait_until, wrapped
from harness.lifecase import HIDDEN_AND_SYSTEM
from harness.testcase import LAUNCHER_KEY, SETTINGS_KEY, UNINSTALL_KEY

DESKTOP_LINK = "[Uu]sers/*/Desktop/Tolvan Online.lnk"
START_MENU_LINK = ("[Uu]sers/*/AppData/Roaming/Microsoft/Windows/Start Menu/Programs/"
                   "Tolvan Online/Tolvan Online.lnk")
EVERYTHING = ("desktop", "startmenu", "full")


class InstallTest(LifeTest):
    def expected(self, full=True):
        files = dict(self.BASE)
        if full:
            files.update({f"Data/{name}": content
                          for name, content in self.published.files.items()})
        return {**files, CLIENT: self.client, LAUNCHER: self.launcher}

    def test_whole_life_of_a_fresh_install(self):
        progress = self.begin_install(*EVERYTHING)
        end = self.wait_for_install(progress)
        self.assertEqual((end.state, end.fraction, end.error_text), ("InstallDone", 1.0, ""))
        self.assert_files(self.installed(), self.expected())
        self.assertEqual(self.machine.attributes(self.client_path) & HIDDEN_AND_SYSTEM,
                         HIDDEN_AND_SYSTEM)
        self.assert_registered()
        for pattern in (DESKTOP_LINK, START_MENU_LINK):
            links = self.machine.find(pattern)
            self.assertEqual(len(links), 1, pattern)
            launcher = f"{self.GAME}\\{LAUNCHER}"
            self.assertEqual(self.read_link(links[0]),
                             [launcher, self.GAME, "Play Tolvan Online", launcher])
        self.assert_in_order(["setup: install starting", "install: finished -> receipt"],
                             self.boot_log().texts())
        self.installer.kill()

        # The patch road finds the folder current, and PLAY starts the client.
        _, run = self.begin(program=f"{self.GAME}\\{LAUNCHER}")
        self.assertEqual(run.wait_for_end().state, "Ready")
        self.assertEqual(run.states(), ["Manifest", "Parse", "Compare", "Ready"])
        log = self.boot_log(self.GAME)
        log.wait_for("clientupdate: up to date")
        log.wait_for("selfupdate: launcher is current")
        self.press("play")
        log.wait_for("spawn: the client reports its login screen is up -- PLAY re-enabled")

    def assert_registered(self):
        launcher = f"{self.GAME}\\{LAUNCHER}"
        size = sum(len(content) for content in self.expected().values())
        for name, value in {"DisplayName": "Tolvan Online", "Publisher": "Tolvan",
                            "InstallLocation": self.GAME, "DisplayIcon": launcher,
                            "UninstallString": f'"{launcher}" --uninstall',
                            "NoModify": 1, "NoRepair": 1}.items():
            self.assertEqual(self.machine.registry_read(UNINSTALL_KEY, name), value, name)
        self.assertEqual(self.machine.registry_read(UNINSTALL_KEY, "EstimatedSize"), size // 1024)
        self.assertRegex(self.machine.registry_read(UNINSTALL_KEY, "InstallDate"), r"^20\d{6}$")
        self.assertEqual(self.machine.registry_read(SETTINGS_KEY, "LANGUAGE"), 1)
        self.assertEqual(self.machine.registry_read(LAUNCHER_KEY, "LastInstallPath"), self.GAME)

    def test_each_failure_is_told_and_a_retry_goes_on_there(self):
        """One install runs into one fault after another, each behind the one before."""
        base, data = "Downloading game files", "Downloading game data"
        url = self.published.url()
        faults = [
            ("scripts/base.php=status:404", base,
             re.escape("Could not read the file list: ") + ".+"),
            ("scripts/base.php=empty", base, re.escape("Could not read the file list: ") + ".*"),
            ("scripts/base.php=body:no list", base,
             re.escape(f"The file list is empty: {url}scripts/base.php")),
            ("scripts/base.php=body:../x=1%09" "5", base, "The file list is empty: .+"),
            ("patcher/base/readme.txt=status:500", base,
             re.escape("Download failed: readme.txt  -  ") + ".+"),
            ("scripts/index.txt=html", data, "The file list is empty: .+"),
            ("patcher/get/*=cut:50%", data, r"Download failed: pack/part .+  -  .+"),
            ("patcher/Tolvan Online_x64.exe=status:404", "Downloading the game client",
             re.escape("Download failed: .Tolvan Online.exe  -  ") + ".+"),
        ]
        progress = None
        for rule, title, error in faults:
            Server.clear()
            Server.set("*/" + rule)
            if progress is None:
                progress = self.begin_install("full")
                end = self.wait_for_install(progress)
            else:
                end = self.retry_install(progress)
            with self.subTest(rule):
                self.assert_failed(end, title, error)
        # A client that waited for its swap is hidden, and in nobody's way.
        self.machine.write_file(self.client_path + ".part", b"an earlier client")
        self.machine.hide(self.client_path + ".part")
        # A dead assets host costs nothing: the running launcher is copied.
        Server.clear()
        Server.set("*/downloads/*=status:503")
        self.assertEqual(self.retry_install(progress).state, "InstallDone")
        self.assert_files(self.installed(), self.expected())

    def test_cancel_in_each_stage_that_fetches(self):
        """It answers at the next block, and a folder that was not there before goes again."""
        large = bytes(4_000_000)
        self.published.publish({"pack/large.epk": wrapped(large)}, base={"large.bin": large})
        listed, fetching = "Installation cancelled", "Failed: Downloading "
        cases = [
            ("patcher/base/large.bin", "| large.bin", fetching + "game files"),
            ("patcher/get/pack/large.epk", "| pack/large.epk", fetching + "game data"),
            ("patcher/Tolvan Online_x64.exe", "| .Tolvan Online.exe", fetching + "the game client"),
            ("downloads/Tolvan Online.exe", "| Tolvan Online.exe", listed),
        ]
        rules = [(f"*/{path}=trickle:100K", path, shown, error) for path, shown, error in cases]
        if not self.machine.is_wine:  # where a silent read is not woken
            rules += [(f"*/{path}=stall", path, "Reading the file list", listed)
                      for path in ("scripts/base.php", "scripts/index.txt")]
        progress = self.begin_install("full")
        self.press("install-cancel")
        self.wait_for_install(progress)
        for rule, path, shown, error in rules:
            with self.subTest(rule):
                Server.set(rule)
                try:
                    self.assert_cancelled_at_once(progress, path, shown, error)
                finally:
                    Server.clear()

    def assert_cancelled_at_once(self, progress, path, shown, error):
        asked, told = len(Server.log()), len(progress.read())
        self.press_install("full")
        wait_until(lambda: path.replace(" ", "%20") in Server.log()[asked:], f"{path} is asked for")
        progress.wait_for_current(shown, start=told)
        began = time.monotonic()
        self.press("install-cancel")
        end = progress.wait_for("InstallFailed", start=told)
        # Long before the file's end, which is 40 s away, or the limit on silence.
        self.assertLess(time.monotonic() - began, 10.0)
        self.assertEqual(end.error_text, error)
        self.assertFalse(self.game.exists(), "a fresh folder is removed")

    def test_cancel_that_comes_too_late_changes_nothing(self):
        progress = self.begin_install()
        progress.wait_for_current("Verifying file integrity")
        self.press("install-cancel")
        self.assertEqual(self.wait_for_install(progress).state, "InstallDone")
        self.assert_files(self.installed(), self.expected(full=False))


if __name__ == "__main__":
    unittest.main()
