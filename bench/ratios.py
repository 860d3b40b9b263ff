#!/usr/bin/python3
"""Ratios of each benchmark to its twins (the physical floor, a raw loop, or a peer timed in the
same run) from the combined Google Benchmark JSON, printed as a table and drawn with gnuplot:
    python3 ratios.py bench.json ratios.png
Ratios rather than times, because absolute times on shared machines are noise. The table is
printed even when gnuplot is missing or fails: a plot never stops a benchmark run."""
import json
import re
import shutil
import subprocess
import sys

# (benchmark, twin) pairs; a benchmark may have several twins. A "/N" suffix on the benchmark
# pairs each size with the twin of the same size unless the twin names its own size. A third
# element names the counter compared instead of the time.
PAIRS = [
    ("BM_ClassifyScalarDouble", "BM_RawClassifyScalarDouble"),
    ("BM_AcceptExactScalar", "BM_RawAcceptExactScalar"),
    ("BM_ServiceLookupWithFilter", "BM_RawServiceLookup"),
    ("BM_TrackerGetService", "BM_RawAcquirePointerRead"),
    ("BM_TrackerGetServiceShared", "BM_RawAcquirePointerRead"),
    ("BM_StringFromCharRow", "BM_RawStringFromCharRow"),
    ("BM_RuntimeInfoLookup", "BM_RawRuntimeInfoLookup"),
    ("BM_ArrayToLxeObject", "BM_RawArrayToLxeObject"),
    ("BM_InlineCWrapperScalarPlus", "BM_DirectScalarPlus"),
    ("BM_InlineCWrapperScalarPlus", "BM_BareThunkScalarPlus"),
    ("BM_BareThunkScalarPlus", "BM_DirectScalarPlus"),
    ("BM_InvokeScalarPlus", "BM_Floor"),
    ("BM_InvokeScalarPlusChecksArmed", "BM_InvokeScalarPlus"),
    ("BM_InvokeBoxedScalar", "BM_InvokeScalarPlus"),
    ("BM_InvokeSixteenVariantsLastMatches", "BM_InvokeScalarPlus"),
    ("BM_InvokeSixteenVariantsLastMatches", "BM_InvokeOneVariantOverArrays"),
    ("BM_InvokeOneVariantOverArrays", "BM_InvokeScalarPlus"),
    ("BM_InvokeSixteenVariantsLastMatches", "Peer_Pybind11SixteenOverloadsLastMatches"),
    ("BM_InvokeScalarPlus", "Peer_CPythonFloatAdd"),
    ("BM_InvokeScalarPlus", "Peer_NumPyAdd1x1"),
    ("BM_InvokeScalarPlus", "Peer_NumPyAdd0d"),
    ("BM_InvokeMixedCalls", "BM_Floor"),
    ("BM_InvokeMixedCalls", "BM_InvokeScalarPlus"),
    ("BM_InvokeSmallArrays", "BM_RawSmallArrays"),
    ("BM_InvokeSmallArrays", "BM_InvokeScalarPlus"),
    ("BM_CleanupVariants", "BM_CopyAndSortVariants"),
    ("BM_ElementWisePlus", "BM_RawPlus"),
    ("BM_ElementWisePlus", "BM_RawPlusHugePages"),
    ("BM_ElementWisePlus", "Peer_NumPyAdd"),
    ("BM_ElementWisePlusInlineC", "BM_RawPlus"),
    ("BM_ElementWisePlusInlineC", "BM_RawPlusHugePages"),
    ("BM_ElementWisePlusReuse", "BM_RawPlusInPlace"),
    ("BM_ElementWisePlusReuse", "Peer_NumPyAddOut"),
    ("BM_ElementWiseBroadcast", "BM_RawBroadcast"),
    ("BM_ElementWiseBroadcast", "BM_RawBroadcastHugePages"),
    ("BM_ElementWiseBroadcast", "Peer_NumPyBroadcast"),
    ("BM_ElementWiseHypotParallel", "BM_ElementWiseHypotSerial"),
    ("BM_ElementWiseHypotParallel", "Peer_NumPyHypot"),
    ("BM_InCachePlusParallel", "BM_InCachePlusSerial"),
    ("BM_RegisteredVariantsHeap", "BM_PlainVariantCopiesHeap", "bytesPerVariant"),
    ("BM_InvokePlusAllocations", "BM_RawPlusAllocations"),
]


# What Google Benchmark appends to a name for a benchmark's own repetitions and timers.
DECORATIONS = re.compile(r"/(repeats:\d+|process_time|real_time)")


def median_runs(runs):
    """Each benchmark's run: the median when the run was repeated, the single run otherwise."""
    medians = {}
    for run in runs:
        if run.get("aggregate_name", "median") != "median":
            continue
        medians[DECORATIONS.sub("", run.get("run_name", run["name"]))] = run
    return medians


def measure(run, counter):
    """The counter when one is named, else real_time in ns."""
    if counter:
        return run.get(counter)
    return run["real_time"] * {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[run.get("time_unit", "ns")]


def ratios(runs):
    rows = []
    for name, run in sorted(runs.items()):
        base, _, size = name.partition("/")
        for bench, twin, *counter in PAIRS:
            if bench != base:
                continue
            twin_name = twin if "/" in twin or not size else f"{twin}/{size}"
            counter = counter[0] if counter else None
            if twin_name in runs and measure(runs[twin_name], counter) and measure(run, counter) is not None:
                rows.append((name, twin_name, measure(run, counter) / measure(runs[twin_name], counter)))
    return rows


def plot(rows, target):
    gnuplot = shutil.which("gnuplot")
    if not gnuplot:
        print("ratios: gnuplot is not installed; no plot", file=sys.stderr)
        return
    data = "".join(f'"{n} vs {t}" {r:.4f} {"0x2ca02c" if r <= 1.5 else "0xff7f0e"}\n'
                   for n, t, r in reversed(rows))
    # Each bar runs from 1 to its ratio on a log axis: a box with x from 1 to the ratio.
    script = f"""$d << EOD
{data}EOD
set terminal png size 1100,{28 * len(rows) + 120} font ",9" noenhanced
set output "{target}"
set logscale x
set xlabel "ratio to the twin: time, or bytes for the heap pair (log scale; 1 = level with the twin)"
set style fill solid 0.8
set grid xtics
unset key
set yrange [-0.7:{len(rows) - 0.3}]
plot $d using (1):0:(1):2:($0-0.35):($0+0.35):3:ytic(1) with boxxyerror lc rgb variable, \\
     $d using 2:0:(sprintf(" %.2fx", $2)) with labels left font ",8"
"""
    result = subprocess.run([gnuplot], input=script, text=True, capture_output=True)
    if result.returncode != 0:
        print("ratios: gnuplot failed; no plot\n" + result.stderr, file=sys.stderr)
    else:
        print(f"ratios: wrote {target}")


def main(source, target):
    with open(source) as f:
        rows = ratios(median_runs(json.load(f)["benchmarks"]))
    if not rows:
        print("ratios: no benchmark with its twin in " + source, file=sys.stderr)
        return
    width = max(len(f"{n} / {t}") for n, t, _ in rows)
    for name, twin, ratio in rows:
        print(f"{name + ' / ' + twin:<{width}}  {ratio:8.3f}")
    plot(rows, target)


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2])
