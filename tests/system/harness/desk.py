"""The user before the screen: moves the pointer, presses keys and looks at pixels, by real events of
the X display that DISPLAY names. A window manager has to run there."""

import os
import subprocess

from .waiting import wait_until


def _tool(*words):
    result = subprocess.run(["xdotool", *map(str, words)], capture_output=True, text=True)
    if result.returncode != 0:
        raise AssertionError(f"xdotool {words}: {result.stderr}")
    return result.stdout


def is_there():
    """Whether there is a screen to work at, with somebody who manages its windows."""
    if "DISPLAY" not in os.environ:
        return False
    check = subprocess.run(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], capture_output=True)
    return b"window id" in check.stdout


def find_windows(title):
    """The ids of the windows in sight that have the title."""
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{title}$"],
                           capture_output=True, text=True)
    return found.stdout.split()


def wait_for_window(title):
    return wait_until(lambda: find_windows(title), f"a window {title!r}")[-1]


def place(window):
    """Left, top, width and height on the screen."""
    lines = dict(line.split("=") for line in _tool("getwindowgeometry", "--shell", window).split())
    return tuple(int(lines[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))


def focused():
    """The id of the window that has the keyboard, or "" while none has it."""
    found = subprocess.run(["xdotool", "getactivewindow"], capture_output=True, text=True)
    return found.stdout.strip()


def focus(window):
    _tool("windowactivate", "--sync", window)


def move_window(window, x, y):
    _tool("windowmove", "--sync", window, x, y)


def minimise(window):
    _tool("windowminimize", window)


def restore(window):
    _tool("windowmap", window)
    focus(window)


def point(x, y):
    _tool("mousemove", x, y)


def press(button=1):
    _tool("mousedown", button)


def release(button=1):
    _tool("mouseup", button)


def click(x, y, button=1):
    point(x, y)
    _tool("click", button)


def turn_wheel(notches):
    """Away from the user; negative numbers turn it towards the user."""
    _tool("click", "--repeat", abs(notches), "--delay", 20, 4 if notches > 0 else 5)


def key(*names):
    """Presses keys one after the other: "a", "Home", "ctrl+c"."""
    _tool("key", "--delay", 20, *names)


def hold(name):
    _tool("keydown", name)


def let_go(name):
    _tool("keyup", name)


def write(text):
    _tool("type", "--delay", 20, text)


def set_layout(layout):
    """The keyboard's language."""
    subprocess.run(["setxkbmap", layout], check=True)


class Screenshot:
    def __init__(self):
        size = _tool("getdisplaygeometry").split()
        self.width, self.height = int(size[0]), int(size[1])
        self._pixels = subprocess.run(
            ["import", "-silent", "-window", "root", "-depth", "8", "rgb:-"], check=True,
            capture_output=True).stdout

    def at(self, x, y):
        """The colour as 0xRRGGBB."""
        offset = (y * self.width + x) * 3
        return int.from_bytes(self._pixels[offset:offset + 3], "big")


def is_near(color, wanted, tolerance=3):
    return all(abs((color >> shift & 255) - (wanted >> shift & 255)) <= tolerance
               for shift in (0, 8, 16))


def wait_for_color(x, y, wanted, tolerance=3):
    wait_until(lambda: is_near(Screenshot().at(x, y), wanted, tolerance),
               lambda: f"{wanted:06x} at {x},{y}, where {Screenshot().at(x, y):06x} is")
