// A fold table read as runs of code points that fold alike, and the code
// points that folded text can hold. Classes of regex queries are built from
// these (pattern_fold.h, cluster_syntax.h).
#ifndef SCL_REGEX_SRC_SEARCH_FOLD_RUNS_H
#define SCL_REGEX_SRC_SEARCH_FOLD_RUNS_H

#include <cstdint>
#include <vector>

#include <unicode/utypes.h>

#include "search/fold_table.h"

namespace scl::regex::detail {

// One bit per code point.
class code_point_bits {
 public:
  static constexpr UChar32 limit = 0x110000;

  void set(UChar32 first, UChar32 last);
  void clear(UChar32 c) {
    words_[static_cast<std::size_t>(c >> 6)] &= ~(std::uint64_t{1} << (c & 63));
  }
  bool test(UChar32 c) const {
    return (words_[static_cast<std::size_t>(c >> 6)] >> (c & 63) & 1) != 0;
  }
  // The first code point from `from` whose bit is `value`, or `limit`.
  UChar32 next(UChar32 from, bool value) const;
  // Whether any bit of [first, last] is set.
  bool any(UChar32 first, UChar32 last) const { return next(first, true) <= last; }

 private:
  std::vector<std::uint64_t> words_ = std::vector<std::uint64_t>(limit / 64);
};

// Sets in `bits` the fold of the code points [first, last], which share one
// table value `value`, where it is one code point.
void set_folds(const fold_table& table, UChar32 first, UChar32 last, std::uint32_t value,
               code_point_bits& bits);

// The runs of a table, and the code points that folded text can hold: every
// fold of a code point, and what NFC may compose of folds. A class needs to be
// right only on the latter, so it may take in the code points between them.
struct fold_runs {
  std::vector<UChar32> starts;        // ascending, from 0
  std::vector<std::uint32_t> values;  // each run's table value (kind and payload)
  code_point_bits alphabet;

  explicit fold_runs(const fold_table& table);

  // The runs of `table`, made once per process and table.
  static const fold_runs& of(const fold_table& table);

  // The run that holds `c`.
  std::size_t run_of(UChar32 c) const;
  // The last code point of run `run`.
  UChar32 run_end(std::size_t run) const {
    return run + 1 < starts.size() ? starts[run + 1] - 1 : code_point_bits::limit - 1;
  }

  // Sets in `bits` the folds of [first, last] that are one code point.
  void set_folds_of(const fold_table& table, UChar32 first, UChar32 last,
                    code_point_bits& bits) const;
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_FOLD_RUNS_H
