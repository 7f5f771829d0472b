"""Compares the Windows build under Wine with the host build, in turn, at the same work.

usage: wine_ratios.py HOST_BIN WINDOWS_BIN [--rounds N] [--folder FOLDER] [NAME...]

The BINs are the folders of release builds with benchmarks. NAME picks some of: crc, repair, compare,
small, large, start. Prints medians of N rounds in wall seconds, and Wine's time to the host's. FOLDER
(the system's temporary folder) needs 6 GiB. The exit code says whether every program did its work,
and nothing about the times.
"""

import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

from ratios import MACHINE_GAME, SMALL_COUNT, Bench, Tree, read_arguments, timed_pass

WINE_MACHINE = pathlib.Path(__file__).resolve().parent.parent / "tests/support/wine_machine.sh"
ROW = "{:<34} {:>10} {:>10} {:>7}"


class WineBench(Bench):
    """The drive E: of the Wine machine is the host machine's C:, so that both work on one tree."""

    def __init__(self, host, windows, work, rounds):
        super().__init__(host, work, rounds)
        self.windows = windows
        self.wine = work / "wine"
        self.on_wine("init", "--trust", self.authority)
        self.on_wine("stay-awake")
        self.programs = self.wine / "drive_c" / "bench"
        self.programs.mkdir()
        for name in ("pass_bench", "crc32_time", "nothing"):
            shutil.copy(windows / f"{name}.exe", self.programs)

    def on_wine(self, *words, **options):
        return subprocess.run([WINE_MACHINE, self.wine, *words], check=True, **options)

    def wine_command(self, program, *words):
        return [WINE_MACHINE, self.wine, "run", f"C:\\bench\\{program}.exe", *words]

    def run_wine_pass(self, tree, base, *mode, folder=MACHINE_GAME):
        drive = tree.machine / "drive_c"
        drive.mkdir(parents=True, exist_ok=True)
        self.on_wine("map", "E", drive)
        return timed_pass(self.wine_command("pass_bench", base, f"E:\\{folder}", *mode),
                          self.environment(tree.machine, base))[0]

    def print_row(self, title, wine, host):
        wine, host = statistics.median(wine), statistics.median(host)
        print(ROW.format(title, f"{wine:.4f} s", f"{host:.4f} s", f"{wine / host:.2f}"), flush=True)

    # The comparisons

    def crc(self):
        rounds = str(self.rounds)
        wine, host = (
            [float(line.split()[0]) for line in subprocess.run(
                command, check=True, text=True, stdout=subprocess.PIPE).stdout.splitlines()[1:]]
            for command in (self.wine_command("crc32_time", rounds),
                            [self.bin / "crc32_time", rounds]))
        self.print_row("CRC-32 of 1 GiB", wine, host)

    def compare_states(self, title, tree, *mode):
        wine, host = [], []
        with self.nginx(tree.served) as base:
            self.run_pass(tree, base, *mode)  # warms the cache
            for _ in range(self.rounds):
                wine.append(self.run_wine_pass(tree, base, *mode)["Compare"][0])
                host.append(self.run_pass(tree, base, *mode)["Compare"][0])
        self.print_row(title, wine, host)

    def repair(self):
        tree = Tree(self.work, "repair", 3000, 2 << 30)
        self.compare_states("repair, 3,000 files, 2 GiB", tree, "repair")

    def compare(self):
        tree = Tree(self.work, "compare", 20_000, 20_000 * 2048)
        self.compare_states("compare, 20,000 current files", tree, "pass")

    def fetch(self, title, tree):
        """Each fetch goes into a folder of its own."""
        wine, host = [], []
        with self.nginx(tree.served) as base:
            for index in range(self.rounds):
                wine.append(self.run_wine_pass(tree, base, folder=f"wine{index}")["Update"][0])
                host.append(self.run_pass(tree, base, folder=f"host{index}")["Update"][0])
        self.print_row(title, wine, host)

    def small(self):
        tree = Tree(self.work, "small", SMALL_COUNT, SMALL_COUNT << 16, installed=False)
        self.fetch("2,000 x 64 KiB over HTTPS", tree)

    def large(self):
        tree = Tree(self.work, "large", 1, 1 << 30, installed=False)
        self.fetch("1 GiB over HTTPS", tree)

    def start(self):
        program = self.wine / "drive_c" / "Launcher" / "Tolvan Online.exe"
        program.parent.mkdir()
        shutil.copy(self.windows / program.name, program)
        log = program.parent / "launcher_boot.log"
        environment = self.environment(self.wine, "https://localhost:9/") | {"TOLVAN_WINDOW": "none"}
        launcher, nothing = [], []
        for _ in range(4 * self.rounds):
            began = time.perf_counter()
            subprocess.run(self.wine_command("nothing"), check=True)
            nothing.append(time.perf_counter() - began)

            log.unlink(missing_ok=True)
            command = [WINE_MACHINE, self.wine, "run", f"C:\\Launcher\\{program.name}", "--autoquit"]
            began = time.perf_counter()
            process = subprocess.Popen(command, env=environment, stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL)
            while not log.exists() or b"AppLoop: tick 0" not in log.read_bytes():
                if process.poll() is not None:
                    sys.exit("the launcher ended before its first step")
                time.sleep(0.0005)
            launcher.append(time.perf_counter() - began)
            process.wait()
        print(ROW.format("", "launcher", "nothing", ""))
        self.print_row("start to the first step, on Wine", launcher, nothing)


NAMES = ("crc", "repair", "compare", "small", "large", "start")


def main():
    arguments = read_arguments(__doc__, ["host_bin", "windows_bin"], NAMES, rounds=3)
    print(ROW.format("what", "Wine", "host", "ratio"), flush=True)
    with tempfile.TemporaryDirectory(prefix="tolvan-bench.", dir=arguments.folder) as folder:
        bench = WineBench(arguments.host_bin, arguments.windows_bin, pathlib.Path(folder),
                          arguments.rounds)
        try:
            for name in arguments.names:
                getattr(bench, name)()
        finally:
            bench.on_wine("end")


if __name__ == "__main__":
    main()
