"""trackedcam calibrates a tracked camera from photographs of a tracked chessboard chart.

    import trackedcam
    report = trackedcam.calibrate("shoot/tracker_data.csv", sensor_mm=(36, 20.25), board=(9, 6), square_m=0.03,
                                  chart_rotation_deg=(12, -8, 5), chart_translation_m=(0.1, -0.05, 0.02),
                                  log_folder="log")
    report.transform_cam_tc     # 4×4, metres
    report.lens.camera_matrix   # 3×3, pixels

Frames: Cam is the camera's optical frame (x right, y down, z forward), Tc the tracker on the camera, Tr the tracker
on the chart, Chart the chessboard. transform_a_b takes coordinates given in frame B into frame A.
"""

from ._calibrate import Progress, Run, Shoot, calibrate, crosscheck, start
from ._library import VERSION as __version__
from ._library import InputError
from ._pair import Pairing, pair
from ._report import CalibrationError, CalibrationWarning, CrossCheck, Finding, Lens, Photograph, Report
from ._verify import Comparison, Verification, compare, verify

__all__ = ["CalibrationError", "CalibrationWarning", "Comparison", "CrossCheck", "Finding", "InputError", "Lens", "Pairing",
           "Photograph", "Progress", "Report", "Run", "Shoot", "Verification", "__version__", "calibrate", "compare",
           "crosscheck", "pair", "start", "verify"]
