"""Checks that a snippet in a document is the program that it names.

A code block behind a line `<!-- path -->` must be the file of that path, whole.
"""

import pathlib
import re
import sys

SNIPPET = re.compile(r"^<!-- (?P<path>\S+) -->\n```\w*\n(?P<text>.*?)^```$",
                     re.MULTILINE | re.DOTALL)


def documents(root):
    """The documents of the project, in order."""
    return sorted(root.glob("*.md")) + sorted(root.glob("docs/**/*.md"))


def findings(root):
    """One line for each snippet that differs, and one if there is no snippet at all."""
    found = []
    count = 0
    for document in documents(root):
        text = document.read_text(encoding="utf-8")
        for match in SNIPPET.finditer(text):
            count += 1
            line = text.count("\n", 0, match.start()) + 1
            place = f"{document.relative_to(root)}:{line}"
            source = root / match["path"]
            if not source.is_file():
                found.append(f"{place}: there is no {match['path']}")
            elif source.read_text(encoding="utf-8") != match["text"]:
                found.append(f"{place}: the snippet is not {match['path']}")
    if count == 0:
        found.append("no document has a snippet")
    return found


def main():
    found = findings(pathlib.Path(sys.argv[1]))
    for line in found:
        print(line)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
