// The library's one exception type.
//
//   try {
//     scl::regex::createMatcher(u"(a", 0);
//   } catch (const scl::regex::regex_exception& e) {
//     e.what();                  // "Incorrectly nested parentheses in regexp pattern."
//     e.getErrorCodeMnemonic();  // "U_REGEX_MISMATCHED_PAREN"
//   }
#ifndef SCL_REGEX_EXCEPTION_H
#define SCL_REGEX_EXCEPTION_H

#include <cstdint>
#include <exception>
#include <string>

#include <scl/regex/export.h>

namespace scl::regex {

// A failure reported by the library: an ICU error code (UErrorCode, stored
// sign-extended) or one of the library's own codes, -1000 ("Matcher is not
// available.") and -1001 ("Unknown regex implementation.").
// Thrown only when ICU rejects a pattern; elsewhere it travels inside an
// expected_result. Copying it copies one integer.
class SCL_REGEX_API regex_exception : public std::exception {
 public:
  // Makes an exception for `code`: an ICU UErrorCode or -1000 / -1001.
  explicit regex_exception(std::int64_t code) noexcept : code_(code) {}

  regex_exception(const regex_exception&) noexcept = default;
  regex_exception(regex_exception&&) noexcept = default;
  regex_exception& operator=(const regex_exception&) noexcept = default;
  regex_exception& operator=(regex_exception&&) noexcept = default;
  ~regex_exception() override;

  // Returns the library's fixed English message for the code, or
  // "unknown regex error" for a code it has no message for. The pointer stays
  // valid until program exit; it is the same for every exception with the
  // same message. Never throws.
  const char* what() const noexcept override;

  // Returns ICU's symbolic name for the code (u_errorName of its low 32 bits),
  // e.g. "U_REGEX_MISMATCHED_PAREN", or "unknown error mnemonic" if ICU has
  // none. Throws only std::bad_alloc.
  [[nodiscard]] std::string getErrorCodeMnemonic() const;

 private:
  std::int64_t code_;
};

}  // namespace scl::regex

#endif  // SCL_REGEX_EXCEPTION_H
