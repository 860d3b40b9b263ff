#!/usr/bin/python3
"""Plots each benchmark's time as a ratio to its twin (the physical floor or a raw loop)
from the combined Google Benchmark JSON: python3 plot_ratios.py bench.json ratios.png.
Ratios rather than times, because absolute times on shared machines are noise."""
import json
import sys

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt

# Each benchmark and its twin; a "/N" suffix pairs each size with the twin of that size.
TWINS = {
    "BM_ClassifyScalarDouble": "BM_RawClassifyScalarDouble",
    "BM_AcceptExactScalar": "BM_RawAcceptExactScalar",
    "BM_ServiceLookupWithFilter": "BM_RawServiceLookup",
    "BM_StringFromCharRow": "BM_RawStringFromCharRow",
    "BM_RuntimeInfoLookup": "BM_RawRuntimeInfoLookup",
    "BM_ArrayToLxeObject": "BM_RawArrayToLxeObject",
    "BM_InlineCWrapperScalarPlus": "BM_DirectScalarPlus",
    "BM_InvokeScalarPlus": "BM_Floor",
    "BM_InvokeScalarPlusChecksArmed": "BM_InvokeScalarPlus",
    "BM_InvokeBoxedScalar": "BM_InvokeScalarPlus",
    "BM_InvokeSixteenVariantsLastMatches": "BM_InvokeScalarPlus",
    "BM_CleanupVariants": "BM_CopyAndSortVariants",
    "BM_ElementWisePlus": "BM_RawPlus",
    "BM_ElementWisePlusInlineC": "BM_RawPlus",
    "BM_ElementWisePlusReuse": "BM_RawPlusInPlace",
    "BM_ElementWiseBroadcast": "BM_RawBroadcast",
    "BM_ElementWiseHypotParallel": "BM_ElementWiseHypotSerial",
    "BM_RegisteredVariantsHeap": "BM_PlainVariantCopiesHeap",
    "BM_InvokePlusAllocations": "BM_RawPlusAllocations",
}


def main(source, target):
    with open(source) as f:
        runs = json.load(f)["benchmarks"]
    # Medians when the run was repeated, the single run otherwise.
    times = {}
    for run in runs:
        if run.get("aggregate_name", "median") != "median":
            continue
        name = run.get("run_name", run["name"])
        times[name] = run["real_time"]
    labels, ratios = [], []
    for name, time in sorted(times.items()):
        base, _, size = name.partition("/")
        twin = TWINS.get(base)
        twin_time = times.get(f"{twin}/{size}" if size else twin) if twin else None
        if twin_time:
            labels.append(f"{name}  vs  {twin}".replace("/real_time", ""))
            ratios.append(time / twin_time)
    if not ratios:
        sys.exit("plot_ratios: no benchmark with its twin in " + source)
    figure, axes = plt.subplots(figsize=(11, 0.4 * len(ratios) + 1.2))
    axes.barh(labels, ratios, color=["tab:green" if r <= 1.5 else "tab:orange" for r in ratios])
    axes.axvline(1.0, color="black", linewidth=0.8)
    axes.set_xscale("log")
    axes.set_xlabel("time relative to the twin (log scale; 1 = as fast as the twin)")
    axes.invert_yaxis()
    for y, ratio in enumerate(ratios):
        axes.text(ratio, y, f" {ratio:.2f}x", va="center", fontsize=8)
    figure.tight_layout()
    figure.savefig(target, dpi=110)


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2])
