"""Shows that random changes are drawn where they belong, and judged for what they are."""

import tempfile
import unittest
from pathlib import Path

import randomMutation
import tokens


class TokensTest(unittest.TestCase):
    def assertChanges(self, line, *expected):
        self.assertEqual(sorted(tokens.changes(line)), sorted(expected))

    def testOperatorsAreExchanged(self):
        self.assertChanges("    return a == b;", "    return a != b;")
        self.assertChanges("    return a < b;", "    return a <= b;", "    return a >= b;")
        self.assertChanges("    x = a && b;", "    x = a || b;", "    ;")
        self.assertChanges("    x += a;", "    x -= a;", "    ;")
        self.assertChanges("    const T x = a << b;", "    const T x = a >> b;")
        self.assertChanges("    const T x = a -", "    const T x = a +")

    def testConditionsAreNegated(self):
        self.assertChanges("    if (f(a)) return;", "    if (!(f(a))) return;")
        self.assertChanges("    while (!a) g();", "    while (a) g();", "    while (!(!a)) g();")
        self.assertChanges("    if (a)", "    if (!(a))")
        # A condition that goes on in the next line is none that could be closed here.
        self.assertChanges("    if (f(a,")

    def testConstantsAreOtherOnes(self):
        self.assertChanges("    return 8;", "    return 9;", "    return 7;")
        self.assertChanges("    return 0;", "    return 1;")
        self.assertChanges("    return 0x1fU;", "    return 0x20U;")
        self.assertChanges("    return 1'000U;", "    return 1001U;", "    return 999U;")
        self.assertChanges("    return 1.5;", "    return 2.5;")
        self.assertChanges("    return 1e300;")
        self.assertChanges("    return true;", "    return false;")
        self.assertChanges("    return std::min(a, b);", "    return std::max(a, b);")
        self.assertChanges("    return x1 + y.z2;", "    return x1 - y.z2;")

    def testStatementsAreDropped(self):
        self.assertChanges("    _files.clear();", "    ;")
        self.assertChanges("    _a = b;", "    ;")
        self.assertChanges("    ++_count;", "    --_count;", "    ;")
        self.assertChanges("        break;", "        ;")
        self.assertChanges("    const T a = b;")
        self.assertChanges("    return;")
        self.assertChanges("    return f(a);")

    def testTextsAndCommentsStayAsTheyAre(self):
        self.assertChanges('    f("a == 1 && b", \'<\'); // x < 2', "    ; // x < 2")
        self.assertChanges("/// Between 1 and 5, or a == b.")
        self.assertChanges('    os << "a" << b;')

    def testWhatIsForTheCompilerAloneStaysAsItIs(self):
        for line in ("#if A == 1", "static_assert(a == 1);", "template <int N = 3> class A;",
                     "bool operator==(const A&) const = default;", "[[gnu::format(printf, 5, 6)]]",
                     "    virtual void f() = 0;",
                     "    std::vector<int> f(const T& a, T* b, T&& c)"):
            self.assertChanges(line)
        text = "#define A(b) \\\n    if (b == 1) \\\n    c(2)\nint d = 3;\n"
        self.assertEqual([number for number, _ in tokens.changeableLines(text)], [4])


class ListTest(unittest.TestCase):
    SOURCE = "int a = 1;\nint b = 2;\n"

    def findings(self, text):
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            (root / "src").mkdir()
            (root / "src" / "a.cpp").write_text(self.SOURCE, encoding="utf-8")
            path = root / "list.txt"
            path.write_text(text, encoding="utf-8")
            return [line.split(": ", 1)[1] for line in randomMutation.checkExplained(root, path)]

    def entry(self, file="src/a.cpp", line="int a = 1;", changed="int a = 2;", why="because so\n"):
        return f"# a comment\n\n{file}\n- {line}\n+ {changed}\n{why}\n"

    def testAnEntryThatFitsIsTaken(self):
        self.assertEqual(self.findings(""), [])
        self.assertEqual(self.findings(self.entry()), [])
        self.assertEqual(self.findings(self.entry(why="because so\nand so\n")), [])
        self.assertEqual(self.findings(self.entry() + self.entry(changed="int a = 0;")), [])

    def testWhatDoesNotFitIsSaid(self):
        self.assertEqual(self.findings(self.entry(why="")), ["not an entry"])
        self.assertEqual(self.findings(self.entry(why="so\n")), ["not an entry"])
        self.assertEqual(self.findings(self.entry(file="src/b.cpp")), ["there is no src/b.cpp"])
        self.assertEqual(self.findings(self.entry(line="int a = 7;")),
                         ["src/a.cpp has no line: int a = 7;"])
        self.assertEqual(self.findings(self.entry(changed="int a = 5;")),
                         ["is not drawn: int a = 5;"])
        self.assertEqual(self.findings(self.entry() + self.entry()), ["stands there twice"])


class DrawTest(unittest.TestCase):
    def drawn(self, seed, words=()):
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            for name in ("a.cpp", "b.h", "cLinux.cpp", "dWindows.cpp", "eWinNT.cpp", "f.imp"):
                path = root / "src" / name
                path.parent.mkdir(exist_ok=True)
                path.write_text("".join(f"int a{i} = {i};\n" for i in range(1, 6)),
                                encoding="utf-8")
            return [(place.file, place.number, place.changed)
                    for place in randomMutation.draw(root, seed, words)]

    def testASeedDrawsTheSamePlacesAgain(self):
        self.assertEqual(self.drawn(1), self.drawn(1))
        self.assertNotEqual(self.drawn(1), self.drawn(2))

    def testEveryLineOfThisPlatformIsDrawnOnce(self):
        places = self.drawn(1)
        self.assertEqual(sorted(place[:2] for place in places),
                         [(f"src/{name}", number) for name in ("a.cpp", "b.h", "cLinux.cpp",
                                                               "f.imp")
                          for number in range(1, 6)])

    def testWordsChooseFiles(self):
        self.assertEqual({place[0] for place in self.drawn(1, ["LINUX", "b.h"])},
                         {"src/cLinux.cpp", "src/b.h"})


class FakeTree:
    """A component with a source, a header, a test source, and somebody who includes the header."""

    dependents = {"src/base/a.cpp": {"CMakeFiles/ZUbase.dir/a.cpp.o"},
                  "src/base/a.h": {"CMakeFiles/ZUbase.dir/a.cpp.o", "CMakeFiles/ZUbase.dir/z.cpp.o",
                                   "CMakeFiles/baseTest.dir/aTest.cpp.o"}}
    compiles = {made: [] for made in dependents["src/base/a.h"]} | {
        "CMakeFiles/ZUbase.dir/a.cpp.o": []}

    def objectsOf(self, source):
        return ["CMakeFiles/ZUbase.dir/a.cpp.o"]

    def ownFilters(self, stem):
        return {"baseTest": "A.*"} if stem == "a" else {}


class FakeCall:
    def __init__(self, code=0, output=""):
        self.code, self.output = code, output


class FakeWorker:
    """Answers as it is told, and notes down what is asked of it."""

    isGuarded = False

    def __init__(self, folder, answers=(), refused=None):
        self.folder, self.answers, self.refused = folder, dict(answers), refused
        self.compiled, self.ran, self.texts = [], [], []

    def forget(self):
        pass

    def compileAll(self, objects):
        self.texts.append((self.folder / "src/base/a.h").read_text(encoding="utf-8"))
        self.compiled.append(sorted(objects))
        return self.refused

    def linkShared(self):
        return None

    def link(self, program):
        return None

    def run(self, program, chosen, limit):
        self.ran.append((program, chosen))
        return self.answers.get((program, chosen), FakeCall())


class JudgeTest(unittest.TestCase):
    TEXT = "int a = 1;\nint b = 2;\n"

    def judged(self, name="a.cpp", **told):
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            (root / "src/base").mkdir(parents=True)
            for each in ("a.cpp", "a.h"):
                (root / "src/base" / each).write_text(self.TEXT, encoding="utf-8")
            for each in ("bin", "lib"):
                (root / each).mkdir()
            worker = FakeWorker(root, **told)
            times = dict.fromkeys(randomMutation.PROGRAMS, 1.0)
            judge = randomMutation.Judge(FakeTree(), times)
            place = randomMutation.Place(f"src/base/{name}", 2, "int b = 2;", "int b = 3;")
            verdict, detail = judge.judge(worker, place)
            self.assertEqual((root / "src/base" / name).read_text(encoding="utf-8"), self.TEXT)
            return verdict, detail, worker

    def testTheOwnSuitesComeFirstAndMaySuffice(self):
        failed = FakeCall(1, "[ RUN      ] A.B\n[  FAILED  ] A.B (0 ms)\n")
        verdict, detail, worker = self.judged(answers={("baseTest", "A.*"): failed})
        self.assertEqual((verdict, detail), ("noticed", "A.B"))
        self.assertEqual(worker.ran, [("baseTest", "A.*")])

    def testThenAllOthersAreAsked(self):
        crashed = FakeCall(-6, "[ RUN      ] C.D\n")
        verdict, detail, worker = self.judged(answers={("appTest", "*"): crashed})
        self.assertEqual((verdict, detail), ("noticed", "appTest ends with -6: C.D"))
        verdict, _, worker = self.judged()
        self.assertEqual(verdict, "unnoticed")
        self.assertEqual({program for program, chosen in worker.ran if chosen == "*"},
                         set(randomMutation.PROGRAMS))

    def testAHangIsNoticed(self):
        verdict, _, _ = self.judged(answers={("baseTest", "A.*"): FakeCall(None)})
        self.assertEqual(verdict, "noticed")

    def testWhatDoesNotCompileIsNoVerdictUnlessAnAssertionSaysSo(self):
        refused = FakeCall(1, "a.cpp:2: error: no\n")
        self.assertEqual(self.judged(refused=refused)[0], "does not compile")
        refused = FakeCall(1, "a.cpp:2: error: static assertion failed\n")
        self.assertEqual(self.judged(refused=refused)[0], "noticed")

    def testOfAHeaderFirstTheOwnPartsAreBuiltAndThenAll(self):
        failed = FakeCall(1, "[  FAILED  ] A.B\n")
        own = ["CMakeFiles/ZUbase.dir/a.cpp.o", "CMakeFiles/baseTest.dir/aTest.cpp.o"]
        _, _, worker = self.judged("a.h", answers={("baseTest", "A.*"): failed})
        self.assertEqual(worker.compiled, [own])
        self.assertEqual(worker.texts, ["int a = 1;\nint b = 3;\n"])
        verdict, _, worker = self.judged("a.h")
        self.assertEqual(verdict, "unnoticed")
        self.assertEqual(worker.compiled, [own, sorted(own + ["CMakeFiles/ZUbase.dir/z.cpp.o"])])


if __name__ == "__main__":
    unittest.main()
