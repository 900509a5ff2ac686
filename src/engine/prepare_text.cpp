// Text preparation: NFC normalisation and removal of diacritics, applied alike
// to patterns before compiling and to subjects before searching.
#include <array>

#include "engine/prepare_internal.h"
#include "i18n/host_i18n.h"
#include "scl/regex/prepare.h"

namespace scl::regex {
namespace {

// Results up to this many code units are normalised on the stack in one pass.
constexpr std::size_t kNfcStackCapacity = 1024;

// Appends the NFC form of `length` units at `input` to `out`. Short text goes
// through a stack buffer; longer text is normalised straight into `out`, with
// room for as many units as it has (composition rarely lengthens text), and a
// second pass only when the result needs more.
void append_nfc(std::u16string& out, const char16_t* input, std::size_t length) {
  const std::size_t at = out.size();
  std::size_t needed = 0;
  if (length <= kNfcStackCapacity) {
    std::array<char16_t, kNfcStackCapacity> buffer;
    needed = detail::i18n::to_nfc(buffer.data(), buffer.size(), input, length);
    if (needed <= buffer.size()) {
      out.append(buffer.data(), needed);
      return;
    }
  } else {
    out.resize(at + length);
    needed = detail::i18n::to_nfc(out.data() + at, length, input, length);
    if (needed <= length) {
      out.resize(at + needed);
      return;
    }
  }
  out.resize(at + needed);
  detail::i18n::to_nfc(out.data() + at, needed, input, length);
}

std::u16string nfc_form(const std::u16string& text) {
  // The prefix that is certainly in NFC already (all of it, commonly) is copied
  // as it is; it ends at a normalisation boundary, so only the rest is normalised.
  const std::size_t normalized = detail::i18n::nfc_span(text.data(), text.size());
  if (normalized == text.size()) return text;
  std::u16string result(text, 0, normalized);
  append_nfc(result, text.data() + normalized, text.size() - normalized);
  return result;
}

}  // namespace

bool detail::preparation_keeps(const char16_t* text, int32_t length,
                               constants::syntax_option_type options) {
  if ((options & constants::ignore_diacritics) != 0) return diacritics_removal_keeps(text, length);
  if ((options & constants::normalize_nfc) != 0) {
    return i18n::nfc_span(text, static_cast<std::size_t>(length)) == static_cast<std::size_t>(length);
  }
  return true;
}

std::u16string prepare_text(const std::u16string& text, constants::syntax_option_type options) {
  // Removing diacritics decomposes the text first, and NFD(NFC(t)) == NFD(t);
  // so when it follows, normalising to NFC beforehand cannot change the result.
  if ((options & constants::ignore_diacritics) != 0) return strip_diacritics(text);
  return (options & constants::normalize_nfc) != 0 ? nfc_form(text) : text;
}

}  // namespace scl::regex
