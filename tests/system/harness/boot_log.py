"""The launcher's boot log, read while it is being written."""

import re
from typing import NamedTuple

from .waiting import wait_until

_LINE = re.compile(rb"\[([ \d]{6,}) ms\] \[tid (\d+)\] (.*)\r\n", re.DOTALL)


class Line(NamedTuple):
    milliseconds: int
    thread: int
    text: str


class BootLog:
    def __init__(self, path):
        self.path = path

    def exists(self):
        return self.path.exists()

    def read(self):
        """The whole lines written so far. A line of another shape is an error."""
        try:
            data = self.path.read_bytes()
        except FileNotFoundError:
            return []
        lines = []
        for raw in data.splitlines(keepends=True):
            if not raw.endswith(b"\n"):
                break
            match = _LINE.fullmatch(raw)
            if not match:
                raise AssertionError(f"not a line of the boot log: {raw!r}")
            milliseconds, thread, text = match.groups()
            lines.append(Line(int(milliseconds), int(thread), text.decode()))
        return lines

    def texts(self):
        return [line.text for line in self.read()]

    def count(self, text):
        return self.texts().count(text)

    def times(self):
        """The milliseconds of each text, the last ones if there are several."""
        return {line.text: line.milliseconds for line in self.read()}

    def wait_for_beginning(self, beginning):
        """Waits for a line that begins so."""
        wait_until(lambda: any(text.startswith(beginning) for text in self.texts()),
                   lambda: f"{beginning!r} in the boot log, which holds {self.texts()}")

    def wait_for(self, *texts, **patience):
        """Waits for a line that is equal to one of the texts, and returns that text."""
        def look():
            return next((text for text in self.texts() if text in texts), None)
        return wait_until(look, lambda: f"{' or '.join(texts)} in the boot log, which holds "
                                        f"{self.texts()}", **patience)
