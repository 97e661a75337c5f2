#!/usr/bin/env python3
"""Checks the source tree against the house rules. Usage: lint.py [ROOT]

Prints one line per violation, "file:line: what is wrong", and ends with 1 when there is any.
"""

import sys
from pathlib import Path

import arrow_rules
import folder_rules
import layer_rules
import style_rules
from tree import read_tree

RULES = layer_rules.RULES + arrow_rules.RULES + folder_rules.RULES + style_rules.RULES


def findings_of(root):
    files = read_tree(root)
    return [finding for rule in RULES for finding in rule(files)]


def main(arguments):
    root = Path(arguments[1]) if len(arguments) > 1 else Path(__file__).resolve().parents[2]
    if not (root / "CMakeLists.txt").is_file():
        print(f"{root} is no source tree: it has no CMakeLists.txt", file=sys.stderr)
        return 2
    findings = findings_of(root)
    for finding in findings:
        print(finding)
    print(f"{len(RULES)} rules, {len(findings)} violations")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
