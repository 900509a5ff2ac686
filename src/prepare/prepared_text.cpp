#include "scl/regex/prepared_text.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include <unicode/utf16.h>

#include "prepare/prepare_pass.h"
#include "prepare/prepared_subject.h"
#include "prepare/prepared_text_builder.h"

namespace scl::regex {

namespace detail {

prepared_text prepared_text_builder::make(std::u16string_view source,
                                          constants::syntax_option_type options) {
  prepared_text result;
  result.source_size_ = preparation_source(source, options).size();
  result.text_.reserve(result.source_size_);
  map_recorder map(result.map_);
  prepare_pass(source.data(), result.source_size_, options, result.text_, map);
  return result;
}

prepared_text prepared_text_builder::assemble(std::u16string text, std::size_t source_size,
                                              std::vector<map_stretch> map) {
  prepared_text result;
  result.text_ = std::move(text);
  result.source_size_ = source_size;
  result.map_ = std::move(map);
  return result;
}

}  // namespace detail

prepared_text::prepared_text() = default;

const std::u16string& prepared_text::text() const noexcept { return text_; }

std::size_t prepared_text::source_size() const noexcept { return source_size_; }

std::pair<std::size_t, std::size_t> prepared_text::source_range(std::size_t start,
                                                                std::size_t end) const {
  if (start > end || end > text_.size()) {
    throw std::out_of_range("scl::regex::prepared_text::source_range: range outside the text");
  }
  if (start == end) {
    if (start == text_.size()) return {source_size_, source_size_};
    const std::size_t at = piece_start(start);
    return {at, at};
  }
  return {piece_start(start), piece_end(end - 1)};
}

std::vector<detail::map_stretch>::const_iterator prepared_text::stretch_of(std::size_t unit) const {
  // The last stretch that starts at or before `unit`; the first starts at 0.
  const auto after = std::upper_bound(map_.begin(), map_.end(), unit,
                                      [](std::size_t position, const detail::map_stretch& stretch) {
                                        return position < stretch.prepared;
                                      });
  return after - 1;
}

std::size_t prepared_text::piece_start(std::size_t unit) const {
  const auto stretch = stretch_of(unit);
  if (!stretch->aligned) return stretch->source;
  std::size_t offset = unit - stretch->prepared;
  // A trail surrogate belongs to the pair it ends.
  if (offset > 0 && U16_IS_TRAIL(text_[unit]) && U16_IS_LEAD(text_[unit - 1])) --offset;
  return stretch->source + offset;
}

std::size_t prepared_text::piece_end(std::size_t unit) const {
  const auto stretch = stretch_of(unit);
  const auto next = stretch + 1;
  if (!stretch->aligned) return next == map_.end() ? source_size_ : next->source;
  const std::size_t stretch_end = next == map_.end() ? text_.size() : next->prepared;
  std::size_t offset = unit - stretch->prepared + 1;
  // A lead surrogate belongs to the pair it starts.
  if (unit + 1 < stretch_end && U16_IS_LEAD(text_[unit]) && U16_IS_TRAIL(text_[unit + 1])) ++offset;
  return stretch->source + offset;
}

prepared_text prepare_text_mapped(const std::u16string& text,
                                  constants::syntax_option_type options) {
  return detail::prepared_text_builder::make(text, options);
}

namespace detail {

prepared_text prepare_text_mapped(std::u16string_view text, constants::syntax_option_type options) {
  return prepared_text_builder::make(text, options);
}

}  // namespace detail

}  // namespace scl::regex
