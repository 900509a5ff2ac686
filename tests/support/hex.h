// UTF-16 text as hexadecimal units, for failure messages.
#ifndef SCL_REGEX_TESTS_SUPPORT_HEX_H
#define SCL_REGEX_TESTS_SUPPORT_HEX_H

#include <cstdio>
#include <string>

namespace scl_regex_test {

inline std::string hex(const std::u16string& text) {
  std::string out;
  char buffer[8];
  for (char16_t unit : text) {
    std::snprintf(buffer, sizeof buffer, "%04X ", static_cast<unsigned>(unit));
    out += buffer;
  }
  return out;
}

}  // namespace scl_regex_test

#endif  // SCL_REGEX_TESTS_SUPPORT_HEX_H
