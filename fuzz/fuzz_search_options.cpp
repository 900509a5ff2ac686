// search_pattern with search options, against ICU's usearch set up the same
// way.
//
// Input: one byte of options (bit 0 match_case, bit 1 whole_words, bit 2
// ignore_punctuation, bits 3 and 4 the diacritics rule, out of range at 3,
// bits 5 to 7 the locale, one of kLocales), the query and the replacement
// (length-prefixed, the replacement at most 16 units), then the text (the
// rest, at most 1024 units).
//
// Properties:
// 1. A diacritics rule out of range is an error: the constructors throw
//    regex_exception with U_ILLEGAL_ARGUMENT_ERROR, check reports it with
//    offset npos, search_fold throws it.
// 2. The matches are well formed and agree with found_in, find_first and
//    replace_all, in UTF-16 and UTF-8 (search_checks.h); each starts on a
//    grapheme boundary, or with whole words starts and ends on a word
//    boundary of the locale's rules.
// 3. The query quoted as a regex (\Q...\E, and inside a group, which ICU's
//    engine searches) finds what the literal query finds, unless it finds
//    nothing as a literal (usearch_oracle.h, finds_nothing).
// 4. On NFC text and queries of assigned characters, the matches are those
//    of usearch set up as the options say (usearch_oracle.h), but for the
//    differences the header documents.
// 5. search_fold(text, options) maps into the text it folded.
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <scl/regex/search_pattern.h>

#include "fuzz_input.h"
#include "search_checks.h"
#include "support/usearch_oracle.h"

namespace re = scl::regex;
using namespace fuzz::search_checks;

namespace {

constexpr std::size_t kMaxReplacement = 16;
constexpr std::size_t kMaxText = 1024;
// usearch is slow; it is asked about texts up to this long.
constexpr std::size_t kMaxOracleText = 256;

// The root collator, and languages whose search collations read letters
// otherwise: contractions (Danish "aa", Slovak "ch", Catalan "l\u00b7"),
// letters of their own (Swedish, Turkish), expansions (German), Arabic's
// alef forms.
constexpr const char* kLocales[8] = {"", "da", "sv", "tr", "de", "ar", "sk", "ca"};

re::search_options options_of(std::uint8_t bits) {
  re::search_options options;
  options.match_case = (bits & 1) != 0;
  options.whole_words = (bits & 2) != 0;
  options.ignore_punctuation = (bits & 4) != 0;
  options.diacritics = static_cast<re::diacritics_rule>(bits >> 3 & 3);
  options.locale = kLocales[bits >> 5];
  return options;
}

// Property 1.
void check_rejected(const std::u16string& query, const re::search_options& options) {
  for (const re::query_syntax syntax : {re::query_syntax::literal, re::query_syntax::regex}) {
    bool thrown = false;
    try {
      const re::search_pattern pattern(query, syntax, options);
    } catch (const re::regex_exception& e) {
      thrown = e.getErrorCodeMnemonic() == "U_ILLEGAL_ARGUMENT_ERROR";
    }
    FUZZ_CHECK(thrown);
    const std::optional<re::pattern_error> error =
        re::search_pattern::check(query, syntax, options);
    FUZZ_CHECK(error.has_value() && error->offset == re::npos &&
               error->error.getErrorCodeMnemonic() == "U_ILLEGAL_ARGUMENT_ERROR");
  }
  bool thrown = false;
  try {
    static_cast<void>(re::search_fold(query, options));
  } catch (const re::regex_exception&) {
    thrown = true;
  }
  FUZZ_CHECK(thrown);
}

// Whether usearch can be asked about `text`: NFC, assigned characters only.
bool comparable(const std::u16string& text) {
  namespace differential = scl_regex_test::search_differential;
  if (differential::nfc(text) != text) return false;
  for (const UChar32 c : differential::code_points_of(text)) {
    if (U_IS_SURROGATE(c) || u_charType(c) == U_UNASSIGNED || u_charType(c) == U_PRIVATE_USE_CHAR) {
      return false;
    }
  }
  return true;
}

// One oracle per option set, made at its first use.
scl_regex_test::search_differential::usearch_oracle& oracle_for(std::uint8_t bits,
                                                                const re::search_options& options) {
  static std::map<std::uint8_t,
                  std::unique_ptr<scl_regex_test::search_differential::usearch_oracle>>
      oracles;
  auto& oracle = oracles[bits];
  if (!oracle)
    oracle = std::make_unique<scl_regex_test::search_differential::usearch_oracle>(options);
  return *oracle;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  namespace differential = scl_regex_test::search_differential;
  fuzz::input in(data, size);
  const std::uint8_t bits = in.byte();
  const re::search_options options = options_of(bits);
  std::string query_bytes;
  std::string text_bytes;
  const std::u16string query = in.text(fuzz::kMaxPattern, &query_bytes);
  const std::u16string replacement = in.text(kMaxReplacement);
  const std::u16string text = in.rest(kMaxText, &text_bytes);

  if ((bits >> 3 & 3) > 2) {
    check_rejected(query, options);
    return 0;
  }

  // Property 2.
  const re::search_pattern pattern(query, re::query_syntax::literal, options);
  FUZZ_CHECK(pattern.options() == options);
  const ranges found = search(pattern, text, replacement);
  const std::string words = scl_regex_test::word_locale(options.locale);
  if (options.whole_words) {
    check_boundaries(text, found, UBRK_WORD, true, words);
  } else {
    check_boundaries(text, found);
  }
  const std::string utf8_replacement = fuzz::to_utf8(replacement);
  const UBreakIteratorType starts = options.whole_words ? UBRK_WORD : UBRK_CHARACTER;
  check_utf8(pattern, fuzz::to_utf8(fuzz::lone_surrogates_replaced(text)), utf8_replacement, starts,
             words);
  check_utf8(pattern, text_bytes, utf8_replacement, starts, words);

  // Property 5.
  const re::prepared_text folded = re::search_fold(text, options);
  FUZZ_CHECK(folded.source_size() == text.size());
  const std::pair<std::size_t, std::size_t> whole = folded.source_range(0, folded.text().size());
  FUZZ_CHECK(whole.first <= whole.second && whole.second <= text.size());

  const bool finds_nothing = differential::finds_nothing(options, query);
  if (finds_nothing) FUZZ_CHECK(found.empty());

  // Property 3.
  if (!finds_nothing && query.find(u"\\E") == std::u16string::npos) {
    const std::u16string quoted = u"\\Q" + query + u"\\E";
    for (const std::u16string& form : {quoted, u"(?:" + quoted + u")"}) {
      const re::search_pattern regex(form, re::query_syntax::regex, options);
      FUZZ_CHECK(checked_ranges(regex.find_all(text), text.size()) == found);
    }
  }

  // Property 4.
  if (finds_nothing || text.size() > kMaxOracleText || !comparable(query) || !comparable(text)) {
    return 0;
  }
  differential::usearch_oracle& oracle = oracle_for(bits, options);
  if (differential::excluded(oracle, options, query, text) != differential::exclusion::none) {
    return 0;
  }
  bool failed = false;
  const differential::ranges expected = oracle.find_all(query, text, failed);
  if (!failed) FUZZ_CHECK(differential::agrees(oracle, options, text, found, expected));
  return 0;
}
