"""zvlocfmt from Python against Babel and pandas on the same values, as ratios.

    PYTHONPATH=build/release/python /usr/bin/python3 bench/python_bench.py [--values N] [--sample N]

Each line times one job on N values (1,000,000 by default) and prints how many
times faster zvlocfmt is than the reference. Babel runs value by value in a
Python loop on a sample (100,000 by default) and its time is scaled to N;
pandas and zvlocfmt run on all N values, best of three runs; Babel runs once.
"""
import argparse
import datetime as dt
import time

import numpy as np
import pandas as pd
from babel import Locale
from babel.dates import format_date
from babel.numbers import format_decimal, parse_decimal

import zvlocfmt as zv


def best(job, repeat=3):
    times = []
    for _ in range(repeat):
        start = time.perf_counter()
        job()
        times.append(time.perf_counter() - start)
    return min(times)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--values", type=int, default=1_000_000)
    parser.add_argument("--sample", type=int, default=100_000)
    args = parser.parse_args()
    n, k = args.values, min(args.sample, args.values)
    scale = n / k
    rng = np.random.default_rng(1960)
    amounts = np.round(rng.uniform(-1e7, 1e7, n), 2)
    days = rng.integers(0, 30000, n).astype(np.float64)
    dates = pd.Series(pd.Timestamp("1960-01-01") + pd.to_timedelta(days, unit="D"))
    epoch = dt.date(1960, 1, 1)
    sample_dates = [epoch + dt.timedelta(days=int(d)) for d in days[:k]]
    de, fr = Locale.parse("de_DE"), Locale.parse("fr_FR")
    texts = zv.format("NLNUM", amounts, width=20, decimals=2, locale="de_DE")
    sample_texts = [t.strip() for t in texts[:k]]
    # Babel and zvlocfmt write the same texts: the ratios compare like with like.
    assert [t.strip() for t in texts[:1000]] == [format_decimal(v, "#,##0.00", locale=de) for v in amounts[:1000]]

    jobs = [
        ("NLNUM20.2 de_DE", lambda: zv.format("NLNUM", amounts, width=20, decimals=2, locale="de_DE"), [
            ("Babel format_decimal", lambda: [format_decimal(v, "#,##0.00", locale=de) for v in amounts[:k]],
             scale, 20),
            ("pandas map('{:,.2f}')", lambda: pd.Series(amounts).map("{:,.2f}".format), 1, 3)]),
        ("NLDATE20 fr_FR", lambda: zv.format("NLDATE", days, width=20, locale="fr_FR"), [
            ("Babel format_date", lambda: [format_date(d, "long", locale=fr) for d in sample_dates], scale, 20),
            ("pandas dt.strftime('%d %B %Y')", lambda: dates.dt.strftime("%d %B %Y"), 1, 3)]),
        ("@NLNUM20 de_DE", lambda: zv.read("@NLNUM", texts, width=20, locale="de_DE"), [
            ("Babel parse_decimal", lambda: [parse_decimal(t, locale=de) for t in sample_texts], scale, 10)]),
    ]
    print(f"{n:,} values; Babel loops on {k:,} of them, scaled to {n:,}; zvlocfmt and pandas best of 3 runs")
    print(f"{'job':18} {'zvlocfmt':>10}   {'reference':32} {'time':>9} {'ratio':>8} {'goal':>6}")
    for name, ours, references in jobs:
        mine = best(ours)
        for ref_name, ref, factor, goal in references:
            theirs = best(ref, 1 if factor > 1 else 3) * factor
            ratio = theirs / mine
            print(f"{name:18} {mine:9.3f}s   {ref_name:32} {theirs:8.2f}s {ratio:7.1f}x {goal:5}x"
                  f"{'' if ratio >= goal else '  (below goal)'}")


if __name__ == "__main__":
    main()
