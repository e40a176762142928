"""Completes command lines of zulog in a real bash: completionTest.py <zulog>."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

ZULOG = os.path.abspath(sys.argv.pop(1))

# The words so far, of which the last one is completed, and what comes. "=" is a word of its own.
ROWS = [
    (["zulog", "st"], ["stats"]),
    (["zulog", "zz"], []),
    (["zulog", "sh"], ["ship", "show"]),
    (["zulog", "--v"], ["--version"]),
    (["zulog", "recover", ""], ["list", "show", "write", "remove"]),
    (["zulog", "show", "--fo"], ["--format"]),
    (["zulog", "show", "--format", ""], ["text", "iso", "json", "csv", "logfmt"]),
    (["zulog", "show", "--format", "=", "j"], ["json"]),
    (["zulog", "show", "--format", "="], ["text", "iso", "json", "csv", "logfmt"]),
    (["zulog", "stats", "--format", ""], ["text", "json"]),
    (["zulog", "follow", "--level", "I"], ["Internal\\ Error", "Informational"]),
    (["zulog", "show", "--match", "a"], []),
    (["zulog", "show", "a"], ["a.log", "a b.log"]),
    (["zulog", "show", "star*"], ["star*.log"]),
    (["zulog", "show", "--utc", "a.log", "b"], ["b.log"]),
    (["zulog", "html", "--output", "b"], ["b.log"]),
    (["zulog", "recover", "list", "--l"], ["--logs"]),
    (["zulog", "recover", "write", "b"], ["b.log"]),
    (["zulog", "level", "--r"], ["--reset"]),
    (["zulog", "completion", ""], ["bash"]),
]


class Completion(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.directory = tempfile.mkdtemp()
        for name in ("a.log", "a b.log", "b.log", "star*.log", "starred.log"):
            open(os.path.join(cls.directory, name), "w", encoding="utf-8").close()
        cls.script = os.path.join(cls.directory, ".script")
        with open(cls.script, "wb") as file:
            file.write(subprocess.run([ZULOG, "completion", "bash"], check=True,
                                      stdout=subprocess.PIPE).stdout)

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.directory)

    def complete(self, words):
        program = ('source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _zulog; '
                   '[ ${#COMPREPLY[@]} -eq 0 ] || printf "%s\\n" "${COMPREPLY[@]}"')
        result = subprocess.run(["bash", "-c", program, "bash", self.script, *words], check=True,
                                cwd=self.directory, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, text=True)
        self.assertEqual(result.stderr, "")
        return result.stdout.splitlines()

    def test_table(self):
        for words, expected in ROWS:
            with self.subTest(words=words):
                self.assertEqual(sorted(self.complete(words)), sorted(expected))

    def test_every_option_that_the_help_shows_is_completed(self):
        for command in (["show"], ["follow"], ["stats"], ["html"], ["ps"], ["level"],
                        ["recover", "list"]):
            page = subprocess.run([ZULOG, *command, "--help"], check=True, stdout=subprocess.PIPE,
                                  text=True).stdout
            options = sorted({word.split(",")[-1] for line in page.splitlines()
                              for word in line.split()[:1] if word.startswith("-")})
            with self.subTest(command=command):
                self.assertEqual(sorted(self.complete(["zulog", *command, "--"])), options)

    def test_is_registered(self):
        result = subprocess.run(["bash", "-c", 'source "$1"; complete -p zulog', "bash",
                                 self.script], check=True, stdout=subprocess.PIPE, text=True)
        self.assertEqual(result.stdout, "complete -F _zulog zulog\n")


unittest.main()
