"""Locale-sensitive formats and informats of zvlocfmt on numpy arrays and pandas Series.

    import zvlocfmt as zv
    zv.format("NLDATE", days, width=20, locale="fr_FR")         # numpy array of str
    zv.read("@NLNUM", texts, locale="de_DE")                    # float64, NaN where missing
    series.zv.format("NLNUM", width=12, decimals=2, locale="de_CH")

Dates are day counts and datetimes second counts from 1 January 1960; numpy
datetime64 values and pandas datetime Series are turned into them by the row.
"""
import numpy as np

from . import _core

__all__ = ["format", "read", "rows", "locales", "items", "missing"]

_EPOCH = np.datetime64("1960-01-01T00:00:00", "ns")


def _counts_seconds(row):
    """Rows whose values are second counts (datetimes and times); the others take days."""
    name = row.upper().lstrip("@")
    return name.startswith(("NLDATM", "NLTIM", "DTWEEK"))


def _values(values, row):
    """float64 values for the row: datetimes become counts, None and NaT the plain missing value."""
    if hasattr(values, "dt") and getattr(values.dt, "tz", None) is not None:
        values = values.dt.tz_localize(None)  # the wall time of its zone
    if hasattr(values, "to_numpy"):
        values = values.to_numpy()
    array = np.asarray(values)
    if array.dtype == object:
        array = np.array([np.nan if v is None else v for v in array.ravel()])
        if array.dtype == object:
            raise ValueError("values must be numbers or datetimes")
    if array.dtype.kind == "M":
        at = array.astype("datetime64[ns]")
        if _counts_seconds(row):
            counts = (at - _EPOCH) / np.timedelta64(1, "s")
        else:
            counts = (at.astype("datetime64[D]") - _EPOCH.astype("datetime64[D]")).astype(np.float64)
        counts[np.isnat(at)] = np.nan
        return counts
    if array.dtype.kind == "m":
        seconds = array / np.timedelta64(1, "s")
        return np.where(np.isnat(array), np.nan, seconds)
    if array.dtype.kind not in "biuf":
        raise ValueError("values must be numbers or datetimes, not %s" % array.dtype)
    return np.ascontiguousarray(array, dtype=np.float64).ravel()


def _texts(texts):
    if hasattr(texts, "to_numpy"):
        texts = texts.to_numpy()
    array = np.asarray(texts)
    if array.dtype.kind != "U":
        array = np.array(["" if t is None else t for t in array.ravel()])
        if array.dtype.kind != "U":
            raise ValueError("texts must be str")
    return np.ascontiguousarray(array).ravel()


def format(row, values, width=None, decimals=None, locale="en_US", encoding=None, measure_bytes=False,
           status=False):
    """Format values with a format row; a numpy array of str, each `width` wide.

    encoding: the host encoding; given, the byte entry writes `width` bytes of it
    (the texts come back decoded). status=True returns (texts, statuses)."""
    texts, statuses = _core.format(row, _values(values, row), width, decimals, locale, encoding, measure_bytes)
    return (texts, statuses) if status else texts


def read(row, texts, width=None, decimals=None, locale="en_US", encoding=None, missing=False, status=False):
    """Read texts with an informat row; float64 values, NaN where missing.

    missing=True also returns the marks ("." "A".."Z" "_", "" when not missing),
    status=True the statuses: (values[, marks][, statuses])."""
    values, marks, statuses = _core.read(row, _texts(texts), width, decimals, locale, encoding)
    result = (values,) + ((marks,) if missing else ()) + ((statuses,) if status else ())
    return result if len(result) > 1 else values


def rows():
    """The format table: one dict a row (name, kind, widths, decimals, state)."""
    return _core.rows()


def locales():
    """The locales the host knows, sorted."""
    return _core.locales()


def items(locale, encoding=None):
    """The 189 locale items as the module decodes them for the encoding."""
    return _core.items(locale, encoding)


def missing(mark="."):
    """The double of a missing value: "." plain, "A".."Z" or "_" special."""
    return _core.missing(mark)


try:
    import pandas as _pd
except ImportError:  # pandas is optional
    _pd = None

if _pd is not None:
    @_pd.api.extensions.register_series_accessor("zv")
    class _SeriesAccessor:
        """series.zv.format(row, ...) and series.zv.read(row, ...), keeping the index."""

        def __init__(self, series):
            self._series = series

        def format(self, row, **options):
            texts = format(row, self._series, **options)
            return _pd.Series(texts, index=self._series.index, name=self._series.name)

        def read(self, row, **options):
            values = read(row, self._series, **options)
            return _pd.Series(values, index=self._series.index, name=self._series.name)
