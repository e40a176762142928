"""Compiles each public header alone, as clients of any supported kind do, with all warnings.

Usage: checkHeaders.py <root> <compiler>...
"""

import concurrent.futures
import itertools
import os
import pathlib
import subprocess
import sys

from sourceTree import Errors, Table

STANDARDS = ("c++17", "c++20")
WARNINGS = ("-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Wsign-conversion",
            "-Wold-style-cast", "-Wshadow", "-Wnon-virtual-dtor", "-Woverloaded-virtual", "-Werror")


def publicHeaders(root):
    """As includes name them."""
    for row in Table(root, Errors()).rows.values():
        yield from row.publicFiles


def compileAlone(root, compiler, standard, header):
    """What the compiler says of a source that has the header and nothing else."""
    done = subprocess.run(
        [compiler, "-x", "c++", f"-std={standard}", *WARNINGS, "-fsyntax-only", f"-I{root / 'src'}",
         "-"], input=f'#include "{header}"\n', stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
        text=True, check=False)
    return f"{header}, {compiler} -std={standard}:\n{done.stdout}" if done.returncode else ""


def main():
    root, compilers = pathlib.Path(sys.argv[1]), sys.argv[2:]
    headers = list(publicHeaders(root))
    cases = list(itertools.product(compilers, STANDARDS, headers))
    if not cases:
        sys.exit("there is nothing to check")
    with concurrent.futures.ThreadPoolExecutor(len(os.sched_getaffinity(0))) as workers:
        findings = [text for text in workers.map(lambda case: compileAlone(root, *case), cases)
                    if text]
    if findings:
        sys.exit("\n".join(findings))
    print(f"{len(headers)} headers, {len(cases)} times compiled")


if __name__ == "__main__":
    main()
