"""Takes the first channel of a float map whenever a line comes in, as a script on numpy does.

  numpy_peer.py VARIANT IN OUT OFFSET PIXELS

OUT exists and ends with its header; the pixels of both files start at OFFSET.
"""
import sys

import numpy as np

PIECE = 256 * 1024


def whole(source, target, offset, pixels):
    """As one writes it: the map as an array in mapped memory, a column of it written."""
    samples = np.memmap(source, "<f4", "r", offset, (pixels, 3))
    with open(target, "r+b") as out:
        out.seek(offset)
        np.ascontiguousarray(samples[:, 0]).tofile(out)


def pieces(source, target, offset, pixels):
    """The same in pieces that stay in the processor's cache, with arrays that are used again."""
    samples = np.empty((PIECE // 12, 3), "<f4")
    column = np.empty(PIECE // 12, "<f4")
    with open(source, "rb", buffering=0) as file, open(target, "r+b", buffering=0) as out:
        file.seek(offset)
        out.seek(offset)
        for first in range(0, pixels, len(column)):
            count = min(len(column), pixels - first)
            file.readinto(samples[:count])
            np.copyto(column[:count], samples[:count, 0])
            out.write(column[:count])


def main():
    variant, source, target, offset, pixels = sys.argv[1:]
    work = {"whole": whole, "pieces": pieces}[variant]
    print("ready", flush=True)
    for _ in sys.stdin:
        work(source, target, int(offset), int(pixels))
        print("done", flush=True)


main()
