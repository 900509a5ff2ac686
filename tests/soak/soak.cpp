// Soak: a million mixed operations over the whole interface, reporting the
// process's peak resident set size after 100,000 and after 1,000,000 of them.
// Memory is flat when the second figure is within 5% of the first; the program
// exits with status 1 otherwise. Not a timed test: run it by hand or in CI.
//
//   scl_regex_soak [operations]   (default 1000000)
#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include <scl/regex.h>

namespace re = scl::regex;

namespace {

long peak_rss_kib() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

// A subject that varies with the step, so no result is ever the same twice in a row.
std::u16string subject_for(long step) {
  std::u16string text = u"Caf\u00e9 cr\u00e8me no ";
  for (long n = step % 97 + 1; n > 0; n /= 10) text += static_cast<char16_t>(u'0' + n % 10);
  text += u", na\u00efve x=";
  text += static_cast<char16_t>(u'a' + step % 26);
  return text;
}

// One operation of the mix; returns a value that depends on its result so
// nothing is optimised away.
std::size_t operation(long step) {
  const std::u16string subject = subject_for(step);
  switch (step % 15) {
    case 13: {
      // One-shot calls with ever new patterns: the per-thread cache evicts as it goes.
      std::u16string pattern = u"x=(\\w)|";
      for (long n = step; n > 0; n /= 10) pattern += static_cast<char16_t>(u'0' + n % 10);
      return re::regex_replace(subject, pattern, u"[$1]", 0).size() +
             re::regex_find_all(subject, pattern, 0x5).size();
    }
    case 14: {
      const std::optional<re::pattern_error> error =
          re::check_pattern(step % 2 == 0 ? u"(a" : u"a+", 0);
      return error ? error->description.size() : 0;
    }
    case 0: {
      const re::matcher_ptr handle =
          re::createMatcher(u"(\\w+)=(\\w)", re::constants::case_insensitive);
      return re::regex_search(handle, subject, false) + re::get_group(handle, 2).size();
    }
    case 1: {
      const re::matcher_ptr handle = re::createMatcher(u"[0-9]+", 0);
      return re::regex_replace(handle, subject, u"<$0>").size() +
             re::regex_replace_first(handle, subject, u"#").size();
    }
    case 2: {
      const re::matcher_ptr handle = re::createMatcher(u"\\w+", 0);
      return re::regex_replace(handle, subject,
                               [](const std::u16string& m, re::ECallbackTermination& how) {
                                 how = m.size() > 4 ? re::eStop : re::eContinue;
                                 return u"[" + m + u"]";
                               })
          .size();
    }
    case 3:
      return re::regex_replace(subject, u"cafe", u"tea", 0x5).size();
    case 4:
      return re::regex_replace(std::string("caf\xC3\xA9 \xFF au lait"), std::string("\xC3\xA9"),
                               std::string("e"), 0)
          .size();
    case 5:
      return re::regex_escape(subject).size();
    case 6: {
      re::regex words(u"(?<w>\\w)(\\w*)", re::constants::normalize_nfc);
      std::size_t total = 0;
      for (re::regex_iterator it(subject, words); it->start != re::npos; ++it) {
        total += (*it)["w"].str().size() + it->groups[2].str().size();
      }
      return total;
    }
    case 7: {
      std::vector<re::match_tuple> out;
      re::regex_search(subject, u"(\\w)(\\d)?", out, re::constants::ignore_diacritics);
      return out.size();
    }
    case 8: {
      const auto [prefix, suffix] = re::regex_search_prefix_suffix(subject, u"\\d+", 0);
      return prefix.size() + suffix.size();
    }
    case 9:
      return re::regex(u"(?<year>\\d+)-(?<month>\\d+)", 0).getGroupNamesIfAvailable().size();
    case 10:
      try {
        (void)re::createMatcher(step % 2 == 0 ? u"(a" : u"[b", 0);
        return 0;
      } catch (const re::regex_exception& e) {
        return std::string(e.what()).size() + e.getErrorCodeMnemonic().size();
      }
    case 11: {
      auto expected = re::createExpectedMatcher(u"a{2,1}", 0);
      re::regex r(u"x(y)?", 0);
      r.reset(subject);
      auto next = r.match_ex();
      return expected.has_error() + (next.has_error() ? 1u : next.value().groups.size());
    }
    default:
      return re::regex_search(subject.c_str(), u"na\u00efve", false, re::constants::normalize_nfc) +
             re::prepare_text(subject, 0x6).size();
  }
}

}  // namespace

int main(int argc, char** argv) {
  const long total = argc > 1 ? std::atol(argv[1]) : 1000000;
  const long checkpoint = total / 10;
  std::size_t sink = 0;
  long at_checkpoint = 0;
  for (long step = 1; step <= total; ++step) {
    sink += operation(step);
    if (step == checkpoint) {
      at_checkpoint = peak_rss_kib();
      std::printf("after %ld operations: peak RSS %ld KiB\n", step, at_checkpoint);
      std::fflush(stdout);
    }
  }
  const long at_end = peak_rss_kib();
  const double growth = at_checkpoint > 0 ? 100.0 * (at_end - at_checkpoint) / at_checkpoint : 0.0;
  std::printf("after %ld operations: peak RSS %ld KiB (%+.2f%%; checksum %zu)\n", total, at_end,
              growth, sink);
  return growth <= 5.0 ? 0 : 1;
}
