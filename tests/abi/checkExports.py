"""Holds the names that a shared library shows against the list of them.

A name that is gone breaks programs that were built earlier; one that came needs a line in the list,
so that it is shown on purpose. With --write the list is made anew.
"""

import pathlib
import subprocess
import sys


def call(words, text=None):
    return subprocess.run(words, input=text, stdout=subprocess.PIPE, text=True, check=True).stdout


def elfNames(tool, library):
    """What the dynamic symbol table defines."""
    for line in call([tool, "-D", "--defined-only", library]).splitlines():
        yield line.split()[-1]


def windowsNames(tool, library):
    """What the export table names."""
    isTable = False
    for line in call([tool, "-p", library]).splitlines():
        if line.startswith("[Ordinal/Name Pointer]"):
            isTable = True
        elif isTable and not line.strip():
            return
        elif isTable:
            yield line.split()[-1]


def shownNames(tool, library):
    """As the source has them, sorted; the forms of one constructor are one name."""
    names = windowsNames if library.endswith(".dll") else elfNames
    return sorted(set(call(["c++filt"], "\n".join(names(tool, library))).splitlines()))


def compare(shown, listed):
    """Lines that tell what differs."""
    yield from (f"is gone: {name}" for name in sorted(set(listed) - set(shown)))
    yield from (f"is not listed: {name}" for name in sorted(set(shown) - set(listed)))


def main():
    arguments = [word for word in sys.argv[1:] if word != "--write"]
    tool, library, path = arguments[0], arguments[1], pathlib.Path(arguments[2])
    shown = shownNames(tool, library)
    if not shown:
        sys.exit(f"{library} shows nothing")
    if "--write" in sys.argv:
        path.write_text("\n".join(shown) + "\n", encoding="utf-8")
        return
    differences = list(compare(shown, path.read_text(encoding="utf-8").splitlines()))
    if differences:
        print(f"{library}, against {path}:")
        sys.exit("\n".join(differences))
    print(f"{library}: {len(shown)} names, as listed")


if __name__ == "__main__":
    main()
