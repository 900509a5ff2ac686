// The straightforward ways of computing text preparation and escaping, kept in
// the test suite as oracles: the library computes the same results faster, and
// the identity tests compare the two.
#ifndef SCL_REGEX_TESTS_SUPPORT_LITERAL_MECHANISMS_H
#define SCL_REGEX_TESTS_SUPPORT_LITERAL_MECHANISMS_H

#include <memory>
#include <string>
#include <vector>

#include <unicode/normalizer2.h>
#include <unicode/regex.h>
#include <unicode/translit.h>
#include <unicode/unistr.h>

namespace scl_regex_test {

inline const char16_t* const kMarkRemovalId = u"any-NFD; [:Nonspacing_Mark:] any-Remove; any-NFC";

// Removal of diacritics through ICU's transliterator: the text up to its first
// U+0000, decomposed, stripped of Mn characters, recomposed. Building the
// transliterator costs ~0.3 ms, so an oracle object keeps one for many texts;
// transliterating a whole string does not depend on earlier calls.
class LiteralMarkRemoval {
 public:
  LiteralMarkRemoval() {
    UErrorCode status = U_ZERO_ERROR;
    transliterator_.reset(icu::Transliterator::createInstance(icu::UnicodeString(kMarkRemovalId),
                                                              UTRANS_FORWARD, status));
    if (U_FAILURE(status)) transliterator_.reset();
  }
  bool ready() const { return transliterator_ != nullptr; }

  std::u16string operator()(const std::u16string& text) const {
    icu::UnicodeString work(text.c_str());
    transliterator_->transliterate(work);
    return std::u16string(work.getTerminatedBuffer());
  }

 private:
  std::unique_ptr<icu::Transliterator> transliterator_;
};

// The same with a transliterator created for the one call, as a caller would
// write it without caring for cost.
inline std::u16string literal_strip_per_call(const std::u16string& text) {
  return LiteralMarkRemoval()(text);
}

// NFC through a normaliser writing into a 1024-unit buffer, and a second pass
// into a buffer of the needed size when the result is longer.
inline std::u16string literal_nfc(const std::u16string& text) {
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* nfc = unorm2_getNFCInstance(&status);
  std::vector<char16_t> buffer(1024);
  int32_t needed = unorm2_normalize(nfc, text.data(), static_cast<int32_t>(text.size()),
                                    buffer.data(), 1024, &status);
  if (needed <= 1024) return std::u16string(buffer.data(), static_cast<std::size_t>(needed));
  std::u16string result(static_cast<std::size_t>(needed), u'\0');
  status = U_ZERO_ERROR;
  unorm2_normalize(nfc, text.data(), static_cast<int32_t>(text.size()), result.data(), needed,
                   &status);
  return result;
}

// The whole preparation, step by step: NFC first, then removal of marks.
inline std::u16string literal_prepare(const std::u16string& text, uint32_t options,
                                      const LiteralMarkRemoval& strip) {
  std::u16string result = (options & 0x2) != 0 ? literal_nfc(text) : text;
  if ((options & 0x4) != 0) result = strip(result);
  return result;
}

// Escaping through a regular expression: every character of the class below
// gets a backslash ("\\$1" is a literal backslash and group 1).
class LiteralEscape {
 public:
  LiteralEscape() {
    UErrorCode status = U_ZERO_ERROR;
    matcher_ = std::make_unique<icu::RegexMatcher>(
        icu::UnicodeString(u"([-\\[\\]{}()*+?.,\\\\^$|#\\s])"), 32, status);
  }

  std::u16string operator()(const std::u16string& text) const {
    const icu::UnicodeString input(text.c_str());
    matcher_->reset(input);
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString out = matcher_->replaceAll(icu::UnicodeString(u"\\\\$1"), status);
    return std::u16string(out.getTerminatedBuffer());
  }

 private:
  std::unique_ptr<icu::RegexMatcher> matcher_;
};

}  // namespace scl_regex_test

#endif  // SCL_REGEX_TESTS_SUPPORT_LITERAL_MECHANISMS_H
