// With the cache and without it, every function that compiles for one call
// gives the same results: 10,000 generated calls in a random order with
// repeats, run once compiling every call and once on the cache.
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <scl/regex.h>

#include "i18n/host_i18n.h"
#include "icu/pattern_cache.h"

namespace {

namespace re = scl::regex;

// Valid and invalid patterns; more than the cache keeps, so that entries are evicted.
std::vector<std::u16string> patterns() {
  std::vector<std::u16string> list = {u"(\\w+)=(\\d+)",
                                      u"caf\u00e9",
                                      u"cafe\u0301",
                                      u"CAFE",
                                      u"(?<w>[a-z]+)",
                                      u"(a|b)*c",
                                      u"\\d",
                                      u"",
                                      u"(",
                                      u"a{2,1}",
                                      u"[z-a]",
                                      u"x*",
                                      u"(?<year>\\d{4})-(?<m>\\d\\d)",
                                      u"e\u0301+",
                                      u"\\bcr\\w+",
                                      u"(a?)b",
                                      u"$",
                                      u"^",
                                      u".",
                                      u"[^ ]+"};
  for (int i = 0; i < 80; ++i)
    list.push_back(u"q{" + std::u16string(1, static_cast<char16_t>(u'1' + i % 9)) + u"}|" +
                   std::u16string(static_cast<std::size_t>(i / 9 + 1), u'z'));
  return list;
}

const std::vector<std::u16string> kSubjects = {u"caf\u00e9 x=12 cre\u0300me",
                                               u"CAFE cafe\u0301 2024-11",
                                               u"abcabc zzz qqq",
                                               u"",
                                               u"aab ab b",
                                               u"Cre\u0300me bru\u0302le\u0301e",
                                               u"zz z 1234"};
const std::vector<std::u16string> kReplacements = {u"<$0>", u"$1", u"${w}", u"\\$", u"x", u"$9"};

std::string describe(const re::pattern_error& e) {
  return e.error.getErrorCodeMnemonic() + "@" + std::to_string(e.offset) + ":" + e.description;
}

// Every function's result for one generated call, as text.
std::vector<std::string> results(const std::u16string& subject, const std::u16string& pattern,
                                 const std::u16string& replacement, std::uint32_t options) {
  namespace i18n = re::detail::i18n;
  std::vector<std::string> out;
  out.push_back(i18n::to_string(re::regex_replace(subject, pattern, replacement, options)));
  out.push_back(i18n::to_string(re::regex_replace_first(subject, pattern, replacement, options)));
  out.push_back(re::regex_replace(i18n::to_string(subject), i18n::to_string(pattern),
                                  i18n::to_string(replacement), options));
  out.push_back(i18n::to_string(re::regex_replace(
      subject, pattern, [](const std::u16string& m, bool&) { return u"[" + m + u"]"; }, options)));
  out.push_back(
      i18n::to_string(re::regex_replace_preserving(subject, pattern, replacement, options)));
  const std::optional<re::pattern_error> error = re::check_pattern(pattern, options);
  out.push_back(error ? describe(*error) : "ok");
  try {
    out.push_back(re::regex_search(subject.c_str(), pattern.c_str(), false, options) ? "found"
                                                                                     : "none");
    std::vector<re::match_tuple> tuples;
    re::regex_search(subject, pattern, tuples, options);
    for (const auto& [whole, groups] : tuples) {
      out.push_back(i18n::to_string(whole));
      for (const auto& g : groups) out.push_back(i18n::to_string(g));
    }
    const auto [prefix, suffix] = re::regex_search_prefix_suffix(subject, pattern, options);
    out.push_back(i18n::to_string(prefix) + "|" + i18n::to_string(suffix));
    for (const re::source_match& m : re::regex_find_all(subject, pattern, options)) {
      for (const auto& [start, end] : m.groups)
        out.push_back(std::to_string(start) + "-" + std::to_string(end));
    }
  } catch (const re::regex_exception& e) {
    out.push_back(std::string("threw ") + e.what());
  } catch (const std::out_of_range&) {
    out.push_back("out_of_range");
  }
  for (const std::string& name : re::regex(u"(?<x>a)", 0).getGroupNamesIfAvailable())
    out.push_back(name);
  return out;
}

TEST(PatternCacheIdentity, SameResultsAsCompilingEveryCall) {
  const std::vector<std::u16string> pool = patterns();
  std::mt19937 random(14);
  struct call {
    std::u16string subject, pattern, replacement;
    std::uint32_t options;
  };
  std::vector<call> calls;
  for (int i = 0; i < 10000; ++i) {
    // Skewed towards the first patterns, so that hits and evictions both happen.
    const std::size_t p = std::min(
        pool.size() - 1, static_cast<std::size_t>(std::geometric_distribution<int>(0.05)(random)));
    calls.push_back({kSubjects[random() % kSubjects.size()], pool[p],
                     kReplacements[random() % kReplacements.size()],
                     static_cast<std::uint32_t>(random() % 8)});
  }
  const auto run = [&calls](bool cached) {
    std::vector<std::vector<std::string>> all;
    std::thread([&] {
      re::detail::set_pattern_cache_enabled(cached);
      for (const call& c : calls)
        all.push_back(results(c.subject, c.pattern, c.replacement, c.options));
    }).join();
    return all;
  };
  const auto expected = run(false);
  const auto actual = run(true);
  ASSERT_EQ(actual.size(), expected.size());
  int differences = 0;
  for (std::size_t i = 0; i < actual.size(); ++i) {
    if (actual[i] != expected[i] && ++differences <= 5) ADD_FAILURE() << "call " << i;
  }
  EXPECT_EQ(differences, 0);
}

}  // namespace
