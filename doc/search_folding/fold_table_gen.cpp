// fold_table_gen: computes the search fold of every code point from the running ICU's root
// collator, checks its properties, measures how long a run-time (lazy) build takes, and emits a
// compact serialized table (UCPTrie + UTF-16 pool + versions) as a C++ header.
//
// Build: g++ -O2 -std=c++17 fold_table_gen.cpp -o fold_table_gen $(pkg-config --cflags --libs
// icu-i18n icu-uc) Run:   ./fold_table_gen [out.h]   (default fold_table_data.h)
#include "fold_common.h"

#include <unicode/ubrk.h>
#include <unicode/ucptrie.h>
#include <unicode/umutablecptrie.h>
#include <unicode/uset.h>
#include <unicode/uversion.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <map>
#include <set>
#include <unordered_map>

using namespace foldproto;

static const UNormalizer2* g_nfc;

static std::string hex_cps(const std::u32string& s) {
  std::string r;
  char b[16];
  for (char32_t c : s) {
    snprintf(b, sizeof b, r.empty() ? "%04X" : " %04X", (unsigned)c);
    r += b;
  }
  return r.empty() ? "(nothing)" : r;
}
static std::u16string to16(const std::u32string& s) {
  std::u16string r;
  for (char32_t c : s) {
    if (c <= 0xffff)
      r += (char16_t)c;
    else {
      r += (char16_t)U16_LEAD(c);
      r += (char16_t)U16_TRAIL(c);
    }
  }
  return r;
}
static std::u32string to32(const UChar* s, int32_t n) {
  std::u32string r;
  for (int32_t i = 0; i < n;) {
    UChar32 c;
    U16_NEXT(s, i, n, c);
    r += (char32_t)c;
  }
  return r;
}
static std::u16string nfc(const std::u16string& s) {
  UErrorCode ec = U_ZERO_ERROR;
  std::u16string r(s.size() * 3 + 8, u'\0');
  int32_t n = unorm2_normalize(g_nfc, (const UChar*)s.data(), (int32_t)s.size(), (UChar*)r.data(),
                               (int32_t)r.size(), &ec);
  r.resize(U_SUCCESS(ec) ? n : 0);
  return r;
}

struct Folder {
  // per code point collation elements
  std::vector<uint32_t> start;  // size 0x110001
  std::vector<CE> ces;
  std::unordered_map<uint32_t, UChar32> rep;  // primary -> representative
  std::vector<std::u32string> fold;           // per code point

  std::u32string fold_text(const std::u16string& text) const {  // NFC, then per code point
    std::u16string n = nfc(text);
    std::u32string r;
    for (size_t i = 0; i < n.size();) {
      UChar32 c;
      U16_NEXT(n.data(), i, n.size(), c);
      r += fold[c];
    }
    return r;
  }
};

int main(int argc, char** argv) {
  const char* outPath = argc > 1 ? argv[1] : "fold_table_data.h";
  UErrorCode ec = U_ZERO_ERROR;
  g_nfc = unorm2_getNFCInstance(&ec);

  double t0 = now_ms();
  UCollator* coll = ucol_open("", &ec);
  UCollationElements* it = ucol_openElements(coll, nullptr, 0, &ec);
  double tOpen = now_ms() - t0;
  if (U_FAILURE(ec)) {
    fprintf(stderr, "open: %s\n", u_errorName(ec));
    return 1;
  }

  // ---------- 1. collation elements of every code point ----------
  Folder F;
  F.start.resize(0x110001);
  F.ces.reserve(1500000);
  std::vector<CE> tmp;
  double t1 = now_ms();
  for (UChar32 c = 0; c <= 0x10ffff; ++c) {
    F.start[c] = (uint32_t)F.ces.size();
    UChar b[2];
    int32_t n = 0;
    UBool err = false;
    U16_APPEND(b, n, 2, c, err);
    collation_elements(it, b, n, tmp, ec);
    F.ces.insert(F.ces.end(), tmp.begin(), tmp.end());
  }
  F.start[0x110000] = (uint32_t)F.ces.size();
  double tAllCE = now_ms() - t1;
  if (U_FAILURE(ec)) {
    fprintf(stderr, "ces: %s\n", u_errorName(ec));
    return 1;
  }
  auto nce = [&](UChar32 c) { return F.start[c + 1] - F.start[c]; };
  auto ce = [&](UChar32 c, uint32_t k) { return F.ces[F.start[c] + k]; };

  printf("== ICU %s, Unicode ", U_ICU_VERSION);
  UVersionInfo uv;
  u_getUnicodeVersion(uv);
  UVersionInfo cv;
  ucol_getVersion(coll, cv);
  printf("%d.%d.%d, root collator version %d.%d.%d.%d\n", uv[0], uv[1], uv[2], cv[0], cv[1], cv[2],
         cv[3]);
  printf(
      "ucol_open(root)+openElements: %.3f ms; CEs of all 0x110000 code points: %.1f ms (%zu CEs)\n",
      tOpen, tAllCE, F.ces.size());
  {
    // what "common" looks like through CollationElementIterator
    UChar a = 'a';
    ucol_setText(it, &a, 1, &ec);
    int32_t o = ucol_next(it, &ec);
    printf("order('a') = %08X: primaryOrder %04X secondaryOrder %02X tertiaryOrder %02X\n",
           (unsigned)o, ucol_primaryOrder(o), ucol_secondaryOrder(o), ucol_tertiaryOrder(o));
    UChar h = 0x4e00;
    ucol_setText(it, &h, 1, &ec);
    o = ucol_next(it, &ec);
    int32_t o2 = ucol_next(it, &ec);
    printf("order(U+4E00) = %08X %08X (second is a continuation: %d)\n", (unsigned)o, (unsigned)o2,
           is_continuation(o2));
    UChar d = 0xd800;
    collation_elements(it, &d, 1, tmp, ec);
    printf("lone surrogate D800:");
    for (auto& e : tmp) printf(" [%08X %04X %04X]", e.p, e.s, e.t);
    UChar fffd = 0xfffd;
    collation_elements(it, &fffd, 1, tmp, ec);
    printf("   U+FFFD:");
    for (auto& e : tmp) printf(" [%08X %04X %04X]", e.p, e.s, e.t);
    printf("\n");
  }

  // ---------- 2. representatives ----------
  std::set<uint32_t> allPrim;
  std::unordered_map<uint32_t, UChar32> anyRep;  // smallest cp whose single CE has this primary
  for (UChar32 c = 0; c <= 0x10ffff; ++c) {
    if (U_IS_SURROGATE(c)) continue;
    for (uint32_t k = 0; k < nce(c); ++k)
      if (ce(c, k).p) allPrim.insert(ce(c, k).p);
    if (nce(c) == 1 && ce(c, 0).p) {
      CE e = ce(c, 0);
      if (e.s == kCommon16 && e.t == kCommon16) F.rep.emplace(e.p, c);
      anyRep.emplace(e.p, c);
    }
  }
  std::vector<uint32_t> noRep;
  for (uint32_t p : allPrim)
    if (!F.rep.count(p)) noRep.push_back(p);
  printf("\n== primaries: %zu distinct; %zu with a common-weight representative; %zu without\n",
         allPrim.size(), F.rep.size(), noRep.size());
  int kanaRule = 0, noneAtAll = 0;
  for (uint32_t p : noRep) {
    auto a = anyRep.find(p);
    if (a != anyRep.end()) {
      ++kanaRule;
      // list the single-CE code points with this primary (for the report)
      printf("  p=%08X -> U+%04X", p, a->second);
      CE e = ce(a->second, 0);
      printf(" (s=%04X t=%04X)  others:", e.s, e.t);
      int shown = 0;
      for (UChar32 c = a->second + 1; c <= 0xffff && shown < 4; ++c)
        if (nce(c) == 1 && ce(c, 0).p == p) {
          printf(" U+%04X(t=%04X)", c, ce(c, 0).t);
          ++shown;
        }
      printf("\n");
      F.rep.emplace(p, a->second);
    } else {
      ++noneAtAll;
      printf("  p=%08X has no single-CE code point at all\n", p);
    }
  }
  printf("kana rule applied to %d primaries, %d primaries have no single-CE code point\n", kanaRule,
         noneAtAll);

  // ---------- 3. folds ----------
  F.fold.resize(0x110000);
  long cntSelf = 0, cntOne = 0, cntMany = 0, cntNone = 0;
  long aSelf = 0, aOne = 0, aMany = 0, aNone = 0;
  size_t maxLen = 0;
  for (UChar32 c = 0; c <= 0x10ffff; ++c) {
    std::u32string f;
    if (U_IS_SURROGATE(c))
      f = (char32_t)c;
    else
      for (uint32_t k = 0; k < nce(c); ++k) {
        uint32_t p = ce(c, k).p;
        if (!p) continue;
        auto r = F.rep.find(p);
        if (r == F.rep.end()) {
          printf("BUG: no rep for %08X (U+%04X)\n", p, c);
          return 1;
        }
        f += (char32_t)r->second;
      }
    maxLen = std::max(maxLen, to16(f).size());
    bool assigned = u_charType(c) != U_UNASSIGNED;
    if (f.size() == 1 && f[0] == (char32_t)c) {
      ++cntSelf;
      aSelf += assigned;
    } else if (f.empty()) {
      ++cntNone;
      aNone += assigned;
    } else if (f.size() == 1) {
      ++cntOne;
      aOne += assigned;
    } else {
      ++cntMany;
      aMany += assigned;
    }
    F.fold[c] = std::move(f);
  }
  printf("\n== fold categories (all code points / assigned):\n");
  printf(
      "  unchanged %ld / %ld\n  one other code point %ld / %ld\n  several %ld / %ld\n  nothing %ld "
      "/ %ld\n",
      cntSelf, aSelf, cntOne, aOne, cntMany, aMany, cntNone, aNone);
  printf("  longest fold: %zu UTF-16 units\n", maxLen);

  // examples
  const char* ex[] = {"A",
                      "Z",
                      "\xc5\x81",
                      "\xc3\xb8",
                      "\xc3\x9f",
                      "\xc3\xa6",
                      "\xef\xac\x81",
                      "\xef\xbc\xb5",
                      "\xe2\x84\xa2",
                      "\xd9\xa1",
                      "\xcc\x81",
                      "\xc2\xad",
                      "\xe2\x80\x8d",
                      "\xea\xb0\x80",
                      "\xe4\xb8\x80",
                      "\xe3\x81\x8b",
                      "\xe3\x81\x8c",
                      "\xe3\x82\xab",
                      "\xef\xbd\xb6",
                      "\xe3\x81\x82",
                      "\xe3\x81\x81",
                      "\xef\xbe\x9e",
                      "\xe3\x82\x9b",
                      "\xc4\xb1",
                      "\xd0\xb9",
                      "\xe0\xa5\x8d",
                      "\xe0\xb8\xb3",
                      "\xe0\xbd\xb3",
                      "\xc2\xb7",
                      "\xc5\x80",
                      "\xe2\x80\x80"};
  printf("\n== examples\n");
  for (const char* e : ex) {
    UChar32 c;
    int32_t i = 0;
    U8_NEXT((const uint8_t*)e, i, (int32_t)strlen(e), c);
    std::u32string f = F.fold[c];
    std::u16string f16 = to16(f);
    std::string u8;
    for (char32_t x : f) {
      char b[5];
      int32_t j = 0;
      UBool er = false;
      U8_APPEND((uint8_t*)b, j, 4, x, er);
      u8.append(b, j);
    }
    printf("  U+%04X %s -> %s [%s]\n", c, e, hex_cps(f).c_str(), u8.c_str());
  }
  {
    // U+0000 and a lone surrogate
    printf("  U+0000 -> %s; U+DC00 -> %s\n", hex_cps(F.fold[0]).c_str(),
           hex_cps(F.fold[0xdc00]).c_str());
  }

  // ---------- 4. property checks ----------
  UCollator* prim = ucol_safeClone(coll, nullptr, nullptr, &ec);
  ucol_setStrength(prim, UCOL_PRIMARY);
  long bad = 0, checked = 0;
  double t4 = now_ms();
  for (UChar32 c = 0; c <= 0x10ffff; ++c) {
    if (U_IS_SURROGATE(c) || u_charType(c) == U_UNASSIGNED) continue;
    ++checked;
    UChar b[2];
    int32_t n = 0;
    UBool err = false;
    U16_APPEND(b, n, 2, c, err);
    std::u16string f = to16(F.fold[c]);
    if (ucol_strcoll(prim, b, n, (const UChar*)f.data(), (int32_t)f.size()) != UCOL_EQUAL) {
      if (bad++ < 10) printf("  NOT primary-equal: U+%04X vs %s\n", c, hex_cps(F.fold[c]).c_str());
    }
  }
  printf(
      "\n== primary equality fold(c) == c: %ld assigned code points checked, %ld failures (%.0f "
      "ms)\n",
      checked, bad, now_ms() - t4);
  long nonIdem = 0, nonIdemCp = 0;
  for (UChar32 c = 0; c <= 0x10ffff; ++c) {
    UChar b[2];
    int32_t n = 0;
    UBool err = false;
    U16_APPEND(b, n, 2, c, err);
    std::u32string f1 = U_IS_SURROGATE(c) ? std::u32string(1, (char32_t)c)
                                          : F.fold_text(std::u16string((const char16_t*)b, n));
    std::u32string f2 = U_IS_SURROGATE(c) ? f1 : F.fold_text(to16(f1));
    if (f2 != f1) {
      if (nonIdem++ < 10)
        printf("  not idempotent: U+%04X -> %s -> %s\n", c, hex_cps(f1).c_str(),
               hex_cps(f2).c_str());
    }
    if (!U_IS_SURROGATE(c) && F.fold_text(to16(F.fold[c])) != F.fold[c]) ++nonIdemCp;
  }
  printf(
      "== idempotence on text, fold(fold(c)) == fold(c) with fold = NFC + per code point: %ld "
      "failures over all code points\n",
      nonIdem);
  printf(
      "   (table entries of code points that NFC never lets through may differ: %ld, e.g. "
      "U+0F73)\n",
      nonIdemCp);
  {
    // distinct primaries other than implicit ones (Han, unassigned)
    std::set<uint32_t> explicitPrim;
    for (UChar32 c = 0; c <= 0x10ffff; ++c) {
      if (U_IS_SURROGATE(c) || u_charType(c) == U_UNASSIGNED ||
          u_hasBinaryProperty(c, UCHAR_UNIFIED_IDEOGRAPH))
        continue;
      for (uint32_t k = 0; k < nce(c); ++k)
        if (ce(c, k).p) explicitPrim.insert(ce(c, k).p);
    }
    printf("== distinct primaries of assigned non-ideograph code points: %zu\n",
           explicitPrim.size());
  }
  // representatives that are not NFC-stable
  {
    int nonNfcRep = 0;
    std::string list;
    for (auto& [p, r] : F.rep) {
      UChar b[2];
      int32_t n = 0;
      UBool err = false;
      U16_APPEND(b, n, 2, r, err);
      if (!unorm2_isNormalized(g_nfc, b, n, &ec)) {
        ++nonNfcRep;
        char t[16];
        snprintf(t, sizeof t, " U+%04X", r);
        list += t;
      }
    }
    printf("== representatives that are not NFC: %d:%s\n", nonNfcRep, list.c_str());
  }
  // pairs of representatives that NFC composes (folded text must stay stable under NFC)
  {
    long comp = 0, compBad = 0;
    for (UChar32 x = 0; x <= 0x10ffff; ++x) {
      UChar d[8];
      int32_t dl = unorm2_getRawDecomposition(g_nfc, x, d, 8, &ec);
      if (dl <= 0) continue;
      std::u32string dd = to32(d, dl);
      if (dd.size() != 2) continue;
      if (F.fold[dd[0]] == std::u32string(1, dd[0]) && F.fold[dd[1]] == std::u32string(1, dd[1])) {
        std::u16string s = to16(dd);
        if (nfc(s) == s) continue;  // composition excluded
        ++comp;
        if (F.fold_text(s) != dd) {
          if (compBad++ < 10)
            printf("  rep pair %s composes to U+%04X, refolds to %s\n", hex_cps(dd).c_str(), x,
                   hex_cps(F.fold_text(s)).c_str());
        }
      }
    }
    printf("== representative pairs that NFC composes: %ld, of which refold differently: %ld\n",
           comp, compBad);
  }

  // ---------- 5. contractions ----------
  USet* con = uset_openEmpty();
  USet* exp = uset_openEmpty();
  ucol_getContractionsAndExpansions(coll, con, exp, true, &ec);
  std::vector<std::u32string> unsettled;  // contractions that NFC text can contain as is
  printf("\n== root contractions: %d strings (ucol_getContractionsAndExpansions)\n",
         uset_size(con));
  std::map<std::string, int> classes;
  {
    int n = uset_getItemCount(con);
    for (int i = 0; i < n; ++i) {
      UChar32 a, b;
      UChar str[64];
      int32_t len = uset_getItem(con, i, &a, &b, str, 64, &ec);
      if (len <= 0) continue;
      std::u16string s((const char16_t*)str, len);
      std::u32string s32 = to32(str, len);
      if (s32[0] == 0xfdd1) {
        classes["U+FDD1 + x (index characters; noncharacter, ignored)"]++;
        continue;
      }
      // collator's own primaries of s
      collation_elements(it, str, len, tmp, ec);
      std::u32string cf;
      for (auto& e : tmp)
        if (e.p) cf += (char32_t)F.rep.at(e.p);
      std::u16string n16 = nfc(s);
      bool settled = n16 != s;
      std::u32string pf = F.fold_text(s);
      bool same = pf == cf;
      if (!settled) unsettled.push_back(s32);
      if (!settled || !same) {
        printf("  %-26s NFC %-9s collator %-22s per-cp %-22s %s\n", hex_cps(s32).c_str(),
               settled ? "composes" : "keeps", hex_cps(cf).c_str(), hex_cps(pf).c_str(),
               same ? "same primaries, reordered? no"
                    : (std::u32string(cf).size() == pf.size() &&
                               std::is_permutation(cf.begin(), cf.end(), pf.begin())
                           ? "SAME SET, DIFFERENT ORDER"
                           : "DIFFERENT"));
      } else {
        classes["NFC composes, per-cp fold of the composed form agrees"]++;
      }
    }
  }
  for (auto& [k, v] : classes) printf("  %d: %s\n", v, k.c_str());

  // ---------- 6. table ----------
  double t6 = now_ms();
  std::u16string pool;
  std::map<std::u16string, uint32_t> poolIdx;
  UMutableCPTrie* mt = umutablecptrie_open(0, 0, &ec);
  std::set<UChar32> starters;
  for (auto& s : unsettled)
    if (s[0] != 0x4c && s[0] != 0x6c) starters.insert((UChar32)s[0]);
  // Indic conjunct behaviour of ICU's character break iterator, probed from ICU itself:
  // a linking consonant C has no break in "KA VIRAMA C"; a virama V has no break in "KA V KA".
  std::set<UChar32> viramas, linkCons;
  {
    UBreakIterator* bi = ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &ec);
    for (UChar32 c = 0; c <= 0x10ffff; ++c) {
      if (U_IS_SURROGATE(c)) continue;
      uint32_t gc = gclass_of(c);
      if (gc != G_OTHER && gc != G_EXTEND) continue;
      UChar b[6];
      int32_t n = 0;
      UBool er = false;
      if (gc == G_OTHER) {
        b[n++] = 0x915;
        b[n++] = 0x94d;
        U16_APPEND(b, n, 6, c, er);
        ubrk_setText(bi, b, n, &ec);
        if (!ubrk_isBoundary(bi, 2)) linkCons.insert(c);
      } else {
        b[n++] = 0x915;
        U16_APPEND(b, n, 6, c, er);
        int32_t at = n;
        b[n++] = 0x915;
        ubrk_setText(bi, b, n, &ec);
        if (!ubrk_isBoundary(bi, at)) viramas.insert(c);
      }
    }
    ubrk_close(bi);
    std::string vl;
    for (UChar32 c : viramas) {
      char t[12];
      snprintf(t, sizeof t, " U+%04X", c);
      vl += t;
    }
    printf("\n== ICU character breaks: %zu viramas (%s), %zu linking consonants\n", viramas.size(),
           vl.c_str(), linkCons.size());
  }
  std::map<uint32_t, long> distinctVals;
  long nonDefault = 0;
  for (UChar32 c = 0; c <= 0x10ffff; ++c) {
    const std::u32string& f = F.fold[c];
    uint32_t v;
    if (f.size() == 1 && f[0] == (char32_t)c)
      v = K_SELF << 30;
    else if (f.empty())
      v = K_NOTHING << 30;
    else if (f.size() == 1)
      v = K_DELTA << 30 | (((uint32_t)((int32_t)f[0] - c)) & kDeltaMask);
    else {
      std::u16string f16 = to16(f);
      auto pi = poolIdx.find(f16);
      uint32_t off;
      if (pi != poolIdx.end())
        off = pi->second;
      else {
        // reuse an existing occurrence inside the pool if there is one
        size_t at = pool.find(f16);
        if (at == std::u16string::npos) {
          at = pool.size();
          pool += f16;
        }
        off = (uint32_t)at;
        poolIdx.emplace(f16, off);
      }
      v = K_STRING << 30 | off << 5 | (uint32_t)f16.size();
    }
    uint32_t gc = gclass_of(c);
    if (gc == G_EXTEND && viramas.count(c)) gc = G_VIRAMA;
    if (gc == G_OTHER && linkCons.count(c)) gc = G_LINKCONS;
    v |= gc << kGShift;
    if (!U_IS_SURROGATE(c) && u_getIntPropertyValue(c, UCHAR_NFC_QUICK_CHECK) != UNORM_YES)
      v |= 1u << kNfcShift;
    if (starters.count(c))
      v |= (u_hasBinaryProperty(c, UCHAR_LOGICAL_ORDER_EXCEPTION) ? 1u : 3u) << kCtxShift;
    if (c == 0xb7) v |= 2u << kCtxShift;
    distinctVals[v]++;
    if (v) {
      umutablecptrie_set(mt, c, v, &ec);
      ++nonDefault;
    }
  }
  if (pool.size() >= (1u << 17)) {
    printf("pool too large\n");
    return 1;
  }
  UMutableCPTrie* mt2 = umutablecptrie_clone(mt, &ec);  // buildImmutable resets the mutable trie
  UMutableCPTrie* mtKeep = umutablecptrie_clone(mt, &ec);
  UCPTrie* trieFast =
      umutablecptrie_buildImmutable(mt, UCPTRIE_TYPE_FAST, UCPTRIE_VALUE_BITS_32, &ec);
  double tTrie = now_ms() - t6;
  UErrorCode pe = U_ZERO_ERROR;
  int32_t sizeFast = ucptrie_toBinary(trieFast, nullptr, 0, &pe);
  UCPTrie* trieSmall =
      umutablecptrie_buildImmutable(mt2, UCPTRIE_TYPE_SMALL, UCPTRIE_VALUE_BITS_32, &ec);
  pe = U_ZERO_ERROR;
  int32_t sizeSmall = ucptrie_toBinary(trieSmall, nullptr, 0, &pe);
  // 16-bit variant: values are indexes into a table of distinct 32-bit values
  std::map<uint32_t, uint32_t> vidx;
  for (auto& [v, n] : distinctVals) vidx.emplace(v, (uint32_t)vidx.size());
  UMutableCPTrie* mt3 = umutablecptrie_open(vidx.at(0), 0, &ec);
  for (UChar32 c = 0; c <= 0x10ffff; ++c) {
    uint32_t v = umutablecptrie_get(mtKeep, c);
    if (v) umutablecptrie_set(mt3, c, vidx.at(v), &ec);
  }
  UCPTrie* trie16 =
      umutablecptrie_buildImmutable(mt3, UCPTRIE_TYPE_FAST, UCPTRIE_VALUE_BITS_16, &ec);
  pe = U_ZERO_ERROR;
  int32_t size16 = ucptrie_toBinary(trie16, nullptr, 0, &pe);
  printf(
      "\n== table: %ld code points with a non-default value, %zu distinct values, pool %zu UTF-16 "
      "units (%zu bytes), %zu distinct strings\n",
      nonDefault, distinctVals.size(), pool.size(), pool.size() * 2, poolIdx.size());
  printf(
      "  UCPTrie fast/32-bit: %d bytes; small/32-bit: %d bytes; fast/16-bit index: %d bytes + %zu "
      "x 4 value table\n",
      sizeFast, sizeSmall, size16, vidx.size());
  printf("  mutable trie fill + fast build: %.1f ms; error %s\n", tTrie, u_errorName(ec));

  // ---------- 7. lazy build estimate ----------
  // Candidate set for a run-time build: assigned code points except Unified_Ideograph, Hangul
  // syllables, surrogates and private use (Hangul folds algorithmically through its jamo;
  // ideographs, private use and unassigned code points have implicit primaries of their own and
  // fold to themselves), closed under NFKD so that ideographs named by compatibility characters
  // are there to be representatives.
  {
    const UChar* candPat =
        u"[[:^Cn:]-[:Unified_Ideograph:]-[:Hangul_Syllable_Type=LV:]-[:Hangul_Syllable_Type=LVT:]-["
        u":Cs:]-[:Co:]]";
    USet* cand = uset_openPattern(candPat, -1, &ec);
    printf("\n== lazy build: candidate set has %d code points before closure (%s)\n",
           uset_size(cand), u_errorName(ec));
    long outsideBad = 0;
    for (UChar32 c = 0; c <= 0x10ffff; ++c) {
      if (uset_contains(cand, c) || U_IS_SURROGATE(c)) continue;
      if (c >= 0xac00 && c <= 0xd7a3) continue;
      if (!(F.fold[c].size() == 1 && F.fold[c][0] == (char32_t)c)) {
        if (outsideBad++ < 5)
          printf("  outside candidate set but not self: U+%04X -> %s\n", c,
                 hex_cps(F.fold[c]).c_str());
      }
    }
    printf(
        "  code points outside the set (Hangul syllables aside) that do not fold to themselves: "
        "%ld\n",
        outsideBad);
    for (int run = 0; run < 3; ++run) {
      double a = now_ms();
      UErrorCode e2 = U_ZERO_ERROR;
      UCollator* c2 = ucol_open("", &e2);
      UCollationElements* it2 = ucol_openElements(c2, nullptr, 0, &e2);
      const UNormalizer2* nfkc = unorm2_getNFKCInstance(&e2);
      USet* cs = uset_openPattern(candPat, -1, &e2);
      // NFKD closure
      {
        USet* add = uset_openEmpty();
        int nr = uset_getItemCount(cs);
        for (int i = 0; i < nr; ++i) {
          UChar32 lo, hi;
          UChar s[4];
          uset_getItem(cs, i, &lo, &hi, s, 4, &e2);
          for (UChar32 c = lo; c <= hi; ++c) {
            UChar d[32];
            int32_t dl = unorm2_getRawDecomposition(nfkc, c, d, 32, &e2);
            if (dl <= 0) {
              e2 = U_ZERO_ERROR;
              continue;
            }
            for (int32_t j = 0; j < dl;) {
              UChar32 x;
              U16_NEXT(d, j, dl, x);
              if (!uset_contains(cs, x)) uset_add(add, x);
            }
          }
        }
        uset_addAll(cs, add);
        uset_close(add);
      }
      double b = now_ms();
      std::vector<UChar32> cps;
      cps.reserve(42000);
      std::vector<uint32_t> st;
      st.reserve(42001);
      std::vector<CE> flat;
      flat.reserve(60000);
      int nr = uset_getItemCount(cs);
      std::vector<CE> t2;
      for (int i = 0; i < nr; ++i) {
        UChar32 lo, hi;
        UChar s[4];
        uset_getItem(cs, i, &lo, &hi, s, 4, &e2);
        for (UChar32 c = lo; c <= hi; ++c) {
          UChar bb[2];
          int32_t n = 0;
          UBool er = false;
          U16_APPEND(bb, n, 2, c, er);
          collation_elements(it2, bb, n, t2, e2);
          cps.push_back(c);
          st.push_back((uint32_t)flat.size());
          flat.insert(flat.end(), t2.begin(), t2.end());
        }
      }
      st.push_back((uint32_t)flat.size());
      double d = now_ms();
      std::unordered_map<uint32_t, UChar32> rp;
      rp.reserve(40000);
      for (size_t i = 0; i < cps.size(); ++i)
        if (st[i + 1] - st[i] == 1) {
          const CE& x = flat[st[i]];
          if (x.p && x.s == kCommon16 && x.t == kCommon16) rp.emplace(x.p, cps[i]);
        }
      for (size_t i = 0; i < cps.size(); ++i)
        if (st[i + 1] - st[i] == 1 && flat[st[i]].p) rp.emplace(flat[st[i]].p, cps[i]);
      UMutableCPTrie* m = umutablecptrie_open(0, 0, &e2);
      std::u16string pl;
      pl.reserve(40000);
      long mism = 0;
      for (size_t i = 0; i < cps.size(); ++i) {
        UChar32 c = cps[i];
        char16_t f16[40];
        int fl = 0;
        int ncp = 0;
        UChar32 first = -1;
        for (uint32_t k = st[i]; k < st[i + 1]; ++k) {
          if (!flat[k].p) continue;
          auto r = rp.find(flat[k].p);
          UChar32 x = r == rp.end() ? 0xfffd : r->second;
          if (first < 0) first = x;
          ++ncp;
          if (x <= 0xffff)
            f16[fl++] = (char16_t)x;
          else {
            f16[fl++] = (char16_t)U16_LEAD(x);
            f16[fl++] = (char16_t)U16_TRAIL(x);
          }
        }
        uint32_t val;
        if (ncp == 1 && first == c)
          val = 0;
        else if (ncp == 0)
          val = K_NOTHING << 30;
        else if (ncp == 1)
          val = K_DELTA << 30 | (((uint32_t)(first - c)) & kDeltaMask);
        else {
          val = K_STRING << 30 | (uint32_t)pl.size() << 5 | (uint32_t)fl;
          pl.append(f16, fl);
        }
        if (run == 0) {
          std::u32string f;
          for (int j = 0; j < fl;) {
            UChar32 x;
            U16_NEXT(f16, j, fl, x);
            f += (char32_t)x;
          }
          if (f != F.fold[c]) {
            if (mism++ < 5)
              printf("  lazy mismatch U+%04X: %s vs %s\n", c, hex_cps(f).c_str(),
                     hex_cps(F.fold[c]).c_str());
          }
        }
        if (val) umutablecptrie_set(m, c, val, &e2);
      }
      double e0 = now_ms();
      UCPTrie* tr = umutablecptrie_buildImmutable(m, UCPTRIE_TYPE_FAST, UCPTRIE_VALUE_BITS_32, &e2);
      double e = now_ms();
      printf(
          "  run %d: collator+set+NFKD closure %.2f ms, CEs of %zu code points %.2f ms, reps+folds "
          "%.2f ms, trie build %.2f ms, total %.2f ms%s (%s)\n",
          run, b - a, cps.size(), d - b, e0 - d, e - e0, e - a,
          run == 0 ? (mism ? "; MISMATCHES vs full build" : "; identical to full build") : "",
          u_errorName(e2));
      ucptrie_close(tr);
      umutablecptrie_close(m);
      uset_close(cs);
      ucol_closeElements(it2);
      ucol_close(c2);
    }
  }

  // ---------- 8. emit ----------
  {
    std::vector<uint8_t> bin(sizeFast);
    UErrorCode e3 = U_ZERO_ERROR;
    ucptrie_toBinary(trieFast, bin.data(), sizeFast, &e3);
    FILE* o = fopen(outPath, "w");
    fprintf(o,
            "// Generated by fold_table_gen from ICU %s; do not edit.\n// Search fold table: "
            "UCPTrie (fast, 32-bit values; layout in fold_common.h) + UTF-16 pool.\n#pragma "
            "once\n#include <cstdint>\nnamespace foldproto_data {\n",
            U_ICU_VERSION);
    UVersionInfo iv;
    u_getVersion(iv);
    fprintf(o, "constexpr uint8_t kIcuVersion[4] = {%d, %d, %d, %d};\n", iv[0], iv[1], iv[2],
            iv[3]);
    fprintf(o, "constexpr uint8_t kUnicodeVersion[4] = {%d, %d, %d, %d};\n", uv[0], uv[1], uv[2],
            uv[3]);
    fprintf(o, "constexpr uint8_t kCollatorVersion[4] = {%d, %d, %d, %d};\n", cv[0], cv[1], cv[2],
            cv[3]);
    fprintf(o, "constexpr int32_t kTrieSize = %d;\nalignas(16) inline const uint8_t kTrie[%d] = {",
            sizeFast, sizeFast);
    for (int i = 0; i < sizeFast; ++i) fprintf(o, "%s%u,", i % 32 ? "" : "\n", bin[i]);
    fprintf(o, "};\ninline const char16_t kPool[%zu] = {", pool.size() + 1);
    for (size_t i = 0; i < pool.size(); ++i)
      fprintf(o, "%s0x%X,", i % 16 ? "" : "\n", (unsigned)pool[i]);
    fprintf(o, "0};\n// Root contractions that NFC leaves as they are (first two code points).\n");
    std::set<std::pair<UChar32, UChar32>> pairs;
    for (auto& s : unsettled) pairs.emplace(s[0], s[1]);
    fprintf(o, "inline const uint32_t kContractionPairs[%zu][2] = {", pairs.size());
    for (auto& [a, b] : pairs) fprintf(o, "{0x%X,0x%X},", a, b);
    fprintf(o, "};\nconstexpr int kContractionPairCount = %zu;\n", pairs.size());
    // Contractions that NFC leaves alone, other than prevowel + consonant and l/L + middle dot:
    // {length, cp1, cp2, cp3, fold1, fold2} (fold from the collator's own primaries).
    std::vector<std::array<uint32_t, 6>> cf;
    for (auto& s : unsettled) {
      if (u_hasBinaryProperty(s[0], UCHAR_LOGICAL_ORDER_EXCEPTION) || s[0] == 0x4c || s[0] == 0x6c)
        continue;
      std::u16string s16 = to16(s);
      collation_elements(it, (const UChar*)s16.data(), (int32_t)s16.size(), tmp, ec);
      std::u32string f;
      for (auto& e : tmp)
        if (e.p) f += (char32_t)F.rep.at(e.p);
      if (f.size() > 2 || s.size() > 3) {
        printf("unexpected contraction shape %s\n", hex_cps(s).c_str());
        continue;
      }
      cf.push_back({(uint32_t)s.size(), (uint32_t)s[0], (uint32_t)s[1],
                    s.size() > 2 ? (uint32_t)s[2] : 0u, f.size() > 0 ? (uint32_t)f[0] : 0u,
                    f.size() > 1 ? (uint32_t)f[1] : 0u});
      printf("  contextual contraction fold: %s -> %s\n", hex_cps(s).c_str(), hex_cps(f).c_str());
    }
    fprintf(o,
            "// {length, cp1, cp2, cp3, fold1, fold2}\ninline const uint32_t "
            "kContractionFolds[%zu][6] = {",
            cf.size());
    for (auto& x : cf)
      fprintf(o, "{%u,0x%X,0x%X,0x%X,0x%X,0x%X},", x[0], x[1], x[2], x[3], x[4], x[5]);
    fprintf(o, "};\nconstexpr int kContractionFoldCount = %zu;\n}  // namespace foldproto_data\n",
            cf.size());
    fclose(o);
    printf("\n== wrote %s (trie %d bytes, pool %zu bytes, %zu contraction pairs)\n", outPath,
           sizeFast, pool.size() * 2, pairs.size());
    // load time from the serialized form
    double a = now_ms();
    UErrorCode e4 = U_ZERO_ERROR;
    int32_t actual = 0;
    UCPTrie* t = ucptrie_openFromBinary(UCPTRIE_TYPE_FAST, UCPTRIE_VALUE_BITS_32, bin.data(),
                                        sizeFast, &actual, &e4);
    double b = now_ms();
    printf("  ucptrie_openFromBinary: %.4f ms (%s)\n", b - a, u_errorName(e4));
    // verify the serialized table against the folds
    long vbad = 0;
    for (UChar32 c = 0; c <= 0x10ffff; ++c) {
      uint32_t v = ucptrie_get(t, c);
      std::u32string f;
      switch (v_kind(v)) {
        case K_SELF:
          f = (char32_t)c;
          break;
        case K_DELTA:
          f = (char32_t)(c + v_delta(v));
          break;
        case K_NOTHING:
          break;
        case K_STRING:
          f = to32((const UChar*)pool.data() + v_off(v), v_len(v));
          break;
      }
      if (f != F.fold[c]) ++vbad;
    }
    printf("  serialized table round trip: %ld mismatches\n", vbad);
    ucptrie_close(t);
  }
  return 0;
}
