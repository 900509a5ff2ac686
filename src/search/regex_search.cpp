#include "search/regex_search.h"

#include <memory>

#include <unicode/utext.h>
#include <unicode/utf16.h>

#include "icu/matcher.h"
#include "scl/regex/exception.h"
#include "search/unit_scan.h"
#include "time_limit/deadline.h"

namespace scl::regex::detail {
namespace {

void throw_if_failed(UErrorCode status) {
  if (U_FAILURE(status)) throw regex_exception(search_status(status));
}

// Closes a UText opened on the stack.
struct utext_closer {
  UText* text;
  utext_closer(const utext_closer&) = delete;
  utext_closer& operator=(const utext_closer&) = delete;
  ~utext_closer() { utext_close(text); }
};

// Shows the engine each two lone surrogates that meet in `folded` as their
// stand-ins.
void conceal_false_pairs(folded_text& folded) {
  char16_t* units = folded.units.data();
  const char16_t* end = units + folded.size;
  for (const char16_t* at = find_surrogate(units, end); at < end;
       at = find_surrogate(at + 1, end)) {
    const auto trail = static_cast<int32_t>(at - units) + 1;
    if (trail < folded.size && folded.false_pair(trail)) {
      units[trail - 1] = static_cast<char16_t>(surrogate_stand_in(units[trail - 1]));
      units[trail] = static_cast<char16_t>(surrogate_stand_in(units[trail]));
      ++at;
    }
  }
}

// The end of a match [start, end) without the accents after the piece of the
// last accent the pattern typed after its last letter (or, for a pattern of
// accents alone, of its last accent).
int32_t typed_end(const folded_text& folded, const typed_ending& ending, int32_t start,
                  int32_t end) {
  int32_t last = -1;  // the last typed accent
  if (ending.after_letter) {
    int32_t letter = end - 1;
    while (letter >= start && ending.accents->test(folded.units[letter])) --letter;
    if (letter < start || end - letter - 1 < ending.typed) return end;
    last = letter + ending.typed;
  } else {
    last = start + ending.typed - 1;
    if (ending.typed <= 0 || last >= end) return end;
    for (int32_t at = start; at <= last; ++at) {
      if (!ending.accents->test(folded.units[at])) return end;
    }
  }
  int32_t piece_end = last + 1;
  while (piece_end < end && folded.origin[piece_end] == folded.origin[last]) ++piece_end;
  return piece_end;
}

template <class Unit>
void find(const fold_table& table, const icu::RegexPattern& pattern, std::u16string_view prefix,
          match_policy policy, const typed_ending* ending, const Unit* source, folded_text& folded,
          std::size_t limit, regex_matches& out) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::RegexMatcher> matcher = new_matcher(pattern, status);
  throw_if_failed(status);
  const int32_t groups = matcher->groupCount();
  out.per_match = static_cast<std::size_t>(groups) + 1;

  conceal_false_pairs(folded);
  // The matcher reads the folded units where they are.
  UText text = UTEXT_INITIALIZER;
  utext_openUChars(&text, folded.units.data(), folded.size, &status);
  const utext_closer closer{&text};
  matcher->reset(&text);
  throw_if_failed(status);

  const match_rules<Unit> rules(table, source, folded, policy);
  const char16_t* units = folded.units.data();
  const auto size = static_cast<std::size_t>(folded.size);
  // With a prefix, every search starts where it occurs; without, a search
  // after a match goes on as ICU goes on (past an empty match by one).
  bool resume = !prefix.empty();
  int64_t from = 0;
  while (out.size() < limit) {
    if (!prefix.empty()) {
      if (size < prefix.size() || static_cast<std::size_t>(from) > size - prefix.size()) break;
      const char16_t* hit =
          find_units(units + from, units + size - prefix.size() + 1, units + size, prefix);
      if (hit == nullptr) break;
      from = hit - units;
    }
    check_deadline(status);
    const bool found = resume ? matcher->find(from, status) : matcher->find(status);
    throw_if_failed(status);
    if (!found) break;
    const auto start = static_cast<int32_t>(matcher->start64(status));
    const auto found_end = static_cast<int32_t>(matcher->end64(status));
    const int32_t end = ending != nullptr && found_end > start
                            ? typed_end(folded, *ending, start, found_end)
                            : found_end;
    source_span span{};
    if (start == end ? rules.accepts_empty(start, span) : rules.accepts(start, end, span)) {
      out.spans.push_back(span);
      for (int32_t group = 1; group <= groups; ++group) {
        const int64_t group_start = matcher->start64(group, status);
        if (group_start < 0) {
          out.spans.push_back({-1, -1});
        } else {
          out.spans.push_back(rules.widened(static_cast<int32_t>(group_start),
                                            static_cast<int32_t>(matcher->end64(group, status))));
        }
      }
      throw_if_failed(status);
      if (end != found_end) {
        from = end;  // what the match left out is searched again
        resume = true;
      } else if (prefix.empty()) {
        resume = false;
      } else {
        from = end;  // a match with a prefix is never empty
      }
      continue;
    }
    // Rejected: on from the next piece.
    from = start + 1;
    while (from < folded.size && !folded.starts_piece(static_cast<int32_t>(from))) ++from;
    if (from > folded.size) break;
    resume = true;
  }
}

}  // namespace

void find_regex(const fold_table& table, const icu::RegexPattern& pattern,
                std::u16string_view prefix, match_policy policy, const typed_ending* ending,
                const char16_t* source, folded_text& folded, std::size_t limit,
                regex_matches& out) {
  find(table, pattern, prefix, policy, ending, source, folded, limit, out);
}

void find_regex(const fold_table& table, const icu::RegexPattern& pattern,
                std::u16string_view prefix, match_policy policy, const typed_ending* ending,
                const char* source, folded_text& folded, std::size_t limit, regex_matches& out) {
  find(table, pattern, prefix, policy, ending, source, folded, limit, out);
}

}  // namespace scl::regex::detail
