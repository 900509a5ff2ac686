// ICU's usearch set up as search options say, and the differences from it
// that search folding documents: the oracle of the usearch differential
// (search_differential.h) and of the fuzz targets, without GoogleTest.
//
// usearch has no case level: with match_case, the reference takes usearch's
// overlapping matches at the same strength, keeps those that a collator with
// the case level on finds equal to the query, and takes them leftmost first,
// without overlap.
#ifndef SCL_REGEX_TESTS_SUPPORT_USEARCH_ORACLE_H
#define SCL_REGEX_TESTS_SUPPORT_USEARCH_ORACLE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <unicode/locid.h>
#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/ucoleitr.h>
#include <unicode/unorm2.h>
#include <unicode/usearch.h>
#include <unicode/utf16.h>

#include <scl/regex/search_pattern.h>

#include "support/search_support.h"

namespace scl_regex_test::search_differential {

namespace re = scl::regex;

using scl_regex_test::range;
using scl_regex_test::ranges;
using scl_regex_test::ranges_of;

inline constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);

// ---------------------------------------------------------------------------
// Text helpers

using scl_regex_test::append_code_point;
using scl_regex_test::code_points_of;
using scl_regex_test::nfc;
using scl_regex_test::nfd;

// ---------------------------------------------------------------------------
// The oracle

using scl_regex_test::collator_locale;
using scl_regex_test::word_locale;

// usearch set up as `options` say: the collator of the options' locale (the
// root's, or the locale's search collation) at primary strength, or
// secondary where diacritics count (with USEARCH_PATTERN_BASE_WEIGHT_IS_WILDCARD
// where typed), alternate handling "shifted" for ignored punctuation, the
// locale's word break iterator for whole words.
class usearch_oracle {
 public:
  explicit usearch_oracle(const re::search_options& options = {})
      : locale_(collator_locale(options.locale)) {
    UErrorCode status = U_ZERO_ERROR;
    const bool accents = options.diacritics != re::diacritics_rule::ignore;
    collator_ = open_collator(accents ? UCOL_SECONDARY : UCOL_PRIMARY, false,
                              options.ignore_punctuation, status);
    if (options.match_case) {
      // The case level at the strength the diacritics rule gives (primary
      // where diacritics are matched where typed).
      const bool secondary = options.diacritics == re::diacritics_rule::match;
      case_collator_ = open_collator(secondary ? UCOL_SECONDARY : UCOL_PRIMARY, true,
                                     options.ignore_punctuation, status);
    }
    if (options.whole_words) {
      words_ = ubrk_open(UBRK_WORD, word_locale(options.locale).c_str(), nullptr, 0, &status);
    }
    root_ = open_collator(UCOL_PRIMARY, false, options.ignore_punctuation, status);
    if (U_FAILURE(status)) return;
    static const UChar placeholder[] = {u'x'};
    search_ = usearch_openFromCollator(placeholder, 1, placeholder, 1, collator_, words_, &status);
    if (options.diacritics == re::diacritics_rule::match_typed) {
      usearch_setAttribute(search_, USEARCH_ELEMENT_COMPARISON,
                           USEARCH_PATTERN_BASE_WEIGHT_IS_WILDCARD, &status);
    }
    if (U_FAILURE(status)) search_ = nullptr;
  }
  ~usearch_oracle() {
    if (search_ != nullptr) usearch_close(search_);
    if (words_ != nullptr) ubrk_close(words_);
    for (UCollator* collator : {collator_, case_collator_, root_}) {
      if (collator != nullptr) ucol_close(collator);
    }
  }
  usearch_oracle(const usearch_oracle&) = delete;
  usearch_oracle& operator=(const usearch_oracle&) = delete;

  bool ready() const { return search_ != nullptr; }
  // The collator usearch searches with, and whether it is a language's own
  // (not the root's).
  const UCollator* collator() const { return collator_; }
  bool tailored() const { return !locale_.empty() && locale_ != "root"; }

  // Every match of `query` in `text`, forward, without overlap (usearch's
  // default; with the case level, see above). Sets `failed` if ICU reports an
  // error.
  ranges find_all(std::u16string_view query, std::u16string_view text, bool& failed) {
    ranges out;
    if (query.empty() || text.empty()) return out;
    UErrorCode status = U_ZERO_ERROR;
    usearch_setText(search_, text.data(), static_cast<int32_t>(text.size()), &status);
    usearch_setPattern(search_, query.data(), static_cast<int32_t>(query.size()), &status);
    if (case_collator_ == nullptr) {
      for (int32_t at = usearch_first(search_, &status); U_SUCCESS(status) && at != USEARCH_DONE;
           at = usearch_next(search_, &status)) {
        out.emplace_back(static_cast<std::size_t>(at),
                         static_cast<std::size_t>(at + usearch_getMatchedLength(search_)));
      }
    } else {
      // Overlapping candidates. ICU 72 can give the same position forever (on
      // some Thai text and emoji sequences), and usearch_following can answer
      // with a match before the position asked for: the search then goes on
      // from the first position after the last candidate that gives one.
      usearch_setAttribute(search_, USEARCH_OVERLAP, USEARCH_ON, &status);
      const auto size = static_cast<int32_t>(text.size());
      std::size_t end = 0;
      int32_t last = -1;
      for (int32_t at = usearch_first(search_, &status); U_SUCCESS(status) && at != USEARCH_DONE;
           at = usearch_next(search_, &status)) {
        for (int32_t from = last + 1; at != USEARCH_DONE && at <= last && from < size; ++from) {
          at = usearch_following(search_, from, &status);
        }
        if (at == USEARCH_DONE || at <= last) break;
        last = at;
        const int32_t length = usearch_getMatchedLength(search_);
        if (static_cast<std::size_t>(at) >= end &&
            ucol_strcoll(case_collator_, query.data(), static_cast<int32_t>(query.size()),
                         text.data() + at, length) == UCOL_EQUAL) {
          out.emplace_back(static_cast<std::size_t>(at), static_cast<std::size_t>(at + length));
          end = static_cast<std::size_t>(at + length);
        }
      }
      usearch_setAttribute(search_, USEARCH_OVERLAP, USEARCH_OFF, &status);
    }
    if (U_FAILURE(status)) failed = true;
    return out;
  }

  // Whether the root collator swaps `prevowel` with `next`: the two form a
  // contraction, whose primary weights differ from theirs one after the other.
  bool swaps(UChar32 prevowel, UChar32 next) const {
    std::u16string pair;
    append_code_point(pair, prevowel);
    const std::size_t split = pair.size();
    append_code_point(pair, next);
    std::vector<int32_t> apart = primaries(pair.substr(0, split));
    const std::vector<int32_t> second = primaries(pair.substr(split));
    apart.insert(apart.end(), second.begin(), second.end());
    return primaries(pair) != apart;
  }

  // Whether the collator reads `c` as nothing at primary strength (with
  // punctuation and spaces, where they are ignored).
  bool ignorable(UChar32 c) const {
    std::u16string text;
    append_code_point(text, c);
    return ucol_strcoll(root_, text.data(), static_cast<int32_t>(text.size()), nullptr, 0) ==
           UCOL_EQUAL;
  }

 private:
  // The primary weights of `text`'s collation elements, in order.
  std::vector<int32_t> primaries(const std::u16string& text) const {
    std::vector<int32_t> out;
    UErrorCode status = U_ZERO_ERROR;
    UCollationElements* elements =
        ucol_openElements(root_, text.data(), static_cast<int32_t>(text.size()), &status);
    for (int32_t order = ucol_next(elements, &status); U_SUCCESS(status) && order != UCOL_NULLORDER;
         order = ucol_next(elements, &status)) {
      if (ucol_primaryOrder(order) != 0) out.push_back(ucol_primaryOrder(order));
    }
    ucol_closeElements(elements);
    return out;
  }

  UCollator* open_collator(UCollationStrength strength, bool case_level, bool shifted,
                           UErrorCode& status) const {
    UCollator* collator = ucol_open(locale_.c_str(), &status);
    if (U_FAILURE(status)) return nullptr;
    ucol_setStrength(collator, strength);
    if (case_level) ucol_setAttribute(collator, UCOL_CASE_LEVEL, UCOL_ON, &status);
    if (shifted) ucol_setAttribute(collator, UCOL_ALTERNATE_HANDLING, UCOL_SHIFTED, &status);
    return collator;
  }

  std::string locale_;  // the collator's ICU locale ID
  UCollator* collator_ = nullptr;
  UCollator* case_collator_ = nullptr;
  UCollator* root_ = nullptr;
  UBreakIterator* words_ = nullptr;
  UStringSearch* search_ = nullptr;
};

// ---------------------------------------------------------------------------
// What the comparison leaves out: the differences the header documents.

enum class exclusion {
  none,
  contraction_starter,           // Thai/Lao nikhahit, Tibetan U+0F71, U+0FB2, U+0FB3
  query_ends_in_prevowel,        // the collator swaps a prevowel and its consonant
  prevowel_swapped_on_one_side,  // ... on one side only
  continuation_as_punctuation,   // "shifted": usearch reads part of a long weight as punctuation
  punctuation_half_as_letter,    // "shifted": ... or part of punctuation's as a letter
  long_run_without_primary,      // typed: usearch's buffer overflows after a match
};

inline const char* name_of(exclusion kind) {
  switch (kind) {
    case exclusion::contraction_starter:
      return "a contraction starter";
    case exclusion::query_ends_in_prevowel:
      return "a query ending in a prevowel";
    case exclusion::prevowel_swapped_on_one_side:
      return "a prevowel swapped on one side only";
    case exclusion::continuation_as_punctuation:
      return "a long weight that usearch reads as punctuation";
    case exclusion::punctuation_half_as_letter:
      return "punctuation with a long weight that usearch reads half as a letter";
    case exclusion::long_run_without_primary:
      return "a run of characters without a primary weight longer than usearch's buffer";
    case exclusion::none:
      break;
  }
  return "nothing";
}

// The root contractions that the per-code-point fold reads as their parts
// start with one of these (directly, or across marks when discontiguous).
inline bool has_contraction_starter(std::u16string_view text) {
  for (const char16_t unit : text) {
    switch (unit) {
      case 0x0E4D:
      case 0x0ECD:
      case 0x0F71:
      case 0x0FB2:
      case 0x0FB3:
        return true;
      default:
        break;
    }
  }
  return false;
}

// Whether the last character of `query` that the collator does not ignore is a
// Logical_Order_Exception prevowel (Thai, Lao, New Tai Lue, Tai Viet).
inline bool ends_in_prevowel(const usearch_oracle& oracle, std::u16string_view query) {
  const std::vector<UChar32> code_points = code_points_of(query);
  for (auto it = code_points.rbegin(); it != code_points.rend(); ++it) {
    if (oracle.ignorable(*it)) continue;
    return u_hasBinaryProperty(*it, UCHAR_LOGICAL_ORDER_EXCEPTION) != 0;
  }
  return false;
}

// The prevowels of `text` that the collator swaps with the character after
// them (`swapped`), or that it leaves where they are written: before a
// character they form no contraction with, one it ignores, or at the end.
inline std::vector<UChar32> prevowels(const usearch_oracle& oracle, std::u16string_view text,
                                      bool swapped) {
  std::vector<UChar32> out;
  const std::vector<UChar32> code_points = code_points_of(text);
  for (std::size_t i = 0; i < code_points.size(); ++i) {
    if (!u_hasBinaryProperty(code_points[i], UCHAR_LOGICAL_ORDER_EXCEPTION)) continue;
    const bool swaps =
        i + 1 < code_points.size() && oracle.swaps(code_points[i], code_points[i + 1]);
    if (swaps == swapped) out.push_back(code_points[i]);
  }
  return out;
}

// Whether a prevowel is swapped on one side and written where it is on the
// other: the fold compares both in written order. (usearch finds
// "\u0e41\u0e27" in "\u0e27\u0e41 ", or "\u0e41\u0e21" in "\u0e41\u00ad\u0e21" not.)
inline bool prevowel_swapped_on_one_side(const usearch_oracle& oracle, std::u16string_view query,
                                         std::u16string_view text) {
  for (const bool query_swapped : {true, false}) {
    const auto swapped = prevowels(oracle, query_swapped ? query : text, true);
    if (swapped.empty()) continue;
    const auto written = prevowels(oracle, query_swapped ? text : query, false);
    for (const UChar32 prevowel : swapped) {
      if (std::find(written.begin(), written.end(), prevowel) != written.end()) return true;
    }
  }
  return false;
}

// Whether `text` has 32 characters in a row without a primary weight (accents,
// controls). With diacritics matched where typed, usearch looks at the
// collation elements after a match in a buffer of 32 plus about 3 per query
// character; past that, it fails or ends the match late.
inline bool has_long_run_without_primary(const usearch_oracle& oracle, std::u16string_view text) {
  constexpr int kBuffer = 32;
  int run = 0;
  for (const UChar32 c : code_points_of(text)) {
    run = oracle.ignorable(c) ? run + 1 : 0;
    if (run >= kBuffer) return true;
  }
  return false;
}

// How usearch misreads the halves of a primary weight of `c` too long for one
// 32-bit order: with "shifted", it compares the second half with the variable
// top as if it were an element of its own. Where that half is below it,
// usearch reads it as punctuation (it finds U+4E00 in U+4E01), where the
// collator does not; where the first half is punctuation and the second is
// not (U+0707), usearch reads the second as a letter, where the collator
// ignores both.
struct halves_misread {
  bool as_punctuation = false;
  bool as_letter = false;
};

// The same over the elements `collator` gives for `text` (a language's
// collator gives long weights to its contractions too: Danish "aa").
inline halves_misread misread_halves(const UCollator* collator, std::u16string_view text) {
  UErrorCode status = U_ZERO_ERROR;
  const uint32_t variable_top = ucol_getVariableTop(collator, &status);
  UCollationElements* elements =
      ucol_openElements(collator, text.data(), static_cast<int32_t>(text.size()), &status);
  halves_misread misread;
  bool first_half_variable = false;
  for (int32_t order = ucol_next(elements, &status); order != UCOL_NULLORDER && U_SUCCESS(status);
       order = ucol_next(elements, &status)) {
    const auto bits = static_cast<uint32_t>(order);
    const bool variable = bits < variable_top && (bits >> 16) != 0;
    if ((bits & 0xC0) != 0xC0) {
      first_half_variable = variable;
    } else if (variable) {
      misread.as_punctuation = true;
    } else if (first_half_variable) {
      misread.as_letter = true;
    }
  }
  ucol_closeElements(elements);
  return misread;
}

inline halves_misread misread_halves(UChar32 c) {
  static std::unordered_map<UChar32, halves_misread> known;
  const auto found = known.find(c);
  if (found != known.end()) return found->second;
  UErrorCode status = U_ZERO_ERROR;
  static UCollator* const root = ucol_open("", &status);
  std::u16string text;
  append_code_point(text, c);
  const halves_misread misread = misread_halves(root, text);
  known.emplace(c, misread);
  return misread;
}

inline bool continuation_read_as_punctuation(UChar32 c) { return misread_halves(c).as_punctuation; }

inline bool punctuation_half_read_as_letter(UChar32 c) { return misread_halves(c).as_letter; }

inline exclusion excluded(const usearch_oracle& oracle, const re::search_options& options,
                          std::u16string_view query, std::u16string_view text) {
  if (has_contraction_starter(query) || has_contraction_starter(text)) {
    return exclusion::contraction_starter;
  }
  if (ends_in_prevowel(oracle, query)) return exclusion::query_ends_in_prevowel;
  if (prevowel_swapped_on_one_side(oracle, query, text)) {
    return exclusion::prevowel_swapped_on_one_side;
  }
  if (options.diacritics == re::diacritics_rule::match_typed &&
      has_long_run_without_primary(oracle, text)) {
    return exclusion::long_run_without_primary;
  }
  if (options.ignore_punctuation) {
    // Such a character in the query changes what usearch looks for; in the
    // text it changes only the accents after it.
    const bool accents = options.diacritics != re::diacritics_rule::ignore;
    for (const std::u16string_view side : {query, text}) {
      if (side == text && !accents) break;
      for (const UChar32 c : code_points_of(side)) {
        if (continuation_read_as_punctuation(c)) return exclusion::continuation_as_punctuation;
      }
      // A language's collation has long weights of its own, contractions
      // included: where the query's second halves read as punctuation,
      // usearch looks for their first halves alone (Danish "Aa" is found in
      // "\u00c4").
      if (side == query && oracle.tailored() &&
          misread_halves(oracle.collator(), side).as_punctuation) {
        return exclusion::continuation_as_punctuation;
      }
    }
    for (const std::u16string_view side : {query, text}) {
      for (const UChar32 c : code_points_of(side)) {
        if (punctuation_half_read_as_letter(c)) return exclusion::punctuation_half_as_letter;
      }
    }
  }
  return exclusion::none;
}

// Whether search_pattern's matches are usearch's. With a language's
// collation, usearch may end a match that ends with a contraction after the
// characters the collator ignores that follow it (the header lists this):
// such an end counts as the library's, before them.
inline bool agrees(const usearch_oracle& oracle, const re::search_options& options,
                   std::u16string_view text, const ranges& library, const ranges& usearch) {
  if (library == usearch) return true;
  if (options.locale.empty() || library.size() != usearch.size()) return false;
  for (std::size_t i = 0; i < library.size(); ++i) {
    const auto [start, end] = library[i];
    if (start != usearch[i].first || end > usearch[i].second) return false;
    for (const UChar32 c : code_points_of(text.substr(end, usearch[i].second - end))) {
      if (!oracle.ignorable(c)) return false;
    }
  }
  return true;
}

// Whether a literal query finds nothing: it folds to nothing, or, where
// diacritics count and punctuation does not, to accents alone (usearch then
// reports empty matches; a regex query finds the accents).
inline bool finds_nothing(const re::search_options& options, std::u16string_view query) {
  if (re::search_fold(query, options).text().empty()) return true;
  if (options.diacritics == re::diacritics_rule::ignore || !options.ignore_punctuation) {
    return false;
  }
  re::search_options without_accents = options;
  without_accents.diacritics = re::diacritics_rule::ignore;
  return re::search_fold(query, without_accents).text().empty();
}

}  // namespace scl_regex_test::search_differential

#endif  // SCL_REGEX_TESTS_SUPPORT_USEARCH_ORACLE_H
