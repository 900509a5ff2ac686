// search_pattern with regex queries: compiling (against raw ICU), and
// searching and replacing over UTF-16 and UTF-8 text.
//
// Input: the pattern (length-prefixed, at most 64 units), then the text (the
// rest, at most 1024 units).
//
// Every search runs under a match_time_limit of a few milliseconds; a search
// that it stops (regex_exception U_REGEX_TIME_OUT) is a legitimate outcome,
// and the checks that need its result are skipped. An input whose first
// search over the text is stopped is kept out of the corpus.
//
// Properties:
// 1. search_pattern::check throws no regex_exception, whatever the pattern.
//    If ICU compiles the pattern (UREGEX_DOTALL), search_pattern(pattern,
//    regex) either constructs, with ICU's group count, group numbers for the
//    names that look like "(?<name>", syntax() == regex and a clean check(),
//    or throws regex_exception, and then check() gives the same code at an
//    offset within the pattern (not npos).
// 2. If ICU rejects the pattern, the constructor throws regex_exception with
//    ICU's code, and check() gives that code, at an offset within the pattern
//    or npos, the same offset as check_pattern(pattern, 0).
// 3. find_all's matches (UTF-16 text and its UTF-8 form) are in order and do
//    not overlap: each starts at or after the end of the one before, and no
//    two empty matches share a position. Each lies within the text, has
//    group_count() + 1 groups, group 0 == {start, end}, and every other group
//    is {npos, npos} or a range within the text with start <= end. found_in
//    is whether there is a match, find_first is the first (groups included).
// 4. "\Q" + pattern + "\E" as a regex, alone and in a group, finds what the
//    pattern finds as a literal query (UTF-16 and UTF-8 text). Skipped when the pattern holds
//    "\E", and when it folds to nothing: the literal query then finds
//    nothing, while the regex matches the empty string.
// 5. replace_all(text, "<$0>") is the text with each match m replaced by
//    "<" + m + ">": every unit (byte) outside the matches is kept.
// 6. UTF-8 and UTF-16 agree: the UTF-8 form of the text (lone surrogates
//    written as U+FFFD) has the matches and groups, in bytes, of the UTF-16
//    text with U+FFFD in their place.
// 7. On text that folds to itself (lowercase ASCII letters, digits,
//    punctuation, space, tab, line feed: no CR, which joins the LF after it),
//    a pattern that folds to itself (lowercase ASCII, no classes, no escapes
//    but assertions, back references and punctuation) finds what ICU finds.
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <unicode/regex.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <scl/regex.h>

#include "fuzz_input.h"

namespace re = scl::regex;

namespace {

constexpr std::size_t kMaxQuery = 64;
constexpr std::size_t kMaxText = 1024;
constexpr std::chrono::milliseconds kSearchLimit(5);
constexpr re::query_syntax kRegex = re::query_syntax::regex;
constexpr std::size_t kNone = static_cast<std::size_t>(-1);

using span = std::pair<std::size_t, std::size_t>;
using ranges = std::vector<span>;

// Runs `search` under a fresh time limit. Returns false if the limit stopped
// it; any other regex_exception breaks a property.
template <class Search>
bool timed(Search&& search) {
  re::match_time_limit limit(kSearchLimit);
  try {
    search();
    return true;
  } catch (const re::regex_exception& e) {
    const std::string code = e.getErrorCodeMnemonic();
    if (code == "U_REGEX_TIME_OUT") return false;
    std::fprintf(stderr, "search failed with %s\n", code.c_str());
    FUZZ_CHECK(code == "U_REGEX_TIME_OUT");
    return false;
  }
}

ranges match_ranges(const std::vector<re::source_match>& matches) {
  ranges out;
  for (const re::source_match& m : matches) out.emplace_back(m.start, m.end);
  return out;
}

// Property 3 for the matches of one search over a text of `size` units or bytes.
void check_matches(const std::vector<re::source_match>& matches, std::size_t size,
                   int group_count) {
  std::size_t previous_end = 0;
  bool previous_empty = false;
  for (const re::source_match& m : matches) {
    FUZZ_CHECK(m.start <= m.end);
    FUZZ_CHECK(m.end <= size);
    FUZZ_CHECK(m.start >= previous_end);
    FUZZ_CHECK(!(previous_empty && m.start == m.end && m.start == previous_end));
    FUZZ_CHECK(m.groups.size() == static_cast<std::size_t>(group_count) + 1);
    FUZZ_CHECK(m.groups[0].first == m.start && m.groups[0].second == m.end);
    for (std::size_t g = 1; g < m.groups.size(); ++g) {
      const span& group = m.groups[g];
      if (group.first == re::npos) {
        FUZZ_CHECK(group.second == re::npos);
      } else {
        FUZZ_CHECK(group.first <= group.second && group.second <= size);
      }
    }
    previous_end = m.end;
    previous_empty = m.start == m.end;
  }
}

// The matches of `pattern` in `text` (UTF-16 or UTF-8), checked against
// found_in, find_first and replace_all (properties 3 and 5); no value if the
// time limit stopped find_all.
template <class Text>
std::optional<std::vector<re::source_match>> search(const re::search_pattern& pattern,
                                                    const Text& text) {
  using view = std::basic_string_view<typename Text::value_type>;
  std::vector<re::source_match> found;
  if (!timed([&] { found = pattern.find_all(view(text)); })) return std::nullopt;
  check_matches(found, text.size(), pattern.group_count());

  bool in = false;
  if (timed([&] { in = pattern.found_in(view(text)); })) FUZZ_CHECK(in == !found.empty());

  std::optional<re::source_match> first;
  if (timed([&] { first = pattern.find_first(view(text)); })) {
    FUZZ_CHECK(first.has_value() == !found.empty());
    if (first) {
      FUZZ_CHECK(first->start == found.front().start && first->end == found.front().end);
      FUZZ_CHECK(first->groups == found.front().groups);
    }
  }

  // Property 5.
  Text replacement;
  for (const char c : {'<', '$', '0', '>'})
    replacement.push_back(static_cast<typename Text::value_type>(c));
  Text replaced;
  if (timed([&] { replaced = pattern.replace_all(view(text), view(replacement)); })) {
    Text expected;
    std::size_t kept = 0;
    for (const re::source_match& m : found) {
      expected.append(text, kept, m.start - kept);
      expected.push_back('<');
      expected.append(text, m.start, m.end - m.start);
      expected.push_back('>');
      kept = m.end;
    }
    expected.append(text, kept, Text::npos);
    FUZZ_CHECK(replaced == expected);
  }
  return found;
}

// For each byte offset of the UTF-8 form of `text` (without lone surrogates),
// the UTF-16 offset of the character that starts there (kNone inside one), up
// to the end.
std::vector<std::size_t> units_of_bytes(const std::u16string& text) {
  std::vector<std::size_t> out;
  for (std::size_t i = 0; i < text.size();) {
    UChar32 c = 0;
    const std::size_t unit = i;
    U16_NEXT(text.data(), i, text.size(), c);
    const std::size_t bytes = c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
    out.push_back(unit);
    for (std::size_t b = 1; b < bytes; ++b) out.push_back(kNone);
  }
  out.push_back(text.size());
  return out;
}

// Property 6: byte positions as the UTF-16 positions of the same characters.
std::vector<re::source_match> in_units(std::vector<re::source_match> matches,
                                       const std::vector<std::size_t>& unit_of_byte) {
  const auto units = [&unit_of_byte](std::size_t byte) {
    if (byte == re::npos) return re::npos;
    FUZZ_CHECK(byte < unit_of_byte.size() && unit_of_byte[byte] != kNone);
    return unit_of_byte[byte];
  };
  for (re::source_match& m : matches) {
    m.start = units(m.start);
    m.end = units(m.end);
    for (span& group : m.groups) group = {units(group.first), units(group.second)};
  }
  return matches;
}

bool same_matches(const std::vector<re::source_match>& a, const std::vector<re::source_match>& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (a[i].start != b[i].start || a[i].end != b[i].end || a[i].groups != b[i].groups)
      return false;
  }
  return true;
}

// Names that "(?<" introduces in `pattern` (ASCII letters and digits, as ICU
// takes them); some may not name a group (inside a class or a quote).
std::vector<std::string> candidate_names(const std::u16string& pattern) {
  std::vector<std::string> names;
  for (std::size_t at = pattern.find(u"(?<"); at != std::u16string::npos;
       at = pattern.find(u"(?<", at + 1)) {
    std::string name;
    for (std::size_t i = at + 3; i < pattern.size(); ++i) {
      const char16_t c = pattern[i];
      const bool alnum =
          (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9');
      if (!alnum) break;
      name.push_back(static_cast<char>(c));
    }
    if (!name.empty()) names.push_back(name);
  }
  names.emplace_back("zz");
  return names;
}

// search_pattern::check, which throws nothing but std::bad_alloc.
std::optional<re::pattern_error> check(const std::u16string& pattern) {
  try {
    return re::search_pattern::check(pattern, kRegex);
  } catch (const re::regex_exception& e) {
    std::fprintf(stderr, "check threw %s\n", e.getErrorCodeMnemonic().c_str());
    const bool check_threw = true;
    FUZZ_CHECK(!check_threw);
    return std::nullopt;
  }
}

// Properties 1 and 2. Returns the pattern if it constructs.
std::optional<re::search_pattern> compiled(const std::u16string& pattern) {
  UParseError where{};
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString icu_pattern(pattern.data(), static_cast<int32_t>(pattern.size()));
  const std::unique_ptr<icu::RegexPattern> icu(
      icu::RegexPattern::compile(icu_pattern, UREGEX_DOTALL, where, status));

  std::optional<re::search_pattern> built;
  std::string thrown;
  try {
    built.emplace(pattern, kRegex);
  } catch (const re::regex_exception& e) {
    thrown = e.getErrorCodeMnemonic();
  }
  const std::optional<re::pattern_error> checked = check(pattern);

  if (U_FAILURE(status)) {
    // Property 2.
    FUZZ_CHECK(!built.has_value());
    FUZZ_CHECK(thrown == u_errorName(status));
    FUZZ_CHECK(checked.has_value());
    FUZZ_CHECK(checked->error.getErrorCodeMnemonic() == thrown);
    FUZZ_CHECK(checked->offset == re::npos || checked->offset <= pattern.size());
    const std::optional<re::pattern_error> as_matcher = re::check_pattern(pattern, 0);
    FUZZ_CHECK(as_matcher.has_value() && as_matcher->offset == checked->offset);
    return std::nullopt;
  }

  // Property 1.
  FUZZ_CHECK(icu != nullptr);
  if (!built) {
    FUZZ_CHECK(checked.has_value());
    FUZZ_CHECK(checked->error.getErrorCodeMnemonic() == thrown);
    FUZZ_CHECK(checked->offset != re::npos && checked->offset <= pattern.size());
    return std::nullopt;
  }
  FUZZ_CHECK(!checked.has_value());
  FUZZ_CHECK(built->syntax() == kRegex);
  const std::unique_ptr<icu::RegexMatcher> matcher(icu->matcher(status));
  FUZZ_CHECK(U_SUCCESS(status) && matcher != nullptr);
  FUZZ_CHECK(built->group_count() == matcher->groupCount());
  for (const std::string& name : candidate_names(pattern)) {
    UErrorCode name_status = U_ZERO_ERROR;
    const int32_t number =
        icu->groupNumberFromName(name.data(), static_cast<int32_t>(name.size()), name_status);
    FUZZ_CHECK(built->group_number(name) == (U_SUCCESS(name_status) ? number : -1));
  }
  return built;
}

// Property 4 over one form of the text.
template <class Text>
void check_quoted(const re::search_pattern& quoted, const re::search_pattern& literal,
                  const Text& text) {
  using view = std::basic_string_view<typename Text::value_type>;
  std::vector<re::source_match> as_regex;
  std::vector<re::source_match> as_literal;
  if (!timed([&] { as_regex = quoted.find_all(view(text)); })) return;
  if (!timed([&] { as_literal = literal.find_all(view(text)); })) return;
  FUZZ_CHECK(match_ranges(as_regex) == match_ranges(as_literal));
}

// Whether folding leaves `pattern` as it is and ICU would read it alike on
// folded text: lowercase printable ASCII, tab and line feed, no classes, no escapes but assertions,
// back references and punctuation.
bool folds_to_itself(const std::u16string& pattern) {
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char16_t c = pattern[i];
    if (c >= 0x7F || (c < 0x20 && c != u'\t' && c != u'\n')) return false;  // folds apart
    if ((c >= u'A' && c <= u'Z') || c == u'[') return false;
    if (c == u'\\') {
      if (++i == pattern.size()) return false;
      const char16_t escaped = pattern[i];
      const bool allowed =
          std::u16string_view(u"bBzZAGX123456789").find(escaped) != std::u16string_view::npos ||
          (escaped >= 0x20 && escaped < 0x7F && !(escaped >= u'a' && escaped <= u'z') &&
           !(escaped >= u'A' && escaped <= u'Z') && !(escaped >= u'0' && escaped <= u'9'));
      if (!allowed) return false;
    }
  }
  return true;
}

// `text` without what does not fold to itself or splits no grapheme: lowercase
// ASCII letters, digits, punctuation, space, tab and line feed.
std::u16string self_folding(const std::u16string& text) {
  std::u16string out;
  for (const char16_t c : text) {
    if ((c >= 0x20 && c < 0x7F && !(c >= u'A' && c <= u'Z')) || c == u'\n' || c == u'\t') {
      out += c;
    }
  }
  return out;
}

// Property 7.
void check_against_icu(const re::search_pattern& regex, const std::u16string& pattern,
                       const std::u16string& text) {
  const std::optional<fuzz::icu_run> icu = fuzz::screen(pattern, 0, text);
  if (!icu || !icu->compiled || icu->failed()) return;
  std::vector<re::source_match> found;
  if (!timed([&] { found = regex.find_all(text); })) return;
  ranges expected;
  for (const auto& [start, end] : icu->spans) {
    expected.emplace_back(static_cast<std::size_t>(start), static_cast<std::size_t>(end));
  }
  FUZZ_CHECK(match_ranges(found) == expected);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::input in(data, size);
  const std::u16string pattern = in.text(kMaxQuery);
  const std::u16string text = in.rest(kMaxText);
  const std::u16string well_formed = fuzz::lone_surrogates_replaced(text);
  const std::string utf8 = fuzz::to_utf8(well_formed);

  // Property 4.
  if (pattern.find(u"\\E") == std::u16string::npos && !re::search_fold(pattern).text().empty()) {
    const re::search_pattern literal(pattern);
    const std::u16string quoted_text = u"\\Q" + pattern + u"\\E";
    // As written (searched as the literal it is), and in a group (which ICU
    // searches).
    for (const std::u16string& form : {quoted_text, u"(?:" + quoted_text + u")"}) {
      std::optional<re::search_pattern> quoted;
      try {
        quoted.emplace(form, kRegex);
      } catch (const re::regex_exception& e) {
        std::fprintf(stderr, "quoted pattern rejected: %s\n", e.getErrorCodeMnemonic().c_str());
      }
      FUZZ_CHECK(quoted.has_value() && quoted->group_count() == 0);
      check_quoted(*quoted, literal, text);
      check_quoted(*quoted, literal, utf8);
    }
  }

  const std::optional<re::search_pattern> regex = compiled(pattern);
  if (!regex) return 0;

  // Property 7.
  if (folds_to_itself(pattern)) check_against_icu(*regex, pattern, self_folding(text));

  // Properties 3 and 5.
  const auto found = search(*regex, text);
  if (!found) return fuzz::kReject;

  // Property 6.
  const auto found_well_formed = well_formed == text ? found : search(*regex, well_formed);
  const auto found_utf8 = search(*regex, utf8);
  if (found_well_formed && found_utf8) {
    FUZZ_CHECK(
        same_matches(in_units(*found_utf8, units_of_bytes(well_formed)), *found_well_formed));
  }
  return 0;
}
