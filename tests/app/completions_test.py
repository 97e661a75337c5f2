#!/usr/bin/env python3
"""Completions and manual pages, made from the built program, and installed.
Usage: completions_test.py SOURCES PROGRAM CMAKE BUILD_DIR
"""

import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SOURCES, PROGRAM, CMAKE, BUILD = Path(sys.argv[1]), *sys.argv[2:5]


def output_of(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def verbs():
    return re.findall(r"^  ([a-z]+) ", output_of(PROGRAM, "--help").partition("Subcommands:")[2], re.MULTILINE)


class InFolder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)


class Completions(InFolder):
    def setUp(self):
        super().setUp()
        output_of(sys.executable, "-B", SOURCES / "scripts/make-completions", PROGRAM, self.folder)

    def completed_by_bash(self, *words):
        script = f'source "{self.folder}/tavmap.bash"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _tavmap; ' \
                 'printf "%s\\n" "${COMPREPLY[@]}"'
        return output_of("bash", "-c", script, "bash", "tavmap", *words).split()

    def test_bash_completes_verbs_and_their_options(self):
        self.assertEqual(self.completed_by_bash("bi"), ["bids"])
        self.assertEqual(self.completed_by_bash(""), verbs() + ["--help", "--version"])
        self.assertEqual(self.completed_by_bash("run", "--jo"), ["--jobs"])
        self.assertEqual(self.completed_by_bash("bids", "a", "--participant"),
                         ["--participant-label", "--participant_label"])
        self.assertEqual(self.completed_by_bash("convert", "--ty"), ["--type"])
        self.assertEqual(self.completed_by_bash("run", "stud"), [])  # files then, as bash itself completes them

    def test_every_option_of_the_help_is_completed_everywhere(self):
        zsh, fish = (self.folder / "_tavmap").read_text(), (self.folder / "tavmap.fish").read_text()
        for verb in verbs():
            listed = re.findall(r"^ +(-\S+)", output_of(PROGRAM, verb, "--help").partition("Options:")[2]
                                .partition("\nExample")[0], re.MULTILINE)
            options = {name for names in listed for name in names.split(",") if name.startswith("--")}
            self.assertGreater(len(options), 1, verb)
            self.assertLessEqual(options, set(self.completed_by_bash(verb, "--")), verb)
            of_fish = "".join(line for line in fish.split("\n") if f"from {verb}'" in line)
            for option in options:
                self.assertRegex(zsh, rf"'{option}[:']")
                self.assertRegex(of_fish, rf"-l {option[2:]}\b")


@unittest.skipUnless(shutil.which("help2man"), "no help2man")
class Manual(InFolder):
    def test_every_verb_has_a_page_with_its_examples(self):
        output_of(SOURCES / "scripts/make-manual", PROGRAM, self.folder, "9.8.7")
        names = {"tavmap.1"} | {f"tavmap-{verb}.1" for verb in verbs()}
        self.assertEqual({page.name for page in self.folder.iterdir()}, names)
        page = (self.folder / "tavmap-run.1").read_text().replace("\\-", "-")
        self.assertIn("9.8.7", page.split("\n")[1])
        for text in ("tavmap-run - Compute the maps of a request", "--work-dir", "tavmap run --example > study.toml"):
            self.assertIn(text, page.replace("\\fR", "").replace("\\fB", "").replace("\\fI", ""))
        self.assertNotIn("ELF", page)


class Installation(InFolder):
    def test_every_file_lies_where_its_reader_looks(self):
        output_of(CMAKE, "--install", BUILD, "--prefix", self.folder, "--component", "manual")
        installed = {str(file.relative_to(self.folder)) for file in self.folder.rglob("*") if file.is_file()}
        pages = {"tavmap.1"} | {f"tavmap-{verb}.1" for verb in verbs()} if shutil.which("help2man") else set()
        self.assertEqual(installed, {f"share/man/man1/{page}" for page in pages} | {
            "share/bash-completion/completions/tavmap", "share/zsh/site-functions/_tavmap",
            "share/fish/vendor_completions.d/tavmap.fish"})


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
