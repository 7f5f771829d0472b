"""Disks and folders that a test lets stand in the launcher's way."""

import subprocess

from .machine import LAUNCHER


class SmallDisk:
    """A disk of its own as drive D: of a test's machine, while the test lasts."""

    DRIVE = "D:\\"

    def __init__(self, test, options):
        """The options are those of mount: "size=400k"."""
        self.folder = test.machine.path(self.DRIVE)
        self.folder.mkdir(exist_ok=True)
        mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", options, "tmpfs", self.folder],
                                 capture_output=True, text=True)
        if mounted.returncode != 0:
            test.skipTest(f"TOLVAN-SKIPPED: no disk can be mounted here: {mounted.stderr.strip()}")
        test.addCleanup(subprocess.run, ["umount", "-l", self.folder], check=True)
        # Afterwards the machine no longer knows who runs from there.
        test.addCleanup(test.machine.kill_all, LAUNCHER)

    def change(self, options):
        """Another size, or read-only: "ro"."""
        subprocess.run(["mount", "-o", f"remount,{options}", self.folder], check=True)


def make_read_only(test, folder):
    """Nothing can be made, renamed or removed in the folder itself, until the returned function is
    called."""
    def make_writable():
        folder.chmod(0o755)
    folder.chmod(0o555)
    test.addCleanup(make_writable)
    return make_writable
