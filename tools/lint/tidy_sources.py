#!/usr/bin/env python3
"""tidy_sources.py BUILD_FOLDER

Prints a line "SOURCE DIGEST" for each source of src/ and tools/ in the build's compile commands.
The digest covers all that a finding can depend on: the source, the project's headers that it
includes, directly or not, the compile command and the configuration of clang-tidy. It does not
depend on where the tree lies.
"""
import functools
import hashlib
import json
import pathlib
import re
import sys

INCLUDE = re.compile(rb'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)


def main():
    build = pathlib.Path(sys.argv[1])
    root = pathlib.Path.cwd()
    folders = [root / "src", root / "tools", build / "generated"]
    configuration = b"".join(
        path.read_bytes() for path in [root / ".clang-tidy", *sorted(root.glob("tools/*/.clang-tidy"))])

    @functools.cache
    def included(path):
        names = (name.decode() for name in INCLUDE.findall(path.read_bytes()))
        places = ((folder / name).resolve() for name in names for folder in [path.parent, *folders])
        return [place for place in places if place.is_file()]

    def closure(path):
        found, waiting = set(), [path]
        while waiting:
            file = waiting.pop()
            if file not in found:
                found.add(file)
                waiting += included(file)
        return sorted(found)

    commands = json.loads((build / "compile_commands.json").read_text())
    sources = {pathlib.Path(entry["file"]): entry["command"] for entry in commands}
    for path, command in sorted(sources.items()):
        if any(path.is_relative_to(root / folder) for folder in ("src", "tools")):
            digest = hashlib.sha256(configuration + command.replace(str(root), "").encode())
            for file in closure(path):
                digest.update(file.read_bytes())
            print(path.relative_to(root), digest.hexdigest())


main()
