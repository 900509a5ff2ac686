// One-shot calls that find their compiled pattern in the thread's cache,
// against the same work on a handle compiled once; and one-shot calls that
// never find it, against raw ICU compiling and replacing.
#include <cstdint>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <unicode/regex.h>

#include <scl/regex.h>

#include "bench_texts.h"

namespace {

namespace re = scl::regex;

const std::u16string& record_subject() {
  static const std::u16string subject = bench::record_text(1024).substr(0, 64);
  return subject;
}

std::u16string number(int n) {
  const std::string digits = std::to_string(n);
  return std::u16string(digits.begin(), digits.end());
}
const std::u16string kEmailPattern = u"[a-z0-9._%+-]+@[a-z0-9.-]+\\.[a-z]{2,}";
const std::u16string kEmailSubject =
    u"Write to Jean.Dupont@Example.org or to the desk, before noon.!";

void lib_cached(benchmark::State& state, const std::u16string& subject,
                const std::u16string& pattern, std::uint32_t options) {
  for (auto _ : state)
    benchmark::DoNotOptimize(re::regex_replace(subject, pattern, u"<$0>", options));
  state.SetItemsProcessed(state.iterations());
}

void lib_handle(benchmark::State& state, const std::u16string& subject,
                const std::u16string& pattern, std::uint32_t options) {
  const re::matcher_ptr handle = re::createMatcher(pattern, options);
  if (re::regex_replace(handle, subject, u"<$0>") !=
      re::regex_replace(subject, pattern, u"<$0>", options)) {
    state.SkipWithError("the handle and the one-shot call disagree");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(re::regex_replace(handle, subject, u"<$0>"));
}

// Patterns that never repeat within a cache's reach: every call misses.
const std::vector<std::u16string>& distinct_patterns() {
  static const std::vector<std::u16string> patterns = [] {
    std::vector<std::u16string> list;
    for (int i = 0; i < 4096; ++i)
      list.push_back(bench::record_pattern() + u"|q{" + number(i) + u"}");
    return list;
  }();
  return patterns;
}

void lib_misses(benchmark::State& state) {
  const std::u16string& subject = bench::record_text(1024);
  std::size_t next = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(re::regex_replace(subject, distinct_patterns()[next], u"$2:$1", 0));
    next = (next + 1) % distinct_patterns().size();
  }
}

void icu_misses(benchmark::State& state) {
  const icu::UnicodeString subject = bench::to_icu(bench::record_text(1024));
  const icu::UnicodeString replacement(u"$2:$1");
  std::size_t next = 0;
  for (auto _ : state) {
    UErrorCode status = U_ZERO_ERROR;
    icu::RegexMatcher matcher(bench::to_icu(distinct_patterns()[next]), subject, UREGEX_DOTALL,
                              status);
    benchmark::DoNotOptimize(matcher.replaceAll(replacement, status));
    next = (next + 1) % distinct_patterns().size();
  }
}

// A 40-unit pattern with two named groups.
const std::u16string kNamedPattern = u"(?<year>\\d{4})-(?<month>\\d\\d) on [a-z]+!";

void lib_group_names(benchmark::State& state) {
  const re::regex named(kNamedPattern, 0);
  for (auto _ : state) benchmark::DoNotOptimize(named.getGroupNamesIfAvailable());
}

// The same scan with its finder compiled on every call, as it was before the cache.
void lib_group_names_compiling(benchmark::State& state) {
  const re::regex named(kNamedPattern, 0);
  if (kNamedPattern.size() != 40) {
    state.SkipWithError("the pattern is not 40 units");
    return;
  }
  for (auto _ : state) {
    std::vector<std::u16string> names;
    re::regex finder(u"\\?<([a-zA-Z][a-zA-Z0-9]*)>", 0);
    for (re::regex_iterator it(kNamedPattern, finder); it->start != re::npos; ++it) {
      names.push_back(it->groups[1].str());
    }
    benchmark::DoNotOptimize(names.data());
  }
}

[[maybe_unused]] const bool registered = [] {
  benchmark::RegisterBenchmark("lib/group_names_cached/40", lib_group_names);
  benchmark::RegisterBenchmark("lib/group_names_compiling/40", lib_group_names_compiling);
  benchmark::RegisterBenchmark("lib/oneshot_cached/record/64", lib_cached, record_subject(),
                               bench::record_pattern(), 0u);
  benchmark::RegisterBenchmark("lib/handle_replace/record/64", lib_handle, record_subject(),
                               bench::record_pattern(), 0u);
  benchmark::RegisterBenchmark("lib/oneshot_cached/email_ci/64", lib_cached, kEmailSubject,
                               kEmailPattern, 1u);
  benchmark::RegisterBenchmark("lib/handle_replace/email_ci/64", lib_handle, kEmailSubject,
                               kEmailPattern, 1u);
  benchmark::RegisterBenchmark("lib/replace_misses/opt0/accented/1K", lib_misses);
  benchmark::RegisterBenchmark("icu/replace_misses/opt0/accented/1K", icu_misses);
  for (int threads : {1, 2}) {
    benchmark::RegisterBenchmark("lib/oneshot_cached_threads/record/64", lib_cached,
                                 record_subject(), bench::record_pattern(), 0u)
        ->Threads(threads)
        ->UseRealTime();
  }
  return true;
}();

}  // namespace
