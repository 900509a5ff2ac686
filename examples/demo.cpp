// A tour of scl_regex: compiling patterns with options, what text preparation
// does, and how a rejected pattern is reported.
#include <cstdio>
#include <string>

#include <unicode/unistr.h>

#include <scl/regex.h>

namespace re = scl::regex;

namespace {

std::string utf8(const std::u16string& text) {
  std::string out;
  icu::UnicodeString(text.data(), static_cast<int32_t>(text.size())).toUTF8String(out);
  return out;
}

void show_option(const char* name, re::constants::syntax_option_type options,
                 const std::u16string& pattern) {
  re::matcher_ptr handle = re::createMatcher(pattern, options);
  std::printf("  %-34s pattern \"%s\" compiles as \"%s\" (handle %s, options 0x%x)\n", name,
              utf8(pattern).c_str(), utf8(re::prepare_text(pattern, options)).c_str(),
              handle ? "ready" : "empty", handle.get_deleter().options);
}

}  // namespace

int main() {
  std::puts("Compiling with each option bit:");
  show_option("0 (case-sensitive, no preparation)", 0, u"Caf\u00e9");
  show_option("case_insensitive", re::constants::case_insensitive, u"Caf\u00e9");
  show_option("normalize_nfc", re::constants::normalize_nfc, u"Cafe\u0301");
  show_option("ignore_diacritics", re::constants::ignore_diacritics, u"Caf\u00e9");

  std::puts("\nThe same preparation applies to subjects, so accents stop mattering:");
  const auto accents = re::constants::ignore_diacritics;
  const std::u16string subject = u"Un caf\u00e9 cr\u00e8me, s'il vous pla\u00eet";
  std::printf("  subject \"%s\" is searched as \"%s\"\n", utf8(subject).c_str(),
              utf8(re::prepare_text(subject, accents)).c_str());
  std::printf("  so the pattern \"cafe creme\" (prepared: \"%s\") finds it\n",
              utf8(re::prepare_text(u"cafe creme", accents)).c_str());

  std::puts("\nA rejected pattern:");
  try {
    (void)re::createMatcher(u"(unclosed", 0);
  } catch (const re::regex_exception& e) {
    std::printf("  createMatcher(\"(unclosed\") threw: %s [%s]\n", e.what(),
                e.getErrorCodeMnemonic().c_str());
  }
  auto expected = re::createExpectedMatcher(u"a{3,1}", 0);
  if (expected.has_error()) {
    std::printf("  createExpectedMatcher(\"a{3,1}\") returned: %s [%s]\n", expected.error().what(),
                expected.error().getErrorCodeMnemonic().c_str());
  }
  return 0;
}
