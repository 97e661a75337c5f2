"""What exists for a document to name: files, words of the sources, labels, presets, targets and tests."""

import fnmatch
import json
import os
import re
from functools import cached_property
from pathlib import Path

from tree import is_skipped, read_tree

TARGET = re.compile(r"\b(?:add_executable|add_library|add_custom_target|tavmap_test|tavmap_bench|tavmap_fuzzer)"
                    r"\(\s*(\w+)")


class KnownNames:
    def __init__(self, root):
        self.files = {file.path: file for file in read_tree(root)}
        self.folders, self.paths = set(), set()
        for folder, subfolders, names in os.walk(root):
            subfolders[:] = [name for name in subfolders if not is_skipped(name)]
            beside = Path(folder).relative_to(root)
            self.folders |= {(beside / name).as_posix() for name in subfolders}
            self.paths |= {(beside / name).as_posix() for name in subfolders + names}
        self.cmake = {p: f.text for p, f in self.files.items() if p.endswith((".cmake", "CMakeLists.txt"))}

    def exists(self, pattern):
        """Whether a file or folder of that path, or one that the pattern stands for, exists."""
        pattern = pattern.rstrip("/")
        return pattern in self.paths or ("*" in pattern and bool(fnmatch.filter(self.paths, pattern)))

    @cached_property
    def words(self):
        """Every word of the sources: what is no document, and no test of these rules."""
        texts = (file.text for path, file in self.files.items()
                 if not path.endswith(".md") and not path.startswith("tests/lint/"))
        return {word for text in texts for word in re.findall(r"[A-Za-z_]\w*", text)}

    @cached_property
    def options(self):
        """Every --option that a script or program of this tree writes down."""
        texts = (file.text for path, file in self.files.items() if file.is_code and not path.startswith("tests/lint/"))
        return {option for text in texts for option in re.findall(r"(?<![\w-])--?[a-z][\w-]*", text)}

    @cached_property
    def labels(self):
        found = set()
        for text in self.cmake.values():
            for part in re.findall(r"\bLABELS\s+([^)]*)", re.sub(r"#.*", "", text)):
                part = re.split(r"\b[A-Z]{2,}\b", part)[0]
                found |= set(re.findall(r"(?<![@\w])[a-z][\w-]*", part))
        return found

    @cached_property
    def folders_with_tests(self):
        """Names of the folders below tests/ that make tests."""
        return {path.split("/")[1] for path, text in self.cmake.items()
                if path.startswith("tests/") and re.search(r"\b(tavmap_test|add_test)\(", text) and path.count("/") > 1}

    @cached_property
    def presets(self):
        """Kind (configure, build, test) to the names of its presets."""
        file = self.files.get("CMakePresets.json")
        declared = json.loads(file.text) if file else {}
        return {kind: {preset["name"] for preset in declared.get(kind + "Presets", []) if not preset.get("hidden")}
                for kind in ("configure", "build", "test")}

    @cached_property
    def targets(self):
        """Name of a target to the folder that makes it."""
        found = {}
        for path, text in self.cmake.items():
            folder = path.rpartition("/")[0]
            found.update({name: folder for name in TARGET.findall(text)})
            found.update({"tavmap_" + name: folder for name in re.findall(r"\btavmap_library\(\s*(\w+)", text)})
        return found

    @cached_property
    def tests(self):
        """Names of tests; those of a test program by their beginning, the program's name and a dot."""
        texts = "\n".join(self.cmake.values())
        plain = re.findall(r"\badd_test\(NAME\s+([\w.]+)", texts)
        programs = re.findall(r"\btavmap_test\(\s*(\w+)", texts)
        fuzzers = re.findall(r"\btavmap_fuzzer\(\s*(\w+)", texts)
        own = re.findall(r"\btavmap_(\w+)_test\(\s*(\w+)", texts)
        return (set(plain) | {name + "." for name in programs} | {name + ".corpus" for name in fuzzers}
                | {".".join(pair) for pair in own})

    @cached_property
    def labels_left_out(self):
        """Labels that ./check does not run, in one build or the other."""
        text = self.files["check"].text if "check" in self.files else ""
        found = re.findall(r"^run_tests .*-LE\s+(?:'([^']+)'|(\S+))", text, re.MULTILINE)
        return {label for pair in found for label in "".join(pair).split("|")}
