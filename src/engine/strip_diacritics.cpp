// Removal of diacritics: canonical decomposition, removal of every
// non-spacing mark (general category Mn), canonical composition.
//
// The result is that of ICU's transliterator
// "any-NFD; [:Nonspacing_Mark:] any-Remove; any-NFC" on the text up to its
// first U+0000. Well-formed text is computed directly: ICU's shared normalisers
// and a frozen set of the marks, all immutable after their one-time set-up, so
// any number of threads prepare text at once without locks, and text that the
// steps cannot change is returned as it is. Text with an unpaired surrogate goes
// through the transliterator itself: when removing marks brings two unpaired
// surrogates together, the transliterator reads them as one character and
// steps over the mark that follows, keeping it, and only it gives that result.
#include <memory>

#include <unicode/normalizer2.h>
#include <unicode/translit.h>
#include <unicode/uniset.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>

#include "engine/icu_text.h"
#include "engine/prepare_internal.h"
#include "scl/regex/prepare.h"

namespace scl::regex {
namespace {

struct mark_removal {
  const icu::Normalizer2* nfd = nullptr;
  const icu::Normalizer2* nfc = nullptr;
  icu::UnicodeSet marks;  // general category Mn, frozen
  bool ready = false;

  mark_removal() {
    UErrorCode status = U_ZERO_ERROR;
    nfd = icu::Normalizer2::getNFDInstance(status);
    nfc = icu::Normalizer2::getNFCInstance(status);
    marks.applyPattern(icu::UnicodeString(u"[:Nonspacing_Mark:]"), status);
    marks.freeze();
    ready = U_SUCCESS(status) && nfd != nullptr && nfc != nullptr && !marks.isBogus();
  }
};

const mark_removal& removal() {
  static const mark_removal instance;
  return instance;
}

// `text` without the characters of `marks`.
icu::UnicodeString without(const icu::UnicodeString& text, const icu::UnicodeSet& marks) {
  icu::UnicodeString kept;
  const char16_t* units = text.getBuffer();
  const int32_t length = text.length();
  int32_t at = 0;
  while (at < length) {
    const int32_t run_end =
        marks.span(units + at, length - at, USET_SPAN_NOT_CONTAINED) + at;
    kept.append(units, at, run_end - at);
    at = marks.span(units + run_end, length - run_end, USET_SPAN_CONTAINED) + run_end;
  }
  return kept;
}

bool has_unpaired_surrogate(const char16_t* units, int32_t length) {
  for (int32_t i = 0; i < length; ++i) {
    if (!U16_IS_SURROGATE(units[i])) continue;
    if (U16_IS_SURROGATE_LEAD(units[i]) && i + 1 < length && U16_IS_TRAIL(units[i + 1])) {
      ++i;
      continue;
    }
    return true;
  }
  return false;
}

// The transliterator, for text with unpaired surrogates. Each thread builds its
// own on first need (a transliterator must not be shared between threads).
std::u16string transliterate(const std::u16string& text) {
  thread_local const std::unique_ptr<icu::Transliterator> remove_marks = [] {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Transliterator> created(icu::Transliterator::createInstance(
        icu::UnicodeString(u"any-NFD; [:Nonspacing_Mark:] any-Remove; any-NFC"), UTRANS_FORWARD,
        status));
    if (U_FAILURE(status)) created.reset();
    return created;
  }();
  if (!remove_marks) return text;
  icu::UnicodeString work(text.c_str());
  remove_marks->transliterate(work);
  const char16_t* buffer = work.getTerminatedBuffer();
  return buffer != nullptr ? std::u16string(buffer) : text;
}

// True if the steps certainly leave the well-formed `input` as it is.
bool steps_keep(const mark_removal& steps, const icu::UnicodeString& input) {
  const int32_t length = input.length();
  UErrorCode status = U_ZERO_ERROR;
  return steps.nfd->spanQuickCheckYes(input, status) == length &&
         steps.marks.span(input.getBuffer(), length, USET_SPAN_NOT_CONTAINED) == length &&
         steps.nfc->spanQuickCheckYes(input, status) == length && U_SUCCESS(status);
}

}  // namespace

bool detail::diacritics_removal_keeps(const char16_t* text, int32_t length) {
  const mark_removal& steps = removal();
  return steps.ready && !has_unpaired_surrogate(text, length) &&
         steps_keep(steps, icu::UnicodeString(false, text, length));
}

std::u16string strip_diacritics(const std::u16string& text) {
  const mark_removal& steps = removal();
  if (!steps.ready) return text;

  // The text ends at its first U+0000; read it in place.
  const int32_t length = detail::length_until_nul(text);
  if (has_unpaired_surrogate(text.c_str(), length)) return transliterate(text);
  const icu::UnicodeString input(false, text.c_str(), length);
  if (steps_keep(steps, input)) return text.substr(0, static_cast<std::size_t>(length));

  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString decomposed = steps.nfd->normalize(input, status);
  icu::UnicodeString result = steps.nfc->normalize(without(decomposed, steps.marks), status);
  if (U_FAILURE(status)) return text;
  return detail::text_until_nul(result);
}

}  // namespace scl::regex
