#!/usr/bin/env python3
"""docs/nginx.conf serves a published tree: publishes one, runs nginx with it, and fetches."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time
import unittest
import zlib

from publishing import PROGRAM, index_of, make_launcher, publish, wrapped, write_files

SOURCES = pathlib.Path(__file__).resolve().parents[2]
MAKE_CERTIFICATES = SOURCES / "tools/server/make_certificates.sh"
CONFIGURATION = SOURCES / "docs/nginx.conf"
NGINX = "/usr/sbin/nginx"
PATIENCE = 20

FILES = {"Maps/grün 日本.dat": b"names in any script\n", "help.html": b"<p>just bytes</p>\n",
         "a+b & c%.txt": b"signs\n", "empty": b"",
         "TPK1": b"TPK1 is no header by itself, not even with a long text behind it"}


def substitute(text, wanted):
    """Gives the lines marked as the operator's own other values; each must be there."""
    for pattern, value in wanted.items():
        text, count = re.subn(pattern, lambda _: value, text)
        assert count == 1, f"{pattern} stands {count} times in {CONFIGURATION}"
    return text


class NginxTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(
            cls.enterClassContext(tempfile.TemporaryDirectory(prefix="tolvan-nginx.")))
        cls.tree = cls.folder / "tree"
        cls.game = cls.folder / "game"
        cls.game.mkdir()
        write_files(cls.game, FILES)
        base = cls.folder / "base"
        base.mkdir()
        write_files(base, {"licence.txt": b"licence\n"})
        cls.launcher = make_launcher(cls.folder / "launcher")
        published = publish(cls.tree, "--game", cls.game, "--base", base, "--client-x64", PROGRAM,
                            "--launcher", cls.launcher)
        assert published.returncode == 0, published.stderr
        subprocess.run([MAKE_CERTIFICATES, cls.folder / "certificates"], check=True)
        cls.start_nginx()

    @classmethod
    def start_nginx(cls):
        """On a socket of the file system, so that no port has to be free."""
        cls.socket = cls.folder / "socket"
        certificates = cls.folder / "certificates"
        site = substitute(CONFIGURATION.read_text(), {
            r"(?<=listen )443(?= ssl;)": f"unix:{cls.socket}",
            r"/etc/ssl/tolvan/chain\.pem": str(certificates / "good.pem"),
            r"/etc/ssl/tolvan/key\.pem": str(certificates / "good.key"),
            r"/srv/tolvan/current": str(cls.tree / "current"),
        })
        temporary = "\n".join(f"{kind}_temp_path {cls.folder}/{kind};"
                              for kind in ("client_body", "proxy", "fastcgi", "uwsgi", "scgi"))
        user = "user root;" if os.geteuid() == 0 else ""
        (cls.folder / "nginx.conf").write_text(f"""
            daemon off; worker_processes 1; {user}
            pid {cls.folder}/pid; error_log {cls.folder}/error.log;
            events {{ worker_connections 64; }}
            http {{ access_log off; {temporary}
            {site}
            }}""")
        cls.nginx = subprocess.Popen([NGINX, "-c", cls.folder / "nginx.conf", "-e",
                                      cls.folder / "error.log"])
        cls.addClassCleanup(cls.stop_nginx)
        end = time.monotonic() + PATIENCE
        while cls.fetch("scripts/index.txt")[0] == 0:
            assert cls.nginx.poll() is None and time.monotonic() < end, "nginx does not answer"
            time.sleep(0.02)

    @classmethod
    def stop_nginx(cls):
        cls.nginx.terminate()
        cls.nginx.wait(PATIENCE)

    @classmethod
    def fetch(cls, path, *options):
        """The status, the content type and the body."""
        result = subprocess.run(
            ["curl", "-s", "-m", str(PATIENCE), "--path-as-is", "--unix-socket", cls.socket,
             "--cacert", cls.folder / "certificates/ca.pem", *options,
             "-w", "%{stderr}%{http_code} %{content_type}", "https://localhost/" + path],
            capture_output=True, check=False)
        status, _, content_type = result.stderr.decode().partition(" ")
        return int(status), content_type, result.stdout

    def test_what_launchers_fetch(self):
        text = "text/plain; charset=utf-8"
        data = "application/octet-stream"
        program = PROGRAM.read_bytes()
        licence = b"licence.txt=%d\t8\n" % zlib.crc32(b"licence\n")
        answer = b"%d %d\n" % (zlib.crc32(program), len(program))
        launcher = self.launcher.read_bytes()
        launcher_answer = b"%d %d\n" % (zlib.crc32(launcher), len(launcher))
        for path, expected in {
            "scripts/index.txt": (200, text, index_of(FILES)),
            "scripts/base.php": (200, text, licence),
            "patcher/base/licence.txt": (200, data, b"licence\n"),
            "patcher/get/Maps/gr%C3%BCn%20%E6%97%A5%E6%9C%AC.dat":
                (200, data, wrapped(FILES["Maps/grün 日本.dat"])),
            "patcher/get/help.html": (200, data, wrapped(FILES["help.html"])),
            "patcher/get/a%2Bb%20%26%20c%25.txt": (200, data, wrapped(FILES["a+b & c%.txt"])),
            "patcher/get/empty": (200, data, wrapped(b"")),
            "patcher/get/TPK1": (200, data, wrapped(FILES["TPK1"])),
            "scripts/updater.php?f=Tolvan%20Online_x64.exe": (200, text, answer),
            "patcher/Tolvan%20Online_x64.exe": (200, data, program),
            "scripts/updater.php?f=launcher/Tolvan%20Online.exe": (200, text, launcher_answer),
            "downloads/Tolvan%20Online.exe": (200, data, launcher),
        }.items():
            with self.subTest(path):
                self.assertEqual(self.fetch(path), expected)

    def test_what_is_not_served(self):
        for path in ("", "record", "../record", "patcher/../../record", "scripts/updater.php",
                     "scripts/updater.php?f=../index.txt", "patcher/get/missing",
                     "scripts/updater.php?f=Tolvan%20Online_x86.exe"):
            with self.subTest(path):
                self.assertIn(self.fetch(path)[0], (400, 403, 404))

    def test_a_publish_shows_at_once_and_caches_ask_again(self):
        unchanged = "patcher/get/help.html"
        headers = self.fetch(unchanged, "-I")[2].decode()
        self.assertIn("Cache-Control: no-cache", headers)
        tag = re.search(r"ETag: (\S+)", headers).group(1)
        files = {**FILES, "new": b"new"}
        self.addCleanup(publish, self.tree, "--rollback")
        write_files(self.game, files)
        self.assertEqual(publish(self.tree, "--game", self.game).returncode, 0)
        self.assertEqual(self.fetch("scripts/index.txt")[2], index_of(files))
        self.assertEqual(self.fetch(unchanged, "-H", f"If-None-Match: {tag}")[0], 304)


if __name__ == "__main__":
    sys.exit(unittest.main())
