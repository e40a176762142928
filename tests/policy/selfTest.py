"""Shows that the checks pass a good tree and fail on each kind of bad one."""

import sys
import tempfile
import unittest
from pathlib import Path

import checkHeaders
import checkLayers
import checkSnippets
import checkSources
import checkSymbols

sys.path.append(str(Path(__file__).parent.parent))
import lines

TABLE = """\
0 low         internal  h Windows            - : only Windows has it
1 middle      internal  h imp cpp Linux WinNT tested
1 middleParts internal  h                    - of middle : they are one thing
2 high        public    h cpp                tested
2 highInit    internal  cpp                  -
5 base        public    h                    -
"""


def header(name, *includes, kind="H"):
    guard = f"ZU_BASE_{name.upper()}_{kind}"
    return "\n".join(["/// @file", "/// What it is for.", "", f"#ifndef {guard}",
                      f"#define {guard}", "", *includes, "", "#endif", ""])


def changedTable(old, new):
    assert old in TABLE, old
    return {"src/components.txt": TABLE.replace(old, new)}


def withException(text):
    return {"src/components.txt": f"{TABLE}upward: {text}\n"}


def own(name, *more):
    return "\n".join([f'#include "base/{name}.h"', *more, ""])


GOOD = {
    "src/components.txt": TABLE,
    "tests/base/CMakeLists.txt": "zu_components(base)\n",
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

    def testGoodTreePasses(self):
        self.assertLayers({})

    def testFileWithoutPlace(self):
        self.assertLayers({"src/base/other.h": header("other")}, "src/base/other.h:1: [table]")
        self.assertLayers({"src/base/high.imp": header("high", kind="IMP")},
                          "src/base/high.imp:1: [table]")
        self.assertLayers({"src/base/lowLinux.cpp": own("low")},
                          "src/base/lowLinux.cpp:1: [table]")

    def testPlaceWithoutFile(self):
        self.assertLayers(changedTable("2 high  ", "2 gone        internal  h -\n2 high  "),
                          "src/components.txt:4: [table] there is no src/base/gone.h")
        self.assertLayers({"src/base/middleLinux.cpp": None},
                          "src/components.txt:2: [table] there is no src/base/middleLinux.cpp")

    def testWhatIsNoRow(self):
        for old, new in (("2 high  ", "2 high  secret"), ("tested\n1", "testing\n1"),
                         ("5 base  ", "base   ")):
            with self.subTest(new=new):
                lines = self.findings(checkLayers.check, changedTable(old, new))
                self.assertIn("[table] not a row of the table: ", "".join(lines))

    def testKindThatNobodyKnows(self):
        self.assertLayers(changedTable("h imp cpp", "h imp cpp cxx"),
                          "src/components.txt:2: [table] cxx is no kind of file")

    def testGroupWithoutWhole(self):
        self.assertLayers(changedTable("of middle", "of muddle"),
                          "src/base/middle.cpp:2: [circle]",
                          "src/components.txt:3: [table] muddle is no component")

    def testGroupOnTwoLevels(self):
        lines = self.findings(checkLayers.check, changedTable("of middle", "of high"))
        self.assertIn("src/components.txt:3: [table] high is on another level", lines)

    def testGroupWithoutReason(self):
        self.assertLayers(changedTable(" of middle : they are one thing", " of middle"),
                          "src/components.txt:3: [table] belonging")

    def testReasonForNothing(self):
        self.assertLayers(changedTable("cpp                tested", "cpp tested : why"),
                          "src/components.txt:4: [table] the reason")

    def testHalfWithoutCounterpart(self):
        self.assertLayers(changedTable(" : only Windows has it", ""),
                          "src/components.txt:1: [table] a half")

    def testRowsOutOfOrder(self):
        table = TABLE.splitlines(keepends=True)
        table[3], table[4] = table[4], table[3]
        self.assertLayers({"src/components.txt": "".join(table)},
                          "src/components.txt:5: [table] rows are sorted")

    def testNameInTwoRows(self):
        self.assertLayers(changedTable("5 base", "3 high        internal  h -\n5 base"),
                          "src/components.txt:6: [table] high stands in two rows")

    def testUpwardInclude(self):
        self.assertLayers({"src/base/low.h": header("low", '#include "high.h"'),
                           "src/base/high.cpp": own("high")}, "src/base/low.h:7: [upward]")

    def testUpwardIncludeOfAHalf(self):
        self.assertLayers({"src/base/lowWindows.cpp": own("low", '#include "base/high.h"'),
                           "src/base/high.cpp": own("high")},
                          "src/base/lowWindows.cpp:2: [upward]")

    def testStatedUpwardIncludePasses(self):
        changes = withException("low -> high : a reason")
        changes["src/base/low.h"] = header("low", '#include "high.h"')
        self.assertLayers({**changes, "src/base/high.cpp": own("high")})

    def testExceptionWithoutReason(self):
        self.assertLayers(withException("low -> high"),
                          "src/components.txt:7: [table]")

    def testUnusedException(self):
        self.assertLayers(withException("low -> high : why"),
                          "src/components.txt:7: [exception]")

    def testDownwardIncludeIsNoException(self):
        self.assertLayers(withException("high -> middle : why"),
                          "src/components.txt:7: [exception]")

    def testCircleOfTwo(self):
        changes = changedTable(" of middle : they are one thing", "")
        self.assertLayers(changes, "src/base/middle.cpp:2: [circle] middle -> middleParts")

    def testCircleOfThreeByWayOfAnException(self):
        changes = withException("low -> high : a reason")
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
        changes = {"src/components.txt": TABLE + "6 kit         internal  h                    -\n"}
        self.assertLayers({**changes, "src/app/kit.h": '#include "../base/high.h"\n'})

    def testKitBelowItsLevel(self):
        changes = {"src/components.txt": TABLE + "5 kit         internal  h                    -\n"}
        self.assertLayers({**changes, "src/app/kit.h": "\n"}, "src/app/kit.h:1: [table]",
                          "src/components.txt:7: [table] there is no src/base/kit.h")

    def testLibraryOnTheLevelOfTheKit(self):
        self.assertLayers(changedTable("5 base  ", "6 base  "), "src/base/base.h:1: [table]",
                          "src/components.txt:6: [table] there is no src/app/base.h")


class Symbols(PolicyTest):
    """Rows of symbols are object, symbol, kind; U is needed, T and D are defined."""

    def assertSymbols(self, symbols, *starts, changes={}):
        rows = [symbol.split() for symbol in symbols]
        self.assertFindings(lambda root: checkSymbols.check(root, rows), changes, *starts)

    def testDownwardNeedsPass(self):
        self.assertSymbols(["high f U", "middle f T", "middle g U", "lowWindows g T"])

    def testUpwardNeed(self):
        self.assertSymbols(["middle f U", "high f T"],
                           "src/components.txt:2: [upward symbol] middle needs f of high")

    def testUpwardNeedOfAHalf(self):
        self.assertSymbols(["middleWinNT f U", "high f D"],
                           "src/components.txt:2: [upward symbol] middle needs f of high")

    def testStatedUpwardNeedPasses(self):
        self.assertSymbols(["middle f U", "high f T"],
                           changes=withException("middle -> high : it has to"))

    def testWhatSeveralObjectsDefineIsNobodys(self):
        self.assertSymbols(["middle f U", "high f W", "lowWindows f W"])

    def testNeedOfTheSystemPasses(self):
        self.assertSymbols(["high memcpy U"])

    def testCircleOnOneLevel(self):
        table = TABLE.replace(" of middle : they are one thing", "").replace(
            "middleParts internal  h    ", "middleParts internal  h cpp")
        self.assertSymbols(["middle f U", "middleParts f T", "middleParts g U", "middle g T"],
                           "src/components.txt:2: [circle of symbols] middle -> middleParts -> ",
                           changes={"src/components.txt": table,
                                    "src/base/middleParts.cpp": own("middleParts")})

    def testPartsOfOneComponentMayNeedEachOther(self):
        self.assertSymbols(["middle f U", "middleLinux f T", "middleLinux g U", "middle g T"])


class Sources(PolicyTest):
    def assertSources(self, changes, *starts):
        self.assertFindings(lambda root: checkSources.check(root, True), changes, *starts)

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

    def testSystemErrorRaisedByHand(self):
        statement = "void f() { throw ExSysErrorWindows(__FILE__, __LINE__); }"
        self.assertSources({"src/base/high.cpp": own("high", statement)},
                           "src/base/high.cpp:2: [raising]")

    def testSourceOfRandomNumbersThatIsNotJudged(self):
        headers = {"src/base/high.h": header(
            "high", "template <class T> class ZU_BASE_VISIBLE RnNewRng : public RnRng<T>")}
        self.assertSources(headers, "src/base/high.h:7: [random source]")
        known = {"tests/base/rnDrawTest.cpp": "EXPECT_TRUE(Zu::rnDrawsAlike(RnNewRng<T>(1)));\n",
                 "tests/base/CMakeLists.txt": "zu_components(base)\nrnDrawTest.cpp\n"}
        self.assertSources({**headers, **known})

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

    def testUmbrellaWithoutAPublicHeader(self):
        self.assertSources(changedTable("low         internal", "low         public  "),
                           'src/base/base.h:1: [umbrella] #include "low.h" is missing')

    def testUmbrellaWithoutWhatOnePlatformHas(self):
        self.assertSources(changedTable("low         internal", "low         public-on-Windows"))

    def testUmbrellaThatIsNotPublic(self):
        self.assertSources(changedTable("base        public  ", "base        internal"),
                           "src/base/base.h:1: [public]")

    def testUmbrellaWithAnInternalHeader(self):
        text = header("base", '#include "high.h"', '#include "low.h"')
        self.assertSources({"src/base/base.h": text}, "src/base/base.h:8: [public]")

    def testPublicHeaderThatNeedsAnInternalOne(self):
        self.assertSources({"src/base/high.h": header("high", '#include "low.h"')},
                           "src/base/high.h:7: [public]")

    def testSourceWithoutTests(self):
        self.assertSources({"tests/base/middleTest.cpp": None},
                           "src/components.txt:2: [tests] there is no tests/base/middleTest.cpp")
        self.assertSources({**changedTable("WinNT tested", "WinNT -"),
                            "tests/base/middleTest.cpp": None},
                           "src/components.txt:2: [tests] middle has no tests")

    def testNamesOfTestsKeepTheCase(self):
        self.assertSources({"tests/base/middleTest.cpp": None, "tests/base/MiddleTest.cpp": "\n"},
                           "src/components.txt:2: [tests]",
                           "tests/base/MiddleTest.cpp:1: [tests]")

    def testTestThatNobodyBuilds(self):
        more = {"tests/base/moreTest.cpp": "\n"}
        self.assertSources(more, "tests/base/moreTest.cpp:1: [tests]")
        self.assertSources({**more, "tests/base/CMakeLists.txt": "# moreTest.cpp\n"},
                           "tests/base/moreTest.cpp:1: [tests]")
        self.assertSources({**more, "tests/base/CMakeLists.txt": "add(moreTest.cpp)\n"})

    def testTestsAreRequiredOnRequest(self):
        self.assertFindings(lambda root: checkSources.check(root, False),
                            {"tests/base/middleTest.cpp": None})

    def testSourceNamedLikeAPackageNeedsTests(self):
        changes = changedTable("5 base  ", "2 lowInit     internal  h cpp -\n5 base  ")
        self.assertSources({**changes, "src/base/lowInit.h": header("lowInit"),
                            "src/base/lowInit.cpp": own("lowInit")},
                           "src/components.txt:6: [tests]")

    def testText(self):
        for name in ("src/base/high.cpp", "tests/base/middleTest.cpp", "examples/deep/a.cpp"):
            first = own("high") if "src" in name else "\n"
            for bad in ("int\ti;\n", "int i; \n", "int i;\r\n", "// " + 98 * "x" + "\n", "int i;"):
                with self.subTest(name=name, bad=bad):
                    self.assertSources({name: first + bad}, f"{name}:2: [text]")

    def testWideRowsOfTablesPass(self):
        wide = "    /// | " + 100 * "x" + "\n// " + 97 * "x" + "\n"
        self.assertSources({"src/base/high.cpp": own("high") + wide})


class LinesTest(unittest.TestCase):
    """Rows of files are name, lines, lines that were run."""

    def report(self, rows, lowest=97):
        files = [{"filename": name, "summary": {"lines": {"count": count, "covered": covered}}}
                 for name, count, covered in rows]
        return lines.report({"data": [{"files": files}]}, lowest)

    def testEnoughLines(self):
        rows = [("build/asan/src/base/a.cpp", 90, 90), ("src/app/b.h", 10, 7)]
        text, isEnough = self.report(rows)
        self.assertEqual(text, "lines: 97.0% (97 out of 100)")
        self.assertTrue(isEnough)

    def testTooFewLines(self):
        text, isEnough = self.report([("src/base/a.cpp", 90, 90), ("src/app/b.h", 10, 6)])
        self.assertIn("4 lines left in src/app/b.h", text)
        self.assertFalse(isEnough)

    def testWhatIsNotPortableDoesNotCount(self):
        text, _ = self.report([("src/base/a.cpp", 10, 10), ("src/base/aLinux.cpp", 10, 0),
                               ("src/base/aWinNT.cpp", 10, 0), ("tests/base/aTest.cpp", 10, 0),
                               ("/usr/include/c++/12/vector", 10, 0)])
        self.assertEqual(text, "lines: 100.0% (10 out of 10)")

    def testNothingCountedIsAnError(self):
        self.assertFalse(self.report([("tests/base/aTest.cpp", 10, 10)])[1])


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
