#!/usr/bin/env python3
"""Checks that every C++ file is laid out as .clang-format says. Usage: formatting.py [ROOT]

In a git repository the tracked files are checked, elsewhere all. Prints one line per file that differs and the
command that mends them all. Ends with 1 when there is any, with 2 when nothing can be checked.
"""

import re
import shlex
import shutil
import subprocess
import sys
from pathlib import Path

from tree import read_tree

SUFFIXES = (".h", ".cpp")


def sources_of(root):
    """The C++ files below root, relative to it, in a fixed order."""
    tracked = tracked_files(root)
    names = [file.path for file in read_tree(root)] if tracked is None else tracked
    return sorted(name for name in names if name.endswith(SUFFIXES) and (root / name).is_file())


def tracked_files(root):
    """What git knows below root; None where root is not the top of a repository or git is missing."""
    if not (root / ".git").exists() or not shutil.which("git"):
        return None
    listed = subprocess.run(["git", "-C", str(root), "ls-files", "-z"], capture_output=True, text=True, check=False)
    return listed.stdout.split("\0") if listed.returncode == 0 else None


def misformatted(root, sources):
    """The sources that clang-format would change, with the first line of each that it would change."""
    checked = subprocess.run(["clang-format", "--dry-run", "-Werror", *sources],
                             cwd=root, capture_output=True, text=True, check=False)
    first_lines = {}
    for name, line in re.findall(r"^(.+?):(\d+):\d+: (?:error|warning):", checked.stderr, re.MULTILINE):
        first_lines.setdefault(name, int(line))
    if checked.returncode != 0 and not first_lines:
        raise RuntimeError(f"clang-format failed: {checked.stderr.strip()}")
    return first_lines


def main(arguments):
    root = Path(arguments[1] if len(arguments) > 1 else Path(__file__).parents[2]).resolve()
    if not shutil.which("clang-format"):
        print("clang-format is missing: scripts/install-packages installs it", file=sys.stderr)
        return 2
    sources = sources_of(root)
    if not sources or not (root / ".clang-format").is_file():
        print(f"{root} is no source tree: it has no .clang-format or no C++ files", file=sys.stderr)
        return 2
    found = misformatted(root, sources)
    for name, line in found.items():
        print(f"{name}:{line}: not laid out as .clang-format says")
    if found:
        print(f"To mend them:  clang-format -i {shlex.join(found)}")
    print(f"{len(sources)} files, {len(found)} to be laid out anew")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
