"""Counts the lines of the portable sources that a run of all tests has reached.

usage: llvm-cov export -summary-only ... | lines.py <lowest percentage>

Ends in failure where the share is lower, and names the files that have the most lines left. What a
half does for one platform is not counted.
"""

import json
import re
import sys

PORTABLE = re.compile(r"(?:.*/)?(src/(?:base|app)/\w+\.(?:h|imp|cpp))")
HALF = re.compile(r"(?:Linux|Windows|WinNT)\.cpp$")
SHOWN = 10


def portableLines(export):
    """The portable files as (name, lines, lines that were run)."""
    for file in export["data"][0]["files"]:
        found = PORTABLE.fullmatch(file["filename"])
        if found and not HALF.search(found[1]):
            lines = file["summary"]["lines"]
            yield found[1], lines["count"], lines["covered"]


def report(export, lowest):
    """The text of the report, and whether enough lines were run."""
    files = list(portableLines(export))
    count = sum(lines for _, lines, _ in files)
    covered = sum(run for _, _, run in files)
    if count == 0:
        return "No lines were counted", False
    share = 100 * covered / count
    text = [f"lines: {share:.1f}% ({covered} out of {count})"]
    isEnough = share >= lowest
    if not isEnough:
        left = sorted(((lines - run, name) for name, lines, run in files), reverse=True)
        text += [f"{number} lines left in {name}" for number, name in left[:SHOWN]]
        text += [f"These are below {lowest}%"]
    return "\n".join(text), isEnough


if __name__ == "__main__":
    text, isEnough = report(json.load(sys.stdin), float(sys.argv[1]))
    print(text)
    sys.exit(0 if isEnough else 1)
