// Constructs the ICU engine directly and hands it to a regex.
#include <cstdio>
#include <memory>

#include <scl/regex.h>
#include <scl/regex/regex_impl_icu.h>

int main() {
  namespace re = scl::regex;
  re::regex words(u"\\w+", 0, std::make_unique<re::detail::regex_impl_icu>());
  words.reset(u"two words");
  int count = 0;
  for (re::regex_result m = words.match(); m.start != re::npos; m = words.match()) {
    ++count;
  }
  if (count != 2) return 1;
  std::puts("icu engine consumer ok");
  return 0;
}
