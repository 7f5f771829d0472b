"""Compares fetching over HTTPS with curl, against an nginx of its own on loopback.

usage: http_compare.py FETCH_BENCH [--rounds N] [--folder FOLDER]

Times whole processes, in turn: one file of 1 GiB against "curl -o", and 2,000 files of 64 KiB
against "curl -K" (one process that reuses its connection). Prints the medians of the wall time and
of the processor time, which is steadier on a busy machine, and their ratios.
What was fetched is compared with what was served. FOLDER (the system's temporary folder) needs
10 GiB.
"""

import argparse
import filecmp
import os
import pathlib
import random
import shutil
import statistics
import subprocess
import sys
import tempfile

import web_server

LARGE = 1 << 30
SMALL = 64 << 10
COUNT = 2000


def make_files(folder):
    folder.mkdir()
    block = random.Random(1).randbytes(1 << 20)
    with open(folder / "large", "wb") as file:
        for index in range(LARGE // len(block)):
            file.write(block[index:] + block[:index])
    for index in range(COUNT):
        start = index * 97 % len(block)
        (folder / str(index)).write_bytes((block[start:] + block[:start])[:SMALL])


class Comparison:
    def __init__(self, fetch_bench, work, base):
        self.fetch_bench, self.work, self.base = fetch_bench, work, base
        self.machine = work / "machine"
        self.authority = work / "certificates" / "ca.pem"
        self.environment = dict(os.environ, TOLVAN_MACHINE=self.machine,
                                TOLVAN_CA_FILE=self.authority)

    def timed(self, command, text):
        """Wall and processor seconds."""
        before = os.times()
        subprocess.run(command, input=text, text=True, env=self.environment, check=True,
                       stdout=subprocess.DEVNULL)
        after = os.times()
        return (after.elapsed - before.elapsed,
                after.children_user + after.children_system
                - before.children_user - before.children_system)

    def ours(self, names, folder):
        addresses = "".join(f"{self.base}{name}\n" for name in names)
        return self.timed([self.fetch_bench, f"C:\\{folder}"], addresses)

    def curl(self, names, folder):
        config = "".join(f'url = "{self.base}{name}"\noutput = "{folder}/{index}"\n'
                         for index, name in enumerate(names))
        return self.timed(["curl", "-s", "--cacert", self.authority, "-K", "-"], config)

    def check(self, names, folder):
        for index, name in enumerate(names):
            if not filecmp.cmp(self.work / "served" / name, folder / str(index), shallow=False):
                sys.exit(f"{folder}/{index} differs from what was served")

    def run(self, title, names, rounds):
        ours, curl = [], []
        for number in range(rounds):
            name = f"{title}-{number}".replace(" ", "")
            theirs = self.work / "curl" / name
            theirs.mkdir(parents=True)
            curl.append(self.curl(names, theirs))
            ours.append(self.ours(names, name))
            if number == 0:
                self.check(names, self.machine / "drive_c" / name)
            if len(names) == 1:
                shutil.rmtree(theirs)
                shutil.rmtree(self.machine / "drive_c" / name)
        for kind, index in (("wall", 0), ("processor", 1)):
            mine = statistics.median(times[index] for times in ours)
            other = statistics.median(times[index] for times in curl)
            print(f"{title}, {kind}: FetchFile {mine:.2f} s, curl {other:.2f} s, "
                  f"ratio {mine / other:.2f}", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("fetch_bench", type=pathlib.Path)
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--folder", help="where to work")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="tolvan-http.", dir=arguments.folder) as folder:
        work = pathlib.Path(folder)
        certificates = work / "certificates"
        web_server.make_certificates(certificates)
        make_files(work / "served")
        with web_server.nginx(work / "nginx", work / "served", certificates) as base:
            comparison = Comparison(arguments.fetch_bench.resolve(), work, base)
            comparison.run("1 file of 1 GiB", ["large"], arguments.rounds)
            comparison.run("2,000 files of 64 KiB", [str(index) for index in range(COUNT)],
                           arguments.rounds)


main()
