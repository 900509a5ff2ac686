#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/usearch.h>
#include <cstdio>
#include <string>
#include <vector>
int main() {
  UErrorCode ec = U_ZERO_ERROR;
  UCollator* c = ucol_open("", &ec);
  ucol_setStrength(c, UCOL_PRIMARY);
  std::vector<std::u16string> X = {
      u"",       u"\u200d", u"\u200c",       u"\ufe0f",       u"\u0301", u"\u0338", u"\u034f",
      u"\u00ad", u"\u0000", u"\u0301\u200d", u"\u200d\u0301", u"\u0E48", u"\u05B0"};
  std::vector<std::u16string> Y = {u"",       u"y",          u"\u0F72", u"\u093E",
                                   u"\u0903", u"\U0001F4BB", u"\u0301"};
  UStringSearch* s = nullptr;
  printf("rows: ignorable X after 'x' (q='x'), columns: following Y\n");
  for (auto& x : X) {
    for (auto& x0 : x) printf("%04X ", x0);
    if (x.empty()) printf("none ");
    printf(":");
    for (auto& y : Y) {
      std::u16string t = u"x" + x + y;
      std::u16string q = u"x";
      s = usearch_openFromCollator((const UChar*)q.data(), q.size(), (const UChar*)t.data(),
                                   t.size(), c, nullptr, &ec);
      std::string r;
      for (int p = usearch_first(s, &ec); p != USEARCH_DONE; p = usearch_next(s, &ec))
        r += "[" + std::to_string(p) + "," + std::to_string(p + usearch_getMatchedLength(s)) + ")";
      printf("  Y=%04X:%-7s", y.empty() ? 0 : y[0], r.empty() ? "none" : r.c_str());
      usearch_close(s);
    }
    printf("\n");
  }
}
