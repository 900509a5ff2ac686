// A subject prepared once, for everything that searches it in one call.
//
// The engines, the walks over matches and the functions that locate matches
// in the caller's text all take the subject in this form, so that a call
// prepares its subject exactly once: the search runs on text(), and
// source_range() maps what it finds back to raw().
#ifndef SCL_REGEX_SRC_PREPARE_PREPARED_SUBJECT_H
#define SCL_REGEX_SRC_PREPARE_PREPARED_SUBJECT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "scl/regex/options.h"
#include "scl/regex/prepared_text.h"

namespace scl::regex::detail {

// Appends `text` prepared as prepare_text prepares it with `options` to `out`.
// Throws std::bad_alloc.
void prepare_into(std::u16string& out, std::u16string_view text,
                  constants::syntax_option_type options);

// prepare_text_mapped for a view of the text.
prepared_text prepare_text_mapped(std::u16string_view text, constants::syntax_option_type options);

class prepared_subject {
 public:
  // Prepares `raw` (which must outlive this object) with `options`; with
  // `mapped`, also records the map back to it.
  prepared_subject(std::u16string_view raw, constants::syntax_option_type options,
                   bool mapped = false);

  prepared_subject(const prepared_subject&) = delete;
  prepared_subject& operator=(const prepared_subject&) = delete;
  ~prepared_subject() = default;

  // The text as the caller gave it.
  [[nodiscard]] std::u16string_view raw() const noexcept { return raw_; }
  [[nodiscard]] constants::syntax_option_type options() const noexcept { return options_; }
  // prepare_text(raw(), options()): the text that searches run on. Without a
  // preparation bit and without a map, this is raw() itself, not a copy.
  [[nodiscard]] std::u16string_view text() const noexcept { return text_; }

  // The range of raw() that prepared units [start, end) came from, as
  // prepared_text::source_range gives it; `start` and `end` are first pinned
  // to text(). Throws std::logic_error for a subject prepared without its map.
  [[nodiscard]] std::pair<std::size_t, std::size_t> source_range(std::size_t start,
                                                                 std::size_t end) const;

 private:
  std::u16string_view raw_;
  constants::syntax_option_type options_;
  bool has_map_;
  prepared_text mapped_;     // the prepared text with its map, when asked for
  std::u16string unmapped_;  // the prepared text otherwise, unless it is raw_ itself
  std::u16string_view text_;
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_PREPARE_PREPARED_SUBJECT_H
