"""A Markdown document as the rules see it: what stands in backticks and code blocks, links, paragraphs, anchors."""

import re
from dataclasses import dataclass
from functools import cached_property


@dataclass(frozen=True)
class Code:
    """A span in backticks, or a line of a code block with its continued lines."""

    line: int
    text: str
    is_span: bool

    @property
    def commands(self):
        """Its commands, each as a list of words; comments and redirections are left out."""
        without_comment = self.text if self.is_span else re.sub(r"(^|\s)#.*", "", self.text)
        for part in re.split(r"&&|\|\||[;|>]", hide_quoted(without_comment)):
            words = [word.translate(SHOW) for word in part.split()]
            if words:
                yield [word.strip("'\"") for word in words]

    @property
    def words(self):
        """All words, without the punctuation around them and with the values of options as words."""
        for word in re.split(r"[\s=]+", re.sub(r"(^|\s)#(?=\s)", " ", self.text)):
            stripped = word.strip("'\"<>(),;:").rstrip(".")
            if stripped:
                yield stripped


# Within quotes nothing separates commands.
HIDE = str.maketrans({"|": "\ue000", ";": "\ue001", ">": "\ue002", "&": "\ue003", " ": "\ue004"})
SHOW = {ord(new): old for old, new in HIDE.items()}


def hide_quoted(text):
    return re.sub(r"'[^']*'|\"[^\"]*\"", lambda quoted: quoted.group(0).translate(HIDE), text)


class Document:
    def __init__(self, file):
        self.path = file.path
        self.folder = file.folder
        self.lines = file.lines
        self.blocks, prose = split_blocks(file.lines)
        self.prose = "\n".join(prose)

    @cached_property
    def codes(self):
        return self.blocks + self.spans

    @cached_property
    def spans(self):
        return [Code(self.line_at(match.start()), " ".join(match.group(1).split()), True)
                for match in re.finditer(r"(?<!`)`([^`]+)`(?!`)", self.prose)
                if "\n\n" not in match.group(1)]

    def line_at(self, offset):
        return self.prose.count("\n", 0, offset) + 1

    @property
    def links(self):
        """Yields (line, target) of what [text](target) and ![text](target) lead to."""
        for match in re.finditer(r"\]\(([^()\s]+)\)", re.sub(r"`[^`]*`", lambda m: "x" * len(m.group(0)), self.prose)):
            yield self.line_at(match.start()), match.group(1)

    @property
    def paragraphs(self):
        """Yields (line, text) of every paragraph."""
        for match in re.finditer(r"(?:[^\n]+\n?)+", self.prose):
            yield self.line_at(match.start()), " ".join(match.group(0).split())

    @cached_property
    def anchors(self):
        headings = re.findall(r"^#+ (.*)", self.prose, re.MULTILINE)
        return {re.sub(r"[^\w\- ]", "", heading.lower()).strip().replace(" ", "-") for heading in headings}


def split_blocks(lines):
    """The lines of code blocks (fenced, or indented by four after an empty line), and the text without them."""
    blocks, prose, fenced, indented = [], [], False, False
    for number, line in enumerate(lines, 1):
        if line.startswith("```"):
            fenced = not fenced
            prose.append("")
            continue
        indented = line.startswith("    ") and (indented or not prose or not prose[-1].strip())
        prose.append("" if fenced or indented else line)
        if not fenced and not indented:
            continue
        if blocks and blocks[-1].text.endswith("\\"):
            last = blocks.pop()
            blocks.append(Code(last.line, last.text[:-1].rstrip() + " " + line.strip(), False))
        elif line.strip():
            blocks.append(Code(number, line.strip(), False))
    return blocks, prose
