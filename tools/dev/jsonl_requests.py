#!/usr/bin/env python3
"""Writes JSON-lines requests over every row and routine of a zvfmt binary, for
recording its answers before a change and comparing them after it:

    tools/dev/jsonl_requests.py build/dev/zvfmt > requests.jsonl
    build/dev/zvfmt --jsonl < requests.jsonl > before.jsonl
    ... the change, the build ...
    build/dev/zvfmt --jsonl < requests.jsonl | cmp before.jsonl -
"""
import json
import subprocess
import sys

LOCALES = ["en_US", "de_DE", "ja_JP", "ar_EG", "fr_CH", "hi_IN", "sv_SE"]
VALUES = [0, 1, -1, 1234.5678, -98765.4321, 23440, 2e9, -2e9, 0.005, 86399.5, 1.5e15, ".", ".A", "._"]
TEXTS = ["12/25/2024", "2024-03-05", "1,234.56", "1.234,56", "25 March 2024", "14:07:09", "$1,234.50",
         "12%", "", ".", "abc", "FF", "2024-W10-3"]


def rows(zvfmt):
    listing = subprocess.run([zvfmt, "list", "--all"], capture_output=True, text=True, check=True).stdout
    for line in listing.splitlines():
        f = line.split()
        if len(f) >= 6 and f[1] in ("format", "informat", "routine"):
            yield f


def requests(zvfmt):
    n = 0
    for f in rows(zvfmt):
        name, kind = f[0], f[1]
        widths = [None, int(f[2]), int(f[4])] if f[2].isdigit() and f[4].isdigit() else [None]
        for locale in LOCALES:
            for width in widths:
                cases = [{"value": v} for v in VALUES] if kind == "format" else [{"text": t} for t in TEXTS]
                for k, case in enumerate(cases):
                    for decimals in ([None, 2] if kind == "format" and k % 3 == 0 else [None]):
                        q = {"name": name, "locale": locale, **case}
                        if width is not None:
                            q["width"] = width
                        if decimals is not None:
                            q["decimals"] = decimals
                        q["id"] = n
                        n += 1
                        yield q
            if kind == "format":
                yield {"name": name, "locale": locale, "value": 1234.5, "entry": "byte", "encoding": "UTF-8", "id": n}
                n += 1


if __name__ == "__main__":
    for q in requests(sys.argv[1] if len(sys.argv) > 1 else "build/dev/zvfmt"):
        print(json.dumps(q, ensure_ascii=False))
