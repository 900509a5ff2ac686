// One-shot calls: replace (UTF-16 and UTF-8), escape, and the text around
// the matches. Each compiles its pattern on every call, and so does its twin.
#include <cstdint>
#include <string>
#include <utility>

#include <benchmark/benchmark.h>
#include <unicode/regex.h>

#include <scl/regex.h>

#include "bench_texts.h"

namespace {

constexpr std::size_t kUnits = 1024;
const std::u16string kReplacement = u"$2:$1";

// Text with some of every kind of character regex_escape quotes: 32 units.
const std::u16string kEscapeText = u"Price (net): 4.50$ + tax? [a-z]|";
const std::u16string kEscapePattern = u"([-\\[\\]{}()*+?.,\\\\^$|#\\s])";
const std::u16string kEscapeReplacement = u"\\\\$1";

std::string utf8(const std::u16string& text) {
  std::string out;
  bench::to_icu(text).toUTF8String(out);
  return out;
}

// Compiles `pattern` over `subject` and replaces every match: the raw ICU work
// of a one-shot replace.
icu::UnicodeString icu_replace_all(const icu::UnicodeString& subject,
                                   const icu::UnicodeString& pattern,
                                   const icu::UnicodeString& replacement) {
  UErrorCode status = U_ZERO_ERROR;
  icu::RegexMatcher matcher(pattern, subject, UREGEX_DOTALL, status);
  return matcher.replaceAll(replacement, status);
}

void lib_replace16(benchmark::State& state) {
  const std::u16string& subject = bench::record_text(kUnits);
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        scl::regex::regex_replace(subject, bench::record_pattern(), kReplacement, 0));
  }
}

void icu_replace16(benchmark::State& state) {
  const std::u16string& text = bench::record_text(kUnits);
  const icu::UnicodeString subject = bench::to_icu(text);
  const icu::UnicodeString pattern = bench::to_icu(bench::record_pattern());
  const icu::UnicodeString replacement = bench::to_icu(kReplacement);
  if (bench::from_icu(icu_replace_all(subject, pattern, replacement)) !=
      scl::regex::regex_replace(text, bench::record_pattern(), kReplacement, 0)) {
    state.SkipWithError("the library does not agree with ICU");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(icu_replace_all(subject, pattern, replacement));
}

void lib_replace8(benchmark::State& state) {
  const std::string subject = utf8(bench::record_text(kUnits));
  const std::string pattern = utf8(bench::record_pattern());
  const std::string replacement = utf8(kReplacement);
  for (auto _ : state) {
    benchmark::DoNotOptimize(scl::regex::regex_replace(subject, pattern, replacement, 0));
  }
}

std::string icu_replace_utf8(const std::string& subject, const std::string& pattern,
                             const std::string& replacement) {
  std::string out;
  icu_replace_all(icu::UnicodeString::fromUTF8(subject), icu::UnicodeString::fromUTF8(pattern),
                  icu::UnicodeString::fromUTF8(replacement))
      .toUTF8String(out);
  return out;
}

void icu_replace8(benchmark::State& state) {
  const std::string subject = utf8(bench::record_text(kUnits));
  const std::string pattern = utf8(bench::record_pattern());
  const std::string replacement = utf8(kReplacement);
  if (icu_replace_utf8(subject, pattern, replacement) !=
      scl::regex::regex_replace(subject, pattern, replacement, 0)) {
    state.SkipWithError("the library does not agree with ICU");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(icu_replace_utf8(subject, pattern, replacement));
}

void lib_escape(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(scl::regex::regex_escape(kEscapeText));
}

void icu_escape(benchmark::State& state) {
  const icu::UnicodeString text = bench::to_icu(kEscapeText);
  const icu::UnicodeString pattern = bench::to_icu(kEscapePattern);
  const icu::UnicodeString replacement = bench::to_icu(kEscapeReplacement);
  if (bench::from_icu(icu_replace_all(text, pattern, replacement)) !=
      scl::regex::regex_escape(kEscapeText)) {
    state.SkipWithError("the library does not agree with ICU");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(icu_replace_all(text, pattern, replacement));
}

void lib_prefix_suffix(benchmark::State& state) {
  const std::u16string& subject = bench::record_text(kUnits);
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        scl::regex::regex_search_prefix_suffix(subject, bench::record_pattern(), 0));
  }
}

// Compiles the pattern, walks every match and cuts the text before the first
// and after the last.
std::pair<std::u16string, std::u16string> icu_prefix_suffix(const std::u16string& text,
                                                            const icu::UnicodeString& subject,
                                                            const icu::UnicodeString& pattern) {
  UErrorCode status = U_ZERO_ERROR;
  icu::RegexMatcher matcher(pattern, subject, UREGEX_DOTALL, status);
  int32_t first_start = -1;
  int32_t last_end = -1;
  while (matcher.find(status)) {
    if (first_start < 0) first_start = matcher.start(status);
    last_end = matcher.end(status);
  }
  if (last_end < 0) return {std::u16string(), text};
  return {text.substr(0, static_cast<std::size_t>(first_start)),
          text.substr(static_cast<std::size_t>(last_end))};
}

void icu_prefix_suffix(benchmark::State& state) {
  const std::u16string& text = bench::record_text(kUnits);
  const icu::UnicodeString subject = bench::to_icu(text);
  const icu::UnicodeString pattern = bench::to_icu(bench::record_pattern());
  if (icu_prefix_suffix(text, subject, pattern) !=
      scl::regex::regex_search_prefix_suffix(text, bench::record_pattern(), 0)) {
    state.SkipWithError("the library does not agree with ICU");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(icu_prefix_suffix(text, subject, pattern));
}

[[maybe_unused]] const bool registered = [] {
  benchmark::RegisterBenchmark("lib/replace_utf16/opt0/accented/1K", lib_replace16);
  benchmark::RegisterBenchmark("icu/replace_utf16/opt0/accented/1K", icu_replace16);
  benchmark::RegisterBenchmark("lib/replace_utf8/opt0/accented/1K", lib_replace8);
  benchmark::RegisterBenchmark("icu/replace_utf8/opt0/accented/1K", icu_replace8);
  benchmark::RegisterBenchmark("lib/escape/symbols/32", lib_escape);
  benchmark::RegisterBenchmark("icu/escape/symbols/32", icu_escape);
  benchmark::RegisterBenchmark("lib/prefix_suffix/opt0/accented/1K", lib_prefix_suffix);
  benchmark::RegisterBenchmark("icu/prefix_suffix/opt0/accented/1K", icu_prefix_suffix);
  return true;
}();

}  // namespace
