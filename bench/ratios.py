"""Compares whole passes with well-known programs and bare references, in turn, on this machine.

usage: ratios.py BIN [--rounds N] [--folder FOLDER] [NAME...]

BIN is the folder of a release build's programs. NAME picks some of the comparisons: crc, repair,
compare, large, small, slow, start, move, tree. Prints medians of N rounds, their ratios, and what the
ratio is meant to stay below (or above). "processor" is the same in user and system time, which is
steadier on a busy machine; it leaves the server out. FOLDER (the system's temporary folder) needs
12 GiB. The exit code says whether every program did its work, and nothing about the times.
"""

import argparse
import itertools
import json
import os
import pathlib
import shlex
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

import web_server

HERE = pathlib.Path(__file__).resolve().parent
ROW = "{:<34} {:>10} {:>10} {:>7} {:>10}  {}"
SMALL_COUNT = 2000
MOVED_COUNT = 5000
MOVED_BYTES = 500 << 20
TREE_COUNT = 50_000
TREE_BYTES = 200 << 20
# What a careful person types for a move to another disk.
MOVE_BY_HAND = """cp -a "$1" "$2" &&
diff <(cd "$1" && find . -type f -printf '%P %s\n' | sort) \
     <(cd "$2" && find . -type f -printf '%P %s\n' | sort) && rm -rf "$1" """
LAUNCH_PATIENCE = 300
MACHINE_GAME = "game"
LAUNCHER = "Tolvan Online.exe"
UNINSTALL_KEY = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\TolvanOnline"


def median(times, part):
    return statistics.median(time[part] for time in times)


def print_row(title, ours, reference, target):
    """Times are pairs of wall and processor seconds."""
    mine, other = median(ours, 0), median(reference, 0)
    processor = median(ours, 1) / max(median(reference, 1), 1e-6)
    print(ROW.format(title, f"{mine:.4f} s", f"{other:.4f} s", f"{mine / other:.2f}",
                     f"{processor:.2f}", target), flush=True)


def timed(command, text=None, environment=None):
    before = os.times()
    subprocess.run(command, input=text, text=True, check=True, stdout=subprocess.DEVNULL,
                   env=environment)
    after = os.times()
    return (after.elapsed - before.elapsed,
            after.children_user + after.children_system
            - before.children_user - before.children_system)


def timed_start(command):
    """Like timed, for what takes milliseconds."""
    began = time.perf_counter()
    process = subprocess.Popen(command)
    usage = os.wait4(process.pid, 0)[2]
    process.returncode = 0
    return time.perf_counter() - began, usage.ru_utime + usage.ru_stime


def timed_pass(command, environment):
    """Runs pass_bench. Gives what each state took, as (wall, processor), and the largest resident
    size of the pass in MiB."""
    process = subprocess.Popen(command, env=environment, text=True, stdout=subprocess.PIPE)
    *states, end = process.stdout.read().splitlines()
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    process.stdout.close()
    if process.returncode != 0:
        sys.exit(f"pass_bench ended in {end}")
    fields = (line.split() for line in states)
    return ({name: (float(wall), float(processor)) for name, wall, processor in fields},
            usage.ru_maxrss // 1024)


class Tree:
    """Wrapped files below a machine's game folder, and a server's folder that has their list."""

    def __init__(self, work, name, count, total, installed=True):
        self.folder = work / name
        self.machine = self.folder / "machine"
        self.served = self.folder / "served"
        self.count = count
        made = self.machine / "drive_c" / MACHINE_GAME if installed else self.folder / "made"
        subprocess.run([sys.executable, HERE / "make_tree.py", made, str(count), str(total)],
                       check=True)
        (self.served / "scripts").mkdir(parents=True)
        (self.served / "patcher").mkdir()
        (made / "index.txt").rename(self.served / "scripts" / "index.txt")
        (self.served / "patcher" / "get").symlink_to(made / "Data")
        self.data = made / "Data"

    def names(self):
        lines = (self.served / "scripts" / "index.txt").read_text().splitlines()
        return [line.rpartition("=")[0] for line in lines]

    def write_paths(self):
        path = self.folder / "paths"
        path.write_text("".join(f"{self.data / name}\n" for name in self.names()))
        return path


class Bench:
    def __init__(self, binaries, work, rounds):
        self.bin, self.work, self.rounds = binaries, work, rounds
        self.certificates = work / "certificates"
        web_server.make_certificates(self.certificates)
        self.authority = self.certificates / "ca.pem"
        self.serials = itertools.count()

    def nginx(self, served):
        return web_server.nginx(self.work / f"nginx-{next(self.serials)}", served,
                                self.certificates)

    def environment(self, machine, base):
        return dict(os.environ, TOLVAN_MACHINE=machine, TOLVAN_CA_FILE=self.authority,
                    TOLVAN_PROBE_URL=base, TOLVAN_PATCH_URL=base)

    def run_pass(self, tree, base, *mode, folder=MACHINE_GAME):
        """What each state took, as (wall, processor)."""
        states, self.resident = timed_pass(
            [self.bin / "pass_bench", base, f"C:\\{folder}", *mode],
            self.environment(tree.machine, base))
        return states

    def lay_launcher(self, machine):
        """Puts the launcher on the machine, with an installed game; gives its path there."""
        tool = [self.bin / "tolvan-machine", machine]
        subprocess.run([*tool, "init"], check=True)
        subprocess.run([*tool, "reg", "add", UNINSTALL_KEY, "/v", "InstallLocation", "/t",
                        "REG_SZ", "/d", f"C:\\{MACHINE_GAME}", "/f"], check=True,
                       stdout=subprocess.DEVNULL)
        game = machine / "drive_c" / MACHINE_GAME
        game.mkdir(exist_ok=True)
        (game / f".{LAUNCHER}").write_bytes(b"a client")
        program = machine / "drive_c" / "Launcher" / LAUNCHER
        program.parent.mkdir()
        shutil.copy(self.bin / LAUNCHER, program)
        return program

    def launch_until(self, program, machine, base, text):
        """Runs the launcher until its log holds the text. Gives the wall and processor seconds up
        to then, and its largest resident size in MiB."""
        log = program.parent / "launcher_boot.log"
        log.unlink(missing_ok=True)
        began = time.perf_counter()
        process = subprocess.Popen([program], env=self.environment(machine, base))
        # A short list takes milliseconds, a long one many seconds.
        while not log.exists() or text not in log.read_bytes():
            waited = time.perf_counter() - began
            if process.poll() is not None or waited > LAUNCH_PATIENCE:
                process.kill()
                sys.exit(f"the launcher never said {text}: {log.read_text()}")
            time.sleep(min(0.1, max(0.0002, waited / 100)))
        waited = time.perf_counter() - began
        process.kill()
        usage = os.wait4(process.pid, 0)[2]
        process.returncode = 0
        return waited, usage.ru_utime + usage.ru_stime, usage.ru_maxrss // 1024

    def reference(self, name, paths):
        output = subprocess.run([self.bin / name, paths], check=True, text=True,
                                stdout=subprocess.PIPE).stdout.split()
        return float(output[0]), float(output[2])

    def curl(self, base, names, folder):
        config = "".join(f'url = "{base}patcher/get/{name}"\noutput = "{folder}/{index}"\n'
                         for index, name in enumerate(names))
        return timed(["curl", "-s", "-f", "--cacert", self.authority, "-K", "-"], config)

    # The comparisons

    def crc(self):
        output = subprocess.run(
            [self.bin / "crc32_bench", "--benchmark_filter=ISA-L|Launcher::Crc32",
             f"--benchmark_repetitions={self.rounds}", "--benchmark_format=json",
             "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.1"],
            check=True, text=True, stdout=subprocess.PIPE).stdout
        times = {}
        for run in json.loads(output)["benchmarks"]:
            if run["run_type"] == "iteration":
                times.setdefault(run["run_name"], []).append(
                    (run["real_time"] / 1e9, run["cpu_time"] / 1e9))
        print_row("CRC-32 of 1 GiB / ISA-L", times["Launcher::Crc32"], times["ISA-L"], "<= 1.25")

    def repair(self):
        tree = Tree(self.work, "repair", 3000, 2 << 30)
        paths = tree.write_paths()
        ours, read, rhash = [], [], []
        with self.nginx(tree.served) as base:
            self.reference("read_all", paths)
            for _ in range(self.rounds):
                ours.append(self.run_pass(tree, base, "repair")["Compare"])
                read.append(self.reference("read_all", paths))
                rhash.append(timed(["rhash", "--crc32", "-r", tree.data]))
        print_row("repair, 3,000 files, 2 GiB / read", ours, read, "<= 1.60")
        print_row("the same / rhash --crc32 -r", ours, rhash, "<= 0.35")

    def compare(self):
        tree = Tree(self.work, "compare", 100000, 100000 * 2048)
        copy = self.work / "compare" / "copy"
        subprocess.run(["cp", "-a", tree.data, copy], check=True)
        paths = tree.write_paths()
        # Reading the list takes so long that a machine may have given up the files' pages by then.
        warm = shlex.join([str(self.bin / "read_ends"), str(paths)]) + " > /dev/null"
        forget = [sys.executable, str(HERE / "forget_pages.py"), str(paths)]
        ours, ends, rsync, cold, cold_ends = [], [], [], [], []
        with self.nginx(tree.served) as base:
            timed(["rsync", "-an", f"{tree.data}/", f"{copy}/"])
            for _ in range(self.rounds):
                states = self.run_pass(tree, base, "pass", warm)
                ours.append(states["Compare"])
                ends.append(self.reference("read_ends", paths))
                rsync.append(timed(["rsync", "-an", f"{tree.data}/", f"{copy}/"]))
            os.sync()  # what is not on the disk yet cannot be dropped
            for _ in range((self.rounds + 1) // 2):
                cold.append(self.run_pass(tree, base, "pass", shlex.join(forget))["Compare"])
                subprocess.run(forget, check=True)
                cold_ends.append(self.reference("read_ends", paths))
        print_row("compare, 100,000 files / read ends", ours, ends, "<= 1.30")
        print_row("the same / rsync -an", ours, rsync, "<= 1.00")
        print_row("the same, cold cache / read ends", cold, cold_ends, "-")
        print(f"    the pace of the loop makes parsing that list take {states['Parse'][0]:.0f} s",
              flush=True)
        self.measure_memory(tree)

    def measure_memory(self, tree):
        empty = tree.folder / "empty-machine"
        with self.nginx(tree.served) as base:
            for machine, state in ((tree.machine, "Ready"), (empty, "Update")):
                program = self.lay_launcher(machine)
                text = f"state: Compare -> {state}".encode()
                resident = self.launch_until(program, machine, base, text)[2]
                print(f"    largest resident size of the launcher up to {state}: {resident} MiB "
                      "(target < 120)", flush=True)

    def large(self):
        tree = Tree(self.work, "large", 1, 1 << 30, installed=False)
        target = self.work / "curl-large"
        target.mkdir()
        ours, curl = [], []
        with self.nginx(tree.served) as base:
            for _ in range(self.rounds):
                states = self.run_pass(tree, base)
                ours.append(states["Update"])
                curl.append(self.curl(base, tree.names(), target))
                shutil.rmtree(tree.machine / "drive_c" / MACHINE_GAME)
                (target / "0").unlink()
        print_row("1 GiB over HTTPS / curl -o", ours, curl, "<= 1.15")
        print(f"    largest resident size of that pass: {self.resident} MiB", flush=True)

    def fetch_small(self, tree, base, serial):
        target = self.work / f"curl-{serial}"
        target.mkdir()
        ours = self.run_pass(tree, base, folder=f"{MACHINE_GAME}-{serial}")["Update"]
        return ours, self.curl(base, tree.names(), target)

    def small(self):
        tree = Tree(self.work, "small", SMALL_COUNT, SMALL_COUNT << 16, installed=False)
        with self.nginx(tree.served) as base:
            ours, curl = zip(*(self.fetch_small(tree, base, f"small-{index}")
                               for index in range(self.rounds)))
            # A tenth of the files tells what a process for each of them costs.
            target = self.work / "single"
            target.mkdir()
            singles = [self.curl(base, [name], target) for name in tree.names()[::10]]
        single = [tuple(10 * sum(times) for times in zip(*singles))]
        print_row("2,000 x 64 KiB over HTTPS / curl -K", ours, curl, "<= 3.50")
        print_row("the same / one curl per file", ours, single, "<= 0.10")

    def slow(self):
        tree = Tree(self.work, "slow", SMALL_COUNT, SMALL_COUNT << 16, installed=False)
        server = web_server.slow_server(self.bin / "tolvan-server", tree.served, self.certificates,
                                        20)
        with server as base:
            # Two thirds of a minute each: latency leaves little to noise.
            ours, curl = zip(*(self.fetch_small(tree, base, f"slow-{index}")
                               for index in range((self.rounds + 4) // 5)))
        print_row("the same, 20 ms a request / curl -K", ours, curl, "<= 1.15")

    def start(self):
        machine = self.work / "machine"
        program = self.lay_launcher(machine)
        ours, nothing = [], []
        for _ in range(20 * self.rounds):
            # No server is there: the first step comes before anybody asks for one.
            ours.append(self.launch_until(program, machine, "https://localhost:9/",
                                          b"AppLoop: tick 0"))
            nothing.append(timed_start([self.bin / "nothing"]))
        print_row("start to the first step / nothing", ours, nothing, "< 2.00")

    def move(self):
        """Each move has its own copy of the tree on the first drive, all made beforehand."""
        machine = self.work / "machine"
        subprocess.run([self.bin / "tolvan-machine", machine, "init"], check=True)
        first, second = machine / "drive_c", machine / "drive_d"
        made = self.work / "made"
        subprocess.run([sys.executable, HERE / "make_tree.py", made, str(MOVED_COUNT),
                        str(MOVED_BYTES)], check=True)
        for index in range(self.rounds):
            for kind in ("ours", "hand"):
                subprocess.run(["cp", "-a", made, first / f"{kind}{index}"], check=True)
        os.sync()
        environment = dict(os.environ, TOLVAN_MACHINE=machine)
        ours, hand = [], []
        for index in range(self.rounds):
            ours.append(timed([self.bin / "move_bench", f"C:\\ours{index}", f"D:\\ours{index}"],
                              environment=environment))
            hand.append(timed(["bash", "-c", MOVE_BY_HAND, "move", first / f"hand{index}",
                               second / f"hand{index}"]))
        print_row("move of 5,000 files / cp, check, rm", ours, hand, "<= 1.50")

    def tree(self):
        """Measuring and removing; each removal has a tree of its own, made beforehand."""
        machine = self.work / "machine"
        subprocess.run([self.bin / "tolvan-machine", machine, "init"], check=True)
        drive = machine / "drive_c"
        made = drive / "made"
        subprocess.run([sys.executable, HERE / "make_tree.py", made, str(TREE_COUNT),
                        str(TREE_BYTES)], check=True)
        for index in range(self.rounds):
            for kind in ("ours", "hand"):
                subprocess.run(["cp", "-a", made, drive / f"{kind}{index}"], check=True)
        os.sync()
        environment = dict(os.environ, TOLVAN_MACHINE=machine)
        tool = self.bin / "tree_bench"
        measured, du, removed, rm = [], [], [], []
        for index in range(self.rounds):
            measured.append(timed([tool, "measure", "C:\\made"], environment=environment))
            du.append(timed(["du", "-s", "--apparent-size", made]))
        for index in range(self.rounds):
            removed.append(timed([tool, "remove", f"C:\\ours{index}"], environment=environment))
            rm.append(timed(["rm", "-rf", drive / f"hand{index}"]))
        print_row("measuring 50,000 files / du", measured, du, "<= 2.00")
        print_row("removing 50,000 files / rm -rf", removed, rm, "<= 2.00")


NAMES = ("crc", "repair", "compare", "large", "small", "slow", "start", "move",
         "tree")


def read_arguments(description, folders, names, rounds):
    """The command line: folders of programs, which comparisons, and how often."""
    parser = argparse.ArgumentParser(description=description,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    for folder in folders:
        parser.add_argument(folder, type=lambda text: pathlib.Path(text).resolve())
    parser.add_argument("names", nargs="*", metavar="NAME", default=names)
    parser.add_argument("--rounds", type=int, default=rounds)
    parser.add_argument("--folder", help="where to work")
    arguments = parser.parse_intermixed_args()
    for name in arguments.names:
        if name not in names:
            parser.error(f"no comparison is called {name}")
    return arguments


def main():
    arguments = read_arguments(__doc__, ["bin"], NAMES, rounds=5)
    print(ROW.format("what / reference", "ours", "reference", "ratio", "processor", "target"),
          flush=True)
    for name in arguments.names:
        with tempfile.TemporaryDirectory(prefix="tolvan-bench.", dir=arguments.folder) as folder:
            bench = Bench(arguments.bin, pathlib.Path(folder), arguments.rounds)
            getattr(bench, name)()


if __name__ == "__main__":
    main()
