// What the search tests share: matches as ranges, options made in one call,
// text helpers (normalisation, code points), and which ICU collator and word
// break rules a locale tag asks for.
#ifndef SCL_REGEX_TESTS_SUPPORT_SEARCH_SUPPORT_H
#define SCL_REGEX_TESTS_SUPPORT_SEARCH_SUPPORT_H

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <unicode/locid.h>
#include <unicode/unistr.h>
#include <unicode/unorm2.h>
#include <unicode/utf16.h>

#include <scl/regex/exception.h>
#include <scl/regex/search_pattern.h>
#include <scl/regex/time_limit.h>

namespace scl_regex_test {

namespace re = scl::regex;

using range = std::pair<std::size_t, std::size_t>;
using ranges = std::vector<range>;

inline ranges ranges_of(const std::vector<re::source_match>& matches) {
  ranges out;
  for (const re::source_match& match : matches) out.emplace_back(match.start, match.end);
  return out;
}

// Every match of `pattern` in `text` (UTF-16 or UTF-8), as ranges.
template <class Text>
ranges find(const re::search_pattern& pattern, const Text& text) {
  return ranges_of(pattern.find_all(text));
}

// Whether searching `text` with `pattern` past the thread's deadline (a
// match_time_limit of zero) throws regex_exception with U_REGEX_TIME_OUT.
inline bool times_out(const re::search_pattern& pattern, std::u16string_view text) {
  const re::match_time_limit limit(std::chrono::milliseconds(0));
  try {
    static_cast<void>(pattern.find_all(text));
  } catch (const re::regex_exception& e) {
    return e.getErrorCodeMnemonic() == "U_REGEX_TIME_OUT" && limit.exceeded();
  }
  return false;
}

// Search options in one call.
inline re::search_options options_with(bool match_case, re::diacritics_rule diacritics,
                                       bool whole_words = false, bool ignore_punctuation = false,
                                       std::string locale = {}) {
  re::search_options options;
  options.match_case = match_case;
  options.diacritics = diacritics;
  options.whole_words = whole_words;
  options.ignore_punctuation = ignore_punctuation;
  options.locale = std::move(locale);
  return options;
}

// `text` in UTF-8.
inline std::string utf8(std::u16string_view text) {
  std::string out;
  icu::UnicodeString(text.data(), static_cast<int32_t>(text.size())).toUTF8String(out);
  return out;
}

// `text` normalised by `normalizer` (ICU's NFC or NFD instance).
inline std::u16string normalized(const UNormalizer2* normalizer, std::u16string_view text,
                                 UErrorCode status) {
  std::u16string out(text.size() * 4 + 8, u'\0');
  const int32_t length =
      unorm2_normalize(normalizer, text.data(), static_cast<int32_t>(text.size()), out.data(),
                       static_cast<int32_t>(out.size()), &status);
  if (U_FAILURE(status)) return u"<normalisation failed>";
  out.resize(static_cast<std::size_t>(length));
  return out;
}

inline std::u16string nfc(std::u16string_view text) {
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* normalizer = unorm2_getNFCInstance(&status);
  return normalized(normalizer, text, status);
}

inline std::u16string nfd(std::u16string_view text) {
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* normalizer = unorm2_getNFDInstance(&status);
  return normalized(normalizer, text, status);
}

inline void append_code_point(std::u16string& text, UChar32 c) {
  if (c <= 0xFFFF) {
    text += static_cast<char16_t>(c);
  } else {
    text += U16_LEAD(c);
    text += U16_TRAIL(c);
  }
}

inline std::u16string from_code_point(UChar32 c) {
  std::u16string text;
  append_code_point(text, c);
  return text;
}

inline std::vector<UChar32> code_points_of(std::u16string_view text) {
  std::vector<UChar32> out;
  for (std::size_t i = 0; i < text.size();) {
    UChar32 c;
    U16_NEXT(text.data(), i, text.size(), c);
    out.push_back(c);
  }
  return out;
}

// `locale`, a BCP 47 tag ("_" read as "-"), as ICU reads it; bogus if it is
// ill-formed.
inline icu::Locale parsed_tag(const std::string& locale) {
  std::string tag = locale;
  std::replace(tag.begin(), tag.end(), '_', '-');
  UErrorCode status = U_ZERO_ERROR;
  icu::Locale parsed = icu::Locale::forLanguageTag(tag, status);
  if (U_FAILURE(status)) parsed.setToBogus();
  return parsed;
}

// The ICU locale ID of the collator for `locale`: "" (the root) for none,
// else the locale's "search" collation unless the tag names one. "" also for
// an ill-formed tag.
inline std::string collator_locale(const std::string& locale) {
  if (locale.empty()) return "";
  const icu::Locale parsed = parsed_tag(locale);
  if (parsed.isBogus()) return "";
  UErrorCode status = U_ZERO_ERROR;
  char collation[64] = {};
  parsed.getKeywordValue("collation", collation, sizeof collation, status);
  return std::string(parsed.getBaseName()) +
         "@collation=" + (collation[0] != '\0' ? collation : "search");
}

// The ICU locale ID whose word break rules `locale` asks for.
inline std::string word_locale(const std::string& locale) {
  const icu::Locale parsed = parsed_tag(locale);
  return parsed.isBogus() ? "" : parsed.getName();
}

}  // namespace scl_regex_test

#endif  // SCL_REGEX_TESTS_SUPPORT_SEARCH_SUPPORT_H
