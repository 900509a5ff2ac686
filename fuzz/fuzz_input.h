// Shared helpers of the fuzz targets: cutting the fuzzer's bytes into fields,
// checking properties, and screening the searches a target is about to run
// with raw ICU, so that a target never starts a search that would not finish.
//
// Input layout. Every target reads, in order, fixed-size numbers (option bits,
// flags, little-endian) and texts, and gives its last text whatever is left.
// A text other than the last is preceded by its length in UTF-16 units (one
// byte). Units are decoded byte by byte, so that ASCII patterns stay cheap for
// the fuzzer to build while every other kind of text stays reachable:
//   00..7F     that ASCII character (00 is U+0000)
//   80..EF     a combining mark, U+0300..U+036F (runs of them come naturally)
//   F0 hi lo   the UTF-16 unit hi:lo, whatever it is (unpaired surrogates too)
//   F1 hi lo   the supplementary character U+10000 + (hi:lo << 4), as a pair
//   F2 b       an unpaired lead surrogate, U+D800 + b
//   F3 b       an unpaired trail surrogate, U+DC00 + b
//   F4 b       U+00C0 + b: precomposed Latin letters (e.g. F4 29 is U+00E9)
//   F5 b       one of a few characters that case folding, normalisation or
//              line handling single out (see kOddCharacters)
//   F6..FF     ASCII 'v'..DEL (the byte without its top bit)
#ifndef SCL_REGEX_FUZZ_FUZZ_INPUT_H
#define SCL_REGEX_FUZZ_FUZZ_INPUT_H

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <unicode/regex.h>
#include <unicode/unistr.h>
#include <unicode/uregex.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

// Stops the fuzzer (a crash with this message) when a property does not hold.
#define FUZZ_CHECK(condition) \
  ((condition) ? static_cast<void>(0) : ::fuzz::fail(#condition, __FILE__, __LINE__))

namespace fuzz {

// Longest pattern and subject a target hands to the library, in UTF-16 units.
constexpr std::size_t kMaxPattern = 255;
constexpr std::size_t kMaxSubject = 4096;

// Returning this from LLVMFuzzerTestOneInput keeps the input out of the corpus.
constexpr int kReject = -1;

[[noreturn]] inline void fail(const char* condition, const char* file, int line) {
  std::fprintf(stderr, "\n%s:%d: property does not hold: %s\n", file, line, condition);
  std::fflush(stderr);
  std::abort();
}

// `text` up to its first U+0000.
inline std::u16string cut(const std::u16string& text) { return text.substr(0, text.find(u'\0')); }

// `text` with each lone surrogate replaced by U+FFFD.
inline std::u16string lone_surrogates_replaced(std::u16string text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (U16_IS_LEAD(text[i]) && i + 1 < text.size() && U16_IS_TRAIL(text[i + 1])) {
      ++i;
    } else if (U16_IS_SURROGATE(text[i])) {
      text[i] = 0xFFFD;
    }
  }
  return text;
}

// `text` in UTF-8, each lone surrogate written as U+FFFD.
inline std::string to_utf8(const std::u16string& text) {
  std::string out(text.size() * 3, '\0');
  int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strToUTF8WithSub(out.data(), static_cast<int32_t>(out.size()), &length, text.data(),
                     static_cast<int32_t>(text.size()), 0xFFFD, nullptr, &status);
  FUZZ_CHECK(U_SUCCESS(status));
  out.resize(static_cast<std::size_t>(length));
  return out;
}

class input {
 public:
  input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  bool empty() const { return pos_ >= size_; }

  // The next byte, 0 once the input is used up.
  std::uint8_t byte() { return empty() ? 0 : data_[pos_++]; }

  std::uint32_t u32() {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) value |= static_cast<std::uint32_t>(byte()) << (8 * i);
    return value;
  }

  // A text preceded by its length in units (at most `max_units`). If `raw` is
  // given, it receives the bytes the text was read from.
  std::u16string text(std::size_t max_units = kMaxPattern, std::string* raw = nullptr) {
    return read_text(std::min<std::size_t>(byte(), max_units), raw);
  }

  // Everything left, as a text of at most `max_units`.
  std::u16string rest(std::size_t max_units, std::string* raw = nullptr) {
    return read_text(max_units, raw);
  }

  // A string of bytes preceded by its length (at most `max_bytes`).
  std::string bytes(std::size_t max_bytes) {
    const std::size_t length = std::min<std::size_t>(byte(), max_bytes);
    std::string out;
    while (out.size() < length && !empty()) out.push_back(static_cast<char>(byte()));
    return out;
  }

 private:
  // Characters reached with F5 b (b modulo their number).
  static constexpr char16_t kOddCharacters[] = {
      0x0130, 0x0131, 0x00DF, 0x1E9E, 0x017F, 0x212A, 0x212B, 0x03A3, 0x03C2, 0x03C3,
      0xFB00, 0xFB03, 0x0390, 0x1F80, 0x1FBC, 0x01C5, 0x000D, 0x000A, 0x0085, 0x2028,
      0x00A0, 0x2000, 0x3000, 0xFEFF, 0xFFFD, 0x0345, 0x05B0, 0x064B, 0x0E31, 0x1100,
      0x1161, 0x11A8, 0xAC00, 0x0BC6, 0x0BBE, 0x0915, 0x093C, 0x0958, 0x20DD, 0x2126,
      0x1E0A, 0x0323, 0x0307, 0x00C5, 0x0041, 0x030A, 0x1EA0, 0x2ADC, 0x0F73, 0xFF21};

  std::u16string read_text(std::size_t max_units, std::string* raw) {
    const std::size_t begin = pos_;
    std::u16string out;
    while (out.size() < max_units && !empty()) append_unit(out, max_units);
    if (raw != nullptr) raw->assign(reinterpret_cast<const char*>(data_ + begin), pos_ - begin);
    return out;
  }

  void append_unit(std::u16string& out, std::size_t max_units) {
    const std::uint8_t b = byte();
    if (b < 0x80) {
      out.push_back(b);
    } else if (b < 0xF0) {
      out.push_back(static_cast<char16_t>(0x0300 + (b - 0x80)));
    } else if (b == 0xF0) {
      const unsigned hi = byte();
      out.push_back(static_cast<char16_t>(hi << 8 | byte()));
    } else if (b == 0xF1) {
      const unsigned hi = byte();
      const std::uint32_t c = 0x10000 + ((hi << 8 | byte()) << 4);
      if (out.size() + 2 > max_units) return;
      out.push_back(static_cast<char16_t>(0xD7C0 + (c >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 | (c & 0x3FF)));
    } else if (b == 0xF2) {
      out.push_back(static_cast<char16_t>(0xD800 + byte()));
    } else if (b == 0xF3) {
      out.push_back(static_cast<char16_t>(0xDC00 + byte()));
    } else if (b == 0xF4) {
      out.push_back(static_cast<char16_t>(0x00C0 + byte()));
    } else if (b == 0xF5) {
      out.push_back(kOddCharacters[byte() % (sizeof kOddCharacters / sizeof kOddCharacters[0])]);
    } else {
      out.push_back(static_cast<char16_t>(b & 0x7F));
    }
  }

  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t pos_ = 0;
};

// What raw ICU found running a pattern over a subject the way the library will.
struct icu_run {
  bool compiled = false;  // false: ICU rejected the pattern, nothing ran
  int group_count = 0;    // capture groups, not counting group 0
  bool whole = false;     // matches() succeeded
  // Successive find() matches from the start, up to the end or the first failure.
  std::vector<std::pair<std::int64_t, std::int64_t>> spans;
  UErrorCode find_status = U_ZERO_ERROR;  // the failure that ended the find() walk, if any

  bool failed() const { return U_FAILURE(find_status); }
};

// ICU's flags for the library's option bits: "." matches line ends, and case
// is ignored with bit 0x1.
inline std::uint32_t icu_flags(std::uint32_t options) {
  return UREGEX_DOTALL | ((options & 0x1) != 0 ? UREGEX_CASE_INSENSITIVE : 0);
}

// Runs `pattern` (the exact text ICU will compile) over `subject` (the exact
// text ICU will search), with matches() and then a find() walk to the end,
// under a time limit. Returns nothing when the input must be skipped: ICU
// timed out or the whole run took too long. ICU 72 loops forever on some
// valid patterns (a lazy quantifier over a group that can match empty, e.g.
// "(a?)+?b" over "a"), and the library sets no limit of its own.
inline std::optional<icu_run> screen(const std::u16string& pattern, std::uint32_t options,
                                     const std::u16string& subject) {
  constexpr std::int32_t kStepLimit = 50;  // ICU "steps", each some thousand engine operations
  constexpr auto kWallLimit = std::chrono::milliseconds(50);
  const auto started = std::chrono::steady_clock::now();
  icu_run run;
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString icu_pattern(pattern.data(), static_cast<int32_t>(pattern.size()));
  const icu::UnicodeString icu_subject(subject.data(), static_cast<int32_t>(subject.size()));
  icu::RegexMatcher matcher(icu_pattern, icu_subject, icu_flags(options), status);
  if (U_FAILURE(status)) return run;
  run.compiled = true;
  run.group_count = matcher.groupCount();
  matcher.setTimeLimit(kStepLimit, status);
  if (U_FAILURE(status)) return std::nullopt;

  UErrorCode whole_status = U_ZERO_ERROR;
  run.whole = matcher.matches(whole_status);
  if (whole_status == U_REGEX_TIME_OUT) return std::nullopt;
  run.whole = run.whole && U_SUCCESS(whole_status);

  matcher.reset();
  for (;;) {
    if (std::chrono::steady_clock::now() - started > kWallLimit) return std::nullopt;
    UErrorCode find_status = U_ZERO_ERROR;
    const bool found = matcher.find(find_status);
    if (find_status == U_REGEX_TIME_OUT) return std::nullopt;
    if (U_FAILURE(find_status)) {
      run.find_status = find_status;
      break;
    }
    if (!found) break;
    run.spans.emplace_back(matcher.start64(status), matcher.end64(status));
  }
  if (std::chrono::steady_clock::now() - started > kWallLimit) return std::nullopt;
  return run;
}

}  // namespace fuzz

#endif  // SCL_REGEX_FUZZ_FUZZ_INPUT_H
