"""Changes of one token at random places of the sources: which of them no test notices.

All happens beside the tree, in a copy that is built once. For a change one source is compiled, and
the libraries are linked anew; for a change of a header, first what its own component is made of,
and all that includes it only when the component's tests have not noticed. The component's own test
suites run first, then everything.

A change is noticed if a test fails, crashes or takes far longer than without it, or if a static
assertion fails. What is known to change nothing that can be seen is listed in unnoticed.txt.
"""

import functools
import json
import os
import random
import re
import selectors
import shlex
import shutil
import signal
import subprocess
import sys
import threading
import time
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import tokens

UNNOTICED = Path(__file__).with_name("unnoticed.txt")

# A tree like that of the tests, so that a compiler's cache serves both.
OPTIONS = ["-DCMAKE_BUILD_TYPE=RelWithDebInfo",
           "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2 -g1 -DNDEBUG", "-DZU_TEST_OPTIONS=-O0",
           "-DZU_NUMBER_TEST_OPTIONS=-O1", "-DZU_WARNINGS_AS_ERRORS=ON"]
CHANGED_OPTIONS = ["-O1", "-g0", "-w"]
# Programs, each with what it takes of the libraries: their shared form or the archives.
BASE_PROGRAMS = {"baseInternalTest": "archive", "baseTest": "shared",
                 "numbersTest": "shared", "basePeersTest": "shared",
                 "periodicTimerBeatTest": "archive", "osFileFaultLinuxTest": "archive",
                 "fuzzCorpusTest": "archive", "sceneTest": "shared"}
APP_PROGRAMS = {"appInternalTest": "archive", "appTest": "shared",
                "lgServiceMemoryTest": "archive"}
PROGRAMS = {**BASE_PROGRAMS, **APP_PROGRAMS}
STATIC_ASSERTION = re.compile(r"static assertion failed|non-constant condition for static assert")
SUITE = re.compile(r"^(?:TYPED_)?TEST(?:_[FP])?\(\s*(\w+)", re.MULTILINE)
LEAST_PATIENCE = 60
TIMES_PATIENCE = 8

# A change may make a test remove or end anything: it sees the machine read-only but for its own
# folder, and no process but its own.
# GoogleTest makes files in /tmp, whatever is said.
GUARD = """folder=$1
shift
mkdir -p "$folder/tmp" && mount --bind "$folder" "$folder" || exit 125
mount -t tmpfs tmpfs /dev/shm || exit 125
case "$folder" in
    /tmp/*) mount --bind /tmp /tmp ;;
    *) mount --bind "$folder/tmp" /tmp ;;
esac && mount -o remount,bind,ro / || exit 125
"$@"
"""


class Place:
    """One change of one line."""

    def __init__(self, file, number, original, changed):
        self.file, self.number = file, number
        self.original, self.changed = original, changed

    def key(self):
        return self.file, self.original.strip(), self.changed.strip()

    def block(self):
        return f"{self.file}\n- {self.original.strip()}\n+ {self.changed.strip()}\n"


def sourcesOf(root):
    """The sources that this machine can run: all but the halves of the other platform."""
    for path in sorted((root / "src").rglob("*")):
        isHalf = path.stem.endswith(("Windows", "WinNT"))
        if path.suffix in (".h", ".cpp", ".imp") and not isHalf:
            yield path.relative_to(root).as_posix()


def draw(root, seed, words):
    """All places in the order in which the seed draws them: a line first, then one of its
    changes."""
    lines = []
    for file in sourcesOf(root):
        if words and not any(word.lower() in file.lower() for word in words):
            continue
        text = (root / file).read_text(encoding="utf-8")
        originals = text.splitlines()
        lines += [(file, number, originals[number - 1], changes)
                  for number, changes in tokens.changeableLines(text)]
    generator = random.Random(seed)
    generator.shuffle(lines)
    return [Place(file, number, original, generator.choice(changes))
            for file, number, original, changes in lines]


def readBlocks(path):
    """The entries of a list of changes: their first line's number and their lines."""
    block, begin = [], 0
    text = path.read_text(encoding="utf-8") if path.exists() else ""
    for number, line in enumerate(text.splitlines() + [""], 1):
        if line.startswith("#"):
            continue
        if line:
            begin = begin if block else number
            block.append(line)
        elif block:
            yield begin, block
            block = []


def checkExplained(root, path=UNNOTICED):
    """What does not fit in the list of changes that are not noticed."""
    seen = set()
    for number, block in readBlocks(path):
        where = f"{path.name}:{number}: "
        if not (len(block) >= 4 and block[1].startswith("- ") and block[2].startswith("+ ")
                and block[3].startswith("because ")):
            yield where + "not an entry"
            continue
        file, original, changed = block[0], block[1][2:], block[2][2:]
        if not (root / file).is_file():
            yield where + f"there is no {file}"
            continue
        if (file, original, changed) in seen:
            yield where + "stands there twice"
        seen.add((file, original, changed))
        lines = (root / file).read_text(encoding="utf-8").splitlines()
        fitting = [line for line in lines if line.strip() == original]
        if not fitting:
            yield where + f"{file} has no line: {original}"
        elif changed not in [other.strip() for other in tokens.changes(fitting[0])]:
            yield where + f"is not drawn: {changed}"


def explainedKeys(path=UNNOTICED):
    return {(block[0], block[1][2:], block[2][2:]) for _, block in readBlocks(path)}


def bare(stem):
    """The name of the component that a half belongs to."""
    return stem.removesuffix("Linux")


def isOwnTest(stem, name):
    return re.fullmatch(re.escape(stem) + r"([A-Z]\w*)?Test\.cpp", name) is not None


class Call:
    """A finished program: its exit value, None if it took too long, and what it wrote."""

    def __init__(self, words, limit, folder, environment=None):
        with subprocess.Popen(words, cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              start_new_session=True) as process:
            try:
                self.output, isOver = self.follow(process, time.monotonic() + limit)
            except BaseException:
                os.killpg(process.pid, signal.SIGKILL)
                raise
            if isOver:
                os.killpg(process.pid, signal.SIGKILL)
            code = process.wait()
        self.code = None if isOver else code

    @staticmethod
    def follow(process, end):
        """What the program writes, of much only the beginning and the end, and whether the time is
        over."""
        written = bytearray()
        with selectors.DefaultSelector() as selector:
            selector.register(process.stdout, selectors.EVENT_READ)
            while time.monotonic() < end:
                if not selector.select(min(1.0, end - time.monotonic())):
                    # A process that it has left behind may hold the other end.
                    if process.poll() is not None:
                        break
                    continue
                piece = os.read(process.stdout.fileno(), 65536)
                if not piece:
                    break
                written += piece
                if len(written) > 4_000_000:
                    del written[1_000_000:3_000_000]
            else:
                return written.decode("utf-8", "replace"), True
        return written.decode("utf-8", "replace"), False


def demand(words, folder):
    """What a program writes, all of it, that has to succeed before anything is changed."""
    done = subprocess.run(words, cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, check=False)
    if done.returncode != 0:
        print(done.stdout[-4000:])
        sys.exit(f"failed without any change: {shlex.join(words)}")
    return done.stdout


class Tree:
    """The copy of the tree, built; its commands, and what depends on what."""

    def __init__(self, copy, options):
        self.copy = copy
        self.build = copy / "build" / "random"
        self.build.mkdir(parents=True, exist_ok=True)
        demand(["cmake", "-S", str(copy), "-B", str(self.build), "-G", "Ninja", *OPTIONS, *options],
               copy)
        demand(["ninja", *PROGRAMS], self.build)
        self.compiles = {}
        self.readCommands()
        self.dependents = self.readDependents()
        self.links = {name: self.linkWords(f"bin/{name}") for name in PROGRAMS}
        for library in ("ZUbase", "ZUapp"):
            link = next((self.build / "bin").glob(f"lib{library}.so.*.*.*"))
            self.links[library] = self.linkWords(f"bin/{link.name}")

    def readCommands(self):
        for entry in json.loads(demand(["ninja", "-t", "compdb"], self.build)):
            file = (self.build / entry["file"]).resolve()
            if entry["output"].endswith(".cpp.o") and file.is_relative_to(self.copy):
                self.compiles[entry["output"]] = shlex.split(entry["command"])

    def readDependents(self):
        """For each file of the copy, the objects that are made from it."""
        dependents, made = {}, ""
        for line in demand(["ninja", "-t", "deps"], self.build).splitlines():
            if not line.startswith(" "):
                made = line.split(":")[0]
                continue
            file = (self.build / line.strip()).resolve()
            if file.is_relative_to(self.copy):
                name = file.relative_to(self.copy).as_posix()
                dependents.setdefault(name, set()).add(made)
        return dependents

    def linkWords(self, target):
        command = demand(["ninja", "-t", "commands", target], self.build).splitlines()[-1]
        if "cmake_symlink_library" in command:
            command = demand(["ninja", "-t", "commands", target], self.build).splitlines()[-2]
        words = shlex.split(command)
        return [word for word in words if word not in (":", "&&")]

    def objectsOf(self, source):
        """The objects that a source itself is compiled to."""
        return [made for made in self.dependents.get(source, ())
                if made.endswith(f"/{Path(source).name}.o")]

    def ownTests(self, stem):
        """The test sources of a component."""
        return sorted(source for source in self.dependents
                      if source.startswith("tests/") and isOwnTest(stem, Path(source).name))

    @functools.lru_cache(None)
    def ownFilters(self, stem):
        """The programs with tests of the component, each with the filter for its suites."""
        suites = {}
        for source in self.ownTests(stem):
            names = SUITE.findall((self.copy / source).read_text(encoding="utf-8"))
            for made in self.objectsOf(source):
                suites.setdefault(programOf(made), set()).update(names)
        return {program: ":".join(f"{name}.*:*/{name}.*:{name}/*.*:*/{name}/*.*"
                                  for name in sorted(names))
                for program, names in suites.items() if program in PROGRAMS and names}

    def folderOf(self, program):
        """Where CTest starts the program."""
        return next(self.build.glob(f"*/**/CMakeFiles/{program}.dir")).parents[1]


def programOf(made):
    found = re.search(r"CMakeFiles/(\w+)\.dir/", made)
    return found[1] if found else ""


class Worker:
    """Makes changes in sources of its own, and builds and tests them."""

    def __init__(self, tree, folder, isGuarded):
        self.tree, self.folder, self.isGuarded = tree, folder, isGuarded
        shutil.rmtree(folder, ignore_errors=True)
        shutil.copytree(tree.copy / "src", folder / "src")
        self.sources = str(folder / "src")
        self.replaced = {}
        self.forget()

    def forget(self):
        """Leaves nothing of the change before."""
        self.replaced = {}
        for name in ("bin", "lib", "obj", "tmp", "logs"):
            shutil.rmtree(self.folder / name, ignore_errors=True)
            (self.folder / name).mkdir()

    def call(self, words, limit=1800):
        return Call(words, limit, self.tree.build, {**os.environ, "CCACHE_DISABLE": "1"})

    def compile(self, made):
        """Compiles one object from this worker's sources; the finished call."""
        words = [word.replace(str(self.tree.copy / "src"), self.sources)
                 for word in self.tree.compiles[made]]
        target = str(self.folder / "obj" / made.replace("/", "-"))
        words[words.index("-o") + 1] = target
        for word, count in (("-MD", 1), ("-MT", 2), ("-MF", 2)):
            if word in words:
                place = words.index(word)
                del words[place:place + count]
        place = words.index("-o")
        # Places in the sources are shown as they are in the tree.
        shown = [f"-ffile-prefix-map={self.folder}/="]
        call = self.call(words[:place] + CHANGED_OPTIONS + shown + words[place:])
        if call.code == 0:
            self.replaced[made] = target
        return call

    def compileAll(self, objects):
        for made in objects:
            if made not in self.replaced:
                call = self.compile(made)
                if call.code != 0:
                    return call
        return None

    def linkShared(self):
        """The shared libraries with the changed objects."""
        for library in ("ZUbase", "ZUapp"):
            if not any(programOf(made) == library for made in self.replaced):
                continue
            words = self.withReplaced(self.tree.links[library], library)
            soname = next(word for word in words if "-soname," in word).split(",")[-1]
            words[words.index("-o") + 1] = str(self.folder / "lib" / soname)
            call = self.call(words)
            if call.code != 0:
                return call
        return None

    def withReplaced(self, words, owner):
        """The words of a link with the owner's changed objects, which come first: of a function
        that is defined in several the linker takes the first."""
        own = {made for made in self.replaced if programOf(made) == owner}
        first = next((place for place, word in enumerate(words) if word.endswith(".cpp.o")), 0)
        rest = [word for word in words[first:] if word not in own]
        return words[:first] + [self.replaced[made] for made in sorted(own)] + rest

    def archive(self, library):
        """The archive with the changed objects."""
        target = self.folder / "lib" / f"lib{library}Archive.a"
        if target.exists():
            return str(target)
        objects = [path for made, path in self.replaced.items() if programOf(made) == library]
        if not objects:
            return f"lib/{target.name}"
        # The members are named as before, and stand where they stood.
        members = []
        for made, path in self.replaced.items():
            if programOf(made) == library:
                member = self.folder / "obj" / Path(made).name
                shutil.copy(path, member)
                members.append(str(member))
        shutil.copy(self.tree.build / "lib" / target.name, target)
        demand(["ar", "r", str(target), *members], self.tree.build)
        return str(target)

    def link(self, program):
        """The program with what is changed; a call that failed, or None."""
        isShared = PROGRAMS[program] == "shared"
        ownChanged = any(programOf(made) == program for made in self.replaced)
        target = self.folder / "bin" / program
        if (isShared and not ownChanged) or target.exists():
            return None
        words = self.withReplaced(self.tree.links[program], program)
        if not isShared:
            words = [self.archive(word[7:-9]) if re.fullmatch(r"lib/libZU\w+Archive\.a", word)
                     else word for word in words]
        words[words.index("-o") + 1] = str(target)
        call = self.call(words)
        return call if call.code != 0 else None

    def run(self, program, chosen, limit):
        own = self.folder / "bin" / program
        words = [str(own if own.exists() else self.tree.build / "bin" / program),
                 f"--gtest_filter={chosen}", "--gtest_fail_fast"]
        environment = {**os.environ, "B7Q_TEST_DIR": str(self.folder / "logs"),
                       "TMPDIR": str(self.folder / "tmp"),
                       "LD_LIBRARY_PATH": str(self.folder / "lib")}
        if self.isGuarded:
            words = ["unshare", "--mount", "--pid", "--fork", "--kill-child", "--mount-proc",
                     "sh", "-c", GUARD, "sh", str(self.folder), *words]
        return Call(words, limit, self.tree.folderOf(program), environment)


class Judge:
    """Says of a change whether it is noticed, and by what."""

    def __init__(self, tree, times):
        self.tree, self.times = tree, times

    def limit(self, program):
        return LEAST_PATIENCE + TIMES_PATIENCE * self.times[program]

    def judge(self, worker, place):
        """Verdict and detail."""
        path = worker.folder / place.file
        text = path.read_text(encoding="utf-8")
        lines = text.split("\n")
        if lines[place.number - 1] != place.original:
            sys.exit(f"{place.file}:{place.number} is another line by now")
        lines[place.number - 1] = place.changed
        worker.forget()
        path.write_text("\n".join(lines), encoding="utf-8")
        try:
            return self.verdict(worker, place)
        finally:
            path.write_text(text, encoding="utf-8")

    def verdict(self, worker, place):
        stem = bare(Path(place.file).stem)
        isHeader = not place.file.endswith(".cpp")
        if not self.tree.dependents.get(place.file):
            sys.exit(f"nothing is made from {place.file}")
        if not isHeader:
            objects = self.tree.objectsOf(place.file)
        else:
            objects = self.ownObjects(place.file, stem)
        verdict = self.build(worker, objects) or self.ask(worker, self.tree.ownFilters(stem))
        if verdict:
            return verdict
        if isHeader:
            verdict = self.build(worker, sorted(self.tree.dependents.get(place.file, ())))
            for program in PROGRAMS:
                (worker.folder / "bin" / program).unlink(missing_ok=True)
            for archive in (worker.folder / "lib").glob("*.a"):
                archive.unlink()
            if verdict:
                return verdict
        programs = APP_PROGRAMS if place.file.startswith("src/app/") else PROGRAMS
        order = sorted(programs, key=self.times.get)
        return self.ask(worker, dict.fromkeys(order, "*")) or ("unnoticed", "")

    def ownObjects(self, file, stem):
        """Of what includes a header, the component's own sources and tests."""
        dependents = self.tree.dependents.get(file, ())
        return sorted(made for made in dependents
                      if made in self.tree.compiles and
                      (bare(Path(made).name.removesuffix(".cpp.o")) == stem
                       or isOwnTest(stem, Path(made).name.removesuffix(".o"))))

    def build(self, worker, objects):
        objects = [made for made in objects if made in self.tree.compiles
                   and programOf(made) in {"ZUbase", "ZUapp", *PROGRAMS}]
        call = worker.compileAll(objects) or worker.linkShared()
        return self.refusal(call)

    @staticmethod
    def refusal(call):
        if call is None:
            return None
        if STATIC_ASSERTION.search(call.output):
            return "noticed", "a static assertion fails"
        errors = [line for line in call.output.splitlines() if "error" in line]
        return "does not compile", errors[0] if errors else call.output[-200:]

    def ask(self, worker, filters):
        """Runs tests until one notices."""
        for program, chosen in filters.items():
            refused = self.refusal(worker.link(program))
            if refused:
                return refused
            call = worker.run(program, chosen, self.limit(program))
            if call.code is None:
                return "noticed", f"{program} takes over {self.limit(program):.0f} s"
            if call.code == 125 and worker.isGuarded and "[====" not in call.output:
                sys.exit(f"the guard fails: {call.output[-400:]}")
            if call.code != 0:
                return "noticed", self.reason(program, call)
        return None

    @staticmethod
    def reason(program, call):
        failed = re.findall(r"^\[  FAILED  \] ([^\s,]+)", call.output, re.MULTILINE)
        if failed:
            return failed[0]
        begun = re.findall(r"^\[ RUN      \] (\S+)", call.output, re.MULTILINE)
        return f"{program} ends with {call.code}: {begun[-1] if begun else ''}"


def canGuard(folder):
    folder.mkdir(parents=True, exist_ok=True)
    words = ["unshare", "--mount", "--pid", "--fork", "--kill-child", "--mount-proc", "sh", "-c",
             GUARD, "sh", str(folder), "true"]
    try:
        return Call(words, 60, folder).code == 0
    except OSError:
        return False


def timeUnchanged(worker):
    """How long each program takes; ends if one doesn't pass."""
    times = {}
    for program in PROGRAMS:
        begin = time.monotonic()
        call = worker.run(program, "*", 1800)
        times[program] = time.monotonic() - begin
        if call.code != 0:
            print(call.output[-4000:])
            sys.exit(f"fails without any change: {program}")
        passed = re.search(r"\[  PASSED  \] (\d+) test", call.output)
        print(f"without any change: {program}, {passed[1] if passed else 0} tests, "
              f"{times[program]:.0f} s", flush=True)
    return times


class Count:
    """What has come out so far, and the places that are next."""

    def __init__(self, places, wanted):
        self.places, self.wanted = iter(places), wanted
        self.verdicts = {"noticed": 0, "unnoticed": 0, "explained": 0, "does not compile": 0}
        self.lock = threading.Lock()
        self.given = 0
        self.unnoticed = []

    def next(self):
        with self.lock:
            if self.given == self.wanted:
                return None
            place = next(self.places, None)
            self.given += place is not None
            return place

    def add(self, place, verdict, detail, seconds):
        with self.lock:
            self.verdicts[verdict] += 1
            # It was none of those that were asked for.
            self.given -= verdict == "does not compile"
            if verdict == "unnoticed":
                self.unnoticed.append(place)
            print(f"{verdict}: {place.file}:{place.number} [{detail[:160]}] {seconds:.0f} s\n"
                  f"    - {place.original.strip()}\n    + {place.changed.strip()}", flush=True)


def work(count, judge, worker, explained):
    while (place := count.next()) is not None:
        begin = time.monotonic()
        if place.key() in explained:
            count.add(place, "explained", "", 0)
            continue
        count.add(place, *judge.judge(worker, place), time.monotonic() - begin)


def placesOfLastRun(root, path):
    """The places that the last run left unnoticed, as far as they are still there."""
    for _, block in readBlocks(path):
        file, original, changed = block[0], block[1][2:], block[2][2:]
        for number, line in enumerate((root / file).read_text(encoding="utf-8").splitlines(), 1):
            fitting = [other for other in tokens.changes(line) if other.strip() == changed]
            if line.strip() == original and fitting:
                yield Place(file, number, line, fitting[0])
                break


def runRandom(copy, wanted, seed, jobs, again, words, options):
    """Draws, builds, tests and reports; 0 if all were noticed or are explained."""
    begin = time.monotonic()
    record = copy.parent / "unnoticed.txt"
    if again:
        places = list(placesOfLastRun(copy, record))
        wanted = len(places)
    else:
        places = draw(copy, seed, words)
    if not places:
        sys.exit("nothing to change")
    isGuarded = canGuard(copy / "build" / "worker0")
    if os.geteuid() == 0 and not isGuarded:
        sys.exit("as root it takes namespaces of its own: a changed source may remove anything")
    tree = Tree(copy, options)
    workers = [Worker(tree, copy / "build" / f"worker{number}", isGuarded)
               for number in range(jobs)]
    judge = Judge(tree, timeUnchanged(workers[0]))
    count, explained = Count(places, wanted), explainedKeys()
    with ThreadPoolExecutor(jobs) as pool:
        for done in [pool.submit(work, count, judge, worker, explained) for worker in workers]:
            done.result()
    record.write_text("\n".join(place.block() for place in count.unnoticed), encoding="utf-8")
    print("\n" + ", ".join(f"{verdict}: {number}" for verdict, number in count.verdicts.items()))
    if count.unnoticed:
        print(f"\nunnoticed (also in {record}):\n")
        for place in count.unnoticed:
            print(f"{place.file}:{place.number}\n- {place.original.strip()}\n"
                  f"+ {place.changed.strip()}\n")
    print(f"seed {seed}, {time.monotonic() - begin:.0f} s")
    return 1 if count.unnoticed else 0
