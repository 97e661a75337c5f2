#!/usr/bin/env python3
"""The reference of the commands, made from programs whose help is known."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "scripts/command-reference"

OVERVIEW = """Maps
Usage: tavmap SUBCOMMAND

Subcommands:
  run                         Compute maps
  info                        Say what is in a file
"""
HELPS = {"run": "Compute maps\n\nExamples:\n  tavmap run a.toml\n",
         "info": "Say what\n\nExample:\n  tavmap info a.tav\n",
         "worker": "Internal\n"}


class CommandReference(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.program = Path(folder.name, "tavmap")
        self.page = Path(folder.name, "commands.md")

    def make(self, overview=OVERVIEW, **helps):
        """A program that says the given texts, and fails at verbs that it does not know."""
        texts = {"--help": overview, **{verb: text for verb, text in {**HELPS, **helps}.items()}}
        self.program.write_text(f"#!{sys.executable}\nimport sys\nprint({texts!r}[sys.argv[1]])\n", encoding="utf-8")
        self.program.chmod(0o755)

    def run_script(self, *options):
        return subprocess.run([sys.executable, "-B", SCRIPT, self.program, "--page", self.page, *options],
                              capture_output=True, text=True, check=False)

    def test_page_holds_every_listed_verb_in_its_order_and_no_internal_one(self):
        self.make()
        self.assertEqual(self.run_script().returncode, 0)
        page = self.page.read_text(encoding="utf-8")
        headings = [line for line in page.splitlines() if line.startswith("#")]
        self.assertEqual(headings, ["# Commands", "## tavmap run", "## tavmap info"])
        self.assertIn("```text\nSay what\n\nExample:\n  tavmap info a.tav\n```\n", page)
        self.assertIn("- [`run`](#tavmap-run): Compute maps\n", page)
        self.assertNotIn("Internal", page)

    def test_page_that_was_just_written_is_up_to_date(self):
        self.make()
        self.run_script()
        self.assertEqual(self.run_script("--check").returncode, 0)

    def test_changed_help_is_found_and_the_page_left_alone(self):
        self.make()
        self.run_script()
        before = self.page.read_text(encoding="utf-8")
        self.make(run=HELPS["run"] + "Exit codes: 0 done.\n")
        result = self.run_script("--check")
        self.assertEqual(result.returncode, 1)
        self.assertIn("scripts/command-reference", result.stderr)
        self.assertEqual(self.page.read_text(encoding="utf-8"), before)

    def test_missing_page_is_found(self):
        self.make()
        self.assertEqual(self.run_script("--check").returncode, 1)

    def test_verb_without_an_example_is_found(self):
        for text in ["Say what\n", "Say what\n\nExample:\n  tavmap run a.tav\n"]:
            self.make(info=text)
            self.run_script()
            result = self.run_script("--check")
            self.assertEqual(result.returncode, 1)
            self.assertIn("tavmap info --help shows no example", result.stderr)

    def test_program_that_fails_or_lists_no_verbs_is_an_error(self):
        self.make(overview="Maps\n")
        self.assertIn("lists no verbs", self.run_script().stderr)
        self.make(overview=OVERVIEW + "  unknown                     Not there\n")
        result = self.run_script()
        self.assertNotEqual(result.returncode, 0)
        self.assertIn("unknown --help ended with", result.stderr)
        self.assertFalse(self.page.exists())


if __name__ == "__main__":
    unittest.main()
