#include "search/fold_runs.h"

#include <algorithm>
#include <array>
#include <memory>
#include <mutex>

#include <unicode/uniset.h>

#include "search/code_points.h"

namespace scl::regex::detail {

void code_point_bits::set(UChar32 first, UChar32 last) {
  for (UChar32 c = first; c <= last;) {
    const int bit = c & 63;
    const UChar32 in_word = std::min<UChar32>(last - c + 1, 64 - bit);
    const std::uint64_t mask =
        in_word == 64 ? ~std::uint64_t{0} : ((std::uint64_t{1} << in_word) - 1) << bit;
    words_[static_cast<std::size_t>(c >> 6)] |= mask;
    c += in_word;
  }
}

UChar32 code_point_bits::next(UChar32 from, bool value) const {
  while (from < limit) {
    std::uint64_t word = words_[static_cast<std::size_t>(from >> 6)];
    if (!value) word = ~word;
    word &= ~std::uint64_t{0} << (from & 63);
    if (word != 0) return (from & ~63) + __builtin_ctzll(word);
    from = (from & ~63) + 64;
  }
  return limit;
}

void set_folds(const fold_table& table, UChar32 first, UChar32 last, std::uint32_t value,
               code_point_bits& bits) {
  switch (fold_value::kind(value)) {
    case fold_kind::self:
      bits.set(first, last);
      break;
    case fold_kind::delta:
      bits.set(first + fold_value::delta(value), last + fold_value::delta(value));
      break;
    case fold_kind::pool: {
      const std::u16string_view units = table.pool_fold(value);
      const auto length = static_cast<int32_t>(units.size());
      int32_t at = 0;
      if (length == 0) break;
      const UChar32 fold = next_code_point(units.data(), at, length);
      if (at == length) bits.set(fold, fold);
      break;
    }
    case fold_kind::nothing:
      break;
  }
}

namespace {

// Sets in `bits` every code point of `units`.
void set_units(std::u16string_view units, code_point_bits& bits) {
  const auto length = static_cast<int32_t>(units.size());
  for (int32_t at = 0; at < length;) {
    const UChar32 unit = next_code_point(units.data(), at, length);
    bits.set(unit, unit);
  }
}

}  // namespace

fold_runs::fold_runs(const fold_table& table) {
  for (UChar32 c = 0; c < code_point_bits::limit;) {
    std::uint32_t value = 0;
    const UChar32 end = table.fold_run(c, value);
    starts.push_back(c);
    values.push_back(value);
    if (fold_value::kind(value) == fold_kind::pool) {
      // Every code point of a fold of several.
      set_units(table.pool_fold(value), alphabet);
    } else {
      set_folds(table, c, end, value, alphabet);
    }
    c = end + 1;
  }
  for (const contraction_fold* c = table.contractions_begin(); c != table.contractions_end(); ++c) {
    set_units(c->fold, alphabet);
  }
  if (table.variant().accents) alphabet.set(dot_accent, dot_accent);
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeSet composites(u"[[:dt=canonical:]-[:Full_Composition_Exclusion:]]", status);
  for (int32_t i = 0; U_SUCCESS(status) && i < composites.getRangeCount(); ++i) {
    alphabet.set(composites.getRangeStart(i), composites.getRangeEnd(i));
  }
  if (U_FAILURE(status)) alphabet.set(0, code_point_bits::limit - 1);  // nothing is taken in
}

const fold_runs& fold_runs::of(const fold_table& table) {
  return table.derived<fold_runs>(fold_table::slot::runs,
                                  [&] { return std::make_unique<const fold_runs>(table); });
}

std::size_t fold_runs::run_of(UChar32 c) const {
  return static_cast<std::size_t>(std::upper_bound(starts.begin(), starts.end(), c) -
                                  starts.begin() - 1);
}

void fold_runs::set_folds_of(const fold_table& table, UChar32 first, UChar32 last,
                             code_point_bits& bits) const {
  std::size_t run = run_of(first);
  for (UChar32 c = first; c <= last; ++run) {
    const UChar32 end = std::min(run_end(run), last);
    set_folds(table, c, end, values[run], bits);
    c = end + 1;
  }
}

}  // namespace scl::regex::detail
