"""The base of tests that take the game away: uninstalled, moved, found again."""

import hashlib
import os
import re

from .boot_log import BootLog
from .game import write_files
from .machine import LAUNCHER
from .testcase import HELPER_FOLDER, SETTINGS_KEY, UNINSTALL_KEY, MachineTest
from .waiting import wait_until

MOVED = "move: done, code 0, error 0, copy 0"
INSTALLED = "route: hasKey=1 hasDir=1 hasClient=1 -> INSTALLED (patch + play)"
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
        self.machine.registry_write(SETTINGS_KEY, "LANGUAGE", 3)
        mover = self.launch("--nopatch")
        self.press("move", folder)
        self.boot_log().wait_for(MOVED)
        self.press("close")
        self.assert_ends_well(mover)
        self.machine.path("C:\\Before").rmdir()
        self.boot_log().path.unlink()

    def entry(self, name):
        """A text of the installed entry; None when it is missing."""
        if not self.machine.is_wine:
            return self.machine.registry_read(UNINSTALL_KEY, name)
        # What Wine's reg prints has the letters of one code page only.
        exported = self.machine.make_folder(HELPER_FOLDER) / "entry.reg"
        exported.unlink(missing_ok=True)
        self.machine._run("reg", "export", f"HKCU\\{UNINSTALL_KEY}", f"{HELPER_FOLDER}\\entry.reg")
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

    def tree(self, windows_path, snapshot):
        """What lies in a folder, by names relative to it."""
        return {name[len(windows_path):]: snapshot[name]
                for name in self.names_below(windows_path, snapshot)
                if len(name) > len(windows_path)}

    # Running the launcher

    def launch_and_quit(self, program=None):
        self.assert_ends_well(self.launch("--nopatch", "--autoquit=0.1", program=program))

    def launch_from_entry(self):
        """Runs the command of the installed entry, as the system does for the player."""
        command = self.entry("UninstallString")
        program, _, arguments = command[1:].partition('" ')
        return self.launch(*arguments.split(), program=program)

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
            self.launch_and_quit()
        wait_until(lambda: not self.working_folders(), "the working folder goes")
