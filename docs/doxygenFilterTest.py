"""Shows what the filter of the reference takes out, and that it leaves the rest."""

import unittest

from doxygenFilter import filtered


class FilterTest(unittest.TestCase):
    def check(self, text, expected):
        result = filtered(text)
        self.assertEqual(result, expected)
        self.assertEqual(result.count("\n"), text.count("\n"))

    def testSpecialMembersAreGone(self):
        self.check("public:\n    A(const A&) = delete;\n"
                   "    A& operator=(\n        A&&) = default;\n    virtual ~A();\n"
                   "    ~A() override;\n    int get() const;\n",
                   "public:\n\n\n\n\n\n    int get() const;\n")

    def testWithACommentTheyStay(self):
        text = ("    /// 0.\n    A() = default;\n    /// Waits.\n    ~A();\n"
                "    ~B() noexcept(false);\n")
        self.check(text, text)

    def testExceptionsGetACommonWord(self):
        self.check("    Ex(const char* file, int line);\n"
                   "    const char* what() const noexcept override;\n",
                   "    Ex(const char* file, int line); "
                   "///< For the place of the raise: `__FILE__` and `__LINE__`.\n"
                   "    const char* what() const noexcept override; "
                   "///< The reason, for handlers of standard exceptions.\n")
        text = ("    /// One.\n    Ex(const char* file, int line);\n"
                "    Ex(const char* file, int line, int x);\n")
        self.check(text, text)

    def testMembersOfAGroupShareTheComment(self):
        self.check("    /// @{\n    /// Text\n    /// on.\n    int a(int x,\n          int y);\n"
                   "    int b()\n    {\n        return 1;\n    }\n\n    /// Own.\n    int c();\n"
                   "    template <class T>\n    int d() {}\n    /// @}\n    int e();\n",
                   "\n    /// Text\n    /// on.\n    int a(int x,\n          int y);\n"
                   "/** Text on. */     int b()\n    {\n        return 1;\n    }\n\n    /// Own.\n"
                   "    int c();\n/** Text on. */     template <class T>\n    int d() {}\n\n"
                   "    int e();\n")
        self.check("/// @{\n/// Text.\n#define A 1\n#define B 2\n#define C 3\n/// @}\n",
                   "\n/// Text.\n#define A 1\n#define B 2 ///< Text.\n#define C 3 ///< Text.\n\n")

    def testHashesStandInANamespace(self):
        self.check("/// Text.\ntemplate <> struct std::hash<A>\n{\n    int x;\n};\n",
                   "namespace std { /// Text.\ntemplate <> struct hash<A>\n{\n    int x;\n}; }\n")


if __name__ == "__main__":
    unittest.main()
