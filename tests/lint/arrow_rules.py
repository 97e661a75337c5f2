"""What follows from the arrows of layer_rules.py: no circle, nothing reached behind their back, and links to match."""

import re

import layer_rules
from layer_rules import layer_of
from tree import Finding

FOREIGN_LIBRARIES = {"tavmap_nifti2"}  # cmake/TavmapDependencies.cmake makes them of what packages bring


def beyond(layer):
    """The layers that arrows lead to from this one, over any number of steps."""
    found, queue = set(), [layer]
    while queue:
        for target in layer_rules.ARROWS.get(queue.pop(), set()) - found:
            found.add(target)
            queue.append(target)
    return found


def check_arrows_have_no_circle(_files):
    for layer in sorted(layer_rules.ARROWS):
        if layer in beyond(layer):
            yield Finding("tests/lint/layer_rules.py", 1, f"the arrows lead from {layer} back to {layer}")


def check_reach(files):
    """What a folder reaches through includes of includes lies where its arrows lead."""
    by_path = {file.path: file for file in files}
    for layer in sorted(layer_rules.ARROWS):
        yield from overreaches(layer, by_path)


def overreaches(layer, by_path):
    own = [path for path, file in by_path.items() if file.is_cpp and layer_of(path) == layer]
    ways = {path: [path] for path in own}  # how each file was reached
    queue = list(own)
    while queue:
        path = queue.pop(0)
        for line, target, quoted in by_path[path].includes():
            if not quoted or target not in by_path or target in ways:
                continue
            ways[target] = ways[path] + [target]
            if is_within_reach(layer, target):
                queue.append(target)
            elif not is_found_directly(by_path[path], target):
                yield Finding(path, line, f"through this, {layer} reaches where no arrows lead from it: "
                              + " > ".join(ways[target]))


def is_within_reach(layer, target):
    layers = beyond(layer) | {layer}
    return layer_of(target) in layers or any(target in layer_rules.SINGLE_HEADERS.get(l, set()) for l in layers)


def is_found_directly(file, target):
    """Whether the rule about direct includes reports this include already."""
    layer = layer_of(file.path)
    return file.is_cpp and layer in layer_rules.ARROWS and not layer_rules.may_include(layer, target)


def check_links(files):
    """The libraries that a layer's library links are its arrows, no more and no fewer."""
    for file in files:
        layer = layer_of(file.path)
        if file.name != "CMakeLists.txt" or layer not in layer_rules.ARROWS:
            continue
        text = re.sub(r"#.*", "", file.text)
        for library in re.finditer(r"tavmap_library\(\s*(\w+)([^)]*)\)", text):
            line = text.count("\n", 0, library.start()) + 1
            linked = set(linked_by(library.group(1), library.group(2), text))
            yield from link_findings(file.path, line, layer, linked)


def linked_by(name, arguments, text):
    """The project's libraries behind LINKS, and behind target_link_libraries of the same library."""
    parts = [arguments.partition("LINKS")[2]]
    parts += re.findall(rf"target_link_libraries\(\s*tavmap_{name}\s([^)]*)\)", text)
    return [word for part in parts for word in part.split() if word.startswith("tavmap_")]


def link_findings(path, line, layer, linked):
    wanted = {"tavmap_" + target.rpartition("/")[2]: target for target in layer_rules.ARROWS[layer]}
    for library in sorted(linked - set(wanted) - FOREIGN_LIBRARIES):
        yield Finding(path, line, f"{layer} links {library}, but no arrow leads there")
    for library in sorted(set(wanted) - linked):
        yield Finding(path, line, f"{layer} has an arrow to {wanted[library]}, but does not link {library}")


RULES = [check_arrows_have_no_circle, check_reach, check_links]
