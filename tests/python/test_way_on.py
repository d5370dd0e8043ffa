"""The ways on from results: to a database, a live chart, Parquet and back; each by its documented commands."""

import os
import re
import shutil
import subprocess
import sys

import pytest

from tool import EXAMPLE, ROOT, kiv_tool, same_bits, table

sys.path.insert(0, str(ROOT / "examples"))
PAGE = (ROOT / "docs/kiv.md").read_text()


def shell(folder, start):
    """The page's commands from the one that starts so, with this tool and the examples at hand."""
    commands = re.search(r"```\n(" + re.escape(start) + r"[^`]*)```", PAGE).group(1)
    (folder / "Tg5.prm").write_text(EXAMPLE)
    shutil.copy(ROOT / "examples/readings.csv", folder)
    path = f"{folder}:{ROOT / 'examples'}:{os.environ['PATH']}"
    (folder / "kiv").symlink_to(os.environ["KIV_TOOL"])
    return lambda old="", new="": subprocess.run(
        ["sh", "-e", "-c", commands.replace(old, new)], cwd=folder, env={**os.environ, "PATH": path},
        capture_output=True, text=True, check=True).stdout


@pytest.mark.skipif(not shutil.which("sqlite3"), reason="no sqlite3 (package sqlite3)")
def test_a_database(tmp_path):
    assert shell(tmp_path, "kiv run Tg5.prm readings.csv --keep none")() == "|1\ngood|1999\n"


def test_a_live_chart_loses_no_row(tmp_path):
    said = shell(tmp_path, "instrument |")("instrument", "live_chart.py --feed readings.csv --seconds 2")
    assert "\n2000 rows\ndelay in ms: median " in said
    print(said.splitlines()[-1])


def test_parquet_and_back(tmp_path):
    pandas = pytest.importorskip("pandas")
    try:
        pandas.io.parquet.get_engine("auto")
    except ImportError:
        pytest.skip("no Parquet engine (pip install pyarrow)")
    import distributed

    import kiv
    import parquet_recording

    (tmp_path / "Tg5.prm").write_text(EXAMPLE)
    rows = (ROOT / "examples/readings.csv").read_text().splitlines(True)
    parts = [tmp_path / f"part{start}.csv" for start in range(1, 2001, 500)]
    for start, part in zip(range(1, 2001, 500), parts):
        part.write_text(rows[0] + "".join(rows[start:start + 500]))
    with distributed.LocalCluster(n_workers=2, processes=True, dashboard_address=None) as cluster, \
            distributed.Client(cluster) as client:
        sensor = kiv.Sensor(kiv.Parameters(tmp_path / "Tg5.prm"))
        client.run(sys.path.insert, 0, str(ROOT / "examples"))
        parquet_recording.write(
            parquet_recording.dask_recording.run_recording(client, sensor, parts), tmp_path / "out")
    back = parquet_recording.read(tmp_path / "out")
    expected = table(kiv_tool("run", tmp_path / "Tg5.prm", ROOT / "examples/readings.csv"))
    same_bits({name: back[name].to_numpy() for name in back}, expected)
    assert list(back["state"]) == list(expected["state"])
