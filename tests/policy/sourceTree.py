"""What the policy checks know of the source tree: its files, includes and components."""

import posixpath
import re
from pathlib import Path

CODE = (".h", ".imp", ".cpp")
HALF = re.compile(r"(?P<component>.+?)(?P<platform>Windows|WinNT|Linux)\.cpp")
CONDITION = re.compile(r"\s*#\s*(if|ifdef|ifndef|elif\w*)\b")
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


class Table:
    """The table of layers; see the head of layers.txt for its form."""

    ROW = re.compile(r"(?P<level>\d) (?P<name>\w+)(?: \+ (?P<parts>\w+(?: \w+)*) : \S.*)?")
    UPWARD = re.compile(r"upward: (?P<source>\w+) -> (?P<target>\w+) : \S.*")
    ONE_SIDED = re.compile(r"one-sided: (?P<file>\w+\.cpp) : \S.*")

    def __init__(self, path, root, errors):
        self.shown = path.relative_to(root).as_posix()
        self.levels = {}  # component -> level
        self.rows = {}  # component -> line of its row
        self.groups = {}  # stem -> component
        self.parts = []  # the stems that groups name, as (stem, line)
        self.upward = {}  # (from, to) -> line
        self.oneSided = {}  # file -> line
        last = (-1, "")
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            if not line or line.startswith("#"):
                continue
            if row := self.ROW.fullmatch(line):
                last = self._addRow(row, number, last, errors)
            elif exception := self.UPWARD.fullmatch(line):
                self.upward[exception["source"], exception["target"]] = number
            elif exception := self.ONE_SIDED.fullmatch(line):
                self.oneSided[exception["file"]] = number
            else:
                errors.add(self.shown, number, "table", f"not a row of the table: {line}")

    def _addRow(self, row, number, last, errors):
        key = (int(row["level"]), row["name"].lower())
        if key <= last:
            errors.add(self.shown, number, "table", "rows are sorted by level, then by name")
        parts = (row["parts"] or "").split()
        for stem in [row["name"], *parts]:
            if stem in self.groups:
                errors.add(self.shown, number, "table", f"{stem} stands in two rows")
            self.groups.setdefault(stem, row["name"])
        self.levels.setdefault(row["name"], key[0])
        self.rows.setdefault(row["name"], number)
        self.parts += [(stem, number) for stem in parts]
        return key

    def component(self, stem):
        """The component to which the files with this stem belong."""
        return self.groups.get(stem, stem)
