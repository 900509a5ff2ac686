// Text preparation: NFC normalisation and removal of diacritics, applied alike
// to patterns before compiling and to subjects before searching.
#include "scl/regex/prepare.h"

#include "engine/icu_text.h"
#include "prepare/mark_table.h"
#include "prepare/prepare_pass.h"

namespace scl::regex {

std::u16string prepare_text(const std::u16string& text, constants::syntax_option_type options) {
  if ((options & constants::ignore_diacritics) != 0) return strip_diacritics(text);
  if ((options & constants::normalize_nfc) == 0) return text;
  std::u16string result;
  result.reserve(text.size());
  detail::no_map map;
  detail::prepare_pass(text.data(), text.size(), options, result, map);
  return result;
}

std::u16string strip_diacritics(const std::u16string& text) {
  // Without ICU's means to remove marks, the text passes unchanged.
  if (!detail::mark_table::instance().ready()) return text;
  // The text ends at its first U+0000.
  const std::size_t length = detail::units_before_nul(text.data(), text.size());
  std::u16string result;
  result.reserve(length);
  detail::no_map map;
  detail::prepare_pass(text.data(), length, constants::ignore_diacritics, result, map);
  return result;
}

}  // namespace scl::regex
