"""Checks that sources that state the day of the build compile to the same bytes on any day.

The day is that of SOURCE_DATE_EPOCH, and no directory of the machine is part of the product.
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

SOURCES = ["dbgLibraryBuildInfo.cpp", "testMgr.cpp"]
DAYS = {"1336435200": b"May  8 2012", "0": b"Jan  1 1970"}
CONSTANTS = ["STAMP_LONG", "STAMP_SHORT", "CONFIGURATION"]


def compiled(compiler, root, source, epoch):
    """The object of a source, from a copy of the tree in a directory of its own."""
    with tempfile.TemporaryDirectory() as name:
        tree = pathlib.Path(name) / "tree"
        shutil.copytree(root / "src" / "base", tree / "src" / "base")
        (tree / "build").mkdir()
        command = [compiler, "-std=c++20", "-O2", "-g", f"-ffile-prefix-map={tree}/=",
                   "-DZU_BASE_BUILD", "-DZU_BUILT_BY=\"host\\\\user\"", "-I", str(tree / "src"),
                   "-c", str(tree / "src" / "base" / source), "-o", "object"]
        command += [f"-DZU_BUILD_{constant}=\"x\"" for constant in CONSTANTS]
        subprocess.run(command, cwd=tree / "build", check=True,
                       env={**os.environ, "SOURCE_DATE_EPOCH": epoch})
        return (tree / "build" / "object").read_bytes()


def findings(root, compiler):
    found = []
    for source in SOURCES:
        for epoch, day in DAYS.items():
            first = compiled(compiler, root, source, epoch)
            if day not in first:
                found.append(f"{source}: the day of {epoch} is not {day.decode()}")
            if compiled(compiler, root, source, epoch) != first:
                found.append(f"{source}: two builds differ")
    return found


def main():
    found = findings(pathlib.Path(sys.argv[1]), sys.argv[2])
    for line in found:
        print(line)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
