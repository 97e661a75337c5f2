"""The files of a source tree as the rules see them, and what a rule reports."""

import os
import re
from dataclasses import dataclass, field
from pathlib import Path

# Not ours or not sources: results of builds and runs, packages of other tools.
SKIPPED_FOLDERS = {"out", "node_modules", "__pycache__"}
BINARY_SUFFIXES = {".gz", ".nii", ".png", ".vtc", ".tav", ".ico", ".woff2"}


@dataclass(frozen=True)
class Finding:
    path: str
    line: int
    message: str

    def __str__(self):
        return f"{self.path}:{self.line}: {self.message}"


@dataclass
class SourceFile:
    path: str  # relative to the tree, with forward slashes
    text: str
    lines: list = field(init=False)

    def __post_init__(self):
        self.lines = self.text.split("\n")

    @property
    def folder(self):
        return self.path.rpartition("/")[0]

    @property
    def name(self):
        return self.path.rpartition("/")[2]

    @property
    def is_header(self):
        return self.name.endswith(".h")

    @property
    def is_cpp(self):
        return self.name.endswith((".h", ".cpp", ".def"))

    @property
    def is_code(self):
        return (
            self.is_cpp
            or self.name.endswith((".py", ".sh", ".cmake", ".ts", ".js", ".css"))
            or self.name == "CMakeLists.txt"
            or self.text.startswith("#!")
        )

    def includes(self):
        """Yields (line number, target, quoted) of every #include."""
        for number, line in enumerate(self.lines, 1):
            match = re.match(r'\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)', line)
            if match:
                yield number, match.group(1) or match.group(2), match.group(1) is not None


def read_tree(root):
    """All text files below root, in a fixed order."""
    files = []
    for folder, subfolders, names in os.walk(root):
        subfolders[:] = sorted(n for n in subfolders if not is_skipped(n))
        for name in sorted(names):
            if Path(name).suffix in BINARY_SUFFIXES or name.startswith("."):
                continue
            path = Path(folder, name)
            if path.is_symlink():
                continue
            try:
                text = path.read_bytes().decode("utf-8")  # line ends as they are
            except UnicodeDecodeError:
                continue  # binary
            files.append(SourceFile(path.relative_to(root).as_posix(), text))
    return files


def is_skipped(folder_name):
    return folder_name in SKIPPED_FOLDERS or folder_name.startswith((".", "build"))
