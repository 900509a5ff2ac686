#include "search/pattern_text.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <unicode/uchar.h>

#include "search/code_points.h"

namespace scl::regex::detail {

bool stands_for_itself(UChar32 c) {
  if ((c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9')) {
    return true;
  }
  return c > 0x7F && !U_IS_SURROGATE(c) && !u_hasBinaryProperty(c, UCHAR_PATTERN_WHITE_SPACE);
}

void append_escaped(std::u16string& out, UChar32 c) {
  static constexpr char16_t digits[] = u"0123456789abcdef";
  out += u"\\x{";
  int shift = 20;
  while (shift > 0 && ((c >> shift) & 0xF) == 0) shift -= 4;
  for (; shift >= 0; shift -= 4) out += digits[(c >> shift) & 0xF];
  out += u'}';
}

void append_literal_code_point(std::u16string& out, UChar32 c) {
  if (stands_for_itself(c)) {
    append_code_point(out, c);
  } else {
    append_escaped(out, c);
  }
}

namespace {

void append_ranges(const std::vector<std::pair<UChar32, UChar32>>& ranges, std::u16string& out) {
  if (ranges.empty()) {
    out += u"[^\\x{0}-\\x{10ffff}]";  // matches nothing
    return;
  }
  out += u'[';
  for (const auto& [first, last] : ranges) {
    append_literal_code_point(out, first);
    if (last == first) continue;
    if (last > first + 1) out += u'-';
    append_literal_code_point(out, last);
  }
  out += u']';
}

}  // namespace

void append_set(std::vector<UChar32> members, std::u16string& out) {
  std::sort(members.begin(), members.end());
  std::vector<std::pair<UChar32, UChar32>> ranges;
  for (const UChar32 c : members) {
    if (!ranges.empty() && c <= ranges.back().second + 1) {
      ranges.back().second = std::max(ranges.back().second, c);
    } else {
      ranges.emplace_back(c, c);
    }
  }
  append_ranges(ranges, out);
}

void append_set(const code_point_bits& bits, bool in, const code_point_bits& alphabet,
                std::u16string& out) {
  std::vector<std::pair<UChar32, UChar32>> ranges;
  for (UChar32 c = bits.next(0, in); c < code_point_bits::limit;) {
    const UChar32 end = bits.next(c, !in);
    if (!ranges.empty() && !alphabet.any(ranges.back().second + 1, c - 1)) {
      ranges.back().second = end - 1;
    } else {
      ranges.emplace_back(c, end - 1);
    }
    c = bits.next(end, in);
  }
  append_ranges(ranges, out);
}

}  // namespace scl::regex::detail
