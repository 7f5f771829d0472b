"""The base of tests of a game's whole life: installed, played and kept current."""

import os
import struct

from .game import PublishedGame, make_files, read_files
from .machine import LAUNCHER
from .progress import INSTALL_ENDS
from .server import Server
from .testcase import HELPER_FOLDER, MachineTest

CLIENT = "." + LAUNCHER
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
        self.machine.environment.update(
            TOLVAN_PATCH_URL=self.published.url(), TOLVAN_ASSETS_URL=self.published.url(),
            TOLVAN_PROBE_URL=os.environ["TOLVAN_TEST_HTTP"])

    # Installing

    def press_install(self, *options):
        self.press("install", self.GAME, "1", *options)

    def begin_install(self, *options):
        """Starts the launcher and an install; returns what it reports."""
        self.installer, progress = self.begin()
        self.wait_until_quiet()
        self.press_install(*options)
        progress.wait_for("Install")
        return progress

    def wait_for_install(self, progress):
        return progress.wait_for(*INSTALL_ENDS)

    def retry_install(self, progress):
        """Goes on with a failed install and returns how that ends."""
        before = len(progress.read())
        self.press("install-retry")
        return progress.wait_for(*INSTALL_ENDS, start=before)

    def assert_failed(self, end, title, error):
        """An install has failed in the stage of this title; the error text fits the pattern."""
        self.assertEqual(end.state, "InstallFailed")
        self.assertRegex(end.error_text, f"^{error}$")
        self.assertEqual(end.current_file.split(" | ")[0], f"Failed: {title}")

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
        contents[CLIENT] = client or self.client
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
        """Target, working folder, description and icon of a shell link, as the shell gives
        them."""
        report = f"{HELPER_FOLDER}\\link.txt"
        helper = self.start_helper("read-link", link, report)
        self.assertEqual(helper.wait(), 0, f"{link} is no link")
        return self.machine.path(report).read_text().split("\n")[:4]


class UpdateTest(LifeTest):
    """An installed game whose launcher or client (OLDER) is not the published one."""

    OLDER = ()

    def setUp(self):
        super().setUp()
        self.new = {LAUNCHER: self.launcher, CLIENT: self.client}
        self.old = {name: another_build(content, "older") if name in self.OLDER else content
                    for name, content in self.new.items()}
        self.lay(self.old)

    def lay(self, programs):
        """Lays the game into the folder with these programs."""
        self.program = self.lay_installed(client=programs[CLIENT], launcher=programs[LAUNCHER])
        self.log = self.boot_log(self.GAME)

    def begin_run(self, *switches):
        return self.begin(*switches, program=self.program)

    def programs(self, *names):
        """What lies in the folder under the names, by default of both programs, and under names
        made of them."""
        return {name: content for name, content in self.installed().items()
                if name.startswith(names or (LAUNCHER, CLIENT))}

    def assert_refused(self, telling):
        """A run writes a line that begins so, comes to Ready, and leaves the programs as they
        were."""
        self.log.path.unlink(missing_ok=True)
        launcher, progress = self.begin_run()
        progress.wait_for("Ready")
        self.log.wait_for_beginning(telling)
        self.assert_files(self.programs(), self.old)
        self.assert_runs(launcher)
        launcher.kill()
