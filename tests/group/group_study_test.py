"""A study of two groups under two conditions, from a BIDS tree to the page of a group, in two commands.

t of every voxel equals ordinary least squares over the participants' images; what was planted is found where it was
planted, and the regions without an effect are not. Usage: group_study_test.py TAVMAP
"""

import csv
import json
import subprocess
import sys
import tempfile
from pathlib import Path

import nibabel
import numpy
import statsmodels.api

MODEL = """
[inference]
shuffles = 500

[[test]]
name = "groups"
maps = ["dTAV", "Ref2Vox"]
conditions = ["faces"]
contrast = "patient - control"
covariates = ["age", "sex"]
leave_out = ["sub-16"]

[[test]]
name = "conditions"
maps = ["dTAV"]
within = "faces - houses"
leave_out = ["sub-16"]
"""


def run(*arguments, cwd):
    return subprocess.run(arguments, cwd=cwd, check=True, capture_output=True, text=True).stdout


def image(path):
    return nibabel.load(path).get_fdata()


class Study:
    def __init__(self, tavmap, folder):
        self.folder = folder
        run(tavmap, "simulate", "study", "--group-study", "--group-effect", "1", "--condition-effect", "1", "--seed", "1", cwd=folder)
        atlas = next((folder / "study/derivatives/atlas").glob("*dseg.nii.gz"))
        run(tavmap, "bids", "study", "out", "participant", "--atlas", str(atlas), "--labels", "Reference",
            "--trial-types", "faces", "houses", "--config-file", self.config(), "--seed", "3", "--jobs", "2",
            "--no-report", "--quiet", cwd=folder)
        (folder / "group.toml").write_text(MODEL)
        self.said = run(tavmap, "bids", "study", "out", "group", "--model", "group.toml", "--jobs", "2", cwd=folder)
        self.labels = image(atlas).astype(int)
        with open(str(atlas).replace(".nii.gz", ".tsv")) as table:
            self.names = {row["name"]: int(row["index"]) for row in csv.DictReader(table, delimiter="\t")}

    def config(self):
        (self.folder / "config.toml").write_text("[settings]\nfwe_draws = 0\n")
        return "config.toml"

    def record(self, test, which):
        return json.loads(next((self.folder / "out/group").glob(f"*contrast-{which}_desc-{test}_grouptest.json")).read_text())

    def map(self, record, what):
        name = next(one["File"] for one in record["Images"] if one["What"] == what)
        return image(self.folder / "out/group" / name)

    def values(self, record):
        """Participants x voxels, from the first level's own files."""
        rows = []
        for row in record["Rows"]:
            images = [image(self.folder / "out" / name) for name in row["Images"]]
            rows.append(images[0] - images[1] if len(images) == 2 else images[0])
        return numpy.array(rows)

    def region(self, name):
        return self.labels == self.names[name]


def check_t(study, record):
    t, values = study.map(record, "t"), study.values(record)
    design = numpy.array([row["Design"] for row in record["Rows"]])
    tested = numpy.argwhere(numpy.isfinite(t))
    assert len(tested) == record["VoxelsTested"] > 1000
    for voxel in tested[:: len(tested) // 150]:
        voxel = tuple(voxel)
        fit = statsmodels.api.OLS(values[(slice(None), *voxel)], design).fit()
        expected = float(fit.t_test(numpy.array(record["Weights"])).tvalue.item())
        assert abs(t[voxel] - expected) <= 1e-5 * max(1, abs(expected)), (voxel, t[voxel], expected)


def share_found(study, record, region, what="pfwetfce"):
    p = study.map(record, what)[study.region(region)]
    return float(numpy.mean(p[numpy.isfinite(p)] <= 0.05))


def check_planted(study, truth):
    groups, conditions = study.record("groups", "facesdTAV"), study.record("conditions", "faceshousesdTAV")
    by_group, by_condition = (truth["effects"][by]["region"] for by in ("group", "condition"))
    assert share_found(study, groups, by_group) > 0.5, share_found(study, groups, by_group)
    assert share_found(study, conditions, by_condition) > 0.5, share_found(study, conditions, by_condition)
    for name in ("Unrelated-A", "Unrelated-B"):
        assert share_found(study, groups, name) == 0 and share_found(study, conditions, name) == 0, name


def check_design(record):
    assert [row["Participant"] for row in record["Rows"]] == [f"{i:02}" for i in range(1, 16)]
    assert record["Columns"] == ["control", "patient", "age", "sex"]
    assert record["Weights"] == [-1, 1, 0, 0]
    assert record["Exchange"] == "permutations" and record["Shuffles"] == 501


def main():
    tavmap = str(Path(sys.argv[1]).resolve())
    with tempfile.TemporaryDirectory(prefix="tavmap-group-") as name:
        study = Study(tavmap, Path(name))
        truth = json.loads(next(study.folder.glob("study/derivatives/atlas/study_truth.json")).read_text())
        groups, conditions = study.record("groups", "facesdTAV"), study.record("conditions", "faceshousesdTAV")
        check_design(groups)
        for record in (groups, conditions, study.record("groups", "facesRef2Vox")):
            check_t(study, record)
        check_planted(study, truth)
        for page in ("groups", "conditions"):
            assert (study.folder / f"out/group/{page}_report.html").stat().st_size > 50_000
            assert f"{page}_report.html" in study.said
        print("t equals least squares; what was planted is found")


if __name__ == "__main__":
    main()
