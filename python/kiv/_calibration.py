"""What kiv calibrate found, for a sensor."""

from __future__ import annotations

import hashlib
import json
import os
from typing import Any, Dict, List, Mapping, Tuple, Union

import numpy as np
from numpy.typing import NDArray

Calibration = Union[str, "os.PathLike[str]", Mapping[str, Any]]


def result(given: Calibration) -> Dict[str, Any]:
    """The object of the JSON text."""
    if isinstance(given, Mapping):
        return dict(given)
    with open(given, encoding="utf-8") as file:
        try:
            read = json.load(file)
        except ValueError as error:
            raise ValueError(f"calibration: expected the JSON of kiv calibrate: {error}") from None
    if not isinstance(read, dict):
        raise ValueError(f"calibration: expected a JSON object, found {type(read).__name__}")
    return read


def of_file(found: Mapping[str, Any], text: bytes) -> Tuple[List[str], NDArray[np.float64]]:
    """Names of n parameters and the n x n covariance of their errors, for a parameter file's text."""
    digest = hashlib.sha256(text).hexdigest()
    if found.get("parameter_file_sha256") != digest:
        raise ValueError(
            "calibration: expected the result of the calibration that wrote the parameter file "
            f"(parameter_file_sha256 {digest}), found {found.get('parameter_file_sha256')!r}"
        )
    try:
        names = [str(name) for name in found["correlation"]["names"]]
        correlation = np.array(found["correlation"]["matrix"], np.float64).reshape(len(names), len(names))
        u = np.array([found["parameters"][name]["u"] for name in names], np.float64)
        covariance = np.ascontiguousarray(u[:, None] * correlation * u)
    except (KeyError, TypeError, ValueError) as error:
        raise ValueError(
            "calibration: expected correlation with names and a matrix, and parameters with the u "
            f"of each name, as kiv calibrate writes them, found another shape ({error})"
        ) from None
    return names, covariance
