#!/usr/bin/env python3
"""Runs scl_regex_first_search in fresh processes and prints the medians.

    bench/first_search.py BINARY [RUNS]

Each mode runs RUNS times (7 unless told), alternating, each in a process of
its own. Prints the median time of the first search in each mode, the ratios
to usearch doing the same, and the median resident memory each added:

  fold / usearch                the default search (target: at most 5 times usearch's,
                                at most 2 MiB added)
  options / usearch-options     every toggle of search_options on (target: at most 5 ms)
  all-options                   one search with each of the 24 option sets after a default
                                one: what all their tables add (target: at most 2 MiB)
  danish / usearch-danish       the first Danish search after a default one, against usearch's
                                first Danish search in a fresh process (target: at most 2 times;
                                its tables: at most 1 MiB)
  arabic / usearch-arabic       the same in Arabic, whose collation is the root's search
                                collation, computed at build time (same targets)
  swedish                       after a default and a Danish search, Swedish searches with every
                                option set but whole_words: all eight tables of a second language
                                (target: at most 1 MiB)
"""
import statistics
import subprocess
import sys

MODES = ("fold", "usearch", "options", "usearch-options", "all-options", "danish",
         "usearch-danish", "arabic", "usearch-arabic", "swedish")
LABELS = {"fold": "search_pattern", "usearch": "usearch", "options": "search_pattern, options",
          "usearch-options": "usearch, options", "all-options": "every option set",
          "danish": "search_pattern, Danish", "usearch-danish": "usearch, Danish",
          "arabic": "search_pattern, Arabic", "usearch-arabic": "usearch, Arabic",
          "swedish": "Swedish, every table"}
TARGET_RATIO = 5.0           # fold's first search at most 5 times usearch's
TARGET_RSS_KIB = 2 * 1024    # at most 2 MiB of resident memory added
TARGET_OPTIONS_MS = 5.0      # a first search with a new option set
TARGET_LANGUAGE_RATIO = 2.0  # the first Danish search, against usearch's
TARGET_LANGUAGE_RSS_KIB = 1024  # a language's tables


def run_once(binary, mode):
    out = subprocess.run([binary, mode], check=True, capture_output=True, text=True).stdout
    fields = dict(item.split("=", 1) for item in out.split()[1:])
    return float(fields["ms"]), int(fields["rss_kib"]), int(fields["heap_kib"]), fields["first"]


def main(binary, runs):
    times = {mode: [] for mode in MODES}
    rss = {mode: [] for mode in MODES}
    heap = {mode: [] for mode in MODES}
    firsts = {mode: set() for mode in MODES}
    for _ in range(runs):
        for mode in MODES:
            ms, kib, heap_kib, first = run_once(binary, mode)
            times[mode].append(ms)
            rss[mode].append(kib)
            heap[mode].append(heap_kib)
            firsts[mode].add(first)

    print(f"first search in a fresh process (median of {runs} processes each)")
    rows = [("mode", "ms", "min..max ms", "RSS added KiB", "heap kept KiB", "first match")]
    for mode in MODES:
        rows.append((LABELS[mode], f"{statistics.median(times[mode]):.3f}",
                     f"{min(times[mode]):.3f}..{max(times[mode]):.3f}",
                     f"{statistics.median(rss[mode]):,.0f}", f"{statistics.median(heap[mode]):,.0f}",
                     ",".join(sorted(firsts[mode]))))
    widths = [max(len(r[i]) for r in rows) for i in range(len(rows[0]))]
    for row in rows:
        print(f"{row[0]:<{widths[0]}}  " + "  ".join(
            f"{cell:>{w}}" for cell, w in zip(row[1:], widths[1:])))

    median = {mode: statistics.median(times[mode]) for mode in MODES}
    print(f"search_pattern / usearch, time: {median['fold'] / median['usearch']:.3f} "
          f"(target <= {TARGET_RATIO:g})")
    print(f"search_pattern, resident memory added: {statistics.median(rss['fold']) / 1024:.2f} MiB "
          f"(target <= {TARGET_RSS_KIB / 1024:g} MiB)")
    print(f"with every toggle: {median['options']:.3f} ms (target <= {TARGET_OPTIONS_MS:g} ms), "
          f"{median['options'] / median['usearch-options']:.3f} of usearch set up the same way")
    print(f"every option set, resident memory added: "
          f"{statistics.median(rss['all-options']) / 1024:.2f} MiB "
          f"(target <= {TARGET_RSS_KIB / 1024:g} MiB)")
    for name, mode in (("Danish", "danish"), ("Arabic", "arabic")):
        print(f"first {name} search: {median[mode]:.3f} ms, "
              f"{median[mode] / median['usearch-' + mode]:.3f} of usearch's "
              f"(target <= {TARGET_LANGUAGE_RATIO:g}); resident memory added "
              f"{statistics.median(rss[mode]) / 1024:.2f} MiB (usearch's: "
              f"{statistics.median(rss['usearch-' + mode]) / 1024:.2f} MiB), heap kept "
              f"{statistics.median(heap[mode]) / 1024:.2f} MiB "
              f"(target <= {TARGET_LANGUAGE_RSS_KIB / 1024:g} MiB)")
    print(f"a second language's eight tables (Swedish): {median['swedish']:.3f} ms, "
          f"{statistics.median(rss['swedish']) / 1024:.2f} MiB resident, "
          f"{statistics.median(heap['swedish']) / 1024:.2f} MiB of heap kept "
          f"(target <= {TARGET_LANGUAGE_RSS_KIB / 1024:g} MiB)")
    status = 0
    for a, b in (("fold", "usearch"), ("options", "usearch-options"), ("danish", "usearch-danish"),
                 ("arabic", "usearch-arabic")):
        if firsts[a] != firsts[b]:
            print(f"{LABELS[a]} and {LABELS[b]} do not find the same first match")
            status = 1
    return status


if __name__ == "__main__":
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], int(sys.argv[2]) if len(sys.argv) == 3 else 7))
