// The usearch differential: search_pattern against ICU's usearch set up as
// the search options say, on random NFC texts over many scripts, with queries
// cut from them (some replaced by their own fold) and dictionary words. Every
// match must be the one usearch reports, in UTF-16 and, mapped back, in UTF-8;
// found_in, find_first, replace_all and the query quoted as a regex must
// agree with find_all.
// The oracle and what the comparison leaves out are in usearch_oracle.h.
#ifndef SCL_REGEX_TESTS_SUPPORT_SEARCH_DIFFERENTIAL_H
#define SCL_REGEX_TESTS_SUPPORT_SEARCH_DIFFERENTIAL_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/ucoleitr.h>
#include <unicode/unorm2.h>
#include <unicode/usearch.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <scl/regex/search_pattern.h>

#include "support/usearch_oracle.h"

namespace scl_regex_test::search_differential {

// ---------------------------------------------------------------------------
// Text helpers
// Code points in hexadecimal, for failure messages.
inline std::string hex(std::u16string_view text) {
  std::string out;
  char buffer[16];
  for (const UChar32 c : code_points_of(text)) {
    std::snprintf(buffer, sizeof buffer, out.empty() ? "%04X" : " %04X", static_cast<unsigned>(c));
    out += buffer;
  }
  return "[" + out + "]";
}

inline std::string show(const ranges& matches) {
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

inline utf8_text to_utf8(std::u16string_view text) {
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
inline utf8_text read_utf8(std::string bytes, std::u16string& text) {
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
inline ranges to_utf16(const ranges& byte_ranges, const utf8_text& text) {
  ranges out;
  auto at = [&](std::size_t offset) {
    return offset < text.utf16_offset.size() ? text.utf16_offset[offset] : kNowhere;
  };
  for (const auto& [start, end] : byte_ranges) out.emplace_back(at(start), at(end));
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
// Random texts and queries

// Words in many scripts. None holds a contraction starter (ํา, ໍາ, ཨཱི, ཀྲྀ):
// every pair with one is left out. Single characters drawn from the Thai, Lao
// and Tibetan blocks still bring a few.
inline const char16_t* const kWords[] = {
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

// Words that languages' search rules read in their own way: Nordic å, ä, ö,
// ø, æ and Danish "aa", Turkish dotted and dotless i, German umlauts, Spanish
// ñ, Slovak "ch", Hungarian digraphs, Welsh "ll", Arabic alef and teh
// marbuta forms, Vietnamese tones.
inline const char16_t* const kLanguageWords[] = {
    u"Århus", u"Aarhus", u"aarhus", u"AArhus", u"AAR",     u"aa",     u"Aa",  u"å",     u"Å",
    u"Ånger", u"anger",  u"Anger",  u"öl",     u"Öl",      u"øl",     u"ØL",  u"ol",    u"ä",
    u"ae",    u"æ",      u"Ä",      u"Müller", u"Mueller", u"muller", u"ü",   u"y",     u"ı",
    u"I",     u"i",      u"İ",      u"Iğdır",  u"ığdır",   u"año",    u"ano", u"ñ",     u"N",
    u"chata", u"Chata",  u"CH",     u"ch",     u"h",       u"c",      u"cs",  u"ccs",   u"dzs",
    u"gy",    u"ggy",    u"sz",     u"zs",     u"ll",      u"Ll",     u"dd",  u"ff",    u"ng",
    u"rh",    u"th",     u"احمد",   u"أحمد",   u"إحمد",    u"آ",      u"ا",   u"مدرسة", u"مدرسه",
    u"ة",     u"ه",      u"ى",      u"ي",      u"Việt",    u"viet",   u"ơ",   u"ư",     u"đ",
    u"d",     u"ł",      u"l",      u"ß",      u"ss",      u"œ",      u"oe",  u"ĳ",     u"ij",
    u"þ",     u"ð"};

// Separators, marks and invisible characters.
inline const char16_t* const kExtras[] = {u"\u00AD", u"\u200D", u"\u200C", u"\uFE0F", u" ",
                                          u" ",      u" ",      u", ",     u"-",      u".",
                                          u"\n",     u"\r\n",   u"\u0301", u"\u0300", u"\u0308",
                                          u"\u0323", u"\u0327", u"\u0338", u"\u034F", u"\u2060"};

// Ranges of code points to draw single characters from.
inline constexpr UChar32 kRanges[][2] = {
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
  // With `language_words`, draws from kLanguageWords too.
  explicit generator(std::uint32_t seed, bool language_words = false)
      : random_(seed), language_words_(language_words) {}

  // An NFC text of `tokens` words, extras and single characters.
  std::u16string text() {
    std::u16string out;
    const std::size_t tokens = 4 + pick(40);
    for (std::size_t i = 0; i < tokens; ++i) {
      const std::size_t kind = pick(100);
      if (kind < 55) {
        out += language_words_ && pick(2) == 0 ? kLanguageWords[pick(count_of(kLanguageWords))]
                                               : kWords[pick(count_of(kWords))];
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
  std::u16string word() {
    return nfc(language_words_ && pick(2) == 0 ? kLanguageWords[pick(count_of(kLanguageWords))]
                                               : kWords[pick(count_of(kWords))]);
  }

 private:
  std::size_t pick(std::size_t n) { return static_cast<std::size_t>(random_() % n); }

  std::mt19937 random_;
  bool language_words_;
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
inline bool well_formed(const std::vector<re::source_match>& matches, std::size_t text_size) {
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
inline void check_utf8_agreement(const re::search_pattern& pattern, const std::string& text,
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
inline ranges check_forms(const re::search_pattern& pattern, const re::search_pattern& pattern8,
                          const std::u16string& query, const std::u16string& text,
                          failure_log& log) {
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
  re::search_options options;
  long compared = 0;
  long folds_to_nothing = 0;

  void compare(const std::u16string& query, const std::u16string& text, const ranges& literal,
               failure_log& log) {
    if (query.find(u"\\E") != std::u16string::npos) return;
    if (finds_nothing(options, query)) {
      ++folds_to_nothing;
      return;
    }
    ++compared;
    const std::u16string quoted = u"\\Q" + query + u"\\E";
    const utf8_text text8 = to_utf8(text);
    for (const std::u16string& form : {quoted, u"(?:" + quoted + u")", quoted + u"(?:)"}) {
      const re::search_pattern pattern(form, re::query_syntax::regex, options);
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
  differential(usearch_oracle& oracle, const re::search_options& options)
      : oracle_(oracle), options_(options) {}

  // The disagreement on this pair, if it is one that counts.
  std::optional<counterexample> disagreement(const std::u16string& query,
                                             const std::u16string& text) {
    if (text.empty() || nfc(query) != query || nfc(text) != text) return std::nullopt;
    if (finds_nothing(options_, query)) return std::nullopt;
    if (excluded(oracle_, options_, query, text) != exclusion::none) return std::nullopt;
    bool failed = false;
    counterexample found{
        query, text,
        ranges_of(re::search_pattern(query, re::query_syntax::literal, options_).find_all(text)),
        oracle_.find_all(query, text, failed)};
    if (failed || agrees(oracle_, options_, text, found.library, found.usearch)) {
      return std::nullopt;
    }
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
  re::search_options options_;
};

// What one run of the differential saw.
struct differential_counts {
  long pairs = 0;
  long folds_to_nothing = 0;
  std::map<exclusion, long> skipped;
  long compared = 0;
  long usearch_found = 0;
  long disagreements = 0;
  long usearch_errors = 0;
  long quoted_compared = 0;

  long skipped_total() const {
    long sum = 0;
    for (const auto& entry : skipped) sum += entry.second;
    return sum;
  }

  std::string summary() const {
    std::string out =
        std::to_string(pairs) + " pairs; " + std::to_string(folds_to_nothing) + " fold to nothing;";
    for (const auto& [kind, count] : skipped) {
      out += " " + std::to_string(count) + " skipped for " + name_of(kind) + ";";
    }
    return out + " " + std::to_string(compared) + " compared (usearch finds something in " +
           std::to_string(usearch_found) + "), " + std::to_string(disagreements) + " disagree; " +
           std::to_string(quoted_compared) + " compared as \\Q...\\E regex queries";
  }
};

// Compares search_pattern with `options` and usearch on `texts` random texts
// from `seed`, `queries_per_text` queries each (the last a dictionary word),
// each also in UTF-8, in NFD (usearch not asked) and quoted as a regex. The
// first ten disagreements are shrunk and reported.
inline differential_counts run_differential(const re::search_options& options, std::uint32_t seed,
                                            int texts, int queries_per_text, failure_log& log) {
  differential_counts counts;
  usearch_oracle oracle(options);
  if (!oracle.ready()) {
    ADD_FAILURE() << "usearch cannot be set up";
    return counts;
  }
  differential compare(oracle, options);
  generator make(seed, !options.locale.empty());
  quoted_literal quoted{options};
  for (int t = 0; t < texts; ++t) {
    const std::u16string text = make.text();
    if (text.empty()) continue;
    // The same text decomposed: usearch is not asked, but every form must agree.
    const std::u16string decomposed = nfd(text);
    for (int k = 0; k < queries_per_text; ++k) {
      const std::u16string query = k + 1 == queries_per_text ? make.word() : make.query_from(text);
      ++counts.pairs;
      const re::search_pattern pattern(query, re::query_syntax::literal, options);
      const re::search_pattern pattern8(to_utf8(query).bytes, re::query_syntax::literal, options);
      const ranges library = check_forms(pattern, pattern8, query, text, log);
      if (decomposed != text) check_forms(pattern, pattern8, query, decomposed, log);
      quoted.compare(query, text, library, log);
      if (decomposed != text)
        quoted.compare(query, decomposed, ranges_of(pattern.find_all(decomposed)), log);

      if (finds_nothing(options, query)) {
        // usearch reports empty matches here; the library reports none.
        ++counts.folds_to_nothing;
        if (!library.empty()) {
          log.add("a query that folds to nothing finds something",
                  "query " + hex(query) + " text " + hex(text) + " finds " + show(library));
        }
        continue;
      }
      if (const exclusion kind = excluded(oracle, options, query, text); kind != exclusion::none) {
        ++counts.skipped[kind];
        continue;
      }

      ++counts.compared;
      bool failed = false;
      const ranges expected = oracle.find_all(query, text, failed);
      if (failed) {
        ++counts.usearch_errors;
        continue;
      }
      if (!expected.empty()) ++counts.usearch_found;
      if (agrees(oracle, options, text, library, expected)) continue;
      if (++counts.disagreements > 10) continue;  // the first ten are shrunk and shown
      const counterexample small = compare.shrink(counterexample{query, text, library, expected});
      ADD_FAILURE() << "search_pattern and usearch disagree\n"
                    << "  query " << hex(small.query) << "\n  text  " << hex(small.text)
                    << "\n  search_pattern " << show(small.library) << "\n  usearch        "
                    << show(small.usearch) << "\n  (found as query " << hex(query) << " in text "
                    << hex(text) << ": search_pattern " << show(library) << ", usearch "
                    << show(expected) << ")";
    }
  }
  counts.quoted_compared = quoted.compared;
  return counts;
}

}  // namespace scl_regex_test::search_differential

#endif  // SCL_REGEX_TESTS_SUPPORT_SEARCH_DIFFERENTIAL_H
