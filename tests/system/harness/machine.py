"""A machine to run programs on: a host machine in a folder, or a Wine prefix."""

import os
import re
import shutil
import signal
import subprocess
import tempfile
import unittest
from pathlib import Path

from .waiting import PATIENCE, machines, wait_until

SUPPORT = Path(__file__).resolve().parents[2] / "support"
LAUNCHER = "Tolvan Online.exe"


# It goes with this process, also when that is killed. The superuser may write to what is read-only;
# programs of the machine may not.
STARTER = ["setpriv", "--pdeathsig", "TERM"]
if os.geteuid() == 0:
    STARTER += ["--bounding-set", "-dac_override,-dac_read_search"]


class Program:
    """A program that was started on a machine."""

    def __init__(self, name, starter, machine):
        self._name = name
        self._starter = starter
        self._machine = machine
        self._is_wine = machine.is_wine

    def process(self):
        """Its id on this system."""
        # Wine takes the starter's place; the host's tool stays beside the program.
        return self._starter.pid if self._is_wine else wait_until(self._child, "it has started")

    def is_running(self):
        return self._starter.poll() is None

    def wait(self, patience=PATIENCE):
        """Waits for the end and returns the exit code (its lowest 8 bits)."""
        try:
            return self._starter.wait(patience)
        except subprocess.TimeoutExpired:
            self._machine.skip_if_wine_failed()
            raise AssertionError(f"{self._name} still runs after {patience:.0f} s: "
                                 f"{self._machine.report()}") from None

    def kill(self):
        """Ends it at once, without any chance to tidy up (kill -9)."""
        if self.is_running():
            os.kill(self.process(), signal.SIGKILL)
        self._starter.wait(PATIENCE)

    def told_end(self):
        """How it stands with it, for a person."""
        code = self._starter.poll()
        end = "runs" if code is None else f"ended with {code}"
        return f"{self._name} ({self._starter.pid}) {end}"

    def peak_memory(self):
        """The most that it has had in memory so far, in bytes."""
        status = Path(f"/proc/{self.process()}/status").read_text()
        return int(re.search(r"^VmHWM:\s+(\d+) kB$", status, re.M).group(1)) << 10

    def _child(self):
        starter = self._starter.pid
        children = Path(f"/proc/{starter}/task/{starter}/children").read_text().split()
        return int(children[0]) if children else None


class Machine:
    def __init__(self):
        self.is_wine = os.environ["TOLVAN_ADAPTER"] == "win32"
        self.bin = Path(os.environ["TOLVAN_BIN"])
        host_bin = Path(os.environ["TOLVAN_HOST_BIN"])
        self._tool = SUPPORT / "wine_machine.sh" if self.is_wine else host_bin / "tolvan-machine"
        # The owner's process id lets the next run find what a killed one has left.
        prefix = f"tolvan-{'wine' if self.is_wine else 'machine'}.{os.getpid()}."
        self.folder = Path(tempfile.mkdtemp(prefix=prefix))
        self.environment = dict(os.environ)
        # No windows on the screen of whoever runs the tests.
        self.environment.setdefault("TOLVAN_WINDOW", "none")
        self._output = self.folder / "output.txt"
        self._programs = []
        self._faults_before = 0
        machines.append(self)
        self._call("init", *self._trust())
        if self.is_wine:
            self._call("stay-awake")

    def close(self):
        """Ends what still runs, and removes the machine. Again it does nothing."""
        if self not in machines:
            return
        machines.remove(self)
        self._call("end")
        for program in self._programs:
            program.wait()

    # Files

    def path(self, windows_path):
        """Where a Windows path lies on this system; it need not exist."""
        return Path(self._call("path", windows_path))

    def make_folder(self, windows_path):
        folder = self.path(windows_path)
        folder.mkdir(parents=True, exist_ok=True)
        return folder

    def write_file(self, windows_path, content):
        path = self.path(windows_path)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)
        return path

    def place_program(self, name, windows_path):
        """Copies a program of the build under test to the machine."""
        path = self.path(windows_path)
        path.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(self.bin / name, path)
        path.chmod(0o755)
        return path

    def attributes(self, windows_path):
        """The attributes that are kept beside a file, as Windows numbers them: hidden (2) and
        system (4) on both adapters."""
        name, base = ("user.DOSATTRIB", 16) if self.is_wine else ("user.tolvan.attributes", 10)
        try:
            return int(os.getxattr(self.path(windows_path), name).rstrip(b"\0"), base)
        except OSError:
            return 0

    def hide(self, windows_path):
        """Gives a file the attributes hidden and system."""
        name, text = ("user.DOSATTRIB", b"0x6\0") if self.is_wine else ("user.tolvan.attributes",
                                                                        b"6")
        os.setxattr(self.path(windows_path), name, text)

    def find(self, pattern):
        """The Windows paths on C: of all that a pattern, with "/", finds."""
        drive = self.path("C:\\")
        return ["C:\\" + str(path.relative_to(drive)).replace("/", "\\")
                for path in drive.glob(pattern)]

    # Registry, below HKEY_CURRENT_USER

    def registry_read(self, key, name):
        """The value as an int or a str; None when it is missing."""
        result = self._run("reg", "query", f"HKCU\\{key}", "/v", name)
        match = re.search(rf"^\s+{re.escape(name)}\s+(REG_\w+)(?:\s+(.*))?$", result.stdout, re.M)
        if result.returncode != 0 or not match:
            return None
        kind, text = match.groups()
        return int(text, 16) if kind == "REG_DWORD" else (text or "")

    def registry_write(self, key, name, value):
        kind, text = ("REG_DWORD", str(value)) if isinstance(value, int) else ("REG_SZ", value)
        self._call("reg", "add", f"HKCU\\{key}", "/v", name, "/t", kind, "/d", text, "/f")

    # Programs

    def start(self, windows_path, *arguments, **environment):
        """Starts a program; its environment is this machine's with the given variables on top."""
        if windows_path.endswith(LAUNCHER):
            # What befell an earlier launcher is no excuse for this one.
            self._faults_before = len(self._wine_faults())
        with open(self._output, "ab") as output:
            starter = subprocess.Popen(
                [*STARTER, self._tool, self.folder, "run", windows_path, *arguments],
                env={**self.environment, **environment},
                stdin=subprocess.DEVNULL, stdout=output, stderr=output)
        self._programs.append(Program(windows_path.rsplit("\\", 1)[-1], starter, self))
        return self._programs[-1]

    def output(self):
        """What all programs have said so far."""
        return self._output.read_text(errors="replace") if self._output.exists() else ""

    def report(self):
        """What runs on the machine and where it waits, and the last words of programs and logs."""
        lines = [program.told_end() for program in self._programs[-3:]]
        for line in self._call("ps").splitlines():
            lines.append(line)
            for thread in Path(f"/proc/{line.split(' ', 1)[0]}/task").glob("*"):
                try:
                    state = re.search(r"^State:\s+(.*)$", (thread / "status").read_text(), re.M)[1]
                    waits = (thread / "wchan").read_text()
                    lines.append(f"  thread {thread.name}: {state}, {waits}")
                except OSError:
                    pass
        lines += self.output().splitlines()[-10:]
        for log in self.folder.glob("*drive*/**/launcher_boot.log"):
            lines += [f"{log}:", *log.read_text(errors="replace").splitlines()[-10:]]
        return "\n".join(lines)

    def skip_if_wine_failed(self):
        """Wine 8 now and then finds a descriptor closed that it shares with its server: it tells so
        in these words and ends that thread, before the thread's first step in the case that was
        looked into, and the program waits for it in vain. What a test then sees is not the
        program's work. All programs are ended, so that what follows starts afresh."""
        faults = self._wine_faults()[self._faults_before:]
        if not faults:
            return
        self._faults_before += len(faults)
        for program in self._programs:
            program.kill()
        raise unittest.SkipTest(f"Wine has ended a thread of the program: {faults[-1]}")

    def _wine_faults(self):
        return re.findall(r"^wine client error:.*$", self.output(), re.M)

    def processes(self, name):
        """The ids on this system of the programs of that file name that run on the machine."""
        lines = (line.split(" ", 1) for line in self._call("ps").splitlines())
        return [int(line[0]) for line in lines if len(line) == 2 and name in line[1]]

    def wait_for_processes(self, name, count):
        wait_until(lambda: len(self.processes(name)) == count, f"{count} times {name}")

    def kill_all(self, name):
        """Ends all programs of that file name at once (kill -9)."""
        for process in self.processes(name):
            try:
                os.kill(process, signal.SIGKILL)
            except ProcessLookupError:
                pass
        self.wait_for_processes(name, 0)

    # The machine's tool

    def _trust(self):
        authority = os.environ.get("TOLVAN_TEST_CA")
        return ["--trust", authority] if authority and self.is_wine else []

    def _run(self, *arguments):
        return subprocess.run([self._tool, self.folder, *arguments], env=self.environment,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True,
                              timeout=PATIENCE)

    def _call(self, *arguments):
        result = self._run(*arguments)
        if result.returncode != 0:
            raise AssertionError(f"{self._tool.name} {' '.join(arguments)}: {result.stderr}")
        return result.stdout.rstrip("\n")
