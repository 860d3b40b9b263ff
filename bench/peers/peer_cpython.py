#!/usr/bin/python3
"""CPython's own scalar addition: the cost a language host pays for its cheapest builtin call."""
import sys

from timing import run

run(sys.argv, [("Peer_CPythonFloatAdd", "a + b", {"a": 1.5, "b": 2.25})])
