"""Shows that no folder is deleted with all below it but behind the guard.

usage: delete_guard_test.py SOURCE_FOLDER LIBRARY...

DeleteTree must be invisible outside of its file (looked up in the built libraries), and inside of it
be called by its own recursion and by RemoveInstallFolder alone, behind the refusal there. Nothing
else in the sources may bring a recursive delete of its own.
"""

import pathlib
import re
import subprocess
import sys

GUARDED = pathlib.Path("install/folder_tree.cpp")
# What deletes trees by itself. The program that removes a handoff copy's own folder is let through
# by name: it is given that folder and nothing else.
FOREIGN = re.compile(r"remove_all|SHFileOperation|IFileOperation|\brd /s\b|rm -rf|RemoveDirectoryTree")
SELF_REMOVAL = {"platform/win32/late_removal.cpp", "platform/host/late_removal.cpp"}


def bodies(source):
    """Each function's name with its body."""
    pattern = re.compile(r"^(?:bool|void|int|std::\S+) (\w+)\(([^;{]*?)\) \{\n(.*?)^\}", re.M | re.S)
    return {name: body for name, _, body in pattern.findall(source)}


def check_calls(text):
    functions = bodies(text)
    callers = {name for name, body in functions.items() if re.search(r"\bDeleteTree\(", body)}
    if callers != {"RemoveEntry", "RemoveInstallFolder"}:
        return f"DeleteTree is called by {sorted(callers)}"
    entry_callers = {name for name, body in functions.items() if re.search(r"\bRemoveEntry\(", body)}
    if entry_callers != {"DeleteTree"}:
        return f"RemoveEntry is called by {sorted(entry_callers)}"
    guard = "    if (IsProtectedFromDeletion(folder)) return false;\n"
    if not functions["RemoveInstallFolder"].startswith(guard):
        return "RemoveInstallFolder does not begin with its guard"
    names = len(re.findall(r"\bDeleteTree\b", text))
    # Declared, defined and called twice; and nobody takes its address.
    return None if names == 4 else f"DeleteTree is mentioned {names} times"


def check_elsewhere(sources):
    for path in sorted([*sources.rglob("*.cpp"), *sources.rglob("*.h")]):
        relative = path.relative_to(sources)
        text = path.read_text()
        if relative != GUARDED and re.search(r"\bDeleteTree\b", text):
            return f"{relative} mentions DeleteTree"
        if relative.as_posix() not in SELF_REMOVAL and FOREIGN.search(text):
            return f"{relative} deletes trees in another way"
    return None


def check_symbols(library):
    symbols = subprocess.run(["nm", "-C", library], check=True, capture_output=True, text=True).stdout
    found = [line for line in symbols.splitlines() if "DeleteTree(" in line]
    visible = [line for line in found if line.split()[1].isupper()]
    return f"{library}: {visible[0]}" if visible else None


def main():
    sources = pathlib.Path(sys.argv[1])
    faults = [check_calls((sources / GUARDED).read_text()), check_elsewhere(sources),
              *(check_symbols(library) for library in sys.argv[2:])]
    faults = [fault for fault in faults if fault]
    print("\n".join(faults) or "every recursive delete stands behind its guard")
    sys.exit(1 if faults else 0)


main()
