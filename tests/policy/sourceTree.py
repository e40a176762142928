"""What the policy checks know of the source tree: its files, includes and components."""

import posixpath
import re
from pathlib import Path

CODE = (".h", ".imp", ".cpp")
HALF = re.compile(r"(?P<component>.+?)(?P<platform>Windows|WinNT|Linux)\.cpp")
CONDITION = re.compile(r"\s*#\s*(if|ifdef|ifndef|elif\w*)\b")
KIT_LEVEL = 6
INCLUDE = re.compile(r'\s*#\s*include\s*(?P<name>"[^"]*"|<[^>]*>)')


class Errors:
    """Findings, each with file, line and rule."""

    def __init__(self):
        self.lines = []

    def add(self, file, line, rule, text):
        self.lines.append(f"{file}:{line}: [{rule}] {text}")

    def report(self):
        """Prints all findings; the exit value of the check."""
        for line in sorted(self.lines):
            print(line)
        print(f"{len(self.lines)} findings")
        return 1 if self.lines else 0


class Source:
    """One file below src/, named as includes name it: base/osEnv.h."""

    def __init__(self, root, path):
        self.path = path
        self.shown = path.relative_to(root).as_posix()
        self.name = path.relative_to(root / "src").as_posix()
        self.stem = path.stem
        self.isHeader = path.suffix != ".cpp"
        half = HALF.fullmatch(path.name)
        self.platform = None
        if half:
            self.stem = half["component"]
            self.platform = "Linux" if half["platform"] == "Linux" else "Windows"
        self.lines = path.read_text(encoding="utf-8").split("\n")

    @property
    def ownHeader(self):
        return f"{Path(self.name).parent.as_posix()}/{self.stem}.h"

    def includes(self):
        """The includes as (line, name, whether in quotes).

        Sources name files of the project from src/. Headers name them from their own folder, so
        that they find each other beside themselves, wherever a client's include path leads.
        """
        for number, line in enumerate(self.lines, 1):
            found = INCLUDE.match(line)
            if found:
                name, quoted = found["name"][1:-1], found["name"][0] == '"'
                if quoted and self.isHeader:
                    name = posixpath.normpath(posixpath.join(posixpath.dirname(self.name), name))
                yield number, name, quoted

    def conditions(self):
        """The preprocessor's conditions as (line, text), with continuation lines joined."""
        parts = []
        for number, line in enumerate(self.lines, 1):
            parts.append(line.removesuffix("\\"))
            if not line.endswith("\\"):
                if CONDITION.match(parts[0]):
                    yield number - len(parts) + 1, " ".join(parts)
                parts = []


def readSources(root):
    """All files of the library and of the application kit, by the name that includes use."""
    found = {}
    for folder in ("base", "app"):
        for path in sorted((root / "src" / folder).glob("*")):
            if path.suffix in CODE:
                source = Source(root, path)
                found[source.name] = source
    return found


class Row:
    """One row of the table: a header with its .imp, its source and its halves."""

    FORM = re.compile(
        r"(?P<level>\d) (?P<name>\w+)"
        r" +(?P<access>public|public-with-imp|public-apart|public-on-Windows|internal)"
        r" +(?P<kinds>\w+(?: \w+)*) +(?P<test>tested|tested-inside|tested-alone|-)"
        r"(?: of (?P<component>\w+))?(?: : (?P<reason>\S.*))?")
    SUFFIXES = {"h": ".h", "imp": ".imp", "cpp": ".cpp", "Linux": "Linux.cpp",
                "Windows": "Windows.cpp", "WinNT": "WinNT.cpp"}

    def __init__(self, found, number):
        self.line = number
        self.level = int(found["level"])
        self.name = found["name"]
        self.access = found["access"]
        self.kinds = found["kinds"].split()
        self.test = found["test"]
        self.component = found["component"] or self.name
        self.reason = found["reason"]

    @property
    def folder(self):
        return "app" if self.level == KIT_LEVEL else "base"

    def file(self, kind):
        """The file of this kind as includes name it."""
        return f"{self.folder}/{self.name}{self.SUFFIXES[kind]}"

    @property
    def files(self):
        return [self.file(kind) for kind in self.kinds if kind in self.SUFFIXES]

    @property
    def publicFiles(self):
        kinds = {"internal": (), "public-with-imp": ("h", "imp")}.get(self.access, ("h",))
        return [self.file(kind) for kind in kinds]

    @property
    def isOneSided(self):
        return ("Linux" in self.kinds) != bool({"Windows", "WinNT"} & set(self.kinds))

    @property
    def testFile(self):
        return f"{self.folder}/{self.name}Test.cpp" if self.test != "-" else None


class Table:
    """The table of components; the head of the file explains its form."""

    UPWARD = re.compile(r"upward: (?P<source>\w+) -> (?P<target>\w+) : \S.*")

    def __init__(self, root, errors):
        path = root / "src/components.txt"
        self.shown = path.relative_to(root).as_posix()
        self.rows = {}  # name -> row
        self.upward = {}  # (from, to) -> line
        last = (-1, "")
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            if not line or line.startswith("#"):
                continue
            if found := Row.FORM.fullmatch(line):
                last = self._addRow(Row(found, number), last, errors)
            elif exception := self.UPWARD.fullmatch(line):
                self.upward[exception["source"], exception["target"]] = number
            else:
                errors.add(self.shown, number, "table", f"not a row of the table: {line}")
        for row in self.rows.values():
            self._checkComponent(row, errors)

    def _addRow(self, row, last, errors):
        key = (row.level, row.name.lower())
        if key <= last:
            errors.add(self.shown, row.line, "table", "rows are sorted by level, then by name")
        if row.name in self.rows:
            errors.add(self.shown, row.line, "table", f"{row.name} stands in two rows")
        for kind in row.kinds:
            if kind not in Row.SUFFIXES:
                errors.add(self.shown, row.line, "table", f"{kind} is no kind of file")
        if row.isOneSided and not row.reason:
            errors.add(self.shown, row.line, "table", "a half without a counterpart needs a reason")
        if row.reason and not row.isOneSided and row.component == row.name:
            errors.add(self.shown, row.line, "table", "the reason explains nothing")
        self.rows.setdefault(row.name, row)
        return key

    def _checkComponent(self, row, errors):
        whole = self.rows.get(row.component)
        if row.component == row.name:
            return
        if whole is None or whole.component != whole.name:
            errors.add(self.shown, row.line, "table", f"{row.component} is no component")
        elif whole.level != row.level:
            errors.add(self.shown, row.line, "table", f"{row.component} is on another level")
        if not row.reason:
            errors.add(self.shown, row.line, "table", "belonging to another one needs a reason")

    def component(self, stem):
        """The component to which the files with this stem belong."""
        return self.rows[stem].component if stem in self.rows else stem

    def level(self, component):
        return self.rows[component].level if component in self.rows else None
