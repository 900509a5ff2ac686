#include "search/cluster_syntax.h"

#include <algorithm>
#include <array>
#include <memory>
#include <mutex>
#include <vector>

#include "search/code_points.h"
#include "search/pattern_text.h"
#include "search/surrogate_stand_in.h"

namespace scl::regex::detail {

namespace {

// At most this many ways to spell a run of letters whose composites overlap
// (fifteen "s" in a row); the pattern grows with them.
constexpr std::size_t kMaxSpellings = 1024;

}  // namespace

struct cluster_syntax::alphabet {
  code_point_bits accents;     // the accents of folded text
  std::u16string any_accents;  // pattern text: any accents, or none
  // For a letter with the common secondary weight, the other letters of
  // folded text that fold to it without accents ("\u00f0" for "d").
  std::map<UChar32, std::vector<UChar32>> others;
  // With case: the accents that are one accent without case (U+309A and the
  // halfwidth U+FF9F, which has the case bits of a capital).
  std::map<UChar32, std::vector<UChar32>> same_accents;
};

const cluster_syntax::alphabet& cluster_syntax::alphabet_of(const fold_table& table) {
  return table.derived<alphabet>(fold_table::slot::alphabet, [&] {
    auto result = std::make_unique<alphabet>();
    const code_point_bits& folds = fold_runs::of(table).alphabet;
    const fold_table& primary = table.sibling({});
    const fold_table& letters = table.sibling(table.variant().without_accents());
    const fold_table& without_case = table.sibling(table.variant().without_case());
    std::u16string fold;
    auto first_of = [&](const fold_table& from, UChar32 c, UChar32& first) {
      fold.clear();
      from.append_fold(c, fold);
      int32_t at = 0;
      const auto length = static_cast<int32_t>(fold.size());
      if (length == 0) return false;
      first = next_code_point(fold.data(), at, length);
      return at == length;
    };
    // The accents: what folded text holds of what the collator reads as
    // nothing at primary strength.
    result->accents.set(dot_accent, dot_accent);
    for (UChar32 c = 0; c < code_point_bits::limit;) {
      std::uint32_t value = 0;
      const UChar32 end = primary.fold_run(c, value);
      if (fold_value::kind(value) == fold_kind::nothing) {
        for (UChar32 k = folds.next(c, true); k <= end; k = folds.next(k + 1, true)) {
          result->accents.set(k, k);
          UChar32 accent = 0;
          if (table.variant().case_level && first_of(without_case, k, accent)) {
            result->same_accents[accent].push_back(k);
          }
        }
      }
      c = end + 1;
    }
    // The other letters: what folded text holds of what folds to another
    // letter without accents.
    for (UChar32 c = 0; c < code_point_bits::limit;) {
      std::uint32_t value = 0;
      const UChar32 end = letters.fold_run(c, value);
      if (fold_value::kind(value) != fold_kind::self &&
          fold_value::kind(value) != fold_kind::nothing) {
        for (UChar32 k = folds.next(c, true); k <= end; k = folds.next(k + 1, true)) {
          UChar32 letter = 0;
          if (!result->accents.test(k) && table.composite(k) == nullptr &&
              first_of(letters, k, letter)) {
            result->others[letter].push_back(k);
          }
        }
      }
      c = end + 1;
    }
    append_set(result->accents, true, folds, result->any_accents);
    result->any_accents += u'*';
    return std::unique_ptr<const alphabet>(std::move(result));
  });
}

cluster_syntax::cluster_syntax(const fold_table& table, bool typed)
    : table_(table), typed_(typed), alphabet_(alphabet_of(table)) {}

bool cluster_syntax::accent(UChar32 unit) const { return alphabet_.accents.test(unit); }

void cluster_syntax::append_accent(UChar32 accent, std::u16string& out) const {
  // The case level does not look at accents.
  if (table_.variant().case_level) {
    std::u16string fold;
    table_.sibling(table_.variant().without_case()).append_fold(accent, fold);
    int32_t at = 0;
    const auto length = static_cast<int32_t>(fold.size());
    const auto same = length == 0
                          ? alphabet_.same_accents.end()
                          : alphabet_.same_accents.find(next_code_point(fold.data(), at, length));
    if (same != alphabet_.same_accents.end() && same->second.size() > 1) {
      out += u'[';
      for (const UChar32 c : same->second) append_literal_code_point(out, c);
      out += u']';
      return;
    }
  }
  append_literal_code_point(out, accent);
}

bool cluster_syntax::common(UChar32 letter) const {
  // The letter has the common secondary weight when it is what its fold
  // without accents folds to with them.
  std::u16string base;
  table_.sibling(table_.variant().without_accents()).append_fold(letter, base);
  std::u16string back;
  int32_t at = 0;
  const auto length = static_cast<int32_t>(base.size());
  if (length == 0) return false;
  const UChar32 first = next_code_point(base.data(), at, length);
  if (at != length) return false;
  table_.sibling(table_.variant().without_case()).append_fold(first, back);
  std::u16string self;
  table_.sibling(table_.variant().without_case()).append_fold(letter, self);
  return back == self;
}

void cluster_syntax::append_letter(UChar32 letter, std::u16string& out) const {
  if (U_IS_SURROGATE(letter)) {  // a lone surrogate, in either form (surrogate_stand_in.h)
    out += u'[';
    append_escaped(out, letter);
    append_escaped(out, surrogate_stand_in(letter));
    out += u']';
    return;
  }
  if (!common(letter) || table_.composite(letter) != nullptr) {
    append_literal_code_point(out, letter);
    return;
  }
  out += u'[';
  append_literal_code_point(out, letter);
  const auto others = alphabet_.others.find(letter);
  if (others != alphabet_.others.end()) {
    for (const UChar32 other : others->second) append_literal_code_point(out, other);
  }
  out += u']';
}

void cluster_syntax::widen(std::vector<UChar32>& letters) const {
  const std::size_t given = letters.size();
  for (std::size_t i = 0; i < given; ++i) {
    const auto others = alphabet_.others.find(letters[i]);
    if (others == alphabet_.others.end() || !common(letters[i])) continue;
    letters.insert(letters.end(), others->second.begin(), others->second.end());
  }
}

void cluster_syntax::widen(code_point_bits& letters) const {
  for (const auto& [letter, others] : alphabet_.others) {
    if (!letters.test(letter) || !common(letter)) continue;
    for (const UChar32 other : others) letters.set(other, other);
  }
}

const code_point_bits& cluster_syntax::accents_of(const fold_table& table) {
  return alphabet_of(table).accents;
}

cluster_syntax::typed_end cluster_syntax::append_literal(std::u16string_view units,
                                                         std::u16string& out) const {
  if (!typed_) {
    const auto size = static_cast<int32_t>(units.size());
    for (int32_t at = 0; at < size;)
      append_literal_code_point(out, next_code_point(units.data(), at, size));
    return {};
  }
  struct item {
    UChar32 unit;
    bool accent;
  };
  std::vector<item> items;
  const auto size = static_cast<int32_t>(units.size());
  for (int32_t at = 0; at < size;) {
    const UChar32 unit = next_code_point(units.data(), at, size);
    items.push_back({unit, accent(unit)});
  }
  const std::u16string& any_accents = alphabet_.any_accents;
  const fold_table& letters = table_.sibling(table_.variant().without_accents());
  // Where consecutive letters, typed without accents, could be one letter of
  // the text that stands for several ("ss" for "\u00df"): the composites that
  // may stand for items [i, i + count).
  auto fits = [&](const composite_unit& unit, std::size_t i) {
    if (i + unit.count > items.size()) return false;
    for (std::uint32_t j = 0; j < unit.count; ++j) {
      const item& it = items[i + j];
      if (unit.primaries[j] == 0 || it.accent || !common(it.unit)) return false;
      std::u16string fold;
      letters.append_fold(it.unit, fold);
      std::u16string primary;
      append_code_point(primary, static_cast<UChar32>(unit.primaries[j]));
      if (fold != primary) return false;
    }
    return true;
  };
  std::vector<std::vector<const composite_unit*>> composites(items.size());
  for (std::size_t i = 0; i < items.size(); ++i) {
    for (const composite_unit* unit = table_.composites_begin(); unit != table_.composites_end();
         ++unit) {
      if (fits(*unit, i)) composites[i].push_back(unit);
    }
  }
  // Letters [from, to), where no composite crosses `to`: every way the text
  // may spell them, with any accents between. Where composites overlap
  // ("sss": "\u00df" for the first two or the last two), the ways branch.
  auto spellings = [&](auto& self, std::size_t from, std::size_t to, std::u16string& text) -> void {
    if (from == to) return;
    const auto rest = [&](std::size_t next) {
      if (next == to) return;
      text += any_accents;
      self(self, next, to, text);
    };
    if (composites[from].empty()) {
      append_letter(items[from].unit, text);
      rest(from + 1);
      return;
    }
    text += u"(?:";
    append_letter(items[from].unit, text);
    rest(from + 1);
    for (const composite_unit* unit : composites[from]) {
      text += u'|';
      append_literal_code_point(text, static_cast<UChar32>(unit->unit));
      rest(from + unit->count);
    }
    text += u')';
  };
  // How many ways `spellings` writes out, to keep overlapping composites
  // from growing the pattern without bound.
  auto ways = [&](std::size_t from, std::size_t to) {
    std::vector<std::size_t> count(to - from + 1, 0);
    count[to - from] = 1;
    for (std::size_t i = to; i-- > from;) {
      std::size_t n = count[i + 1 - from];
      for (const composite_unit* unit : composites[i]) n += count[i + unit->count - from];
      count[i - from] = std::min<std::size_t>(n, kMaxSpellings + 1);
    }
    return count[0];
  };

  // Before a letter, the text may have accents the query did not type, after
  // a letter or after accents typed first.
  bool open = false;
  bool letter = false;    // a letter was typed
  int typed_accents = 0;  // accents typed after the last letter
  for (std::size_t i = 0; i < items.size();) {
    if (items[i].accent) {
      append_accent(items[i].unit, out);
      ++typed_accents;
      ++i;
      open = true;
      continue;
    }
    typed_accents = 0;
    if (open) out += any_accents;
    // The letters up to where no composite crosses.
    std::size_t end = i + 1;
    for (std::size_t k = i; k < end; ++k) {
      for (const composite_unit* unit : composites[k])
        end = std::max<std::size_t>(end, k + unit->count);
    }
    if (ways(i, end) <= kMaxSpellings) {
      spellings(spellings, i, end, out);
    } else {
      // Too many: each composite where it first fits, from the left.
      for (std::size_t k = i; k < end;) {
        if (k != i) out += any_accents;
        if (composites[k].empty()) {
          append_letter(items[k].unit, out);
          ++k;
          continue;
        }
        const composite_unit* unit = composites[k].front();
        out += u"(?:";
        append_literal_code_point(out, static_cast<UChar32>(unit->unit));
        out += u'|';
        for (std::uint32_t j = 0; j < unit->count; ++j) {
          if (j != 0) out += any_accents;
          append_letter(items[k + j].unit, out);
        }
        out += u')';
        k += unit->count;
      }
    }
    i = end;
    letter = true;
    open = true;
  }
  if (!items.empty() && items.back().accent) {
    // After a last accent, more of the same may follow, and no other.
    out += u"(?:";
    append_accent(items.back().unit, out);
    out += u")*(?!";
    out.append(any_accents, 0, any_accents.size() - 1);
    out += u')';
    return {letter, typed_accents};
  }
  if (letter) out += any_accents;
  return {letter, letter ? 0 : -1};
}

void cluster_syntax::append_members(const class_set& set, std::u16string& out) const {
  const fold_runs& runs = fold_runs::of(table_);
  code_point_bits singles;  // members that fold to one code point
  // By their accents, the letters of members that are a letter with accents.
  std::map<std::u16string, std::vector<UChar32>> with_accents;
  std::vector<std::u16string> accents_alone;
  for (int32_t i = 0; i < set.members.getRangeCount(); ++i) {
    const UChar32 first = set.members.getRangeStart(i);
    const UChar32 last = set.members.getRangeEnd(i);
    std::size_t run = runs.run_of(first);
    for (UChar32 c = first; c <= last; ++run) {
      const UChar32 end = std::min(runs.run_end(run), last);
      const std::uint32_t value = runs.values[run];
      if (fold_value::kind(value) == fold_kind::pool) {
        // A letter and its accents, or accents alone: one cluster.
        const std::u16string_view fold = table_.pool_fold(value);
        const char16_t* units = fold.data();
        const auto length = static_cast<int32_t>(fold.size());
        int32_t at = 0;
        const UChar32 head = next_code_point(units, at, length);
        if (at == length) {
          singles.set(head, head);
          c = end + 1;
          continue;
        }
        bool cluster = true;
        for (int32_t k = at; k < length && cluster;)
          cluster = accent(next_code_point(units, k, length));
        if (cluster && accent(head)) {
          accents_alone.emplace_back(units, static_cast<std::size_t>(length));
        } else if (cluster) {
          with_accents[std::u16string(units + at, static_cast<std::size_t>(length - at))].push_back(
              head);
        }
      } else {
        set_folds(table_, c, end, value, singles);
      }
      c = end + 1;
    }
  }
  const std::u16string& any_accents = alphabet_.any_accents;
  out += u"(?:";
  bool first_alternative = true;
  auto next_alternative = [&] {
    if (!first_alternative) out += u'|';
    first_alternative = false;
  };
  if (typed_) {
    // Letters with any accents; accents alone as they are.
    code_point_bits letters;
    code_point_bits lone;
    for (UChar32 c = singles.next(0, true); c < code_point_bits::limit;
         c = singles.next(c + 1, true)) {
      (accent(c) ? lone : letters).set(c, c);
    }
    widen(letters);
    next_alternative();
    append_set(letters, true, runs.alphabet, out);
    out += any_accents;
    next_alternative();
    append_set(lone, true, runs.alphabet, out);
  } else {
    next_alternative();
    append_set(singles, true, runs.alphabet, out);
  }
  for (auto& [accents, letters] : with_accents) {
    if (typed_) widen(letters);
    next_alternative();
    append_set(letters, out);
    for (int32_t at = 0; at < static_cast<int32_t>(accents.size());) {
      append_literal_code_point(
          out, next_code_point(accents.data(), at, static_cast<int32_t>(accents.size())));
    }
  }
  for (const std::u16string& accents : accents_alone) {
    next_alternative();
    for (int32_t at = 0; at < static_cast<int32_t>(accents.size());) {
      append_literal_code_point(
          out, next_code_point(accents.data(), at, static_cast<int32_t>(accents.size())));
    }
  }
  // No more accents after the cluster: a letter alone is not the letter with
  // an accent. (Where typed, letters take all their accents.)
  out += u")(?!";
  out += any_accents.substr(0, any_accents.size() - 1);
  out += u')';
}

void cluster_syntax::append_class(const class_set& set, std::u16string& out) const {
  std::u16string members;
  append_members(set, members);
  if (!set.negated) {
    out += u"(?:" + members + u")";
    return;
  }
  // Any cluster but those.
  out += u"(?:(?!" + members + u")";
  append_any(out);
  out += u")";
}

void cluster_syntax::append_accents(std::u16string& out, bool dot_apart) const {
  if (dot_apart) {
    out += u"(?!";
    append_literal_code_point(out, dot_accent);
    out += u')';
  }
  out += alphabet_.any_accents;
}

void cluster_syntax::append_any(std::u16string& out) const {
  out += u"(?:.";
  out += alphabet_.any_accents;
  out += u')';
}

}  // namespace scl::regex::detail
