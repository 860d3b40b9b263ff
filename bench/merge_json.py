#!/usr/bin/env python3
"""Merges the JSON files of several Google Benchmark binaries into one file of the same format."""
import json
import sys


def main(out, parts):
    merged = None
    for part in parts:
        with open(part) as f:
            data = json.load(f)
        if merged is None:
            merged = data
        else:
            merged["benchmarks"].extend(data.get("benchmarks", []))
    if merged is None:
        merged = {"context": {}, "benchmarks": []}
    with open(out, "w") as f:
        json.dump(merged, f, indent=2)


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2:])
