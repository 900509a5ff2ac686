#!/usr/bin/env python3
"""Runs scl_regex_first_search in fresh processes and prints the medians.

    bench/first_search.py BINARY [RUNS]

Each of the two modes (search_pattern's first search and usearch's) runs RUNS
times (7 unless told), alternating, each in a process of its own. Prints the
median time of the first search in each mode and their ratio, and the median
resident memory each added.
"""
import statistics
import subprocess
import sys

MODES = ("fold", "usearch")
TARGET_RATIO = 5.0          # fold's first search at most 5 times usearch's
TARGET_RSS_KIB = 2 * 1024   # and at most 2 MiB of resident memory added


def run_once(binary, mode):
    out = subprocess.run([binary, mode], check=True, capture_output=True, text=True).stdout
    fields = dict(item.split("=", 1) for item in out.split()[1:])
    return float(fields["ms"]), int(fields["rss_kib"]), fields["first"]


def main(binary, runs):
    times = {mode: [] for mode in MODES}
    rss = {mode: [] for mode in MODES}
    firsts = {mode: set() for mode in MODES}
    for _ in range(runs):
        for mode in MODES:
            ms, kib, first = run_once(binary, mode)
            times[mode].append(ms)
            rss[mode].append(kib)
            firsts[mode].add(first)

    print(f"first search in a fresh process (median of {runs} processes each)")
    rows = [("mode", "ms", "min..max ms", "RSS added KiB", "first match")]
    for mode in MODES:
        label = "search_pattern" if mode == "fold" else "usearch"
        rows.append((label, f"{statistics.median(times[mode]):.3f}",
                     f"{min(times[mode]):.3f}..{max(times[mode]):.3f}",
                     f"{statistics.median(rss[mode]):,.0f}", ",".join(sorted(firsts[mode]))))
    widths = [max(len(r[i]) for r in rows) for i in range(len(rows[0]))]
    for row in rows:
        print(f"{row[0]:<{widths[0]}}  " + "  ".join(
            f"{cell:>{w}}" for cell, w in zip(row[1:], widths[1:])))

    ratio = statistics.median(times["fold"]) / statistics.median(times["usearch"])
    fold_kib = statistics.median(rss["fold"])
    print(f"search_pattern / usearch, time: {ratio:.3f} (target <= {TARGET_RATIO:g})")
    print(f"search_pattern, resident memory added: {fold_kib / 1024:.2f} MiB "
          f"(target <= {TARGET_RSS_KIB / 1024:g} MiB)")
    if firsts["fold"] != firsts["usearch"]:
        print("the two modes do not find the same first match")
        return 1
    return 0


if __name__ == "__main__":
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], int(sys.argv[2]) if len(sys.argv) == 3 else 7))
