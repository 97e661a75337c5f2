"""What holds of the folders taken together: none is most of the program, and a header's name says which one it is."""

import layer_rules
from layer_rules import layer_of
from tree import Finding

MAX_SHARE = 0.2
MIN_PRODUCT_LINES = 4000  # what is smaller has no five parts to speak of


def check_no_folder_outweighs_the_others(files):
    lines = {}
    for file in files:
        layer = layer_of(file.path)
        if file.is_cpp and layer in layer_rules.ARROWS:
            lines[layer] = lines.get(layer, 0) + len(file.text.splitlines())
    total = sum(lines.values())
    for layer, count in sorted(lines.items()):
        if total >= MIN_PRODUCT_LINES and count > MAX_SHARE * total:
            yield Finding(layer, 1, f"{count} of the program's {total} lines; a folder holds at most a fifth: divide it")


def check_header_names(files):
    """An include is read by its last part: one name, one header."""
    first = {}
    for file in files:
        if file.is_header and first.setdefault(file.name, file.path) != file.path:
            yield Finding(file.path, 1, f"a header of this name exists already: {first[file.name]}")


RULES = [check_no_folder_outweighs_the_others, check_header_names]
