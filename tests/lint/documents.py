#!/usr/bin/env python3
"""Checks that what the documents name exists. Usage: documents.py [ROOT [PROGRAM]]

In backticks and code blocks: files and folders, words of the sources, labels, presets, targets and tests, environment
variables; outside of them links, and what is said of ./check and of the arrows. With PROGRAM, the built tavmap, its
verbs and their options too. Prints one line per fault, "file:line: what is wrong", and ends with 1 when there is any.
"""

import sys
from pathlib import Path

import command_rules
import name_rules
from document import Document
from known_names import KnownNames

RULES = name_rules.RULES + command_rules.RULES


def findings_of(root, program=None):
    known = KnownNames(root)
    documents = [Document(file) for path, file in known.files.items() if path.endswith(".md")]
    rules = RULES + (command_rules.rules_for(program) if program else [])
    return [finding for rule in rules for document in documents for finding in rule(document, known)]


def main(arguments):
    root = Path(arguments[1]) if len(arguments) > 1 else Path(__file__).resolve().parents[2]
    program = arguments[2] if len(arguments) > 2 else None
    if not (root / "README.md").is_file():
        print(f"{root} is no source tree: it has no README.md", file=sys.stderr)
        return 2
    findings = findings_of(root, program)
    for finding in findings:
        print(finding)
    print(f"{len(findings)} faults in the documents")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
