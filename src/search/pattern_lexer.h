// Reading an ICU regular expression character by character, as ICU's own
// compiler reads it.
//
// next() gives the pattern's characters with ICU's rules for what is text:
// inside \Q...\E every character is quoted (taken literally); in free-spacing
// mode (x) white space and "#" comments are skipped; "\0ooo" (octal) and the
// escapes that ICU unescapes itself (\a \cX \e \f \n \r \t \uhhhh \Uhhhhhhhh
// \xhh \x{h...}) come back as one quoted character. Any other backslash comes
// back unquoted, and the character after it is read with next_raw().
//
// The lexer reads patterns that ICU has compiled: it never fails, and at an
// ill-formed escape it takes what it can.
#ifndef SCL_REGEX_SRC_SEARCH_PATTERN_LEXER_H
#define SCL_REGEX_SRC_SEARCH_PATTERN_LEXER_H

#include <cstdint>
#include <string_view>

#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

namespace scl::regex::detail {

// One character of a pattern: `c` (-1 at the end), whether it is quoted, and
// the offset of the pattern text it was read from.
struct pattern_char {
  UChar32 c = -1;
  bool quoted = false;
  int32_t start = 0;

  bool is(char16_t unquoted) const { return !quoted && c == unquoted; }
};

class pattern_lexer {
 public:
  explicit pattern_lexer(std::u16string_view pattern)
      : pattern_(pattern), size_(static_cast<int32_t>(pattern.size())) {}

  std::u16string_view pattern() const { return pattern_; }
  int32_t position() const { return at_; }
  bool at_end() const { return at_ >= size_; }

  // Free-spacing mode (the x flag), as the parser tracks it.
  void set_free_spacing(bool on) { free_spacing_ = on; }

  // The next character, as ICU's compiler reads it.
  pattern_char next() {
    for (;;) {
      if (quoting_) {
        if (at_ + 1 < size_ && pattern_[at_] == u'\\' && pattern_[at_ + 1] == u'E') {
          quoting_ = false;
          at_ += 2;
          continue;
        }
        pattern_char quoted = next_raw();
        quoted.quoted = quoted.c >= 0;
        return quoted;
      }
      if (free_spacing_) skip_space_and_comments();
      if (at_ >= size_) return pattern_char{-1, false, at_};
      if (pattern_[at_] != u'\\' || at_ + 1 >= size_) return next_raw();
      const char16_t escaped = pattern_[at_ + 1];
      if (escaped == u'Q') {
        quoting_ = true;
        at_ += 2;
        continue;
      }
      if (escaped == u'0') return octal();
      if (unescapes(escaped)) return unescape();
      return next_raw();  // the backslash; the parser reads what follows it
    }
  }

  // The next code point as it stands, with no escape or spacing rule.
  pattern_char next_raw() {
    if (at_ >= size_) return pattern_char{-1, false, at_};
    pattern_char c{0, false, at_};
    U16_NEXT(pattern_.data(), at_, size_, c.c);
    return c;
  }

  // The code point at the position, or -1 at the end; nothing is read.
  UChar32 peek_raw() const {
    if (at_ >= size_) return -1;
    UChar32 c = 0;
    U16_GET(pattern_.data(), 0, at_, size_, c);
    return c;
  }

  // Goes back to (or forward to) `position`, outside any \Q...\E.
  void seek(int32_t position) {
    at_ = position;
    quoting_ = false;
  }

  // The saved state, for reading ahead.
  struct mark {
    int32_t at;
    bool quoting;
  };
  mark save() const { return mark{at_, quoting_}; }
  void restore(mark saved) {
    at_ = saved.at;
    quoting_ = saved.quoting;
  }

 private:
  static bool unescapes(char16_t c) {
    switch (c) {
      case u'a':
      case u'c':
      case u'e':
      case u'f':
      case u'n':
      case u'r':
      case u't':
      case u'u':
      case u'U':
      case u'x':
        return true;
      default:
        return false;
    }
  }

  void skip_space_and_comments() {
    while (at_ < size_) {
      const char16_t c = pattern_[at_];
      if (c == u'#') {
        while (at_ < size_ && !ends_comment(pattern_[at_])) ++at_;
        continue;
      }
      if (!u_hasBinaryProperty(c, UCHAR_PATTERN_WHITE_SPACE)) return;
      ++at_;
    }
  }

  static bool ends_comment(char16_t c) {
    return c == u'\r' || c == u'\n' || c == 0x85 || c == 0x2028;
  }

  // "\0" and up to three octal digits, the value at most 0xFF.
  pattern_char octal() {
    pattern_char c{0, true, at_};
    at_ += 2;
    for (int digits = 0; digits < 3 && at_ < size_; ++digits) {
      const char16_t digit = pattern_[at_];
      if (digit < u'0' || digit > u'7') break;
      const UChar32 value = c.c * 8 + (digit - u'0');
      if (value > 0xFF) break;
      c.c = value;
      ++at_;
    }
    return c;
  }

  static UChar unit_at(int32_t offset, void* context) {
    const auto* pattern = static_cast<const std::u16string_view*>(context);
    return (*pattern)[static_cast<std::size_t>(offset)];
  }

  // An escape that ICU's u_unescapeAt reads.
  pattern_char unescape() {
    pattern_char c{0, true, at_};
    int32_t offset = at_ + 1;
    c.c = u_unescapeAt(unit_at, &offset, size_, &pattern_);
    at_ = offset > at_ + 1 ? offset : at_ + 2;
    if (c.c < 0) c.c = 0xFFFD;  // not for a pattern ICU compiled
    return c;
  }

  std::u16string_view pattern_;
  int32_t size_;
  int32_t at_ = 0;
  bool quoting_ = false;
  bool free_spacing_ = false;
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_PATTERN_LEXER_H
