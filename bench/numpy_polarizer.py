"""What a user would write in numpy for mount modes 5 and 6."""

import numpy as np


def natural_spline(knots, values):
    """Second derivatives at the knots."""
    h = np.diff(knots)
    a = np.eye(len(knots))
    b = np.zeros(len(knots))
    for i in range(1, len(knots) - 1):
        a[i, i - 1 : i + 2] = h[i - 1], 2 * (h[i - 1] + h[i]), h[i]
        b[i] = 6 * ((values[i + 1] - values[i]) / h[i] - (values[i] - values[i - 1]) / h[i - 1])
    return np.linalg.solve(a, b)


def in_numpy(parameters):
    """A function from columns of readings to those of results in machine coordinates, degrees."""
    block = {name: parameters[name] for name in parameters.blocks}
    splines = {}
    for axis in "xy":
        knots, values = block[f"tilt_{axis}_calibration_table"].astype(float).T
        splines[axis] = knots, values, natural_spline(knots, values)
    s = block["scale_factor"].astype(float)
    offsets = block["angle_offset"].astype(float)
    machine = np.linalg.inv(block["machine_coordinate_tranform_matrix"].astype(float))

    def turned(axis, angle):
        c, n, i, j = np.cos(angle), np.sin(angle), (axis + 1) % 3, (axis + 2) % 3
        m = np.zeros((*np.shape(angle), 3, 3))
        m[..., axis, axis] = 1
        m[..., i, i], m[..., i, j], m[..., j, i], m[..., j, j] = c, -n, n, c
        return m

    def encoder(raw, table, offset):
        return raw + np.interp(raw, *block[table].T, period=360) - offset

    def tilt(r, axis):
        knots, values, bends = splines[axis]
        k = np.clip(np.searchsorted(knots, r[f"level_{axis}"]) - 1, 0, len(knots) - 2)
        h = knots[k + 1] - knots[k]
        a, b = (knots[k + 1] - r[f"level_{axis}"]) / h, (r[f"level_{axis}"] - knots[k]) / h
        on_curve = a * values[k] + b * values[k + 1] + ((a**3 - a) * bends[k] + (b**3 - b) * bends[k + 1]) * h**2 / 6
        first = 0 if axis == "x" else 2
        slope, intercept = block["thermal_compensation_factor"][first : first + 2]
        return (on_curve - block["tilt_sensor_offset"][first // 2]) * (slope * r["temperature"] + intercept)

    def run(r):
        azimuth = encoder(r["azimuth_deg"], "az_calibration_table", offsets[0])
        elevation = encoder(r["elevation_deg"], "el_calibration_table", offsets[1])
        tilt_x, tilt_y = tilt(r, "x"), tilt(r, "y")
        x, y, z = (np.asarray(r[name], float) for name in "xyz")
        matrix = machine @ turned(2, -np.arctan2(x, y))
        for axis, angle in (
            (0, np.arcsin(z / np.sqrt(x * x + y * y + z * z))),
            (1, np.radians((s[1] + tilt_y) * s[6])),
            (2, np.radians(s[0])),
            (0, -np.radians(elevation) * s[5]),
            (2, -np.radians(azimuth) * s[4]),
        ):
            matrix = matrix @ turned(axis, angle)
        results = {
            "azimuth_corrected_deg": azimuth,
            "elevation_corrected_deg": elevation,
            "level_x_corrected_deg": tilt_x,
            "level_y_corrected_deg": tilt_y,
            "rx_deg": np.degrees(np.arctan2(-matrix[:, 1, 2], matrix[:, 2, 2])),
            "ry_deg": np.degrees(np.arcsin(matrix[:, 0, 2])),
            "rz_deg": np.degrees(np.arctan2(-matrix[:, 0, 1], matrix[:, 0, 0])),
        }
        results.update({f"m{i}{k}": matrix[:, i, k] for i in range(3) for k in range(3)})
        return results

    return run
