#!/usr/bin/python3
"""NumPy's ufunc dispatch on the smallest operands: np.add of two 1-by-1 arrays and of two 0-d
arrays, each call creating its result array, as a builtin call on two 1-by-1 values does."""
import sys

import numpy as np

from timing import run

run(sys.argv, [
    ("Peer_NumPyAdd1x1", "add(a, b)", {"add": np.add, "a": np.ones((1, 1)), "b": np.ones((1, 1))}),
    ("Peer_NumPyAdd0d", "add(a, b)", {"add": np.add, "a": np.array(1.5), "b": np.array(2.25)}),
])
