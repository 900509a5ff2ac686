// How late a search stops after its match_time_limit's deadline, on patterns
// that never end or take exponential time. Each iteration starts a 50 ms limit
// and searches once; the counters are the delay past the deadline, in ms.
#include <algorithm>
#include <chrono>
#include <string>

#include <benchmark/benchmark.h>

#include <scl/regex.h>

namespace {

namespace re = scl::regex;
using clock_type = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kLimit(50);

void stop_latency(benchmark::State& state, const std::u16string& pattern,
                  const std::u16string& subject) {
  re::matcher_ptr handle = re::createMatcher(pattern, 0);
  double worst = 0;
  double total = 0;
  bool all_stopped = true;
  for (auto _ : state) {
    const clock_type::time_point start = clock_type::now();
    re::match_time_limit limit(kLimit);
    benchmark::DoNotOptimize(re::regex_search(handle, subject, false));
    const double late =
        std::chrono::duration<double, std::milli>(clock_type::now() - (start + kLimit)).count();
    worst = std::max(worst, late);
    total += late;
    all_stopped = all_stopped && limit.exceeded();
  }
  if (!all_stopped) state.SkipWithError("a search was not stopped by the limit");
  state.counters["late_max_ms"] = worst;
  state.counters["late_mean_ms"] = total / static_cast<double>(state.iterations());
}

[[maybe_unused]] const bool registered = [] {
  const struct {
    const char* name;
    std::u16string pattern;
    std::u16string subject;
  } cases[] = {
      {"(a?)+?b", u"(a?)+?b", u"aac"},
      {"(?:a?)+?b", u"(?:a?)+?b", u"aac"},
      {"(a?)*?b", u"(a?)*?b", u"aac"},
      {"(a|)+?b", u"(a|)+?b", u"aac"},
      {"(a*)+?b", u"(a*)+?b", u"aac"},
      {"(a{0,2})*?b", u"(a{0,2})*?b", u"aac"},
      {"(x+x+)+y on 30 x", u"(x+x+)+y", std::u16string(30, u'x')},
  };
  for (const auto& c : cases) {
    benchmark::RegisterBenchmark(
        (std::string("limit/stop_latency/") + c.name).c_str(),
        [pattern = c.pattern, subject = c.subject](benchmark::State& state) {
          stop_latency(state, pattern, subject);
        })
        ->Iterations(20)
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
  }
  return true;
}();

}  // namespace
