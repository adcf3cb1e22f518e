"""Calibrates a camera from a picture of a chart, looks at how good it is, and corrects frames with it.

    python3 calibrate_from_python.py chart.bmp [frame.bmp ...]
"""

import pathlib
import sys

import numpy

import tonewright

# %% Find the chart, whatever way it lies, and fit. The picture could as well be an array of a camera's own library.
if len(sys.argv) < 2:
    sys.exit(__doc__)
chart = pathlib.Path(sys.argv[1])
try:
    calibration = tonewright.calibrate(chart, find=True, illuminant="D65", terms="auto")
except tonewright.Error as error:
    sys.exit(str(error))

# %% What does it deliver, and what speaks against the picture?
delivered = calibration.quality.delivered.delta_e_2000
print(f"{calibration.terms} terms, mean CIEDE2000 {delivered.mean:.2f}, before "
      f"{calibration.quality.before.delta_e_2000.mean:.2f}")
for patch in numpy.argsort(delivered.patches)[:-4:-1]:
    print(f"  patch {patch + 1}: {delivered.patches[patch]:.2f}")
for finding in calibration.findings:
    print(f"{finding.severity}: {finding.text}")

# %% What the device, the Studio and other programs take.
calibration.save_coefficients(chart.with_suffix(".ccor"))
calibration.save_parameters(chart.with_suffix(".twkp"))
calibration.report(chart.with_suffix(".html"))

# %% Correct frames in memory that is used again: no allocation once the first of a size is through.
corrected = None
for name in sys.argv[2:]:
    frame = tonewright.load_image(name)
    is_alike = corrected is not None and corrected.shape == frame.shape and corrected.dtype == frame.dtype
    corrected = calibration.apply(frame, out=corrected if is_alike else None)
    tonewright.save_image(pathlib.Path(name).with_suffix(".corrected.bmp"), corrected)
    print(f"{name}: mean {numpy.mean(frame, (0, 1)).round(1)} became {numpy.mean(corrected, (0, 1)).round(1)}")
