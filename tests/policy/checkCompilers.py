"""Builds the libraries with each compiler that they are tested with, and runs programs with them.

usage: checkCompilers.py [--brief] <root> [<directory of the builds>]

The builds stay, by default below build/compilers, so that the next time takes only what has
changed. With --brief there is one build, of libc++ and the portable forms together: that clang++
builds the libraries with the standard library of g++ is shown by the sanitizers' builds, too.
Before the builds the sources are searched for what belongs to a compiler and stands elsewhere
than in the header that is made for it. The exit value is 1 if something is found, if a build fails
or a program.
"""

import os
import re
import subprocess
import sys
from pathlib import Path

from sourceTree import Errors, readSources

# What a build is called, its compiler and flags. The last one shows the portable forms.
BUILDS = [("clang++", "clang++", ""),
          ("clang++ with libc++", "clang++", "-stdlib=libc++"),
          ("clang++ with portable forms", "clang++", "-DZU_COMPILER_PORTABLE")]
BRIEF = [("clang++ with libc++ and portable forms", "clang++",
          "-stdlib=libc++ -DZU_COMPILER_PORTABLE")]
OPTIONS = ["-DCMAKE_BUILD_TYPE=RelWithDebInfo",
           "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O0 -g0 -DNDEBUG", "-DZU_WARNINGS_AS_ERRORS=ON",
           "-DZU_BUILD_TESTS=OFF", "-DZU_BUILD_STATIC=OFF", "-DZU_INSTALL=OFF",
           "-DZU_BUILD_EXAMPLES=ON"]
PROGRAMS = ["logging", "times"]

OF_A_COMPILER = re.compile(
    r"__builtin_|__attribute__|\[\[gnu::|__u?int128|__extension__|__asm|# *pragma|\b_Pragma"
    r"|__SANITIZE_|__has_feature|__(GNUC|clang)|_MSC_VER|<(ext|bits)/|<cxxabi|<cpuid")
STANDS_IN = {"base/compiler.h", "base/compilerSupport.cpp",
             # Which names a module shows.
             "base/baseApi.h"}


def misplaced(sources):
    """What belongs to a compiler and stands where no other one is thought of."""
    errors = Errors()
    for source in sources.values():
        if source.name in STANDS_IN:
            continue
        for number, line in enumerate(source.lines, 1):
            if found := OF_A_COMPILER.search(line):
                errors.add(source.shown, number, "compiler", f"{found[0]} belongs to compiler.h")
    return errors


def run(*command, **options):
    """Runs a command, and shows what it says if it fails; whether it succeeds."""
    done = subprocess.run([str(word) for word in command], text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, check=False, **options)
    if done.returncode != 0:
        print(done.stdout)
    return done.returncode == 0


def build(root, directory, compiler, flags):
    """Builds the libraries and the programs, and runs these; how many sources there are, or 0."""
    directory.mkdir(parents=True, exist_ok=True)
    if not run("cmake", "-G", "Ninja", "-S", root, "-B", directory,
               f"-DCMAKE_CXX_COMPILER={compiler}", f"-DCMAKE_CXX_FLAGS={flags}", *OPTIONS):
        return 0
    if not run("cmake", "--build", directory, "--target", "ZUbase", "ZUapp", *PROGRAMS):
        return 0
    logs = directory / "logs"
    logs.mkdir(exist_ok=True)
    for program in PROGRAMS:
        if not run(directory / "bin" / program, env={**os.environ, "B7Q_TEST_DIR": str(logs)}):
            return 0
    return len(list(directory.glob("src/*/CMakeFiles/*/*.o")))


def main():
    words = [word for word in sys.argv[1:] if word != "--brief"]
    isBrief = "--brief" in sys.argv
    root = Path(words[0]).resolve()
    builds = Path(words[1]) if len(words) > 1 else root / "build" / "compilers"
    failed = misplaced(readSources(root)).report() != 0
    for name, compiler, flags in BRIEF if isBrief else BUILDS:
        count = build(root, builds / re.sub(r"\W+", "-", name), compiler, flags)
        print(f"{name}: " + (f"{count} sources, {len(PROGRAMS)} programs" if count else "FAILED"),
              flush=True)
        failed = failed or count == 0
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
