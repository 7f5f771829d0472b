#!/usr/bin/env python3
"""tolvan-server seen from outside: with curl, sockets and its log. Run under with_server.sh."""

import json
import os
import pathlib
import random
import socket
import subprocess
import sys
import time
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
DONE, NO_CONNECTION, TLS_CONNECT, TIME_OUT, UNTRUSTED = 0, 7, 35, 28, 60
PARTIAL, NO_ANSWER, REDIRECTS, RECEIVE = 18, 52, 47, 56


def curl(*arguments, limit=PATIENCE):
    """The exit code, the status and the body."""
    command = ["curl", "-s", "--cacert", CA, "-m", str(limit), "-w", "%{stderr}%{http_code}"]
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


def log():
    return control("log")[1].splitlines()


def wait_for_log(text):
    end = time.monotonic() + PATIENCE
    while not any(text in line for line in log()):
        assert time.monotonic() < end, f"{text!r} never came into the log"
        time.sleep(0.01)


def connections():
    """How many connections the log tells of, but for the control's."""
    return sum(" connect " in line for line in log())


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

    def test_connections_are_kept(self):
        before = connections()
        code, _, body = curl(*[HTTPS + "other.bin"] * 5)
        self.assertEqual((code, body), (DONE, OTHER * 5))
        self.assertEqual(connections() - before, 1)

    def test_many_connections_at_a_time(self):
        port = urllib.parse.urlparse(HTTP).port
        opened = [socket.create_connection(("127.0.0.1", port), PATIENCE) for _ in range(300)]
        for connection in opened:
            connection.sendall(b"GET /other.bin HTTP/1.1\r\nHost: localhost\r\n\r\n")
        for connection in opened:
            with connection, connection.makefile("rb") as stream:
                self.assertEqual(stream.readline(), b"HTTP/1.1 200 OK\r\n")

    def test_certificates(self):
        for name, trusted in {"": DONE, "_WRONG_NAME": UNTRUSTED, "_EXPIRED": UNTRUSTED,
                              "_UNKNOWN_ISSUER": UNTRUSTED, "_SELF_SIGNED": UNTRUSTED}.items():
            url = os.environ["TOLVAN_TEST_HTTPS" + name] + "other.bin"
            with self.subTest(name):
                self.assertEqual(curl(url)[0], trusted)
                self.assertEqual(curl("-k", url), (DONE, 200, OTHER))
        # Each certificate is wrong in one way only.
        port = urllib.parse.urlparse(os.environ["TOLVAN_TEST_HTTPS_WRONG_NAME"]).port
        host = "elsewhere.tolvan.example"
        self.assertEqual(curl("--resolve", f"{host}:{port}:127.0.0.1",
                              f"https://{host}:{port}/other.bin")[0], DONE)

    def test_texts_put_in_by_hand(self):
        control("put", path="other.bin", text="instead & more")
        self.assertEqual(curl(HTTP + "other.bin")[2], b"instead & more")
        control("append", path="other.bin", text=";", times=100_000)
        self.assertEqual(curl(HTTP + "other.bin")[2], b"instead & more" + b";" * 100_000)
        control("put", path="other.bin")
        self.assertEqual(curl(HTTP + "other.bin")[2], OTHER)


class Faults(unittest.TestCase):
    def check(self, actions, expected, *options, limit=PATIENCE):
        for base in (HTTP, HTTPS):
            with self.subTest(f"{base} {actions}"), Fault("body.bin=" + actions):
                self.assertEqual(curl(*options, base + "body.bin", limit=limit), expected)

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

    def test_made_up_bodies(self):
        with Fault("body.bin=html"):
            self.assertIn(b"<html>", curl(HTTP + "body.bin")[2])
        with Fault("*=junk:5000"):
            junk = curl(HTTP + "body.bin")[2]
            self.assertEqual(len(junk), 5000)
            self.assertGreater(len(set(junk)), 200)
            self.assertEqual(curl(HTTPS + "missing"), (DONE, 200, junk))
        with Fault("body.bin=big:1M"):
            lines = curl(HTTP + "body.bin")[2].split(b"\n")
            self.assertEqual(lines.pop(), b"")
            self.assertEqual(len(set(lines)), len(lines))
            for line in lines:
                self.assertRegex(line, rb"^[a-z0-9/.]+=[0-9]+\t[0-9]+$")
        with Fault("body.bin=endless"):
            with urllib.request.urlopen(HTTP + "body.bin") as answer:
                self.assertIsNone(answer.length)
                self.assertEqual(len(answer.read(5_000_000)), 5_000_000)

    def test_reset(self):
        for base in (HTTP, HTTPS):
            with Fault("body.bin=cut:1000,reset"):
                code, _, body = curl(base + "body.bin")
                self.assertEqual(code, RECEIVE)
                self.assertTrue(BODY[:1000].startswith(body))

    def test_stalls_last_until_they_are_cleared(self):
        for actions, sent in {"stall": b"", "stall:headers": b"", "stall:1000": BODY[:1000],
                              "stall:50%": BODY[:150_000]}.items():
            with self.subTest(actions):
                with Fault("body.bin=" + actions):
                    self.assertEqual(curl(HTTPS + "body.bin", limit=1)[::2], (TIME_OUT, sent))
                mark = f"/body.bin?{actions}"
                with Fault("body.bin=" + actions):
                    waiting = subprocess.Popen(["curl", "-s", HTTP + "body.bin?" + actions],
                                               stdout=subprocess.PIPE)
                    wait_for_log(mark)
                self.assertEqual(waiting.communicate(timeout=PATIENCE)[0], BODY)

    def test_slowness(self):
        for actions, least in {"latency:400": 0.4, "trickle:600K": 0.4}.items():
            with self.subTest(actions), Fault("body.bin=" + actions):
                begin = time.monotonic()
                self.assertEqual(curl(HTTPS + "body.bin"), (DONE, 200, BODY))
                self.assertGreaterEqual(time.monotonic() - begin, least)

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

    def test_connections(self):
        def codes(url):
            return [curl(url, limit=2)[0] for _ in range(2)]

        with Fault("@https=reset,times:1"):
            # The reset may overtake curl's look at the new connection.
            first, second = codes(HTTPS + "other.bin")
            self.assertIn(first, (TLS_CONNECT, NO_CONNECTION))
            self.assertEqual(second, DONE)
        for rule, expected in {"@https=close,times:1": [TLS_CONNECT, DONE],
                               "@https=stall,times:1": [TIME_OUT, DONE],
                               "@http=reset": [DONE, DONE],
                               "@*=refuse": [NO_CONNECTION, NO_CONNECTION]}.items():
            with self.subTest(rule), Fault(rule):
                self.assertEqual(codes(HTTPS + "other.bin"), expected)
        with Fault("@http=close,times:1"):
            self.assertEqual(codes(HTTP + "other.bin"), [NO_ANSWER, DONE])

    def test_drop_ends_open_connections(self):
        port = urllib.parse.urlparse(HTTP).port
        with socket.create_connection(("127.0.0.1", port), PATIENCE) as kept:
            kept.sendall(b"GET /other.bin HTTP/1.1\r\nHost: localhost\r\n\r\n")
            self.assertTrue(kept.recv(1))
            control("drop")
            while kept.recv(65536):
                pass

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


class Process(unittest.TestCase):
    def test_stops_at_once_when_told_to(self):
        with subprocess.Popen([SERVER, TREE, "--http", "0", "--fault", "*=stall"],
                              stdout=subprocess.PIPE) as server:
            port = json.loads(server.stdout.readline())["http"]
            waiting = socket.create_connection(("127.0.0.1", port), PATIENCE)
            waiting.sendall(b"GET / HTTP/1.1\r\nHost: localhost\r\n\r\n")
            server.terminate()
            self.assertEqual(server.wait(PATIENCE), 0)
            waiting.close()

    def test_says_what_it_cannot_have(self):
        port = urllib.parse.urlparse(HTTP).port
        taken = subprocess.run([SERVER, TREE, "--http", str(port)], capture_output=True,
                               timeout=PATIENCE, check=False)
        self.assertEqual(taken.returncode, 1)
        self.assertIn(str(port).encode(), taken.stderr)
        certificate = subprocess.run(
            [SERVER, TREE, "--certificates", TREE, "--https", "nobody"], capture_output=True,
            timeout=PATIENCE, check=False)
        self.assertEqual(certificate.returncode, 1)
        self.assertIn(b"nobody.pem", certificate.stderr)


if __name__ == "__main__":
    sys.exit(unittest.main())
