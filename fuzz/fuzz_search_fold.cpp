// search_pattern and search_fold: literal search folding over UTF-16 and
// UTF-8 text.
//
// Input: the query and the replacement (length-prefixed, the replacement at
// most 16 units), then the text (the rest, at most 4096 units). The UTF-8
// checks also read the bytes the query and the text were read from as UTF-8,
// ill-formed sequences included.
//
// Properties, for every pattern and text searched:
// 1. find_all's matches are non-empty, in order, without overlap and within
//    the text, each with groups == {{start, end}}; found_in is whether there
//    is one, find_first is the first.
// 2. Every match starts on a grapheme-cluster boundary (ICU's character
//    break iterator over the UTF-16 text).
// 3. replace_all replaces the matches and nothing else: every unit (byte)
//    outside them is kept as it was.
// 4. A query that folds to nothing finds nothing, and neither does a
//    default-constructed pattern. A literal query always checks clean.
// 5. UTF-8 and UTF-16 agree: the UTF-8 form of the text (lone surrogates
//    written as U+FFFD) has the matches, in bytes, of the UTF-16 text with
//    U+FFFD in their place; the input's own bytes read as UTF-8 have the
//    matches of their decoding, each ill-formed sequence (maximal subpart)
//    read as U+FFFD; a UTF-8 query finds what its UTF-16 form finds.
// 6. search_fold maps into the text it folded: source_size() is its length
//    and the whole folded text comes from within it.
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

namespace re = scl::regex;

namespace {

constexpr std::size_t kMaxReplacement = 16;
constexpr std::size_t kNone = static_cast<std::size_t>(-1);

using ranges = std::vector<std::pair<std::size_t, std::size_t>>;

// Property 1 for the matches of one search over a text of `size` units or bytes.
ranges checked_ranges(const std::vector<re::source_match>& matches, std::size_t size) {
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
ranges search(const re::search_pattern& pattern, const Text& text, const Text& replacement) {
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

// Property 2.
void check_grapheme_starts(const std::u16string& text, const ranges& found) {
  if (found.empty()) return;
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UBreakIterator, void (*)(UBreakIterator*)> characters(
      ubrk_open(UBRK_CHARACTER, "", text.data(), static_cast<int32_t>(text.size()), &status),
      ubrk_close);
  FUZZ_CHECK(U_SUCCESS(status));
  for (const auto& range : found)
    FUZZ_CHECK(ubrk_isBoundary(characters.get(), static_cast<int32_t>(range.first)));
}

// Bytes read as UTF-8, as the library reads them: each ill-formed sequence
// (maximal subpart) is U+FFFD. `unit_of_byte[b]` is the UTF-16 offset of the
// character that starts at byte b (kNone inside a character), up to the end.
struct decoded {
  std::u16string text;
  std::vector<std::size_t> unit_of_byte;
};

decoded decode(const std::string& bytes) {
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
ranges in_units(const ranges& bytes, const decoded& text) {
  ranges out;
  for (const auto& [start, end] : bytes) {
    FUZZ_CHECK(text.unit_of_byte[start] != kNone && text.unit_of_byte[end] != kNone);
    out.emplace_back(text.unit_of_byte[start], text.unit_of_byte[end]);
  }
  return out;
}

// Property 5: `bytes` searched as UTF-8 finds what its decoding finds as UTF-16.
void check_utf8(const re::search_pattern& pattern, const std::string& bytes,
                const std::string& replacement) {
  const decoded text = decode(bytes);
  const ranges as_utf16 = search(pattern, text.text, decode(replacement).text);
  check_grapheme_starts(text.text, as_utf16);
  FUZZ_CHECK(in_units(search(pattern, bytes, replacement), text) == as_utf16);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::input in(data, size);
  std::string query_bytes;
  std::string text_bytes;
  const std::u16string query = in.text(fuzz::kMaxPattern, &query_bytes);
  const std::u16string replacement = in.text(kMaxReplacement);
  const std::u16string text = in.rest(fuzz::kMaxSubject, &text_bytes);

  // Properties 1 to 4 on the UTF-16 text, as it is.
  const re::search_pattern pattern(query);
  FUZZ_CHECK(pattern.syntax() == re::query_syntax::literal && pattern.group_count() == 0);
  FUZZ_CHECK(!re::search_pattern::check(query, re::query_syntax::literal).has_value());
  const ranges found = search(pattern, text, replacement);
  check_grapheme_starts(text, found);
  if (re::search_fold(query).text().empty()) FUZZ_CHECK(found.empty());
  FUZZ_CHECK(re::search_pattern().find_all(text).empty());

  // Property 6.
  const re::prepared_text folded = re::search_fold(text);
  FUZZ_CHECK(folded.source_size() == text.size());
  const std::pair<std::size_t, std::size_t> whole = folded.source_range(0, folded.text().size());
  FUZZ_CHECK(whole.first <= whole.second && whole.second <= text.size());

  // Property 5: the text in UTF-8, with U+FFFD for its lone surrogates.
  const std::u16string well_formed = fuzz::lone_surrogates_replaced(text);
  const std::string utf8_replacement = fuzz::to_utf8(replacement);
  check_utf8(pattern, fuzz::to_utf8(well_formed), utf8_replacement);

  // The input's own bytes as UTF-8, whatever they are.
  check_utf8(pattern, text_bytes, utf8_replacement);

  // A UTF-8 query (the query's own bytes, and the query in UTF-8) is its
  // UTF-16 form, each ill-formed sequence read as U+FFFD.
  for (const std::string& utf8_query : {query_bytes, fuzz::to_utf8(query)}) {
    const re::search_pattern from_utf8(utf8_query);
    const re::search_pattern from_utf16(decode(utf8_query).text);
    FUZZ_CHECK(!re::search_pattern::check(utf8_query, re::query_syntax::literal).has_value());
    FUZZ_CHECK(checked_ranges(from_utf8.find_all(text), text.size()) ==
               checked_ranges(from_utf16.find_all(text), text.size()));
    FUZZ_CHECK(checked_ranges(from_utf8.find_all(text_bytes), text_bytes.size()) ==
               checked_ranges(from_utf16.find_all(text_bytes), text_bytes.size()));
  }
  return 0;
}
