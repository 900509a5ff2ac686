// Handle search against a precompiled ICU matcher.
//
// The library prepares and copies the subject on every call; its ICU twin
// gets the subject prepared once in set-up (the same way, with raw ICU) and
// only resets and finds, so the ratio is the library's whole overhead.
#include <cstdint>
#include <string>

#include <benchmark/benchmark.h>
#include <unicode/regex.h>

#include <scl/regex.h>

#include "bench_texts.h"

namespace {

void lib_search(benchmark::State& state, bench::kind k, std::size_t units, std::uint32_t options) {
  const std::u16string& subject = bench::words_text(k, units);
  const scl::regex::matcher_ptr handle = scl::regex::createMatcher(bench::last_word(), options);
  for (auto _ : state) benchmark::DoNotOptimize(scl::regex::regex_search(handle, subject, false));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(units * 2));
}

void icu_search(benchmark::State& state, bench::kind k, std::size_t units, std::uint32_t options) {
  const std::u16string& text = bench::words_text(k, units);
  const std::string key = bench::kind_name(k) + bench::size_name(units) + std::to_string(options);
  const icu::UnicodeString& subject = bench::remember<icu::UnicodeString>(
      key, [&] { return bench::icu_prepare(bench::to_icu(text), options); });
  UErrorCode status = U_ZERO_ERROR;
  icu::RegexMatcher matcher(bench::to_icu(bench::last_word()), bench::icu_flags(options), status);
  matcher.reset(subject);
  const auto word_length = static_cast<int32_t>(bench::last_word().size());
  if (!matcher.find(0, status) || U_FAILURE(status) ||
      matcher.start(status) + word_length != subject.length()) {
    state.SkipWithError("the word is not found at the end of the subject");
    return;
  }
  // The library must find the same match in the same prepared text. Checked up
  // to 1 KiB: preparing 1 MiB with the library can take seconds.
  const bool agrees =
      units > 1024 || bench::remember<bool>(key, [&] {
        const scl::regex::matcher_ptr handle =
            scl::regex::createMatcher(bench::last_word(), options);
        UErrorCode s = U_ZERO_ERROR;
        return scl::regex::regex_search(handle, text, false) &&
               scl::regex::get_group(handle, 0) == bench::from_icu(matcher.group(s)) &&
               scl::regex::prepare_text(text, options) == bench::from_icu(subject);
      });
  if (!agrees) {
    state.SkipWithError("the library does not agree with ICU");
    return;
  }
  for (auto _ : state) {
    matcher.reset(subject);
    benchmark::DoNotOptimize(matcher.find(0, status));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(units * 2));
}

[[maybe_unused]] const bool registered = [] {
  for (const bench::kind k :
       {bench::kind::ascii, bench::kind::accented, bench::kind::accented_nfc}) {
    for (const std::size_t units : {std::size_t{32}, std::size_t{1} << 10, std::size_t{1} << 20}) {
      for (const std::uint32_t options : {0u, 0x1u, 0x2u, 0x4u, 0x6u}) {
        const std::string name = "search/opt" + std::to_string(options) + "/" +
                                 bench::kind_name(k) + "/" + bench::size_name(units);
        benchmark::RegisterBenchmark(("lib/" + name).c_str(), lib_search, k, units, options);
        benchmark::RegisterBenchmark(("icu/" + name).c_str(), icu_search, k, units, options);
      }
    }
  }
  return true;
}();

}  // namespace
