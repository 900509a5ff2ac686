// A tour of scl_regex, one section per family of its interface: search as a
// person means it (search_pattern, with the toggles of a search box), then
// compiling with options and text preparation, errors, search and groups on a handle,
// replacement on a handle, one-shot replace and escape, the regex object and
// its iterator, collecting matches, the text around matches, group names,
// matches located in the caller's own text, and patterns typed by users.
#include <chrono>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include <unicode/unistr.h>

#include <scl/regex.h>

namespace re = scl::regex;

namespace {

std::string utf8(const std::u16string& text) {
  std::string out;
  icu::UnicodeString(text.data(), static_cast<int32_t>(text.size())).toUTF8String(out);
  return out;
}

void show_option(const char* name, re::constants::syntax_option_type options,
                 const std::u16string& pattern) {
  re::matcher_ptr handle = re::createMatcher(pattern, options);
  std::printf("  %-34s pattern \"%s\" compiles as \"%s\" (handle %s, options 0x%x)\n", name,
              utf8(pattern).c_str(), utf8(re::prepare_text(pattern, options)).c_str(),
              handle ? "ready" : "empty", handle.get_deleter().options);
}

// The matches of `pattern` in `text`, each as "[start,end) text".
std::string matches(const re::search_pattern& pattern, const std::u16string& text) {
  std::string out;
  for (const re::source_match& m : pattern.find_all(text)) {
    out += " [" + std::to_string(m.start) + "," + std::to_string(m.end) + ") \"" +
           utf8(text.substr(m.start, m.end - m.start)) + "\"";
  }
  return out.empty() ? " nothing" : out;
}

void show_search(const char* toggle, const std::u16string& query, const re::search_options& options,
                 const std::u16string& text) {
  const re::search_pattern pattern(query, re::query_syntax::literal, options);
  std::printf("  %-24s \"%s\" finds%s\n", toggle, utf8(query).c_str(),
              matches(pattern, text).c_str());
}

void search_folding() {
  std::puts("Search as a person means it (search_pattern):");
  const std::u16string city = u"Les trains pour \u0141\u00f3d\u017a partent de Lodz Kaliska.";
  std::printf("  in \"%s\", \"lodz\" finds%s\n", utf8(city).c_str(),
              matches(re::search_pattern(u"lodz"), city).c_str());
  const re::search_pattern street(u"(\\w+)stra\u00dfe", re::query_syntax::regex);
  const std::u16string streets = u"Hauptstrasse 5, K\u00f6nigstra\u00dfe 12";
  std::printf("  the regex query \"(\\w+)stra\u00dfe\" finds in \"%s\":%s\n", utf8(streets).c_str(),
              matches(street, streets).c_str());
  std::printf("  and rewrites them with \"$1 St.\": \"%s\"\n",
              utf8(street.replace_all(streets, u"$1 St.")).c_str());

  const std::u16string text =
      u"R\u00e9sum\u00e9: RESUME, resume, e-mail E mail; Caf\u00e9 CAF\u00c9 cafe; "
      u"a cat, concat; \u0e41\u0e21\u0e27\u0e14\u0e33";
  std::printf("\nThe toggles of a search box (search_options), on \"%s\":\n", utf8(text).c_str());
  show_search("(none)", u"resume", {}, text);
  re::search_options options;
  options.match_case = true;
  show_search("match_case", u"Resume", options, text);
  options = {};
  options.diacritics = re::diacritics_rule::match;
  show_search("diacritics = match", u"resume", options, text);
  show_search("diacritics = match", u"caf\u00e9", options, text);
  options.diacritics = re::diacritics_rule::match_typed;
  show_search("diacritics = match_typed", u"resume", options, text);
  show_search("diacritics = match_typed", u"caf\u00e9", options, text);
  options = {};
  options.whole_words = true;
  show_search("whole_words", u"cat", options, text);
  show_search("whole_words", u"\u0e41\u0e21\u0e27", options, text);
  options = {};
  options.ignore_punctuation = true;
  show_search("ignore_punctuation", u"email", options, text);
}

}  // namespace

int main() {
  search_folding();

  std::puts("\nCompiling with each option bit:");
  show_option("0 (case-sensitive, no preparation)", 0, u"Caf\u00e9");
  show_option("case_insensitive", re::constants::case_insensitive, u"Caf\u00e9");
  show_option("normalize_nfc", re::constants::normalize_nfc, u"Cafe\u0301");
  show_option("ignore_diacritics", re::constants::ignore_diacritics, u"Caf\u00e9");

  std::puts("\nThe same preparation applies to subjects, so accents stop mattering:");
  const auto accents = re::constants::ignore_diacritics;
  const std::u16string subject = u"Un caf\u00e9 cr\u00e8me, s'il vous pla\u00eet";
  std::printf("  subject \"%s\" is searched as \"%s\"\n", utf8(subject).c_str(),
              utf8(re::prepare_text(subject, accents)).c_str());
  const re::matcher_ptr cafe = re::createMatcher(u"cafe creme", accents);
  std::printf("  so the pattern \"cafe creme\" finds it: regex_search gives %s\n",
              re::regex_search(cafe, subject, false) ? "true" : "false");

  std::puts("\nA rejected pattern:");
  try {
    (void)re::createMatcher(u"(unclosed", 0);
  } catch (const re::regex_exception& e) {
    std::printf("  createMatcher(\"(unclosed\") threw: %s [%s]\n", e.what(),
                e.getErrorCodeMnemonic().c_str());
  }
  auto expected = re::createExpectedMatcher(u"a{3,1}", 0);
  if (expected.has_error()) {
    std::printf("  createExpectedMatcher(\"a{3,1}\") returned: %s [%s]\n", expected.error().what(),
                expected.error().getErrorCodeMnemonic().c_str());
  }

  std::puts("\nSearching and reading groups on a handle:");
  const re::matcher_ptr date = re::createMatcher(u"(\\d{4})-(\\d{2})-(\\d{2})", 0);
  const std::u16string text = u"released on 2026-11-21, patched 2026-12-02";
  if (re::regex_search(date, text, false)) {
    std::printf("  %d groups; match \"%s\", year \"%s\", month \"%s\"\n", re::get_group_count(date),
                utf8(re::get_group(date, 0)).c_str(), utf8(re::get_group(date, 1)).c_str(),
                utf8(re::get_group(date, 2)).c_str());
  }
  std::printf("  whole-subject match of \"2026-11-21\": %s\n",
              re::regex_search(date, u"2026-11-21", true) ? "true" : "false");

  std::puts("\nReplacing:");
  std::printf("  \"$3.$2.$1\" everywhere: %s\n",
              utf8(re::regex_replace(date, text, u"$3.$2.$1")).c_str());
  std::printf("  first match only:      %s\n",
              utf8(re::regex_replace_first(date, text, u"<$1>")).c_str());

  const re::matcher_ptr digit = re::createMatcher(u"[0-9]", 0);
  const std::u16string digits = u"a1b2c3";
  const auto stop_bool =
      re::regex_replace(digit, digits, [](const std::u16string& matched, bool& go_on) {
        go_on = false;  // stop after this match; the rest is dropped
        return u"<" + matched + u">";
      });
  const auto stop_keep = re::regex_replace(
      digit, digits, [](const std::u16string& matched, re::ECallbackTermination& how) {
        how = re::eStop;  // stop after this match; the rest is kept
        return u"<" + matched + u">";
      });
  const auto stop_drop = re::regex_replace(
      digit, digits, [](const std::u16string& matched, re::ECallbackTermination& how) {
        how = re::eStopAndTruncate;  // stop after this match; the rest is dropped
        return u"<" + matched + u">";
      });
  std::printf("  callback on \"a1b2c3\", stopping at the first match:\n");
  std::printf("    bool set to false:  %s\n", utf8(stop_bool).c_str());
  std::printf("    eStop:              %s\n", utf8(stop_keep).c_str());
  std::printf("    eStopAndTruncate:   %s\n", utf8(stop_drop).c_str());
  const auto doubled = re::regex_replace(digit, digits, [](const re::matcher_ptr& handle, bool&) {
    return re::get_group(handle, 0) + re::get_group(handle, 0);  // reads the current match
  });
  std::printf("  callback reading the handle's groups: %s\n", utf8(doubled).c_str());

  std::puts("\nOne-shot replace and escape:");
  const std::u16string menu = u"Caf\u00e9 cr\u00e8me, CAF\u00c9 noir";
  std::printf(
      "  accent- and case-insensitive \"cafe\" -> \"tea\": %s\n",
      utf8(re::regex_replace(menu, u"cafe", u"tea", re::constants::case_insensitive | accents))
          .c_str());
  std::printf("  first match only:                           %s\n",
              utf8(re::regex_replace_first(menu, u"cafe", u"tea",
                                           re::constants::case_insensitive | accents))
                  .c_str());
  std::printf("  UTF-8 form:                                 %s\n",
              re::regex_replace(std::string("na\xC3\xAFve caf\xC3\xA9"), std::string("\xC3\xA9"),
                                std::string("\xC3\xA8"), 0)
                  .c_str());
  const std::u16string user_input = u"1+1=2? (yes)";
  const std::u16string escaped = re::regex_escape(user_input);
  const std::u16string question = u"^Q: " + escaped + u"$";
  std::printf("  user text \"%s\" escaped: \"%s\"\n", utf8(user_input).c_str(),
              utf8(escaped).c_str());
  std::printf("  inside \"%s\" it matches \"Q: 1+1=2? (yes)\": %s, \"Q: 11=2 yes\": %s\n",
              utf8(question).c_str(),
              re::regex_search(u"Q: 1+1=2? (yes)", question.c_str(), false, 0) ? "true" : "false",
              re::regex_search(u"Q: 11=2 yes", question.c_str(), false, 0) ? "true" : "false");

  std::puts("\nA regex object walked match by match:");
  re::regex word(u"(?<word>\\w+) (?<number>\\d+)", re::constants::case_insensitive | accents);
  const std::u16string tickets = u"Caf\u00e9 12, Cr\u00e8me 7, na\u00efve 345";
  word.reset(tickets);  // prepared like the pattern: accents removed
  for (re::regex_result m = word.match(); m.start != re::npos; m = word.match()) {
    std::printf("  [%zu, %zu) \"%s\": word \"%s\", number \"%s\"\n", m.start, m.end,
                utf8(m.str()).c_str(), utf8(m["word"].str()).c_str(),
                utf8(m["number"].str()).c_str());
  }
  auto after_end = word.match_ex();
  std::printf("  after the last match, match_ex: %s\n",
              after_end.has_error() ? after_end.error().what() : "no match, no error");
  std::printf("  named groups of the pattern: ");
  re::regex fresh(u"(?<word>\\w+) (?<number>\\d+)", 0);
  for (const std::string& name : fresh.getGroupNamesIfAvailable()) std::printf("%s ", name.c_str());
  std::puts("");

  std::puts("\nThe same walk with regex_iterator:");
  for (re::regex_iterator it(tickets, word); it->start != re::npos; ++it) {
    std::printf("  \"%s\"", utf8(it->str()).c_str());
  }
  std::puts("");

  std::puts("\nEvery match with its groups, and the text around the matches:");
  std::vector<re::match_tuple> all;
  re::regex_search(tickets, u"(\\w+) (\\d+)", all, accents);
  for (const auto& [whole, groups] : all) {
    std::printf("  \"%s\" -> [\"%s\", \"%s\"]\n", utf8(whole).c_str(), utf8(groups[0]).c_str(),
                utf8(groups[1]).c_str());
  }
  const auto [prefix, suffix] =
      re::regex_search_prefix_suffix(u"<b>bold</b> and <i>italic</i>!", u"<[^>]+>", 0);
  std::printf("  before the first tag: \"%s\", after the last: \"%s\"\n", utf8(prefix).c_str(),
              utf8(suffix).c_str());

  std::puts("\nResults in your text: \"creme\" in decomposed text (e + U+0300), with 0x5:");
  const std::u16string dessert = u"Cre\u0300me bru\u0302le\u0301e et cre\u0300me";
  const re::constants::syntax_option_type loose = re::constants::case_insensitive | accents;
  re::regex creme(u"creme", loose);
  std::printf("  prepared positions:");
  for (re::regex_iterator it(dessert, creme); it->start != re::npos; ++it) {
    std::printf(" [%zu, %zu) \"%s\" of the caller's text", it->start, it->end,
                utf8(dessert.substr(it->start, it->end - it->start)).c_str());
  }
  std::printf("\n  caller's positions: ");
  for (const re::source_match& m : re::regex_find_all(dessert, u"creme", loose)) {
    std::printf(" [%zu, %zu) \"%s\"", m.start, m.end,
                utf8(dessert.substr(m.start, m.end - m.start)).c_str());
  }
  std::printf("\n  regex_replace \"(cr)eme\" -> \"[$1]\":            %s\n",
              utf8(re::regex_replace(dessert, u"(cr)eme", u"[$1]", loose)).c_str());
  std::printf("  regex_replace_preserving \"(cr)eme\" -> \"[$1]\": %s\n",
              utf8(re::regex_replace_preserving(dessert, u"(cr)eme", u"[$1]", loose)).c_str());

  std::puts("\nPatterns typed by users:");
  {
    // "(a?)+?b" never returns on "aac" without a limit.
    const auto start = std::chrono::steady_clock::now();
    re::match_time_limit limit(std::chrono::milliseconds(50));
    const bool found = re::regex_search(u"aac", u"(a?)+?b", false, 0);
    const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now() - start);
    std::printf("  \"(a?)+?b\" on \"aac\" under a 50 ms limit: %s after %lld ms (exceeded: %s)\n",
                found ? "found" : "not found", static_cast<long long>(took.count()),
                limit.exceeded() ? "yes" : "no");
  }
  std::puts("\nOne-shot calls reuse the thread's compiled patterns:");
  {
    const std::u16string email = u"[a-z0-9._%+-]+@[a-z0-9.-]+\\.[a-z]{2,}";
    const auto per_call = [](auto&& call) {
      const auto start = std::chrono::steady_clock::now();
      for (int i = 0; i < 2000; ++i) call(i);
      return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start)
                 .count() /
             2000;
    };
    const double same = per_call([&](int) {
      (void)re::regex_replace(u"mail jean@example.org now", email, u"<$0>",
                              re::constants::case_insensitive);
    });
    const double fresh = per_call([&](int i) {  // a new pattern every call: compiled every time
      const std::string number = std::to_string(i);
      (void)re::regex_replace(u"mail jean@example.org now",
                              email + u"|#" + std::u16string(number.begin(), number.end()), u"<$0>",
                              re::constants::case_insensitive);
    });
    std::printf(
        "  case-insensitive e-mail replace: %.1f us per call with the same pattern, %.1f us "
        "when every call brings a new one\n",
        same, fresh);
  }
  if (const std::optional<re::pattern_error> bad = re::check_pattern(u"price: (\\d+ EUR", 0)) {
    std::printf("  check_pattern says, at offset %zu:\n%s\n", bad->offset,
                bad->description.c_str());
  }
  return 0;
}
