// The free functions run on many threads at once; each thread owns its own
// handles and regex objects. Every result is checked. Built and run under
// ThreadSanitizer as well.
#include <chrono>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/normalizer2.h>
#include <unicode/regex.h>
#include <unicode/translit.h>

#include <scl/regex.h>

#include "support/threads.h"

namespace {

namespace constants = scl::regex::constants;
using namespace std::string_literals;

// ICU is not built with ThreadSanitizer: the ordering its own once-initialisation
// provides (atomics inside libicuuc) is invisible to the sanitizer, which then reports
// ICU's lazily built shared data as raced. So ICU's one-time set-up is done here, with
// raw ICU and not through this library, before any thread starts; every static of this
// library still meets its first use on many threads at once.
class IcuSetUp : public testing::Environment {
 public:
  void SetUp() override {
    UErrorCode status = U_ZERO_ERROR;
    icu::RegexMatcher matcher(icu::UnicodeString(u"(?i)\\w+\\s"), 0, status);
    std::unique_ptr<icu::Transliterator> marks(icu::Transliterator::createInstance(
        icu::UnicodeString(u"any-NFD; [:Nonspacing_Mark:] any-Remove; any-NFC"), UTRANS_FORWARD,
        status));
    (void)icu::Normalizer2::getNFCInstance(status);
    (void)u_getIntPropertyValue(0x0300, UCHAR_LEAD_CANONICAL_COMBINING_CLASS);
    (void)u_getIntPropertyValue(0x0300, UCHAR_NFC_QUICK_CHECK);
    ASSERT_TRUE(U_SUCCESS(status));
  }
};
const testing::Environment* const kIcuSetUp = testing::AddGlobalTestEnvironment(new IcuSetUp);

constexpr int kThreads = 8;
constexpr int kRounds = 40;

int run_on_threads(const std::function<int(int, int)>& work) {
  return scl_regex_test::run_on_threads(kThreads, kRounds, work);
}

// A subject that differs per thread and round, so results cannot be shared by accident.
std::u16string numbered(int thread, int round) {
  return u"caf\u00e9 " + std::u16string(static_cast<std::size_t>(thread + 1), u'x') + u" " +
         std::u16string(static_cast<std::size_t>(round % 7 + 1), u'7');
}

// The fold table meets its first use on many threads at once; then one
// search_pattern serves every thread, in UTF-16 and UTF-8.
TEST(ConcurrentSearchFolding, OnePatternSharedByEveryThread) {
  EXPECT_EQ(run_on_threads([](int t, int) {
              const scl::regex::search_pattern own(u"\u0141\u00f3d\u017a");
              const std::u16string text =
                  u"lodz " + std::u16string(static_cast<std::size_t>(t), u'x');
              return own.find_all(text).size() == 1 ? 0 : 1;
            }),
            0);
  const scl::regex::search_pattern shared(u"creme");
  EXPECT_EQ(
      run_on_threads([&shared](int t, int r) {
        const std::u16string text =
            std::u16string(static_cast<std::size_t>(t + r), u'x') + u" cr\u00e8me CREME";
        const std::string utf8 =
            std::string(static_cast<std::size_t>(t + r), 'x') + " cr\xc3\xa8me CREME";
        const std::vector<scl::regex::source_match> found = shared.find_all(text);
        const std::vector<scl::regex::source_match> found8 = shared.find_all(utf8);
        const auto at = static_cast<std::size_t>(t + r + 1);
        int wrong = 0;
        wrong += found.size() == 2 && found[0].start == at && found[1].start == at + 6 ? 0 : 1;
        wrong += found8.size() == 2 && found8[0].start == at && found8[1].start == at + 7 ? 0 : 1;
        wrong += shared.replace_all(text, u"x") ==
                         std::u16string(static_cast<std::size_t>(t + r), u'x') + u" x x"
                     ? 0
                     : 1;
        return wrong;
      }),
      0);
}

TEST(ConcurrentSearchFolding, OneRegexQuerySharedByEveryThread) {
  // Each thread also compiles queries with classes of its own (the class
  // sets and their first-use tables are made once per process).
  EXPECT_EQ(run_on_threads([](int t, int) {
              const scl::regex::search_pattern own(t % 2 == 0 ? u"\\p{Lu}\\w+" : u"[[:alpha:]]+",
                                                   scl::regex::query_syntax::regex);
              return own.find_all(u"\u00c9t\u00e9 !").size() == 1 ? 0 : 1;
            }),
            0);
  const scl::regex::search_pattern shared(u"(?<word>cr[e\u00e8]me)\\s(\\w+)",
                                          scl::regex::query_syntax::regex);
  EXPECT_EQ(run_on_threads([&shared](int t, int r) {
              const std::u16string pad(static_cast<std::size_t>(t + r), u'x');
              const std::u16string text = pad + u" CR\u00c8ME br\u00fbl\u00e9e";
              const std::vector<scl::regex::source_match> found = shared.find_all(text);
              const auto at = static_cast<std::size_t>(t + r + 1);
              int wrong = 0;
              wrong += found.size() == 1 && found[0].start == at && found[0].groups.size() == 3 &&
                               found[0].groups[2].first == at + 6
                           ? 0
                           : 1;
              wrong +=
                  shared.replace_all(text, u"$2 ${word}") != pad + u" br\u00fbl\u00e9e CR\u00c8ME";
              return wrong;
            }),
            0);
}

// The tables of the search options, the word break iterators and the class
// alphabets meet their first use on many threads at once; then one pattern
// with options serves every thread.
TEST(ConcurrentSearchFolding, OnePatternWithOptionsSharedByEveryThread) {
  namespace re = scl::regex;
  auto options_of = [](int index) {
    re::search_options options;
    options.match_case = (index & 1) != 0;
    options.whole_words = (index & 2) != 0;
    options.ignore_punctuation = (index & 4) != 0;
    options.diacritics = static_cast<re::diacritics_rule>((index >> 3) % 3);
    return options;
  };
  EXPECT_EQ(
      scl_regex_test::run_on_threads(
          24, 1,
          [&](int t, int) {
            const re::search_options options = options_of(t);
            const re::search_pattern literal(u"Caf\u00e9", re::query_syntax::literal, options);
            const re::search_pattern regex(u"C[a\u00e0]f\\w+", re::query_syntax::regex, options);
            const std::u16string text = u"un Caf\u00e9, deux";
            return (literal.found_in(text) ? 0 : 1) + (regex.found_in(text) ? 0 : 1);
          }),
      0);
  re::search_options options;
  options.match_case = true;
  options.diacritics = re::diacritics_rule::match_typed;
  options.whole_words = true;
  options.ignore_punctuation = true;
  const re::search_pattern shared(u"NewYork", re::query_syntax::literal, options);
  const re::search_pattern shared_regex(u"(Caf[e\u00e9])\\b", re::query_syntax::regex, options);
  EXPECT_EQ(run_on_threads([&](int t, int r) {
              const std::u16string pad(static_cast<std::size_t>(t + r), u'x');
              const std::u16string text = pad + u" New-York, newyork, Caf\u00e9.";
              const std::string utf8 = std::string(static_cast<std::size_t>(t + r), 'x') +
                                       " New-York, newyork, Caf\xc3\xa9.";
              const auto at = static_cast<std::size_t>(t + r + 1);
              const std::vector<re::source_match> found = shared.find_all(text);
              const std::vector<re::source_match> found8 = shared.find_all(utf8);
              const std::vector<re::source_match> cafe = shared_regex.find_all(text);
              int wrong = 0;
              wrong += found.size() == 1 && found[0].start == at && found[0].end == at + 8 ? 0 : 1;
              wrong += found8.size() == 1 && found8[0].start == at ? 0 : 1;
              wrong += cafe.size() == 1 && cafe[0].groups[1].first == at + 19 ? 0 : 1;
              return wrong;
            }),
            0);
}

// Eight threads meet eight new languages at once, two threads each: every
// language's tables are built while others are, each once, and every thread
// finds what its language says; then one Danish pattern serves every thread.
TEST(ConcurrentSearchFolding, EightThreadsMeetEightNewLanguagesAtOnce) {
  namespace re = scl::regex;
  struct language {
    const char* locale;
    const char16_t* query;
    const char16_t* finds;
    const char16_t* misses;
  };
  static const language languages[] = {
      {"sv", u"\u00e5nger", u"\u00c5NGER", u"Anger"},
      {"da", u"aarhus", u"\u00c5rhus", u"arhus"},
      {"tr", u"\u0131", u"I", u"i"},
      // A collation the tag names, built from ICU's collator at its first use.
      {"de-u-co-phonebk", u"ae", u"\u00e4", u"a"},
      {"es", u"a\u00f1o", u"A\u00d1O", u"ano"},
      {"fi", u"\u00f6", u"\u00f8", u"o"},
      {"nb", u"aa", u"\u00e5", u"a"},
      {"ar", u"\u0627\u062d\u0645\u062f", u"\u0623\u062d\u0645\u062f", u"\u062d\u0645\u062f"},
  };
  EXPECT_EQ(scl_regex_test::run_on_threads(
                16, 1,
                [&](int t, int) {
                  const language& l = languages[t % 8];
                  re::search_options options;
                  options.locale = l.locale;
                  const re::search_pattern pattern(l.query, re::query_syntax::literal, options);
                  return (pattern.found_in(l.finds) ? 0 : 1) +
                         (pattern.found_in(l.misses) ? 1 : 0) +
                         (re::search_fold(l.finds, options).text() ==
                                  re::search_fold(l.query, options).text()
                              ? 0
                              : 1);
                }),
            0);
  re::search_options danish;
  danish.locale = "da";
  danish.whole_words = true;
  const re::search_pattern shared(u"aarhus", re::query_syntax::literal, danish);
  EXPECT_EQ(run_on_threads([&](int t, int r) {
              const std::u16string pad(static_cast<std::size_t>(t + r), u'x');
              const std::vector<re::source_match> found =
                  shared.find_all(pad + u" \u00c5rhus, AARHUS, Aarhusgade");
              const auto at = static_cast<std::size_t>(t + r + 1);
              return found.size() == 2 && found[0].start == at && found[1].start == at + 7 ? 0 : 1;
            }),
            0);
}

TEST(ConcurrentFreeFunctions, OneShotReplaceUtf16AndUtf8) {
  EXPECT_EQ(run_on_threads([](int t, int r) {
              const std::u16string subject = numbered(t, r);
              const std::u16string expected =
                  u"tea " + std::u16string(static_cast<std::size_t>(t + 1), u'x') + u" #";
              int wrong = 0;
              wrong += scl::regex::regex_replace(subject, u"CAFE|7+", u"$0", 0x5) !=
                       scl::regex::prepare_text(subject, 0x5);
              const std::u16string replaced = scl::regex::regex_replace(
                  scl::regex::regex_replace(subject, u"cafe", u"tea", 0x5), u"7+", u"#", 0);
              wrong += replaced != expected;
              wrong += scl::regex::regex_replace_first(u"aaa", u"a", u"b", 0) != u"baa";
              wrong +=
                  scl::regex::regex_replace("\xC3\xA9t\xC3\xA9"s, "\xC3\xA9"s, "e"s, 0) != "ete";
              return wrong;
            }),
            0);
}

TEST(ConcurrentFreeFunctions, TimeLimitsStopOnlyTheirOwnThreadsSearches) {
  // Even threads run never-ending patterns under a 30 ms limit; odd threads run
  // ordinary searches without one, which must see no limit at all.
  const std::u16string hanging[] = {u"(a?)+?b", u"(a|)+?b", u"(a*)+?b"};
  EXPECT_EQ(scl_regex_test::run_on_threads(
                kThreads, 3,
                [&](int t, int r) {
                  int wrong = 0;
                  if (t % 2 == 0) {
                    scl::regex::match_time_limit limit(std::chrono::milliseconds(30));
                    const std::u16string& pattern = hanging[(t / 2 + r) % 3];
                    wrong += scl::regex::regex_search(u"aac", pattern.c_str(), false, 0);
                    wrong += scl::regex::regex_replace(u"ab aac", pattern, u"x", 0) != u"ab aac";
                    wrong += !limit.exceeded();
                  } else {
                    for (int i = 0; i < 200; ++i) {
                      const std::u16string subject = numbered(t, r + i);
                      wrong += !scl::regex::regex_search(subject.c_str(), u"CAFE x+", false, 0x5);
                      wrong += scl::regex::regex_replace(subject, u"7+", u"#", 0).back() != u'#';
                    }
                  }
                  return wrong;
                }),
            0);
}

TEST(ConcurrentFreeFunctions, Escape) {
  EXPECT_EQ(run_on_threads([](int t, int) {
              const std::u16string text =
                  u"(" + std::u16string(static_cast<std::size_t>(t), u'.') + u") x";
              std::u16string expected = u"\\(";
              for (int i = 0; i < t; ++i) expected += u"\\.";
              expected += u"\\)\\ x";
              return static_cast<int>(scl::regex::regex_escape(text) != expected);
            }),
            0);
}

TEST(ConcurrentFreeFunctions, PointerFormSearch) {
  EXPECT_EQ(run_on_threads([](int t, int r) {
              const std::u16string subject = numbered(t, r);
              int wrong = 0;
              wrong += !scl::regex::regex_search(subject.c_str(), u"cafe x+", false, 0x4);
              wrong += scl::regex::regex_search(subject.c_str(), u"cafe x+", false, 0);
              wrong += !scl::regex::regex_search(subject.c_str(), u"CAF\u00c9.*7$", true, 0x1);
              return wrong;
            }),
            0);
}

TEST(ConcurrentFreeFunctions, PrefixSuffixAndTuples) {
  EXPECT_EQ(run_on_threads([](int t, int r) {
              const std::u16string subject = numbered(t, r);
              int wrong = 0;
              const auto [prefix, suffix] =
                  scl::regex::regex_search_prefix_suffix(subject, u"x+", 0);
              wrong += prefix != u"caf\u00e9 ";
              wrong += suffix != u" " + std::u16string(static_cast<std::size_t>(r % 7 + 1), u'7');
              std::vector<scl::regex::match_tuple> out;
              scl::regex::regex_search(subject, u"(\\w)(\\w)", out, constants::ignore_diacritics);
              wrong += out.empty() || std::get<0>(out[0]) != u"ca" ||
                       std::get<1>(out[0]) != std::vector<std::u16string>{u"c", u"a"};
              return wrong;
            }),
            0);
}

TEST(ConcurrentFreeFunctions, EachThreadWithItsOwnHandleAndRegex) {
  EXPECT_EQ(
      run_on_threads([](int t, int r) {
        const std::u16string subject = numbered(t, r);
        int wrong = 0;
        const scl::regex::matcher_ptr handle = scl::regex::createMatcher(u"(x+) (7+)", 0);
        wrong += !scl::regex::regex_search(handle, subject, false);
        wrong += scl::regex::get_group(handle, 1).size() != static_cast<std::size_t>(t + 1);
        wrong += scl::regex::regex_replace(handle, subject, [](const std::u16string& m, bool&) {
                   return u"[" + m + u"]";
                 }) != u"caf\u00e9 [" + subject.substr(5) + u"]";
        scl::regex::regex re(u"(?<w>\\w+)", constants::ignore_diacritics);
        int words = 0;
        for (scl::regex::regex_iterator it(subject, re); it->start != scl::regex::npos; ++it) {
          wrong += (*it)["w"].str().empty();
          ++words;
        }
        wrong += words != 3;
        wrong += re.getGroupNamesIfAvailable().size() != 0;  // scanned text is now the subject
        return wrong;
      }),
      0);
}

TEST(ConcurrentFreeFunctions, ExceptionMessages) {
  EXPECT_EQ(run_on_threads([](int t, int) {
              int wrong = 0;
              try {
                (void)scl::regex::createMatcher(t % 2 == 0 ? u"(" : u"[", 0);
                ++wrong;
              } catch (const scl::regex::regex_exception& e) {
                const char* expected = t % 2 == 0
                                           ? "Incorrectly nested parentheses in regexp pattern."
                                           : "Missing closing bracket on a bracket expression.";
                wrong += std::strcmp(e.what(), expected) != 0;
              }
              return wrong;
            }),
            0);
}

}  // namespace
