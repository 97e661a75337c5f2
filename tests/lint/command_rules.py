"""Commands in documents: labels, presets, targets, tests, options of scripts, and the program's verbs and options."""

import re
import subprocess

from tree import Finding


def check_labels(document, known):
    for code in document.codes:
        for words in code.commands:
            for flag, value in zip(words, words[1:]):
                if flag in ("-L", "-LE") and (words[0] == "ctest" or words[0] == flag):
                    yield from unknown_labels(document, code.line, value.split("|"), known)
    for match in re.finditer(r"\blabels?\s+((?:`[\w-]+`(?:,\s+|\s+and\s+|\s+or\s+)?)+)", document.prose):
        yield from unknown_labels(document, document.line_at(match.start()), re.findall(r"`([^`]+)`", match.group(1)), known)


def unknown_labels(document, line, labels, known):
    for label in labels:
        if label not in known.labels and not label.isupper():
            yield Finding(document.path, line, f"no test bears the label '{label}'")


def check_labels_are_explained(document, known):
    """Labels are names of the tests' folders; tests/README.md explains all others, and every folder has its own."""
    if document.path != "tests/README.md":
        return
    folders = known.folders_with_tests
    for label in sorted(known.labels - folders):
        if f"`{label}`" not in document.prose:
            yield Finding(document.path, 1, f"the label '{label}' is no folder's name and is not explained")
    for folder in sorted(folders - known.labels):
        yield Finding(document.path, 1, f"no test bears the label '{folder}', though tests/{folder} has tests")


def check_test_names(document, known):
    for code in document.codes:
        for words in code.commands:
            for flag, pattern in zip(words, words[1:]):
                if words[0] == "ctest" and flag == "-R" and not any(re.search(pattern, name) for name in known.tests):
                    yield Finding(document.path, code.line, f"no test's name matches '{pattern}'")


def check_presets(document, known):
    for code in document.codes:
        for words in code.commands:
            kind = "test" if words[0] == "ctest" else "build" if "--build" in words else "configure"
            for flag, name in zip(words, words[1:]):
                if flag == "--preset" and words[0] in ("cmake", "ctest") and name not in known.presets[kind]:
                    yield Finding(document.path, code.line, f"there is no {kind} preset '{name}'")
    for match in re.finditer(r"`([\w-]+)`\s+preset|\bpreset\s+`([\w-]+)`", document.prose):
        name = match.group(1) or match.group(2)
        if name not in known.presets["configure"]:
            yield Finding(document.path, document.line_at(match.start()), f"there is no preset '{name}'")


def check_build_folders(document, known):
    """build/PRESET/FOLDER/NAME: the preset exists, and the folder makes what is named."""
    for code in document.codes:
        for word in code.words:
            match = re.fullmatch(r"build/([\w-]+)(?:/([\w/*.-]*))?", word)
            if not match or match.group(1).isupper():
                continue
            folder, _, name = (match.group(2) or "").rstrip("/").rpartition("/")
            if match.group(1) not in known.presets["configure"]:
                yield Finding(document.path, code.line, f"there is no preset '{match.group(1)}' to build in {word}")
            elif folder and "*" not in word and known.targets.get(name.removesuffix(".so")) != folder:
                yield Finding(document.path, code.line, f"no CMakeLists.txt in {folder} makes '{name}'")


def check_targets(document, known):
    for code in document.codes:
        for words in code.commands:
            for flag, name in zip(words, words[1:]):
                if flag == "--target" and words[0] == "cmake" and name not in known.targets:
                    yield Finding(document.path, code.line, f"no CMakeLists.txt makes the target '{name}'")


def check_options_of_scripts(document, known):
    """What a command gives to a script of this tree, the script knows."""
    for code in document.codes:
        for words in code.commands:
            script = known.files.get(words[0].removeprefix("./"))
            for option in (word.strip("[]").partition("=")[0] for word in words[1:]):
                if script and re.match(r"--[a-z]", option) and option not in script.text:
                    yield Finding(document.path, code.line, f"{script.path} knows no option '{option}'")


def check_claims_of_every_test(document, known):
    """Who says that every test is run says which are not."""
    for line, text in document.paragraphs:
        if re.search(r"\b(?:runs?|pass(?:es)?) (?:every|all(?: the)?) tests?\b", text):
            for label in sorted(known.labels_left_out):
                if f"`{label}`" not in text:
                    yield Finding(document.path, line, f"./check leaves out the tests labelled '{label}': say so")


RULES = [check_labels, check_labels_are_explained, check_test_names, check_presets, check_build_folders, check_targets,
         check_options_of_scripts, check_claims_of_every_test]


class Program:
    """The built program, asked for its helps."""

    def __init__(self, path):
        self.path = path
        self._helps = {}

    def help(self, *verb):
        """The text of --help, None for a verb that does not exist: the program then shows its own help."""
        if verb not in self._helps:
            shown = subprocess.run([self.path, *verb, "--help"], capture_output=True, text=True, check=False)
            is_its_own = re.search(rf"^Usage: {re.escape(' '.join(['tavmap', *verb]))} ", shown.stdout, re.MULTILINE)
            self._helps[verb] = shown.stdout if is_its_own else None
        return self._helps[verb]

    def listed_verbs(self):
        return re.findall(r"^  ([a-z]\w*) {2,}\S", (self.help() or "").partition("Subcommands:")[2], re.MULTILINE)

    def knows(self, option, *verb):
        return re.search(rf"(?<![\w-]){re.escape(option)}(?![\w-])", self.help(*verb) or "") is not None


def rules_for(path):
    """The rules that need the program; it is an error when its help lists no verbs."""
    program = Program(path)
    if not program.listed_verbs():
        raise SystemExit(f"{path} --help lists no verbs: not the program?")
    return [lambda document, known: check_verbs(document, program),
            lambda document, known: check_lone_options(document, known, program)]


def check_verbs(document, program):
    """Commands of the program name verbs and options that it has."""
    for code in document.codes:
        for words in code.commands:
            if words[0].rpartition("/")[2] != "tavmap":
                continue
            verb = [word for word in words[1:2] if re.fullmatch(r"[a-z][a-z-]*", word)]
            if program.help(*verb) is None:
                yield Finding(document.path, code.line, f"tavmap has no verb '{verb[0]}'")
                continue
            for option in (word.strip("[]").partition("=")[0] for word in words[1:]):
                if re.match(r"--?[a-z]", option) and not program.knows(option, *verb) and (verb or len(words) == 2):
                    yield Finding(document.path, code.line, f"tavmap {' '.join(verb)} has no option '{option}'")


def check_lone_options(document, known, program):
    """An option in backticks is one of the program's, or of a script's or program's in this tree."""
    for code in document.spans:
        if not re.fullmatch(r"--[a-z][\w-]*(?:[ =]\S+)?", code.text):
            continue
        option = re.split(r"[ =]", code.text)[0]
        owned = option in known.options or any(program.knows(option, verb) for verb in program.listed_verbs())
        if not owned:
            yield Finding(document.path, code.line, f"'{option}' is an option of nothing here")


