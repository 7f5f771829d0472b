"""Shows how a launcher's pass or install goes, until it ends.

usage: follow_progress.py FILE PROCESS_ID

FILE is what the launcher writes to TOLVAN_PROGRESS_FILE. On a terminal one line is drawn over and
over, elsewhere the last line of each state is printed. Exit code 0 when it ends well, 1 when it ends
in an error state, 2 when the process has ended before that or nothing came for two minutes.
"""

import os
import sys
import time

RUNNING = {"Boot", "Manifest", "Parse", "Compare", "Update", "Verify", "Install"}
GOOD_ENDS = {"Ready", "InstallDone"}
PATIENCE = 120
BAR = 30


def read_lines(path):
    try:
        with open(path, encoding="utf-8") as file:
            return [line.split("\t") for line in file.read().split("\n")[:-1]]
    except FileNotFoundError:
        return []


def stage_of(fields):
    """The state, and of an install the stage's title."""
    return fields[1], fields[8].split(" | ")[0] if fields[1] == "Install" else ""


def has_begun(fields):
    """False before an install, and before its first stage."""
    return fields[1] in RUNNING and (fields[1] != "Install" or stage_of(fields)[1] != "")


def describe(fields):
    _, state, fraction, done, total, bytes_done, bytes_total, speed, current, error = fields
    full = int(float(fraction) * BAR)
    text = f"{state:<9} [{'#' * full}{'.' * (BAR - full)}] {float(fraction):4.0%}"
    if state in ("Compare", "Update", "Verify"):
        text += f"  {done} of {total} files"
    if state == "Install":
        text += f"  {current}"
    if state == "Update":
        text += f"  {int(bytes_done) / 1e6:.1f} of {int(bytes_total) / 1e6:.1f} MB"
        if float(speed):
            text += f"  {float(speed) / 1e6:.1f} MB/s"
        text += f"  {current}"
    return text + (f"  {error}" if error else "")


def main():
    path, process = sys.argv[1], int(sys.argv[2])
    terminal = sys.stdout.isatty()
    last, shown_state, shown_lines, last_change = None, None, 0, time.monotonic()
    while True:
        lines = read_lines(path)
        if len(lines) > shown_lines:
            last_change = time.monotonic()
            for fields in lines[shown_lines:]:
                if (not terminal and last and has_begun(last)
                        and stage_of(fields) != stage_of(last)):
                    print(describe(last), flush=True)
                last = fields
            shown_state = last[1]
            shown_lines = len(lines)
            if terminal:
                print("\r\033[K" + describe(lines[-1])[:120], end="", flush=True)
            if shown_state not in RUNNING:
                print("" if terminal else describe(last))
                return 0 if shown_state in GOOD_ENDS else 1
        elif not os.path.exists(f"/proc/{process}") or time.monotonic() - last_change > PATIENCE:
            print(f"\nthe launcher ended or fell silent in {shown_state}")
            return 2
        time.sleep(0.1)


sys.exit(main())
