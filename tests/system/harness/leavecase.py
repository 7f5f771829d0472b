"""The base of tests that take the game away: uninstalled, moved, found again."""

import hashlib
import os
import re

from .boot_log import BootLog
from .game import write_files
from .machine import LAUNCHER
from .testcase import UNINSTALL_KEY, MachineTest
from .waiting import wait_until

BUTTONS = "C:\\buttons.txt"
HELPER = "C:\\Helper\\tolvan_helper.exe"
PRODUCT_KEY = r"Software\TolvanOnline"
WORKING_PREFIX = "@tolvan_op_"

GAME_FILES = {
    "readme.txt": b"Have fun.\n",
    "Data/maps/a.epk": b"a map" * 1000,
    "Data/звук.epk": b"a sound",
    "Data/empty.epk": b"",
}
NEIGHBOURS = {
    "Tolvan Online.txt": b"a look-alike",
    "Tolvan Online 2/Data/other.epk": b"another game",
    "Tolvan Onlin/.Tolvan Online.exe": b"its client",
}


class LeaveTest(MachineTest):
    """A game whose folder holds the launcher and the client, with look-alikes beside it. Its entry
    and its links are made by the launcher itself."""

    def setUp(self):
        super().setUp()
        self.prepare()

    def prepare(self):
        self.machine.environment["TOLVAN_BUTTON_FILE"] = BUTTONS
        self.machine.place_program("tolvan_helper.exe", HELPER)
        self.place_launcher(f"{self.HOME}\\{LAUNCHER}")

    # What is installed

    def lay_game(self, folder):
        """Puts the game there; nothing is registered."""
        write_files(self.machine.path(folder), GAME_FILES)
        self.place_launcher(f"{folder}\\{LAUNCHER}")
        self.place_client(f"{folder}\\.{LAUNCHER}")

    def lay_installed(self, folder):
        """Puts the game there as an installed one: the launcher moves it in from elsewhere."""
        before = "C:\\Before\\Tolvan Online"
        self.lay_game(before)
        write_files(self.machine.path(folder).parent, NEIGHBOURS)
        self.register_game(before)
        self.machine.registry_write(rf"{PRODUCT_KEY}\Settings", "LANGUAGE", 3)
        mover = self.begin("--nopatch")
        self.press("move", folder)
        self.boot_log().wait_for("move: done, code 0, error 0, copy 0")
        self.press("close")
        self.assert_ends_well(mover)
        self.machine.path("C:\\Before").rmdir()
        self.boot_log().path.unlink()

    def entry(self, name):
        """A text of the installed entry; None when it is missing."""
        if not self.machine.is_wine:
            return self.machine.registry_read(UNINSTALL_KEY, name)
        # What Wine's reg prints has the letters of one code page only.
        exported = self.machine.path("C:\\Helper") / "entry.reg"
        exported.unlink(missing_ok=True)
        self.machine._run("reg", "export", f"HKCU\\{UNINSTALL_KEY}", "C:\\Helper\\entry.reg")
        text = exported.read_text("utf-16") if exported.exists() else ""
        match = re.search(rf'^"{name}"="(.*)"$', text, re.M)
        return match and re.sub(r"\\(.)", r"\1", match[1])

    def registered_folder(self):
        return self.entry("InstallLocation")

    def links(self):
        users = self.machine.path("C:\\Users")
        return [path for path in users.rglob("Tolvan Online.lnk")]

    def snapshot(self):
        """All folders and files of the drives, by path, with a hash of their contents. Without
        what the system and the launcher write for themselves."""
        found = {}
        for letter in "CD":
            drive = self.machine.path(f"{letter}:\\")
            for folder, folders, files in os.walk(drive):
                top = os.path.relpath(folder, drive)
                if top == ".":
                    folders[:] = [name for name in folders
                                  if name.lower() not in ("windows", "helper", "launcher")]
                    files = [name for name in files if name != "buttons.txt"]
                folders[:] = [name for name in folders if not name.startswith(WORKING_PREFIX)]
                files = [name for name in files if name != "launcher_boot.log"]
                base = f"{letter}:/" + ("" if top == "." else top + "/")
                found.update((base + name, "folder") for name in folders)
                for name in files:
                    with open(os.path.join(folder, name), "rb") as file:
                        found[base + name] = hashlib.sha256(file.read()).hexdigest()
        return found

    def names_below(self, windows_path, snapshot):
        prefix = windows_path.replace("\\", "/").lower()
        return {name for name in snapshot
                if name.lower() == prefix or name.lower().startswith(prefix + "/")}

    # Running the launcher

    def begin(self, *switches, program=None, **environment):
        self.machine.path(BUTTONS).unlink(missing_ok=True)
        return self.launch(*switches, program=program, **environment)

    def begin_from_entry(self, **environment):
        """Runs the command of the installed entry, as the system does for the player."""
        command = self.entry("UninstallString")
        program, _, arguments = command[1:].partition('" ')
        return self.begin(*arguments.split(), program=program, **environment)

    def press(self, *button):
        """Presses a button of the launchers that run."""
        with open(self.machine.path(BUTTONS), "ab") as file:
            file.write("\t".join(button).encode() + b"\n")

    def working_folders(self):
        return list(self.machine.path("C:\\Users").rglob(WORKING_PREFIX + "*"))

    def temporary_folder(self):
        drive = self.machine.path("C:\\")
        folder = next(self.machine.path("C:\\Users").rglob("Temp"))
        return "C:\\" + str(folder.relative_to(drive)).replace("/", "\\")

    def copy_log(self):
        """The boot log of the handoff copy, once there is one."""
        folder = wait_until(self.working_folders, "there is a working folder")[0]
        return BootLog(folder / "launcher_boot.log")

    def close_copy(self):
        """Ends the copy as its page's last button does."""
        self.press("close")
        self.machine.wait_for_processes(LAUNCHER, 0)

    def assert_working_folder_goes(self):
        if self.machine.is_wine:
            # There is no command to wait with, so the folder goes at the next start.
            self.assert_ends_well(self.begin("--autoquit=0.1", "--nopatch"))
        wait_until(lambda: not self.working_folders(), "the working folder goes")

    def start_helper(self, program, *words):
        """Starts a copy of the helper program under another name."""
        self.machine.place_program("tolvan_helper.exe", program)
        return self.machine.start(program, "|".join(words))
