"""The window port against a real X display: input comes from xdotool, the answers from
window_probe, the pixels from the screen. The same test holds both adapters."""

import os
import queue
import shutil
import subprocess
import tempfile
import threading
import time
import unittest
from pathlib import Path

PATIENCE = 60.0
QUIET = 0.4  # how long nothing comes when nothing is to come
ROOT = Path(__file__).resolve().parents[3]
BIN = Path(os.environ["TOLVAN_BIN"])
WINE = os.environ["TOLVAN_ADAPTER"] == "win32"
LEFT, TOP, WIDTH, HEIGHT = 300, 200, 200, 120


def x(*arguments):
    subprocess.run(["xdotool", *map(str, arguments)], check=True, stdout=subprocess.DEVNULL)


def point_at(left, top, base=(LEFT, TOP)):
    """Moves the pointer to a place in the window."""
    x("mousemove", base[0] + left, base[1] + top)


def pixel(left, top):
    """Red, green and blue on the screen."""
    output = subprocess.run(["import", "-window", "root", "-crop", f"1x1+{left}+{top}", "-depth",
                             "8", "rgb:-"], check=True, capture_output=True).stdout
    return tuple(output[:3])


def is_red(left, top):
    red, green, blue = pixel(left, top)
    return red > 200 and green < 60 and blue < 60


def wait_until(condition, what):
    end = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > end:
            raise AssertionError(f"not within {PATIENCE:.0f} s: {what}")
        time.sleep(0.05)


class Computer:
    """What the probes of all tests run on: this system, or one Wine machine."""

    tool = ROOT / "tests/support/wine_machine.sh"

    def __init__(self):
        self.folder = None
        if WINE:
            self.folder = tempfile.mkdtemp(prefix=f"tolvan-wine.{os.getpid()}.")
            self._call("init")
            self._call("map", "y", BIN)

    def command(self):
        if not WINE:
            return [BIN / "window_probe"]
        return [self.tool, self.folder, "run", "Y:\\window_probe.exe"]

    def close(self):
        if WINE:
            self._call("end")
            shutil.rmtree(self.folder, ignore_errors=True)

    def _call(self, *arguments):
        subprocess.run([self.tool, self.folder, *arguments], check=True)


class Probe:
    """A running window_probe."""

    def __init__(self, computer):
        environment = {name: value for name, value in os.environ.items() if name != "TOLVAN_WINDOW"}
        self._process = subprocess.Popen(computer.command(), stdin=subprocess.PIPE,
                                         stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                         env=environment, text=True, encoding="utf-8")
        self._lines = queue.Queue()
        self._reader = threading.Thread(target=self._read)
        self._reader.start()
        self.wait_for("ready")

    def _read(self):
        for line in self._process.stdout:
            self._lines.put(line.rstrip("\r\n"))

    def say(self, *words):
        self._process.stdin.write(" ".join(map(str, words)) + "\n")
        self._process.stdin.flush()

    def wait_for(self, *starts):
        """Waits for lines that begin so, in this order, maybe with others between them; returns
        the last one."""
        seen, line = [], None
        for start in starts:
            while True:
                try:
                    line = self._lines.get(timeout=PATIENCE)
                except queue.Empty:
                    raise AssertionError(f"{start!r} did not come, only {seen}") from None
                seen.append(line)
                if (line + " ").startswith(start + " "):
                    break
        return line

    def rest(self):
        """What has come and is still coming until it is quiet."""
        lines = []
        while True:
            try:
                lines.append(self._lines.get(timeout=QUIET))
            except queue.Empty:
                return lines

    def ask(self, *words, answer):
        self.say(*words)
        return self.wait_for(answer)

    def state(self):
        line = self.ask("state", answer="state")
        return dict(part.split("=") for part in line.split()[1:])

    def wait_for_state(self, **wanted):
        wait_until(lambda: wanted.items() <= self.state().items(),
                   f"{wanted}, the last state being {self.state()}")

    def close(self):
        if self._process.poll() is None:
            self.say("quit")
        self._process.stdin.close()
        self._process.wait(PATIENCE)
        self._reader.join()
        self._process.stdout.close()


class WindowTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.computer = Computer()

    @classmethod
    def tearDownClass(cls):
        cls.computer.close()

    def setUp(self):
        x("mousemove", 20, 20)
        self.probe = self.open_probe()
        self.probe.say("show")
        self.probe.say("foreground")
        self.probe.say("move", LEFT, TOP)
        self.probe.wait_for_state(visible="1", foreground="1",
                                  frame=f"{LEFT},{TOP},{LEFT + WIDTH},{TOP + HEIGHT}")
        wait_until(lambda: is_red(LEFT + 50, TOP + 50), "the first frame is on the screen")
        self.probe.rest()

    def open_probe(self):
        probe = Probe(self.computer)
        self.addCleanup(probe.close)
        return probe

    def test_frame_is_shaped_moved_hidden_and_shown(self):
        state = self.probe.state()
        self.assertEqual(state["client"], f"{WIDTH},{HEIGHT}")
        self.assertEqual((state["screen"], state["modes"]), ("1024,768", "1"))
        self.assertTrue(is_red(LEFT + 30, TOP + 3))
        for left, top in ((LEFT + 1, TOP + 1), (LEFT + 1, TOP + HEIGHT - 2), (LEFT + 180, TOP + 60)):
            self.assertFalse(is_red(left, top), "clear corners and a clear stripe")
        self.probe.say("move", 500, 400)
        wait_until(lambda: is_red(640, 500) and not is_red(LEFT + 50, TOP + 50), "it has moved")
        self.probe.say("hide")
        self.probe.wait_for_state(visible="0")
        wait_until(lambda: not is_red(640, 500), "it is hidden")
        self.probe.say("topmost")
        self.probe.wait_for_state(visible="1", frame="500,400,700,520")
        self.probe.ask("draw", answer="drawn")
        wait_until(lambda: is_red(640, 500), "it is there again")

    def test_pointer(self):
        point_at(30, 40)
        self.probe.wait_for("PointerMove 30 40 0")
        x("mousedown", 1)
        self.probe.wait_for("LeftDown 30 40 1")
        x("mousedown", 3)
        self.probe.wait_for("RightDown 30 40 3")
        point_at(60, 50)
        self.probe.wait_for("PointerMove 60 50 3")
        x("mouseup", 1)
        self.probe.wait_for("LeftUp 60 50 2")
        x("mouseup", 3)
        self.probe.wait_for("RightUp 60 50 0")
        x("click", 4)
        self.probe.wait_for("Wheel 60 50 120")
        x("click", 5)
        self.probe.wait_for("Wheel 60 50 -120")
        point_at(-50, -50)
        self.probe.wait_for("PointerLeave")
        point_at(10, 60)
        self.probe.wait_for("PointerMove 10 60 0")

    def test_capture_follows_the_pointer_outside(self):
        point_at(30, 40)
        x("mousedown", 1)
        self.probe.wait_for("LeftDown 30 40 1")
        self.probe.say("capture")
        self.probe.state()
        point_at(-70, 300)
        self.probe.wait_for("PointerMove -70 300 1")
        x("mouseup", 1)
        self.probe.wait_for("LeftUp -70 300 0")
        self.assertNotIn("PointerLeave", self.probe.rest())
        self.probe.say("release")
        self.assertNotIn("CaptureLost", self.probe.rest(), "our own release is no loss")
        self.probe.say("release")
        point_at(30, 30)
        self.probe.wait_for("PointerMove 30 30 0")
        point_at(-50, -50)
        self.probe.wait_for("PointerLeave")

    def test_keys_and_characters(self):
        x("key", "a")
        self.probe.wait_for("KeyDown 65 0", "Character 97", "KeyUp 65 0")
        x("key", "shift+b")
        self.probe.wait_for("KeyDown 66 4", "Character 66", "KeyUp 66")
        x("key", "ctrl+Left")
        self.probe.wait_for("KeyDown 37 1", "KeyUp 37")
        for name, code in (("BackSpace", 8), ("Return", 13), ("Escape", 27)):
            x("key", name)
            self.probe.wait_for(f"KeyDown {code} 0", f"Character {code}", f"KeyUp {code} 0")
        for name, code in (("Home", 36), ("End", 35), ("Delete", 46), ("Right", 39)):
            x("key", name)
            self.probe.wait_for(f"KeyDown {code} 0", f"KeyUp {code} 0")
        self.assertFalse([line for line in self.probe.rest() if line.startswith("Character")])

    def test_minimising_and_restoring(self):
        self.probe.say("minimize")
        self.probe.wait_for("Minimized")
        self.probe.wait_for_state(minimized="1")
        wait_until(lambda: not is_red(LEFT + 50, TOP + 50), "it is off the screen")
        self.probe.rest()
        self.probe.say("restore")
        self.probe.wait_for(f"Resized {WIDTH} {HEIGHT}")
        self.probe.wait_for_state(minimized="0", visible="1",
                                  frame=f"{LEFT},{TOP},{LEFT + WIDTH},{TOP + HEIGHT}")
        self.probe.ask("draw", answer="drawn")
        wait_until(lambda: is_red(LEFT + 50, TOP + 50), "it is there again")

    def test_closing_asks_and_destroying_ends(self):
        x("key", "alt+F4")
        self.probe.wait_for("Close")
        self.assertEqual(self.probe.state()["exists"], "1")
        self.probe.say("destroy")
        self.probe.wait_for("Destroyed")
        self.assertEqual(self.probe.state()["exists"], "0")
        self.probe.ask("draw", answer="no target")
        self.assertFalse(is_red(LEFT + 50, TOP + 50))

    def test_clipboard_crosses_programs(self):
        other = self.open_probe()
        text = "Zażółć gęślą jaźń, 日本 \U0001F600"
        self.probe.ask("copy", text, answer="copied")
        # The window system hands it over when it is asked for, which takes the owner's answer.
        self.assertEqual(other.ask("paste", answer="pasted"), f"pasted {text}")
        other.ask("copy", "second", answer="copied")
        wait_until(lambda: self.probe.ask("paste", answer="pasted") == "pasted second", "it arrived")


if __name__ == "__main__":
    unittest.main()
