"""Formats a column of a dask DataFrame and reads it back, partition by partition.

    PYTHONPATH=build/release/python /usr/bin/python3 examples/dask_column.py            # a local cluster
    PYTHONPATH=build/release/python /usr/bin/python3 examples/dask_column.py --scheduler tcp://host:8786

Every worker imports zvlocfmt itself, so the package must be installed (or on
PYTHONPATH) where the workers run.
"""
import argparse

import numpy as np
import pandas as pd

ROW, INFORMAT, WIDTH, DECIMALS, LOCALE = "NLMNY", "@NLMNY", 16, 2, "de_DE"


def format_partition(frame):
    """The partition with its amounts as money texts of the locale and the amounts read back."""
    import zvlocfmt as zv  # imported on the worker

    out = frame.copy()
    out["text"] = zv.format(ROW, frame["amount"], width=WIDTH, decimals=DECIMALS, locale=LOCALE)
    out["day"] = zv.format("NLDATE", frame["when"], width=20, locale=LOCALE)
    out["back"] = zv.read(INFORMAT, out["text"], width=WIDTH, locale=LOCALE)
    return out


def sample(rows, seed=1960):
    rng = np.random.default_rng(seed)
    amounts = np.round(rng.uniform(-1e6, 1e6, rows), 2)
    amounts[::97] = np.nan  # missing amounts come back missing
    when = pd.Timestamp("1960-01-01") + pd.to_timedelta(rng.integers(0, 30000, rows), unit="D")
    return pd.DataFrame({"amount": amounts, "when": when})


def run(client, rows, partitions=8):
    """The formatted frame, computed on the client's cluster."""
    import dask.dataframe as dd

    frame = dd.from_pandas(sample(rows), npartitions=partitions)
    meta = format_partition(sample(2)).iloc[:0]
    return client.compute(frame.map_partitions(format_partition, meta=meta)).result()


def main():
    from dask.distributed import Client, LocalCluster

    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--scheduler", help="address of a running scheduler; default: a local cluster")
    parser.add_argument("--rows", type=int, default=200_000)
    args = parser.parse_args()
    if args.scheduler:
        client = Client(args.scheduler)
    else:
        client = Client(LocalCluster(n_workers=2, threads_per_worker=1, processes=True))
    with client:
        out = run(client, args.rows)
    print(out.head(5).to_string())
    same = np.array_equal(out["back"].to_numpy(), out["amount"].to_numpy(), equal_nan=True)
    print(f"{len(out)} rows; every amount read back: {same}")


if __name__ == "__main__":
    main()
