"""Color calibration of machine-vision cameras and frame grabbers from pictures of a color chart.

    import tonewright

    calibration = tonewright.calibrate("chart.bmp", illuminant="D65")
    print(calibration.quality.delivered)
    calibration.save_coefficients("camera.ccor")
    corrected = calibration.apply(tonewright.load_image("frame.bmp"))

Pictures are numpy arrays of shape (height, width, 3) in the order red, green, blue, of uint8 or uint16, or
(height, width) of gray. Long work lets Python's other threads run. What fails raises Error with the library's words;
arguments that cannot be raise ValueError or TypeError.
"""

from ._tonewright import *  # noqa: F403
from ._tonewright import __version__ as __version__
