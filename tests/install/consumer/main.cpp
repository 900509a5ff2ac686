// Uses the installed headers and library; needs no ICU headers of its own.
#include <cstdio>
#include <cstring>

#include <scl/regex.h>

int main() {
  namespace re = scl::regex;
  re::matcher_ptr handle = re::createMatcher(u"cafe", re::constants::ignore_diacritics);
  if (!handle) return 1;
  if (re::prepare_text(u"caf\u00e9", re::constants::ignore_diacritics) != u"cafe") return 2;
  try {
    (void)re::createMatcher(u"(a", 0);
    return 3;
  } catch (const re::regex_exception& e) {
    if (std::strcmp(e.what(), "Incorrectly nested parentheses in regexp pattern.") != 0) return 4;
    if (e.getErrorCodeMnemonic() != "U_REGEX_MISMATCHED_PAREN") return 5;
  }
  auto expected = re::createExpectedMatcher(u"[", 0);
  if (!expected.has_error()) return 6;
  std::puts("consumer ok");
  return 0;
}
