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
  literal_finder(const fold_table& table, const Unit* source, const folded_text& folded)
      : rules_(table, source, folded), folded_(folded) {}

  int32_t run(std::u16string_view query, int32_t from, int32_t final_units, bool last,
              std::size_t limit, std::vector<source_span>& out) const {
    const char16_t* text = folded_.units.data();
    const auto length = static_cast<int32_t>(query.size());
    // The last place a match can start: it must end before the units that may
    // still change.
    const int32_t last_start = last ? folded_.size - length : final_units - 1 - length;
    // A query with a surrogate pair must not match two lone surrogates that
    // only meet in the folded text.
    const bool has_pair = std::find_if(query.begin(), query.end(), [](char16_t unit) {
                            return U16_IS_TRAIL(unit);
                          }) != query.end();
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
          rules_.accepts(start, end, span) && !(has_pair && holds_false_pair(start, end))) {
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
  bool holds_false_pair(int32_t start, int32_t end) const {
    for (int32_t at = start + 1; at < end; ++at) {
      if (folded_.false_pair(at)) return true;
    }
    return false;
  }

  match_rules<Unit> rules_;
  const folded_text& folded_;
};

}  // namespace

int32_t find_literal(const fold_table& table, std::u16string_view query, const char16_t* source,
                     const folded_text& folded, int32_t from, int32_t final_units, bool last,
                     std::size_t limit, std::vector<source_span>& out) {
  return literal_finder<char16_t>(table, source, folded)
      .run(query, from, final_units, last, limit, out);
}

int32_t find_literal(const fold_table& table, std::u16string_view query, const char* source,
                     const folded_text& folded, int32_t from, int32_t final_units, bool last,
                     std::size_t limit, std::vector<source_span>& out) {
  return literal_finder<char>(table, source, folded)
      .run(query, from, final_units, last, limit, out);
}

}  // namespace scl::regex::detail
