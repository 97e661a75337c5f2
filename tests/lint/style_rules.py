"""House rules that a pattern can find."""

import re

from layer_rules import layer_of
from tree import Finding

MAX_FILE_LINES = 400
MAX_FUNCTION_LINES = 60
MAX_README_LINES = 40

LONG_READMES = {"README.md"}  # the one for users

# Assembled from parts, so that this file passes its own rules.
UNFINISHED = re.compile(r"\b(" + "|".join(["TO" + "DO", "FIX" + "ME", "X" + "XX"]) + r")\b")
CONFLICT = re.compile(r"^(<{7} |={7}$|>{7} )")
# A path below somebody's home folder is a path of one machine.
MACHINE_PATH = re.compile(r"(?<![\w.])/(home|Users)/\w+/|\b[A-Z]:\\Users\\")

CORE_SOURCES = re.compile(r"^(simo|io|hostapi|tav|plugin)/.*\.(h|cpp)$")
RANDOMNESS = re.compile(r"(?<![\w.>:])(?:std::)?(rand|srand|time|random_device|mt19937)\s*[({]")
RANDOMNESS_HOME = re.compile(r"^simo/randomness\.(h|cpp)$")
PRINTING = re.compile(r"std::(cout|cerr|clog|printf|puts)\b|(?<!\w)(f?printf|puts)\s*\(")
NUMERICS = re.compile(r"^(simo|io|tav/kernel)/.*\.(h|cpp)$")


def code_of(line):
    """The line without its // comment and without the contents of its string literals."""
    return re.sub(r"//.*", "", re.sub(r'"(\\.|[^"\\])*"', '""', line))


def each_line(files, applies, pattern, message, of=lambda line: line):
    for file in files:
        if applies(file):
            for number, line in enumerate(file.lines, 1):
                match = pattern.search(of(line))
                if match:
                    yield Finding(file.path, number, message.format(match.group(0)))


def check_file_length(files):
    for file in files:
        count = len(file.text.splitlines())
        if file.is_code and count > MAX_FILE_LINES:
            yield Finding(file.path, count, f"{count} lines; the limit is {MAX_FILE_LINES}: split the file by ideas")


def check_function_length(files):
    """Bodies of functions: from the line that opens one to the brace at the same indentation."""
    for file in files:
        if not file.is_cpp:
            continue
        texts = raw_text_lines(file.text)
        for first, last in function_bodies(file.lines):
            count = sum(1 for line in range(first + 1, last) if line not in texts)
            if count > MAX_FUNCTION_LINES:
                message = f"a function of {count} lines; the limit is {MAX_FUNCTION_LINES}: name its steps"
                yield Finding(file.path, first + 1, message)


def raw_text_lines(text):
    """The lines, from 0, that raw string literals span: data, not steps of a function."""
    lines = set()
    for literal in re.finditer(r'R"(\w*)\(.*?\)\1"', text, re.DOTALL):
        lines.update(range(text.count("\n", 0, literal.start()), text.count("\n", 0, literal.end()) + 1))
    return lines


OPENS_BODY = re.compile(r"\)[^;()]*\{$|\)\s*:.*\{$")
NO_FUNCTION = re.compile(r"\s*(\} )?(if|for|while|switch|else|do|namespace|struct|class|enum|catch)\b")


def function_bodies(lines):
    """Yields (first, last), from 0: the line that opens a body and the one that closes it."""
    for first, line in enumerate(lines):
        if not OPENS_BODY.search(code_of(line).rstrip()):
            continue
        start = first
        while start > 0 and lines[start].startswith("    ") and lines[start - 1].strip():
            start -= 1  # continued lines of a signature are indented by four or more
        signature = lines[start]
        indentation = len(signature) - len(signature.lstrip())
        whole = "".join(code_of(part) for part in lines[start : first + 1])
        if indentation > 2 or NO_FUNCTION.match(signature) or whole.count("(") != whole.count(")"):
            continue
        closing = " " * indentation + "}"
        for last in range(first + 1, len(lines)):
            if lines[last].startswith(closing):
                yield first, last
                break


def check_readmes(files):
    """Every folder of sources explains itself on one screen."""
    paths = {file.path for file in files}
    folders = {layer_of(f.path) for f in files if f.is_cpp and f.folder}
    for folder in sorted(folders):
        if folder + "/README.md" not in paths:
            yield Finding(folder, 1, f"the folder has no README.md (purpose, files in reading order, tests; {MAX_README_LINES} lines)")
    for file in files:
        count = len(file.text.splitlines())
        if file.name == "README.md" and file.path not in LONG_READMES and count > MAX_README_LINES:
            yield Finding(file.path, count, f"{count} lines; a folder's README has at most {MAX_README_LINES}")


def check_header_guards(files):
    for file in files:
        if not file.is_header:
            continue
        guard = "TAVMAP_" + re.sub(r"\W", "_", file.path).upper()
        if f"#ifndef {guard}\n#define {guard}\n" not in file.text:
            yield Finding(file.path, 1, f"the include guard must be {guard}")


def check_headers_explain_themselves(files):
    for file in files:
        if file.is_header and not file.text.startswith("//"):
            yield Finding(file.path, 1, "a header begins with a comment that says what it is")


def check_using_namespace(files):
    # Within a function it is indented, and harmless.
    yield from each_line(files, lambda f: f.is_header, re.compile(r"^using\s+namespace\b"),
                         "'{0}' in a header reaches every file that includes it", code_of)


def check_white_space(files):
    # Texts of others, such as licences, stay as they are.
    ours = lambda f: f.is_code or f.name.endswith((".md", ".html", ".ini"))
    yield from each_line(files, ours, re.compile(r"[ \t]+$"), "white space at the end of the line")
    yield from each_line(files, lambda f: f.is_cpp, re.compile(r"\t"), "a tab")
    yield from each_line(files, lambda f: f.is_code, re.compile(r"\r"), "a carriage return")
    for file in files:
        if file.is_code and file.text and not file.text.endswith("\n"):
            yield Finding(file.path, len(file.lines), "no line end at the end of the file")


def check_leftovers(files):
    yield from each_line(files, lambda f: True, UNFINISHED, "'{0}': finish it or leave it out")
    yield from each_line(files, lambda f: f.is_code, CONFLICT, "a merge conflict")
    yield from each_line(files, lambda f: True, MACHINE_PATH, "'{0}' is a path of one machine")


def check_randomness_has_one_home(files):
    yield from each_line(files, lambda f: CORE_SOURCES.match(f.path) and not RANDOMNESS_HOME.match(f.path), RANDOMNESS,
                         "'{0}': randomness and time enter through simo/randomness.h alone", code_of)


def check_numerics_never_print(files):
    yield from each_line(files, lambda f: NUMERICS.match(f.path), PRINTING,
                         "'{0}': numerics return a status and never print", code_of)


def check_no_fast_math(files):
    yield from each_line(files, lambda f: f.is_code and not f.path.startswith("tests/lint/"),
                         re.compile(r"-ff" + r"ast-math|-Of" + r"ast\b"), "'{0}' changes results")


def version_of(by_path):
    """The version that CMakeLists.txt builds; None where it names none."""
    project = re.search(r"^project\([^)]*\bVERSION ([\d.]+)", by_path["CMakeLists.txt"].text, re.MULTILINE)
    return project.group(1) if project else None


def check_citation_is_of_this_version(files):
    """Who cites the program cites the version that CMakeLists.txt builds."""
    by_path = {file.path: file for file in files}
    version, citation = version_of(by_path), by_path.get("CITATION.cff")
    if version is None or citation is None:
        return
    for number, line in enumerate(citation.lines, 1):
        if line.startswith("version: ") and line != f"version: {version}":
            yield Finding("CITATION.cff", number, f"CMakeLists.txt builds version {version}")


def check_changelog_begins_with_this_version(files):
    """The package says of the version that CMakeLists.txt builds what is new in it."""
    by_path = {file.path: file for file in files}
    version, changelog = version_of(by_path), by_path.get("packaging/changelog")
    if version is None or changelog is None:
        return
    if not changelog.text.startswith(f"tavmap ({version}) "):
        yield Finding(changelog.path, 1, f"the newest entry is not of version {version}, which CMakeLists.txt builds")


RULES = [
    check_changelog_begins_with_this_version,
    check_citation_is_of_this_version,
    check_file_length,
    check_function_length,
    check_readmes,
    check_header_guards,
    check_headers_explain_themselves,
    check_using_namespace,
    check_white_space,
    check_leftovers,
    check_randomness_has_one_home,
    check_numerics_never_print,
    check_no_fast_math,
]
