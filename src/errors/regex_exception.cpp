#include <cstdint>
#include <map>
#include <string>

#include <unicode/utypes.h>

#include "scl/regex/exception.h"

namespace scl::regex {
namespace {

constexpr std::int64_t kMatcherNotAvailable = -1000;
constexpr std::int64_t kUnknownImplementation = -1001;

// ICU's regular-expression errors and the library's messages for them.
// U_REGEX_OCTAL_TOO_BIG has no entry on purpose: it gets the default message.
const std::map<std::int32_t, std::string>& icu_messages() {
  static const std::map<std::int32_t, std::string> messages{
      {U_REGEX_INTERNAL_ERROR, "An internal error (bug) was detected."},
      {U_REGEX_RULE_SYNTAX, "Syntax error in regexp pattern."},
      {U_REGEX_INVALID_STATE, "RegexMatcher in invalid state for requested operation"},
      {U_REGEX_BAD_ESCAPE_SEQUENCE, "Unrecognized backslash escape sequence in pattern"},
      {U_REGEX_PROPERTY_SYNTAX, "Incorrect Unicode property"},
      {U_REGEX_UNIMPLEMENTED, "Use of regexp feature that is not yet implemented."},
      {U_REGEX_MISMATCHED_PAREN, "Incorrectly nested parentheses in regexp pattern."},
      {U_REGEX_NUMBER_TOO_BIG, "Decimal number is too large."},
      {U_REGEX_BAD_INTERVAL, "Error in {min,max} interval"},
      {U_REGEX_MAX_LT_MIN, "In {min,max}, max is less than min."},
      {U_REGEX_INVALID_BACK_REF, "Back-reference to a non-existent capture group."},
      {U_REGEX_INVALID_FLAG, "Invalid value for match mode flags."},
      {U_REGEX_LOOK_BEHIND_LIMIT,
       "Look-Behind pattern matches must have a bounded maximum length."},
      {U_REGEX_SET_CONTAINS_STRING, "Regexps cannot have UnicodeSets containing strings."},
      {U_REGEX_MISSING_CLOSE_BRACKET, "Missing closing bracket on a bracket expression."},
      {U_REGEX_INVALID_RANGE, "In a character range [x-y], x is greater than y."},
      {U_REGEX_STACK_OVERFLOW, "Regular expression backtrack stack overflow."},
      {U_REGEX_TIME_OUT, "Maximum allowed match time exceeded"},
      {U_REGEX_STOPPED_BY_CALLER, "Matching operation aborted by user callback fn."},
      {U_REGEX_PATTERN_TOO_BIG, "Pattern exceeds limits on size or complexity."},
      {U_REGEX_INVALID_CAPTURE_GROUP_NAME, "Invalid capture group name."},
  };
  return messages;
}

}  // namespace

regex_exception::~regex_exception() = default;

const char* regex_exception::what() const noexcept {
  // Built once per process on the first call, in this order, whatever the code.
  static const std::string unknown_error("unknown regex error");
  static const std::string matcher_not_available("Matcher is not available.");
  static const std::string unknown_implementation("Unknown regex implementation.");

  if (code_ == kMatcherNotAvailable) return matcher_not_available.c_str();
  if (code_ == kUnknownImplementation) return unknown_implementation.c_str();

  // ICU codes are 32-bit; the table is looked up by the code's low 32 bits.
  const auto& messages = icu_messages();
  const auto found = messages.find(static_cast<std::int32_t>(code_));
  return found != messages.end() ? found->second.c_str() : unknown_error.c_str();
}

std::string regex_exception::getErrorCodeMnemonic() const {
  const char* name = u_errorName(static_cast<UErrorCode>(static_cast<std::int32_t>(code_)));
  return name != nullptr ? std::string(name) : std::string("unknown error mnemonic");
}

}  // namespace scl::regex
