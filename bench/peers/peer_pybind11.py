#!/usr/bin/python3
"""A pybind11 function of sixteen overloads called from Python with arguments that only the last
one takes: pybind11 tries them in order, as invoke tries variants. The extension module is built
by the benchmark build into BUILD_DIR/bench/peers; without it (no pybind11) nothing is timed."""
import os
import sys

from timing import run

sys.path.insert(0, os.path.join(sys.argv[3] if len(sys.argv) > 3 else "build/release", "bench", "peers"))
try:
    import peer_overloads
except ImportError as error:
    print(f"peer_pybind11: {error}; skipped", file=sys.stderr)
    sys.exit(1)

run(sys.argv, [("Peer_Pybind11SixteenOverloadsLastMatches", "f(a, b)",
                {"f": peer_overloads.f, "a": "a", "b": "b"})])
