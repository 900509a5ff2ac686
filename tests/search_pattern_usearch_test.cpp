// search_pattern against ICU's usearch: the root collator at primary strength,
// going forward without overlap. Random NFC texts over many scripts, queries
// cut from them (some replaced by their own fold) and dictionary words; every
// match must be the one usearch reports, in UTF-16 and, mapped back, in UTF-8.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/unorm2.h>
#include <unicode/usearch.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <scl/regex/search_pattern.h>

namespace {

namespace re = scl::regex;

using range = std::pair<std::size_t, std::size_t>;
using ranges = std::vector<range>;

constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);

// ---------------------------------------------------------------------------
// Text helpers

std::u16string nfc(std::u16string_view text) {
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* normalizer = unorm2_getNFCInstance(&status);
  std::u16string out(text.size() * 3 + 8, u'\0');
  const int32_t length =
      unorm2_normalize(normalizer, text.data(), static_cast<int32_t>(text.size()), out.data(),
                       static_cast<int32_t>(out.size()), &status);
  if (U_FAILURE(status)) return u"<normalisation failed>";
  out.resize(static_cast<std::size_t>(length));
  return out;
}

std::u16string nfd(std::u16string_view text) {
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* normalizer = unorm2_getNFDInstance(&status);
  std::u16string out(text.size() * 4 + 8, u'\0');
  const int32_t length =
      unorm2_normalize(normalizer, text.data(), static_cast<int32_t>(text.size()), out.data(),
                       static_cast<int32_t>(out.size()), &status);
  if (U_FAILURE(status)) return u"<normalisation failed>";
  out.resize(static_cast<std::size_t>(length));
  return out;
}

void append_code_point(std::u16string& text, UChar32 c) {
  if (c <= 0xFFFF) {
    text += static_cast<char16_t>(c);
  } else {
    text += U16_LEAD(c);
    text += U16_TRAIL(c);
  }
}

std::vector<UChar32> code_points_of(std::u16string_view text) {
  std::vector<UChar32> out;
  for (std::size_t i = 0; i < text.size();) {
    UChar32 c;
    U16_NEXT(text.data(), i, text.size(), c);
    out.push_back(c);
  }
  return out;
}

// Code points in hexadecimal, for failure messages.
std::string hex(std::u16string_view text) {
  std::string out;
  char buffer[16];
  for (const UChar32 c : code_points_of(text)) {
    std::snprintf(buffer, sizeof buffer, out.empty() ? "%04X" : " %04X", static_cast<unsigned>(c));
    out += buffer;
  }
  return "[" + out + "]";
}

std::string show(const ranges& matches) {
  if (matches.empty()) return "none";
  std::string out;
  for (const auto& [start, end] : matches) {
    out += "[" + std::to_string(start) + "," + std::to_string(end) + ")";
  }
  return out;
}

// UTF-8 text with, for every byte offset, the UTF-16 offset of the same place
// (kNowhere inside a character). The texts here have no lone surrogates.
struct utf8_text {
  std::string bytes;
  std::vector<std::size_t> utf16_offset;
};

utf8_text to_utf8(std::u16string_view text) {
  utf8_text out;
  for (std::size_t i = 0; i < text.size();) {
    out.utf16_offset.resize(out.bytes.size() + 1, kNowhere);
    out.utf16_offset.back() = i;
    UChar32 c;
    U16_NEXT(text.data(), i, text.size(), c);
    if (U_IS_SURROGATE(c)) c = 0xFFFD;
    uint8_t buffer[U8_MAX_LENGTH];
    int32_t length = 0;
    U8_APPEND_UNSAFE(buffer, length, c);
    out.bytes.append(reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(length));
  }
  out.utf16_offset.resize(out.bytes.size() + 1, kNowhere);
  out.utf16_offset.back() = text.size();
  return out;
}

// Reads `bytes` as the library does, each ill-formed sequence (maximal
// subpart) as U+FFFD, into `text`; returns the bytes with their offsets.
utf8_text read_utf8(std::string bytes, std::u16string& text) {
  utf8_text out{std::move(bytes), {}};
  text.clear();
  const auto* data = reinterpret_cast<const uint8_t*>(out.bytes.data());
  const auto length = static_cast<int32_t>(out.bytes.size());
  out.utf16_offset.assign(out.bytes.size() + 1, kNowhere);
  for (int32_t i = 0; i < length;) {
    out.utf16_offset[static_cast<std::size_t>(i)] = text.size();
    UChar32 c;
    U8_NEXT_OR_FFFD(data, i, length, c);
    append_code_point(text, c);
  }
  out.utf16_offset.back() = text.size();
  return out;
}

// Byte ranges as UTF-16 ranges; an offset outside the text or inside a
// character becomes kNowhere, which no real range has.
ranges to_utf16(const ranges& byte_ranges, const utf8_text& text) {
  ranges out;
  auto at = [&](std::size_t offset) {
    return offset < text.utf16_offset.size() ? text.utf16_offset[offset] : kNowhere;
  };
  for (const auto& [start, end] : byte_ranges) out.emplace_back(at(start), at(end));
  return out;
}

ranges ranges_of(const std::vector<re::source_match>& matches) {
  ranges out;
  for (const re::source_match& match : matches) out.emplace_back(match.start, match.end);
  return out;
}

// `text` with every range replaced by `replacement`; nothing if the ranges are
// out of order or outside the text.
template <class String>
std::optional<String> rebuilt(const String& text, const ranges& matches,
                              const String& replacement) {
  String out;
  std::size_t at = 0;
  for (const auto& [start, end] : matches) {
    if (start < at || end < start || end > text.size()) return std::nullopt;
    out.append(text, at, start - at);
    out += replacement;
    at = end;
  }
  out.append(text, at, String::npos);
  return out;
}

// ---------------------------------------------------------------------------
// The oracle

class usearch_oracle {
 public:
  usearch_oracle() {
    UErrorCode status = U_ZERO_ERROR;
    collator_ = ucol_open("", &status);
    if (U_FAILURE(status)) return;
    ucol_setStrength(collator_, UCOL_PRIMARY);
    static const UChar placeholder[] = {u'x'};
    search_ = usearch_openFromCollator(placeholder, 1, placeholder, 1, collator_, nullptr, &status);
    if (U_FAILURE(status)) search_ = nullptr;
  }
  ~usearch_oracle() {
    if (search_ != nullptr) usearch_close(search_);
    if (collator_ != nullptr) ucol_close(collator_);
  }
  usearch_oracle(const usearch_oracle&) = delete;
  usearch_oracle& operator=(const usearch_oracle&) = delete;

  bool ready() const { return search_ != nullptr; }

  // Every match of `query` in `text`, forward, without overlap (usearch's
  // default; USEARCH_OVERLAP never terminates on some Thai text in ICU 72).
  // Sets `failed` if ICU reports an error.
  ranges find_all(std::u16string_view query, std::u16string_view text, bool& failed) {
    ranges out;
    if (query.empty() || text.empty()) return out;
    UErrorCode status = U_ZERO_ERROR;
    usearch_setText(search_, text.data(), static_cast<int32_t>(text.size()), &status);
    usearch_setPattern(search_, query.data(), static_cast<int32_t>(query.size()), &status);
    for (int32_t at = usearch_first(search_, &status); U_SUCCESS(status) && at != USEARCH_DONE;
         at = usearch_next(search_, &status)) {
      out.emplace_back(static_cast<std::size_t>(at),
                       static_cast<std::size_t>(at + usearch_getMatchedLength(search_)));
    }
    if (U_FAILURE(status)) failed = true;
    return out;
  }

  // Whether the collator reads `c` as nothing at primary strength.
  bool ignorable(UChar32 c) const {
    std::u16string text;
    append_code_point(text, c);
    return ucol_strcoll(collator_, text.data(), static_cast<int32_t>(text.size()), nullptr, 0) ==
           UCOL_EQUAL;
  }

 private:
  UCollator* collator_ = nullptr;
  UStringSearch* search_ = nullptr;
};

// ---------------------------------------------------------------------------
// What the comparison leaves out: the differences the header documents.

enum class exclusion {
  none,
  contraction_starter,     // Thai/Lao nikhahit, Tibetan U+0F71, U+0FB2, U+0FB3
  query_ends_in_prevowel,  // the collator swaps a prevowel and its consonant
};

// The root contractions that the per-code-point fold reads as their parts
// start with one of these (directly, or across marks when discontiguous).
bool has_contraction_starter(std::u16string_view text) {
  for (const char16_t unit : text) {
    switch (unit) {
      case 0x0E4D:
      case 0x0ECD:
      case 0x0F71:
      case 0x0FB2:
      case 0x0FB3:
        return true;
      default:
        break;
    }
  }
  return false;
}

// Whether the last character of `query` that the collator does not ignore is a
// Logical_Order_Exception prevowel (Thai, Lao, New Tai Lue, Tai Viet).
bool ends_in_prevowel(const usearch_oracle& oracle, std::u16string_view query) {
  const std::vector<UChar32> code_points = code_points_of(query);
  for (auto it = code_points.rbegin(); it != code_points.rend(); ++it) {
    if (oracle.ignorable(*it)) continue;
    return u_hasBinaryProperty(*it, UCHAR_LOGICAL_ORDER_EXCEPTION) != 0;
  }
  return false;
}

exclusion excluded(const usearch_oracle& oracle, std::u16string_view query,
                   std::u16string_view text) {
  if (has_contraction_starter(query) || has_contraction_starter(text)) {
    return exclusion::contraction_starter;
  }
  if (ends_in_prevowel(oracle, query)) return exclusion::query_ends_in_prevowel;
  return exclusion::none;
}

// ---------------------------------------------------------------------------
// Random texts and queries

// Words in many scripts. None holds a contraction starter (ํา, ໍາ, ཨཱི, ཀྲྀ):
// every pair with one is left out. Single characters drawn from the Thai, Lao
// and Tibetan blocks still bring a few.
const char16_t* const kWords[] = {
    // Latin: French, German, Scandinavian, Polish, Turkish, Vietnamese, Catalan
    u"crème", u"brûlée", u"Noël", u"naïve", u"NAÏVE", u"Ça", u"œuvre", u"façade", u"été", u"CRÈME",
    u"creme", u"Straße", u"STRASSE", u"Größe", u"ẞ", u"strasse", u"København", u"Ærø", u"Åland",
    u"smørrebrød", u"Łódź", u"Zażółć", u"gęślą", u"jaźń", u"lodz", u"Iğdır", u"ıi", u"İI",
    u"Diyarbakır", u"Tiếng", u"Việt", u"Hà", u"Nội", u"Phở", u"người", u"col·lecció", u"L·L",
    u"paral·lel", u"ŀl", u"l·", u"Ŀ", u"\u212A", u"\u212B",  // KELVIN SIGN, ANGSTROM SIGN
    // Greek, Cyrillic
    u"Ελληνικά", u"άέήίόύώ", u"ΐΰ", u"Αθήνα", u"ς", u"σ", u"Σ", u"αθηνα", u"йод", u"иод", u"Москва",
    u"ёлка", u"елка", u"Україна", u"ї", u"і", u"ЙОД",
    // Arabic, Hebrew
    u"مَدْرَسَة", u"مدرسة", u"العَرَبِيَّة", u"أ", u"إ", u"آ", u"ا", u"لا", u"ﻻ", u"ؤ", u"ئ", u"شَمْس",
    u"שָׁלוֹם", u"שלום", u"בְּרֵאשִׁית", u"ﬠ", u"ﭏ",
    // Devanagari, Bengali, Tamil
    u"हिन्दी", u"हिनदी", u"क्षत्रिय", u"नमस्ते", u"\u0958", u"\u0915\u093C", u"কোন", u"কো", u"ক", u"ো",
    u"\u09C7\u09BE", u"ே", u"கொ", u"ொ", u"தமிழ்",
    // Thai, Lao
    u"เกม", u"ภาษาไทย", u"แม่", u"ไก่", u"กำ", u"โรงเรียน", u"น้ำ", u"เ", u"ก", u"ำ", u"ເກມ",
    u"ພາສາລາວ", u"ແມ່", u"ໄກ່", u"ນ້ຳ", u"ເ",
    // Tibetan
    u"བོད་ཡིག", u"རྒྱ", u"ཀ", u"ི", u"ྀ",
    // Hangul: syllables, conjoining and compatibility jamo
    u"한국어", u"가나다", u"각", u"ᄀᄀ", u"ㄱㅏ", u"가", u"ᅡ", u"ᆨ", u"ᄀ",
    // Kana: hiragana, katakana, halfwidth, voiced marks
    u"カタカナ", u"かたかな", u"ｶﾀｶﾅ", u"ガギグ", u"がぎぐ", u"ｶﾞｷﾞ", u"ぁあァアｱ", u"ー", u"ゝゞ",
    u"ﾞ", u"゛", u"\u3099", u"ぱ", u"ﾊﾟ", u"は",
    // Han, with a compatibility ideograph, a radical and enclosed forms
    u"中文", u"漢字", u"汉字", u"𠀀", u"\U0002F800", u"丽", u"⼀", u"一", u"㊀", u"㈠",
    // Fullwidth, ligatures, digits, symbols
    u"ＵＳＢ", u"ｕｓｂ", u"usb", u"USB", u"１２３", u"！", u"ﬁ", u"ﬂ", u"ﬀ", u"ﬃ", u"Ĳ", u"ǆ",
    u"ae", u"æ", u"Æ", u"١٢٣", u"۱۲۳", u"१२३", u"๑๒๓", u"①", u"½", u"²", u"123", u"™", u"TM", u"℃",
    u"ℓ", u"…", u"...",
    // Emoji: ZWJ sequences, skin tones, VS16, flags, keycaps
    u"👩\u200D💻", u"👩", u"💻", u"👍🏽", u"👍", u"🏽", u"❤\uFE0F", u"❤", u"🇫🇷", u"🇫",
    u"👨\u200D👩\u200D👧", u"✈\uFE0F", u"😀", u"#\uFE0F\u20E3"};

// Separators, marks and invisible characters.
const char16_t* const kExtras[] = {u"\u00AD", u"\u200D", u"\u200C", u"\uFE0F", u" ",
                                   u" ",      u" ",      u", ",     u"-",      u".",
                                   u"\n",     u"\r\n",   u"\u0301", u"\u0300", u"\u0308",
                                   u"\u0323", u"\u0327", u"\u0338", u"\u034F", u"\u2060"};

// Ranges of code points to draw single characters from.
constexpr UChar32 kRanges[][2] = {
    {0x20, 0x7E},       {0xA0, 0x24F},     {0x300, 0x36F},   {0x370, 0x3FF},   {0x400, 0x4FF},
    {0x590, 0x5FF},     {0x600, 0x6FF},    {0x900, 0x97F},   {0x980, 0x9FF},   {0xE00, 0xE7F},
    {0xE80, 0xEFF},     {0xF00, 0xFFF},    {0x1100, 0x11FF}, {0x1E00, 0x1FFF}, {0x2000, 0x206F},
    {0x3040, 0x30FF},   {0x3130, 0x318F},  {0x4E00, 0x4E40}, {0xAC00, 0xAC40}, {0xFF00, 0xFFEF},
    {0x1F300, 0x1F6FF}, {0x1F1E6, 0x1F1FF}};

template <class T, std::size_t N>
constexpr std::size_t count_of(const T (&)[N]) {
  return N;
}

class generator {
 public:
  explicit generator(std::uint32_t seed) : random_(seed) {}

  // An NFC text of `tokens` words, extras and single characters.
  std::u16string text() {
    std::u16string out;
    const std::size_t tokens = 4 + pick(40);
    for (std::size_t i = 0; i < tokens; ++i) {
      const std::size_t kind = pick(100);
      if (kind < 55) {
        out += kWords[pick(count_of(kWords))];
      } else if (kind < 85) {
        out += kExtras[pick(count_of(kExtras))];
      } else if (kind < 87) {
        out += u'\0';
      } else {
        const auto& bounds = kRanges[pick(count_of(kRanges))];
        const UChar32 c =
            bounds[0] +
            static_cast<UChar32>(pick(static_cast<std::size_t>(bounds[1] - bounds[0] + 1)));
        if (u_charType(c) != U_UNASSIGNED) append_code_point(out, c);
      }
    }
    return nfc(out);
  }

  // A piece of `text` of 1 to 8 units on code point boundaries, in NFC; one in
  // four replaced by its own fold (so "Łódź" is also asked for as "lodz").
  std::u16string query_from(const std::u16string& text) {
    std::size_t start = pick(text.size());
    if (start > 0 && U16_IS_TRAIL(text[start]) && U16_IS_LEAD(text[start - 1])) --start;
    std::size_t end = std::min(text.size(), start + 1 + pick(8));
    if (end < text.size() && U16_IS_TRAIL(text[end]) && U16_IS_LEAD(text[end - 1])) ++end;
    std::u16string query = nfc(std::u16string_view(text).substr(start, end - start));
    if (pick(4) == 0) query = nfc(re::search_fold(query).text());
    return query;
  }

  // `text` in UTF-8 with ill-formed sequences between some of its characters.
  std::string damaged_utf8(std::u16string_view text) {
    static const char* const kIllFormed[] = {
        "\x80",         "\xBF",         "\xC0\xAF",         "\xC3", "\xE2\x82",
        "\xED\xA0\x80", "\xF0\x9F\x98", "\xF4\x90\x80\x80", "\xFE", "\xFF"};
    std::string out;
    for (const UChar32 c : code_points_of(text)) {
      if (pick(6) == 0) out += kIllFormed[pick(count_of(kIllFormed))];
      uint8_t buffer[U8_MAX_LENGTH];
      int32_t length = 0;
      U8_APPEND_UNSAFE(buffer, length, c);
      out.append(reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(length));
    }
    if (pick(4) == 0) out += kIllFormed[pick(count_of(kIllFormed))];
    return out;
  }

  // A dictionary word, in NFC.
  std::u16string word() { return nfc(kWords[pick(count_of(kWords))]); }

 private:
  std::size_t pick(std::size_t n) { return static_cast<std::size_t>(random_() % n); }

  std::mt19937 random_;
};

// ---------------------------------------------------------------------------
// Checks

// Failures by kind; the first few of each are reported in full.
class failure_log {
 public:
  void add(const std::string& kind, const std::string& message) {
    if (++counts_[kind] <= 3) ADD_FAILURE() << kind << ": " << message;
  }
  long total() const {
    long sum = 0;
    for (const auto& entry : counts_) sum += entry.second;
    return sum;
  }
  std::string summary() const {
    std::string out;
    for (const auto& [kind, count] : counts_)
      out += "  " + kind + ": " + std::to_string(count) + "\n";
    return out;
  }

 private:
  std::map<std::string, long> counts_;
};

// Matches come in order, do not overlap, lie inside the text, and each has
// the whole match as its only group.
bool well_formed(const std::vector<re::source_match>& matches, std::size_t text_size) {
  std::size_t at = 0;
  for (const re::source_match& match : matches) {
    if (match.start < at || match.end <= match.start || match.end > text_size) return false;
    if (match.groups.size() != 1 || match.groups[0] != range{match.start, match.end}) return false;
    at = match.end;
  }
  return true;
}

// found_in, find_first and replace_all on UTF-8 `text` agree with `bytes`,
// the ranges find_all gives for it.
void check_utf8_agreement(const re::search_pattern& pattern, const std::string& text,
                          const ranges& bytes, failure_log& log, const std::string& where) {
  if (pattern.found_in(text) != !bytes.empty()) {
    log.add("found_in disagrees with find_all (UTF-8)", where);
  }
  const std::optional<re::source_match> first = pattern.find_first(text);
  if (first.has_value() != !bytes.empty() ||
      (first && range{first->start, first->end} != bytes.front())) {
    log.add("find_first is not the first of find_all (UTF-8)", where);
  }
  const std::string marker = "<>";
  if (pattern.replace_all(text, marker) != rebuilt(text, bytes, marker)) {
    log.add("replace_all does not replace exactly the ranges of find_all (UTF-8)", where);
  }
}

// Runs `pattern` (and `pattern8`, the same query given in UTF-8) over `text`
// in every form: UTF-16 and UTF-8, find_all, found_in, find_first and
// replace_all must all agree. Returns the UTF-16 find_all.
ranges check_forms(const re::search_pattern& pattern, const re::search_pattern& pattern8,
                   const std::u16string& query, const std::u16string& text, failure_log& log) {
  const std::vector<re::source_match> matches = pattern.find_all(text);
  const ranges expected = ranges_of(matches);
  const std::string where = "query " + hex(query) + " text " + hex(text);
  if (!well_formed(matches, text.size())) {
    log.add("UTF-16 matches out of order, overlapping or with wrong groups", where);
  }
  if (pattern.found_in(text) != !expected.empty()) {
    log.add("found_in disagrees with find_all (UTF-16)", where + " find_all " + show(expected));
  }
  const std::optional<re::source_match> first = pattern.find_first(text);
  if (first.has_value() != !expected.empty() ||
      (first && range{first->start, first->end} != expected.front())) {
    log.add("find_first is not the first of find_all (UTF-16)",
            where + " find_all " + show(expected));
  }
  const std::u16string marker = u"<>";
  if (pattern.replace_all(text, marker) != rebuilt(text, expected, marker)) {
    log.add("replace_all does not replace the ranges of find_all (UTF-16)",
            where + " find_all " + show(expected));
  }

  // The same search in UTF-8, with both the UTF-16 and the UTF-8 query.
  const utf8_text text8 = to_utf8(text);
  const std::vector<re::source_match> matches8 = pattern.find_all(text8.bytes);
  const ranges bytes = ranges_of(matches8);
  if (!well_formed(matches8, text8.bytes.size())) {
    log.add("UTF-8 matches out of order, overlapping or with wrong groups", where);
  }
  if (to_utf16(bytes, text8) != expected) {
    log.add("UTF-8 find_all differs from UTF-16",
            where + " UTF-16 " + show(expected) + " UTF-8 bytes " + show(bytes));
  }
  if (ranges_of(pattern8.find_all(text8.bytes)) != bytes) {
    log.add("a UTF-8 query finds other matches than its UTF-16 form (UTF-8 text)", where);
  }
  if (ranges_of(pattern8.find_all(text)) != expected) {
    log.add("a UTF-8 query finds other matches than its UTF-16 form (UTF-16 text)", where);
  }
  check_utf8_agreement(pattern, text8.bytes, bytes, log, where);
  return expected;
}

// Every literal query also as a regex query quoted with \Q...\E, which must
// find exactly what the literal query finds, in UTF-16 and UTF-8 text: as
// written (which the library searches as a literal), inside a group (which
// ICU searches), and followed by an empty group (which ICU searches from
// where the query's fold occurs). A query that folds to nothing is the one
// exception: as a literal it finds nothing, quoted it is a regex that matches
// the empty string.
struct quoted_literal {
  long compared = 0;
  long folds_to_nothing = 0;

  void compare(const std::u16string& query, const std::u16string& text, const ranges& literal,
               failure_log& log) {
    if (query.find(u"\\E") != std::u16string::npos) return;
    if (re::search_fold(query).text().empty()) {
      ++folds_to_nothing;
      return;
    }
    ++compared;
    const std::u16string quoted = u"\\Q" + query + u"\\E";
    const utf8_text text8 = to_utf8(text);
    for (const std::u16string& form : {quoted, u"(?:" + quoted + u")", quoted + u"(?:)"}) {
      const re::search_pattern pattern(form, re::query_syntax::regex);
      const std::string where = "regex " + hex(form) + " text " + hex(text);
      const ranges found = ranges_of(pattern.find_all(text));
      if (found != literal) {
        log.add("a quoted literal finds other matches than the literal query (UTF-16)",
                where + " literal " + show(literal) + " regex " + show(found));
      }
      if (to_utf16(ranges_of(pattern.find_all(text8.bytes)), text8) != literal) {
        log.add("a quoted literal finds other matches than the literal query (UTF-8)", where);
      }
    }
  }
};

// A query and text on which the library and usearch disagree.
struct counterexample {
  std::u16string query;
  std::u16string text;
  ranges library;
  ranges usearch;
};

class differential {
 public:
  explicit differential(usearch_oracle& oracle) : oracle_(oracle) {}

  // The disagreement on this pair, if it is one that counts.
  std::optional<counterexample> disagreement(const std::u16string& query,
                                             const std::u16string& text) {
    if (text.empty() || nfc(query) != query || nfc(text) != text) return std::nullopt;
    if (re::search_fold(query).text().empty()) return std::nullopt;
    if (excluded(oracle_, query, text) != exclusion::none) return std::nullopt;
    bool failed = false;
    counterexample found{query, text, ranges_of(re::search_pattern(query).find_all(text)),
                         oracle_.find_all(query, text, failed)};
    if (failed || found.library == found.usearch) return std::nullopt;
    return found;
  }

  // Drops code points from the text, then from the query, while the pair
  // still disagrees.
  counterexample shrink(counterexample found) {
    for (bool progress = true; progress;) {
      progress = false;
      for (std::u16string* side : {&found.text, &found.query}) {
        for (std::size_t i = 0; i < side->size();) {
          std::size_t next = i;
          U16_FWD_1(side->data(), next, side->size());
          const std::u16string candidate = side->substr(0, i) + side->substr(next);
          const bool on_query = side == &found.query;
          std::optional<counterexample> smaller =
              disagreement(on_query ? candidate : found.query, on_query ? found.text : candidate);
          if (smaller) {
            found = std::move(*smaller);
            progress = true;
          } else {
            i = next;
          }
        }
      }
    }
    return found;
  }

 private:
  usearch_oracle& oracle_;
};

TEST(SearchPatternUsearch, FindsWhatUsearchFindsOnRandomTextInManyScripts) {
  // 10,000 texts of 4 to 43 tokens, 4 queries each: 40,000 query/text pairs.
  constexpr int kTexts = 10000;
  constexpr int kQueriesPerText = 4;
  usearch_oracle oracle;
  ASSERT_TRUE(oracle.ready());
  differential compare(oracle);
  generator make(20240611);
  failure_log log;
  quoted_literal quoted;

  long pairs = 0;
  long folds_to_nothing = 0;
  long skipped_contraction = 0;
  long skipped_prevowel = 0;
  long compared = 0;
  long usearch_found = 0;
  long disagreements = 0;
  long usearch_errors = 0;
  for (int t = 0; t < kTexts; ++t) {
    const std::u16string text = make.text();
    if (text.empty()) continue;
    // The same text decomposed: usearch is not asked, but every form must agree.
    const std::u16string decomposed = nfd(text);
    for (int k = 0; k < kQueriesPerText; ++k) {
      const std::u16string query = k + 1 == kQueriesPerText ? make.word() : make.query_from(text);
      ++pairs;
      const re::search_pattern pattern(query);
      const re::search_pattern pattern8(to_utf8(query).bytes);
      const ranges library = check_forms(pattern, pattern8, query, text, log);
      if (decomposed != text) check_forms(pattern, pattern8, query, decomposed, log);
      quoted.compare(query, text, library, log);
      if (decomposed != text)
        quoted.compare(query, decomposed, ranges_of(pattern.find_all(decomposed)), log);

      if (re::search_fold(query).text().empty()) {
        // usearch reports empty matches here; the library reports none.
        ++folds_to_nothing;
        if (!library.empty()) {
          log.add("a query that folds to nothing finds something",
                  "query " + hex(query) + " text " + hex(text) + " finds " + show(library));
        }
        continue;
      }
      switch (excluded(oracle, query, text)) {
        case exclusion::contraction_starter:
          ++skipped_contraction;
          continue;
        case exclusion::query_ends_in_prevowel:
          ++skipped_prevowel;
          continue;
        case exclusion::none:
          break;
      }

      ++compared;
      bool failed = false;
      const ranges expected = oracle.find_all(query, text, failed);
      if (failed) {
        ++usearch_errors;
        continue;
      }
      if (!expected.empty()) ++usearch_found;
      if (library == expected) continue;
      if (++disagreements > 10) continue;  // the first ten are shrunk and shown
      const counterexample small = compare.shrink(counterexample{query, text, library, expected});
      ADD_FAILURE() << "search_pattern and usearch disagree\n"
                    << "  query " << hex(small.query) << "\n  text  " << hex(small.text)
                    << "\n  search_pattern " << show(small.library) << "\n  usearch        "
                    << show(small.usearch) << "\n  (found as query " << hex(query) << " in text "
                    << hex(text) << ": search_pattern " << show(library) << ", usearch "
                    << show(expected) << ")";
    }
  }

  const long skipped = skipped_contraction + skipped_prevowel;
  std::printf(
      "search_pattern vs usearch: %ld pairs; %ld fold to nothing; %ld skipped for a contraction "
      "starter, %ld for a query ending in a prevowel; %ld compared (usearch finds something in "
      "%ld), %ld disagree\n",
      pairs, folds_to_nothing, skipped_contraction, skipped_prevowel, compared, usearch_found,
      disagreements);
  EXPECT_EQ(disagreements, 0);
  EXPECT_EQ(usearch_errors, 0);
  EXPECT_EQ(log.total(), 0) << log.summary();
  // The exclusions stay narrow, and the comparison has something to compare.
  EXPECT_LT(skipped * 20, pairs - folds_to_nothing) << skipped << " pairs skipped";
  EXPECT_GT(compared, pairs * 8 / 10);
  EXPECT_GT(usearch_found * 2, compared);
  EXPECT_GT(folds_to_nothing, 0);
  std::printf("the same queries as \\Q...\\E regex queries: %ld compared, %ld fold to nothing\n",
              quoted.compared, quoted.folds_to_nothing);
  EXPECT_GT(quoted.compared, pairs * 9 / 10);
}

// Compares search_pattern with usearch on pairs, leaving out what the
// differential leaves out. A disagreement is "documented" when `documented`
// says so for the pair and the library finds a match where usearch finds none
// (the library compares a prevowel in written order, where the collator
// compares it swapped with the character after it); any other disagreement is
// reported.
class pair_comparison {
 public:
  explicit pair_comparison(usearch_oracle& oracle) : oracle_(oracle) {}

  template <class Documented>
  void operator()(const std::u16string& query, const std::u16string& text, Documented documented) {
    if (nfc(query) != query || nfc(text) != text) return;
    if (re::search_fold(query).text().empty()) return;
    if (excluded(oracle_, query, text) != exclusion::none) return;
    ++compared;
    bool failed = false;
    const ranges expected = oracle_.find_all(query, text, failed);
    const ranges library = ranges_of(re::search_pattern(query).find_all(text));
    EXPECT_FALSE(failed);
    if (library == expected) return;
    if (expected.empty() && !library.empty() && documented()) {
      ++documented_differences;
    } else if (++disagreements <= 10) {
      ADD_FAILURE() << "query " << hex(query) << " text " << hex(text) << ": search_pattern "
                    << show(library) << ", usearch " << show(expected);
    }
  }

  long compared = 0;
  long disagreements = 0;
  long documented_differences = 0;

 private:
  usearch_oracle& oracle_;
};

// Whether `c` folds to more than one code point (Lao U+0EDC folds to U+0EAB U+0E99).
bool expands(UChar32 c) {
  std::u16string text;
  append_code_point(text, c);
  const std::u16string folded = re::search_fold(text).text();
  int32_t at = 0;
  const auto size = static_cast<int32_t>(folded.size());
  UChar32 first = 0;
  if (size > 0) U16_NEXT(folded.data(), at, size, first);
  return at < size;
}

// Calls `visit(prevowel, c)` for every Logical_Order_Exception prevowel (Thai,
// Lao, New Tai Lue, Tai Viet) and every assigned character `c` of its block.
template <class Visit>
long for_each_prevowel_pair(Visit visit) {
  long prevowels = 0;
  for (UChar32 prevowel = 0; prevowel <= 0xFFFF; ++prevowel) {
    if (!u_hasBinaryProperty(prevowel, UCHAR_LOGICAL_ORDER_EXCEPTION)) continue;
    ++prevowels;
    const UBlockCode block = ublock_getCode(prevowel);
    for (UChar32 c = 0; c <= 0xFFFF; ++c) {
      if (ublock_getCode(c) == block && u_charType(c) != U_UNASSIGNED) visit(prevowel, c);
    }
  }
  return prevowels;
}

// Every prevowel before every character of its block: the pair, its fold and
// the second character alone, in the pair and in a longer text.
TEST(SearchPatternUsearch, PrevowelsBeforeEveryCharacterOfTheirBlock) {
  usearch_oracle oracle;
  ASSERT_TRUE(oracle.ready());
  pair_comparison compare(oracle);
  const long prevowels = for_each_prevowel_pair([&](UChar32 prevowel, UChar32 c) {
    std::u16string pair;
    append_code_point(pair, prevowel);
    append_code_point(pair, c);
    std::u16string alone;
    append_code_point(alone, c);
    const std::u16string folded = nfc(re::search_fold(pair).text());
    // A prevowel before a character that expands (Lao U+0EDC) is one of the
    // documented differences: its fold puts the prevowel before a consonant
    // that the collator would swap it with.
    const bool documented = expands(c);
    for (const std::u16string& text : {pair, u"a" + pair + u"a"}) {
      for (const std::u16string& query : {pair, folded, alone}) {
        compare(query, text, [&] { return documented; });
      }
    }
  });
  std::printf(
      "prevowel pairs: %ld prevowels, %ld query/text pairs compared, %ld documented differences, "
      "%ld other disagreements\n",
      prevowels, compare.compared, compare.documented_differences, compare.disagreements);
  EXPECT_EQ(compare.disagreements, 0);
  EXPECT_LT(compare.documented_differences, compare.compared / 100);
  EXPECT_GE(prevowels, 19);
  EXPECT_GT(compare.compared, 5000);
}

// A prevowel and the character after it written apart by a character the
// collator ignores (soft hyphen, a mark, ZWJ, U+0000), against the two
// adjacent: the collator swaps a prevowel and its consonant only when they are
// adjacent.
TEST(SearchPatternUsearch, PrevowelWrittenApartFromTheNextCharacter) {
  usearch_oracle oracle;
  ASSERT_TRUE(oracle.ready());
  pair_comparison compare(oracle);
  const std::u16string apart[] = {u"\u00AD", u"\u0301", u"\u200D", std::u16string(1, u'\0')};
  for_each_prevowel_pair([&](UChar32 prevowel, UChar32 c) {
    std::u16string pair;
    append_code_point(pair, prevowel);
    append_code_point(pair, c);
    for (const std::u16string& between : apart) {
      std::u16string separated;
      append_code_point(separated, prevowel);
      separated += between;
      append_code_point(separated, c);
      // Written apart on one side only: a documented difference. The same
      // form on both sides must agree.
      compare(pair, separated, [] { return true; });
      compare(separated, pair, [] { return true; });
      compare(separated, separated, [] { return false; });
    }
  });
  std::printf(
      "prevowel written apart: %ld query/text pairs compared, %ld documented differences, %ld "
      "other disagreements\n",
      compare.compared, compare.documented_differences, compare.disagreements);
  EXPECT_EQ(compare.disagreements, 0);
  EXPECT_GT(compare.compared, 5000);
}

// UTF-8 text with ill-formed sequences: the library reads each maximal subpart
// as U+FFFD, so its matches are those in the text ICU's U8_NEXT_OR_FFFD reads,
// and replace_all keeps every byte outside them.
TEST(SearchPatternUtf8, IllFormedSequencesReadAsReplacementCharacters) {
  // 2,000 texts, 4 queries each: 8,000 pairs.
  constexpr int kTexts = 2000;
  constexpr int kQueriesPerText = 4;
  generator make(7);
  failure_log log;
  long pairs = 0;
  long found = 0;
  for (int t = 0; t < kTexts; ++t) {
    std::u16string read;
    const utf8_text damaged = read_utf8(make.damaged_utf8(make.text()), read);
    if (read.empty()) continue;
    for (int k = 0; k < kQueriesPerText; ++k) {
      const std::u16string query = k + 1 == kQueriesPerText ? make.word() : make.query_from(read);
      ++pairs;
      const re::search_pattern pattern(query);
      const ranges expected = ranges_of(pattern.find_all(read));
      const std::vector<re::source_match> matches = pattern.find_all(damaged.bytes);
      const ranges bytes = ranges_of(matches);
      const std::string where = "query " + hex(query) + " text read as " + hex(read);
      if (!expected.empty()) ++found;
      if (!well_formed(matches, damaged.bytes.size())) {
        log.add("UTF-8 matches out of order, overlapping or with wrong groups", where);
      }
      if (to_utf16(bytes, damaged) != expected) {
        log.add("UTF-8 find_all differs from UTF-16 on the text as read",
                where + " UTF-16 " + show(expected) + " UTF-8 bytes " + show(bytes));
      }
      check_utf8_agreement(pattern, damaged.bytes, bytes, log, where);
    }
  }
  EXPECT_EQ(log.total(), 0) << log.summary();
  EXPECT_GT(found * 2, pairs);
}

// The header's examples, each also checked against usearch.
TEST(SearchPatternUsearch, HeaderExamplesAgreeWithUsearch) {
  usearch_oracle oracle;
  ASSERT_TRUE(oracle.ready());
  struct example {
    std::u16string query;
    std::u16string text;
    ranges expected;
  };
  const example examples[] = {
      {u"lodz", u"\u0141\u00F3d\u017A, \u0141OD\u0179", {{0, 4}, {6, 10}}},
      {u"usb", u"\uFF35\uFF33\uFF22 cable", {{0, 3}}},
      {u"\u0141\u00F3d\u017A", u"lodz", {{0, 4}}},
      {u"ss", u"\u00DFs", {{0, 1}}},
      {u"s", u"\u00DF", {}},         // not inside ß
      {u"e", u"e\u0301", {{0, 2}}},  // the mark comes along
      {u"a", u"\u00ADa", {{1, 2}}},  // the soft hyphen does not
      {u"\U0001F469",
       u"\U0001F469\u200D\U0001F4BB",
       {{0, 3}}},                                          // 👩 in 👩‍💻, with the ZWJ
      {u"\U0001F4BB", u"\U0001F469\u200D\U0001F4BB", {}},  // 💻 does not start a cluster
      {u"naive", u"NA\u00CFVE na\u00EFve", {{0, 5}, {6, 11}}},
      {u"\u0939\u093F\u0928\u0926\u0940", u"\u0939\u093F\u0928\u094D\u0926\u0940", {}},  // virama
      {u"i", u"\u0131", {}},             // ı is not i
      {u"\u0438", u"\u0439", {}},        // и is not й
      {u"th", u"\u00FE", {}},            // þ is not th
      {u"\u0E01", u"\u0E40\u0E01", {}},  // no edge inside เก
      {u"\u0E40", u"\u0E40\u0E01", {}},
      {u"kobenhavn", u"K\u00F8benhavn", {{0, 9}}},
      {u"123", u"\u0661\u0662\u0663", {{0, 3}}},
      {u"\u304B", u"\u304C", {{0, 1}}},  // か in が
  };
  for (const example& e : examples) {
    const ranges library = ranges_of(re::search_pattern(e.query).find_all(e.text));
    bool failed = false;
    const ranges usearch = oracle.find_all(e.query, e.text, failed);
    EXPECT_EQ(library, e.expected) << "query " << hex(e.query) << " text " << hex(e.text) << ": "
                                   << show(library) << ", expected " << show(e.expected);
    EXPECT_FALSE(failed);
    EXPECT_EQ(usearch, e.expected)
        << "usearch on query " << hex(e.query) << " text " << hex(e.text) << ": " << show(usearch);
  }

  EXPECT_TRUE(re::search_pattern(u"lodz").found_in("Lodz"));
  EXPECT_EQ(re::search_pattern("cafe").replace_all("Caf\xc3\xa9 cr\xc3\xa8me", "tea"),
            "tea cr\xc3\xa8me");
}

// The differences the header documents, so that the comparison above may
// leave them out: a contraction read as its parts, and a query that ends in a
// prevowel.
TEST(SearchPatternUsearch, DocumentedDifferencesFromUsearch) {
  usearch_oracle oracle;
  ASSERT_TRUE(oracle.ready());
  bool failed = false;
  // Sara aa written after nikhahit: the collator reads sara am, the fold reads sara aa.
  EXPECT_TRUE(oracle.find_all(u"\u0E32", u"\u0E4D\u0E32", failed).empty());
  EXPECT_TRUE(re::search_pattern(u"\u0E32").found_in(u"\u0E4D\u0E32"));
  // ก่ไ in ไก: the collator compares the text's prevowel after its consonant.
  EXPECT_EQ(oracle.find_all(u"\u0E01\u0E48\u0E44", u"\u0E44\u0E01", failed), (ranges{{0, 2}}));
  EXPECT_FALSE(re::search_pattern(u"\u0E01\u0E48\u0E44").found_in(u"\u0E44\u0E01"));
  EXPECT_FALSE(failed);
}

}  // namespace
