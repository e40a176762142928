"""Counts the cases of a run of all tests, and writes down why some were skipped.

usage: summary.py <build tree>

CTest counts its entries, each a program of many cases. This reads what the programs report, and
CTest's own report for entries that report nothing; such an entry counts as one case. The last line
is `N passed, N failed, N skipped`. In front of it are the failed cases with the beginning of what
they printed. The reasons of skipped cases are in <build tree>/skipped.txt.
"""

import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

# As many lines of a failure are enough to know what it is about.
LINES_OF_FAILURE = 30


def casesOf(report):
    """The cases of one program as (name, kind, reason)."""
    for case in ElementTree.parse(report).getroot().iter("testcase"):
        # A case that is switched off, or belongs to another part of the program, did not run.
        if case.get("status") == "notrun" or case.get("result") == "suppressed":
            continue
        name = f"{case.get('classname')}.{case.get('name')}"
        skipped = case.find("skipped")
        if case.find("failure") is not None:
            yield name, "failed", case.find("failure").get("message", "")
        elif skipped is not None or case.get("result") == "skipped":
            reason = skipped.get("message", "") if skipped is not None else ""
            # Behind the place in the source.
            yield name, "skipped", " ".join(reason.split("\n")[-1].split())
        else:
            yield name, "passed", ""


def entryKind(entry):
    """How CTest says that an entry ended."""
    if entry.find("failure") is not None or entry.get("status") == "fail":
        return "failed"
    if entry.find("skipped") is not None or entry.get("status") in ("notrun", "disabled"):
        return "skipped"
    return "passed"


def allCases(tree):
    """All cases of the run as (entry, name, kind, reason)."""
    for entry in ElementTree.parse(tree / "ctest.xml").getroot().iter("testcase"):
        name, kind = entry.get("name"), entryKind(entry)
        report = tree / "reports" / f"{name}.xml"
        cases = list(casesOf(report)) if report.exists() else []
        for case in cases:
            yield name, *case
        # A program that ended before its time has failed, whatever it reported.
        if not cases or (kind == "failed" and all(case[1] != "failed" for case in cases)):
            yield name, name, kind, ""


def main():
    tree = Path(sys.argv[1])
    counts = {"passed": 0, "failed": 0, "skipped": 0}
    skips = []
    for entry, name, kind, reason in allCases(tree):
        counts[kind] += 1
        if kind == "failed":
            lines = reason.split("\n")[:LINES_OF_FAILURE]
            print("\n    ".join([f"Failed: {entry}: {name}", *(line[:200] for line in lines)]))
        if kind == "skipped":
            skips.append(f"{entry}: {name}: {reason or 'no reason is given'}\n")
    (tree / "skipped.txt").write_text("".join(skips), encoding="utf-8")
    if skips:
        print(f"Why cases were skipped is in {tree / 'skipped.txt'}")
    print(", ".join(f"{count} {kind}" for kind, count in counts.items()))
    return 1 if counts["failed"] or not counts["passed"] else 0


if __name__ == "__main__":
    sys.exit(main())
