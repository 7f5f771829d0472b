"""What a developer build of the launcher reports of its run (TOLVAN_PROGRESS_FILE)."""

from typing import NamedTuple

from .waiting import wait_until

INSTALL_ENDS = ("InstallDone", "InstallFailed")
TERMINAL = ("Ready", "ErrNetwork", "ErrDownload", "ErrFatal")

# How a pass may end: the state and its error text.
READY = ("Ready", "")
NOT_DOWNLOADED = ("ErrDownload", "The update list could not be downloaded.")
EMPTY = ("ErrFatal", "The update list came back empty.")
UNREADABLE = ("ErrFatal", "The update list was empty or could not be read.")
NOT_MATCHING = ("ErrFatal", "Some files still do not match after updating.")


def not_verified(name):
    return ("ErrDownload", f"A file could not be downloaded or did not verify: Data/{name}")


class Moment(NamedTuple):
    time: float
    state: str
    fraction: float
    files_done: int
    files_total: int
    bytes_done: int
    bytes_total: int
    bytes_per_second: float
    current_file: str
    error_text: str


class Progress:
    def __init__(self, path):
        self.path = path

    def read(self):
        """The whole lines written so far."""
        try:
            text = self.path.read_bytes().decode()
        except FileNotFoundError:
            return []
        kinds = Moment.__annotations__.values()
        return [Moment(*(kind(field) for kind, field in zip(kinds, line.split("\t"), strict=True)))
                for line in text.split("\n")[:-1]]

    def states(self):
        """The states in the order in which the run came to them."""
        states = []
        for moment in self.read():
            if not states or states[-1] != moment.state:
                states.append(moment.state)
        return states

    def wait_for(self, *states, start=0, **patience):
        """Waits for one of the states and returns the moment it was reached."""
        def look():
            return next((moment for moment in self.read()[start:] if moment.state in states), None)
        return wait_until(look, lambda: f"{' or '.join(states)}, but {self.states()}", **patience)

    def wait_for_error(self, text):
        """Waits until the last moment has the error text."""
        wait_until(lambda: self.read()[-1].error_text == text,
                   lambda: f"{text!r}, but {self.read()[-1]}")

    def wait_for_current(self, text, start=0, **patience):
        """Waits until text is in the present file, or in an install's title and status."""
        wait_until(lambda: any(text in moment.current_file for moment in self.read()[start:]),
                   lambda: f"{text!r}, but {self.read()[-1:]}", **patience)

    def wait_for_end(self, **patience):
        """Waits for the end of the pass."""
        return self.wait_for(*TERMINAL, **patience)
