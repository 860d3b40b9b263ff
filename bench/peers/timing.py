"""Times peers (CPython, NumPy, pybind11) the way Google Benchmark times ours and writes the
results in its JSON format, so that ./run bench merges them into bench.json beside our own.

A peer script calls run(argv, [(name, statement, namespace), ...]) with its command line
(OUT_JSON FILTER BUILD_DIR); each statement is a line of Python timed per execution in its
namespace, as timeit does, so no call of ours is added around it."""
import json
import re
import statistics
import sys
import time
import timeit


def _per_call_ns(statement, namespace, repetitions=5, min_seconds=0.2):
    timer = timeit.Timer(statement, globals=namespace)
    number, _ = timer.autorange()
    while number * 1.0 < min_seconds / max(timer.timeit(1), 1e-9):
        number *= 2
    samples = [timer.timeit(number) / number * 1e9 for _ in range(repetitions)]
    return statistics.median(samples), number


def run(argv, benchmarks):
    out, name_filter = argv[1], (argv[2] if len(argv) > 2 else ".")
    pattern = re.compile(name_filter)
    results = []
    for name, statement, namespace in benchmarks:
        if not pattern.search(name):
            continue
        ns, iterations = _per_call_ns(statement, namespace)
        print(f"{name:<50} {ns:12.1f} ns {iterations:12d}")
        results.append({"name": name, "run_name": name, "run_type": "iteration", "repetitions": 1,
                        "iterations": iterations, "real_time": ns, "cpu_time": ns, "time_unit": "ns"})
    context = {"date": time.strftime("%Y-%m-%dT%H:%M:%S"), "executable": argv[0],
               "python": sys.version.split()[0]}
    with open(out, "w") as f:
        json.dump({"context": context, "benchmarks": results}, f, indent=2)
