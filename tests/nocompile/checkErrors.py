"""Compiles what must not compile, and looks at what a user is told.

Usage: checkErrors.py <root> <folder> <compiler>...

Each source of the folder says in its first lines what the one error has to say, and what else
stands there. Where most of the lines are notes of another library, it says how many there may be.
"""

import pathlib
import re
import subprocess
import sys

# A screen.
MOST_LINES = 30
ERROR = re.compile(r"\berror:")


def wanted(source, kind):
    """What a source says about its error."""
    return re.findall(rf"^// {kind}: (.+)$", source.read_text(encoding="utf-8"), re.MULTILINE)


def check(root, compiler, source):
    """What is wrong with the compiler's answer."""
    done = subprocess.run(
        [compiler, "-std=c++17", "-fsyntax-only", f"-I{root / 'src'}", str(source)],
        stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    lines = done.stdout.splitlines()
    errors = [line for line in lines if ERROR.search(line)]
    if not done.returncode:
        return "compiles"
    if len(lines) > int(*wanted(source, "lines") or [MOST_LINES]):
        return f"{len(lines)} lines"
    if len(errors) != 1:
        return f"{len(errors)} errors"
    for text in wanted(source, "error"):
        if text not in errors[0]:
            return f"the error does not say '{text}'"
    for text in wanted(source, "note"):
        if text not in done.stdout:
            return f"'{text}' is not named"
    return ""


def main():
    root, compilers = pathlib.Path(sys.argv[1]), sys.argv[3:]
    sources = sorted((root / sys.argv[2]).glob("*.cpp"))
    if not sources or not compilers:
        sys.exit("there is nothing to check")
    findings = []
    for source in sources:
        if not wanted(source, "error"):
            findings.append(f"{source.name}: says no error")
        for compiler in compilers:
            if finding := check(root, compiler, source):
                findings.append(f"{source.name}, {compiler}: {finding}")
    if findings:
        sys.exit("\n".join(findings))
    print(f"{len(sources)} sources, {len(compilers)} compilers")


if __name__ == "__main__":
    main()
