"""The base of tests of a game's whole life: installed, played and kept current."""

import os
import struct

from .game import PublishedGame, make_files, read_files
from .machine import LAUNCHER
from .progress import INSTALL_ENDS, Progress
from .server import Server
from .testcase import MachineTest
from .waiting import wait_until

BUTTONS = "C:\\buttons.txt"
PROGRESS = "C:\\progress.tsv"
HELPER = "C:\\Helper\\tolvan_helper.exe"
HIDDEN_AND_SYSTEM = 6

_MACHINES = {"x86": (3, 0x014C), "x64": (62, 0x8664), "arm64": (183, 0xAA64)}


def for_machine(program, machine):
    """The program with another machine type in its header. It cannot be run there."""
    elf, pe = _MACHINES[machine]
    content = bytearray(program)
    if content[:4] == b"\x7fELF":
        struct.pack_into("<H", content, 18, elf)
    else:
        header = struct.unpack_from("<I", content, 60)[0]
        struct.pack_into("<H", content, header + 4, pe)
    return bytes(content)


def another_build(program, name="another"):
    """A program that does the same and is another file."""
    return program + b"\n" + name.encode() + b" build\n"


class LifeTest(MachineTest):
    """A machine with a launcher and nothing installed, and a published game with client and
    launcher. For tests with a tolvan-server beside them."""

    BASE = {"readme.txt": b"Have fun.\n", "Data/first.epk": b"first", "config/game.cfg": b"a=1\n"}

    def setUp(self):
        super().setUp()
        self.launcher = (self.machine.bin / LAUNCHER).read_bytes()
        self.client = (self.machine.bin / "sample_game.exe").read_bytes()
        self.published = PublishedGame(
            make_files(8, 20_000), base=self.BASE, client_x64=self.client,
            client_x86=for_machine(self.client, "x86"), launcher=self.launcher)
        self.addCleanup(self.published.close)
        self.addCleanup(Server.clear)
        self.machine.place_program("tolvan_helper.exe", HELPER)

    # Running the launcher

    def begin(self, *switches, program=None, **environment):
        """Starts the launcher; returns it and what it reports."""
        report = self.machine.path(PROGRESS)
        for left in (report, self.machine.path(BUTTONS)):
            left.unlink(missing_ok=True)
        self.machine.environment.update(
            TOLVAN_PATCH_URL=self.published.url(), TOLVAN_ASSETS_URL=self.published.url(),
            TOLVAN_PROBE_URL=os.environ["TOLVAN_TEST_HTTP"], TOLVAN_PROGRESS_FILE=PROGRESS,
            TOLVAN_BUTTON_FILE=BUTTONS)
        program = self.launch(*switches, program=program, **environment)
        return program, Progress(report)

    def press(self, *button):
        """Presses a button of the launcher that runs."""
        with open(self.machine.path(BUTTONS), "ab") as file:
            file.write("\t".join(button).encode() + b"\n")

    def begin_install(self, *options, folder=None):
        """Starts the launcher and an install; returns what it reports."""
        self.installer, progress = self.begin()
        self.wait_until_quiet()
        self.press("install", folder or self.GAME, "1", *options)
        progress.wait_for("Install")
        return progress

    def wait_for_install(self, progress):
        return progress.wait_for(*INSTALL_ENDS)

    def retry_install(self, progress):
        """Goes on with a failed install and returns how that ends."""
        before = len(progress.read())
        self.press("install-retry")
        return wait_until(
            lambda: next((moment for moment in progress.read()[before:]
                          if moment.state in INSTALL_ENDS), None),
            lambda: f"the install ends: {progress.read()[-1]}")

    # What is installed

    @property
    def game(self):
        """The game's folder on this system."""
        return self.machine.path(self.GAME)

    def lay_installed(self, client=None, launcher=None, files=None):
        """Lays a registered game into the folder, by default the published one."""
        self.register_game()
        contents = {f"Data/{name}": content
                    for name, content in (files or self.published.files).items()}
        contents[".Tolvan Online.exe"] = client or self.client
        contents[LAUNCHER] = launcher or self.launcher
        for name, content in contents.items():
            path = self.machine.write_file(f"{self.GAME}\\" + name.replace("/", "\\"), content)
            path.chmod(0o755)
        return f"{self.GAME}\\{LAUNCHER}"

    def installed(self):
        """All files of the game's folder, by their names with "/", without the log."""
        files = read_files(self.game)
        files.pop("launcher_boot.log", None)
        return files

    def read_link(self, link):
        """Target, working folder and description of a shell link, as the shell gives them."""
        report = "C:\\Helper\\link.txt"
        helper = self.machine.start(HELPER, f"read-link|{link}|{report}")
        self.assertEqual(helper.wait(), 0, f"{link} is no link")
        return self.machine.path(report).read_text().split("\n")[:3]

    def hold(self, windows_path, access=1, sharing=0):
        """Another program holds a file open, with the numbers of FileAccess and FileSharing, until
        the returned function is called."""
        ready, stop = (f"C:\\Helper\\{len(self.machine.find('Helper/*'))}.{kind}"
                       for kind in ("ready", "stop"))
        helper = self.machine.start(
            HELPER, f"open|{windows_path}|{access}|{sharing}|{ready}|{stop}")
        wait_until(self.machine.path(ready).exists, f"{windows_path} is held")

        def release():
            self.machine.path(stop).touch()
            helper.wait()
        return release
