"""Runs the README's first command on the real example and checks the maps in an independent reader.

usage: overlay_check.py TAVMAP EXAMPLE_DIR WORK_DIR
"""
import json
import pathlib
import subprocess
import sys
import warnings

import nibabel
import numpy

warnings.simplefilter("error")  # a file that opens with a warning is a failure
# nibabel itself triggers deprecations of the libraries below it, none of them about the file.
warnings.filterwarnings("ignore", category=DeprecationWarning)
program, example, work = str(pathlib.Path(sys.argv[1]).resolve()), pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
work.mkdir(parents=True, exist_ok=True)
for name in ("bold_small.nii.gz", "mask_small.nii.gz", "dseg_small.nii.gz", "dseg_small.tsv", "events.tsv"):
    (work / name).write_bytes((example / name).read_bytes())
request = subprocess.run([program, "run", "--example"], check=True, capture_output=True, text=True).stdout
(work / "study.toml").write_text(request)
subprocess.run([program, "run", "study.toml", "--seed", "1", "--quiet", "--force"], check=True, cwd=work)

anatomy = nibabel.load(str(example / "t1_small.nii.gz"))
bold = nibabel.load(str(example / "bold_small.nii.gz"))
mask = numpy.asarray(nibabel.load(str(example / "mask_small.nii.gz")).dataobj) != 0
label = numpy.asarray(nibabel.load(str(example / "dseg_small.nii.gz")).dataobj)
region = label == 20  # 7Networks_LH_Vis_4
results = work / "results"
cut = sorted(results.glob("*_desc-thresholded_stat-effect_statmap.nii.gz"))
assert len(cut) == 10, cut
for path in cut:
    effect = nibabel.load(str(path).replace("_desc-thresholded", ""))
    stem, contrast = path.name.split("_desc-")[0].split("_contrast-")
    passing = nibabel.load(str(results / f"{stem}_desc-{contrast}Passing_dseg.nii.gz"))
    shown = numpy.where(numpy.asarray(passing.dataobj) > 0, numpy.asarray(effect.dataobj), 0)
    assert numpy.array_equal(numpy.asarray(nibabel.load(str(path)).dataobj), shown), path
maps = sorted(set(results.glob("*_stat-effect_statmap.nii.gz")) - set(cut))
assert len(maps) == 12, maps
for path in maps:
    image = nibabel.load(str(path))
    assert image.shape == bold.shape[:3] == anatomy.shape, path
    assert image.get_data_dtype() == numpy.float32, path
    assert numpy.allclose(image.affine, bold.affine, atol=1e-5), path
    assert numpy.allclose(image.affine, anatomy.affine, atol=1e-4), path
    values = numpy.asarray(image.dataobj)
    assert numpy.all(values[~mask] == 0), path
    assert numpy.isfinite(values).all(), path
    sidecar = json.loads(path.with_name(path.name.replace(".nii.gz", ".json")).read_text())
    for threshold in sidecar.get("Thresholds", []):
        passes = abs(values) >= numpy.float32(numpy.inf if threshold["Threshold"] is None else threshold["Threshold"])
        passing = int(passes[~region].sum())
        assert passing == threshold["VoxelsPassing"], (path, threshold, passing)

# Known values: the instantaneous influence is largest within the reference itself, and so is its
# place in the grid.
inst = next(p for p in maps if "wholeInst" in p.name)
values = numpy.asarray(nibabel.load(str(inst)).dataobj)
assert values[region].mean() > 10 * values[mask & ~region].mean(), (values[region].mean(), values[mask & ~region].mean())

status = numpy.asarray(nibabel.load(str(next(results.glob("*wholeStatus_dseg.nii.gz")))).dataobj)
assert numpy.array_equal(status == 0, ~mask)
assert numpy.array_equal(status == 4, region & mask)

maps4d = nibabel.Nifti1Image.from_bytes((results / "oneback_7Networks_LH_Vis_4.tav").read_bytes())
assert maps4d.shape == bold.shape[:3] + (12,)
assert numpy.allclose(maps4d.affine, bold.affine, atol=1e-4)
print("12 maps overlay")
