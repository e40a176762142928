"""Checks the form of the sources, and that public headers and tests are where they belong.

usage: checkSources.py [--require-tests] <root of the project>

With --require-tests, every source but halves and packages has a test file of its name, and every
test file is in the build.
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
SYSTEM_ERROR = re.compile(r"\bthrow\s+(Zu::)?ExSysError\w*")
RANDOM_SOURCE = re.compile(r"\bclass (?:ZU_\w+ )?(\w+) : public Rn(?:Uniform)?Rng<T>")
RANDOM_INTERFACES = {"RnUniformRng"}
RAISES_SYSTEM_ERRORS = "base/exRaise.cpp"
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


def checkRaising(sources, errors):
    """Errors of the system are raised in one way."""
    for source in sources.values():
        for line, text in enumerate(source.lines, 1):
            if SYSTEM_ERROR.search(text) and source.name != RAISES_SYSTEM_ERRORS:
                errors.add(source.shown, line, "raising", "exRaise.h has the macro for this")


def checkRandomSources(root, sources, errors):
    """Each source of random numbers is known to the test of those that draw alike."""
    test = root / "tests/base/rnDrawTest.cpp"
    judged = test.read_text(encoding="utf-8") if test.exists() else ""
    for source in sources.values():
        for line, text in enumerate(source.lines, 1):
            found = RANDOM_SOURCE.search(text)
            if not found or found[1] in RANDOM_INTERFACES:
                continue
            name = found[1]
            if not re.search(rf"\b{name}<\w+> uniform;|rnDrawsAlike\((Zu::)?{name}<", judged):
                errors.add(source.shown, line, "random source",
                           f"rnDrawTest.cpp does not say whether {name} draws alike")


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


def checkPublicHeaders(table, sources, errors):
    """The umbrella header includes all public headers, and these need no others."""
    public = {file for row in table.rows.values() for file in row.publicFiles}
    for name in sorted(public & sources.keys()):
        for line, included, quoted in sources[name].includes():
            if quoted and included not in public:
                errors.add(sources[name].shown, line, "public", f"{included} is not public")
    umbrella = sources.get("base/base.h")
    if umbrella is None:
        return
    if umbrella.name not in public:
        errors.add(umbrella.shown, 1, "public", "is not listed as public")
    included = {name for _, name, _ in umbrella.includes()}
    for row in table.rows.values():
        # What one platform alone has is not for everybody, nor is what costs time to compile.
        if row.access in ("internal", "public-apart", "public-on-Windows") or row.folder != "base":
            continue
        if row.file("h") not in included | {umbrella.name}:
            errors.add(umbrella.shown, 1, "umbrella",
                       f'#include "{row.name}.h" is missing: it is public')


def checkTests(root, table, sources, errors):
    """Every portable source has tests of its name, and every test is in the build."""
    folders = sorted({row.folder for row in table.rows.values()})
    tests = {path.relative_to(root / "tests").as_posix()
             for folder in folders for path in (root / "tests" / folder).glob("*Test.cpp")}
    for row in table.rows.values():
        source = sources.get(row.file("cpp"))
        if row.testFile and row.testFile not in tests:
            errors.add(table.shown, row.line, "tests", f"there is no tests/{row.testFile}")
        elif source and not row.testFile and not isPackage(source, sources):
            errors.add(table.shown, row.line, "tests", f"{row.name} has no tests")
    listed = {row.testFile for row in table.rows.values()}
    for folder in folders:
        build = root / "tests" / folder / "CMakeLists.txt"
        text = re.sub(r"#.*", "", build.read_text(encoding="utf-8")) if build.exists() else ""
        listed |= {f"{folder}/{name}" for name in re.findall(r"\b\w+Test\.cpp\b", text)}
        for part in re.findall(r"(\w+)\$\{\w+\}(\w*)", text):
            listed |= {test for test in tests if test.startswith(f"{folder}/{part[0]}")}
    for test in sorted(tests - listed):
        errors.add(f"tests/{test}", 1, "tests", f"neither {table.shown} nor the build has it")


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
    table = Table(root, errors)
    sources = readSources(root)
    checkOwnHeaderFirst(sources, table, errors)
    checkPlatforms(sources, errors)
    checkRaising(sources, errors)
    checkRandomSources(root, sources, errors)
    checkHeaders(sources, errors)
    checkPublicHeaders(table, sources, errors)
    if requireTests:
        checkTests(root, table, sources, errors)
    checkText(root, errors)
    return errors


if __name__ == "__main__":
    options = sys.argv[1:-1]
    sys.exit(check(Path(sys.argv[-1]), "--require-tests" in options).report())
