// Moving text between std::u16string and ICU's UnicodeString.
#ifndef SCL_REGEX_SRC_ENGINE_ICU_TEXT_H
#define SCL_REGEX_SRC_ENGINE_ICU_TEXT_H

#include <cstdint>
#include <stdexcept>
#include <string>

#include <unicode/unistr.h>

namespace scl::regex::detail {

// The whole text, embedded U+0000 units included (length cut to 32 bits).
inline icu::UnicodeString icu_whole(const std::u16string& text) {
  return icu::UnicodeString(text.data(), static_cast<int32_t>(text.size()));
}

// The length of the text up to its first U+0000 (cut to 32 bits).
inline int32_t length_until_nul(const std::u16string& text) {
  const std::size_t nul = text.find(u'\0');
  return static_cast<int32_t>(nul == std::u16string::npos ? text.size() : nul);
}

// The text up to its first U+0000.
inline icu::UnicodeString icu_until_nul(const std::u16string& text) {
  return icu::UnicodeString(text.c_str());
}

// The contents of `text` up to its first U+0000. Throws std::logic_error if
// ICU cannot give a terminated buffer (it could not allocate one).
inline std::u16string text_until_nul(icu::UnicodeString& text) {
  const char16_t* buffer = text.getTerminatedBuffer();
  if (buffer == nullptr) throw std::logic_error("basic_string: construction from null is not valid");
  return std::u16string(buffer);
}

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ENGINE_ICU_TEXT_H
