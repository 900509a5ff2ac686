#include "search/regex_search.h"

#include <memory>

#include <unicode/utext.h>
#include <unicode/utf16.h>

#include "scl/regex/exception.h"
#include "search/unit_scan.h"
#include "time_limit/deadline.h"

namespace scl::regex::detail {
namespace {

void throw_if_failed(UErrorCode status) {
  if (U_FAILURE(status)) throw regex_exception(search_status(status));
}

// Shows the engine each two lone surrogates that meet in the first `size`
// units of `folded` as their stand-ins.
void conceal_false_pairs(folded_text& folded, int32_t size) {
  char16_t* units = folded.units.data();
  const char16_t* end = units + size;
  for (const char16_t* at = find_surrogate(units, end); at < end;
       at = find_surrogate(at + 1, end)) {
    const auto trail = static_cast<int32_t>(at - units) + 1;
    if (trail < size && folded.false_pair(trail)) {
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

}  // namespace

template <class Unit>
regex_finder<Unit>::regex_finder(const fold_table& table, const spare_matchers& matchers,
                                 std::u16string_view prefix, match_policy policy,
                                 const typed_ending* ending, const Unit* source,
                                 folded_text& folded)
    : table_(table),
      prefix_(prefix),
      policy_(policy),
      ending_(ending),
      source_(source),
      folded_(folded),
      matcher_(matchers.borrow()),
      resume_(!prefix.empty()) {}

template <class Unit>
regex_finder<Unit>::~regex_finder() {
  utext_close(&text_);
}

template <class Unit>
bool regex_finder<Unit>::search(int32_t visible, bool complete, std::size_t limit,
                                regex_matches& out) {
  UErrorCode status = U_ZERO_ERROR;
  const int32_t groups = matcher_->groupCount();
  out.per_match = static_cast<std::size_t>(groups) + 1;
  conceal_false_pairs(folded_, visible);
  // The engine reads the visible folded units where they are (the fold may
  // have moved them since the last search).
  utext_openUChars(&text_, folded_.units.data(), visible, &status);
  matcher_->reset(&text_);
  throw_if_failed(status);

  const match_rules<Unit> rules(table_, source_, folded_, policy_);
  const char16_t* units = folded_.units.data();
  const auto size = static_cast<std::size_t>(visible);
  while (out.size() < limit) {
    if (!prefix_.empty()) {
      if (size < prefix_.size() || static_cast<std::size_t>(from_) > size - prefix_.size()) {
        return complete;
      }
      const char16_t* hit =
          find_units(units + from_, units + size - prefix_.size() + 1, units + size, prefix_);
      if (hit == nullptr) {
        // The prefix may yet start where it would run past the visible units.
        from_ = static_cast<int64_t>(size - prefix_.size() + 1);
        return complete;
      }
      from_ = hit - units;
    }
    check_deadline(status);
    const bool found = resume_ ? matcher_->find(from_, status) : matcher_->find(status);
    throw_if_failed(status);
    // What more text could change is left for the search with it.
    if (!complete && (!found || matcher_->hitEnd())) return false;
    if (!found) break;
    const auto start = static_cast<int32_t>(matcher_->start64(status));
    const auto found_end = static_cast<int32_t>(matcher_->end64(status));
    // The match rules read the unit at its end.
    if (!complete && found_end >= visible) return false;
    const int32_t end = ending_ != nullptr && found_end > start
                            ? typed_end(folded_, *ending_, start, found_end)
                            : found_end;
    source_span span{};
    if (start == end ? rules.accepts_empty(start, span) : rules.accepts(start, end, span)) {
      out.spans.push_back(span);
      for (int32_t group = 1; group <= groups; ++group) {
        const int64_t group_start = matcher_->start64(group, status);
        if (group_start < 0) {
          out.spans.push_back({-1, -1});
        } else {
          out.spans.push_back(rules.widened(static_cast<int32_t>(group_start),
                                            static_cast<int32_t>(matcher_->end64(group, status))));
        }
      }
      throw_if_failed(status);
      if (end != found_end) {
        from_ = end;  // what the match left out is searched again
        resume_ = true;
      } else if (prefix_.empty()) {
        resume_ = false;
      } else {
        from_ = end;  // a match with a prefix is never empty
      }
      continue;
    }
    // Rejected: on from the next piece.
    from_ = start + 1;
    while (from_ < visible && !folded_.starts_piece(static_cast<int32_t>(from_))) ++from_;
    if (from_ > visible) break;
    resume_ = true;
  }
  return true;
}

template class regex_finder<char16_t>;
template class regex_finder<char>;

namespace {

template <class Unit>
void find(const fold_table& table, const spare_matchers& matchers, std::u16string_view prefix,
          match_policy policy, const typed_ending* ending, const Unit* source, folded_text& folded,
          std::size_t limit, regex_matches& out) {
  regex_finder<Unit> finder(table, matchers, prefix, policy, ending, source, folded);
  finder.search(folded.size, true, limit, out);
}

}  // namespace

void find_regex(const fold_table& table, const spare_matchers& matchers, std::u16string_view prefix,
                match_policy policy, const typed_ending* ending, const char16_t* source,
                folded_text& folded, std::size_t limit, regex_matches& out) {
  find(table, matchers, prefix, policy, ending, source, folded, limit, out);
}

void find_regex(const fold_table& table, const spare_matchers& matchers, std::u16string_view prefix,
                match_policy policy, const typed_ending* ending, const char* source,
                folded_text& folded, std::size_t limit, regex_matches& out) {
  find(table, matchers, prefix, policy, ending, source, folded, limit, out);
}

}  // namespace scl::regex::detail
