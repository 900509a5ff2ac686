// Text preparation alone, and its throughput on one thread against two.
//
// The ICU twin is the literal mechanism: Normalizer2's NFC for 0x2, and for
// 0x4 a mark-removing Transliterator created for every call.
#include <cstdint>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>
#include <unicode/normalizer2.h>
#include <unicode/translit.h>

#include <scl/regex.h>

#include "bench_texts.h"

namespace {

const icu::UnicodeString kStripMarks(u"any-NFD; [:Nonspacing_Mark:] any-Remove; any-NFC");

void lib_prepare(benchmark::State& state, std::size_t units, std::uint32_t options) {
  const std::u16string& text = bench::words_text(bench::kind::accented, units);
  for (auto _ : state) benchmark::DoNotOptimize(scl::regex::prepare_text(text, options));
  state.SetItemsProcessed(state.iterations());
}

icu::UnicodeString icu_prepare_once(const icu::UnicodeString& source, std::uint32_t options,
                                    UErrorCode& status) {
  icu::UnicodeString work =
      (options & 0x2) != 0 ? icu::Normalizer2::getNFCInstance(status)->normalize(source, status)
                           : source;
  if ((options & 0x4) != 0) {
    const std::unique_ptr<icu::Transliterator> strip(
        icu::Transliterator::createInstance(kStripMarks, UTRANS_FORWARD, status));
    if (strip) strip->transliterate(work);
  }
  return work;
}

void icu_prepare(benchmark::State& state, std::size_t units, std::uint32_t options) {
  const std::u16string& text = bench::words_text(bench::kind::accented, units);
  const icu::UnicodeString source = bench::to_icu(text);
  UErrorCode status = U_ZERO_ERROR;
  const bool agrees = bench::remember<bool>(bench::size_name(units) + std::to_string(options), [&] {
    return bench::from_icu(icu_prepare_once(source, options, status)) ==
           scl::regex::prepare_text(text, options);
  });
  if (U_FAILURE(status) || !agrees) {
    state.SkipWithError("the library does not agree with ICU");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(icu_prepare_once(source, options, status));
  state.SetItemsProcessed(state.iterations());
}

[[maybe_unused]] const bool registered = [] {
  for (const std::size_t units : {std::size_t{32}, std::size_t{1} << 10}) {
    for (const std::uint32_t options : {0x2u, 0x4u, 0x6u}) {
      const std::string name =
          "prepare/opt" + std::to_string(options) + "/accented/" + bench::size_name(units);
      benchmark::RegisterBenchmark(("lib/" + name).c_str(), lib_prepare, units, options);
      benchmark::RegisterBenchmark(("icu/" + name).c_str(), icu_prepare, units, options);
    }
  }
  // Throughput on two threads: wall time, so that items per second add up.
  benchmark::RegisterBenchmark("lib/prepare_threads/opt4/accented/32", lib_prepare, 32, 0x4u)
      ->Threads(1)
      ->Threads(2)
      ->UseRealTime();
  benchmark::RegisterBenchmark("icu/prepare_threads/opt4/accented/32", icu_prepare, 32, 0x4u)
      ->Threads(1)
      ->Threads(2)
      ->UseRealTime();
  return true;
}();

}  // namespace
