"""Compares the manual with what the program shows: manualTest.py <zulog> <zulog.md> [<zulog.1>].

The last one is the page that is made of the manual, if the tool for that is there.
"""

import os
import re
import subprocess
import sys
import unittest

MADE = sys.argv.pop(3) if len(sys.argv) > 3 else ""
PAGE = open(sys.argv.pop(2), encoding="utf-8").read()
ZULOG = sys.argv.pop(1)


def help_of(*command):
    return subprocess.run([ZULOG, *command, "--help"], check=True, stdout=subprocess.PIPE,
                          text=True).stdout


# The names below "Subcommands:", each of which begins a line.
def commands_in(text):
    part = text.partition("Subcommands:\n")[2].partition("\n\n")[0]
    return re.findall(r"^  (\w+)", part, re.MULTILINE)


def options_in(text):
    return set(re.findall(r"^  (?:-\w,)?(--[a-z-]+)", text, re.MULTILINE))


# The parts of the page by their headings.
def sections():
    parts = re.split(r"^#+ (.*)$", PAGE, flags=re.MULTILINE)
    return dict(zip(parts[1::2], parts[2::2]))


def options_of(text):
    return set(re.findall(r"`(--[a-z-]+)", text))


class Manual(unittest.TestCase):
    def test_has_a_section_for_each_command_and_no_other(self):
        headings = [heading.split()[1] for heading in sections() if heading.startswith("zulog ")]
        self.assertEqual(sorted(headings), sorted(commands_in(help_of())))
        recover = next(heading for heading in sections() if heading.startswith("zulog recover "))
        self.assertEqual(sorted(recover.split()[2].split("|")),
                         sorted(commands_in(help_of("recover"))))

    def test_has_each_option_of_each_command_and_no_other(self):
        parts = sections()
        shared = {"form": options_of(parts["Options of form"]),
                  "filters": options_of(parts["Filters"])}
        for heading, text in parts.items():
            if not heading.startswith("zulog "):
                continue
            command = heading.split()[1]
            known = options_of(text)
            for words, name in (("options of form", "form"), ("the filters", "filters")):
                if words in " ".join(text.split()):
                    known |= shared[name]
            if f"`{command}`" in parts["Options of form"]:
                known.add("--rotated")
            commands = [[command]]
            if command == "recover":
                commands = [[command, each] for each in commands_in(help_of("recover"))]
            shown = set().union(*(options_in(help_of(*each)) for each in commands)) - {"--help"}
            with self.subTest(command=command):
                self.assertEqual(sorted(known), sorted(shown))

    def test_has_the_options_of_the_program_itself(self):
        shown = set(re.findall(r"--[a-z-]+", sections()["Synopsis"]))
        self.assertEqual(shown, options_in(help_of()))

    def test_has_the_values_of_options_that_have_a_fixed_set(self):
        parts = sections()
        for command, heading in (("show", "Options of form"), ("stats", "zulog stats FILE...")):
            shown = re.findall(r"^  (--\w+) \w+:\{([\w,]+)\}", help_of(command), re.MULTILINE)
            self.assertTrue(shown)
            for option, values in shown:
                self.assertIn(f"`{option} {values.replace(',', '|')}`", parts[heading])

    def test_is_made_into_a_page_with_all_of_it(self):
        if not os.path.exists(MADE):
            self.skipTest("lowdown is missing, so there is no page for man")
        with open(MADE, encoding="utf-8") as file:
            page = file.read()
        self.assertIn('.TH "ZULOG" "1"', page)
        text = page.replace("\\-", "-")
        self.assertEqual(options_of(PAGE), set(re.findall(r"\\fC(--[a-z-]+)", text)))
        for heading in sections():
            if heading != "zulog":
                self.assertIn("\n" + heading + "\n", text)


unittest.main()
