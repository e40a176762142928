"""Checks the form of the sources and that the lists of the build are complete.

usage: checkSources.py [--require-tests] <root of the project>

With --require-tests, every source but halves and packages has a test file that begins with its
name: tests/base/osEnv*Test.cpp.
"""

import re
import sys
from pathlib import Path

from sourceTree import CODE, Errors, Table, readSources

WINDOWS_HEADERS = re.compile(
    r"(win\w*|ws2\w+|direct|process|io|conio|psapi|tlhelp32|mmsystem|timeapi|mmreg|shlobj|shlwapi"
    r"|shellapi|userenv|dbghelp|lm\w+|iphlpapi|ntstatus|ntdef|excpt|tchar|synchapi|\w+api|\w+apiset"
    r")\.h", re.IGNORECASE)
POSIX_HEADERS = re.compile(
    r"(unistd|fcntl|pthread|dlfcn|spawn|pwd|grp|dirent|poll|sched|semaphore|termios|glob|fnmatch"
    r"|ftw|langinfo|link|elf|execinfo|netdb|syslog|ucontext|strings|utime|mqueue|aio|alloca"
    r"|features|iconv|libgen|wordexp|ifaddrs|getopt)\.h"
    r"|(sys|linux|asm|net|netinet|arpa|bits)/.+")
PLATFORM_MACRO = re.compile(
    r"\b(_?WIN(32|64)|__(WIN(32|64)|WINNT|MINGW\w+|CYGWIN)(__)?|_MSC_VER"
    r"|_*(linux|gnu_linux|unix|APPLE|MACH|FreeBSD|NetBSD|OpenBSD|ANDROID)(__)?)\b")
HAS_HEADER = re.compile(r"__has_include\s*\(\s*[<\"]([^>\"]+)")
ASKS_PLATFORM = "base/baseApi.h"
LINE_LENGTH = 100


def isPackage(source, sources):
    """Whether this is the body of a package, as loggerInit.cpp is."""
    return source.path.name.endswith("Init.cpp") and source.ownHeader not in sources


def checkOwnHeaderFirst(sources, table, errors):
    """A source shows that its header stands alone; a half begins with a header it implements."""
    for source in sources.values():
        if source.isHeader or not (source.platform or source.ownHeader in sources):
            continue
        line, name, _ = next(source.includes(), (1, "nothing", True))
        if source.platform:
            included = sources.get(name)
            fits = (included is not None and included.isHeader
                    and table.component(included.stem) == table.component(source.stem))
            wanted = f"a header of {table.component(source.stem)}"
        else:
            fits, wanted = name == source.ownHeader, source.ownHeader
        if not fits:
            errors.add(source.shown, line, "own header", f"{name} comes first, not {wanted}")


def checkHalves(sources, table, errors):
    """Where one platform has a half, the other has one."""
    halves = {}
    for source in sources.values():
        if source.platform:
            halves.setdefault(source.ownHeader, {})[source.platform] = source
    oneSided = set()
    for platforms in halves.values():
        if len(platforms) == 1:
            (platform, source), = platforms.items()
            oneSided.add(source.path.name)
            if source.path.name not in table.oneSided:
                errors.add(source.shown, 1, "halves", f"only {platform} has this half")
    for name, line in table.oneSided.items():
        if name not in oneSided:
            errors.add(table.shown, line, "exception", f"{name} is no half without a counterpart")


def platformOf(header):
    """The platform that alone has this header, or None."""
    if WINDOWS_HEADERS.fullmatch(header):
        return "Windows"
    return "Linux" if POSIX_HEADERS.fullmatch(header) else None


def checkPlatforms(sources, errors):
    """Platforms are told apart by the build: no condition asks, and only halves know headers."""
    for source in sources.values():
        for line, text in source.conditions():
            asks = PLATFORM_MACRO.search(text) or any(map(platformOf, HAS_HEADER.findall(text)))
            if asks and source.name != ASKS_PLATFORM:
                errors.add(source.shown, line, "platform", f"a condition asks: {text.strip()}")
        for line, name, _ in source.includes():
            platform = platformOf(name)
            if platform and source.platform != platform:
                errors.add(source.shown, line, "platform", f"{name} is for {platform} halves")


def checkHeaders(sources, errors):
    """Headers say what they are for and are guarded by a name made from their own."""
    for source in sources.values():
        if not source.isHeader:
            continue
        kind = source.path.suffix[1:].upper()
        guard = f"ZU_{source.path.parent.name}_{source.stem}_{kind}".upper()
        code = [line for line in source.lines if line and not line.startswith("//")]
        if code[:2] != [f"#ifndef {guard}", f"#define {guard}"] or code[-1] != "#endif":
            errors.add(source.shown, 1, "guard", f"the guard around everything is {guard}")
        if source.lines[0] != "/// @file" or not re.match(r"/// \w", "".join(source.lines[1:2])):
            errors.add(source.shown, 1, "purpose", "begins with /// @file and a line of purpose")


def listedFiles(folder):
    """The lists of files in the folder's CMakeLists.txt, by name, each with its lines."""
    path = folder / "CMakeLists.txt"
    text = path.read_text(encoding="utf-8") if path.exists() else ""
    text = re.sub(r"#.*", "", text)
    lists = {}
    for found in re.finditer(r"\b(set|list)\(\s*(?:APPEND\s+)?(\w+)\s([^()]*)\)", text):
        for name in re.finditer(r"[\w.]+\.(h|imp|cpp)\b", found[3]):
            line = text.count("\n", 0, found.start(3) + name.start()) + 1
            lists.setdefault(found[2], {}).setdefault(name[0], []).append(line)
    return lists


def checkLists(root, folder, sources, errors):
    """The build knows every source, once and for the right platform, and nothing else."""
    lists = listedFiles(root / "src" / folder)
    shown = f"src/{folder}/CMakeLists.txt"
    listed = {}
    for listName, names in lists.items():
        for name, lines in names.items():
            source = sources.get(f"{folder}/{name}")
            if source is None:
                errors.add(shown, lines[0], "lists", f"{name} does not exist")
                continue
            listed.setdefault(name, []).extend(lines)
            platform = listName.removeprefix("halves") if listName.startswith("halves") else None
            if not source.isHeader and source.platform != platform:
                errors.add(shown, lines[0], "lists", f"{name} does not belong to {listName}")
    for source in sources.values():
        if source.isHeader or not source.name.startswith(f"{folder}/"):
            continue
        lines = listed.get(source.path.name, [])
        if not lines:
            errors.add(source.shown, 1, "lists", f"{shown} does not list it")
        elif len(lines) > 1:
            errors.add(shown, lines[1], "lists", f"{source.path.name} is listed twice")
    return lists.get("publicHeaders", {})


def checkPublicHeaders(folder, public, sources, errors):
    """The umbrella header includes all public headers, and these need no others."""
    names = {f"{folder}/{name}" for name in public}
    for name in names & sources.keys():
        for line, included, _ in sources[name].includes():
            if included.startswith(f"{folder}/") and included not in names:
                errors.add(sources[name].shown, line, "public", f"{included} is not public")
    umbrella = sources.get(f"{folder}/{folder}.h")
    if umbrella is None:
        return
    if umbrella.name not in names:
        errors.add(umbrella.shown, 1, "public", "is not listed as public")
    included = {name for _, name, _ in umbrella.includes()}
    for name in sorted(names - included - {umbrella.name}):
        if name.endswith(".h"):
            errors.add(umbrella.shown, 1, "umbrella", f"{name} is public, but not included")


def checkTests(root, sources, errors):
    """Every portable source has tests of its name."""
    tests = [path.relative_to(root / "tests").as_posix() for path in root.glob("tests/*/*Test.cpp")]
    for source in sources.values():
        if source.isHeader or source.platform or isPackage(source, sources):
            continue
        wanted = source.name.removesuffix(".cpp")
        if f"{wanted}Test.cpp" not in tests:
            errors.add(source.shown, 1, "tests", f"there is no tests/{wanted}Test.cpp")


def checkText(root, errors):
    """No tabs, no trailing blanks, no long lines, and a line feed at the end."""
    for folder in ("src", "tests", "examples", "bench", "fuzz"):
        for path in sorted((root / folder).rglob("*")):
            if path.suffix not in (*CODE, ".py") and path.name != "CMakeLists.txt":
                continue
            shown = path.relative_to(root).as_posix()
            lines = path.read_bytes().decode("utf-8").split("\n")
            for number, line in enumerate(lines, 1):
                if "\t" in line:
                    errors.add(shown, number, "text", "has a tab")
                if line != line.rstrip():
                    errors.add(shown, number, "text", "ends in blanks")
                if len(line) > LINE_LENGTH and not line.lstrip().startswith("/// |"):
                    errors.add(shown, number, "text", f"has {len(line)} characters")
            if lines[-1]:
                errors.add(shown, len(lines), "text", "does not end in a line feed")


def check(root, requireTests):
    errors = Errors()
    table = Table(root / "tests/policy/layers.txt", root, errors)
    sources = readSources(root)
    checkOwnHeaderFirst(sources, table, errors)
    checkHalves(sources, table, errors)
    checkPlatforms(sources, errors)
    checkHeaders(sources, errors)
    for folder in ("base", "app"):
        public = checkLists(root, folder, sources, errors)
        checkPublicHeaders(folder, public, sources, errors)
    if requireTests:
        checkTests(root, sources, errors)
    checkText(root, errors)
    return errors


if __name__ == "__main__":
    options = sys.argv[1:-1]
    sys.exit(check(Path(sys.argv[-1]), "--require-tests" in options).report())
