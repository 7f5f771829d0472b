"""Passes against a server that misbehaves: how they end, in which words, and that nothing is lost."""

import os
import socket
import time
import unittest

from harness import Server
from harness.patchcase import PatchTest

OLD = {"a.dat": b"old a" * 100, "folder/b.dat": b"old b" * 100, "same.dat": b"same" * 100}
NEW = {"a.dat": b"newer a" * 100, "folder/b.dat": b"newer b" * 100, "same.dat": b"same" * 100}

MB = 1_000_000

NOT_DOWNLOADED = ("ErrDownload", "The update list could not be downloaded.")
EMPTY = ("ErrFatal", "The update list came back empty.")
UNREADABLE = ("ErrFatal", "The update list was empty or could not be read.")


def not_verified(name):
    return ("ErrDownload", f"A file could not be downloaded or did not verify: Data/{name}")


class BadServerTest(PatchTest):
    def setUp(self):
        super().setUp()
        self.publish(NEW)
        self.install(OLD)

    def outside(self):
        """What lies on the drive beside the game's data, apart from what a run and the system's own
        HTTP write there."""
        drive = self.machine.path("C:\\")
        return {path.relative_to(drive).as_posix() for path in drive.rglob("*")
                if path.is_file() and self.data not in path.parents
                and path.name not in ("launcher_boot.log", "progress.tsv")
                and "INetC" not in str(path)}

    def assert_end(self, expected, **arguments):
        self.assertEqual(self.run_pass(**arguments), expected)
        self.assert_installed(OLD)

    def test_server_that_is_down(self):
        with socket.socket() as unused:
            unused.bind(("127.0.0.1", 0))
            port = unused.getsockname()[1]
            self.assert_end(NOT_DOWNLOADED, address=f"http://localhost:{port}/")

    def test_certificates_of_unknown_issuers(self):
        for name in ("UNKNOWN_ISSUER", "SELF_SIGNED"):
            with self.subTest(name):
                self.assert_end(NOT_DOWNLOADED, address=os.environ[f"TOLVAN_TEST_HTTPS_{name}"])

    def test_certificates_that_are_wrong_otherwise(self):
        """The list may come with such a certificate, the files may not."""
        for name in ("WRONG_NAME", "EXPIRED"):
            with self.subTest(name):
                self.assert_end(not_verified("a.dat"),
                                address=os.environ[f"TOLVAN_TEST_HTTPS_{name}"])

    def test_lists(self):
        for rule, expected in {
                "close": NOT_DOWNLOADED,
                "empty": EMPTY,
                "body:no entries here": UNREADABLE,
                "body:deleted:a.dat": UNREADABLE,
                "status:404": UNREADABLE,
                "status:500": UNREADABLE,
                "html": UNREADABLE,
        }.items():
            with self.subTest(rule):
                target = "@https" if rule == "close" else "scripts/index.txt"
                Server.set(f"{target}={rule}")
                self.assert_end(expected)
                Server.clear()

    def test_cut_lists(self):
        """What came of the list is taken for the whole of it."""
        text = (self.tree / "scripts" / "index.txt").read_bytes()
        second = text.index(b"\n") + 1
        only_the_first = {**OLD, "a.dat": NEW["a.dat"]}
        for place, expected, files in (
                (text.index(b"="), UNREADABLE, OLD),
                (second, ("Ready", ""), only_the_first),
                (text.index(b"\t", second) - 1, not_verified("folder/b.dat"), only_the_first)):
            with self.subTest(cut=place):
                self.install(OLD)
                Server.set(f"scripts/index.txt=cut:{place}")
                self.assertEqual(self.run_pass(), expected)
                self.assert_installed(files)
                Server.clear()

    def assert_end_within(self, expected, memory, **patience):
        launcher, report = self.start_pass()
        end = report.wait_for_end(**patience)
        peak = launcher.peak_memory()
        launcher.kill()
        self.assertEqual((end.state, end.error_text), expected)
        # A sanitizer's own memory is several times the launcher's.
        if "TOLVAN_SANITIZED" not in os.environ:
            self.assertLess(peak, memory)

    def test_list_of_100_MB_that_means_little(self):
        index = self.tree / "scripts" / "index.txt"
        index.write_bytes((b"x" * 999_999 + b"\n") * 100 + index.read_bytes())
        self.assert_end_within(("Ready", ""), 400 * MB)
        self.assert_installed(NEW)

    @unittest.skipUnless("TOLVAN_LONG_LIST" in os.environ, "takes minutes: 10 lines a tick")
    def test_list_of_100_MB_with_two_and_a_half_million_files(self):
        Server.set("scripts/index.txt=big:100M")
        self.assert_end_within(not_verified("made/up/000000000000.dat"), 1000 * MB, patience=1200)
        self.assert_installed(OLD)

    def assert_silence(self, path, seconds, expected):
        Server.set(f"{path}=stall:50%")
        start = time.monotonic()
        self.assert_end(expected)
        self.assertLess(time.monotonic() - start, seconds + 10)

    def test_silence_in_a_file(self):
        self.assert_silence("patcher/get/a.dat", 20, not_verified("a.dat"))

    def test_silence_in_the_list(self):
        if self.machine.is_wine:
            self.skipTest("Wine waits for ever, where Windows has a limit of its own")
        self.assert_silence("scripts/index.txt", 30, NOT_DOWNLOADED)

    def test_files(self):
        for rule in ("status:404", "status:500", "status:204", "html", "empty", "cut:50%",
                     "cut:0", "short:1", "long:1", "flip:20", "length:+5", "redirect:/nowhere",
                     "redirect:self", "file:patcher/get/same.dat"):
            with self.subTest(rule):
                Server.set(f"patcher/get/a.dat={rule}")
                self.assert_end(not_verified("a.dat"))
                Server.clear()

    def test_a_retry_goes_on_where_a_failed_pass_ended(self):
        Server.set("patcher/get/folder/b.dat=cut:50%")
        self.assertEqual(self.run_pass(), not_verified("folder/b.dat"))
        self.assert_installed({**OLD, "a.dat": NEW["a.dat"]})
        Server.clear()
        self.assertEqual(self.run_pass(), ("Ready", ""))
        self.assert_installed(NEW)

    def test_names_that_leave_the_folder_or_are_no_files(self):
        before = self.outside()
        for name in ("../evil.dat", "x/../../../evil.dat", "..\\..\\evil.dat", "C:/evil.dat",
                     "a.dat:stream", "NUL", "con.txt", "/../../evil.dat", "x" * 300, "evil.dat."):
            with self.subTest(name):
                self.publish(NEW, extra_lines=[f"{name}=1\t25"])
                self.assert_end(not_verified(name))
                self.assertEqual(self.outside(), before)

    def test_names_in_any_script(self):
        names = {"Grüße/ő ű.dat": b"1" * 50, "日本語/ファイル.dat": b"2" * 50,
                 "игра/файл с пробелом.dat": b"3" * 50, "100%/a+b&c#d.dat": b"4" * 50}
        self.publish(names)
        self.assertEqual(self.run_pass(), ("Ready", ""))
        self.assert_installed({**OLD, **names})


if __name__ == "__main__":
    unittest.main()
