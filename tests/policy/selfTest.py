"""Shows that the checks pass a good tree and fail on each kind of bad one."""

import tempfile
import unittest
from pathlib import Path

import checkHeaders
import checkLayers
import checkSnippets
import checkSources

LAYERS = """\
0 low
1 middle + middleParts : they are one thing
2 high
2 highInit
5 base

one-sided: lowWindows.cpp : a stated exception
"""

BUILD = """\
set(publicHeaders
    base.h
    high.h)
set(sources
    high.cpp
    middle.cpp)
set(packages
    highInit.cpp)
set(halvesLinux
    middleLinux.cpp)
set(halvesWindows
    lowWindows.cpp
    middleWinNT.cpp)
"""


def header(name, *includes, kind="H"):
    guard = f"ZU_BASE_{name.upper()}_{kind}"
    return "\n".join(["/// @file", "/// What it is for.", "", f"#ifndef {guard}",
                      f"#define {guard}", "", *includes, "", "#endif", ""])


def own(name, *more):
    return "\n".join([f'#include "base/{name}.h"', *more, ""])


GOOD = {
    "tests/policy/layers.txt": LAYERS,
    "src/base/CMakeLists.txt": BUILD,
    "src/base/base.h": header("base", '#include "high.h"'),
    "src/base/low.h": header("low"),
    "src/base/lowWindows.cpp": own("low", "#include <windows.h>"),
    "src/base/middle.h": header("middle", '#include "low.h"', "#include <string>"),
    "src/base/middle.imp": header("middle", '#include "middle.h"', kind="IMP"),
    "src/base/middle.cpp": own("middle", '#include "base/middleParts.h"'),
    "src/base/middleLinux.cpp": own("middleParts", "#include <sys/stat.h>"),
    "src/base/middleWinNT.cpp": own("middle"),
    "src/base/middleParts.h": header("middleParts", '#include "middle.h"'),
    "src/base/high.h": header("high"),
    "src/base/high.cpp": own("high", '#include "base/middle.h"'),
    "src/base/highInit.cpp": '#include "base/high.h"\n',
    "tests/base/middleTest.cpp": "\n",
    "tests/base/highTest.cpp": "\n",
}


class PolicyTest(unittest.TestCase):
    def findings(self, check, changes):
        """What the check finds in the good tree with these files; one that is None is missing."""
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            for name, text in {**GOOD, **changes}.items():
                if text is not None:
                    (root / name).parent.mkdir(parents=True, exist_ok=True)
                    (root / name).write_bytes(text.encode("utf-8"))
            return check(root).lines

    def assertFindings(self, check, changes, *starts):
        """The check has exactly these findings, each known by how its line begins."""
        lines = sorted(self.findings(check, changes))
        self.assertEqual(len(lines), len(starts), lines)
        for line, start in zip(lines, sorted(starts)):
            self.assertTrue(line.startswith(start), f"{line}\nis not\n{start}")


class Layers(PolicyTest):
    def assertLayers(self, changes, *starts):
        self.assertFindings(checkLayers.check, changes, *starts)

    def changedTable(self, old, new):
        table = GOOD["tests/policy/layers.txt"]
        self.assertIn(old, table)
        return {"tests/policy/layers.txt": table.replace(old, new)}

    def testGoodTreePasses(self):
        self.assertLayers({})

    def testComponentWithoutRow(self):
        self.assertLayers({"src/base/other.h": header("other")}, "src/base/other.h:1: [table]")

    def testRowWithoutComponent(self):
        self.assertLayers(self.changedTable("0 low\n", "0 low\n0 lower\n"),
                          "tests/policy/layers.txt:2: [table] no file")

    def testGroupWithoutPart(self):
        self.assertLayers(self.changedTable("middleParts :", "middleParts middlePast :"),
                          "tests/policy/layers.txt:2: [table] no file of src belongs to middlePast")

    def testGroupWithoutReason(self):
        lines = self.findings(checkLayers.check, self.changedTable(" : they are one thing", ""))
        self.assertIn("tests/policy/layers.txt:2: [table] not a row of the table: "
                      "1 middle + middleParts", lines)

    def testRowsOutOfOrder(self):
        self.assertLayers(self.changedTable("2 high\n2 highInit\n", "2 highInit\n2 high\n"),
                          "tests/policy/layers.txt:4: [table] rows are sorted")

    def testNameInTwoRows(self):
        self.assertLayers(self.changedTable("2 highInit\n", "2 highInit\n3 high\n"),
                          "tests/policy/layers.txt:5: [table] high stands in two rows")

    def testUpwardInclude(self):
        self.assertLayers({"src/base/low.h": header("low", '#include "high.h"'),
                           "src/base/high.cpp": own("high")}, "src/base/low.h:7: [upward]")

    def testUpwardIncludeOfAHalf(self):
        self.assertLayers({"src/base/lowWindows.cpp": own("low", '#include "base/high.h"'),
                           "src/base/high.cpp": own("high")},
                          "src/base/lowWindows.cpp:2: [upward]")

    def testStatedUpwardIncludePasses(self):
        changes = self.changedTable("one-sided", "upward: low -> high : a reason\none-sided")
        changes["src/base/low.h"] = header("low", '#include "high.h"')
        self.assertLayers({**changes, "src/base/high.cpp": own("high")})

    def testExceptionWithoutReason(self):
        self.assertLayers(self.changedTable("one-sided", "upward: low -> high\none-sided"),
                          "tests/policy/layers.txt:7: [table]")

    def testUnusedException(self):
        self.assertLayers(self.changedTable("one-sided", "upward: low -> high : why\none-sided"),
                          "tests/policy/layers.txt:7: [exception]")

    def testDownwardIncludeIsNoException(self):
        self.assertLayers(self.changedTable("one-sided", "upward: high -> middle : why\none-sided"),
                          "tests/policy/layers.txt:7: [exception]")

    def testCircleOfTwo(self):
        changes = self.changedTable("1 middle + middleParts : they are one thing\n",
                                    "1 middle\n1 middleParts\n")
        self.assertLayers(changes, "src/base/middle.cpp:2: [circle] middle -> middleParts")

    def testCircleOfThreeByWayOfAnException(self):
        changes = self.changedTable("one-sided", "upward: low -> high : a reason\none-sided")
        changes["src/base/low.h"] = header("low", '#include "high.h"')
        self.assertLayers(changes, "src/base/high.cpp:2: [circle] high -> middle -> low -> high")

    def testIncludeOfASource(self):
        self.assertLayers({"src/base/high.cpp": own("high", '#include "base/middle.cpp"')},
                          "src/base/high.cpp:2: [include]")

    def testIncludeOfNothing(self):
        self.assertLayers({"src/base/high.cpp": own("high", '#include "base/Middle.h"')},
                          "src/base/high.cpp:2: [include]")

    def testIncludeWithoutFolder(self):
        self.assertLayers({"src/base/high.cpp": own("high", '#include "middle.h"')},
                          "src/base/high.cpp:2: [include]")

    def testHeaderThatLooksForAnotherAlongTheIncludePath(self):
        self.assertLayers({"src/base/high.h": header("high", '#include "base/low.h"')},
                          "src/base/high.h:7: [include]")

    def testIncludeInAngleBrackets(self):
        self.assertLayers({"src/base/high.cpp": own("high", "#  include <base/middle.h>")},
                          "src/base/high.cpp:2: [include]")

    def testKitOnItsLevelPasses(self):
        changes = self.changedTable("5 base\n", "5 base\n6 kit\n")
        self.assertLayers({**changes, "src/app/kit.h": '#include "../base/high.h"\n'})

    def testKitBelowItsLevel(self):
        changes = self.changedTable("5 base\n", "5 base\n5 kit\n")
        self.assertLayers({**changes, "src/app/kit.h": "\n"}, "src/app/kit.h:1: [table] level")

    def testLibraryOnTheLevelOfTheKit(self):
        self.assertLayers(self.changedTable("5 base\n", "6 base\n"), "src/base/base.h:1: [table]")


class Sources(PolicyTest):
    def assertSources(self, changes, *starts):
        self.assertFindings(lambda root: checkSources.check(root, True), changes, *starts)

    def changedBuild(self, old, new):
        self.assertIn(old, BUILD)
        return {"src/base/CMakeLists.txt": BUILD.replace(old, new)}

    def testGoodTreePasses(self):
        self.assertSources({})

    def testOwnHeaderSecond(self):
        self.assertSources({"src/base/high.cpp": "#include <string>\n" + own("high")},
                           "src/base/high.cpp:1: [own header]")

    def testNoIncludeAtAll(self):
        self.assertSources({"src/base/high.cpp": "\n"}, "src/base/high.cpp:1: [own header]")

    def testHalfBeginsWithAForeignHeader(self):
        self.assertSources({"src/base/middleLinux.cpp": own("low")},
                           "src/base/middleLinux.cpp:1: [own header]")

    def testHalfBeginsWithASystemHeader(self):
        self.assertSources({"src/base/middleLinux.cpp": "#include <unistd.h>\n" + own("middle")},
                           "src/base/middleLinux.cpp:1: [own header]")

    def testMissingWindowsHalf(self):
        changes = self.changedBuild("    middleWinNT.cpp", "")
        self.assertSources({**changes, "src/base/middleWinNT.cpp": None},
                           "src/base/middleLinux.cpp:1: [halves]")

    def testMissingLinuxHalf(self):
        changes = self.changedBuild("    middleLinux.cpp", "")
        self.assertSources({**changes, "src/base/middleLinux.cpp": None},
                           "src/base/middleWinNT.cpp:1: [halves]")

    def testUnusedOneSidedException(self):
        changes = self.changedBuild("    middleLinux.cpp", "    middleLinux.cpp lowLinux.cpp")
        self.assertSources({**changes, "src/base/lowLinux.cpp": own("low")},
                           "tests/policy/layers.txt:7: [exception]")

    def testPlatformConditions(self):
        conditions = ["#ifdef _WIN32", "#if defined(__linux__)", "  #  ifndef WIN32",
                      "#if 0", "#elif defined(_MSC_VER)", "#if __has_include(<unistd.h>)",
                      "#if 1 && \\", "    defined(__APPLE__)", "#if __unix", "#ifdef __MINGW32__"]
        starts = [f"src/base/high.cpp:{line}: [platform]" for line in (2, 3, 4, 6, 7, 8, 10, 11)]
        self.assertSources({"src/base/high.cpp": own("high", *conditions)}, *starts)

    def testOtherConditionsPass(self):
        conditions = ["#ifdef NDEBUG", "#if ZU_BASE_STATIC", "#if __has_include(<format>)",
                      "// #ifdef _WIN32 is asked elsewhere", "#else // _WIN32", "#endif"]
        self.assertSources({"src/base/high.cpp": own("high", *conditions)})

    def testOneHeaderAsksForThePlatform(self):
        self.assertSources({"src/base/baseApi.h": header("baseApi", "#ifdef _WIN32", "#endif")})

    def testWindowsHeadersOutsideWindowsHalves(self):
        for name in ("windows.h", "Windows.h", "winsock2.h", "process.h", "mmsystem.h"):
            for file in ("src/base/high.cpp", "src/base/middleLinux.cpp"):
                stem = "high" if "high" in file else "middle"
                with self.subTest(name=name, file=file):
                    self.assertSources({file: own(stem, f"#include <{name}>")},
                                       f"{file}:2: [platform]")

    def testPlatformHeaderInAHeader(self):
        self.assertSources({"src/base/low.h": header("low", "#include <windows.h>")},
                           "src/base/low.h:7: [platform]")

    def testPosixHeadersOutsideLinuxHalves(self):
        for name in ("unistd.h", "sys/wait.h", "pthread.h", "dlfcn.h", "linux/futex.h"):
            for file in ("src/base/high.cpp", "src/base/middleWinNT.cpp"):
                stem = "high" if "high" in file else "middle"
                with self.subTest(name=name, file=file):
                    self.assertSources({file: own(stem, f"#include <{name}>")},
                                       f"{file}:2: [platform]")

    def testWrongGuard(self):
        self.assertSources({"src/base/low.h": header("lo")}, "src/base/low.h:1: [guard]")
        self.assertSources({"src/base/middle.imp": header("middle")},
                           "src/base/middle.imp:1: [guard]")

    def testGuardThatDefinesAnotherName(self):
        text = header("low").replace("#define ZU_BASE_LOW_H", "#define ZU_BASE_LOWER_H")
        self.assertSources({"src/base/low.h": text}, "src/base/low.h:1: [guard]")

    def testGuardThatEndsTooEarly(self):
        self.assertSources({"src/base/low.h": header("low") + "int i;\n"},
                           "src/base/low.h:1: [guard]")

    def testHeaderWithoutPurpose(self):
        text = header("low").replace("/// What it is for.\n", "")
        self.assertSources({"src/base/low.h": text}, "src/base/low.h:1: [purpose]")

    def testHeaderWithoutFileComment(self):
        text = header("low").replace("/// @file\n", "")
        self.assertSources({"src/base/low.h": text}, "src/base/low.h:1: [purpose]")

    def testSourceThatTheBuildDoesNotKnow(self):
        self.assertSources(self.changedBuild("    high.cpp", ""), "src/base/high.cpp:1: [lists]")

    def testSourceInAComment(self):
        self.assertSources(self.changedBuild("    high.cpp", "    # high.cpp"),
                           "src/base/high.cpp:1: [lists]")

    def testListedButMissing(self):
        self.assertSources(self.changedBuild("    high.cpp", "    high.cpp\n    gone.cpp"),
                           "src/base/CMakeLists.txt:6: [lists] gone.cpp does not exist")
        lines = self.findings(lambda root: checkSources.check(root, False),
                               self.changedBuild("    high.h", "    high.h\n    gone.h"))
        self.assertIn("src/base/CMakeLists.txt:4: [lists] gone.h does not exist", lines)

    def testListedTwice(self):
        self.assertSources(self.changedBuild("    high.cpp", "    high.cpp high.cpp"),
                           "src/base/CMakeLists.txt:5: [lists]")

    def testHalfInTheListOfTheOtherPlatform(self):
        changes = self.changedBuild("    middleLinux.cpp", "")["src/base/CMakeLists.txt"]
        changes = changes.replace("lowWindows.cpp", "lowWindows.cpp\n    middleLinux.cpp")
        self.assertSources({"src/base/CMakeLists.txt": changes},
                           "src/base/CMakeLists.txt:13: [lists] middleLinux.cpp does not belong")

    def testHalfInTheListOfAllPlatforms(self):
        changes = self.changedBuild("    middleLinux.cpp", "")["src/base/CMakeLists.txt"]
        changes = changes.replace("middle.cpp", "middle.cpp middleLinux.cpp")
        self.assertSources({"src/base/CMakeLists.txt": changes},
                           "src/base/CMakeLists.txt:6: [lists] middleLinux.cpp does not belong")

    def testUmbrellaWithoutAPublicHeader(self):
        self.assertSources(self.changedBuild("    high.h", "    high.h low.h"),
                           "src/base/base.h:1: [umbrella] base/low.h")

    def testUmbrellaThatIsNotPublic(self):
        self.assertSources(self.changedBuild("    base.h\n", ""), "src/base/base.h:1: [public]")

    def testUmbrellaWithAnInternalHeader(self):
        text = header("base", '#include "high.h"', '#include "low.h"')
        self.assertSources({"src/base/base.h": text}, "src/base/base.h:8: [public]")

    def testPublicHeaderThatNeedsAnInternalOne(self):
        self.assertSources({"src/base/high.h": header("high", '#include "low.h"')},
                           "src/base/high.h:7: [public]")

    def testSourceWithoutTests(self):
        self.assertSources({"tests/base/middleTest.cpp": None}, "src/base/middle.cpp:1: [tests]")
        self.assertSources({"tests/base/middleTest.cpp": None,
                            "tests/base/middlePartsTest.cpp": "\n"},
                           "src/base/middle.cpp:1: [tests]")

    def testNamesOfTestsKeepTheCase(self):
        self.assertSources({"tests/base/middleTest.cpp": None, "tests/base/MiddleTest.cpp": "\n"},
                           "src/base/middle.cpp:1: [tests]")

    def testTestsAreRequiredOnRequest(self):
        self.assertFindings(lambda root: checkSources.check(root, False),
                            {"tests/base/middleTest.cpp": None})

    def testSourceNamedLikeAPackageNeedsTests(self):
        changes = self.changedBuild("    high.cpp", "    high.cpp lowInit.cpp")
        self.assertSources({**changes, "src/base/lowInit.h": header("lowInit"),
                            "src/base/lowInit.cpp": own("lowInit")},
                           "src/base/lowInit.cpp:1: [tests]")

    def testText(self):
        for name in ("src/base/high.cpp", "tests/base/middleTest.cpp", "examples/deep/a.cpp"):
            first = own("high") if "src" in name else "\n"
            for bad in ("int\ti;\n", "int i; \n", "int i;\r\n", "// " + 98 * "x" + "\n", "int i;"):
                with self.subTest(name=name, bad=bad):
                    self.assertSources({name: first + bad}, f"{name}:2: [text]")

    def testWideRowsOfTablesPass(self):
        wide = "    /// | " + 100 * "x" + "\n// " + 97 * "x" + "\n"
        self.assertSources({"src/base/high.cpp": own("high") + wide})


class HeadersTest(unittest.TestCase):
    """What checkHeaders says about one header."""

    def findingFor(self, text):
        with tempfile.TemporaryDirectory() as name:
            root = Path(name)
            (root / "src").mkdir()
            (root / "src/a.h").write_text(text, encoding="utf-8")
            return checkHeaders.compileAlone(root, "c++", "c++17", "a.h")

    def testAHeaderThatStandsAlonePasses(self):
        self.assertEqual(self.findingFor("#include <string>\nstd::string text();\n"), "")

    def testWhatLeansOnOthersOrWarnsFails(self):
        for text in ("std::string text();\n", "inline char f(int i) { return i; }\n"):
            with self.subTest(text=text):
                self.assertIn("a.h, c++ -std=c++17:\n", self.findingFor(text))


class SnippetsTest(unittest.TestCase):
    """What checkSnippets says about a document with one snippet of a program."""

    def findingsFor(self, document, program="int i;\n"):
        with tempfile.TemporaryDirectory() as name:
            root = Path(name)
            (root / "docs").mkdir()
            (root / "docs/page.md").write_text(document, encoding="utf-8")
            (root / "a.cpp").write_text(program, encoding="utf-8")
            return checkSnippets.findings(root)

    def testTheProgramItselfPasses(self):
        self.assertEqual(self.findingsFor("Text\n\n<!-- a.cpp -->\n```cpp\nint i;\n```\n"), [])

    def testAnotherTextFails(self):
        for text in ("int j;\n", "int i;\n\n", ""):
            with self.subTest(text=text):
                self.assertEqual(self.findingsFor(f"\n<!-- a.cpp -->\n```cpp\n{text}```\n"),
                                 ["docs/page.md:2: the snippet is not a.cpp"])

    def testAMissingProgramFails(self):
        self.assertEqual(self.findingsFor("<!-- b.cpp -->\n```cpp\nint i;\n```\n"),
                         ["docs/page.md:1: there is no b.cpp"])

    def testNoSnippetAtAllFails(self):
        self.assertEqual(self.findingsFor("Text\n```cpp\nint i;\n```\n"),
                         ["no document has a snippet"])


if __name__ == "__main__":
    unittest.main()
