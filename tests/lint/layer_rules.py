"""Which folder may include what."""

from tree import Finding

# layer -> the layers whose headers it may include. A layer includes its own headers.
ARROWS = {
    "simo": set(),
    "tav/kernel": set(),
    "io": {"simo"},
    "hostapi": set(),
    "tav": {"simo", "io", "tav/kernel"},
    "plugin": {"tav", "io", "hostapi"},
    "render": {"io"},
    "formats": {"io"},
    "host": {"hostapi", "formats"},
    "direction": {"simo"},
    "inference": {"simo", "io"},
    "suitability": {"simo", "direction"},
    "connectome": {"simo", "inference", "direction", "formats", "request", "results"},
    "inspect": {"io", "formats", "render"},
    "request": {"tav"},
    "bids": {"request"},
    "prepare": {"request", "bids", "formats"},
    "results": {"tav", "request", "bids", "prepare", "formats"},
    "study": {"connectome", "tav", "request", "bids", "prepare", "results", "formats", "suitability", "direction"},
    "report": {"connectome", "tav", "io", "formats", "render", "request", "bids", "prepare", "results", "group"},
    "group": {"connectome", "tav", "io", "request", "bids", "prepare", "results", "formats", "inference"},
    "simulation": {"formats"},
    "cluster": {"formats"},
    "planning": {"tav", "request", "bids", "prepare", "results", "formats", "study"},
    "live": {"study", "tav", "io", "simo", "request", "prepare", "results", "formats"},
    "workbench": {"live", "tav", "bids", "prepare", "formats", "group", "host", "inspect", "report", "request", "results", "study"},
    "app": {"simo", "io", "hostapi", "tav", "render", "formats", "host", "inspect", "request", "bids", "prepare",
            "results", "connectome", "report", "study", "group", "simulation", "cluster", "planning",
            "live", "workbench"},
}
UNLAYERED = {"tests", "bench", "fuzz"}  # they may include whatever they try
# The one header record that the file reader shares with the host.
SINGLE_HEADERS = {"hostapi": {"io/vtc_header.h"}}

CORE = {"simo", "tav/kernel", "io", "hostapi", "tav", "plugin"}

STANDARD_HEADERS = set(
    """algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes
    climits clocale cmath codecvt compare complex concepts condition_variable coroutine csetjmp csignal cstdarg cstddef
    cstdint cstdio cstdlib cstring ctime cuchar cwchar cwctype deque exception execution filesystem format forward_list
    fstream functional future initializer_list iomanip ios iosfwd iostream istream iterator latch limits list locale map
    memory memory_resource mutex new numbers numeric optional ostream queue random ranges ratio regex scoped_allocator
    semaphore set shared_mutex source_location span sstream stack stdexcept stop_token streambuf string string_view
    strstream syncstream system_error thread tuple type_traits typeindex typeinfo unordered_map unordered_set utility
    valarray variant vector version""".split()
)
PLATFORM_HEADERS = {"dlfcn.h", "fcntl.h", "sys/stat.h", "sys/types.h", "unistd.h"}

# What the files that are compiled for one kind of CPU may include. An inline function of another
# header would be compiled for that CPU too, and the linker might take it for the whole program.
PER_CPU_HEADERS = {"cstddef", "cstdint", "emmintrin.h", "immintrin.h"}


def layer_of(path):
    if path.startswith("tav/kernel/"):
        return "tav/kernel"
    return path.partition("/")[0]


def check_arrows(files):
    """Quoted includes are rooted at the repository and follow the arrows."""
    known = {file.path for file in files}
    for file in files:
        layer = layer_of(file.path)
        if not file.is_cpp or layer not in ARROWS:
            continue
        for line, target, quoted in file.includes():
            if not quoted:
                continue
            if target not in known:
                yield Finding(file.path, line, f'"{target}" is no file of this tree; includes are rooted at its top')
            elif not may_include(layer, target):
                allowed = ", ".join(sorted(ARROWS[layer] | SINGLE_HEADERS.get(layer, set()))) or "nothing else"
                yield Finding(file.path, line, f'{layer} may not include "{target}" (it may include: {allowed})')


def may_include(layer, target):
    return (
        layer_of(target) == layer
        or layer_of(target) in ARROWS[layer]
        or target in SINGLE_HEADERS.get(layer, set())
    )


def check_core_stands_alone(files):
    """The core uses the standard library and a few headers of the platform."""
    for file in files:
        layer = layer_of(file.path)
        if not file.is_cpp or layer not in CORE:
            continue
        allowed = STANDARD_HEADERS | PLATFORM_HEADERS
        if layer == "tav/kernel":
            allowed = STANDARD_HEADERS | PER_CPU_HEADERS
        for line, target, quoted in file.includes():
            if not quoted and target not in allowed:
                yield Finding(file.path, line, f"<{target}> is neither the standard library nor a listed platform header")


def check_per_cpu_files(files):
    """What is compiled for one kind of CPU includes no inline functions of others."""
    by_path = {file.path: file for file in files}
    queue = [f.path for f in files if f.path.startswith("tav/kernel/kernel_") and f.path.endswith(".cpp")]
    seen = set(queue)
    while queue:
        file = by_path[queue.pop()]
        for line, target, quoted in file.includes():
            if not quoted and target not in PER_CPU_HEADERS:
                yield Finding(file.path, line, f"<{target}> must not reach a file that is compiled for one kind of CPU")
            elif quoted and target in by_path and target not in seen:
                seen.add(target)
                queue.append(target)


def check_folders_have_a_layer(files):
    """A new folder of sources says where it stands."""
    for folder in sorted({layer_of(file.path) for file in files if file.is_cpp}):
        if folder not in ARROWS and folder not in UNLAYERED:
            yield Finding(folder, 1, "a folder of sources without arrows: add it to tests/lint/layer_rules.py")


RULES = [check_folders_have_a_layer, check_arrows, check_core_stands_alone, check_per_cpu_files]
