// Compiling patterns: createMatcher, createExpectedMatcher, the regex class,
// and what regex_exception says about any code.
//
// Input: u32 option bits, u8 code kind, u32 code, then the pattern (the rest).
//
// Properties:
// - createMatcher throws regex_exception exactly when createExpectedMatcher
//   holds an error, and exactly when ICU rejects the prepared pattern; both
//   name ICU's error (same mnemonic, same message); the regex class agrees.
// - what() is never null and is one of the library's messages or
//   "unknown regex error"; it is the same pointer for a copy.
// - getErrorCodeMnemonic() is ICU's name for the low 32 bits of the code.
// - check_pattern agrees with createExpectedMatcher (no value exactly when it
//   holds a matcher, else the same error); its offset is npos or at most the
//   pattern's length, and never splits a surrogate pair; its description
//   starts with the error's message.
#include <cstdint>
#include <cstring>
#include <optional>
#include <set>
#include <string>

#include <unicode/regex.h>
#include <unicode/utf16.h>
#include <unicode/utypes.h>

#include <scl/regex.h>

#include "fuzz_input.h"

namespace re = scl::regex;

namespace {

bool known_message(const char* message) {
  static const std::set<std::string> messages{
      "An internal error (bug) was detected.",
      "Syntax error in regexp pattern.",
      "RegexMatcher in invalid state for requested operation",
      "Unrecognized backslash escape sequence in pattern",
      "Incorrect Unicode property",
      "Use of regexp feature that is not yet implemented.",
      "Incorrectly nested parentheses in regexp pattern.",
      "Decimal number is too large.",
      "Error in {min,max} interval",
      "In {min,max}, max is less than min.",
      "Back-reference to a non-existent capture group.",
      "Invalid value for match mode flags.",
      "Look-Behind pattern matches must have a bounded maximum length.",
      "Regexps cannot have UnicodeSets containing strings.",
      "Missing closing bracket on a bracket expression.",
      "In a character range [x-y], x is greater than y.",
      "Regular expression backtrack stack overflow.",
      "Maximum allowed match time exceeded",
      "Matching operation aborted by user callback fn.",
      "Pattern exceeds limits on size or complexity.",
      "Invalid capture group name.",
      "Matcher is not available.",
      "Unknown regex implementation.",
      "unknown regex error",
  };
  return messages.count(message) != 0;
}

// Checks what an exception says about itself; returns its mnemonic.
std::string check_exception(const re::regex_exception& e, std::int64_t code) {
  const char* message = e.what();
  FUZZ_CHECK(message != nullptr);
  FUZZ_CHECK(known_message(message));
  FUZZ_CHECK(re::regex_exception(e).what() == message);
  const std::string mnemonic = e.getErrorCodeMnemonic();
  FUZZ_CHECK(mnemonic == u_errorName(static_cast<UErrorCode>(static_cast<std::int32_t>(code))));
  return mnemonic;
}

// A code to build an exception from: the library's own, ICU's regex errors,
// any ICU code, or any 64-bit value.
std::int64_t pick_code(std::uint8_t kind, std::uint32_t bits) {
  switch (kind % 5) {
    case 0:
      return -1000 - static_cast<std::int64_t>(bits % 2);
    case 1:
      return U_REGEX_ERROR_START + static_cast<std::int64_t>(bits % 32);
    case 2:
      return static_cast<std::int32_t>(bits);
    case 3:
      return static_cast<std::int64_t>(bits) << 32 | U_REGEX_ERROR_START;
    default:
      return static_cast<std::int64_t>(static_cast<std::int16_t>(bits));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::input in(data, size);
  const std::uint32_t options = in.u32();
  const std::uint8_t kind = in.byte();
  const std::int64_t code = pick_code(kind, in.u32());
  const std::u16string pattern = in.rest(fuzz::kMaxPattern);

  check_exception(re::regex_exception(code), code);

  // ICU's own verdict on the text the library hands it.
  const std::u16string prepared = re::prepare_text(pattern, options);
  UErrorCode icu_status = U_ZERO_ERROR;
  const icu::RegexMatcher icu_matcher(
      icu::UnicodeString(prepared.data(), static_cast<int32_t>(prepared.size())),
      fuzz::icu_flags(options), icu_status);
  const int icu_groups = U_SUCCESS(icu_status) ? icu_matcher.groupCount() : -1;

  std::optional<std::string> thrown;  // the mnemonic createMatcher threw
  try {
    const re::matcher_ptr handle = re::createMatcher(pattern, options);
    FUZZ_CHECK(handle != nullptr);
    FUZZ_CHECK(re::get_group_count(handle) == icu_groups + 1);
  } catch (const re::regex_exception& e) {
    thrown = check_exception(e, icu_status);
  }
  FUZZ_CHECK(thrown.has_value() == U_FAILURE(icu_status));

  re::expected_result<re::matcher_ptr> expected = re::createExpectedMatcher(pattern, options);
  FUZZ_CHECK(expected.has_error() == thrown.has_value());
  if (expected.has_error()) {
    FUZZ_CHECK(check_exception(expected.error(), icu_status) == *thrown);
    FUZZ_CHECK(std::strcmp(expected.error().what(), re::regex_exception(icu_status).what()) == 0);
  } else {
    FUZZ_CHECK(expected.value() != nullptr);
    FUZZ_CHECK(re::get_group_count(expected.value()) == icu_groups + 1);
  }

  const std::optional<re::pattern_error> checked = re::check_pattern(pattern, options);
  FUZZ_CHECK(checked.has_value() == expected.has_error());
  if (checked) {
    FUZZ_CHECK(check_exception(checked->error, icu_status) == *thrown);
    const std::size_t at = checked->offset;
    FUZZ_CHECK(at == re::npos || at <= pattern.size());
    FUZZ_CHECK(at == re::npos || at == 0 || at == pattern.size() ||
               !(U16_IS_LEAD(pattern[at - 1]) && U16_IS_TRAIL(pattern[at])));
    FUZZ_CHECK(checked->description.rfind(checked->error.what(), 0) == 0);
  }

  try {
    const re::regex compiled(pattern, options);
    FUZZ_CHECK(!thrown.has_value());
    FUZZ_CHECK(compiled.getGroupsCount() == icu_groups);
    FUZZ_CHECK(compiled.options() == options);
  } catch (const re::regex_exception& e) {
    FUZZ_CHECK(thrown.has_value() && check_exception(e, icu_status) == *thrown);
  }
  return 0;
}
