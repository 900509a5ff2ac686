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
  std::vector<std::u16string> X = {u"", u"\u0338", u"\u05B0", u"\u0E48", u"\u0301", u"\u200d"};
  std::vector<char16_t> Y = {0x0F72, 0x0E38, 0x0F74, 0x0F80, 0x0E31, 0x0E47, 0x0F7A, 0x0F84};
  std::vector<std::u16string> Q = {u"x", u"\u0E01"};
  for (auto& q : Q) {
    printf("q=%04X; columns Y (ccc):", q[0]);
    for (auto y : Y) printf(" %04X(%d)", y, u_getCombiningClass(y));
    printf("\n");
    for (auto& x : X) {
      printf("  X=%04X(%3d):", x.empty() ? 0 : x[0], x.empty() ? -1 : u_getCombiningClass(x[0]));
      for (auto y : Y) {
        std::u16string t = q + x + std::u16string(1, y);
        UStringSearch* s = usearch_openFromCollator(
            (const UChar*)q.data(), q.size(), (const UChar*)t.data(), t.size(), c, nullptr, &ec);
        std::string r;
        for (int p = usearch_first(s, &ec); p != USEARCH_DONE; p = usearch_next(s, &ec))
          r +=
              "[" + std::to_string(p) + "," + std::to_string(p + usearch_getMatchedLength(s)) + ")";
        printf(" %-9s", r.empty() ? "none" : r.c_str());
        usearch_close(s);
      }
      printf("\n");
    }
  }
  // last matched char with ccc != 0
  struct T {
    std::u16string q, t;
  } ts[] = {{u"\u0F68\u0F72", u"\u0F68\u0F72\u0F74"},
            {u"\u0F68\u0F74", u"\u0F68\u0F74\u0F72"},
            {u"\u0F68\u0F72", u"\u0F68\u0F72\u0F7A"},
            {u"\u0E01\u0E38", u"\u0E01\u0E38\u0E48"},
            {u"\u0F68\u0F72", u"\u0F68\u0F72\u0F71"}};
  for (auto& t : ts) {
    UStringSearch* s =
        usearch_openFromCollator((const UChar*)t.q.data(), t.q.size(), (const UChar*)t.t.data(),
                                 t.t.size(), c, nullptr, &ec);
    printf("q=");
    for (auto ch : t.q) printf("%04X ", ch);
    printf(" t=");
    for (auto ch : t.t) printf("%04X(%d) ", ch, u_getCombiningClass(ch));
    for (int p = usearch_first(s, &ec); p != USEARCH_DONE; p = usearch_next(s, &ec))
      printf(" [%d,%d)", p, p + usearch_getMatchedLength(s));
    printf("\n");
    usearch_close(s);
  }
}
