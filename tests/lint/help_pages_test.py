#!/usr/bin/env python3
"""Plants faults in a copy of the help pages and sees that each is found."""

import shutil
import tempfile
import unittest
from pathlib import Path

import help_pages

ROOT = Path(__file__).resolve().parents[2]


class HelpPagesTest(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.root = Path(temporary.name)
        shutil.copytree(ROOT / "help", self.root / "help")
        for path in [*(ROOT / "plugin").glob("*.cpp"), ROOT / "plugin/TAVPlugin.ini", ROOT / "tav/tav_defs.h",
                     ROOT / "tav/map_kinds.def"]:
            target = self.root / path.relative_to(ROOT)
            target.parent.mkdir(exist_ok=True)
            shutil.copy(path, target)

    def replace(self, path, old, new):
        target = self.root / path
        text = target.read_text(encoding="utf-8")
        self.assertIn(old, text)
        target.write_text(text.replace(old, new), encoding="utf-8")

    def assert_found(self, what):
        found = help_pages.problems_of(self.root)
        self.assertTrue(any(what in problem for problem in found), found)

    def test_the_copy_itself_has_no_problems(self):
        self.assertEqual(help_pages.problems_of(self.root), [])

    def test_element_that_is_not_closed(self):
        self.replace("help/maps.html", "</table>", "")
        self.assert_found("maps.html: line")

    def test_two_headlines(self):
        self.replace("help/limits.html", "</h1>", "</h1><h1>More</h1>")
        self.assert_found("limits.html: has 2 <h1>")

    def test_id_used_twice(self):
        self.replace("help/limits.html", 'id="groups"', 'id="order"')
        self.assert_found("the id order is used twice")

    def test_link_to_a_missing_page(self):
        self.replace("help/main.html", 'href="dialogs.html">reference', 'href="dialog.html">reference')
        self.assert_found("main.html:")

    def test_link_to_a_missing_place(self):
        self.replace("help/limits.html", 'id="filters"', 'id="filtering"')
        self.assert_found("no place limits.html#filters")

    def test_page_that_nothing_links_to(self):
        shutil.copy(self.root / "help/limits.html", self.root / "help/orphan.html")
        self.assert_found("orphan.html: no other page leads here")

    def test_resource_from_the_network(self):
        self.replace("help/main.html", 'src="measures.svg"', 'src="https://example.org/measures.svg"')
        self.assert_found("is no file beside the pages")

    def test_picture_without_text(self):
        self.replace("help/main.html", " alt=", " data-alt=")
        self.assert_found("a picture without a text")

    def test_setting_without_a_row(self):
        self.replace("help/settings.html", '<tr id="MapScaleFactor">', "<tr>")
        self.assert_found("no row for MapScaleFactor")

    def test_default_that_differs_from_the_sample(self):
        self.replace("plugin/TAVPlugin.ini", "NumSurrogateSimulations= 1000", "NumSurrogateSimulations= 500")
        self.assert_found("the default of NumSurrogateSimulations is 1000, the sample file says 500")

    def test_map_type_without_a_row(self):
        self.replace("help/maps.html", 'id="DTAV_RC"', 'id="RC"')
        self.assert_found("does not explain DTAV_RC")

    def test_dialog_that_is_not_explained(self):
        self.replace("help/dialogs.html", "Select a PRT Condition", "Select a condition")
        self.assert_found("does not explain the dialog 'Select a PRT Condition'")

    def test_new_prompt_in_the_plugin(self):
        (self.root / "plugin/new_dialog.cpp").write_text('void f() { askText("New?"); }\n', encoding="utf-8")
        self.assert_found("explain the new ones")


if __name__ == "__main__":
    unittest.main()
