#!/usr/bin/env python3
"""What the library costs before it does anything: the time to compile a line with its headers, the
size of the shared libraries, the time of a process that starts and stops it.

usage: footprint.py <build tree> [repetitions]

The tree has been built, by `./dev demo` for instance. All times are medians; those to compile are
the processor's, those of processes are of the clock, taken in turns.
"""

import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
COMPILER = ["g++", "-O2", "-std=c++20", f"-I{ROOT / 'src'}"]
BASELINE = "<iostream>"
HEADERS = ["base/base.h", "base/inInitGuard.h", "base/exBase.h", "base/osFilePath.h",
           "base/rnLecuyerUniformRng.h", "base/dtTime.h", "base/hwCounter.h", "base/trace.h",
           "base/inVariable.h", "app/lgService.h", "base/profiler.h", "base/rnHistogram.h",
           "base/lgEvent.h"]
LIBRARIES = ["libZUbase.so", "libZUapp.so"]
PROGRAMS = {
    "flushes std::cout": "#include <iostream>\nint main() { std::cout << std::flush; }\n",
    "starts and stops the library":
        '#include "base/base.h"\n'
        "int main(int argc, char** argv) { const Zu::InInitGuard guard(argc, argv); }\n",
}


def processorTime(command):
    """Seconds that a command and its children take of the processor."""
    before = os.times()
    subprocess.run(command, check=True)
    after = os.times()
    return (after.children_user - before.children_user
            + after.children_system - before.children_system)


def compileTimes(directory, repetitions):
    """Rows of a header, seconds, and the ratio to the baseline."""
    includes = {BASELINE: BASELINE, **{header: f'"{header}"' for header in HEADERS}}
    times = {name: [] for name in includes}
    for _ in range(repetitions):
        for name, included in includes.items():
            source = directory / "one.cpp"
            source.write_text(f"#include {included}\n", encoding="utf-8")
            times[name].append(processorTime([*COMPILER, "-c", source, "-o", os.devnull]))
    medians = {name: statistics.median(values) for name, values in times.items()}
    for name, seconds in medians.items():
        yield name, f"{seconds:.2f} s", f"{seconds / medians[BASELINE]:.2f}"


def sizes(directory, tree):
    """Rows of a library, its size without symbols, and what of it is code."""
    for name in LIBRARIES:
        stripped = directory / name
        shutil.copyfile(tree / "bin" / name, stripped)
        subprocess.run(["strip", stripped], check=True)
        told = subprocess.check_output(["size", "-A", stripped], text=True)
        code = next(int(line.split()[1]) for line in told.splitlines() if line.startswith(".text"))
        yield name, f"{stripped.stat().st_size / 1000:.0f} KB", f"{code / 1000:.0f} KB of code"


def startTimes(directory, tree, repetitions):
    """Rows of a program, and the median and the least time from its start to its end."""
    environment = {**os.environ, "LD_LIBRARY_PATH": str(tree / "bin"),
                   "B7Q_TEST_DIR": str(directory)}
    times = {name: [] for name in PROGRAMS}
    for number, text in enumerate(PROGRAMS.values()):
        source = directory / f"start{number}.cpp"
        source.write_text(text, encoding="utf-8")
        command = [*COMPILER, source, "-o", directory / f"start{number}"]
        if "Zu::" in text:
            command += [f"-L{tree / 'bin'}", "-lZUbase"]
        subprocess.run(command, check=True)
    for _ in range(repetitions):
        for number, name in enumerate(PROGRAMS):
            start = time.perf_counter()
            subprocess.run([directory / f"start{number}"], check=True, env=environment)
            times[name].append((time.perf_counter() - start) * 1000)
    for name, values in times.items():
        yield name, f"{statistics.median(values):.1f} ms", f"{min(values):.1f} ms at least"


def main():
    """Prints the three tables."""
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    tree = pathlib.Path(sys.argv[1]).resolve()
    repetitions = int(sys.argv[2]) if len(sys.argv) == 3 else 7
    with tempfile.TemporaryDirectory() as name:
        directory = pathlib.Path(name)
        for title, rows in (("compiling one line", compileTimes(directory, repetitions)),
                            ("shared libraries, stripped", sizes(directory, tree)),
                            ("processes", startTimes(directory, tree, 30 * repetitions))):
            print(f"{title}:")
            for row in rows:
                print(f"  {row[0]:32} {row[1]:>8}  {row[2]}")


if __name__ == "__main__":
    main()
