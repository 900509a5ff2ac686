// Deterministic texts for the benchmarks, and the small amount of raw ICU work
// the ICU twins share (conversions, the preparation of subjects in set-up).
#ifndef SCL_REGEX_BENCH_TEXTS_H
#define SCL_REGEX_BENCH_TEXTS_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/uregex.h>

namespace bench {

// Plain ASCII words; accented words, a few written decomposed (so not in NFC);
// the same accented words all precomposed (so the text is already in NFC);
// French and Vietnamese words, precomposed.
enum class kind { ascii, accented, accented_nfc, french, vietnamese };

inline const char* kind_name(kind k) {
  switch (k) {
    case kind::ascii:
      return "ascii";
    case kind::accented:
      return "accented";
    case kind::accented_nfc:
      return "accented-nfc";
    case kind::french:
      return "french";
    default:
      return "vietnamese";
  }
}

// "32", "1K", "1M": sizes in UTF-16 units, as they appear in benchmark names.
inline std::string size_name(std::size_t units) {
  if (units >= (1u << 20)) return std::to_string(units >> 20) + "M";
  if (units >= (1u << 10)) return std::to_string(units >> 10) + "K";
  return std::to_string(units);
}

// Computes a value once per key for the whole process (benchmark functions run
// several times, sometimes on several threads) and hands out the same one.
template <class T, class Make>
const T& remember(const std::string& key, Make make) {
  static std::mutex mutex;
  static std::map<std::string, T> values;
  const std::lock_guard<std::mutex> lock(mutex);
  auto it = values.find(key);
  if (it == values.end()) it = values.emplace(key, make()).first;
  return it->second;
}

// A fixed linear congruential sequence: the same texts on every run.
class sequence {
 public:
  std::size_t next(std::size_t bound) {
    state_ = state_ * 6364136223846793005u + 1442695040888963407u;
    return static_cast<std::size_t>(state_ >> 33) % bound;
  }

 private:
  std::uint64_t state_ = 42;
};

inline const std::vector<std::u16string>& words(kind k) {
  static const std::vector<std::u16string> ascii = {
      u"the",   u"quick", u"brown", u"fox",  u"jumps",  u"over",  u"lazy",  u"dog",    u"lorem",
      u"ipsum", u"dolor", u"sit",   u"amet", u"market", u"river", u"stone", u"window", u"paper"};
  // French and Czech, mostly precomposed; the last three are decomposed (e + U+0301).
  static const std::vector<std::u16string> accented = {u"caf\u00e9",
                                                       u"cr\u00e8me",
                                                       u"gar\u00e7on",
                                                       u"d\u00e9j\u00e0",
                                                       u"\u00e9l\u00e8ve",
                                                       u"No\u00ebl",
                                                       u"fa\u00e7ade",
                                                       u"o\u00f9",
                                                       u"k\u016f\u0148",
                                                       u"p\u0159\u00edli\u0161",
                                                       u"\u017elu\u0165ou\u010dk\u00fd",
                                                       u"\u00fap\u011bl",
                                                       u"\u010f\u00e1belsk\u00e9",
                                                       u"\u00f3dy",
                                                       u"mesto",
                                                       u"le",
                                                       u"et",
                                                       u"cafe\u0301",
                                                       u"e\u0301te\u0301",
                                                       u"re\u0301sume\u0301"};
  static const std::vector<std::u16string> accented_nfc = [] {
    std::vector<std::u16string> list(accented.begin(), accented.end() - 3);
    for (const char16_t* word : {u"caf\u00e9", u"\u00e9t\u00e9", u"r\u00e9sum\u00e9"})
      list.emplace_back(word);
    return list;
  }();
  static const std::vector<std::u16string> french = {u"le",
                                                     u"caf\u00e9",
                                                     u"cr\u00e8me",
                                                     u"br\u00fbl\u00e9e",
                                                     u"\u00e0",
                                                     u"la",
                                                     u"gar\u00e7on",
                                                     u"d\u00e9j\u00e0",
                                                     u"\u00e9l\u00e8ve",
                                                     u"no\u00ebl",
                                                     u"fa\u00e7ade",
                                                     u"o\u00f9",
                                                     u"p\u00e8re",
                                                     u"na\u00efve",
                                                     u"for\u00eat",
                                                     u"h\u00f4tel",
                                                     u"o\u00f9",
                                                     u"et",
                                                     u"des",
                                                     u"\u00e9t\u00e9",
                                                     u"ma\u00efs",
                                                     u"c\u0153ur",
                                                     u"fl\u00e2ner",
                                                     u"th\u00e9\u00e2tre",
                                                     u"une",
                                                     u"qui"};
  static const std::vector<std::u16string> vietnamese = {
      u"Ti\u1EBFng", u"Vi\u1EC7t",        u"l\u00e0",         u"ng\u00f4n",
      u"ng\u1EEF",   u"c\u1EE7a",         u"ng\u01B0\u1EDDi", u"\u0111\u01B0\u1EE3c",
      u"nh\u1EA5t",  u"n\u01B0\u1EDBc",   u"qu\u1ED1c",       u"gia",
      u"h\u1ECDc",   u"s\u1EEDa",         u"\u0111\u1EB9p",   u"kh\u00f4ng",
      u"nh\u1EEFng", u"tr\u01B0\u1EDDng", u"v\u00e0",         u"m\u1ED9t"};
  switch (k) {
    case kind::ascii:
      return ascii;
    case kind::accented:
      return accented;
    case kind::accented_nfc:
      return accented_nfc;
    case kind::french:
      return french;
    default:
      return vietnamese;
  }
}

// The word the search benchmarks look for; it ends every words_text and
// appears nowhere else, so a search scans the whole subject.
inline const std::u16string& last_word() {
  static const std::u16string word = u"quokka";
  return word;
}

// Exactly `units` UTF-16 units of words, ending with " quokka".
inline const std::u16string& words_text(kind k, std::size_t units) {
  return remember<std::u16string>(kind_name(k) + size_name(units), [&] {
    const std::u16string tail = u" " + last_word();
    const std::size_t body = units > tail.size() ? units - tail.size() : 0;
    std::u16string text;
    sequence pick;
    while (text.size() < body) {
      if (!text.empty()) text += u' ';
      text += words(k)[pick.next(words(k).size())];
    }
    text.resize(body);
    return text + tail;
  });
}

// Exactly `units` UTF-16 units of accented words with a record "name=digits"
// about every 100 units (some 10,000 of them in 1 MiB).
inline const std::u16string& record_text(std::size_t units) {
  return remember<std::u16string>(size_name(units), [&] {
    const std::vector<std::u16string>& list = words(kind::accented);
    std::u16string text;
    sequence pick;
    while (text.size() < units) {
      const std::size_t block_end = text.size() + 90;
      while (text.size() < block_end) text += list[pick.next(list.size())] + u' ';
      text += list[pick.next(list.size())] + u'=';
      for (int digit = 0; digit < 4; ++digit) text += static_cast<char16_t>(u'0' + pick.next(10));
      text += u' ';
    }
    text.resize(units);
    return text;
  });
}

// The pattern that finds the records of record_text, with name and digits as groups 1 and 2.
inline const std::u16string& record_pattern() {
  static const std::u16string pattern = u"(\\w+)=(\\d+)";
  return pattern;
}

inline icu::UnicodeString to_icu(const std::u16string& text) {
  return icu::UnicodeString(text.data(), static_cast<int32_t>(text.size()));
}

inline std::u16string from_icu(const icu::UnicodeString& text) {
  return std::u16string(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

// ICU's compile flags for the library's option bits: "." always matches line
// ends, 0x1 adds case-insensitivity.
inline std::uint32_t icu_flags(std::uint32_t options) {
  return UREGEX_DOTALL | ((options & 0x1) != 0 ? UREGEX_CASE_INSENSITIVE : 0);
}

// `text` prepared with raw ICU as the option bits ask: NFC (0x2), then without
// non-spacing marks (0x4: NFD, drop every Mn, NFC, as the library's transform
// does). Used in set-up, outside the timed loops; done by hand rather than
// with a Transliterator, which takes quadratic time on long texts.
inline icu::UnicodeString icu_prepare(icu::UnicodeString text, std::uint32_t options) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* nfc = icu::Normalizer2::getNFCInstance(status);
  if ((options & 0x2) != 0) text = nfc->normalize(text, status);
  if ((options & 0x4) != 0) {
    const icu::UnicodeString decomposed =
        icu::Normalizer2::getNFDInstance(status)->normalize(text, status);
    icu::UnicodeString kept;
    for (int32_t i = 0; i < decomposed.length(); i = decomposed.moveIndex32(i, 1)) {
      const UChar32 c = decomposed.char32At(i);
      if (u_charType(c) != U_NON_SPACING_MARK) kept.append(c);
    }
    text = nfc->normalize(kept, status);
  }
  return text;
}

}  // namespace bench

#endif  // SCL_REGEX_BENCH_TEXTS_H
