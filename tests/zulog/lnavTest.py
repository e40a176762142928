"""Has lnav read a log in the form that `zulog show --format iso` writes.

usage: lnavTest.py <zulog> <directory with the format>

Ends with 77 if there is no lnav.
"""

import csv
import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

SKIPPED = 77
LOG = """\
===== Message Logger Startup =====
===== Started on Sun Nov 22 11:00:00 2026

===== Clock Frequency: 0.000001000
===== Clock Origin: 0000000000 0000000000 is 2026-11-22T10:00:00.000000000Z, 1000000 ticks per \
second, process 4711 started 2026-11-22T09:59:59.000000000Z, host alpha, boot 3f2b =====
0000000000 0000001000 (0x00000abc) Warning: Orders order 1 is late
0000000000 0000002000 (0x00000abd) Fatal Error: Stock none
\tcontinued
0000000000 0000003000 (0x00000abc) Informational: Event overflow [17]
0000000000 0000004000 (0x00000abc) Internal Error: 1st of no group
0000000000 0000005000 (0x00000abc) Error: a::b x
0000000000 0000006000 (0x00000abc) Tracing: Orders x
0000000000 0000007000 (0x00000abc) Profiling: Orders y
"""
# Time, level, process, thread, group, text; as the lines above have them.
EXPECTED = [
    ["2026-11-22 10:00:00.001", "warning", "4711", "0x00000abc", "Orders", "order 1 is late"],
    ["2026-11-22 10:00:00.002", "fatal", "4711", "0x00000abd", "Stock", "none\n\tcontinued"],
    ["2026-11-22 10:00:00.003", "info", "4711", "0x00000abc", "<NULL>", "Event overflow [17]"],
    ["2026-11-22 10:00:00.004", "critical", "4711", "0x00000abc", "<NULL>", "1st of no group"],
    ["2026-11-22 10:00:00.005", "error", "4711", "0x00000abc", "a::b", "x"],
    ["2026-11-22 10:00:00.006", "trace", "4711", "0x00000abc", "Orders", "x"],
    ["2026-11-22 10:00:00.007", "stats", "4711", "0x00000abc", "Orders", "y"],
]


def run(words, home):
    """What a program writes; it must report nothing."""
    environment = dict(os.environ, HOME=str(home), XDG_CONFIG_HOME=str(home), TZ="UTC")
    done = subprocess.run(words, env=environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          stdin=subprocess.DEVNULL, text=True, check=False)
    if done.returncode or done.stderr:
        sys.exit(f"{words}: {done.returncode}\n{done.stderr}")
    return done.stdout


def main():
    zulog, formats = sys.argv[1:]
    if not shutil.which("lnav"):
        print("skipped: lnav is missing")
        sys.exit(SKIPPED)
    with tempfile.TemporaryDirectory() as name:
        home = Path(name)
        (home / "ticks.log").write_text(LOG, encoding="utf-8")
        (home / "iso.log").write_text(
            run([zulog, "show", "--utc", "--format", "iso", str(home / "ticks.log")], home),
            encoding="utf-8")
        # The format's own samples.
        run(["lnav", "-n", "-I", formats, "-C"], home)
        fields = "log_time, log_level, process, thread, log_group, log_body"
        written = run(["lnav", "-n", "-I", formats, "-c",
                       f";SELECT {fields} FROM zulog WHERE thread IS NOT NULL",
                       "-c", ":write-csv-to -", str(home / "iso.log")], home)
        rows = list(csv.reader(written.splitlines(keepends=True)))[1:]
        if rows != EXPECTED:
            sys.exit("\n".join(["found:", *map(str, rows), "expected:", *map(str, EXPECTED)]))
    print(f"{len(EXPECTED)} events read by lnav")


if __name__ == "__main__":
    main()
