#!/usr/bin/env python3
"""Checks the help pages. Usage: help_pages.py [ROOT]

The pages are well-formed, read without a network, reach each other, and name every setting with its
default, every map type and every prompt of the dialogs.
"""

import re
import sys
from html.parser import HTMLParser
from pathlib import Path

VOID_ELEMENTS = {"br", "hr", "img", "link", "meta"}
START_PAGE = "main.html"


class Page(HTMLParser):
    """One page: its links, anchors, texts, and what is wrong with its elements."""

    def __init__(self, path):
        super().__init__()
        self.path = path
        self.source = path.read_text(encoding="utf-8")
        self.open_elements = []
        self.counts = {}
        self.anchors = set()
        self.links = []  # (line, target) of <a href>
        self.resources = []  # (line, target) of everything that a browser loads by itself
        self.defaults = {}  # row id -> text of its cell "default"
        self.problems = []
        self._text = []
        self._row = None
        self._in_default = False
        self.feed(self.source)
        self.close()
        if self.open_elements:
            self.problems.append(f"<{self.open_elements[-1]}> is never closed")

    @property
    def text(self):
        return " ".join("".join(self._text).split())

    def handle_starttag(self, tag, attrs):
        attributes = dict(attrs)
        self.counts[tag] = self.counts.get(tag, 0) + 1
        line = self.getpos()[0]
        if "id" in attributes:
            if attributes["id"] in self.anchors:
                self.problems.append(f"line {line}: the id {attributes['id']} is used twice")
            self.anchors.add(attributes["id"])
        if tag == "a":
            self.links.append((line, attributes.get("href", "")))
        elif tag in ("img", "script", "iframe"):
            self.resources.append((line, attributes.get("src", "")))
        elif tag == "link":
            self.resources.append((line, attributes.get("href", "")))
        if tag == "img" and not attributes.get("alt"):
            self.problems.append(f"line {line}: a picture without a text in its place")
        if tag == "tr":
            self._row = attributes.get("id")
        self._in_default = tag == "td" and attributes.get("class") == "default"
        if tag not in VOID_ELEMENTS:
            self.open_elements.append(tag)

    def handle_endtag(self, tag):
        self._in_default = False
        if not self.open_elements or self.open_elements[-1] != tag:
            self.problems.append(f"line {self.getpos()[0]}: </{tag}> closes nothing")
        else:
            self.open_elements.pop()

    def handle_data(self, data):
        if not self.open_elements or self.open_elements[-1] not in ("title", "style"):
            self._text.append(data)
        if self._in_default and self._row:
            self.defaults[self._row] = self.defaults.get(self._row, "") + data


def check_structure(pages):
    for page in pages.values():
        for problem in page.problems:
            yield f"{page.path.name}: {problem}"
        if not page.source.startswith('<!DOCTYPE html>\n<html lang="en">'):
            yield f"{page.path.name}: does not begin as an HTML page in English"
        if '<meta charset="utf-8">' not in page.source:
            yield f"{page.path.name}: states no character set"
        for tag in ("title", "h1"):
            if page.counts.get(tag, 0) != 1:
                yield f"{page.path.name}: has {page.counts.get(tag, 0)} <{tag}>, not one"


def check_links(pages, folder):
    reached = {START_PAGE}
    for page in pages.values():
        for line, target in page.resources:
            if "//" in target or not (folder / target).is_file():
                yield f"{page.path.name}:{line}: {target} is no file beside the pages"
        for line, target in page.links:
            if target.startswith("https://doi.org/"):
                continue
            name, _, anchor = target.partition("#")
            name = name or page.path.name
            if name not in pages:
                yield f"{page.path.name}:{line}: no page {target}"
            elif anchor and anchor not in pages[name].anchors:
                yield f"{page.path.name}:{line}: no place {target}"
            elif name != page.path.name:
                reached.add(name)
    for name in sorted(set(pages) - reached):
        yield f"{name}: no other page leads here"


def settings_of(root):
    """key -> value, from the sample settings file."""
    lines = (root / "plugin/TAVPlugin.ini").read_text(encoding="utf-8").splitlines()
    return dict(line.split("= ", 1) for line in lines if line and not line.startswith("//"))


def check_settings(pages, root):
    defaults = pages["settings.html"].defaults if "settings.html" in pages else {}
    keys = re.findall(r'_INI_STR = "(\w+)="', (root / "tav/tav_defs.h").read_text(encoding="utf-8"))
    if not keys:
        yield "tav/tav_defs.h: no keys of settings found"
    sample = settings_of(root)
    for key in keys:
        if key not in defaults:
            yield f"settings.html: no row for {key}"
        elif defaults[key] != sample.get(key):
            yield f"settings.html: the default of {key} is {defaults[key]}, the sample file says {sample.get(key)}"


def check_map_types(pages, root):
    rows = (root / "tav/map_kinds.def").read_text(encoding="utf-8")
    anchors = pages["maps.html"].anchors if "maps.html" in pages else set()
    for name in re.findall(r"^TAV_MAP_KIND\((\w+)", rows, re.MULTILINE) or ["the list of map types"]:
        if name not in anchors:
            yield f"maps.html: does not explain {name}"


# A prompt is known by its beginning; each must stand in a source file of the plug-in and on the page.
PROMPTS = [
    "Select VOIs",
    "Interval selection",
    "Add a Condition",
    "Add a VTC for condition",
    "Add a SOURCE VTC (reference)",
    "Add a TARGET VTC (voxels)",
    "Specify first time-point(volume) of interval",
    "Specify last time-point(volume) of interval",
    "Specify a protocol file with VOLUME time-resolution",
    "Select a PRT Condition",
    "Choose path and name-prefix for results:",
]


def check_dialogs(pages, root):
    text = pages["dialogs.html"].text if "dialogs.html" in pages else ""
    for prompt in PROMPTS:
        if prompt not in text:
            yield f"dialogs.html: does not explain the dialog '{prompt}'"
    sources = "".join(path.read_text(encoding="utf-8") for path in sorted((root / "plugin").glob("*.cpp")))
    asked = len(re.findall(r"\b(?:askText|askOpenFile|askSaveFile|askVolume|zqGetIntegerInput)\(", sources))
    expected = 16  # calls and definitions; a new dialog changes the number
    if asked != expected:
        yield f"plugin: {asked} prompts instead of {expected}: explain the new ones in dialogs.html, then adapt PROMPTS"


def problems_of(root):
    folder = root / "help"
    pages = {path.name: Page(path) for path in sorted(folder.glob("*.html"))}
    if START_PAGE not in pages:
        return [f"help: there is no {START_PAGE}"]
    return [
        *check_structure(pages),
        *check_links(pages, folder),
        *check_settings(pages, root),
        *check_map_types(pages, root),
        *check_dialogs(pages, root),
    ]


def main(arguments):
    root = Path(arguments[1]) if len(arguments) > 1 else Path(__file__).resolve().parents[2]
    problems = problems_of(root)
    for problem in problems:
        print(problem)
    print(f"{len(problems)} problems in the help pages")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
