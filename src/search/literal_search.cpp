#include "search/literal_search.h"

#include <algorithm>
#include <cstring>

#include "scl/regex/exception.h"
#include "search/match_rules.h"
#include "search/unit_scan.h"
#include "time_limit/deadline.h"

namespace scl::regex::detail {

namespace {

// Candidates rejected between two looks at the clock.
constexpr int rejections_per_check = 4096;

template <class Unit>
class literal_finder {
 public:
  literal_finder(const literal_search& search, const Unit* source, const folded_text& folded)
      : rules_(search.table, source, folded, search.policy),
        accents_(search.accents),
        source_(source),
        folded_(folded) {}

  int32_t run(const literal_query& literal, int32_t from, int32_t final_units, bool last,
              std::size_t limit, std::vector<source_span>& out) const {
    const std::u16string_view query = literal.units;
    const char16_t* text = folded_.units.data();
    const auto length = static_cast<int32_t>(query.size());
    // The last place a match can start: it must end before the units that may
    // still change.
    const int32_t last_start = last ? folded_.size - length : final_units - 1 - length;
    // Where the query has a lead surrogate before a trail surrogate, the text
    // must have the same kind of meeting: one character, or two.
    std::vector<int32_t> meetings;
    for (int32_t at = 1; at < length; ++at) {
      if (U16_IS_LEAD(query[at - 1]) && U16_IS_TRAIL(query[at])) meetings.push_back(at);
    }
    int rejections = 0;
    for (; from <= last_start && out.size() < limit;) {
      const char16_t* hit = length >= 2
                                ? find_pair(text + from, text + last_start + 1, query[0], query[1])
                                : find_unit(text + from, text + last_start + 1, query[0]);
      if (hit == nullptr) break;
      const auto start = static_cast<int32_t>(hit - text);
      const int32_t end = start + length;
      source_span span{};
      if ((length <= 2 ||
           std::memcmp(hit + 2, query.data() + 2, static_cast<std::size_t>(length - 2) * 2) == 0) &&
          rules_.covers_pieces(start, end, span) && pairs_agree(literal, meetings, start) &&
          placed(span, out) && rules_.may_end(end, span)) {
        out.push_back(span);
        from = end;
      } else {
        from = start + 1;
        if (++rejections == rejections_per_check) {
          rejections = 0;
          UErrorCode status = U_ZERO_ERROR;
          check_deadline(status);
          if (U_FAILURE(status)) throw regex_exception(status);
        }
      }
    }
    return from;
  }

 private:
  // Whether the text from `start` meets the query's surrogate meetings alike.
  bool pairs_agree(const literal_query& literal, const std::vector<int32_t>& meetings,
                   int32_t start) const {
    for (const int32_t at : meetings) {
      const bool two =
          std::binary_search(literal.false_pairs.begin(), literal.false_pairs.end(), at);
      if (folded_.false_pair(start + at) != two) return false;
    }
    return true;
  }

  // Whether the match may start where it does. With diacritics matched where
  // typed, it must have the query's accents, which may move its ends
  // (typed_accents.h).
  bool placed(source_span& span, const std::vector<source_span>& out) const {
    if (accents_ == nullptr) return rules_.may_start(span.start);
    return accents_->place(source_, folded_.source_size, out.empty() ? 0 : out.back().end, span,
                           [this](int32_t at) { return rules_.may_start(at); });
  }

  match_rules<Unit> rules_;
  const typed_accents* accents_;
  const Unit* source_;
  const folded_text& folded_;
};

}  // namespace

int32_t find_literal(const literal_search& search, const char16_t* source,
                     const folded_text& folded, int32_t from, int32_t final_units, bool last,
                     std::size_t limit, std::vector<source_span>& out) {
  return literal_finder<char16_t>(search, source, folded)
      .run(search.query, from, final_units, last, limit, out);
}

int32_t find_literal(const literal_search& search, const char* source, const folded_text& folded,
                     int32_t from, int32_t final_units, bool last, std::size_t limit,
                     std::vector<source_span>& out) {
  return literal_finder<char>(search, source, folded)
      .run(search.query, from, final_units, last, limit, out);
}

}  // namespace scl::regex::detail
