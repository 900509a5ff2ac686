// Walking some 10,000 matches of a 1 MiB subject and reading their groups:
// with regex_iterator on a compiled regex, and collected into match tuples;
// and regex_find_all, which locates them in the caller's text, against the
// regex_iterator walk that reads the same positions in the prepared text.
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>
#include <unicode/regex.h>

#include <scl/regex.h>

#include "bench_texts.h"

namespace {

constexpr std::size_t kUnits = std::size_t{1} << 20;

std::u16string group_text(const icu::UnicodeString& subject, const icu::RegexMatcher& matcher,
                          int32_t group, UErrorCode& status) {
  const int32_t start = matcher.start(group, status);
  const int32_t end = matcher.end(group, status);
  if (U_FAILURE(status) || start < 0) return {};
  return std::u16string(subject.getBuffer() + start, static_cast<std::size_t>(end - start));
}

void lib_walk(benchmark::State& state) {
  const std::u16string& subject = bench::record_text(kUnits);
  scl::regex::regex re(bench::record_pattern(), 0);
  std::int64_t matches = 0;
  for (auto _ : state) {
    for (scl::regex::regex_iterator it(subject, re); it->start != scl::regex::npos; ++it) {
      benchmark::DoNotOptimize(it->groups[1].str());
      benchmark::DoNotOptimize(it->groups[2].str());
      ++matches;
    }
  }
  state.counters["matches"] =
      benchmark::Counter(static_cast<double>(matches), benchmark::Counter::kAvgIterations);
}

void icu_walk(benchmark::State& state) {
  const icu::UnicodeString subject = bench::to_icu(bench::record_text(kUnits));
  UErrorCode status = U_ZERO_ERROR;
  icu::RegexMatcher matcher(bench::to_icu(bench::record_pattern()), UREGEX_DOTALL, status);
  std::int64_t matches = 0;
  for (auto _ : state) {
    matcher.reset(subject);
    while (matcher.find(status)) {
      benchmark::DoNotOptimize(group_text(subject, matcher, 1, status));
      benchmark::DoNotOptimize(group_text(subject, matcher, 2, status));
      ++matches;
    }
  }
  state.counters["matches"] =
      benchmark::Counter(static_cast<double>(matches), benchmark::Counter::kAvgIterations);
}

void lib_tuples(benchmark::State& state) {
  const std::u16string& subject = bench::record_text(kUnits);
  std::vector<scl::regex::match_tuple> out;
  for (auto _ : state) {
    scl::regex::regex_search(subject, bench::record_pattern(), out, 0);
    benchmark::DoNotOptimize(out.data());
  }
  state.counters["matches"] = static_cast<double>(out.size());
}

// Compiles the pattern and collects every match with its groups, as regex_search does.
void icu_tuples_into(std::vector<scl::regex::match_tuple>& out, const icu::UnicodeString& subject,
                     const icu::UnicodeString& pattern) {
  out.clear();
  UErrorCode status = U_ZERO_ERROR;
  icu::RegexMatcher matcher(pattern, subject, UREGEX_DOTALL, status);
  const int32_t groups = matcher.groupCount();
  while (matcher.find(status)) {
    std::vector<std::u16string> texts;
    texts.reserve(static_cast<std::size_t>(groups));
    for (int32_t g = 1; g <= groups; ++g) texts.push_back(group_text(subject, matcher, g, status));
    out.emplace_back(group_text(subject, matcher, 0, status), std::move(texts));
  }
}

void icu_tuples(benchmark::State& state) {
  const std::u16string& text = bench::record_text(kUnits);
  const icu::UnicodeString subject = bench::to_icu(text);
  const icu::UnicodeString pattern = bench::to_icu(bench::record_pattern());
  std::vector<scl::regex::match_tuple> out;
  const bool agrees = bench::remember<bool>("tuples", [&] {
    std::vector<scl::regex::match_tuple> expected;
    scl::regex::regex_search(text, bench::record_pattern(), expected, 0);
    icu_tuples_into(out, subject, pattern);
    return out == expected;
  });
  if (!agrees) {
    state.SkipWithError("the library does not agree with ICU");
    return;
  }
  for (auto _ : state) {
    icu_tuples_into(out, subject, pattern);
    benchmark::DoNotOptimize(out.data());
  }
  state.counters["matches"] = static_cast<double>(out.size());
}

constexpr std::uint32_t kCaseAndMarks = 0x5;

void lib_iterator_positions(benchmark::State& state) {
  const std::u16string& subject = bench::record_text(kUnits);
  scl::regex::regex re(bench::record_pattern(), kCaseAndMarks);
  std::size_t matches = 0;
  for (auto _ : state) {
    matches = 0;
    for (scl::regex::regex_iterator it(subject, re); it->start != scl::regex::npos; ++it) {
      benchmark::DoNotOptimize(it->start);
      benchmark::DoNotOptimize(it->end);
      for (const scl::regex::group_result& group : it->groups) {
        benchmark::DoNotOptimize(group.start);
        benchmark::DoNotOptimize(group.end);
      }
      ++matches;
    }
  }
  state.counters["matches"] = static_cast<double>(matches);
}

// regex_find_all of `pattern` (options 0x5) over `subject`, the regex reused.
void find_all_over(benchmark::State& state, const std::u16string& subject,
                   const std::u16string& pattern) {
  scl::regex::regex re(pattern, kCaseAndMarks);
  std::size_t matches = 0;
  for (auto _ : state) {
    const std::vector<scl::regex::source_match> found = scl::regex::regex_find_all(re, subject);
    benchmark::DoNotOptimize(found.data());
    matches = found.size();
  }
  state.counters["matches"] = static_cast<double>(matches);
}

void lib_find_all(benchmark::State& state) {
  find_all_over(state, bench::record_text(kUnits), bench::record_pattern());
}

// 1 MiB of French words; "cr(e)me" matches every "crème" (about one word in 26),
// "zzz" nothing at all, so the second case measures the walk's fixed costs.
const std::u16string& french_text() { return bench::words_text(bench::kind::french, kUnits); }

void lib_french_walk(benchmark::State& state, const char16_t* pattern) {
  const std::u16string& subject = french_text();
  scl::regex::regex re(pattern, kCaseAndMarks);
  std::size_t matches = 0;
  for (auto _ : state) {
    // Collects what regex_find_all returns, in prepared positions.
    std::vector<std::pair<std::size_t, std::size_t>> found;
    for (scl::regex::regex_iterator it(subject, re); it->start != scl::regex::npos; ++it) {
      for (const scl::regex::group_result& group : it->groups)
        found.emplace_back(group.start, group.end);
    }
    benchmark::DoNotOptimize(found.data());
    matches = found.size();
  }
  state.counters["groups"] = static_cast<double>(matches);
}

void lib_french_find_all(benchmark::State& state, const char16_t* pattern) {
  find_all_over(state, french_text(), pattern);
}

void lib_french_replace_preserving(benchmark::State& state, const char16_t* pattern) {
  const std::u16string& subject = french_text();
  scl::regex::regex re(pattern, kCaseAndMarks);
  for (auto _ : state) {
    const std::u16string replaced = scl::regex::regex_replace_preserving(re, subject, u"[$0]");
    benchmark::DoNotOptimize(replaced.data());
  }
}

[[maybe_unused]] const bool registered = [] {
  for (const char16_t* pattern : {u"cr(e)me", u"zzz"}) {
    const std::string name = pattern[0] == u'z' ? "zzz" : "cr(e)me";
    benchmark::RegisterBenchmark(("lib/french_walk/opt5/" + name + "/1M").c_str(), lib_french_walk,
                                 pattern);
    benchmark::RegisterBenchmark(("lib/french_find_all/opt5/" + name + "/1M").c_str(),
                                 lib_french_find_all, pattern);
    benchmark::RegisterBenchmark(("lib/french_replace_preserving/opt5/" + name + "/1M").c_str(),
                                 lib_french_replace_preserving, pattern);
  }
  benchmark::RegisterBenchmark("lib/iterator_groups/opt0/accented/1M", lib_walk);
  benchmark::RegisterBenchmark("icu/iterator_groups/opt0/accented/1M", icu_walk);
  benchmark::RegisterBenchmark("lib/search_tuples/opt0/accented/1M", lib_tuples);
  benchmark::RegisterBenchmark("icu/search_tuples/opt0/accented/1M", icu_tuples);
  benchmark::RegisterBenchmark("lib/iterator_positions/opt5/accented/1M", lib_iterator_positions);
  benchmark::RegisterBenchmark("lib/find_all/opt5/accented/1M", lib_find_all);
  return true;
}();

}  // namespace
