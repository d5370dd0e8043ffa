"""Orientations from the raw readings of KIV sensors, for recordings in numpy arrays and pandas frames.

>>> import kiv
>>> sensor = kiv.Sensor(kiv.Parameters("Tg5.prm"))
>>> one = dict(status=2, x=4000, y=1500, z=450, azimuth_deg=12.5, elevation_deg=3, level_x=1,
...            level_y=-2, temperature=20, ref_metric=0.1, ref_blocked=False)
>>> readings = {name: [value, value] for name, value in one.items()}
>>> readings["azimuth_deg"] = [12.5, 27.5]
>>> results = sensor.run(readings)
>>> [kiv.State(state).name for state in results["state"]]
['REFERENCE', 'OK']
>>> print("%.4f" % results["rz_deg"][1])
-14.6572
"""

from . import _library
from ._calibrate import CalibrationResult, calibrate
from ._columns import State, Trust
from ._compare import Comparison, compare
from ._poses import poses
from ._rows import Result
from .errors import Error, Fault, FileError, ParameterFileError, ParameterFileWarning, ReadingsError
from .parameters import Parameters
from .sensor import Frame, Sensor

__version__: str = _library.version() or ""

__all__ = [
    "CalibrationResult",
    "Comparison",
    "Error",
    "Fault",
    "FileError",
    "Frame",
    "ParameterFileError",
    "ParameterFileWarning",
    "Parameters",
    "ReadingsError",
    "Result",
    "Sensor",
    "State",
    "Trust",
    "calibrate",
    "compare",
    "poses",
]
