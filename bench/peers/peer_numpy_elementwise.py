#!/usr/bin/python3
"""NumPy's element-wise calls on the shapes bench/elementwise times ours on: a + b into a fresh
output and with out=, an n x 1 plus 1 x n broadcast into a column-major output, a + b in cache,
and hypot. The values are those of our benchmarks (first + i % 1000). Element-wise ufuncs run
on one core and never call BLAS, so OpenBLAS settings do not reach these timings."""
import sys

import numpy as np

from timing import run


def column(n, first):
    return first + (np.arange(n) % 1000).astype(np.float64)


def vectors(n):
    return {"np": np, "a": column(n, 1), "b": column(n, 2), "out": np.empty(n)}


def broadcast(n):
    return {"np": np, "a": column(n, 1).reshape(n, 1), "b": column(n, 2).reshape(1, n)}


run(sys.argv, [
    ("Peer_NumPyAdd/10000000", "np.add(a, b)", vectors(10_000_000)),
    ("Peer_NumPyAddOut/10000000", "np.add(a, b, out=out)", vectors(10_000_000)),
    ("Peer_NumPyBroadcast/3000", "np.add(a, b, order='F')", broadcast(3000)),
    ("Peer_NumPyAdd/10000", "np.add(a, b)", vectors(10_000)),
    ("Peer_NumPyHypot/10000000", "np.hypot(a, b)", vectors(10_000_000)),
])
