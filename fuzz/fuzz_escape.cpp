// Escaping text: regex_escape.
//
// Input: u32 option bits, then the text (the rest).
//
// Properties, for the text t up to its first U+0000:
// - regex_escape(t) is t with single backslashes inserted: one before every
//   character of "-[]{}()*+?.,\^$|#" and every White_Space character, and
//   nowhere else.
// - The escaped text always compiles, with any options.
// - As a pattern compiled with options 0, it matches t as a whole; compiled
//   with any options, it matches t prepared with the same options wherever
//   preparation keeps the escapes (joined unpaired surrogates can swallow one).
// - As replacement text, it stands for t itself.
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include <unicode/uchar.h>

#include <scl/regex.h>

#include "fuzz_input.h"

namespace re = scl::regex;

namespace {

constexpr char16_t kSyntaxCharacters[] = u"-[]{}()*+?.,\\^$|#";

bool needs_backslash(char16_t c) {
  return std::u16string_view(kSyntaxCharacters).find(c) != std::u16string_view::npos ||
         u_hasBinaryProperty(c, UCHAR_WHITE_SPACE);
}

// Takes the backslashes out again, checking that exactly the characters that
// need one had one.
std::u16string unescape(const std::u16string& escaped) {
  std::u16string out;
  for (std::size_t i = 0; i < escaped.size(); ++i) {
    if (escaped[i] == u'\\') {
      FUZZ_CHECK(i + 1 < escaped.size() && needs_backslash(escaped[i + 1]));
      ++i;
    } else {
      FUZZ_CHECK(!needs_backslash(escaped[i]));
    }
    out.push_back(escaped[i]);
  }
  return out;
}

bool whole_match(const std::u16string& pattern, std::uint32_t options, const std::u16string& text) {
  try {
    const re::matcher_ptr handle = re::createMatcher(pattern, options);
    FUZZ_CHECK(handle != nullptr);
    return re::regex_search(handle, text, true);
  } catch (const re::regex_exception& e) {
    std::fprintf(stderr, "escaped text rejected: %s\n", e.what());
    FUZZ_CHECK(false);
  }
  return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::input in(data, size);
  const std::uint32_t options = in.u32();
  const std::u16string text = in.rest(fuzz::kMaxSubject);
  const std::u16string t = fuzz::cut(text);

  const std::u16string escaped = re::regex_escape(text);
  FUZZ_CHECK(escaped.find(u'\0') == std::u16string::npos);
  FUZZ_CHECK(unescape(escaped) == t);

  // A literal pattern cannot run away, but every search is screened all the same.
  const auto run = fuzz::screen(escaped, 0, t);
  const auto run_options = fuzz::screen(fuzz::cut(re::prepare_text(escaped, options)), options,
                                        fuzz::cut(re::prepare_text(t, options)));
  if (!run || !run_options) return fuzz::kReject;

  FUZZ_CHECK(whole_match(escaped, 0, t));
  // Preparing the escaped text gives the escaped prepared text, except where
  // removing marks joins unpaired surrogates: ICU's transliterator then takes
  // what follows them along (a backslash among it), as prepare_text does too.
  if (re::prepare_text(escaped, options) == re::regex_escape(re::prepare_text(t, options))) {
    FUZZ_CHECK(whole_match(escaped, options, t));
  }
  FUZZ_CHECK(re::regex_replace(std::u16string(u"x"), u"x", escaped, 0) == t);
  return 0;
}
