"""python -m quillon: says where the command-line tool is."""

import sys

print(
    "quillon: the command-line tool is not in the Python package. Quillon's Debian package and its\n"
    "archive for Linux have it, and a build of the source tree has it in build/release/host/quillon.",
    file=sys.stderr,
)
sys.exit(2)
