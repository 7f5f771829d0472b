#!/usr/bin/env python3
"""tolvan-server seen from outside. Run under with_server.sh. What stalls, is slow or is cut off, and
the certificates, are in the tests of the launcher's own HTTP."""

import json
import os
import pathlib
import random
import subprocess
import sys
import unittest
import urllib.error
import urllib.parse
import urllib.request

HTTP = os.environ["TOLVAN_TEST_HTTP"]
HTTPS = os.environ["TOLVAN_TEST_HTTPS"]
CONTROL = os.environ["TOLVAN_TEST_CONTROL"]
TREE = pathlib.Path(os.environ["TOLVAN_TEST_TREE"])
CA = os.environ["TOLVAN_CA_FILE"]
SERVER = pathlib.Path(os.environ["TOLVAN_HOST_BIN"]) / "tolvan-server"
PATIENCE = 20

# Larger than the blocks in which the server sends.
BODY = random.Random(1).randbytes(300_000)
OTHER = b"another file\n"

# What curl's exit codes mean.
DONE, PARTIAL, REDIRECTS = 0, 18, 47


def curl(*arguments):
    """The exit code, the status and the body."""
    command = ["curl", "-s", "--cacert", CA, "-m", str(PATIENCE), "-w", "%{stderr}%{http_code}"]
    result = subprocess.run(command + list(arguments), capture_output=True, check=False)
    return result.returncode, int(result.stderr[-3:]), result.stdout


def control(operation, **values):
    """The answer's status and text."""
    try:
        with urllib.request.urlopen(CONTROL + operation + "?" + urllib.parse.urlencode(
                values, quote_via=urllib.parse.quote)) as answer:
            return answer.status, answer.read().decode()
    except urllib.error.HTTPError as error:
        return error.code, error.read().decode()


class Fault:
    """A rule that is in force inside a with statement."""

    def __init__(self, rule):
        self.rule = rule

    def __enter__(self):
        status, text = control("set", rule=self.rule)
        assert status == 200, text
        self.id = text.strip()
        return self

    def __exit__(self, *_):
        control("clear", id=self.id)


def flipped(body, begin, count):
    return body[:begin] + bytes(byte ^ 0xFF for byte in body[begin:begin + count]) + body[
        begin + count:]


def setUpModule():
    (TREE / "body.bin").write_bytes(BODY)
    (TREE / "other.bin").write_bytes(OTHER)
    folder = TREE / "patcher/get/Ma ps"
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "grün 日本.dat").write_bytes(OTHER)
    (TREE / "scripts/updater").mkdir(parents=True, exist_ok=True)
    (TREE / "scripts/updater/launcher.txt").write_text("11 1\n")
    (TREE / "scripts/updater/client_x64.txt").write_text("64 2\n")
    (TREE / "api").mkdir(exist_ok=True)
    (TREE / "api/news").write_text(json.dumps({"news": [{"id": n} for n in range(10)]}))
    (TREE / "api/season").write_text("3\n")


class Served(unittest.TestCase):
    def test_files(self):
        cases = {
            "body.bin": BODY,
            "patcher/get/Ma%20ps/gr%C3%BCn%20%E6%97%A5%E6%9C%AC.dat": OTHER,
            "scripts/updater.php?f=launcher/Tolvan%20Online.exe": b"11 1\n",
            "scripts/updater.php?f=Tolvan%20Online_x64.exe": b"64 2\n",
            "api/season": b"3\n",
        }
        for path, expected in cases.items():
            for base in (HTTP, HTTPS):
                with self.subTest(base + path):
                    self.assertEqual(curl(base + path), (DONE, 200, expected))

    def test_paths_without_a_file(self):
        cases = {
            "missing": 404, "patcher": 404, "": 404,
            "scripts/updater.php": 404, "scripts/updater.php?f=../other.bin": 404,
            "scripts/updater.php?f=Tolvan%20Online_x86.exe": 404,
            "../other.bin": 400, "patcher/..%2f../../etc/passwd": 400, "body.bin%00": 400,
        }
        for path, status in cases.items():
            with self.subTest(path):
                self.assertEqual(curl("--path-as-is", HTTP + path)[:2], (DONE, status))

    def test_news_come_in_pages(self):
        for query, ids in {"?limit=4&offset=8": [8, 9], "?limit=2&offset=0": [0, 1],
                           "": list(range(10)), "?limit=3&offset=99": []}.items():
            answer = json.loads(curl(HTTP + "api/news" + query)[2])
            self.assertEqual([item["id"] for item in answer["news"]], ids, query)
            self.assertEqual(answer["total"], 10)


class Faults(unittest.TestCase):
    def check(self, actions, expected, *options):
        for base in (HTTP, HTTPS):
            with self.subTest(f"{base} {actions}"), Fault("body.bin=" + actions):
                self.assertEqual(curl(*options, base + "body.bin"), expected)

    def test_bodies(self):
        cases = {
            "cut:0": (PARTIAL, 200, b""),
            "cut:1000": (PARTIAL, 200, BODY[:1000]),
            "cut:50%": (PARTIAL, 200, BODY[:150_000]),
            "cut:290000,chunked": (PARTIAL, 200, BODY[:290_000]),
            "cut:1000,no-length": (DONE, 200, BODY[:1000]),
            "short:7": (DONE, 200, BODY[:-7]),
            "long:7": (DONE, 200, BODY + b"x" * 7),
            "flip:10": (DONE, 200, flipped(BODY, 10, 1)),
            "flip:262140+10": (DONE, 200, flipped(BODY, 262_140, 10)),
            "length:+5": (PARTIAL, 200, BODY),
            "length:-5": (DONE, 200, BODY[:-5]),
            "length:10": (DONE, 200, BODY[:10]),
            "no-length": (DONE, 200, BODY),
            "chunked": (DONE, 200, BODY),
            "status:404": (DONE, 404, b"404 Not Found\n"),
            "status:500,body:sorry%2C no": (DONE, 500, b"sorry, no"),
            "status:206": (DONE, 206, b"206 Partial Content\n"),
            "empty": (DONE, 200, b""),
            "file:other.bin": (DONE, 200, OTHER),
            "file:missing": (DONE, 404, b"404 Not Found\n"),
        }
        for actions, expected in cases.items():
            self.check(actions, expected)
        self.check("redirect:/other.bin", (DONE, 200, OTHER), "-L")
        self.check("redirect:self", (REDIRECTS, 302, b""), "-L", "--max-redirs", "5")

    def test_which_requests_meet_a_fault(self):
        def statuses(path, count):
            return [curl(HTTP + path)[1] for _ in range(count)]

        with Fault("body.bin=status:500,skip:1,times:2"):
            self.assertEqual(statuses("body.bin", 4), [200, 500, 500, 200])
        with Fault("*.bin=status:500"), Fault("other.bin=status:404,times:1"):
            self.assertEqual(statuses("other.bin", 2), [404, 500])
            self.assertEqual(statuses("missing", 1), [404])
        with Fault("*updater.php?f=launcher/*=status:503"):
            self.assertEqual(statuses("scripts/updater.php?f=launcher%2Fx", 1), [503])
            self.assertEqual(statuses("scripts/updater.php?f=Tolvan%20Online_x86.exe", 1), [404])
        self.assertEqual(statuses("body.bin", 1), [200])

    def test_rules_that_make_no_sense(self):
        for rule in ("", "body.bin", "=stall", "body.bin=", "body.bin=explode", "body.bin=cut:x",
                     "body.bin=cut:101%", "body.bin=status:20", "body.bin=stall,times:x",
                     "body.bin=trickle:0", "body.bin=refuse", "@http=cut", "@http=refuse,times:2"):
            with self.subTest(rule):
                self.assertEqual(control("set", rule=rule)[0], 400)
                wrong = subprocess.run([SERVER, TREE, "--fault", rule], capture_output=True,
                                       timeout=PATIENCE, check=False)
                self.assertGreater(wrong.returncode, 100)
        self.assertEqual(control("list")[1], "")
        self.assertEqual(control("clear", id="9999")[0], 404)


if __name__ == "__main__":
    sys.exit(unittest.main())
