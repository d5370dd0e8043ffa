"""The example for Dask: the bits of one kiv run, though a worker is killed on the way."""

import os
import signal
import sys

import distributed

import kiv
from tool import EXAMPLE, ROOT, kiv_tool, same_bits, table

sys.path.insert(0, str(ROOT / "examples"))


def test_a_recording_in_files(tmp_path, monkeypatch):
    import dask_recording

    monkeypatch.setenv("PYTHONPATH", f"{ROOT / 'examples'}:{os.environ['PYTHONPATH']}")
    file, whole = tmp_path / "Tg5.prm", tmp_path / "whole.csv"
    file.write_text(EXAMPLE)
    rows = kiv_tool("simulate", file, "--rows", 4000, "--bad-share", 0.05).splitlines(True)
    whole.write_text("".join(rows))
    parts = []
    for start in range(1, len(rows), 400):
        parts.append(tmp_path / f"part{start}.csv")
        parts[-1].write_text(rows[0] + "".join(rows[start:start + 400]))

    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                                  dashboard_address=None) as cluster, distributed.Client(cluster) as client:
        before = set(client.run(os.getpid).values())

        def killing(results):
            for part, result in enumerate(results):
                yield result
                if part == 1:
                    os.kill(min(before), signal.SIGKILL)

        one = kiv.Sensor(kiv.Parameters(file))
        dask_recording.write(killing(dask_recording.run_recording(client, one, parts)), tmp_path / "out.csv")
        client.wait_for_workers(2)
        assert min(before) not in client.run(os.getpid).values()

    expected = table(kiv_tool("run", file, whole, "--messages", 0))
    results = table((tmp_path / "out.csv").read_text())
    assert results["state"] == expected["state"]
    assert all(results[name] == expected[name] for name in results), "the tool's digits"
