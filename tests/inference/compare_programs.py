#!/usr/bin/env python3
"""Compares t and enhanced values with statsmodels and, where it is installed, with mrclusterstats.

Usage: compare_programs.py PROGRAM FOLDER    PROGRAM: inference_print, FOLDER: for files of mrclusterstats
"""

import shutil
import subprocess
import sys
from pathlib import Path

import nibabel
import numpy as np
import statsmodels.api as sm

GRID = (12, 10, 9)
ROWS = 14


def run(program, design, contrast, values, connectivity=6, step=0.0, permute=True, shuffles=100):
    """Effect, t, enhanced and p per voxel; the first axis of the grid is fastest."""
    head = [ROWS, design.shape[1], *GRID, connectivity, step, int(permute), shuffles]
    text = " ".join(repr(float(x)) for x in [*head, *contrast, *design.ravel(), *values.ravel()])
    result = subprocess.run([program], input=text, capture_output=True, text=True, check=True)
    return np.array([[float(x) for x in line.split()] for line in result.stdout.splitlines()]).T


def made(seed):
    """Smooth maps [row][voxel] as floats, a design of two groups and two covariates of very different units."""
    random = np.random.default_rng(seed)
    maps = random.standard_normal((ROWS, *reversed(GRID)))
    for axis in (1, 2, 3):
        maps = maps + 0.7 * np.roll(maps, 1, axis) + 0.7 * np.roll(maps, -1, axis)
    group = np.arange(ROWS) % 2
    design = np.column_stack([group, 1 - group, random.normal(40, 12, ROWS), 1e-4 * random.standard_normal(ROWS)])
    maps += 0.6 * group[:, None, None, None] + 0.05 * design[:, 2, None, None, None]
    return maps.reshape(ROWS, -1).astype(np.float32), design


def check(what, apart, limit):
    print(f"{what}: apart by {apart:.2g}, limit {limit:g}")
    return apart <= limit


def compare_statsmodels(program):
    values, design = made(1)
    values[3, ::7] = np.nan
    values[5, ::21] = np.nan
    good = True
    for contrast in ([1, -1, 0, 0], [0, 0, 1, 0], [0, 0, 0, 1], [0.5, 0.5, 40, 0]):
        effect, t, _, _ = run(program, design, contrast, values)
        apart_t, apart_effect = 0.0, 0.0
        for voxel in range(values.shape[1]):
            there = ~np.isnan(values[:, voxel])
            test = sm.OLS(values[there, voxel].astype(float), design[there]).fit().t_test(contrast)
            apart_t = max(apart_t, abs(t[voxel] - test.tvalue.item()) / max(1, abs(test.tvalue.item())))
            apart_effect = max(apart_effect, abs(effect[voxel] / test.effect.item() - 1))
        good &= check(f"t of {contrast}, statsmodels", apart_t, 1e-5)
        good &= check(f"effect of {contrast}, statsmodels", apart_effect, 1e-4)
    return good


def write_maps(folder, values):
    folder.mkdir(parents=True, exist_ok=True)
    names = []
    for row in range(ROWS):
        data = values[row].reshape(tuple(reversed(GRID))).T
        nibabel.save(nibabel.Nifti1Image(data, np.eye(4)), folder / f"map{row}.nii")
        names.append(f"map{row}.nii")
    nibabel.save(nibabel.Nifti1Image(np.ones(GRID, np.float32), np.eye(4)), folder / "mask.nii")
    (folder / "maps.txt").write_text("\n".join(names) + "\n")


def peer_maps(folder, design, contrast, connectivity):
    np.savetxt(folder / "design.txt", design, fmt="%.17g")
    np.savetxt(folder / "contrast.txt", np.array([contrast]), fmt="%.17g")
    command = ["mrclusterstats", "maps.txt", "design.txt", "contrast.txt", "mask.nii", "out", "-force", "-quiet",
               "-nshuffles", "10", "-nthreads", "1"]
    subprocess.run(command + (["-connectivity"] if connectivity == 26 else []), cwd=folder, check=True)
    maps = []
    for name in ("tvalue", "tfce"):
        subprocess.run(["mrconvert", f"out{name}.mif", f"{name}.nii", "-force", "-quiet"], cwd=folder, check=True)
        maps.append(nibabel.load(folder / f"{name}.nii").get_fdata().T.ravel())
    return maps


def compare_peer(program, folder):
    """Its rule: sums over steps of .1, positive side; 6 or 26 neighbours."""
    values, design = made(2)
    write_maps(folder, values)
    good = True
    for connectivity in (6, 26):
        contrast = [1, -1, 0, 0]
        peer_t, peer_map = peer_maps(folder, design, contrast, connectivity)
        _, t, enhanced, _ = run(program, design, contrast, values, connectivity, 0.1)
        good &= check("t, mrclusterstats", np.abs(t - peer_t).max(), 1e-5)
        positive = np.maximum(enhanced, 0)
        good &= check(f"enhanced by {connectivity} neighbours, mrclusterstats",
                      np.abs(positive - peer_map).max() / peer_map.max(), 1e-4)
    return good


def main():
    program, folder = sys.argv[1], Path(sys.argv[2])
    good = compare_statsmodels(program)
    if shutil.which("mrclusterstats"):
        good &= compare_peer(program, folder)
    else:
        print("mrclusterstats is not installed (Debian's package mrtrix3): not compared")
    sys.exit(0 if good else 1)


if __name__ == "__main__":
    main()
