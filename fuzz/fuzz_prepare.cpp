// Text preparation: prepare_text and strip_diacritics. Every other family
// positions its matches in prepared text, and the other targets take
// prepare_text as their reference, so it is checked here on its own against
// ICU's normalisers.
//
// Input: u32 option bits, then the text (the rest).
//
// Properties:
// - Without preparation bits the text comes back whole; with normalize_nfc
//   alone it is ICU's NFC of the whole text, U+0000 units included.
// - With ignore_diacritics the result ends at the text's first U+0000 and is
//   what ICU's transliterator "any-NFD; [:Nonspacing_Mark:] any-Remove; any-NFC"
//   gives; for well-formed text it has no non-spacing mark (general category
//   Mn) left and is the text's NFD without its marks, in NFC (with unpaired
//   surrogates the transliterator may keep a mark). strip_diacritics(t) is
//   prepare_text(t, ignore_diacritics).
// - Both bits: NFC first, then the marks go.
// - Preparing prepared well-formed text changes nothing (regex_search into
//   tuples, for one, prepares its subject twice).
#include <cstdint>
#include <string>

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>

#include <scl/regex.h>

#include "fuzz_input.h"
#include "support/literal_mechanisms.h"

namespace re = scl::regex;

namespace {

icu::UnicodeString icu_text(const std::u16string& text) {
  return icu::UnicodeString(text.data(), static_cast<int32_t>(text.size()));
}

std::u16string std_text(const icu::UnicodeString& text) {
  return std::u16string(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

std::u16string nfc(const std::u16string& text) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* normalizer = icu::Normalizer2::getNFCInstance(status);
  FUZZ_CHECK(U_SUCCESS(status));
  const icu::UnicodeString result = normalizer->normalize(icu_text(text), status);
  FUZZ_CHECK(U_SUCCESS(status));
  return std_text(result);
}

bool well_formed(const std::u16string& text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!U16_IS_SURROGATE(text[i])) continue;
    if (U16_IS_LEAD(text[i]) && i + 1 < text.size() && U16_IS_TRAIL(text[i + 1])) {
      ++i;
      continue;
    }
    return false;
  }
  return true;
}

bool has_mark(const std::u16string& text) {
  const auto length = static_cast<int32_t>(text.size());
  for (int32_t i = 0; i < length;) {
    UChar32 c = 0;
    U16_NEXT(text.data(), i, length, c);
    if (u_charType(c) == U_NON_SPACING_MARK) return true;
  }
  return false;
}

// Decomposed, without marks, recomposed: the removal of diacritics spelled out.
std::u16string without_marks(const std::u16string& text) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* nfd = icu::Normalizer2::getNFDInstance(status);
  FUZZ_CHECK(U_SUCCESS(status));
  const icu::UnicodeString decomposed = nfd->normalize(icu_text(text), status);
  FUZZ_CHECK(U_SUCCESS(status));
  icu::UnicodeString kept;
  for (int32_t i = 0; i < decomposed.length(); i = decomposed.moveIndex32(i, 1)) {
    const UChar32 c = decomposed.char32At(i);
    if (u_charType(c) != U_NON_SPACING_MARK) kept.append(c);
  }
  return nfc(std_text(kept));
}

// ICU's transliterator itself, which the removal of diacritics reproduces for
// every text, unpaired surrogates included (the test suite's oracle).
std::u16string transliterated(const std::u16string& text) {
  static const scl_regex_test::LiteralMarkRemoval remove_marks;
  FUZZ_CHECK(remove_marks.ready());
  return remove_marks(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::input in(data, size);
  const std::uint32_t options = in.u32();
  const std::u16string text = in.rest(fuzz::kMaxSubject);
  const std::u16string t = fuzz::cut(text);

  FUZZ_CHECK(re::prepare_text(text, options & ~6u) == text);
  FUZZ_CHECK(re::prepare_text(text, re::constants::normalize_nfc) == nfc(text));

  const std::u16string stripped = re::prepare_text(text, re::constants::ignore_diacritics);
  FUZZ_CHECK(re::strip_diacritics(text) == stripped);
  FUZZ_CHECK(re::prepare_text(t, re::constants::ignore_diacritics) == stripped);
  FUZZ_CHECK(stripped.find(u'\0') == std::u16string::npos);
  FUZZ_CHECK(stripped == transliterated(t));
  if (well_formed(t)) {
    FUZZ_CHECK(!has_mark(stripped));
    FUZZ_CHECK(stripped == without_marks(t));
  }

  FUZZ_CHECK(re::prepare_text(text, 6) ==
             re::prepare_text(re::prepare_text(text, re::constants::normalize_nfc),
                              re::constants::ignore_diacritics));

  const std::u16string prepared = re::prepare_text(text, options);
  if (well_formed(t)) FUZZ_CHECK(re::prepare_text(prepared, options) == prepared);
  return 0;
}
