// Checks that every search folding fuzz target makes of a search_pattern's
// matches: well formed, agreeing with found_in, find_first and replace_all,
// starting on boundaries, the same in UTF-8 and UTF-16.
#ifndef SCL_REGEX_FUZZ_SEARCH_CHECKS_H
#define SCL_REGEX_FUZZ_SEARCH_CHECKS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <unicode/ubrk.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <scl/regex/search_pattern.h>

#include "fuzz_input.h"

namespace fuzz::search_checks {

namespace re = scl::regex;

inline constexpr std::size_t kNone = static_cast<std::size_t>(-1);

using ranges = std::vector<std::pair<std::size_t, std::size_t>>;

// Property 1 for the matches of one search over a text of `size` units or bytes.
inline ranges checked_ranges(const std::vector<re::source_match>& matches, std::size_t size) {
  ranges out;
  std::size_t previous_end = 0;
  for (const re::source_match& m : matches) {
    FUZZ_CHECK(m.start < m.end);
    FUZZ_CHECK(m.start >= previous_end);
    FUZZ_CHECK(m.end <= size);
    FUZZ_CHECK(m.groups.size() == 1);
    FUZZ_CHECK(m.groups[0].first == m.start && m.groups[0].second == m.end);
    previous_end = m.end;
    out.emplace_back(m.start, m.end);
  }
  return out;
}

// find_all over `text` (UTF-16 or UTF-8), checked against found_in, find_first
// and replace_all (properties 1 and 3).
template <class Text>
inline ranges search(const re::search_pattern& pattern, const Text& text, const Text& replacement) {
  using view = std::basic_string_view<typename Text::value_type>;
  const ranges found = checked_ranges(pattern.find_all(view(text)), text.size());
  FUZZ_CHECK(pattern.found_in(view(text)) == !found.empty());
  const std::optional<re::source_match> first = pattern.find_first(view(text));
  FUZZ_CHECK(first.has_value() == !found.empty());
  if (first) {
    FUZZ_CHECK(first->start == found.front().first && first->end == found.front().second);
    FUZZ_CHECK(first->groups.size() == 1);
  }
  Text expected;
  std::size_t kept = 0;
  for (const auto& [start, end] : found) {
    expected.append(text, kept, start - kept);
    expected += replacement;
    kept = end;
  }
  expected.append(text, kept, Text::npos);
  FUZZ_CHECK(pattern.replace_all(view(text), view(replacement)) == expected);
  return found;
}

// Every match starts on a boundary of ICU's break iterator of `kind` (a
// grapheme cluster, or with whole words a word, by the rules of `locale`, an
// ICU locale ID) over the UTF-16 text; with `ends`, ends on one too.
inline void check_boundaries(const std::u16string& text, const ranges& found,
                             UBreakIteratorType kind = UBRK_CHARACTER, bool ends = false,
                             const std::string& locale = "") {
  if (found.empty()) return;
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UBreakIterator, void (*)(UBreakIterator*)> breaks(
      ubrk_open(kind, locale.c_str(), text.data(), static_cast<int32_t>(text.size()), &status),
      ubrk_close);
  FUZZ_CHECK(U_SUCCESS(status));
  for (const auto& range : found) {
    FUZZ_CHECK(ubrk_isBoundary(breaks.get(), static_cast<int32_t>(range.first)));
    if (ends) FUZZ_CHECK(ubrk_isBoundary(breaks.get(), static_cast<int32_t>(range.second)));
  }
}

// Bytes read as UTF-8, as the library reads them: each ill-formed sequence
// (maximal subpart) is U+FFFD. `unit_of_byte[b]` is the UTF-16 offset of the
// character that starts at byte b (kNone inside a character), up to the end.
struct decoded {
  std::u16string text;
  std::vector<std::size_t> unit_of_byte;
};

inline decoded decode(const std::string& bytes) {
  decoded out;
  out.unit_of_byte.assign(bytes.size() + 1, kNone);
  const auto* s = reinterpret_cast<const std::uint8_t*>(bytes.data());
  const auto length = static_cast<int32_t>(bytes.size());
  for (int32_t i = 0; i < length;) {
    out.unit_of_byte[static_cast<std::size_t>(i)] = out.text.size();
    UChar32 c = 0;
    U8_NEXT(s, i, length, c);
    if (c < 0) c = 0xFFFD;
    if (c <= 0xFFFF) {
      out.text.push_back(static_cast<char16_t>(c));
    } else {
      out.text.push_back(U16_LEAD(c));
      out.text.push_back(U16_TRAIL(c));
    }
  }
  out.unit_of_byte[bytes.size()] = out.text.size();

  // The same text as ICU's conversion with substitution.
  std::u16string icu(bytes.size(), u'\0');
  int32_t icu_length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8WithSub(icu.data(), static_cast<int32_t>(icu.size()), &icu_length, bytes.data(),
                       length, 0xFFFD, nullptr, &status);
  FUZZ_CHECK(U_SUCCESS(status));
  icu.resize(static_cast<std::size_t>(icu_length));
  FUZZ_CHECK(icu == out.text);
  return out;
}

// Byte ranges as the UTF-16 ranges of the decoded text; each end must fall
// between characters.
inline ranges in_units(const ranges& bytes, const decoded& text) {
  ranges out;
  for (const auto& [start, end] : bytes) {
    FUZZ_CHECK(text.unit_of_byte[start] != kNone && text.unit_of_byte[end] != kNone);
    out.emplace_back(text.unit_of_byte[start], text.unit_of_byte[end]);
  }
  return out;
}

// Property 5: `bytes` searched as UTF-8 finds what its decoding finds as UTF-16.
inline void check_utf8(const re::search_pattern& pattern, const std::string& bytes,
                       const std::string& replacement, UBreakIteratorType starts = UBRK_CHARACTER,
                       const std::string& locale = "") {
  const decoded text = decode(bytes);
  const ranges as_utf16 = search(pattern, text.text, decode(replacement).text);
  check_boundaries(text.text, as_utf16, starts, false, locale);
  FUZZ_CHECK(in_units(search(pattern, bytes, replacement), text) == as_utf16);
}

}  // namespace fuzz::search_checks

#endif  // SCL_REGEX_FUZZ_SEARCH_CHECKS_H
