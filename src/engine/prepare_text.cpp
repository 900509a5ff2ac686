// Text preparation: NFC normalisation and removal of diacritics, applied alike
// to patterns before compiling and to subjects before searching.
#include <array>
#include <memory>

#include <unicode/translit.h>
#include <unicode/unistr.h>

#include "i18n/host_i18n.h"
#include "scl/regex/prepare.h"

namespace scl::regex {
namespace {

// Results up to this many code units are normalised on the stack in one pass.
constexpr std::size_t kNfcStackCapacity = 1024;

std::u16string nfc_form(const std::u16string& text) {
  std::array<char16_t, kNfcStackCapacity> buffer;
  const std::size_t needed =
      detail::i18n::to_nfc(buffer.data(), buffer.size(), text.data(), text.size());
  if (needed <= buffer.size()) return std::u16string(buffer.data(), needed);
  std::u16string result(needed, u'\0');
  detail::i18n::to_nfc(result.data(), result.size(), text.data(), text.size());
  return result;
}

}  // namespace

std::u16string strip_diacritics(const std::u16string& text) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::Transliterator> remove_marks(icu::Transliterator::createInstance(
      icu::UnicodeString(u"any-NFD; [:Nonspacing_Mark:] any-Remove; any-NFC"), UTRANS_FORWARD,
      status));
  if (U_FAILURE(status) || !remove_marks) return text;

  icu::UnicodeString work(text.c_str());  // ends at the first U+0000
  remove_marks->transliterate(work);
  const char16_t* buffer = work.getTerminatedBuffer();
  if (buffer == nullptr) return text;
  return std::u16string(buffer);
}

std::u16string prepare_text(const std::u16string& text, constants::syntax_option_type options) {
  std::u16string result =
      (options & constants::normalize_nfc) != 0 ? nfc_form(text) : text;
  if ((options & constants::ignore_diacritics) != 0) result = strip_diacritics(result);
  return result;
}

}  // namespace scl::regex
