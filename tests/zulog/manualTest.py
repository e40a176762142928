"""Compares the manual with what the program shows: manualTest.py <zulog> <zulog.md>."""

import re
import subprocess
import sys
import unittest

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


unittest.main()
