"""Passes against a server that misbehaves: how they end, in which words, and that nothing is lost."""

import os
import socket
import time
import unittest

from harness import GameTest, Server, wrapped
from harness.game import LIST
from harness.progress import (EMPTY, NOT_DOWNLOADED, NOT_MATCHING, READY, UNREADABLE,
                              not_verified)

OLD = {"a.dat": wrapped(b"old a" * 100), "folder/b.dat": wrapped(b"old b" * 100),
       "same.dat": wrapped(b"same" * 100)}
NEW = {**OLD, "a.dat": wrapped(b"newer a" * 100), "folder/b.dat": wrapped(b"newer b" * 100)}
ONLY_A = {**OLD, "a.dat": NEW["a.dat"]}

MB = 1_000_000


class BadServerTest(GameTest):
    FILES = NEW

    def setUp(self):
        super().setUp()
        self.install(OLD)

    def outside(self):
        """What lies on the drive beside the game's data, apart from what a run and the system's own
        HTTP write there."""
        drive, data = self.machine.path("C:\\"), self.data
        return {path.relative_to(drive).as_posix() for path in drive.rglob("*")
                if path.is_file() and data not in path.parents
                and path.name not in ("launcher_boot.log", "progress.tsv")
                and "INetC" not in str(path)}

    def test_server_that_is_down(self):
        with socket.socket() as unused:
            unused.bind(("127.0.0.1", 0))
            port = unused.getsockname()[1]
            self.assert_pass(NOT_DOWNLOADED, OLD, url=f"http://localhost:{port}/")

    def test_certificates_of_unknown_issuers(self):
        for name in ("UNKNOWN_ISSUER", "SELF_SIGNED"):
            with self.subTest(name):
                self.assert_pass(NOT_DOWNLOADED, OLD, url=self.url_with(name))

    def test_certificates_that_are_wrong_otherwise(self):
        """The list may come with such a certificate, the files may not."""
        for name in ("WRONG_NAME", "EXPIRED"):
            with self.subTest(name):
                self.assert_pass(not_verified("a.dat"), OLD, url=self.url_with(name))

    def url_with(self, certificate):
        return self.published.url(os.environ[f"TOLVAN_TEST_HTTPS_{certificate}"])

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
                target = "@https" if rule == "close" else f"*/{LIST}"
                Server.set(f"{target}={rule}")
                self.assert_pass(expected, OLD)
                Server.clear()

    def test_cut_lists(self):
        """What came of the list is taken for the whole of it."""
        text = self.published.served(LIST).read_bytes()
        second = text.index(b"\n") + 1
        for place, expected, files in (
                (text.index(b"="), UNREADABLE, OLD),
                (second, READY, ONLY_A),
                (text.index(b"\t", second) - 1, not_verified("folder/b.dat"), ONLY_A)):
            with self.subTest(cut=place):
                self.install(OLD)
                Server.set(f"*/{LIST}=cut:{place}")
                self.assert_pass(expected, files)
                Server.clear()

    def assert_end_within(self, expected, memory, **patience):
        launcher, report = self.begin()
        end = report.wait_for_end(**patience)
        peak = launcher.peak_memory()
        launcher.kill()
        self.assertEqual((end.state, end.error_text), expected)
        # A sanitizer's own memory is several times the launcher's.
        if "TOLVAN_SANITIZED" not in os.environ:
            self.assertLess(peak, memory)

    def test_list_of_100_MB_that_means_little(self):
        self.published.put_before_list((b"x" * 999_999 + b"\n") * 100)
        self.assert_end_within(READY, 400 * MB)
        self.assertEqual(self.installed(), NEW)

    @unittest.skipUnless("TOLVAN_LONG_LIST" in os.environ, "takes minutes: 10 lines a tick")
    def test_list_of_100_MB_with_two_and_a_half_million_files(self):
        Server.set(f"*/{LIST}=big:100M")
        self.assert_end_within(not_verified("made/up/000000000000.dat"), 1000 * MB, patience=1200)
        self.assertEqual(self.installed(), OLD)

    def test_silence(self):
        cases = [("patcher/get/a.dat", 20, not_verified("a.dat"))]
        if not self.machine.is_wine:  # which waits for ever, where Windows has a limit of its own
            cases.append((LIST, 30, NOT_DOWNLOADED))
        for path, seconds, end in cases:
            with self.subTest(path):
                Server.set(f"*/{path}=stall:50%")
                start = time.monotonic()
                self.assert_pass(end, OLD)
                self.assertLess(time.monotonic() - start, seconds + 10)
                Server.clear()

    def test_files(self):
        for rule in ("status:404", "status:500", "status:204", "html", "empty", "cut:50%",
                     "cut:0", "no-length,cut:20", "chunked,cut:20", "short:1", "long:1", "flip:20",
                     "length:+5", "endless", "junk:31", "redirect:/nowhere", "redirect:self"):
            with self.subTest(rule):
                Server.set(f"*/patcher/get/a.dat={rule}")
                self.assert_pass(not_verified("a.dat"), OLD)
                Server.clear()

    def test_files_that_verify_while_they_come_and_not_when_they_are_read_back(self):
        wrong_trailer = NEW["a.dat"][:-4] + b"1234"
        self.published.serve("patcher/get/a.dat", wrong_trailer)
        self.assert_pass(NOT_MATCHING, {**NEW, "a.dat": wrong_trailer})
        # Any 20 bytes do for such a line, though as a plain file they have a hash of their own.
        plain = {"plain.dat": b"12345678901234567890"}
        self.published.serve("patcher/get/plain.dat", plain["plain.dat"])
        self.published.serve(LIST, b"plain.dat=0\t20\n")
        self.assert_pass(NOT_MATCHING, {**NEW, "a.dat": wrong_trailer, **plain})

    def test_a_retry_goes_on_where_a_failed_pass_ended(self):
        Server.set("*/patcher/get/folder/b.dat=cut:50%")
        self.assert_pass(not_verified("folder/b.dat"), ONLY_A)
        Server.clear()
        self.assert_pass(READY, NEW)

    def test_names_that_leave_the_folder_or_are_no_files(self):
        before = self.outside()
        # Any 20 bytes would do for the line.
        Server.set("*/patcher/get/*=body:12345678901234567890")
        for name in ("../../evil.dat", "x/../../../evil.dat", "..\\..\\evil.dat", "C:/evil.dat",
                     ".. /.. /.. /evil.dat", "a.dat:stream", "NUL", "con.txt", "/../../evil.dat",
                     "x" * 300, "evil.dat.", ""):
            with self.subTest(name):
                self.published.put_before_list(f"{name}=0\t20\n".encode())
                self.assert_pass(not_verified(name), OLD)
                self.assertEqual(self.outside(), before)

    def test_names_in_any_script(self):
        names = {"Grüße/ő ű.dat": wrapped(b"1" * 50), "日本語/ファイル.dat": wrapped(b"2" * 50),
                 "игра/файл с пробелом.dat": wrapped(b"3" * 50),
                 "100%/a+b&c#d.dat": wrapped(b"4" * 50)}
        self.published.publish(names)
        self.assert_pass(READY, {**OLD, **names})


if __name__ == "__main__":
    unittest.main()
