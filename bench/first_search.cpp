// The first search of a fresh process: what search_pattern costs before its
// first result, in time and in resident memory, against ICU's usearch doing
// the same first search.
//
//   scl_regex_first_search fold             search_pattern(u"lodz"), then find_all on a short text
//   scl_regex_first_search usearch          ucol_open(""), primary strength,
//                                           usearch_openFromCollator, usearch_first
//   scl_regex_first_search options          the same with every toggle of search_options on
//                                           (match_case, match_typed, whole_words,
//                                           ignore_punctuation)
//   scl_regex_first_search usearch-options  usearch set up as those options say (secondary
//                                           strength, asymmetric, "shifted", a word break
//                                           iterator; usearch has no case level)
//   scl_regex_first_search all-options      after a default first search (not counted), one
//                                           search with each of the 24 option sets: what all
//                                           their tables add
//   scl_regex_first_search danish           after a default first search (not counted), the
//                                           first search with locale "da": "aarhus" in a
//                                           Danish text (what a language's tables cost)
//   scl_regex_first_search usearch-danish   ucol_open("da@collation=search"), primary
//                                           strength, usearch_openFromCollator, usearch_first
//   scl_regex_first_search arabic           the same with locale "ar", whose collation is the
//                                           root's search collation: "\u0627\u062d\u0645\u062f"
//                                           finds "\u0623\u062d\u0645\u062f"
//   scl_regex_first_search usearch-arabic   the same with ucol_open("ar@collation=search")
//   scl_regex_first_search swedish          after a default and a Danish first search (not
//                                           counted), the first Swedish searches with each
//                                           option set but whole_words: what a second
//                                           language's tables cost, all eight of them
//
// Prints one line, e.g. "fold ms=0.183 rss_kib=412 heap_kib=120 first=26,30":
// the time from before the pattern (or the collator) is made to after the
// first result (steady_clock), the resident memory added meanwhile
// (/proc/self/statm), the heap memory still in use after it that was not
// before (glibc's mallinfo2: what is kept, without what was used and freed),
// and the first match. Each run measures one mode once; bench/first_search.py runs
// the modes in several fresh processes and prints the medians.
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <malloc.h>
#include <unicode/ubrk.h>
#include <unicode/ucol.h>
#include <unicode/usearch.h>
#include <unistd.h>

#include <scl/regex/search_pattern.h>

namespace {

// "Il a mangé une crème brûlée à Łódź, pas à Lodz."
const std::u16string kText =
    u"Il a mang\u00e9 une cr\u00e8me br\u00fbl\u00e9e \u00e0 \u0141\u00f3d\u017a, pas \u00e0 Lodz.";
const std::u16string kQuery = u"lodz";
// With case: the query that the options' search finds first ("\u0141\u00f3d\u017a").
const std::u16string kCapitalQuery = u"Lodz";
// "Vi bor i Aarhus, ikke i \u00c5lborg.": Danish, where "aa" is "\u00e5".
const std::u16string kDanishText = u"Vi bor i Aarhus, ikke i \u00c5lborg.";
const std::u16string kDanishQuery = u"aarhus";
// "He said that Ahmad will come.": alef with hamza is alef in Arabic search.
const std::u16string kArabicText =
    u"\u0642\u0627\u0644 \u0625\u0646 \u0623\u062d\u0645\u062f \u0633\u064a\u0623\u062a\u064a.";
const std::u16string kArabicQuery = u"\u0627\u062d\u0645\u062f";

// A language's first search: its locale, the collator usearch opens, the text and the query.
struct language {
  const char* locale;
  const char* collator;
  const std::u16string& text;
  const std::u16string& query;
};
const language kDanish{"da", "da@collation=search", kDanishText, kDanishQuery};
const language kArabic{"ar", "ar@collation=search", kArabicText, kArabicQuery};
// "Vi bor i \u00c5re.": in Swedish, "are" does not find "\u00c5re".
const std::u16string kSwedishText = u"Vi bor i \u00c5re, inte i Are.";
const std::u16string kSwedishQuery = u"are";
const language kSwedish{"sv", "sv@collation=search", kSwedishText, kSwedishQuery};

// The process's resident memory in KiB, or -1 if /proc cannot be read.
long resident_kib() {
  std::FILE* statm = std::fopen("/proc/self/statm", "r");
  if (statm == nullptr) return -1;
  long size = 0;
  long resident = -1;
  if (std::fscanf(statm, "%ld %ld", &size, &resident) != 2) resident = -1;
  std::fclose(statm);
  return resident < 0 ? -1 : resident * (sysconf(_SC_PAGESIZE) / 1024);
}

using range = std::optional<std::pair<std::size_t, std::size_t>>;

scl::regex::search_options every_toggle() {
  scl::regex::search_options options;
  options.match_case = true;
  options.diacritics = scl::regex::diacritics_rule::match_typed;
  options.whole_words = true;
  options.ignore_punctuation = true;
  return options;
}

range first_with_fold(const scl::regex::search_options& options, const std::u16string& query,
                      const std::u16string& text = kText) {
  const scl::regex::search_pattern pattern(query, scl::regex::query_syntax::literal, options);
  const std::vector<scl::regex::source_match> found = pattern.find_all(text);
  if (found.empty()) return std::nullopt;
  return std::make_pair(found.front().start, found.front().end);
}

// One search with each option set, after a default one. In a language, the
// option sets without whole_words: they use every table, and no word break
// rules of the language's.
range first_with_every_option_set(const language* in = nullptr) {
  range first;
  for (int index = 0; index < 24; ++index) {
    scl::regex::search_options options;
    options.match_case = (index & 1) != 0;
    options.whole_words = (index & 2) != 0;
    options.ignore_punctuation = (index & 4) != 0;
    options.diacritics = static_cast<scl::regex::diacritics_rule>(index >> 3);
    if (in == nullptr) {
      first = first_with_fold(options, kQuery);
    } else if (!options.whole_words) {
      options.locale = in->locale;
      first = first_with_fold(options, in->query, in->text);
    }
  }
  return first;
}

range first_in(const language& in) {
  scl::regex::search_options options;
  options.locale = in.locale;
  return first_with_fold(options, in.query, in.text);
}

// usearch's first search: the root collator at primary strength, or set up
// as every toggle says (options), or a language's search collation.
range first_with_usearch(bool options, const language* in = nullptr) {
  UErrorCode status = U_ZERO_ERROR;
  UCollator* collator = ucol_open(in != nullptr ? in->collator : "", &status);
  ucol_setStrength(collator, options ? UCOL_SECONDARY : UCOL_PRIMARY);
  UBreakIterator* words = nullptr;
  if (options) {
    ucol_setAttribute(collator, UCOL_ALTERNATE_HANDLING, UCOL_SHIFTED, &status);
    words = ubrk_open(UBRK_WORD, "", kText.data(), static_cast<int32_t>(kText.size()), &status);
  }
  const std::u16string& query = in != nullptr ? in->query : options ? kCapitalQuery : kQuery;
  const std::u16string& text = in != nullptr ? in->text : kText;
  UStringSearch* search =
      usearch_openFromCollator(query.data(), static_cast<int32_t>(query.size()), text.data(),
                               static_cast<int32_t>(text.size()), collator, words, &status);
  if (options) {
    usearch_setAttribute(search, USEARCH_ELEMENT_COMPARISON,
                         USEARCH_PATTERN_BASE_WEIGHT_IS_WILDCARD, &status);
  }
  const int32_t start = usearch_first(search, &status);
  range first;
  if (U_SUCCESS(status) && start != USEARCH_DONE) {
    first = std::make_pair(static_cast<std::size_t>(start),
                           static_cast<std::size_t>(start + usearch_getMatchedLength(search)));
  }
  usearch_close(search);
  if (words != nullptr) ubrk_close(words);
  ucol_close(collator);
  if (U_FAILURE(status)) {
    std::fprintf(stderr, "usearch failed: %s\n", u_errorName(status));
    std::exit(1);
  }
  return first;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string mode = argc == 2 ? argv[1] : "";
  static const char* const modes[] = {
      "fold",   "usearch",        "options", "usearch-options", "all-options",
      "danish", "usearch-danish", "arabic",  "usearch-arabic",  "swedish"};
  if (std::find(std::begin(modes), std::end(modes), mode) == std::end(modes)) {
    std::fprintf(stderr,
                 "usage: %s fold|usearch|options|usearch-options|all-options|danish|"
                 "usearch-danish|arabic|usearch-arabic|swedish\n",
                 argv[0]);
    return 2;
  }
  using clock = std::chrono::steady_clock;
  (void)clock::now();  // the clock's own first use is not the search's
  if (mode == "all-options" || mode == "danish" || mode == "arabic" || mode == "swedish") {
    (void)first_with_fold({}, kQuery);
  }
  if (mode == "swedish") (void)first_in(kDanish);
  const long before = resident_kib();
  const std::size_t heap_before = mallinfo2().uordblks;
  const clock::time_point start = clock::now();
  range first;
  if (mode == "fold") first = first_with_fold({}, kQuery);
  if (mode == "options") first = first_with_fold(every_toggle(), kCapitalQuery);
  if (mode == "all-options") first = first_with_every_option_set();
  if (mode == "usearch" || mode == "usearch-options") first = first_with_usearch(mode != "usearch");
  if (mode == "danish") first = first_in(kDanish);
  if (mode == "usearch-danish") first = first_with_usearch(false, &kDanish);
  if (mode == "arabic") first = first_in(kArabic);
  if (mode == "usearch-arabic") first = first_with_usearch(false, &kArabic);
  if (mode == "swedish") first = first_with_every_option_set(&kSwedish);
  const clock::time_point end = clock::now();
  const long after = resident_kib();
  const std::size_t heap_after = mallinfo2().uordblks;
  const long heap_kib = (static_cast<long>(heap_after) - static_cast<long>(heap_before)) / 1024;

  const double ms = std::chrono::duration<double, std::milli>(end - start).count();
  std::printf("%s ms=%.3f rss_kib=%ld heap_kib=%ld", mode.c_str(), ms, after - before, heap_kib);
  if (first)
    std::printf(" first=%zu,%zu\n", first->first, first->second);
  else
    std::printf(" first=none\n");
  return 0;
}
