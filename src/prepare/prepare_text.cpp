// Text preparation: NFC normalisation and removal of diacritics, applied alike
// to patterns before compiling and to subjects before searching.
#include "scl/regex/prepare.h"

#include "prepare/prepared_subject.h"

namespace scl::regex {

std::u16string prepare_text(const std::u16string& text, constants::syntax_option_type options) {
  std::u16string result;
  detail::prepare_into(result, text, options);
  return result;
}

std::u16string strip_diacritics(const std::u16string& text) {
  std::u16string result;
  detail::prepare_into(result, text, constants::ignore_diacritics);
  return result;
}

}  // namespace scl::regex
