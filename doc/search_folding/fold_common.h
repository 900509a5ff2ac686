// Shared helpers for the search-fold prototype (table generator and search).
#pragma once
#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/ucoleitr.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace foldproto {

inline double now_ms() {
  using namespace std::chrono;
  return duration<double, std::milli>(steady_clock::now().time_since_epoch()).count();
}

// One collation element rebuilt from CollationElementIterator's 32-bit orders.
// ICU 72 splits a 64-bit CE (p:32 | s:16 | t:16, t with the two case bits on top)
// into a first half  (p>>16)<<16 | (s>>8)<<8 | (t>>8)
// and, when p, s or t have non-zero low bytes, a continuation half
// (p&0xffff)<<16 | (s&0xff)<<8 | (t&0x3f) | 0xc0.
struct CE {
  uint32_t p;
  uint16_t s, t;
};

inline bool is_continuation(int32_t o) { return o != UCOL_NULLORDER && (o & 0xc0) == 0xc0; }

// Collation elements of s (UTF-16) with the given element iterator.
inline void collation_elements(UCollationElements* it, const UChar* s, int32_t n,
                               std::vector<CE>& out, UErrorCode& ec) {
  out.clear();
  ucol_setText(it, s, n, &ec);
  int32_t o = ucol_next(it, &ec);
  while (o != UCOL_NULLORDER && U_SUCCESS(ec)) {
    CE ce{(uint32_t)o & 0xffff0000u, (uint16_t)(((uint32_t)o >> 8 & 0xff) << 8),
          (uint16_t)(((uint32_t)o & 0xff) << 8)};
    int32_t o2 = ucol_next(it, &ec);
    if (is_continuation(o2)) {
      ce.p |= ((uint32_t)o2 >> 16) & 0xffff;
      ce.s |= ((uint32_t)o2 >> 8) & 0xff;
      ce.t |= (uint32_t)o2 & 0x3f;
      o2 = ucol_next(it, &ec);
    }
    out.push_back(ce);
    o = o2;
  }
}

constexpr uint16_t kCommon16 = 0x0500;  // common secondary and tertiary weight (case bits 0)

// ---- table value layout (32-bit UCPTrie values) ----
// bits 30-31 kind: 0 self, 1 delta (one code point fold = c + delta), 2 string (pool), 3 nothing
// bits 25-29 grapheme class (own 5-bit enum below, ICU 72 character-break behaviour)
// bit  24    NFC_QC is not Yes (text needs normalisation around this character)
// bits 22-23 contraction context: 0 none; 1 Logical_Order_Exception prevowel that starts root
//            contractions; 2 middle dot U+00B7 (folds to nothing after l/L); 3 starts another
//            root contraction that NFC leaves alone (Thai/Lao nikhahit, Tibetan 0F71/0FB2/0FB3)
// bits 0-21  payload: delta (signed 22 bits) or string (offset << 5 | length)
enum Kind : uint32_t { K_SELF = 0, K_DELTA = 1, K_STRING = 2, K_NOTHING = 3 };
enum GClass : uint32_t {
  G_OTHER = 0,
  G_CONTROL,
  G_CR,
  G_LF,
  G_EXTEND,
  G_ZWJ,
  G_SPACINGMARK,
  G_PREPEND,
  G_L,
  G_V,
  G_T,
  G_LV,
  G_LVT,
  G_RI,
  G_EXTPICT,
  G_VIRAMA,   // Extend, and a virama for ICU's Indic conjunct rule
  G_LINKCONS  // Other, and a linking consonant for ICU's Indic conjunct rule
};
inline uint32_t v_kind(uint32_t v) { return v >> 30; }
inline uint32_t v_gclass(uint32_t v) { return (v >> 25) & 0x1f; }
inline bool v_nfc(uint32_t v) { return (v >> 24) & 1; }
inline uint32_t v_ctx(uint32_t v) { return (v >> 22) & 3; }
inline int32_t v_delta(uint32_t v) { return ((int32_t)(v << 10)) >> 10; }
inline uint32_t v_off(uint32_t v) { return (v & 0x3fffff) >> 5; }
inline uint32_t v_len(uint32_t v) { return v & 31; }
constexpr uint32_t kDeltaMask = 0x3fffff;
constexpr int kGShift = 25, kNfcShift = 24, kCtxShift = 22;

inline uint32_t gclass_of(UChar32 c) {
  int g = u_getIntPropertyValue(c, UCHAR_GRAPHEME_CLUSTER_BREAK);
  switch (g) {
    case U_GCB_CONTROL:
      return G_CONTROL;
    case U_GCB_CR:
      return G_CR;
    case U_GCB_LF:
      return G_LF;
    case U_GCB_EXTEND:
      return G_EXTEND;
    case U_GCB_ZWJ:
      return G_ZWJ;
    case U_GCB_SPACING_MARK:
      return G_SPACINGMARK;
    case U_GCB_PREPEND:
      return G_PREPEND;
    case U_GCB_L:
      return G_L;
    case U_GCB_V:
      return G_V;
    case U_GCB_T:
      return G_T;
    case U_GCB_LV:
      return G_LV;
    case U_GCB_LVT:
      return G_LVT;
    case U_GCB_REGIONAL_INDICATOR:
      return G_RI;
    default:
      return u_hasBinaryProperty(c, UCHAR_EXTENDED_PICTOGRAPHIC) ? G_EXTPICT : G_OTHER;
  }
}

}  // namespace foldproto
