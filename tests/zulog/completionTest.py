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
    # One process, and changes, of which nothing is known.
    (["zulog", "level", ""], ["4711", "4712"]),
    (["zulog", "level", "--reset", "47"], ["4711", "4712"]),
    (["zulog", "level", "4711", ""], []),
    (["zulog", "level", "--reset", "4711", ""], []),
    (["zulog", "level", "4711", "Database", "=", ""], []),
    (["zulog", "level", "--mappings", "b.log", ""], ["4711", "4712"]),
    (["zulog", "level", "--mappings", "=", "b.log", ""], ["4711", "4712"]),
    (["zulog", "level", "--mappings", "b.log", "4711", ""], []),
    (["zulog", "level", "4711", "--mappings", "b"], ["b.log"]),
    (["zulog", "level", "4711", "--r"], ["--reset"]),
    (["zulog", "ps", "4711", ""], ["4711", "4712"]),
    (["zulog", "completion", ""], ["bash"]),
    (["zulog", "completion", "bash", ""], []),
]


class Completion(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.directory = tempfile.mkdtemp()
        for name in ("a.log", "a b.log", "b.log", "star*.log", "starred.log"):
            open(os.path.join(cls.directory, name), "w", encoding="utf-8").close()
        # The completion asks it for processes.
        programs = os.path.join(cls.directory, ".programs")
        os.mkdir(programs)
        with open(os.path.join(programs, "zulog"), "w", encoding="utf-8") as file:
            file.write("#!/bin/sh\n"
                       "[ \"$*\" = ps ] && printf 'PROCESS PROGRAM\\n4711 a\\n4712 b\\n'\n")
        os.chmod(file.name, 0o755)
        cls.environment = {**os.environ, "PATH": programs + ":" + os.environ["PATH"]}
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
                                cwd=self.directory, env=self.environment,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
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
