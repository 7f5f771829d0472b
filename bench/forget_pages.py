"""Has the system drop what it keeps of files in memory, but not that it knows them.

usage: forget_pages.py LIST_OF_PATHS
"""

import os
import sys

with open(sys.argv[1], encoding="utf-8") as paths:
    for path in paths:
        file = os.open(path.rstrip("\n"), os.O_RDONLY)
        os.posix_fadvise(file, 0, 0, os.POSIX_FADV_DONTNEED)
        os.close(file)
