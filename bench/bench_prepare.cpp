// Text preparation alone, and its throughput on one thread against two.
//
// The ICU twin of "prepare" is the literal mechanism: Normalizer2's NFC for
// 0x2, and for 0x4 a mark-removing Transliterator created for every call. The
// twin of "prepare_normalisers" is the fastest plain ICU way to remove marks:
// NFD, a frozen UnicodeSet's span over the marks, NFC. "prepare_mapped" is
// prepare_text_mapped, set against the library's own prepare_text.
#include <cstdint>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>
#include <unicode/normalizer2.h>
#include <unicode/translit.h>
#include <unicode/uniset.h>

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

void lib_prepare_kind(benchmark::State& state, bench::kind k, std::size_t units,
                      std::uint32_t options) {
  const std::u16string& text = bench::words_text(k, units);
  for (auto _ : state) benchmark::DoNotOptimize(scl::regex::prepare_text(text, options));
  state.SetItemsProcessed(state.iterations());
}

void lib_prepare_mapped(benchmark::State& state, bench::kind k, std::size_t units,
                        std::uint32_t options) {
  const std::u16string& text = bench::words_text(k, units);
  for (auto _ : state) benchmark::DoNotOptimize(scl::regex::prepare_text_mapped(text, options));
  state.SetItemsProcessed(state.iterations());
}

// NFD, the marks dropped run by run with a frozen set's span, NFC.
struct icu_mark_removal {
  const icu::Normalizer2* nfd;
  const icu::Normalizer2* nfc;
  icu::UnicodeSet marks;

  explicit icu_mark_removal(UErrorCode& status)
      : nfd(icu::Normalizer2::getNFDInstance(status)),
        nfc(icu::Normalizer2::getNFCInstance(status)),
        marks(icu::UnicodeString(u"[:Nonspacing_Mark:]"), status) {
    marks.freeze();
  }

  icu::UnicodeString operator()(const icu::UnicodeString& text, UErrorCode& status) const {
    const icu::UnicodeString decomposed = nfd->normalize(text, status);
    icu::UnicodeString kept;
    const char16_t* units = decomposed.getBuffer();
    const int32_t length = decomposed.length();
    for (int32_t at = 0; at < length;) {
      const int32_t run_end = marks.span(units + at, length - at, USET_SPAN_NOT_CONTAINED) + at;
      kept.append(units, at, run_end - at);
      at = marks.span(units + run_end, length - run_end, USET_SPAN_CONTAINED) + run_end;
    }
    return nfc->normalize(kept, status);
  }
};

void icu_prepare_normalisers(benchmark::State& state, bench::kind k, std::size_t units,
                             std::uint32_t) {
  const std::u16string& text = bench::words_text(k, units);
  const icu::UnicodeString source = bench::to_icu(text);
  UErrorCode status = U_ZERO_ERROR;
  const icu_mark_removal remove_marks(status);
  if (U_FAILURE(status) ||
      bench::from_icu(remove_marks(source, status)) != scl::regex::prepare_text(text, 0x4)) {
    state.SkipWithError("the library does not agree with ICU");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(remove_marks(source, status));
  state.SetItemsProcessed(state.iterations());
}

[[maybe_unused]] const bool registered = [] {
  for (const bench::kind k : {bench::kind::french, bench::kind::vietnamese}) {
    const std::string name = std::string("prepare_normalisers/opt4/") + bench::kind_name(k) + "/1K";
    benchmark::RegisterBenchmark(("lib/" + name).c_str(), lib_prepare_kind, k, 1024, 0x4u);
    benchmark::RegisterBenchmark(("icu/" + name).c_str(), icu_prepare_normalisers, k, 1024, 0x4u);
  }
  benchmark::RegisterBenchmark("lib/prepare_mapped/opt4/french/1K", lib_prepare_mapped,
                               bench::kind::french, 1024, 0x4u);
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
