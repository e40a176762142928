"""Changes one condition of the sources after the other, and sees that a test fails.

usage: mutate.py [--check] [<word>...]
       mutate.py --random <number> [--seed <number>] [--jobs <number>] [--again] [<word>...]

The conditions and their tests are listed in conditions.txt. Words choose among them, by parts of
the names of files and subsystems. All happens in a copy of the tree, below build/mutation, so an
interrupted run leaves nothing behind in the tree itself.

With --random, that many changes of one token are drawn from a seed, and all tests have to notice;
see randomMutation.py. Words choose files; --again takes those that the last such run left
unnoticed. Words that begin with -D go to CMake.

A change is caught if a test fails, crashes, or takes far longer than without it; or if a static
assertion of a test fails. The exit value is 1 if one is not, or can't be compiled.

With --check, only the lists are looked at: that all they name is there, in this one exactly once.
"""

import argparse
import os
import re
import shlex
import shutil
import signal
import subprocess
import sys
import time
from pathlib import Path

import randomMutation

ROOT = Path(__file__).resolve().parents[2]
BUILD = ROOT / "build" / "mutation"
COPY = BUILD / "source"
CONDITIONS = Path(__file__).with_name("conditions.txt")
LEAST_OF_SUBSYSTEM = 10

NOT_COPIED = {"build", ".git", "__pycache__"}
# A change of the shared library is no reason to link all programs anew.
OPTIONS = ["-DCMAKE_BUILD_TYPE=RelWithDebInfo",
           "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O0 -g0 -DNDEBUG",
           "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON", "-DZU_WARNINGS_AS_ERRORS=OFF"]
BUILD_LIMIT = 1800
# What is built for a change: the shared libraries alone, where a test program is linked to them.
SHARED = {"baseTest": ["libZUbase.so"], "numbersTest": ["libZUbase.so"],
          "appTest": ["libZUbase.so", "libZUapp.so"]}
STATIC_ASSERTION = re.compile(r"static assertion failed|non-constant condition for static assert")


class Mutant:
    """One entry of the list."""

    def __init__(self, subsystem, number, lines):
        self.subsystem = subsystem
        self.number = number
        self.file = lines[0]
        self.original = lines[1].removeprefix("- ")
        self.changed = lines[2].removeprefix("+ ")
        words = lines[3].split()
        self.program, self.filter = words[:2]
        self.source = words[2] if len(words) > 2 else None

    def isChosen(self, words):
        names = f"{self.subsystem}\n{self.file}".lower()
        return not words or any(word.lower() in names for word in words)

    def findings(self, root):
        """What keeps the entry from being applied."""
        path = root / self.file
        if not path.is_file():
            yield f"there is no {self.file}"
            return
        count = path.read_text(encoding="utf-8").count(self.original)
        if count != 1:
            yield f"{self.file} has {count} times: {self.original}"
        if self.original == self.changed:
            yield "nothing is changed"
        if self.source and not list((root / "tests").glob(f"*/{self.source}")):
            yield f"there is no test {self.source}"
        if self.source is None and not self.file.endswith(".cpp"):
            yield f"the change of {self.file} names the one test source to build"


def readMutants():
    """All entries of the list; ends the program where its form is wrong."""
    mutants, subsystem, block = [], None, []
    for number, line in enumerate(CONDITIONS.read_text(encoding="utf-8").splitlines() + [""], 1):
        if line.startswith("#"):
            continue
        if line.startswith("["):
            subsystem = line.strip("[]")
        elif line:
            block.append(line)
        elif block:
            isEntry = (len(block) == 4 and block[1].startswith("- ") and block[2].startswith("+ ")
                       and len(block[3].split()) in (2, 3) and subsystem)
            if not isEntry:
                sys.exit(f"{CONDITIONS.name}:{number - len(block)}: not an entry")
            mutants.append(Mutant(subsystem, number - len(block), block))
            block = []
    return mutants


def checkList(mutants, root):
    """Prints what is wrong with the list; whether something is."""
    found = [f"{CONDITIONS.name}:{mutant.number}: {text}"
             for mutant in mutants for text in mutant.findings(root)]
    subsystems = [mutant.subsystem for mutant in mutants]
    for subsystem in dict.fromkeys(subsystems):
        if subsystems.count(subsystem) < LEAST_OF_SUBSYSTEM:
            found.append(f"{subsystem}: fewer than {LEAST_OF_SUBSYSTEM} entries")
    for line in found:
        print(line)
    return bool(found)


def filesBelow(folder):
    for directory, folders, names in os.walk(folder):
        folders[:] = [name for name in folders if name not in NOT_COPIED]
        for name in names:
            yield (Path(directory) / name).relative_to(folder)


def mirror():
    """Brings the copy to the state of the tree, and leaves alone what is equal already."""
    COPY.mkdir(parents=True, exist_ok=True)
    wanted = set(filesBelow(ROOT))
    for name in wanted:
        target = COPY / name
        if not target.exists() or target.read_bytes() != (ROOT / name).read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, target)
    for name in set(filesBelow(COPY)) - wanted:
        (COPY / name).unlink()


def call(words, limit=BUILD_LIMIT, folder=BUILD):
    """Runs a program; its exit value, None if it took too long, and all it wrote."""
    environment = {**os.environ, "B7Q_TEST_DIR": str(BUILD / "logs")}
    # A group of its own, so that what a test has started ends with it.
    with subprocess.Popen(words, cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          start_new_session=True) as process:
        try:
            output = process.communicate(timeout=limit)[0]
            code = process.returncode
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            output, code = process.communicate()[0], None
        except BaseException:
            os.killpg(process.pid, signal.SIGKILL)
            raise
    return code, output.decode("utf-8", "replace")


def demand(words):
    """What has to succeed before anything is changed."""
    code, output = call(words)
    if code != 0:
        print(output[-4000:])
        sys.exit(f"failed without any change: {shlex.join(words)}")


def folderOf(program):
    """Where CTest starts the program."""
    return next(BUILD.glob(f"tests/*/CMakeFiles/{program}.dir")).parents[1]


def runTests(executable, mutant, limit):
    return call([str(BUILD / "bin" / executable), f"--gtest_filter={mutant.filter}"], limit,
                folderOf(mutant.program))


def timeUnchanged(mutants):
    """How long the tests of each filter take; ends the program if they don't pass."""
    times = {}
    for mutant in mutants:
        key = mutant.program, mutant.filter
        if key in times:
            continue
        begin = time.monotonic()
        code, output = runTests(mutant.program, mutant, 300)
        times[key] = time.monotonic() - begin
        if code != 0:
            print(output[-4000:])
            sys.exit(f"fails without any change: {' '.join(key)}")
        passed = re.search(r"\[  PASSED  \] (\d+) test", output)
        if not passed or int(passed[1]) == 0:
            sys.exit(f"selects no test: {' '.join(key)}")
    return times


def commandFor(target):
    """The words of the command that makes a target, without the shell's own."""
    commands = call(["ninja", "-t", "commands", target])[1]
    return [word for word in shlex.split(commands.splitlines()[-1]) if word not in (":", "&&")]


def linkAlone(mutant):
    """Links the test program from the one source; its name, exit value and output.

    It goes past Ninja, which would compile all else that includes the header.
    """
    objects = f"{folderOf(mutant.program).relative_to(BUILD)}/CMakeFiles/{mutant.program}.dir/"
    wanted, alone = f"{objects}{mutant.source}.o", f"{mutant.program}Alone"
    words = [word.replace(wanted, f"{alone}.o") for word in commandFor(wanted)]
    code, output = call(words)
    if code != 0:
        return alone, code, output
    words = [word.replace(wanted, f"{alone}.o") for word in commandFor(mutant.program)]
    words = [f"bin/{alone}" if word == f"bin/{mutant.program}" else word for word in words
             if objects not in word]
    return alone, *call(words)


def build(mutant):
    """Builds what the change asks for; the name of the program, exit value and output."""
    if mutant.source:
        return linkAlone(mutant)
    return mutant.program, *call(["ninja", *SHARED.get(mutant.program, [mutant.program])])


def verdictOf(mutant, limit):
    """Builds and tests what stands in the copy now."""
    program, code, output = build(mutant)
    if code != 0:
        if STATIC_ASSERTION.search(output):
            return "caught", "a static assertion fails"
        errors = [line for line in output.splitlines() if "error" in line]
        return "does not compile", errors[0] if errors else ""
    code, output = runTests(program, mutant, limit)
    if code is None:
        return "caught", f"hangs: over {limit:.0f} s"
    if code == 0:
        return "survived", ""
    failed = re.findall(r"^\[  FAILED  \] ([^\s,]+)", output, re.MULTILINE)
    if code < 0 or not failed:
        name = re.findall(r"^\[ RUN      \] (\S+)", output, re.MULTILINE)
        return "caught", f"crashes, exit value {code}: {name[-1] if name else ''}"
    return "caught", failed[0]


def judge(mutant, limit):
    """Applies the change, and takes it back whatever happens."""
    path = COPY / mutant.file
    text = path.read_text(encoding="utf-8")
    stamp = path.stat()
    begin = time.time_ns()
    path.write_text(text.replace(mutant.original, mutant.changed), encoding="utf-8")
    try:
        return verdictOf(mutant, limit)
    finally:
        path.write_text(text, encoding="utf-8")
        # With its old time, so that only what was compiled with the change is compiled again.
        os.utime(path, ns=(stamp.st_atime_ns, stamp.st_mtime_ns))
        for made in BUILD.rglob("*.o"):
            if made.stat().st_mtime_ns >= begin:
                made.unlink()


def printTable(results):
    verdicts = ["caught", "survived", "does not compile"]
    print(f"\n{'':24}" + "".join(f"{verdict:>18}" for verdict in verdicts))
    for subsystem in dict.fromkeys(mutant.subsystem for mutant, _ in results):
        own = [verdict for mutant, verdict in results if mutant.subsystem == subsystem]
        print(f"{subsystem:24}" + "".join(f"{own.count(verdict):18}" for verdict in verdicts))


def runAll(mutants):
    mirror()
    demand(["cmake", "-S", str(COPY), "-B", str(BUILD), "-G", "Ninja", *OPTIONS])
    demand(["ninja", *sorted({mutant.program for mutant in mutants})])
    times = timeUnchanged(mutants)
    results = []
    for mutant in mutants:
        begin = time.monotonic()
        limit = 20 + 5 * times[mutant.program, mutant.filter]
        verdict, detail = judge(mutant, limit)
        results.append((mutant, verdict))
        print(f"{verdict}: {mutant.file}: {mutant.changed} [{detail}] "
              f"{time.monotonic() - begin:.0f} s", flush=True)
    printTable(results)
    return results


def readWords():
    parser = argparse.ArgumentParser(prog="mutate.py", allow_abbrev=False)
    parser.add_argument("--check", action="store_true")
    parser.add_argument("--random", type=int, default=0)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=max(1, (os.cpu_count() or 2) // 2))
    parser.add_argument("--again", action="store_true")
    parser.add_argument("words", nargs="*")
    options = [word for word in sys.argv[1:] if word.startswith("-D")]
    words = [word for word in sys.argv[1:] if not word.startswith("-D")]
    return parser.parse_args(words), options


def mutateConditions(words):
    """Goes through the list of conditions; 0 if each is caught."""
    mutants = readMutants()
    if checkList(mutants, ROOT):
        return 1
    chosen = [mutant for mutant in mutants if mutant.isChosen(words)]
    if not chosen:
        sys.exit(f"nothing in {CONDITIONS.name} is named like {' or '.join(words)}")
    begin = time.monotonic()
    results = runAll(chosen)
    print(f"{time.monotonic() - begin:.0f} s")
    return 0 if all(verdict == "caught" for _, verdict in results) else 1


def checkLists():
    """Prints what is wrong with the lists; 0 if nothing is."""
    mutants = readMutants()
    isWrong = checkList(mutants, ROOT)
    unfit = list(randomMutation.checkExplained(ROOT))
    for line in unfit:
        print(line)
    if isWrong or unfit:
        return 1
    print(f"{len(mutants)} conditions, {len(randomMutation.explainedKeys())} explained changes, "
          "all there")
    return 0


def main():
    given, options = readWords()
    if given.check:
        return checkLists()
    if not given.random and not given.again:
        return mutateConditions(given.words)
    if checkLists():
        return 1
    mirror()
    return randomMutation.runRandom(COPY, given.random, given.seed, given.jobs, given.again,
                                    given.words, options)


if __name__ == "__main__":
    sys.exit(main())
