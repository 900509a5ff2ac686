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
#include "search_checks.h"

namespace re = scl::regex;
using namespace fuzz::search_checks;

namespace {

constexpr std::size_t kMaxReplacement = 16;

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
  check_boundaries(text, found);
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
