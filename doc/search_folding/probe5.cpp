#include <unicode/ucol.h>
#include <unicode/usearch.h>
#include <cstdio>
#include <string>
int main() {
  UErrorCode ec = U_ZERO_ERROR;
  UCollator* c = ucol_open("", &ec);
  ucol_setStrength(c, UCOL_PRIMARY);
  struct T {
    std::u16string q, t;
  } ts[] = {
      {u"\u0E4D\u0E32", u"\u0E4D\u0E32\u00AD"},
      {u"\u0E33", u"\u0E4D\u0E32\u00AD"},
      {u"\u0E33", u"\u0E4D\u0E32\u00AD\u00AD"},
      {u"\u0E33", u"\u0E4D\u0E32\u00AD\u0301\u00AD"},
      {u"\u0EB3", u"\u0ECD\u0EB2\u00AD"},
      {u"x\u0E33", u"x\u0E4D\u0E32\u00ADy"},
      {u"\u0E33x", u"\u0E4D\u0E32\u00ADx"},
      {u"\u0E33", u"\u0E4D\u0E32\u00ADx"},
      {u"\u0E33", u"\u0E4D\u0E32\u200B"},
      {u"\u0E33", u"\u0E4D\u0E32\u200D"},
      {u"\u0E33", u"\u0E33\u00AD"},
      {u"l", u"l\u00B7\u00AD"},
      {u"\u0F73", u"\u0F71\u0F72\u00AD"},
      {u"\u0E40\u0E01", u"\u0E40\u0E01\u00AD"},
      {u"\u0E01", u"\u0E01\u00AD"},
      {u"\u00C5", u"A\u030A\u00AD"},
      {u"\u0E33", std::u16string(u"\u0E4D\u0E32\u0000", 3)},
  };
  for (auto& t : ts) {
    UStringSearch* s =
        usearch_openFromCollator((const UChar*)t.q.data(), t.q.size(), (const UChar*)t.t.data(),
                                 t.t.size(), c, nullptr, &ec);
    printf("q=");
    for (auto ch : t.q) printf("%04X ", ch);
    printf(" t=");
    for (auto ch : t.t) printf("%04X ", ch);
    for (int p = usearch_first(s, &ec); p != USEARCH_DONE; p = usearch_next(s, &ec))
      printf(" [%d,%d)", p, p + usearch_getMatchedLength(s));
    printf("\n");
    usearch_close(s);
  }
}
