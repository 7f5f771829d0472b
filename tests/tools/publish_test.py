#!/usr/bin/env python3
"""tolvan-publish: what it writes again, what it leaves alone, and what it refuses. The content that
launchers fetch is in nginx_test.py."""

import fcntl
import os
import pathlib
import sys
import tempfile
import unittest

from publishing import PROGRAM, index_of, make_launcher, publish, same_crc, wrapped, write_files

FILES = {
    "readme.txt": b"hello\n",
    "Maps/big one.dat": bytes(range(256)) * 3000,
    "Maps/grün 日本.dat": b"names in any script\n",
    "empty": b"",
    "tiny/TPK1": b"TPK1 is no header by itself, not even with a long text behind it",
}


class PublishTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="tolvan-publish.")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.tree = self.folder / "tree"
        self.served = self.tree / "current"
        self.game = self.folder / "game"
        self.game.mkdir()
        write_files(self.game, FILES)

    def publish(self, *arguments, code=0):
        result = publish(self.tree, *arguments)
        self.assertEqual(result.returncode, code, result.stdout + result.stderr)
        return result

    def publish_game(self, *arguments, code=0):
        return self.publish("--game", self.game, *arguments, code=code)

    def releases(self):
        return sorted(path.name for path in (self.tree / "releases").iterdir())

    def read(self, path):
        return (self.served / path).read_bytes()

    def identities(self):
        """What tells a file that was not written again."""
        identities = {}
        for path in (self.served / "patcher").rglob("*"):
            status = path.stat()
            identities[str(path.relative_to(self.served))] = (status.st_ino, status.st_mtime_ns)
        return identities


class Changes(PublishTest):
    def test_unchanged_files_are_not_written_again(self):
        self.publish_game()
        before = self.identities()
        (self.game / "readme.txt").write_bytes(b"other\n")
        for path in self.game.rglob("*"):
            path.touch()
        self.publish_game()
        after = self.identities()
        changed = {path for path in before if before[path] != after[path]}
        self.assertEqual(changed & {"patcher/get/" + name for name in FILES},
                         {"patcher/get/readme.txt"})
        self.assertEqual(self.read("patcher/get/readme.txt"), wrapped(b"other\n"))

    def test_nothing_new_makes_no_release(self):
        self.publish_game()
        self.publish_game()
        for path in self.game.rglob("*"):
            path.touch()
        self.publish_game()
        self.assertEqual(self.releases(), ["000001"])

    def test_a_change_that_size_and_time_hide_is_found(self):
        self.publish_game()
        path = self.game / "readme.txt"
        status = path.stat()
        path.write_bytes(b"HELLO\n")
        os.utime(path, ns=(status.st_atime_ns, status.st_mtime_ns))
        self.publish_game()
        self.assertEqual(self.read("patcher/get/readme.txt"), wrapped(b"HELLO\n"))

    def test_removal(self):
        self.publish_game()
        rest = dict(FILES)
        gone = rest.pop("Maps/big one.dat")
        write_files(self.game, rest)
        self.publish_game()
        self.assertEqual(self.read("scripts/index.txt"),
                         index_of(rest) + b"deleted:Maps/big one.dat\n")
        # Whoever read the list before can still fetch it.
        self.assertEqual(self.read("patcher/get/Maps/big one.dat"), wrapped(gone))

        write_files(self.game, {**rest, "new": b"new"})
        self.publish_game("--keep-removed", "0")
        self.assertIn(b"deleted:Maps/big one.dat\n", self.read("scripts/index.txt"))
        self.assertFalse((self.served / "patcher/get/Maps/big one.dat").exists())

        write_files(self.game, FILES)
        self.publish_game()
        self.assertNotIn(b"deleted:Maps", self.read("scripts/index.txt"))

    def test_another_spelling_is_no_removal(self):
        write_files(self.game, {"Readme.TXT": b"hello\n"})
        self.publish_game()
        write_files(self.game, {"readme.txt": b"hello\n"})
        self.publish_game()
        self.assertEqual(self.read("scripts/index.txt"), index_of({"readme.txt": b"hello\n"}))

    def test_a_file_becomes_a_folder(self):
        write_files(self.game, {"a": b"file", "b/c": b"in a folder"})
        self.publish_game()
        write_files(self.game, {"a/b": b"in a folder", "b": b"file"})
        self.publish_game()
        self.assertEqual(self.read("patcher/get/a/b"), wrapped(b"in a folder"))
        self.assertEqual(self.read("patcher/get/b"), wrapped(b"file"))

    def test_rollback(self):
        self.publish_game()
        write_files(self.game, {"second": b"2"})
        self.publish_game()
        self.publish("--rollback")
        self.assertEqual(self.read("scripts/index.txt"), index_of(FILES))
        self.assertIn("no earlier release", self.publish("--rollback", code=1).stderr)
        # The next publish builds on what is served, and takes a number of its own.
        write_files(self.game, {"third": b"3"})
        self.publish_game()
        self.assertEqual(self.publish("--list").stdout.split(), ["000001", "000002", "000003", "*"])
        self.assertIn(b"deleted:readme.txt\n", self.read("scripts/index.txt"))
        self.assertNotIn(b"second", self.read("scripts/index.txt"))

    def test_old_releases_go(self):
        for number in range(5):
            write_files(self.game, {"file": b"%d" % number})
            self.publish_game("--keep-releases", "2")
        self.assertEqual(self.releases(), ["000004", "000005"])

    def test_dry_run_writes_nothing(self):
        self.publish_game("--dry-run")
        self.assertFalse(self.tree.exists())
        self.publish_game()
        before = self.identities()
        write_files(self.game, {"readme.txt": b"other\n"})
        result = self.publish_game("--dry-run")
        for line in ("changed  patcher/get/readme.txt", "removed  patcher/get/empty"):
            self.assertIn(line, result.stdout)
        self.assertEqual(self.identities(), before)


class Refusals(PublishTest):
    def assert_refused(self, *reasons, arguments=()):
        result = self.publish_game(*arguments, code=2)
        for reason in reasons:
            self.assertIn(reason, result.stderr)
        return result.stderr

    def test_names(self):
        self.publish_game()
        bad = ["CON", "nul.txt", "Maps/com1.dat", "LPT9", "aux /x", "a:b", "c:/x", "stream:$DATA",
               "what?", "star*", "pipe|", "less<", 'quote"', "back\\slash", "dot.", "blank ",
               "folder./x", "tab\tname", "line\nname", "a..b", "a=b", "x.PART", "é" * 120 + "/" +
               "é" * 100]
        good = ["console.txt", "com10.txt", ".hidden", " leading blank", "a.b.c", "percent%20",
                "ünïcode 日本語 🎮.dat", "x.partly", "comma,semi;plus+&'()[]{}!@#$^~`"]
        write_files(self.game, {name: b"x" for name in bad + good})
        bad_bytes = bytes(self.game) + b"/latin\xe9"
        with open(bad_bytes, "wb"):
            pass
        (self.game / "link").symlink_to("dot.")
        message = self.assert_refused("latin\\xE9: is not UTF-8", "link: is a symbolic link",
                                      "tab\\x09name", "line\\x0Aname")
        named = {line.strip().rsplit(": ", 1)[0] for line in message.splitlines()[1:]}
        self.assertEqual(len(named), len(bad) + 2, message)
        for name in good:
            self.assertNotIn(name, named)
        # Nothing of it became visible.
        self.assertEqual(self.read("scripts/index.txt"), index_of(FILES))
        self.assertEqual(self.releases(), ["000001"])

    def test_names_that_are_one_on_windows(self):
        write_files(self.game, {"Maps/One.dat": b"1", "Maps/one.DAT": b"2", "maps/two": b"3",
                                "GRÜN": b"4", "grün": b"5", "thing": b"6", "Thing/x": b"7"})
        message = self.assert_refused("Maps/one.DAT: is one name on Windows with Maps/One.dat",
                                      "maps/two: is one name on Windows with Maps",
                                      "grün: is one name on Windows with GRÜN",
                                      "thing: is one name on Windows with Thing")
        self.assertEqual(len(message.splitlines()), 5, message)

    def test_names_that_the_launcher_uses_itself(self):
        base = self.folder / "base"
        base.mkdir()
        write_files(base, {"old stuff": b"", "OLDER/fine.txt": b"", "Tolvan Online.exe": b"",
                           ".tolvan online.EXE": b"", "Tolvan Online.exe.new": b"",
                           "launcher_boot.log": b"", "Data/old": b""})
        message = self.assert_refused("old stuff: ", "Tolvan Online.exe: ", ".tolvan online.EXE: ",
                                      "Tolvan Online.exe.new: ", "launcher_boot.log: ",
                                      arguments=("--base", base))
        self.assertEqual(len(message.splitlines()), 6, message)

    def test_contents(self):
        damaged = bytearray(wrapped(b"payload"))
        damaged[18] ^= 1
        write_files(self.game, {"damaged": bytes(damaged)})
        self.assert_refused("damaged: is wrapped already, but its payload")

        first, second = same_crc()
        write_files(self.game, {"file": first})
        self.publish_game()
        write_files(self.game, {"file": second})
        self.assert_refused("has its size and CRC")
        self.assertEqual(self.read("patcher/get/file"), wrapped(first))

    def test_programs(self):
        text = self.folder / "text"
        text.write_bytes(b"no program")
        for option, file, reason in (("--client-x64", text, "is no program"),
                                     ("--client-x86", PROGRAM, "is for another processor"),
                                     ("--launcher", PROGRAM, "is no launcher")):
            self.assert_refused(reason, arguments=(option, file))
        launcher = make_launcher(self.folder / "launcher")
        self.assert_refused("is a launcher, not a client", arguments=("--client-x64", launcher))

    def test_folders(self):
        write_files(self.game, {})
        self.assert_refused("holds no file")
        write_files(self.game, FILES)
        self.tree = self.game / "tree"
        self.assert_refused("lies in the published tree, or holds it")

    def test_one_run_at_a_time(self):
        self.publish_game()
        write_files(self.game, {"other": b"other"})
        with open(self.tree / "lock", "rb") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            self.assertIn("another run", self.publish_game(code=1).stderr)
        self.publish_game()


if __name__ == "__main__":
    sys.exit(unittest.main())
