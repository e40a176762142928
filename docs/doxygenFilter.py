"""Prints a header as Doxygen is to read it. Lines keep their numbers.

usage: doxygenFilter.py <file>

Of a header that is not installed nothing is seen: src/components.txt says which are. What no
comment stands before, and a caller needs no word about, is gone: functions that are defaulted or
deleted, and destructors that are only declared. What exception classes have in common gets a common
word. In a group, between "/// @{" and "/// @}", what has no comment gets that of the first member,
which Doxygen itself only does in part. Hashes stand in a namespace std that is written out, as
Doxygen knows them.
"""

import re
import sys
from pathlib import Path

ROW = re.compile(r"^\d (?P<name>\w+) +(?P<access>public[-\w]*) ", re.MULTILINE)
COMMENT = r"(?P<comment>^[ \t]*//.*\n)?"
DEFAULTED = re.compile(
    COMMENT + r"^[ \t]*(?!\w+:\n)[^;{}#/\s][^;{}#/]*\)[^;{}#/()]*= (?:default|delete);\n",
    re.MULTILINE)
DESTRUCTOR = re.compile(COMMENT + r"^[ \t]*(?:virtual )?~\w+\(\)(?: override)?;\n", re.MULTILINE)
RAISED = re.compile(COMMENT + r"^ *\w+\(const char\* file, int line\);\n", re.MULTILINE)
WHAT = re.compile(COMMENT + r"^ *const char\* what\(\) const noexcept override;\n", re.MULTILINE)
GROUP = re.compile(r"^(?P<indent> *)/// @\{\n(?P<comment>(?: *///.*\n)+)(?P<rest>(?:.*\n)*?)"
                   r" */// @\}\n", re.MULTILINE)
HASH = re.compile(r"^((?:///.*\n)*template <.*> struct )std::(hash<.*>\n\{\n(?:.*\n)*?\};)",
                  re.MULTILINE)


def isPublic(path):
    """Whether the header is one of those that are installed."""
    table = (path.parent.parent / "components.txt").read_text(encoding="utf-8")
    access = {row["name"]: row["access"] for row in ROW.finditer(table)}.get(path.stem)
    return access is not None and (path.suffix == ".h" or access == "public-with-imp")


def emptied(match):
    """The lines of the match without their text; a match with a comment as it is."""
    return match[0] if match["comment"] else "\n" * match[0].count("\n")


def remarked(text):
    """What puts the text behind a match that has no comment."""
    return lambda match: match[0] if match["comment"] else f"{match[0][:-1]} ///< {text}\n"


def shared(match):
    """The group without its marks, and with a comment at each of its members."""
    text = " ".join(line.strip(" /") for line in match["comment"].splitlines())
    start = re.compile(match["indent"] + r"[\w\[#]")
    lines = []
    isNext = False  # whether a member without a comment may begin here
    for line in match["rest"].splitlines(keepends=True):
        if isNext and line.startswith("#"):
            line = f"{line[:-1]} ///< {text}\n"
        elif isNext and start.match(line):
            line = f"/** {text} */ {line}"
        if line.strip():
            isNext = re.search(r"(;|\}| ///<.*)$", line[:-1]) and not line.strip().startswith("///")
            isNext = isNext or line.startswith("#define")
        lines.append(line)
    return "\n" + match["comment"] + "".join(lines) + "\n"


def filtered(text):
    """The text of a header as Doxygen is to read it."""
    text = DEFAULTED.sub(emptied, text)
    text = DESTRUCTOR.sub(emptied, text)
    text = RAISED.sub(remarked("For the place of the raise: `__FILE__` and `__LINE__`."), text)
    text = WHAT.sub(remarked("The reason, for handlers of standard exceptions."), text)
    text = GROUP.sub(shared, text)
    return HASH.sub(r"namespace std { \1\2 }", text)


def main():
    path = Path(sys.argv[1])
    if isPublic(path):
        sys.stdout.write(filtered(path.read_text(encoding="utf-8")))


if __name__ == "__main__":
    main()
