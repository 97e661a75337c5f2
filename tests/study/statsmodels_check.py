#!/usr/bin/env python3
"""Compares maps of method "calibrated" with least-squares fits of another implementation.

Usage: statsmodels_check.py TAVMAP WORK_FOLDER

A whole run, a censored run with confounds, and two runs are mapped. statsmodels fits the models (VAR where there is
one interval, ordinary least squares over the stacked samples where there are several), and Geweke's measures follow
from the residuals: within 1e-6 for the reference path, 3e-4 for the kernel of this machine.
"""

import json
import os
import subprocess
import sys
from pathlib import Path

import nibabel
import numpy
from statsmodels.regression.linear_model import OLS
from statsmodels.tsa.api import VAR

ORDERS = (1, 2, 3, 8, 20)
VOXELS = 40
TOLERANCES = {"reference": 1e-6, "": 3e-4}
MAPS = {"Ref2Vox": 0, "Vox2Ref": 1, "Inst": 2}
REFERENCE = "7Networks_LH_Vis_4"


def detrended(series):
    """Residuals about a straight line; series: volumes x columns."""
    line = numpy.column_stack([numpy.ones(len(series)), numpy.arange(len(series))])
    return series - line @ numpy.linalg.lstsq(line, series, rcond=None)[0]


def measures_of_errors(alone_x, alone_y, joint):
    determinant = joint[0, 0] * joint[1, 1] - joint[0, 1] ** 2
    return (numpy.log(alone_y / joint[1, 1]), numpy.log(alone_x / joint[0, 0]),
            numpy.log(joint[0, 0] * joint[1, 1] / determinant))


def by_var(pair, order):
    """One interval: vector autoregression without a constant."""
    residuals = VAR(pair).fit(order, trend="n").resid
    joint = residuals.T @ residuals
    alone = [numpy.sum(stacked_residuals([pair[:, [i]]], order) ** 2) for i in (0, 1)]
    return measures_of_errors(alone[0], alone[1], joint)


def stacked_residuals(intervals, order):
    """Least squares over the samples of all intervals that have their whole past."""
    targets = numpy.vstack([interval[order:] for interval in intervals])
    past = numpy.vstack([
        numpy.column_stack([interval[order - lag:len(interval) - lag] for lag in range(1, order + 1)])
        for interval in intervals
    ])
    return numpy.column_stack([OLS(targets[:, i], past).fit().resid for i in range(targets.shape[1])])


def by_stacking(intervals, order):
    residuals = stacked_residuals(intervals, order)
    joint = residuals.T @ residuals
    alone = [numpy.sum(stacked_residuals([interval[:, [i]] for interval in intervals], order) ** 2) for i in (0, 1)]
    return measures_of_errors(alone[0], alone[1], joint)


class Case:
    def __init__(self, name, runs, ranges, confounds=None, kept=None):
        self.name, self.runs, self.ranges, self.confounds, self.kept = name, runs, ranges, confounds, kept

    def prepared(self, run):
        """The run's series without confounds: volumes x voxels. Censored volumes take no part in the regression."""
        series = self.runs[run]
        if self.confounds is None:
            return series
        kept = self.kept if self.kept is not None else numpy.ones(len(series), bool)
        design = numpy.column_stack([numpy.ones(len(series)), self.confounds])
        weights = numpy.linalg.lstsq(design[kept], series[kept], rcond=None)[0]
        return series - design[:, 1:] @ weights[1:]


def write_runs(case, folder, affine):
    names = []
    for index, series in enumerate(case.runs):
        image = series.T.reshape(SHAPE + (len(series),)).astype(numpy.float32)
        header = nibabel.Nifti1Image(image, affine)
        header.header.set_zooms((3, 3, 3, 2))
        header.header.set_xyzt_units("mm", "sec")
        nibabel.save(header, folder / f"run{index}.nii")
        names.append(f"run{index}.nii")
    return names


def request_text(case, order, names, prefix):
    lines = [f'prefix = "{prefix}"', f'folder = "{prefix}"', "seed = 1", "[settings]", f"order = {order}",
             'map_types = ["REF2VOX", "VOX2REF", "INST"]', "map_scale = 1", "surrogates = 10", "null_draws = 1"]
    for name in names:
        lines += ["[[run]]", f'name = "{Path(name).stem}"', f'bold = "{name}"', 'mask = "mask.nii"']
        if case.confounds is not None:
            lines += ['confounds = "confounds.tsv"', 'regress = ["c*"]']
    lines += ["[[reference]]", 'name = "Region"', "voxels = [[0, 0, 0], [1, 0, 0], [2, 0, 0]]", "[[condition]]",
              'name = "all"']
    lines.append("intervals = " + json.dumps([[first + 1, end] for first, end in case.ranges]))
    return "\n".join(lines) + "\n"


def expected(case, order, voxel):
    intervals = []
    for run in range(len(case.runs)):
        series = case.prepared(run)
        # The program works on single-precision images.
        region = series[:, REGION].astype(numpy.float32).mean(axis=1)
        pair = numpy.column_stack([region, series[:, voxel].astype(numpy.float32)]).astype(float)
        intervals += [detrended(pair[first:end]) for first, end in case.ranges]
    return by_var(intervals[0], order) if len(intervals) == 1 else by_stacking(intervals, order)


SHAPE = (8, 7, 1)
REGION = [0, 7, 14]  # voxels (0, 0, 0), (1, 0, 0) and (2, 0, 0), z fastest


def simulated(volumes, seed):
    """Autoregressive voxels, some of which follow the first ones; around 200, so that single precision holds them well."""
    random = numpy.random.default_rng(seed)
    voxels = numpy.prod(SHAPE)
    series = numpy.zeros((volumes, voxels))
    noise = random.normal(size=(volumes, voxels))
    for t in range(1, volumes):
        series[t] = 0.6 * series[t - 1] + noise[t]
        series[t, 10:30] += 0.4 * series[t - 1, 0]
    return (200 + 10 * series).astype(numpy.float32).astype(float)


def check(tavmap, case, order, kernel, folder):
    names = write_runs(case, folder, numpy.diag([3, 3, 3, 1]))
    nibabel.save(nibabel.Nifti1Image(numpy.ones(SHAPE, numpy.uint8), numpy.diag([3, 3, 3, 1])), folder / "mask.nii")
    if case.confounds is not None:
        columns = [f"c{i}" for i in range(case.confounds.shape[1])]
        rows = ["\t".join(columns)] + ["\t".join(repr(float(v)) for v in row) for row in case.confounds]
        (folder / "confounds.tsv").write_text("\n".join(rows) + "\n")
    prefix = f"{case.name}{order}{kernel or 'kernel'}"
    (folder / "request.toml").write_text(request_text(case, order, names, prefix))
    environment = dict(os.environ, TAVMAP_KERNEL=kernel) if kernel else dict(os.environ)
    done = subprocess.run([tavmap, "run", "request.toml", "--quiet", "--force"], cwd=folder, env=environment, text=True,
                          capture_output=True)
    if done.returncode != 0:
        return f"{prefix}: {done.stderr}"
    worst = 0.0
    for name, index in MAPS.items():
        values = nibabel.load(folder / prefix / f"{prefix}_seed-Region_contrast-all{name}_stat-effect_statmap.nii.gz")
        values = values.get_fdata().reshape(-1)
        for voxel in range(15, 15 + VOXELS):
            worst = max(worst, abs(values[voxel] - expected(case, order, voxel)[index]))
    print(f"{prefix}: {worst:.1e}")
    return "" if worst <= TOLERANCES[kernel] else f"{prefix}: off by {worst:.1e}, allowed {TOLERANCES[kernel]:.0e}"


def cases():
    random = numpy.random.default_rng(7)
    confounds = random.normal(size=(220, 5)).cumsum(axis=0)
    return [
        Case("whole", [simulated(220, 1)], [(0, 220)]),
        Case("censored", [simulated(220, 2)], [(0, 100), (101, 135), (140, 220)]),
        Case("runs", [simulated(150, 3), simulated(150, 4)], [(0, 150)]),
        Case("confounds", [simulated(220, 5)], [(0, 220)], confounds),
    ]


def main(arguments):
    tavmap, folder = arguments[1], Path(arguments[2])
    folder.mkdir(parents=True, exist_ok=True)
    problems = [
        problem
        for case in cases() for order in ORDERS for kernel in TOLERANCES
        if (problem := check(tavmap, case, order, kernel, folder))
    ]
    for problem in problems:
        print(problem, file=sys.stderr)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
