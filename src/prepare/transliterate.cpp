// When removing marks brings an unpaired lead and an unpaired trail surrogate
// together, the transliterator reads the two as one character and steps over
// the unit after them, so the mark there stays. Only the transliterator gives
// that result.
#include "prepare/transliterate.h"

#include <cstdint>
#include <memory>
#include <new>

#include <unicode/translit.h>
#include <unicode/unistr.h>

namespace scl::regex::detail {

void append_transliterated(std::u16string& out, const char16_t* text, std::size_t length) {
  // Each thread builds its own on first need: a transliterator must not be
  // shared between threads.
  thread_local const std::unique_ptr<icu::Transliterator> remove_marks = [] {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Transliterator> created(icu::Transliterator::createInstance(
        icu::UnicodeString(u"any-NFD; [:Nonspacing_Mark:] any-Remove; any-NFC"), UTRANS_FORWARD,
        status));
    if (U_FAILURE(status)) created.reset();
    return created;
  }();
  if (!remove_marks) {
    out.append(text, length);
    return;
  }
  icu::UnicodeString work(text, static_cast<int32_t>(length));
  remove_marks->transliterate(work);
  if (work.isBogus()) throw std::bad_alloc();
  out.append(work.getBuffer(), static_cast<std::size_t>(work.length()));
}

}  // namespace scl::regex::detail
