"""The example sensor in any mount mode, and the columns of the tool's tables."""

import csv
import os
import subprocess
from pathlib import Path

import numpy as np

ROOT = Path(__file__).resolve().parents[2]
EXAMPLE = (ROOT / "examples/Tg5.prm").read_text()


def in_mode(mode):
    return EXAMPLE.replace("Mounting Mode\n4", f"Mounting Mode\n{mode}")


def kiv_tool(*arguments):
    run = subprocess.run([os.environ["KIV_TOOL"], *map(str, arguments)], capture_output=True, text=True)
    assert run.returncode in (0, 1), run.stderr
    return run.stdout


def table(text):
    """By column, words as they are."""
    rows = list(csv.reader(text.splitlines()))
    rows = [row if len(row) == len(rows[0]) else [""] * len(rows[0]) for row in rows]
    return dict(zip(rows[0], zip(*rows[1:])))


def number(cell):
    try:
        return float(cell)
    except ValueError:
        return np.nan


def same_bits(results, expected):
    """Results against the tool's columns: every number, and nothing where a cell is empty."""
    for name, cells in expected.items():
        if name in results and name not in ("state", "trust"):
            got = np.ascontiguousarray(results[name])
            want = np.array([number(cell) for cell in cells], got.dtype)
            bits = f"u{got.dtype.itemsize}"
            fits = (got.view(bits) == want.view(bits)) | (np.isnan(got) & np.isnan(want))
            assert fits.all(), (name, np.flatnonzero(~fits)[:5], got[~fits][:5], want[~fits][:5])
