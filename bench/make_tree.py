"""Makes a tree of wrapped files with its update list, for benchmarks.

usage: make_tree.py FOLDER COUNT TOTAL_BYTES

FOLDER/Data gets COUNT files of equal size, 200 a folder, and FOLDER/index.txt the list of them.
The contents come from one block of pseudo-random bytes that is rotated from file to file.
"""

import os
import random
import struct
import sys
import zlib

PIECE = 64 << 20


def main():
    folder, count, total = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
    payload_size = max(1, total // count - 20)
    chance = random.Random(1)
    # randbytes cannot give more than 256 MiB at once.
    block = b"".join(chance.randbytes(min(PIECE, payload_size + 4096 - start))
                     for start in range(0, payload_size + 4096, PIECE))
    lines = []
    for index in range(count):
        name = f"pack{index // 200:04}/file{index % 200:03}.dat"
        start = index % 4096
        payload = memoryview(block)[start:start + payload_size]
        crc = zlib.crc32(payload)
        path = os.path.join(folder, "Data", name)
        if index % 200 == 0:
            os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(struct.pack("<4sIQ", b"TPK1", 0, payload_size))
            file.write(payload)
            file.write(struct.pack("<I", crc))
        lines.append(f"{name}={crc}\t{payload_size + 20}\n")
    with open(os.path.join(folder, "index.txt"), "w", newline="") as file:
        file.writelines(lines)


main()
