"""The measures of a small connectome against statsmodels' vector autoregressions."""

import json
import pathlib
import subprocess
import sys

import nibabel
import numpy as np
from statsmodels.tsa.api import VAR

REQUEST = """prefix = 'check'
seed = 1
[settings]
order = {order}
[connectome]
surrogates = 100
[[run]]
name = 'r'
bold = 'bold.nii.gz'
mask = 'mask.nii.gz'
[[reference]]
label_image = 'dseg.nii.gz'
labels = 'all'
"""


def made(folder):
    random = np.random.default_rng(4)
    volumes, noise = 300, random.normal(size=(4, 350))
    series = np.zeros((4, 350))
    for t in range(2, 350):
        series[:, t] = 0.4 * series[:, t - 1] + noise[:, t]
        series[1, t] += 0.4 * series[0, t - 1]
        series[3, t] += 0.3 * series[2, t - 2]
    series = series[:, 50:]
    image = np.full((4, 2, 2, volumes), 1000, np.float32)
    labels = np.zeros((4, 2, 2), np.int16)
    for node in range(4):
        image[node] += 20 * series[node]
        labels[node] = node + 1
    affine = np.diag([3.0, 3.0, 3.0, 1.0])
    header = nibabel.Nifti1Image(image, affine)
    header.header.set_xyzt_units("mm", "sec")
    header.header["pixdim"][4] = 2
    nibabel.save(header, folder / "bold.nii.gz")
    nibabel.save(nibabel.Nifti1Image(labels, affine), folder / "dseg.nii.gz")
    nibabel.save(nibabel.Nifti1Image(np.ones((4, 2, 2), np.int16), affine), folder / "mask.nii.gz")
    (folder / "dseg.tsv").write_text("index\tname\n1\ta\n2\tb\n3\tc\n4\td\n")
    return image[:, 0, 0, :].astype(float)


def detrended(series):
    t = np.vstack([np.ones(series.shape[1]), np.arange(series.shape[1])]).T
    return series - (t @ np.linalg.lstsq(t, series.T, rcond=None)[0]).T


def error_squares(endogenous, order):
    """Sum of squared errors of the first series' equation, and the errors' cross products."""
    fit = VAR(endogenous.T).fit(order, trend="n")
    return fit.resid.T @ fit.resid


def single_squares(series, order):
    past = np.array([series[order - k - 1 : -k - 1] for k in range(order)]).T
    now = series[order:]
    rest = now - past @ np.linalg.lstsq(past, now, rcond=None)[0]
    return rest @ rest


def expected(series, order):
    nodes = len(series)
    influence, instantaneous = np.full((nodes, nodes), np.nan), np.full((nodes, nodes), np.nan)
    for a in range(nodes):
        for b in range(nodes):
            if a == b:
                continue
            joint = error_squares(series[[a, b]], order)
            influence[a, b] = np.log(single_squares(series[b], order) / joint[1, 1])
            instantaneous[a, b] = np.log(joint[0, 0] * joint[1, 1] / np.linalg.det(joint))
    return influence, instantaneous


def read(file):
    return np.genfromtxt(file, skip_header=1, missing_values="n/a", filling_values=np.nan)


def main():
    program, folder = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    for order in (1, 3):
        place = folder / str(order)
        place.mkdir(parents=True, exist_ok=True)
        series = detrended(made(place))
        (place / "r.toml").write_text(REQUEST.format(order=order))
        subprocess.run([program, "connectome", place / "r.toml", "--force", "-q"], check=True)
        influence, instantaneous = expected(series, order)
        stem = place / "results" / "check_contrast-whole_meas-"
        for name, values in (("Influence", influence), ("Instantaneous", instantaneous)):
            found = read(f"{stem}{name}_relmat.tsv")
            np.testing.assert_allclose(found, values, atol=1e-6, equal_nan=True, err_msg=f"{name}, order {order}")
        record = json.loads((place / "results" / "check_connectome.json").read_text())
        assert record["ModelOrder"] == order and record["Nodes"] == 4


main()
