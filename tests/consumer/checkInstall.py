"""Installs a build, moves it, and builds and runs a project of somebody else with it.

Once by its CMake package and once by its pkg-config files; then the same with the packages made of
the build, unpacked.
"""

import os
import pathlib
import shlex
import shutil
import subprocess
import sys
import tempfile

EXPECTED = ["items 3", "own 7 9 beside of the library", "prefixed (3/2=1.5)",
            "Unknown application name / version.", "API Corvane 0.2 pre-alpha: "]


def call(*words, **options):
    """Runs a command and gives what it writes; what it says on failure is shown."""
    done = subprocess.run([str(word) for word in words], stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, check=False, **options)
    if done.returncode != 0:
        sys.exit(f"{' '.join(str(word) for word in words)}\n{done.stdout}")
    return done.stdout


def installed(build, place):
    """The tree of an installation, moved away from where it was installed."""
    call("cmake", "--install", build, "--prefix", place / "first")
    (place / "first").rename(place / "moved")
    return place / "moved"


def unpacked(build, place):
    """The tree that the packages hold."""
    call("cpack", "--config", build / "CPackConfig.cmake", "-B", place)
    for archive in place.glob("*.zip"):
        shutil.unpack_archive(archive, place)
        return place / archive.stem
    packages = sorted(place.glob("*.deb"))
    names = [call("dpkg-deb", "--field", package, "Package").strip() for package in packages]
    if names != ["libzubase-dev", "libzubase0.2"]:
        sys.exit(f"these packages came: {names}")
    needed = call("dpkg-deb", "--field", packages[0], "Depends").strip()
    if needed != "libzubase0.2 (= 0.2.0)":
        sys.exit(f"{packages[0].name} needs '{needed}'")
    if "libstdc++6" not in call("dpkg-deb", "--field", packages[1], "Depends"):
        sys.exit(f"{packages[1].name} does not say what it needs")
    for package in packages:
        call("dpkg-deb", "--extract", package, place / "root")
    return place / "root" / "usr"


def checkPages(build, prefix):
    """What stands beside zulog, as far as this build has made it."""
    made = build / "src" / "zulog"
    for name, place in (("zulog.1", "man/man1/zulog.1"),
                        ("zulog.bash", "bash-completion/completions/zulog")):
        if not (made / name).exists():
            print(f"this build has no {name}")
        elif (prefix / "share" / place).read_bytes() != (made / name).read_bytes():
            sys.exit(f"share/{place} is not {made / name}")


def run(program, prefix, emulator, expected):
    """Checks what a program writes, with the libraries of the prefix."""
    environment = dict(os.environ)
    environment["LD_LIBRARY_PATH"] = str(prefix / "lib")
    environment["B7Q_TEST_DIR"] = str(program.parent)
    # On Windows a program finds its libraries only beside itself.
    for library in (prefix / "bin").glob("*.dll"):
        shutil.copy(library, program.parent)
    words = [emulator, program] if emulator else [program]
    lines = call(*words, env=environment).splitlines()
    for line in expected:
        if line not in lines:
            sys.exit(f"{program} does not say '{line}':\n" + "\n".join(lines))


def checkPackage(source, place, prefix, toolchain, emulator, suffix):
    """Builds by find_package."""
    # For another platform packages are looked for among that platform's alone.
    words = [f"-DCMAKE_TOOLCHAIN_FILE={toolchain}", f"-DZUbase_DIR={prefix}/lib/cmake/ZUbase"]
    call("cmake", "-S", source, "-B", place / "byPackage", "-G", "Ninja",
         f"-DCMAKE_PREFIX_PATH={prefix}", *(words if toolchain else []))
    call("cmake", "--build", place / "byPackage")
    run(place / "byPackage" / f"consumer{suffix}", prefix, emulator, EXPECTED)
    optional = place / "byPackage" / f"compressing{suffix}"
    if optional.exists():
        run(optional, prefix, emulator, ["compressed to a file of gzip"])
    formatting = place / "byPackage" / f"formatting{suffix}"
    if formatting.exists():
        run(formatting, prefix, emulator, ["Formatting 2.5 by libfmt"])
    return optional.exists()


def checkPkgConfig(source, place, prefix, compiler, emulator, suffix):
    """Builds by pkg-config alone."""
    environment = dict(os.environ)
    environment["PKG_CONFIG_PATH"] = str(prefix / "lib" / "pkgconfig")
    flags = shlex.split(
        call("pkg-config", "--cflags", "--libs", "zuapp", "zubase", env=environment))
    program = place / "byPkgConfig" / f"consumer{suffix}"
    program.parent.mkdir()
    call(compiler, "-std=c++17", f"-I{source / 'own'}", *sorted(source.glob("*.cpp")),
         "-o", program, *flags, "-pthread")
    run(program, prefix, emulator, EXPECTED)


def main():
    source, build, compiler, toolchain, emulator = sys.argv[1:]
    suffix = ".exe" if toolchain else ""
    with tempfile.TemporaryDirectory() as name:
        for kind, made in ("installed", installed), ("packages", unpacked):
            place = pathlib.Path(name) / kind
            place.mkdir()
            prefix = made(pathlib.Path(build), place)
            checkPages(pathlib.Path(build), prefix)
            hasOptional = checkPackage(pathlib.Path(source), place, prefix, toolchain, emulator,
                                       suffix)
            checkPkgConfig(pathlib.Path(source), place, prefix, compiler, emulator, suffix)
            print(f"{kind}: by the CMake package and by pkg-config, "
                  f"{'with' if hasOptional else 'without'} libZUappZlib")


if __name__ == "__main__":
    main()
