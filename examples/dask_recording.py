#!/usr/bin/env python3
"""Runs a recording that is cut into files, in the order in which they were measured, on Dask.

    dask_recording.py PARAMETER_FILE RESULTS.csv READINGS.csv... [--workers N | --scheduler ADDRESS]

Without an address N processes are started here, two by default. The files have to be where the workers find them.
The results are those of one `kiv run` over the whole recording, digit for digit. Files are CSV: Debian 12 has no
package that gives Dask or pandas Parquet files.
"""

import argparse

import pandas
from dask.distributed import Client

import kiv


def readings_in(path):
    readings = pandas.read_csv(path, float_precision="round_trip")
    return readings.apply(pandas.to_numeric, errors="coerce")  # such rows are refused


def run_part(path, sensor):
    return sensor.run(readings_in(path), matrices=True)


def run_recording(client, sensor, paths):
    """A frame of results for each of the files, in their order."""
    paths = list(paths)
    done = 0
    while done < len(paths) and sensor.reference is None:  # the reference is in the first, as a rule
        yield run_part(paths[done], sensor)
        done += 1
    # The sensor goes to the workers with its reference. What a worker that dies had done or begun,
    # another one does again.
    futures = client.map(run_part, paths[done:], sensor=sensor)
    while futures:
        yield futures.pop(0).result()


def write(results, path):
    with open(path, "w", newline="") as file:
        for part, frame in enumerate(results):
            frame.astype(str).replace("nan", "").to_csv(file, header=part == 0, index=False)


def main(description, target, keep):
    """Runs the files of a recording that the command line names; keep(results, target) takes the results."""
    arguments = argparse.ArgumentParser(description=description)
    arguments.add_argument("parameter_file")
    arguments.add_argument(target)
    arguments.add_argument("readings", nargs="+")
    where = arguments.add_mutually_exclusive_group()
    where.add_argument("--workers", type=int, default=2, help="processes that are started here")
    where.add_argument("--scheduler", help="address of one that runs")
    given = arguments.parse_args()
    how = dict(n_workers=given.workers, threads_per_worker=1, dashboard_address=None)
    with Client(given.scheduler) if given.scheduler else Client(**how) as client:
        sensor = kiv.Sensor(kiv.Parameters(given.parameter_file))
        keep(run_recording(client, sensor, given.readings), getattr(given, target))


if __name__ == "__main__":
    main("Runs a recording that is cut into files.", "results", write)
