// The first search of a fresh process: what search_pattern costs before its
// first result, in time and in resident memory, against ICU's usearch doing
// the same first search.
//
//   scl_regex_first_search fold      search_pattern(u"lodz"), then find_all on a short text
//   scl_regex_first_search usearch   ucol_open(""), primary strength,
//                                    usearch_openFromCollator, usearch_first
//
// Prints one line, e.g. "fold ms=0.183 rss_kib=412 first=26,30": the time from
// before the pattern (or the collator) is made to after the first result
// (steady_clock), the resident memory added meanwhile (/proc/self/statm), and
// the first match. Each run measures one mode once; bench/first_search.py runs
// both modes in several fresh processes and prints the medians.
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <unicode/ucol.h>
#include <unicode/usearch.h>
#include <unistd.h>

#include <scl/regex/search_pattern.h>

namespace {

// "Il a mangé une crème brûlée à Łódź, pas à Lodz."
const std::u16string kText =
    u"Il a mang\u00e9 une cr\u00e8me br\u00fbl\u00e9e \u00e0 \u0141\u00f3d\u017a, pas \u00e0 Lodz.";
const std::u16string kQuery = u"lodz";

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

range first_with_fold() {
  const scl::regex::search_pattern pattern(kQuery);
  const std::vector<scl::regex::source_match> found = pattern.find_all(kText);
  if (found.empty()) return std::nullopt;
  return std::make_pair(found.front().start, found.front().end);
}

range first_with_usearch() {
  UErrorCode status = U_ZERO_ERROR;
  UCollator* collator = ucol_open("", &status);
  ucol_setStrength(collator, UCOL_PRIMARY);
  UStringSearch* search =
      usearch_openFromCollator(kQuery.data(), static_cast<int32_t>(kQuery.size()), kText.data(),
                               static_cast<int32_t>(kText.size()), collator, nullptr, &status);
  const int32_t start = usearch_first(search, &status);
  range first;
  if (U_SUCCESS(status) && start != USEARCH_DONE) {
    first = std::make_pair(static_cast<std::size_t>(start),
                           static_cast<std::size_t>(start + usearch_getMatchedLength(search)));
  }
  usearch_close(search);
  ucol_close(collator);
  if (U_FAILURE(status)) {
    std::fprintf(stderr, "usearch failed: %s\n", u_errorName(status));
    std::exit(1);
  }
  return first;
}

}  // namespace

int main(int argc, char** argv) {
  const bool fold = argc == 2 && std::strcmp(argv[1], "fold") == 0;
  if (!fold && !(argc == 2 && std::strcmp(argv[1], "usearch") == 0)) {
    std::fprintf(stderr, "usage: %s fold|usearch\n", argv[0]);
    return 2;
  }
  using clock = std::chrono::steady_clock;
  (void)clock::now();  // the clock's own first use is not the search's
  const long before = resident_kib();
  const clock::time_point start = clock::now();
  const range first = fold ? first_with_fold() : first_with_usearch();
  const clock::time_point end = clock::now();
  const long after = resident_kib();

  const double ms = std::chrono::duration<double, std::milli>(end - start).count();
  std::printf("%s ms=%.3f rss_kib=%ld", argv[1], ms, after - before);
  if (first)
    std::printf(" first=%zu,%zu\n", first->first, first->second);
  else
    std::printf(" first=none\n");
  return 0;
}
