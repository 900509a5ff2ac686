// One-shot replacement: regex_replace and regex_replace_first on UTF-16 text,
// and regex_replace on UTF-8 text (any bytes, ill-formed UTF-8 included).
//
// Input: u32 option bits, the pattern and the replacement (length-prefixed),
// the subject (the rest). The UTF-8 form gets the bytes each text was read from.
//
// Properties:
// - UTF-16: the result is ICU's replaceAll / replaceFirst of the prepared
//   pattern over the prepared subject (pattern, subject and replacement cut at
//   their first U+0000), cut at its first U+0000; or the prepared subject when
//   the pattern does not compile or ICU fails. So "$0" gives back the prepared
//   subject cut at its first U+0000.
// - UTF-8: the result is valid UTF-8 without a zero byte and is ICU's
//   replaceAll over the decoded texts, or it is the subject as passed in (when
//   the pattern does not compile or ICU fails); "$0" gives back the decoded
//   subject up to its first U+0000, re-encoded.
// - regex_replace_preserving never throws; where preparing the subject leaves
//   it as it is, the result is ICU's replaceAll of the prepared pattern (all
//   of it) over the whole subject, the replacement cut at its first U+0000,
//   or the subject when the pattern does not compile or ICU fails.
#include <cstdint>
#include <optional>
#include <string>

#include <unicode/regex.h>
#include <unicode/ustring.h>
#include <unicode/utf8.h>

#include <scl/regex.h>

#include "fuzz_input.h"

namespace re = scl::regex;

namespace {

enum class which { all, first };

// ICU's own replacement, whole, or nothing if it fails. Screened by the caller.
std::optional<std::u16string> icu_replace(const std::u16string& subject,
                                          const std::u16string& pattern,
                                          const std::u16string& replacement, std::uint32_t options,
                                          which how) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString input(subject.data(), static_cast<int32_t>(subject.size()));
  icu::RegexMatcher matcher(
      icu::UnicodeString(pattern.data(), static_cast<int32_t>(pattern.size())), input,
      fuzz::icu_flags(options), status);
  if (U_FAILURE(status)) return std::nullopt;
  const icu::UnicodeString with(replacement.data(), static_cast<int32_t>(replacement.size()));
  icu::UnicodeString output =
      how == which::all ? matcher.replaceAll(with, status) : matcher.replaceFirst(with, status);
  if (U_FAILURE(status)) return std::nullopt;
  return std::u16string(output.getBuffer(), static_cast<std::size_t>(output.length()));
}

std::u16string from_utf8(const std::string& bytes) {
  std::u16string out(bytes.size(), u'\0');
  int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8WithSub(out.data(), static_cast<int32_t>(out.size()), &length, bytes.data(),
                       static_cast<int32_t>(bytes.size()), 0xFFFD, nullptr, &status);
  FUZZ_CHECK(U_SUCCESS(status));
  out.resize(static_cast<std::size_t>(length));
  return fuzz::cut(out);
}

bool valid_utf8(const std::string& bytes) {
  const auto* s = reinterpret_cast<const std::uint8_t*>(bytes.data());
  const auto length = static_cast<int32_t>(bytes.size());
  for (int32_t i = 0; i < length;) {
    UChar32 c = 0;
    U8_NEXT(s, i, length, c);
    if (c <= 0) return false;  // ill-formed, or a zero byte
  }
  return true;
}

void check_utf16(const std::u16string& subject, const std::u16string& pattern,
                 const std::u16string& replacement, std::uint32_t options) {
  const std::u16string prepared = re::prepare_text(subject, options);
  const std::u16string prepared_pattern = fuzz::cut(re::prepare_text(pattern, options));
  for (const which how : {which::all, which::first}) {
    const auto replace = [&](const std::u16string& with) {
      return how == which::all ? re::regex_replace(subject, pattern, with, options)
                               : re::regex_replace_first(subject, pattern, with, options);
    };
    const auto expected =
        icu_replace(fuzz::cut(prepared), prepared_pattern, fuzz::cut(replacement), options, how);
    FUZZ_CHECK(replace(replacement) == (expected ? fuzz::cut(*expected) : prepared));
    const bool works =
        icu_replace(fuzz::cut(prepared), prepared_pattern, u"$0", options, how).has_value();
    FUZZ_CHECK(replace(u"$0") == (works ? fuzz::cut(prepared) : prepared));
  }
}

void check_utf8(const std::string& subject, const std::string& pattern,
                const std::string& replacement, std::uint32_t options) {
  const std::string result = re::regex_replace(subject, pattern, replacement, options);
  const auto expected = icu_replace(from_utf8(subject), from_utf8(pattern), from_utf8(replacement),
                                    options, which::all);
  if (expected) {
    FUZZ_CHECK(valid_utf8(result));
    FUZZ_CHECK(result == fuzz::to_utf8(fuzz::cut(*expected)));
  } else {
    FUZZ_CHECK(result == subject);
  }
  const std::string same = re::regex_replace(subject, pattern, std::string("$0"), options);
  const bool works =
      icu_replace(from_utf8(subject), from_utf8(pattern), u"$0", options, which::all).has_value();
  FUZZ_CHECK(same == (works ? fuzz::to_utf8(from_utf8(subject)) : subject));
}

void check_preserving(const std::u16string& subject, const std::u16string& pattern,
                      const std::u16string& replacement, std::uint32_t options) {
  const std::u16string result =
      re::regex_replace_preserving(subject, pattern, replacement, options);
  if (re::prepare_text(subject, options) != subject) return;
  const auto expected = icu_replace(subject, re::prepare_text(pattern, options),
                                    fuzz::cut(replacement), options, which::all);
  FUZZ_CHECK(result == expected.value_or(subject));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::input in(data, size);
  const std::uint32_t options = in.u32();
  std::string pattern8, replacement8, subject8;
  const std::u16string pattern = in.text(fuzz::kMaxPattern, &pattern8);
  const std::u16string replacement = in.text(fuzz::kMaxPattern, &replacement8);
  const std::u16string subject = in.rest(fuzz::kMaxSubject, &subject8);

  // Both forms search up to the first U+0000; UTF-16 prepares, UTF-8 does not.
  const auto run16 = fuzz::screen(fuzz::cut(re::prepare_text(pattern, options)), options,
                                  fuzz::cut(re::prepare_text(subject, options)));
  const auto run8 = fuzz::screen(from_utf8(pattern8), options, from_utf8(subject8));
  // The preserving replacement searches the whole subject with the whole pattern.
  const auto whole =
      fuzz::screen(re::prepare_text(pattern, options), options, re::prepare_text(subject, options));
  if (!run16 || !run8 || !whole) return fuzz::kReject;

  check_utf16(subject, pattern, replacement, options);
  check_utf8(subject8, pattern8, replacement8, options);
  check_preserving(subject, pattern, replacement, options);
  return 0;
}
