// A search box: finds a word the way people type it, ignoring case, accents,
// width and the like, and shows each line of a text where it occurs.
//
//   scl_regex_search_box [--brackets | --highlight] [--regex] [--match-case]
//                        [--match-diacritics | --match-typed-diacritics]
//                        [--whole-words] [--ignore-punctuation] [--locale TAG]
//                        QUERY [FILE]
//
// Reads UTF-8 text from FILE, or from standard input, and prints every line
// that has a match, with its number and each match marked in the line as it
// was written: in bold inverse video on a terminal, between [brackets]
// otherwise (--brackets and --highlight choose). Then the number of matches.
// With --regex, QUERY is an ICU regular expression, folded the same way; a
// bad one is shown with a caret under the place where it goes wrong. The
// toggles of the box are search_options: --match-case (capitals count),
// --match-diacritics (accents count) or --match-typed-diacritics (accents
// typed in the query count), --whole-words, --ignore-punctuation (spaces and
// punctuation count as nothing). --locale TAG searches as the user's language
// does (a BCP 47 tag: "sv", "da", "tr"), and says which collation that is.
// Exits with 0 if the query was found, 1 if not, 2 on an error.
//
//   $ printf '\xc5\x81\xc3\xb3d\xc5\xba and Lodz\nWarsaw\n' | scl_regex_search_box lodz
//   1: [Łódź] and [Lodz]
//   2 matches in 1 line
//   $ printf 'Stra\xc3\x9f\x65 and Gasse\n' | scl_regex_search_box --regex '\w*(strasse|gasse)'
//   1: [Straße] and [Gasse]
//   2 matches in 1 line
//   $ printf 'caf\xc3\xa9, cafe, CAF\xc3\x89\n' | scl_regex_search_box --match-typed-diacritics
//   'café' 1: [café], cafe, [CAFÉ] 2 matches in 1 line
//   $ printf 'Aarhus og \xc3\x85rhus\n' | scl_regex_search_box --locale da aarhus
//   searching as da-u-co-search
//   1: [Aarhus] og [Århus]
//   2 matches in 1 line
//
// Only the UTF-8 interface is used: positions are byte offsets in the line.
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

#include <scl/regex/search_pattern.h>

namespace re = scl::regex;

namespace {

struct marks {
  std::string_view open;
  std::string_view close;
};
constexpr marks kBrackets{"[", "]"};
constexpr marks kHighlight{"\x1b[1;7m", "\x1b[0m"};

// `line` with every match enclosed in `how`; the bytes between are copied as they are.
std::string marked(std::string_view line, const std::vector<re::source_match>& matches,
                   const marks& how) {
  std::string out;
  std::size_t copied = 0;
  for (const re::source_match& match : matches) {
    out += line.substr(copied, match.start - copied);
    out += how.open;
    out += line.substr(match.start, match.end - match.start);
    out += how.close;
    copied = match.end;
  }
  out += line.substr(copied);
  return out;
}

std::string read_all(std::istream& in) {
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

int usage() {
  std::fputs(
      "usage: scl_regex_search_box [--brackets | --highlight] [--regex] [--match-case]\n"
      "                            [--match-diacritics | --match-typed-diacritics]\n"
      "                            [--whole-words] [--ignore-punctuation] [--locale TAG]\n"
      "                            QUERY [FILE]\n",
      stderr);
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  const marks* how = isatty(STDOUT_FILENO) ? &kHighlight : &kBrackets;
  re::query_syntax syntax = re::query_syntax::literal;
  re::search_options options;
  std::vector<std::string_view> operands;
  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    if (arg == "--brackets") {
      how = &kBrackets;
    } else if (arg == "--highlight") {
      how = &kHighlight;
    } else if (arg == "--regex") {
      syntax = re::query_syntax::regex;
    } else if (arg == "--match-case") {
      options.match_case = true;
    } else if (arg == "--match-diacritics") {
      options.diacritics = re::diacritics_rule::match;
    } else if (arg == "--match-typed-diacritics") {
      options.diacritics = re::diacritics_rule::match_typed;
    } else if (arg == "--whole-words") {
      options.whole_words = true;
    } else if (arg == "--ignore-punctuation") {
      options.ignore_punctuation = true;
    } else if (arg == "--locale" && i + 1 < argc) {
      options.locale = argv[++i];
    } else if (arg.size() > 1 && arg[0] == '-') {
      return usage();
    } else {
      operands.push_back(arg);
    }
  }
  if (operands.empty() || operands.size() > 2) return usage();
  if (const auto bad = re::search_pattern::check(operands[0], syntax, options)) {
    std::fprintf(stderr, "bad query: %s\n", bad->description.c_str());
    return 2;
  }

  std::string text;
  if (operands.size() == 2) {
    std::ifstream file{std::string(operands[1]), std::ios::binary};
    if (!file) {
      std::fprintf(stderr, "cannot read %.*s\n", static_cast<int>(operands[1].size()),
                   operands[1].data());
      return 2;
    }
    text = read_all(file);
  } else {
    text = read_all(std::cin);
  }

  try {
    // The query is folded once; each line is then searched with it.
    const re::search_pattern query(operands[0], syntax, options);
    if (!options.locale.empty()) std::printf("searching as %s\n", query.collation_locale().c_str());
    std::size_t match_count = 0;
    std::size_t line_count = 0;
    std::size_t number = 0;
    for (std::size_t start = 0; start < text.size();) {
      std::size_t end = text.find('\n', start);
      if (end == std::string::npos) end = text.size();
      std::string_view line(text.data() + start, end - start);
      if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
      start = end + 1;
      ++number;

      const std::vector<re::source_match> matches = query.find_all(line);
      if (matches.empty()) continue;
      match_count += matches.size();
      ++line_count;
      // Written whole: a line may hold any bytes, U+0000 included.
      const std::string shown = std::to_string(number) + ": " + marked(line, matches, *how) + "\n";
      std::fwrite(shown.data(), 1, shown.size(), stdout);
    }
    std::printf("%zu %s in %zu %s\n", match_count, match_count == 1 ? "match" : "matches",
                line_count, line_count == 1 ? "line" : "lines");
    return match_count > 0 ? 0 : 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "search failed: %s\n", e.what());
    return 2;
  }
}
