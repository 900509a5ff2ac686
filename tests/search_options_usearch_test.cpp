// search_pattern with search options against ICU's usearch set up the same way
// (support/search_differential.h): each toggle of a search box alone, and
// every combination of them.
#include <cstdio>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <scl/regex/search_pattern.h>

#include "support/search_differential.h"

namespace {

using namespace scl_regex_test::search_differential;

struct option_set {
  std::string name;
  re::search_options options;
};

void PrintTo(const option_set& set, std::ostream* out) { *out << set.name; }

re::search_options make_options(bool match_case, re::diacritics_rule diacritics, bool whole_words,
                                bool ignore_punctuation) {
  re::search_options options;
  options.match_case = match_case;
  options.diacritics = diacritics;
  options.whole_words = whole_words;
  options.ignore_punctuation = ignore_punctuation;
  return options;
}

class EachOption : public testing::TestWithParam<option_set> {};

// Each toggle alone: 2,500 texts, 4 queries each.
TEST_P(EachOption, FindsWhatUsearchFindsOnRandomTextInManyScripts) {
  failure_log log;
  const differential_counts counts = run_differential(GetParam().options, 20261125, 2500, 4, log);
  std::printf("%s: %s\n", GetParam().name.c_str(), counts.summary().c_str());
  EXPECT_EQ(counts.disagreements, 0);
  EXPECT_EQ(counts.usearch_errors, 0);
  EXPECT_EQ(log.total(), 0) << log.summary();
  EXPECT_GT(counts.compared, counts.pairs * 6 / 10);
  // (Few queries cut from a text are whole words.)
  EXPECT_GT(counts.usearch_found * 10, counts.compared);
}

INSTANTIATE_TEST_SUITE_P(
    Options, EachOption,
    testing::Values(
        option_set{"match_case", make_options(true, re::diacritics_rule::ignore, false, false)},
        option_set{"diacritics_match",
                   make_options(false, re::diacritics_rule::match, false, false)},
        option_set{"diacritics_match_typed",
                   make_options(false, re::diacritics_rule::match_typed, false, false)},
        option_set{"whole_words", make_options(false, re::diacritics_rule::ignore, true, false)},
        option_set{"ignore_punctuation",
                   make_options(false, re::diacritics_rule::ignore, false, true)}),
    [](const testing::TestParamInfo<option_set>& info) { return info.param.name; });

// Every combination of the toggles.
std::vector<option_set> every_combination() {
  std::vector<option_set> sets;
  const std::pair<re::diacritics_rule, const char*> rules[] = {
      {re::diacritics_rule::ignore, "ignore"},
      {re::diacritics_rule::match, "match"},
      {re::diacritics_rule::match_typed, "typed"}};
  for (const bool match_case : {false, true}) {
    for (const auto& [rule, rule_name] : rules) {
      for (const bool whole_words : {false, true}) {
        for (const bool ignore_punctuation : {false, true}) {
          sets.push_back({std::string(match_case ? "case" : "nocase") + "_" + rule_name +
                              (whole_words ? "_words" : "") +
                              (ignore_punctuation ? "_punctuation" : ""),
                          make_options(match_case, rule, whole_words, ignore_punctuation)});
        }
      }
    }
  }
  return sets;
}

class EveryCombination : public testing::TestWithParam<option_set> {};

// 500 texts, 4 queries each, for each combination.
TEST_P(EveryCombination, FindsWhatUsearchFinds) {
  failure_log log;
  const differential_counts counts = run_differential(GetParam().options, 31, 500, 4, log);
  std::printf("%s: %s\n", GetParam().name.c_str(), counts.summary().c_str());
  EXPECT_EQ(counts.disagreements, 0);
  EXPECT_EQ(counts.usearch_errors, 0);
  EXPECT_EQ(log.total(), 0) << log.summary();
  EXPECT_GT(counts.compared, counts.pairs / 2);
}

INSTANTIATE_TEST_SUITE_P(Options, EveryCombination, testing::ValuesIn(every_combination()),
                         [](const testing::TestParamInfo<option_set>& info) {
                           return info.param.name;
                         });

}  // namespace
