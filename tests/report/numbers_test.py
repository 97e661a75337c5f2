"""Every number of a report equals the number in the outputs it was built from: of made-up outputs and of a whole run.

Usage: numbers_test.py TAVMAP WRITE_SAMPLES
"""

import csv
import json
import math
import subprocess
import sys
import tempfile
from html.parser import HTMLParser
from pathlib import Path


class Page(HTMLParser):
    """Collects <data> elements and the tables whose columns say where they come from."""

    def __init__(self):
        super().__init__()
        self.quoted = []  # (value, data-from, shown text)
        self.columns = []  # (data-from, cells)
        self._data = None
        self._table = None  # columns of the table at hand
        self._cell = None
        self._file = ""  # of the table at hand

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        if tag in ("td", "tr"):
            self._end_cell()
        if tag == "data":
            source = attributes["data-from"]
            self._data = [attributes["value"], self._file + source if source.startswith("#") else source, ""]
        elif tag == "table":
            self._file = attributes.get("data-file", "")
            self._table = [] if "numbers" in (attributes.get("class") or "") else None
        elif tag == "th" and self._table is not None:
            self._table.append((attributes.get("data-from"), []))
        elif tag == "tr":
            self._column = -1
        elif tag == "td" and self._table is not None:
            self._column += 1
            self._cell = ""

    def handle_endtag(self, tag):
        if tag == "data":
            self.quoted.append(tuple(self._data))
            self._data = None
        elif tag in ("td", "tbody"):
            self._end_cell()
        elif tag == "table" and self._table is not None:
            self.columns += [column for column in self._table if column[0]]
            self._table = None

    def _end_cell(self):
        if self._cell:
            self._table[self._column][1].append(self._cell)
        self._cell = None

    def handle_data(self, text):
        if self._data is not None:
            self._data[2] += text
        if self._cell is not None:
            self._cell += text


def rows_of(path):
    with open(path, newline="", encoding="utf-8") as stream:
        return list(csv.DictReader(stream, delimiter="\t"))


class Outputs:
    """Looks up what "FILE#WAY" stands for."""

    def __init__(self, folder):
        self.folder = folder
        self._files = {}

    def _file(self, name):
        if name not in self._files:
            path = self.folder / name
            self._files[name] = json.loads(path.read_text()) if name.endswith(".json") else rows_of(path)
        return self._files[name]

    def at(self, source):
        name, _, way = source.partition("#")
        content = self._file(name)
        if name.endswith(".json"):
            for step in way.strip("/").split("/"):
                content = content[int(step)] if isinstance(content, list) else content[step]
            return content
        chosen, _, column = way.partition("/")
        if chosen == "":
            return [row[column] for row in content]
        if "=" in chosen:
            key, _, wanted = chosen.partition("=")
            return [row[column] for row in content if row[key] == wanted]
        return content[int(chosen) - 1][column]


def same(one, other):
    def number(value):
        return math.nan if value in (None, "n/a") else float(value)

    a, b = number(one), number(other)
    return a == b or (math.isnan(a) and math.isnan(b))


def is_rounding(shown, value):
    """Whether the text on the page is the value to as many digits as it has."""
    value, number = float(value), float(shown)
    if value == number:
        return True
    digits = shown.lower().partition("e")[0].partition(".")[2]
    exponent = int(shown.lower().partition("e")[2] or 0)
    return abs(value - number) <= 0.5000001 * 10.0 ** (exponent - len(digits)) or abs(value - number) <= abs(
        value
    ) * 0.5e-3


def check_page(page_file):
    page = Page()
    page.feed(page_file.read_text(encoding="utf-8"))
    outputs = Outputs(page_file.parent)
    for value, source, shown in page.quoted:
        assert same(value, outputs.at(source)), f"{source}: {value} on the page, {outputs.at(source)} in the file"
        assert is_rounding(shown, value), f"{source}: {value} is shown as {shown}"
    for source, cells in page.columns:
        stored = outputs.at(source)
        assert len(cells) == len(stored), f"{source}: {len(cells)} cells for {len(stored)} numbers"
        for cell, number in zip(cells, stored):
            equal = same(cell, number) or (cell != "n/a" and math.isclose(float(cell), float(number), rel_tol=5.1e-6))
            assert equal, f"{source}: {cell} on the page, {number} in the file"
    return page, outputs


def expected_sources(name, record):
    """What a reader of the record must find on the page."""
    yield f"{name}#/ReferenceVoxels"
    yield f"{name}#/ModelOrder"
    yield f"{name}#/Seed"
    for c, condition in enumerate(record["Conditions"]):
        at = f"{name}#/Conditions/{c}"
        yield at + "/VolumesUsed"
        yield at + "/EffectiveVolumes"
        yield at + "/Voxels/computed"
        for r, _ in enumerate(condition["Runs"]):
            yield f"{at}/Runs/{r}/RepetitionTime"
        for m, kind in enumerate(condition["Maps"]):
            for t, threshold in enumerate(kind.get("Thresholds", [])):
                if threshold["VoxelsPassingOutsideReference"] > 0:
                    yield f"{at}/Maps/{m}/Thresholds/{t}/VoxelsPassingOutsideReference"
                    yield f"{at}/Maps/{m}/Thresholds/{t}/Threshold"
            yield f"{at}/Maps/{m}/Peak/Value"
            yield f"{at}/Maps/{m}/Peak/Millimetres/2"


def expected_columns(name, evidence):
    for m, kind in enumerate(evidence["Maps"]):
        yield f"{name}#/Maps/{m}/Histogram/Edges"
        yield f"{name}#/Maps/{m}/Histogram/Observed"
        if "Search" in kind:
            yield f"{name}#/Maps/{m}/Search/P"
    for r, run in enumerate(evidence["Runs"]):
        for part, column in (("Spectrum", "/Reference"), ("Residuals", "/Autocorrelation"), ("Motion", "")):
            if part in run:
                yield f"{name}#/Runs/{r}/{part}{column}"


def check_report(page_file):
    page, outputs = check_page(page_file)
    quoted = {source for _, source, _ in page.quoted}
    columns = {source for source, _ in page.columns}
    prefix = page_file.name.removesuffix("_report.html")
    records = sorted(page_file.parent.glob(f"{prefix}_seed-*_tavmap.json"))
    assert records, f"{page_file}: no records beside it"
    for file in records:
        record = json.loads(file.read_text())
        missing = [source for source in expected_sources(file.name, record) if source not in quoted]
        assert not missing, f"{page_file.name} lacks {missing[:5]}"
        for condition in record["Conditions"]:
            if "EvidenceFile" not in condition:
                continue
            name = condition["EvidenceFile"]
            lacking = [s for s in expected_columns(name, outputs._file(name)) if s not in columns]
            assert not lacking, f"{page_file.name} lacks {lacking[:5]}"
    return len(page.quoted) + sum(len(cells) for _, cells in page.columns)


def run_of_simulation(tavmap, folder):
    """A small whole run with two references, a task and a chosen order."""
    subprocess.run([tavmap, "simulate", "data", "--seed", "3"], cwd=folder, check=True, stdout=subprocess.DEVNULL)
    (folder / "request.toml").write_text(
        """prefix = "simulated"
folder = "results"
seed = 5
[settings]
order = "bic"
max_order = 3
null_draws = 5
fwe_draws = 50
surrogates = 60
[[run]]
name = "run1"
bold = "data/RUN"
[[reference]]
label_image = "data/dseg.nii.gz"
labels = "all"
[[condition]]
name = "whole"
whole_run = true
""".replace("RUN", next(p.name for p in sorted((folder / "data").glob("*bold*.nii*"))))
    )
    subprocess.run([tavmap, "run", "request.toml", "--quiet"], cwd=folder, check=True)
    return folder / "results" / "simulated_report.html"


GROUP_COUNTS = ("VoxelsByMaximum", "VoxelsByEnhancement", "ClustersByMass", "VoxelsByFalseDiscovery")
GROUP_PEAK = ("ClusterVoxels", "Effect", "T", "PFamilyWise", "PEnhanced", "PMass", "QFalseDiscovery", "Participants")


def run_of_group(tavmap, folder):
    """A small study of two groups; its two tests have a page each."""
    run = lambda *words: subprocess.run([tavmap, *words], cwd=folder, check=True, stdout=subprocess.DEVNULL)
    run("simulate", "people", "--group-study", "--participants", "8", "--spoilt", "none")
    atlas = next((folder / "people/derivatives/atlas").glob("*dseg.nii.gz"))
    (folder / "c.toml").write_text("[settings]\nfwe_draws = 0\n")
    run("bids", "people", "out", "participant", "--atlas", str(atlas), "--labels", "Reference", "--trial-types", "faces",
        "--config-file", "c.toml", "--seed", "1", "--no-report", "--quiet")
    (folder / "g.toml").write_text(
        "[inference]\nshuffles = 60\n[[test]]\nname = 'mean'\nmaps = ['dTAV', 'Ref2Vox']\n"
        "[[test]]\nname = 'groups'\nmaps = ['dTAV']\ncontrast = 'patient - control'\n"
    )
    run("group", "out", "--model", "g.toml", "--quiet")
    return sorted((folder / "out/group").glob("*_report.html"))


def expected_of_group(name, record):
    for count in GROUP_COUNTS:
        yield from (f"{name}#/{count}/{side}" for side in ("Positive", "Negative"))
    for index, peak in enumerate(record["Peaks"][:60]):
        yield from (f"{name}#/Peaks/{index}/{figure}" for figure in GROUP_PEAK if peak[figure] is not None)
        for row in range(len(peak["Values"])):
            yield f"{name}#/Peaks/{index}/Values/{row}/Value"


def check_group(page_file):
    page, outputs = check_page(page_file)
    quoted = {source for _, source, _ in page.quoted}
    test = page_file.name.removesuffix("_report.html")
    records = sorted(page_file.parent.glob(f"*_desc-{test}_grouptest.json"))
    assert records, f"{page_file}: no records beside it"
    for file in records:
        missing = [s for s in expected_of_group(file.name, json.loads(file.read_text())) if s not in quoted]
        assert not missing, f"{page_file.name} lacks {missing[:5]}"
    return len(page.quoted)


def main():
    tavmap, write_samples = (str(Path(argument).resolve()) for argument in sys.argv[1:])
    with tempfile.TemporaryDirectory(prefix="tavmap-numbers-") as name:
        folder = Path(name)
        subprocess.run([write_samples, folder / "samples"], check=True)
        subprocess.run([tavmap, "report", folder / "samples"], check=True, stdout=subprocess.DEVNULL)
        pages = sorted((folder / "samples").glob("*/sample_report.html"))
        assert len(pages) == 5
        quoted = {source for _, source, _ in check_page(folder / "samples" / "index.html")[0].quoted}
        assert "las/sample_seed-V1_tavmap.json#/Conditions/0/EffectiveVolumes" in quoted
        pages.append(run_of_simulation(tavmap, folder))
        for page in pages:
            print(f"{page.relative_to(folder)}: {check_report(page)} numbers compared")
        pages = run_of_group(tavmap, folder)
        assert len(pages) == 2
        for page in pages:
            print(f"{page.relative_to(folder)}: {check_group(page)} numbers compared")


if __name__ == "__main__":
    main()
