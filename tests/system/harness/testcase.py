"""The base of whole-program tests: every test has a machine with a launcher on it."""

import os
import unittest

from .boot_log import BootLog
from .game import PublishedGame, make_files, read_files, write_files
from .machine import LAUNCHER, Machine
from .progress import Progress
from .server import Server

# Which of them it is depends on how busy this system is.
REVEALS = ("reveal: composited surface shown, releasing the previous instance",
           "reveal: no composite within 250 ms -- showing anyway")
UNINSTALL_KEY = r"Software\Microsoft\Windows\CurrentVersion\Uninstall\TolvanOnline"


class MachineTest(unittest.TestCase):
    """Offers a machine, a launcher in its own folder, and a registered game folder."""

    HOME = "C:\\Launcher"
    GAME = "C:\\Games\\Tolvan Online"
    CLIENT = GAME + "\\.Tolvan Online.exe"

    def setUp(self):
        self.machine = Machine()
        self.addCleanup(self.machine.close)
        self.place_launcher(f"{self.HOME}\\{LAUNCHER}")

    def place_launcher(self, windows_path):
        self.machine.place_program(LAUNCHER, windows_path)
        return windows_path

    def launch(self, *switches, program=None, **environment):
        """Starts the launcher."""
        path = program or f"{self.HOME}\\{LAUNCHER}"
        return self.machine.start(path, *switches, **environment)

    def boot_log(self, folder=None):
        return BootLog(self.machine.path(folder or self.HOME) / "launcher_boot.log")

    def wait_until_quiet(self):
        """Waits until a launcher that has nothing to do has written all that its start brings."""
        self.boot_log().wait_for("AppLoop: tick 2")
        self.boot_log().wait_for(*REVEALS)

    def register_game(self, folder=None):
        """Enters the folder in the registry as the installed game."""
        self.machine.registry_write(UNINSTALL_KEY, "InstallLocation", folder or self.GAME)

    def place_client(self, windows_path=CLIENT):
        """Something that counts as the game's client: any file that is not the launcher."""
        return self.machine.write_file(windows_path, b"a client")

    def assert_ends_well(self, program):
        """The program ends by itself with the exit code 0."""
        code = program.wait()
        if code != 0:
            self.machine.skip_if_wine_failed()
        self.assertEqual(code, 0, self.machine.output())

    def assert_runs(self, program):
        if not program.is_running():
            self.machine.skip_if_wine_failed()
            self.fail(self.machine.output())

    def assert_in_order(self, expected, texts):
        """All expected lines occur among texts in this order, maybe with others between them."""
        rest = iter(texts)
        for line in expected:
            self.assertTrue(any(line == text for text in rest),
                            f"{line!r} is missing at its place in {texts}")


class GameTest(MachineTest):
    """On top of that, a published game that is registered as installed, with its client and none
    of its data. For tests with a tolvan-server beside them."""

    def setUp(self):
        super().setUp()
        self.game = PublishedGame(make_files(30))
        self.addCleanup(self.game.close)
        self.addCleanup(Server.clear)
        self.register_game()
        self.place_client()

    @property
    def data(self):
        """The folder of the installed game's data on this system."""
        return self.machine.path(self.GAME) / "Data"

    def install(self, files):
        write_files(self.data, files)

    def installed(self):
        return read_files(self.data)

    def launch_on_game(self, *switches, url=None):
        """Starts the launcher on the game; returns it and what it reports."""
        report = self.machine.path("C:\\") / "progress.tsv"
        report.unlink(missing_ok=True)
        program = self.launch(*switches, TOLVAN_PATCH_URL=url or self.game.url(),
                              TOLVAN_PROBE_URL=os.environ["TOLVAN_TEST_HTTP"],
                              TOLVAN_PROGRESS_FILE="C:\\progress.tsv")
        return program, Progress(report)
