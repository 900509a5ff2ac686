#include "search/typed_accents.h"

#include "search/folded_text.h"

namespace scl::regex::detail {

typed_accents::typed_accents(const fold_table& accents, std::u16string_view query)
    : table_(&accents) {
  folded_text folded;
  fold_text(accents, query.data(), static_cast<int32_t>(query.size()), false, folded);
  elements_of(folded.text(), query_);
}

void typed_accents::elements_of(std::u16string_view folded, std::vector<element>& out) const {
  const fold_table& root = fold_table::get();
  out.clear();
  std::u16string primaries;
  std::u16string back;
  std::u16string self;
  const auto size = static_cast<int32_t>(folded.size());
  for (int32_t at = 0; at < size;) {
    const UChar32 unit = next_code_point(folded.data(), at, size);
    if (const composite_unit* composite = table_->composite(unit)) {
      for (std::uint32_t i = 0; i < composite->count; ++i) {
        out.push_back({static_cast<UChar32>(composite->primaries[i]),
                       (composite->common_secondary >> i & 1) != 0, unit, i});
      }
      continue;
    }
    primaries.clear();
    root.append_fold(unit, primaries);
    const auto length = static_cast<int32_t>(primaries.size());
    if (length == 0) {
      out.push_back({0, false, unit, 0});  // an accent
      continue;
    }
    int32_t k = 0;
    const UChar32 letter = next_code_point(primaries.data(), k, length);
    if (k == length) {
      // The letter has the common secondary weight when it is what the
      // letter without accents folds to with them.
      back.clear();
      table_->append_fold(letter, back);
      self.clear();
      append_code_point(self, unit);
      out.push_back({letter, back == self, unit, 0});
      continue;
    }
    std::uint32_t index = 0;
    for (k = 0; k < length; ++index) {
      out.push_back({next_code_point(primaries.data(), k, length), false, unit, index});
    }
  }
}

bool typed_accents::matches(const std::vector<element>& text) const {
  if (query_.empty()) return false;
  std::size_t j = 0;
  for (const element& q : query_) {
    if (q.primary == 0) {
      if (j == text.size() || text[j].primary != 0 || !text[j].same(q)) return false;
      ++j;
      continue;
    }
    while (j < text.size() && text[j].primary == 0) ++j;
    if (j == text.size() || text[j].primary != q.primary) return false;
    if (!q.common && !text[j].same(q)) return false;
    ++j;
  }
  const element& last = query_.back();
  for (; j < text.size(); ++j) {
    if (text[j].primary != 0 || (last.primary == 0 && !text[j].same(last))) return false;
  }
  return true;
}

template <class Unit>
bool typed_accents::accepts_range(const Unit* source, int32_t start, int32_t end) const {
  thread_local folded_text folded;
  thread_local std::vector<element> text;
  fold_text(*table_, source + start, end - start, false, folded);
  elements_of(folded.text(), text);
  return matches(text);
}

bool typed_accents::accepts(const char16_t* source, int32_t start, int32_t end) const {
  return accepts_range(source, start, end);
}

bool typed_accents::accepts(const char* source, int32_t start, int32_t end) const {
  return accepts_range(source, start, end);
}

bool typed_accents::primary_ignorable(UChar32 c) const {
  return fold_value::kind(fold_table::get().value(c)) == fold_kind::nothing;
}

bool typed_accents::ignores_accents_after(UChar32 c) const {
  if (!table_->variant().shifted) return false;
  return fold_value::kind(table_->value(c)) == fold_kind::nothing || table_->variable_end(c);
}

}  // namespace scl::regex::detail
