#!/usr/bin/python3
"""Lets Doxygen read the headers' plain comments as documentation.

The headers are written with ordinary // comments. The opening block of a header (the
paragraph on what it is for) becomes the file's description; every other comment that
stands on its own lines becomes a documentation comment of what follows it.
"""
import re
import sys

lines = open(sys.argv[1], encoding="utf-8").read().split("\n")
out = []
opening = True
for line in lines:
    match = re.match(r"^(\s*)// ?(.*)$", line)
    if opening and match and not match.group(1):
        if not out:
            out.append("/** @file")
        out.append(" * " + match.group(2))
        continue
    if opening and out:
        out[-1] += " */"
    opening = False
    out.append(f"{match.group(1)}/// {match.group(2)}" if match else line)
print("\n".join(out))
