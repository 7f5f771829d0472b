"""How fast the toolkit and the launcher's window are, as ratios to plain programs.

usage: gui_ratios.py BIN [--rounds N] [NAME...]

BIN is the folder of a release build's programs. NAME picks some of the comparisons: frame, share,
start, window, memory. Each starts an X server of its own where it needs one. The exit code says
whether every program did its work, and nothing about the times.
"""

import json
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

from ratios import read_arguments

HERE = pathlib.Path(__file__).resolve().parent
WITH_DISPLAY = HERE.parent / "tests" / "support" / "with_display.sh"
LAUNCHER = "Tolvan Online.exe"
TICKS = os.sysconf("SC_CLK_TCK")
REVEALED = b"reveal: composited surface shown"
PATIENCE = 60
# Seconds in which the X server and the window manager are done with a window that has gone.
CLEARED_AWAY = 0.2


def print_row(title, value, target):
    print(f"{title:<58} {value:>20}  {target}", flush=True)


def processor_seconds(process):
    fields = pathlib.Path(f"/proc/{process}/stat").read_text().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / TICKS


def resident_mebibytes(process):
    for line in pathlib.Path(f"/proc/{process}/status").read_text().splitlines():
        if line.startswith("VmRSS:"):
            return int(line.split()[1]) / 1024
    return 0.0


def share_of_a_core(process, seconds):
    before, began = processor_seconds(process), time.monotonic()
    time.sleep(seconds)
    return (processor_seconds(process) - before) / (time.monotonic() - began) * 100


def wait_until(condition, what):
    end = time.monotonic() + PATIENCE
    while not (answer := condition()):
        if time.monotonic() > end:
            sys.exit(f"gui_ratios.py: not within {PATIENCE} s: {what}")
        time.sleep(0.0005)
    return answer


def is_said(words, file):
    try:
        with open(file, "rb") as said:
            return words in said.read()
    except FileNotFoundError:
        return False


class Bench:
    def __init__(self, programs, rounds, folder):
        self.bin = programs
        self.rounds = rounds
        self.folder = folder

    def measure(self, pattern):
        """Processor milliseconds of each benchmark, the median of the rounds."""
        output = subprocess.run(
            [self.bin / "gui_bench", f"--benchmark_filter={pattern}",
             f"--benchmark_repetitions={self.rounds}", "--benchmark_format=json",
             "--benchmark_enable_random_interleaving=true"],
            check=True, text=True, stdout=subprocess.PIPE).stdout
        times = {}
        for run in json.loads(output)["benchmarks"]:
            if run["run_type"] == "iteration":
                times.setdefault(run["run_name"], []).append(run["cpu_time"])
        return {name: statistics.median(values) for name, values in times.items()}

    def frame(self):
        times = self.measure("^Frame/")
        ours, plain = times["Frame/Toolkit"], times["Frame/Cairo"]
        print_row("a full frame / plain Cairo", f"{ours:.2f}/{plain:.2f} ms = {ours / plain:.2f}",
                  "<= 0.80")

    def share(self):
        (took,) = self.measure("^Share/").values()
        print_row("the toolkit's own share, 1,000 widgets", f"{took:.3f} ms", "< 0.3 ms")

    # Programs on a display

    def lay_launcher(self):
        machine = self.folder / "machine"
        if not machine.exists():
            subprocess.run([self.bin / "tolvan-machine", machine, "init"], check=True)
            (machine / "drive_c" / "Launcher").mkdir()
            shutil.copy(self.bin / LAUNCHER, machine / "drive_c" / "Launcher")
        return machine, machine / "drive_c" / "Launcher"

    def start_launcher(self):
        """Starts it and waits for its first frame; returns it, and the wall seconds until then."""
        machine, home = self.lay_launcher()
        log = home / "launcher_boot.log"
        log.unlink(missing_ok=True)
        began = time.perf_counter()
        process = subprocess.Popen([home / LAUNCHER, "--nopatch"], stdout=subprocess.DEVNULL,
                                   env={**os.environ, "TOLVAN_MACHINE": str(machine)})
        wait_until(lambda: is_said(REVEALED, log), "the launcher's window")
        return process, time.perf_counter() - began

    def start_bare(self):
        """Waited for as the launcher is, by looking at a file: to look takes a processor, too."""
        said = self.folder / "bare.txt"
        with said.open("wb") as output:
            began = time.perf_counter()
            process = subprocess.Popen([self.bin / "sdl_text"], stdin=subprocess.PIPE,
                                       stdout=output)
        wait_until(lambda: is_said(b"shown", said), "the bare program's window")
        return process, time.perf_counter() - began

    @staticmethod
    def finish(process):
        process.kill()
        process.communicate()

    def start(self):
        ours, bare = [], []
        for _ in range(10 * self.rounds):
            for start, times in ((self.start_launcher, ours), (self.start_bare, bare)):
                process, wall = start()
                times.append((wall, processor_seconds(process.pid)))
                self.finish(process)
                time.sleep(CLEARED_AWAY)
        for part, name in ((0, "wall"), (1, "processor")):
            mine = statistics.median(times[part] for times in ours)
            other = statistics.median(times[part] for times in bare)
            print_row(f"start to the first frame / bare SDL and Pango, {name}",
                      f"{mine * 1000:.0f}/{other * 1000:.0f} ms = {mine / other:.2f}", "<= 1.10")

    def window(self):
        process, _ = self.start_launcher()
        window = subprocess.run(["xdotool", "search", "--sync", "--name", "^Tolvan Online$"],
                                check=True, text=True, stdout=subprocess.PIPE).stdout.split()[-1]
        time.sleep(1)
        print_row("the launcher's window at 60 frames, of one core",
                  f"{share_of_a_core(process.pid, 10):.1f} %", "< 10 %")
        subprocess.run(["xdotool", "windowminimize", window], check=True)
        time.sleep(1)
        print_row("the same minimised", f"{share_of_a_core(process.pid, 10):.1f} %", "< 1 %")
        self.finish(process)
        for page, says in (("surfaces", "still"), ("playground", "a picture fading")):
            process, state = self.start_gallery(page)
            print_row(f"the gallery's page {page}, {says}, of one core",
                      f"{share_of_a_core(process.pid, 10):.1f} %", "< 10 %")
            self.finish(process)
            state.unlink()

    def start_gallery(self, page):
        state = self.folder / "state.txt"
        process = subprocess.Popen([self.bin / "tolvan-gallery", "--window", "--page", page,
                                    "--state", state])
        wait_until(state.exists, "the gallery's window")
        return process, state

    def memory(self):
        process, _ = self.start_launcher()
        print_row("resident at the launcher's first frame",
                  f"{resident_mebibytes(process.pid):.1f} MiB", "< 25 MB")
        self.finish(process)
        process, state = self.start_gallery("images")
        time.sleep(1)
        print_row("resident, the gallery", f"{resident_mebibytes(process.pid):.1f} MiB", "< 60 MB")
        self.finish(process)
        state.unlink()


ON_DISPLAY = ("start", "window", "memory")
NAMES = ("frame", "share", *ON_DISPLAY)


def main():
    arguments = read_arguments(__doc__, ["bin"], NAMES, rounds=3)
    needs_display = [name for name in arguments.names if name in ON_DISPLAY]
    if needs_display and "TOLVAN_WINE_GRAPHICS" not in os.environ:
        os.execv(WITH_DISPLAY, [WITH_DISPLAY, sys.executable, "-B", *sys.argv])
    with tempfile.TemporaryDirectory(prefix="tolvan-gui-bench.",
                                     dir=arguments.folder) as folder:
        bench = Bench(arguments.bin, arguments.rounds, pathlib.Path(folder))
        for name in arguments.names:
            getattr(bench, name)()


if __name__ == "__main__":
    main()
