"""The Python module against the tool's JSON lines, Babel and itself (round trips)."""
import datetime as dt
import json
import os
import subprocess

import numpy as np
import pandas as pd
import pytest
from babel.dates import format_date
from babel.numbers import format_decimal

import zvlocfmt as zv

RNG = np.random.default_rng(20240305)
DAYS = RNG.integers(-20000, 40000, 300).astype(float)
AMOUNTS = np.round(RNG.uniform(-1e6, 1e6, 300), 2)
SECONDS = np.floor(RNG.uniform(-1e9, 3e9, 300))

# row, values, width, decimals, locale, encoding (None: the wide entry)
CASES = [
    ("NLDATE", DAYS, 20, None, "fr_FR", None),
    ("NLDATEW", DAYS, 30, None, "ja_JP", "Shift_JIS"),
    ("NLDATM", SECONDS, 30, None, "de_DE", None),
    ("NLMNY", AMOUNTS, 15, 2, "de_DE", "windows-1252"),
    ("NLMNLEUR", AMOUNTS, 14, 2, "fr_FR", None),
    ("NLNUM", AMOUNTS, 12, 2, "de_CH", None),
]


def tool(requests):
    """Answers of zvfmt --jsonl, one a request."""
    lines = "".join(json.dumps(r) + "\n" for r in requests)
    out = subprocess.run([os.environ["ZVFMT"], "--jsonl"], input=lines, capture_output=True, text=True, check=True)
    return [json.loads(line) for line in out.stdout.splitlines()]


@pytest.mark.parametrize("row,values,width,decimals,locale,encoding", CASES)
def test_format_and_read_agree_with_the_tool(row, values, width, decimals, locale, encoding):
    values = np.concatenate([[np.nan, zv.missing("Q")], values[:60]])
    texts, statuses = zv.format(row, values, width=width, decimals=decimals, locale=locale, encoding=encoding,
                                status=True)
    base = {"name": row, "width": width, "locale": locale}
    base.update({"decimals": decimals} if decimals is not None else {})
    base.update({"encoding": encoding, "entry": "byte"} if encoding else {})
    answers = tool([dict(base, bits=np.float64(zv.missing() if np.isnan(v) and i == 0 else v).tobytes()[::-1].hex())
                    for i, v in enumerate(values)])
    assert [a["text"] for a in answers] == list(texts)
    assert [a["status"] for a in answers] == list(statuses)
    read = dict(name="@" + row, width=width, locale=locale)
    back, marks, codes = zv.read("@" + row, texts, width=width, locale=locale, missing=True, status=True)
    answers = tool([dict(read, text=t) for t in texts])
    assert [a["status"] for a in answers] == list(codes)
    # A text the informat did not read is the plain missing value here.
    assert [a.get("missing", "") if not a["untouched"] else "." for a in answers] == list(marks)
    assert np.array_equal([np.nan if a["value"] is None else a["value"] for a in answers], back, equal_nan=True)


@pytest.mark.parametrize("locale", ["de_DE", "fr_FR", "en_US", "de_CH"])
def test_numbers_and_dates_agree_with_babel_and_read_back(locale):
    texts = zv.format("NLNUM", AMOUNTS, width=20, decimals=2, locale=locale)
    assert [t.strip() for t in texts] == [format_decimal(v, format="#,##0.00", locale=locale) for v in AMOUNTS]
    if locale in ("de_DE", "en_US"):  # the others group with characters the reader stops at
        assert np.array_equal(zv.read("@NLNUM", texts, width=20, locale=locale), AMOUNTS)
    days = zv.format("NLDATE", DAYS, width=30, locale=locale)
    epoch = dt.date(1960, 1, 1)
    assert [t.strip() for t in days] == [format_date(epoch + dt.timedelta(days=int(d)), "long", locale=locale)
                                         for d in DAYS]
    assert np.array_equal(zv.read("@NLDATE", days, width=30, locale=locale), DAYS)


def test_datetimes_become_counts_from_1960_and_missing_values_marks():
    stamps = pd.Series(pd.to_datetime(["2024-03-05 14:07:09", None, "1959-12-31 23:59:59"]))
    assert list(zv.format("NLDATE", stamps, width=20)) == list(zv.format("NLDATE", [23440, None, -1], width=20))
    seconds = [23440 * 86400 + 50829, np.nan, -1]
    assert list(zv.format("NLDATM", stamps, width=30)) == list(zv.format("NLDATM", seconds, width=30))
    zoned = stamps.dt.tz_localize("Europe/Paris")
    assert list(zv.format("NLDATM", zoned, width=30)) == list(zv.format("NLDATM", seconds, width=30))
    assert zv.format("NLDATE", np.array(["2024-03-05"], dtype="datetime64[D]"), width=20, locale="fr_FR")[0] \
        == "5 mars 2024" + " " * 9
    marks = [zv.missing(m) for m in ".AZ_"]
    texts = zv.format("NLNUM", marks, width=4)
    assert list(texts) == ["   .", "   A", "   Z", "   _"]
    values, read = zv.read("@NLNUM", ["", "12"], missing=True)
    assert np.isnan(values[0]) and values[1] == 12 and list(read) == [".", ""]


def test_accessor_keeps_the_index():
    s = pd.Series(AMOUNTS[:5], index=list("abcde"), name="x")
    out = s.zv.format("NLNUM", width=12, decimals=2, locale="de_DE")
    assert list(out.index) == list("abcde") and out.name == "x"
    assert list(out) == list(zv.format("NLNUM", AMOUNTS[:5], width=12, decimals=2, locale="de_DE"))
    assert np.array_equal(out.zv.read("@NLNUM", width=12, locale="de_DE"), AMOUNTS[:5])


@pytest.mark.parametrize("call,message", [
    (lambda: zv.format("NLNOPE", [1.0]), "no format or informat named NLNOPE"),
    (lambda: zv.format("NLNUM", [1.0], locale="xx_YY"), 'unknown locale "xx_YY"'),
    (lambda: zv.format("NLNUM", [1.0], encoding="no-such"), 'unknown encoding "no-such"'),
    (lambda: zv.format("NLNUM", [1.0], width=33), r"NLNUM: width 33 is out of range \(1..32\)"),
    (lambda: zv.format("@NLNUM", [1.0]), "@NLNUM is an informat"),
    (lambda: zv.read("NLNUM", ["1"]), "NLNUM is a format"),
    (lambda: zv.format("NLNUM", ["x"]), "values must be numbers"),
    (lambda: zv.missing("ab"), "a missing mark is"),
])
def test_bad_arguments_raise_value_error(call, message):
    with pytest.raises(ValueError, match=message):
        call()


def test_table_locales_and_items():
    rows = {r["name"]: r for r in zv.rows()}
    assert len(rows) == 247 and rows["NLDATE"]["kind"] == "format" and rows["@NLNUM"]["defaultWidth"] == 6
    assert "fr_FR" in zv.locales() and zv.locales() == sorted(zv.locales())
    items = zv.items("de_DE")
    assert len(items) == 189 and items[172:174] == [",", "."]
