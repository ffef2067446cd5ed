"""What callers hand in, as the arrays that the core takes."""

from __future__ import annotations

import reprlib

import numpy as np
from numpy.typing import ArrayLike, NDArray


def as_points(given: ArrayLike, name: str) -> NDArray[np.float64]:
    """An (n, 3) array of finite doubles; no copy of one that is contiguous already."""
    points = _as_rows(given, name)
    if points.ndim != 2:
        raise ValueError(f"{name} must have shape (n, 3), not {points.shape}: row 0 is no point")
    return points


def as_queries(given: ArrayLike, name: str) -> NDArray[np.float64]:
    """The same with any number of dimensions before the last one."""
    return _as_rows(given, name)


def as_values(given: ArrayLike, name: str) -> NDArray[np.float64]:
    """A contiguous array of doubles of any shape, finite or not."""
    array = np.asanyarray(given)
    if np.iscomplexobj(array):
        raise TypeError(f"{name} must be real numbers")
    if isinstance(array, np.ma.MaskedArray):
        array = np.ma.filled(array.astype(np.float64), np.nan)  # type: ignore[no-untyped-call]
    return np.require(array, np.float64, ["C", "ALIGNED", "ENSUREARRAY"])


def _as_rows(given: ArrayLike, name: str) -> NDArray[np.float64]:
    try:
        rows = as_values(given, name)
    except (TypeError, ValueError, OverflowError) as error:
        raise ValueError(f"{name}: {_first_unreadable(given)}") from error
    if rows.shape[-1:] != (3,):
        raise ValueError(f"{name} must have three columns, not shape {rows.shape}: row 0 is "
                         f"{reprlib.repr(np.atleast_1d(rows)[:1].tolist())}")
    finite = np.isfinite(rows).all(axis=-1)
    if not finite.all():
        position = tuple(int(i) for i in np.argwhere(~finite)[0])
        row = position[0] if len(position) == 1 else position
        raise ValueError(f"{name}: row {row} is not finite: {rows[position].tolist()}")
    return rows


def _first_unreadable(given: ArrayLike) -> str:
    """Which row keeps numpy from making an array of doubles."""
    for i, row in enumerate(given if np.iterable(given) else []):
        try:
            if as_values(row, "").shape == (3,):
                continue
        except (TypeError, ValueError, OverflowError):
            pass
        return f"row {i} is not three real numbers: {reprlib.repr(row)}"
    return f"not an array of real numbers: {reprlib.repr(given)}"
