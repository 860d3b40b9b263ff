#!/usr/bin/env python3
"""Merges the JSON files of several Google Benchmark binaries into one file of the same format."""
import json
import sys


def main(out, parts):
    merged = None
    for part in parts:
        with open(part) as f:
            text = f.read()
        # A binary none of whose benchmarks the filter matches leaves its file empty.
        if not text.strip():
            continue
        data = json.loads(text)
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
