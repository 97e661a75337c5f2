"""Names in documents: files, links, words of the sources, environment variables, and the arrows."""

import posixpath
import re

import layer_rules
from tree import Finding

SOURCE_SUFFIXES = (".h", ".cpp", ".def", ".py", ".md", ".cmake", ".html", ".css", ".map", ".gnuplot", ".svg")
# A part in capitals stands for what the reader puts there, and so does the beginning of an output's name.
OUTPUT = re.compile(r"(?:P|\*)_")
PLACEHOLDER = re.compile(r"(?:^|[/_.\-])(?!README|HACKING|CONTRIBUTING|SOURCES|LICENSE|TAV)[A-Z]{2,}(?=[/_.\-]|$)")
IDENTIFIER = re.compile(r"[A-Za-z_]\w*(?:::\w+)*(?:\(\))?")
LOOKS_CODED = re.compile(r"_|::|[a-z0-9][A-Z]|[A-Z][A-Z]+[a-z]")


def check_files(document, known):
    """A path that begins in this tree leads somewhere, and a source file's name is that of a file."""
    for code in document.codes:
        for word in code.words:
            if is_path_of_tree(word, document, known) and not resolves(word, document, known):
                yield Finding(document.path, code.line, f"'{word}' is no file or folder of this tree")


def check_folders(document, known):
    """`NAME/` is a folder of this tree or beside the document, or one that the sources name."""
    for code in document.spans:
        name = code.text.removesuffix("/")
        if re.fullmatch(r"[\w-]+/", code.text) and not resolves(name, document, known) and name not in known.words:
            yield Finding(document.path, code.line, f"'{code.text}' is no folder of this tree")


def is_path_of_tree(word, document, known):
    if PLACEHOLDER.search(word) or OUTPUT.match(word) or not re.fullmatch(r"(?!/)[\w./*\-]+", word):
        return False
    first, slash, rest = word.removeprefix("./").partition("/")
    if word.startswith("./") or (slash and rest and first in known.folders):
        return True
    # ".tav" and the like are kinds of files, not names.
    return not word.startswith(".") and word.endswith(SOURCE_SUFFIXES) and word not in layer_rules.PLATFORM_HEADERS


def resolves(word, document, known):
    """A path counts from the top or from the document's folder; a bare name is found in the folder or below it, by
    the documents that speak of the whole tree anywhere."""
    word = word.removeprefix("./")
    beside = posixpath.normpath(posixpath.join(document.folder, word))
    if known.exists(word) or known.exists(beside):
        return True
    within = "" if document.folder in ("", "docs") else document.folder + "/"
    return "/" not in word and known.exists(f"{within}*/{word}")


def check_links(document, known):
    for line, target in document.links:
        path, _, anchor = target.partition("#")
        if re.match(r"[a-z]+:", target):
            continue
        resolved = posixpath.normpath(posixpath.join(document.folder, path)) if path else document.path
        if not known.exists(resolved):
            yield Finding(document.path, line, f"the link to {target} leads nowhere")
        elif anchor and resolved in known.files and anchor not in anchors_of(resolved, document, known):
            yield Finding(document.path, line, f"{resolved} has no place '#{anchor}'")


def anchors_of(path, document, known):
    text = known.files[path].text
    if path.endswith(".md"):
        return type(document)(known.files[path]).anchors
    return set(re.findall(r'\bid="([^"]+)"', text))


def check_words(document, known):
    """A name in backticks that only a program could bear is one of the sources' names."""
    for code in document.spans:
        if not IDENTIFIER.fullmatch(code.text) or not LOOKS_CODED.search(code.text):
            continue
        missing = [part for part in re.findall(r"\w+", code.text) if part not in known.words]
        if missing and not PLACEHOLDER.search(code.text):
            yield Finding(document.path, code.line, f"'{code.text}' is a name of nothing in the sources")


def check_environment(document, known):
    for number, line in enumerate(document.lines, 1):
        for name in re.findall(r"\bTAVMAP_[A-Z_]+\b", line):
            if name not in known.words:
                yield Finding(document.path, number, f"{name} occurs nowhere in the sources")


def check_arrows(document, known):
    """Where a layer's README lists what the layer may include, it lists the arrows."""
    layer = document.folder
    if layer not in layer_rules.ARROWS or not document.path.endswith("/README.md"):
        return
    for line, text in document.paragraphs:
        listed = re.search(r"May include: (.*?)(?:\. |\.$)", text)
        if not listed or "everything but" in listed.group(1):
            continue
        named = set(re.findall(r"`([\w/.]+)`", listed.group(1)))
        whole = named & set(layer_rules.ARROWS)
        headers = {name for name in named - whole if layer_rules.layer_of(name) in layer_rules.ARROWS}
        borrowed = {layer_rules.layer_of(name) for name in headers - layer_rules.SINGLE_HEADERS.get(layer, set())}
        if whole | borrowed != layer_rules.ARROWS[layer]:
            yield Finding(document.path, line, "'May include' lists other layers than the arrows: "
                          + (", ".join(sorted(layer_rules.ARROWS[layer])) or "none"))


def check_tour(document, known):
    """The tour of the code leaves no layer out."""
    if document.path == "HACKING.md":
        for layer in sorted(layer_rules.ARROWS):
            if not re.search(rf"(?<![\w/]){layer}/", "\n".join(document.lines)):
                yield Finding(document.path, 1, f"the tour of the code names no {layer}/")


RULES = [check_files, check_folders, check_links, check_words, check_environment, check_arrows, check_tour]
