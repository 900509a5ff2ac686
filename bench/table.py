#!/usr/bin/env python3
"""Prints Google Benchmark JSON as one table: the library against raw ICU.

Benchmarks come in pairs, lib/CASE and icu/CASE. Times are the median of the
repetitions (or the single run), in ns per operation: CPU time, except for the
thread cases, which are timed on the wall clock.
"""
import json
import re
import sys

# Cases measured only against the library's own baseline.
OWN_CASES = ("prepare_mapped/", "find_all/", "french_walk/", "french_find_all/",
             "french_replace_preserving/", "iterator_positions/", "oneshot_cached/", "handle_replace/",
             "group_names_cached/", "group_names_compiling/", "search_fold/", "fold_prepare_mapped/",
             "fold_find_all_utf8/", "fold_quoted_find_all/")
# Cases that report how late a search stopped after a 50 ms deadline.
LATENCY_PREFIX = "limit/stop_latency/"

UNIT_NS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


def load(path):
    with open(path) as f:
        runs = json.load(f)["benchmarks"]
    # run_name -> the median of its repetitions, or its single run.
    chosen = {}
    for run in runs:
        name = run["run_name"]
        if run.get("error_occurred"):
            chosen[name] = {"error": run.get("error_message", "error")}
        elif run.get("run_type") != "aggregate":
            chosen.setdefault(name, run)
        elif run.get("aggregate_name") == "median":
            chosen[name] = run
    return chosen


def ns_per_op(run):
    if run is None or "error" in run:
        return None
    field = "real_time" if "/real_time" in run["run_name"] else "cpu_time"
    return run[field] * UNIT_NS[run["time_unit"]]


def fmt_ns(v):
    if v is None:
        return "-"
    return f"{v:,.1f}" if v < 1000 else f"{v:,.0f}"


def fmt_ratio(a, b, suffix=""):
    if a is None or b is None or b == 0:
        return "-"
    r = a / b
    digits = 2 if r >= 0.1 else 4
    return f"{r:,.{digits}f}{suffix}"


def items_per_second(run):
    return None if run is None or "error" in run else run.get("items_per_second")


def cores_busy(run):
    return "-" if run is None or "error" in run else f"{run['cpu_time'] / run['real_time']:.2f}"


def main(path):
    runs = load(path)
    cases = []
    for name in runs:
        side, _, case = name.partition("/")
        if side in ("lib", "icu") and case not in cases and not case.startswith(OWN_CASES):
            cases.append(case)

    def get(side, case):
        return runs.get(f"{side}/{case}")

    rows = [("case", "lib ns/op", "ICU ns/op", "lib/ICU")]
    for case in cases:
        lib, icu = ns_per_op(get("lib", case)), ns_per_op(get("icu", case))
        label = case.replace("/real_time", "")
        for side, run in (("lib", get("lib", case)), ("icu", get("icu", case))):
            if run is not None and "error" in run:
                label += f"  [{side}: {run['error']}]"
        rows.append((label, fmt_ns(lib), fmt_ns(icu), fmt_ratio(lib, icu)))

    # The library against itself: each case against its baseline.
    against_itself = (
        (r"search/opt([24])/(.+)$", "search/opt0/{1}", "search 0x{0} vs search 0 /{1}"),
        (r"prepare_mapped/(.+)$", "prepare_normalisers/{0}", "prepare_text_mapped vs prepare_text /{0}"),
        (r"find_all/(.+)$", "iterator_positions/{0}", "regex_find_all vs regex_iterator positions /{0}"),
        (r"french_find_all/(.+)$", "french_walk/{0}", "regex_find_all vs iterator walk, French /{0}"),
        (r"french_replace_preserving/(.+)$", "french_find_all/{0}",
         "regex_replace_preserving vs regex_find_all, French /{0}"),
        (r"oneshot_cached/(.+)$", "handle_replace/{0}", "one-shot regex_replace (cached) vs handle /{0}"),
        (r"group_names_cached/(.+)$", "group_names_compiling/{0}", "getGroupNamesIfAvailable vs finder compiled per call /{0}"),
        (r"search_fold/(.+)$", "fold_prepare_mapped/opt5/{0}", "search_fold vs prepare_text_mapped 0x5 /{0}"),
        (r"fold_find_all_utf8/(.+)$", "fold_find_all/{0}", "search_pattern find_all, UTF-8 vs UTF-16 /{0}"),
        (r"fold_quoted_find_all/(.+)$", "fold_find_all/{0}", "search_pattern find_all, \\Q...\\E regex vs literal /{0}"),
    )
    own = []
    for case in [n.partition("/")[2] for n in runs if n.startswith("lib/")]:
        for pattern, baseline, label in against_itself:
            m = re.match(pattern, case)
            if m:
                mine = ns_per_op(get("lib", case))
                base = ns_per_op(get("lib", baseline.format(*m.groups())))
                own.append((label.format(*m.groups()), fmt_ns(mine), fmt_ns(base), fmt_ratio(mine, base)))
    if own:
        rows.append(None)
        rows.append(("library against itself", "case ns/op", "baseline ns/op", "ratio"))
        rows.extend(own)

    # Throughput on two threads against one: items per second, 2 threads / 1 thread;
    # and CPU time over wall time with 2 threads: how many cores they really kept busy.
    speedups = []
    for case in cases:
        if case.endswith("/threads:2"):
            one = case[: -len("2")] + "1"
            label = re.sub(r"/real_time/threads:2$", "", case)
            speedup = [fmt_ratio(items_per_second(get(side, case)),
                                 items_per_second(get(side, one)), "x") for side in ("lib", "icu")]
            cores = [cores_busy(get(side, case)) for side in ("lib", "icu")]
            speedups.append((f"{label} 2 threads vs 1", *speedup, ""))
            speedups.append(("  cores busy with 2 threads", *cores, ""))
    if speedups:
        rows.append(None)
        rows.append(("speed-up (items/s, 2 threads / 1)", "lib", "ICU", ""))
        rows.extend(speedups)

    # Time limits: how late past the deadline each search stopped (ms).
    latency = []
    for name, run in runs.items():
        if name.startswith(LATENCY_PREFIX):
            label = name[len(LATENCY_PREFIX):].replace("/iterations:20/real_time", "")
            if "error" in run:
                latency.append((label, run["error"], "", ""))
            else:
                latency.append((label, f"{run['late_max_ms']:.2f}", f"{run['late_mean_ms']:.2f}", ""))
    if latency:
        rows.append(None)
        rows.append(("stop after a 50 ms deadline", "late max ms", "late mean ms", ""))
        rows.extend(latency)

    widths = [max(len(r[i]) for r in rows if r) for i in range(4)]
    for row in rows:
        if row is None:
            print()
            continue
        line = f"{row[0]:<{widths[0]}}  " + "  ".join(
            f"{cell:>{w}}" for cell, w in zip(row[1:], widths[1:]))
        print(line.rstrip())


if __name__ == "__main__":
    main(sys.argv[1])
