"""The base of tests that publish by hand, since no publisher would make what they need."""

import os
import shutil
import zlib
from pathlib import Path

from .game import read_files, wrapped, write_files
from .progress import Progress
from .server import Server
from .testcase import MachineTest

PROGRESS = "C:\\progress.tsv"


class PatchTest(MachineTest):
    """A registered game with its client, and the tolvan-server beside the test, its tree empty."""

    def setUp(self):
        super().setUp()
        self.tree = Path(os.environ["TOLVAN_TEST_TREE"])
        for entry in self.tree.iterdir():
            shutil.rmtree(entry) if entry.is_dir() else entry.unlink()
        self.addCleanup(Server.clear)
        self.register_game()
        self.place_client()
        self.game = self.machine.path(self.GAME)
        self.data = self.game / "Data"

    def publish(self, payloads, extra_lines=()):
        """Serves the files and their list; extra lines come first."""
        write_files(self.tree / "patcher" / "get",
                    {name: wrapped(payload) for name, payload in payloads.items()})
        lines = [*extra_lines, *(f"{name}={zlib.crc32(payload)}\t{len(payload) + 20}"
                                 for name, payload in payloads.items())]
        write_files(self.tree / "scripts",
                    {"index.txt": "".join(line + "\n" for line in lines).encode()})

    def install(self, payloads):
        write_files(self.data, {name: wrapped(payload) for name, payload in payloads.items()})

    def installed(self):
        return read_files(self.data)

    def assert_installed(self, payloads):
        self.assertEqual(self.installed(),
                         {name: wrapped(payload) for name, payload in payloads.items()})

    def start_pass(self, address=None):
        """Starts the launcher; returns it and what it reports."""
        report = Progress(self.machine.path(PROGRESS))
        report.path.unlink(missing_ok=True)
        self.boot_log().path.unlink(missing_ok=True)
        launcher = self.launch(TOLVAN_PROGRESS_FILE=PROGRESS,
                               TOLVAN_PATCH_URL=address or os.environ["TOLVAN_TEST_HTTPS"])
        return launcher, report

    def run_pass(self, address=None):
        """The state that ends the pass, and its error text."""
        launcher, report = self.start_pass(address)
        end = report.wait_for_end()
        launcher.kill()
        return end.state, end.error_text
