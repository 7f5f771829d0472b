"""The base of whole-program tests: every test has a machine with a launcher on it."""

import os
import unittest

from .boot_log import BootLog
from .game import PublishedGame, make_files, read_files, write_files
from .machine import LAUNCHER, Machine
from .progress import Progress
from .server import Server
from .waiting import wait_until

# Which of them it is depends on how busy this system is.
REVEALS = ("reveal: composited surface shown, releasing the previous instance",
           "reveal: no composite within 250 ms -- showing anyway")
UNINSTALL_KEY = r"Software\Microsoft\Windows\CurrentVersion\Uninstall\TolvanOnline"
SETTINGS_KEY = r"Software\TolvanOnline\Settings"
LAUNCHER_KEY = r"Software\TolvanOnline\Launcher"

BUTTONS = "C:\\buttons.txt"
PROGRESS = "C:\\progress.tsv"
HELPER_NAME = "tolvan_helper.exe"
HELPER_FOLDER = "C:\\Helper"


class MachineTest(unittest.TestCase):
    """Offers a machine, a launcher in its own folder, and a registered game folder."""

    HOME = "C:\\Launcher"
    GAME = "C:\\Games\\Tolvan Online"

    def setUp(self):
        self.take_machine()

    def take_machine(self):
        self.machine = Machine()
        self.addCleanup(self.machine.close)
        self.machine.environment["TOLVAN_BUTTON_FILE"] = BUTTONS
        self.place_launcher(f"{self.HOME}\\{LAUNCHER}")

    @property
    def client_path(self):
        return f"{self.GAME}\\.{LAUNCHER}"

    def place_launcher(self, windows_path):
        self.machine.place_program(LAUNCHER, windows_path)
        return windows_path

    # Running the launcher

    def launch(self, *switches, program=None, **environment):
        """Starts the launcher."""
        self.machine.path(BUTTONS).unlink(missing_ok=True)
        path = program or f"{self.HOME}\\{LAUNCHER}"
        return self.machine.start(path, *switches, **environment)

    def begin(self, *switches, **options):
        """Starts the launcher; returns it and what it reports."""
        report = self.machine.path(PROGRESS)
        report.unlink(missing_ok=True)
        return self.launch(*switches, TOLVAN_PROGRESS_FILE=PROGRESS, **options), Progress(report)

    def press(self, *button):
        """Presses a button of the launchers that run."""
        with open(self.machine.path(BUTTONS), "ab") as file:
            file.write("\t".join(button).encode() + b"\n")

    def boot_log(self, folder=None):
        return BootLog(self.machine.path(folder or self.HOME) / "launcher_boot.log")

    def wait_until_quiet(self):
        """Waits until a launcher that has nothing to do has written all that its start brings."""
        self.boot_log().wait_for("AppLoop: tick 2")
        self.boot_log().wait_for(*REVEALS)

    def register_game(self, folder=None):
        """Enters the folder in the registry as the installed game."""
        self.machine.registry_write(UNINSTALL_KEY, "InstallLocation", folder or self.GAME)

    def place_client(self, windows_path=None):
        """Something that counts as the game's client: any file that is not the launcher."""
        return self.machine.write_file(windows_path or self.client_path, b"a client")

    # Another program

    def start_helper(self, *words, program=f"{HELPER_FOLDER}\\{HELPER_NAME}"):
        """Starts the helper program, maybe under another name."""
        if not self.machine.path(program).exists():
            self.machine.place_program(HELPER_NAME, program)
        return self.machine.start(program, "|".join(words))

    def stay(self, *words, **where):
        """The helper program stays until the returned function is called; its id on the machine
        and that. Words are what it is to do meanwhile."""
        folder = self.machine.make_folder(HELPER_FOLDER)
        ready, stop = (f"{len(list(folder.iterdir()))}.{kind}" for kind in ("ready", "stop"))
        helper = self.start_helper(*(words or ["stay"]), f"{HELPER_FOLDER}\\{ready}",
                                   f"{HELPER_FOLDER}\\{stop}", **where)
        wait_until((folder / ready).exists, f"the helper stays: {words}")

        def release():
            (folder / stop).touch()
            helper.wait()
        return (folder / ready).read_text(), release

    def hold(self, windows_path, access=1, sharing=0):
        """Another program holds a file open, with the numbers of FileAccess and FileSharing, until
        the returned function is called."""
        return self.stay("open", windows_path, str(access), str(sharing))[1]

    # Findings

    def assert_files(self, found, expected):
        """The same names with the same contents, which are too long to be shown."""
        self.assertEqual(sorted(found), sorted(expected))
        for name, content in expected.items():
            self.assertTrue(found[name] == content, f"{name} is another one")

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

    FILES = make_files(30)

    def setUp(self):
        super().setUp()
        self.published = PublishedGame(self.FILES)
        self.addCleanup(self.published.close)
        self.addCleanup(Server.clear)
        self.machine.environment.update(TOLVAN_PATCH_URL=self.published.url(),
                                        TOLVAN_PROBE_URL=os.environ["TOLVAN_TEST_HTTP"])
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

    def assert_pass(self, end, files, url=None):
        """A pass ends with this state and error text, and leaves these files."""
        launcher, progress = self.begin(TOLVAN_PATCH_URL=url or self.published.url())
        last = progress.wait_for_end()
        launcher.kill()
        self.assertEqual((last.state, last.error_text), end)
        self.assertEqual(self.installed(), files)
