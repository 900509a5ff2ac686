#include "i18n/host_i18n.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <new>

#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utypes.h>

namespace scl::regex::detail::i18n {
namespace {

constexpr UChar32 kReplacementCharacter = 0xFFFD;

// ICU measures strings in int32_t; lengths beyond that cannot be handed over.
int32_t icu_length(std::size_t length) {
  if (length > static_cast<std::size_t>(INT32_MAX)) throw std::bad_alloc();
  return static_cast<int32_t>(length);
}

// Encodes `length` units at `text` (-1: up to the first U+0000) as UTF-8.
std::string encode_utf8(const char16_t* text, int32_t length) {
  std::string out;
  UErrorCode status = U_ZERO_ERROR;
  int32_t needed = 0;
  u_strToUTF8WithSub(nullptr, 0, &needed, text, length, kReplacementCharacter, nullptr, &status);
  if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) return out;
  out.resize(static_cast<std::size_t>(needed));
  status = U_ZERO_ERROR;
  u_strToUTF8WithSub(out.data(), needed, nullptr, text, length, kReplacementCharacter, nullptr,
                     &status);
  if (U_FAILURE(status)) out.clear();
  return out;
}

}  // namespace

std::size_t to_nfc(char16_t* output, std::size_t capacity, const char16_t* input,
                   std::size_t length) {
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* nfc = unorm2_getNFCInstance(&status);
  if (U_SUCCESS(status)) {
    // A capacity beyond ICU's range only means less is written; the needed
    // length is reported either way.
    const auto room = static_cast<int32_t>(std::min<std::size_t>(capacity, INT32_MAX));
    const int32_t needed = unorm2_normalize(nfc, input, icu_length(length), output, room, &status);
    if (U_SUCCESS(status) || status == U_BUFFER_OVERFLOW_ERROR) {
      return static_cast<std::size_t>(needed);
    }
  }
  // No normaliser: hand the text back as it is rather than lose it.
  std::copy_n(input, std::min(capacity, length), output);
  return length;
}

std::size_t nfc_span(const char16_t* input, std::size_t length) {
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* nfc = unorm2_getNFCInstance(&status);
  if (U_FAILURE(status)) return 0;
  const int32_t span = unorm2_spanQuickCheckYes(nfc, input, icu_length(length), &status);
  return U_SUCCESS(status) ? static_cast<std::size_t>(span) : 0;
}

std::u16string utf8_to_ustring(const std::string& utf8) {
  std::u16string out;
  if (utf8.empty()) return out;
  // UTF-16 never needs more code units than UTF-8 has bytes.
  out.resize(utf8.size());
  UErrorCode status = U_ZERO_ERROR;
  int32_t written = 0;
  u_strFromUTF8WithSub(out.data(), icu_length(out.size()), &written, utf8.data(),
                       icu_length(utf8.size()), kReplacementCharacter, nullptr, &status);
  out.resize(U_FAILURE(status) ? 0 : static_cast<std::size_t>(written));
  return out;
}

std::string ustring_to_utf8(const char16_t* text) {
  if (text == nullptr) return {};
  return encode_utf8(text, -1);
}

std::string to_string(const std::u16string& text) {
  return encode_utf8(text.data(), icu_length(text.size()));
}

}  // namespace scl::regex::detail::i18n
