// Search as a person means it: "lodz" finds "Łódź", "usb" finds "ＵＳＢ".
//
// clang-format off
//   namespace re = scl::regex;
//   const re::search_pattern lodz(u"lodz");
//   lodz.find_all(u"\u0141\u00f3d\u017a, \u0141OD\u0179");  // {0, 4}, {6, 10}
//   lodz.found_in("Lodz");                                     // true (UTF-8 text)
//   re::search_pattern(u"usb").find_first(u"\uff35\uff33\uff22 cable");  // {0, 3}
//   re::search_pattern("cafe").replace_all("Caf\xc3\xa9 cr\xc3\xa8me", "tea");  // "tea cr\xc3\xa8me"
//   re::search_fold(u"Stra\u00dfe").text();                     // u"strasse"
//
//   // Regex queries: ICU's syntax, folded the same way.
//   const re::search_pattern street(u"(\\w+)stra\u00dfe", re::query_syntax::regex);
//   street.find_all(u"Hauptstrasse");                           // {0, 12}, group 1 {0, 5}
//   street.replace_all(u"K\u00f6nigstra\u00dfe", u"$1 St.");      // u"K\u00f6nig St."
//
//   // The toggles of a search box.
//   re::search_options options;
//   options.match_case = true;
//   options.diacritics = re::diacritics_rule::match_typed;
//   options.whole_words = true;
//   options.ignore_punctuation = true;
//   const re::search_pattern ny(u"NewYork", re::query_syntax::literal, options);
//   ny.find_all(u"New York, New-York, newyork, NewYorker");   // {0, 8}, {10, 18}
//   re::search_pattern(u"Cafe", re::query_syntax::literal, options).found_in(u"Caf\u00e9");  // true
//   re::search_pattern(u"Caf\u00e9", re::query_syntax::literal, options).found_in(u"Cafe");  // false
// clang-format on
//
// Search folding treats as equal what ICU's root collator treats as equal at
// primary strength: it ignores case, accents, width, ligatures and the form
// of digits, and keeps letters apart (ı and i, й and и, þ and th, a virama
// and its absence). Positions are reported in the caller's own text, in
// UTF-16 units or, for the UTF-8 forms, in bytes.
//
// The fold. Text is normalised to NFC, then every code point is replaced by
// its fold: for each non-zero primary weight of its root collation elements,
// in order, the representative of that primary. The representative of a
// primary is the smallest code point whose collation elements are that
// primary alone with common secondary and tertiary weights. So ASCII letters
// fold to lowercase ASCII, "Ł" to "l", "ø" to "o", "ß" to "ss", "æ" to "ae",
// "ﬁ" to "fi", "™" to "tm", "١" to "1"; a Hangul syllable folds to its jamo
// and a Han character to itself.
//   - Kana. About fifty primaries, all Japanese kana, have no such code
//     point. Their representative is the smallest code point whose collation
//     elements are that primary alone, whatever the secondary and tertiary
//     weights: the small hiragana where there is one, else the hiragana
//     ("ア", "ｱ", "あ" and "ぁ" fold to "ぁ"; "カ", "が" and "か" to "か").
//   - Characters that are ignorable at primary strength fold to nothing:
//     combining marks, the soft hyphen, ZWJ, U+0000.
//   - The middle dot U+00B7 right after "l" or "L" folds to nothing (the
//     root collator's Catalan "l·l"); elsewhere it folds to itself.
//   - A lone surrogate folds to itself; in UTF-8 text every ill-formed
//     sequence (maximal subpart) reads as U+FFFD.
//   - A few representatives are not in NFC themselves: U+2329 and U+232A,
//     some CJK compatibility ideographs, Tibetan vowel signs.
// For every assigned code point c, fold(c) is primary-equal to c, and
// folding is idempotent, with one exception: a two-part vowel whose parts
// are separated by a character that folds to nothing (U+09C7 ZWJ U+09BE)
// folds to the two parts, which NFC then composes.
//
// The map. Folded text maps back to the caller's text in pieces (see
// prepared_text): a character that folds to nothing joins the piece before
// it when it extends a grapheme (marks, ZWJ; not after a control, a line
// break or another such piece); any other character that folds to nothing
// (the soft hyphen, U+0000, the middle dot after "l") is an empty piece of
// its own. A stretch that NFC changes is one piece.
//
// Literal search finds, on NFC text, what ICU's usearch finds with the root
// collator at primary strength going forward without overlap: a match covers
// whole pieces ("s" is not found in "ß"), starts on a grapheme-cluster
// boundary ("💻" is not found in "👩‍💻"), and takes the marks and ZWJ after
// its last character ("e" in "e" U+0301 is [0, 2)) but not a soft hyphen
// around it. No match edge falls between a Thai, Lao, New Tai Lue or Tai Viet
// prevowel and the consonant it forms a root contraction with, and a match
// does not end between two characters that reorder canonically. A query
// that folds to nothing finds nothing.
//
// Where this differs from usearch: the fold is made per code point, so root
// contractions that NFC leaves alone and that turn into another primary are
// read as their parts.
//   - Thai nikhahit + sara aa written apart (U+0E4D U+0E32) reads as sara aa
//     (the collator reads sara am, U+0E33); likewise Lao U+0ECD U+0EB2.
//   - Tibetan subjoined letters and vowel signs that the collator contracts
//     (U+0F71 with U+0F72, U+0F74 or U+0F80; U+0FB2 or U+0FB3 with U+0F80,
//     or with U+0F71 and one of those) read as their parts.
//   - A discontiguous contraction (the collator skipping a mark to reach the
//     second half) is not formed.
//   - Thai, Lao, New Tai Lue and Tai Viet prevowels are compared in written
//     order. The collator swaps a prevowel with the character after it when
//     the two are adjacent and form a contraction, so results differ where
//     query and text are not written alike: a query that ends in a prevowel;
//     a prevowel kept from its consonant by a character without a primary
//     weight (soft hyphen, mark, ZWJ, U+0000; with ignore_punctuation, also
//     punctuation and spaces) on one side only; a prevowel before a letter
//     that expands (Lao U+0EDC, U+0EDD, New Tai Lue U+19DF) against the
//     expansion written out. Search folding finds a match in these cases
//     where usearch finds none. The other way round, where the text has a
//     prevowel that is not swapped (before a character it forms no
//     contraction with, or at the end) after a consonant, usearch finds the
//     two as the query's prevowel and consonant: "\u0e41\u0e27" in
//     "\u0e27\u0e41 ". Search folding does not.
//
// Regex queries (query_syntax::regex) use ICU's regular expression syntax.
// The pattern is folded as text is, but by its syntax:
//   - Literal characters (typed, escaped as \uhhhh, \x{h...}, \xhh,
//     \N{NAME}, octal or \cX, or quoted with \Q...\E) are normalised to NFC
//     and folded: "stra\u00dfe" finds "STRASSE", "cafe" U+0301 is "caf\u00e9".
//     A quantifier applies to the whole fold of the character before it
//     (after NFC): "\u00df+" means "(?:ss)+". A character that folds to
//     nothing matches the empty string, so "q" U+0301 "+" is "q(?:)+". An
//     escaped letter that means nothing to ICU ("\K") is that letter.
//   - A set, a property or a shorthand class ([...], \p{...}, \P{...},
//     [:...:], \d \w \s \h \v and their negations) matches a folded
//     character when that character is the fold of one of its members:
//     "[\u00e9]", "[\u00e0-\u00ff]" and "\p{Lu}" match the "e" that "\u00c9"
//     folds to, "[A-Z]" matches "\u0142". A negated class matches what its
//     positive form does not: "[^a-z]" does not match "\u00e9". Set
//     operations (&&, --, nesting, and a negation inside a set) are evaluated
//     as ICU evaluates them, then folded; only the outermost negation is
//     taken after folding. A class holds every fold of its members, including
//     ones a person may not expect: "[:alpha:]" matches "1" (U+3021 HANGZHOU
//     NUMERAL ONE is alphabetic and folds to "1"), "[\\W]" matches "1" (from
//     "\u00b9"). A class matches one character, so members that fold to several
//     ("\u00df", "\ufb01") or to nothing (U+00AD) are left out: "[\u00df]"
//     matches nothing, and likewise "." does not match "\u00df" but ".."
//     does.
//   - Everything else stands as written and applies to the folded text:
//     groups (named ones too), alternation, anchors, \b, look-around, back
//     references ("(\\w)\\1" finds "A\u00e1"), flags. "." matches line ends,
//     as everywhere in this library. Folding adds no capturing group: group
//     numbers and names are the caller's.
// Matches follow the rules of literal search: none starts or ends inside a
// piece ("s" does not match "\u00df"; "s+" and ".." do), each starts on a
// grapheme-cluster boundary, and an empty match sits between pieces. A match
// that ICU finds but these rules reject is skipped, and the search goes on
// from the next piece. A regex made of one quoted literal ("\\Qcr\u00e8me\\E")
// finds what the literal query finds, except for a query that folds to
// nothing, which as a literal finds nothing and as a regex matches the empty
// string. Each group is the range of the caller's text its folded units came
// from, widened to whole pieces; {npos, npos} for a group that took no part.
// A lone surrogate is one character to a regex, also where the characters
// between it and another one fold to nothing ("." matches each alone).
//
// Search options (search_options): the toggles of a search box. Each is
// defined by ICU's collation, so that ICU's usearch set up the same way is
// what search_pattern agrees with:
//   - match_case: the case level (UCOL_CASE_LEVEL) on, at the strength the
//     diacritics rule gives (primary for match_typed). Case is what the
//     collator's case bits say: "Resume" finds "R\u00e9sum\u00e9" and "Resume",
//     not "resume" or "RESUME"; "RESUME" finds "\uff32\uff25\uff33\uff35\uff2d\uff25";
//     "stra\u00dfe" does not find "Stra\u00dfe"; small kana are lowercase to it,
//     so "\u3042" does not find "\u3041". usearch has no case level: a match is
//     what usearch finds at the same strength that a collator with the case
//     level calls equal to the query.
//   - diacritics = match: secondary strength. "resume" finds "RESUME" but not
//     "r\u00e9sum\u00e9"; "\u0142\u00f3d\u017a" finds "\u0141\u00d3D\u0179" but "lodz"
//     does not find "\u0141\u00f3d\u017a"; "ss" does not find "\u00df".
//   - diacritics = match_typed: secondary strength with
//     USEARCH_PATTERN_BASE_WEIGHT_IS_WILDCARD (ICU's asymmetric search). A
//     letter typed without an accent finds it with any accent; an accent that
//     is typed must be there: "resume" finds every spelling, "caf\u00e9" finds
//     "CAF\u00c9" but not "cafe" or "caf\u00e8", "strasse" finds "Stra\u00dfe".
//   - whole_words: a match starts and ends on a boundary of ICU's word break
//     iterator (the root's), as usearch with that iterator finds: "cat" is
//     found in "a cat." but not in "concat", "cats" or "Cat's"; words of
//     Thai, Chinese and Japanese are found with ICU's dictionaries
//     ("\u0e41\u0e21\u0e27" in "\u0e41\u0e21\u0e27\u0e14\u0e33"). Where a match's last
//     piece ends on no boundary, the match takes in what folds to nothing up
//     to the next one ("cat" in "cat" U+00AD " " is [0, 4)), or is none.
//   - ignore_punctuation: alternate handling "shifted" with ICU's default
//     variable characters, spaces and punctuation. Each folds to nothing, an
//     empty piece of its own like the soft hyphen, so a match neither starts
//     nor ends with one: "email" finds "e-mail", "E mail" and "e.mail",
//     "newyork" finds "New York". An accent after punctuation is ignored with
//     it. A query of punctuation alone finds nothing, and so, with diacritics
//     matched, does a query of accents alone (as in usearch). As in usearch, a
//     match neither starts at nor ends right before a character whose
//     collation elements start with punctuation ("\u2474", which reads as
//     "(1)"): "a" is not found in "a\u2474".
// Options combine freely. search_fold(text, options) folds as the search
// does: two whole texts fold alike exactly when the collator set up by the
// options calls them equal (diacritics = match_typed folds as match does).
//
// The fold under options. Each code point folds to the representatives of
// its collation elements at the options' levels, as above: with the case
// level, capitals fold to capitals ("\u00c9" to "E"); with diacritics matched,
// a letter and its accents fold apart, in the canonical order of the marks
// they stand for, which is the order the collator reads them ("\u00e9" to
// "e" U+0301, "\u0142" to "l" U+0335, "\u01fe" to "o" U+0338 U+0301; a few
// marks fold to an accent of another combining class, so "a\u0352\u035c"
// folds to "a" U+030D U+0316, and folding that again gives "a" U+0316
// U+030D, as the collator reads it), an accent joins the piece of the
// letter before it as a mark does, and "\u00df" stays "\u00df" (its first s
// has a secondary weight of its own, which no character has alone). The
// dot of the root collator's "l\u00b7" is such a weight too: it folds to
// U+0387 (which NFC never lets through), a piece of its own, and "\u0140"
// folds to "l" U+0387.
//
// Regex queries under options fold by their syntax as above: literals fold
// as text, and a class matches a folded character that is the fold of one of
// its members under the options. Under match_case "[A-Z]" matches the fold of
// "\u0141" but not that of "\u0142". With diacritics matched, a folded
// character is a letter with its accents: "caf[e\u00e9]" finds "caf\u00e9" and
// "CAF\u00c9" but not "caf\u00e8", "[^e]" matches "\u00e9", and "." matches a
// letter with its accents. Where diacritics are matched where typed, a letter
// of a literal or a class matches the letter with any accents, an accent of
// a literal matches that accent, and a literal's letters match a letter of
// the text that stands for several ("ss" and "\u00df") wherever the text
// joins them (in a run with at most 1024 ways to join, fifteen "s" in a row;
// a longer run is joined from the left). Under ignore_punctuation, punctuation in
// literals folds to nothing and a class keeps no member that folds to
// nothing: "new ?york" finds "New York", and "\\s" matches nothing. whole_words
// applies to the edges of each match; a match that ICU finds but the rules
// reject is skipped, as always.
//
// Where search_pattern with options differs from usearch set up the same way
// (besides the differences above, which stay):
//   - With ignore_punctuation, usearch in ICU 72 compares the second half of a
//     long primary weight (a collation element in two 32-bit orders) with the
//     variable top as if it were an element of its own; where that half is
//     below it, usearch ignores it as punctuation. So usearch finds U+4E00 in
//     U+4E01, and ignores an accent after such a character, where the
//     collator calls them apart; search folding follows the collator (and
//     search_fold must). Some ten thousand characters have such weights: Han
//     ideographs, and letters of many other scripts. Where the first half is
//     punctuation and the second is not (some 280 characters, Syriac U+0707
//     among them), usearch looks for the second as a letter, so "1\u0707"
//     finds nothing, not even "1"; search folding ignores the character.
//     A language's collation gives long weights of its own, to contractions
//     too: in Danish, usearch finds "Aa" (that is, "\u00e5") in "\u00c4".
//   - With diacritics matched where typed, usearch in ICU 72 keeps the
//     collation elements it looks at in a buffer of 32 plus about 3 per query
//     character. Where more accents (or other characters without a primary
//     weight) than that follow a match, it fails with
//     U_INTERNAL_PROGRAM_ERROR or ends the match after them; search folding
//     ends the match as it does before fewer.
//
// The user's language (search_options::locale, a BCP 47 tag; "_" is read as
// "-"). What counts as the same letter depends on the reader's language, and
// CLDR defines a search collation for each: the search then reads text as
// that collation does, at the levels the other options say, in place of the
// root collator. The collation is the locale's "search" collation as ICU
// resolves it (Collator::createInstance, falling back as ICU does: the root's
// search rules, "und-u-co-search", for a language without rules of its own,
// such as "cs", "ja" or "zz"); a tag that names a collation keeps it
// ("de-u-co-phonebk"). Other Unicode extension keywords are not read: the
// options set strength, case and punctuation. collation_locale() tells which
// collation ICU chose.
//   - Swedish and Finnish: "\u00e5", "\u00e4" and "\u00f6" are letters of their
//     own ("\u00c5nger" does not find "Anger"), and "\u00f6" finds "\u00f8".
//   - Danish and Norwegian: "aa" is "\u00e5" ("aarhus" finds "\u00c5rhus"), one
//     letter, so "a" is not found in "Aarhus".
//   - Turkish: "\u0131" finds "I" and "i" finds "\u0130"; "\u0131" does not find "i".
//   - German: "ae" finds "\u00e4". Spanish: "ano" does not find "a\u00f1o".
//   - Arabic (the root's search rules): alef with hamza or madda is alef,
//     teh marbuta is heh: "\u0627\u062d\u0645\u062f" finds "\u0623\u062d\u0645\u062f".
// A contraction of the collation ("aa", "Aa" and "AA" in Danish) folds as one
// piece, matched longest first as the collator matches it, in text and query
// alike; a regex class sees its fold as one character ("[\u00e5]rhus" finds
// "Aarhus"). A contraction whose collation elements no character has alone
// folds to a letter that NFC never lets through. whole_words finds the
// boundaries of the locale's word break iterator. The fold tables of the
// search collations ICU has (the root's, and those of the languages with
// rules of their own) are computed when the library is built, against the
// ICU it links; a language's first search with a set of options makes its
// table from them in a few milliseconds, about what usearch's first search
// in it costs, and some hundred KiB. A collation the tag names otherwise
// ("de-u-co-phonebk", "zh-u-co-pinyin"), or any collation when the ICU found
// at run time is not the one the library was built with, has its tables
// built from ICU's collator at its first search (some hundreds of
// milliseconds). Tables are kept for the life of the process, shared by all
// threads. The differences from usearch listed above carry over, for the
// contractions of the root collator too; and where a match ends with a
// contraction of a language's collation, usearch in ICU 72 often takes the
// characters it ignores after it into the match (controls, a soft hyphen,
// with ignore_punctuation punctuation too: Catalan "l\u00b7" in
// "l\u00b7\u00adx" is [0, 3) to usearch), where a search here ends the match
// after the contraction, as after any other letter ([0, 2)).
//
// Thread safety: a search_pattern is immutable after construction; any number
// of threads may search with one object, or with copies of it, at once.
// Searches honour the calling thread's match_time_limit.
#ifndef SCL_REGEX_SEARCH_PATTERN_H
#define SCL_REGEX_SEARCH_PATTERN_H

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <scl/regex/check_pattern.h>
#include <scl/regex/export.h>
#include <scl/regex/prepared_text.h>
#include <scl/regex/source_results.h>

namespace scl::regex {

// How a search_pattern reads its query.
enum class query_syntax {
  literal,  // the query is text: every character stands for itself
  regex,    // the query is an ICU regular expression, folded by its syntax (see above)
};

// How diacritics (accents, and the like) count in a search.
enum class diacritics_rule {
  ignore,       // "e" finds "\u00e9" and "\u00e9" finds "e" (the default)
  match,        // diacritics count: "e" does not find "\u00e9", nor "\u00e9" "e"
  match_typed,  // "e" finds "\u00e9"; "\u00e9" finds "\u00e9" only
};

// The toggles of a search box (see "Search options" above). The default
// value is the default search: the root collator at primary strength.
struct search_options {
  bool match_case = false;  // case counts ("Resume" finds "R\u00e9sum\u00e9", not "resume")
  diacritics_rule diacritics = diacritics_rule::ignore;
  bool whole_words = false;         // matches start and end on word boundaries
  bool ignore_punctuation = false;  // spaces and punctuation count as nothing
  std::string locale;               // the user's language, a BCP 47 tag ("sv"); "" for none

  friend bool operator==(const search_options& a, const search_options& b) {
    return a.match_case == b.match_case && a.diacritics == b.diacritics &&
           a.whole_words == b.whole_words && a.ignore_punctuation == b.ignore_punctuation &&
           a.locale == b.locale;
  }
  friend bool operator!=(const search_options& a, const search_options& b) { return !(a == b); }
};

// Returns `text` folded for search (see above), with its map back to `text`:
// source_range() gives the range of `text` that folded units came from, and
// source_size() is text.size(). Throws std::bad_alloc (also for text longer
// than 2^31 - 1 units, which ICU cannot take), or regex_exception with ICU's
// code if ICU fails.
[[nodiscard]] SCL_REGEX_API prepared_text search_fold(std::u16string_view text);

// The same, folded as `options` say (see "Search options" above): two whole
// texts fold to the same text exactly when ICU's collator set up by the
// options calls them equal. whole_words does not change the fold, and
// diacritics = match_typed folds as match does. Throws regex_exception with
// U_ILLEGAL_ARGUMENT_ERROR for an options value out of range or an
// ill-formed locale tag, and ICU's code if ICU cannot open the locale's
// collator; otherwise as above.
[[nodiscard]] SCL_REGEX_API prepared_text search_fold(std::u16string_view text,
                                                      const search_options& options);

namespace detail {
struct search_program;
}  // namespace detail

// A query, folded once, for searching any number of texts.
//
// Each match is a source_match in the caller's text: UTF-16 units for the
// std::u16string_view forms, bytes for the std::string_view (UTF-8) forms.
// Its groups are the match itself, then (for a regex query) each capturing
// group. Matches come in text order and do not overlap; only a regex query
// has empty matches.
//
// Errors: a search that fails (stopped by match_time_limit, an ICU error)
// throws regex_exception with ICU's code (U_REGEX_TIME_OUT for the time
// limit); there are no partial results. Out of memory, and texts longer than
// 2^31 - 1 units or bytes (which ICU cannot take), throw std::bad_alloc.
class SCL_REGEX_API search_pattern {
 public:
  // An empty literal query: finds nothing.
  search_pattern();

  // Folds `query` for search. A literal query never fails. A regex query
  // that ICU rejects throws regex_exception with the code createMatcher
  // gives for it (and so its message). A UTF-8 query is the same query as its
  // UTF-16 form, its ill-formed sequences read as U+FFFD. Compiling a regex
  // query with a large class (\p{L}) takes well under a millisecond.
  explicit search_pattern(std::u16string_view query, query_syntax syntax = query_syntax::literal);
  explicit search_pattern(std::string_view utf8_query, query_syntax syntax = query_syntax::literal);
  // The same, searching as `options` say. An options value out of range (a
  // cast enumerator) or an ill-formed locale tag throws regex_exception with
  // U_ILLEGAL_ARGUMENT_ERROR, and a locale whose collator ICU cannot open
  // ICU's code, before the query is read.
  search_pattern(std::u16string_view query, query_syntax syntax, const search_options& options);
  search_pattern(std::string_view utf8_query, query_syntax syntax, const search_options& options);

  // Copies are cheap: they share the folded query.
  search_pattern(const search_pattern&) noexcept;
  search_pattern(search_pattern&&) noexcept;
  search_pattern& operator=(const search_pattern&) noexcept;
  search_pattern& operator=(search_pattern&&) noexcept;
  ~search_pattern();

  // Returns no value if search_pattern(query, syntax) would succeed, else the
  // error it would throw, with its offset in `query` (UTF-16 units, or bytes
  // for the UTF-8 form; npos where ICU gives none), which is where ICU stops
  // reading the query ("stra\u00dfe(" fails at 7), and a description that
  // points at it, as check_pattern's does. A literal query never fails.
  // Throws only std::bad_alloc.
  [[nodiscard]] static std::optional<pattern_error> check(std::u16string_view query,
                                                          query_syntax syntax);
  [[nodiscard]] static std::optional<pattern_error> check(std::string_view utf8_query,
                                                          query_syntax syntax);
  // The same with `options`: an options value the constructor rejects is
  // reported with its code and offset npos, for any query.
  [[nodiscard]] static std::optional<pattern_error> check(std::u16string_view query,
                                                          query_syntax syntax,
                                                          const search_options& options);
  [[nodiscard]] static std::optional<pattern_error> check(std::string_view utf8_query,
                                                          query_syntax syntax,
                                                          const search_options& options);

  // The syntax the query was read with.
  [[nodiscard]] query_syntax syntax() const noexcept;
  // The options it searches with (default ones for a default-constructed pattern).
  [[nodiscard]] const search_options& options() const noexcept;
  // The BCP 47 tag of the collation it searches by, as ICU resolved the
  // options' locale: "und" for the root collation (no locale), "sv-u-co-search"
  // for "sv", "und-u-co-search" for a language without search rules of its
  // own ("cs", "ja"), "de-u-co-phonebk" for a tag that names its collation.
  [[nodiscard]] std::string collation_locale() const;
  // The number of capturing groups of the query: 0 for a literal query.
  // (A default-constructed pattern has none either.)
  [[nodiscard]] int group_count() const noexcept;
  // The number of the group called `name`, or -1 if there is none.
  [[nodiscard]] int group_number(std::string_view name) const noexcept;

  // Whether the query is found in `text`; stops at the first match.
  [[nodiscard]] bool found_in(std::u16string_view text) const;
  // The first match in `text`, or no value; find_all(text).front() if any.
  [[nodiscard]] std::optional<source_match> find_first(std::u16string_view text) const;
  // Every match in `text`, in order, without overlap.
  [[nodiscard]] std::vector<source_match> find_all(std::u16string_view text) const;
  // `text` with the range of every match replaced by `replacement`. Every
  // unit outside the matches is kept as it was, U+0000 and lone surrogates
  // included. After a literal query the replacement is taken literally. After
  // a regex query it is read with ICU's syntax: "$n" and "${name}" insert the
  // group's text from `text`, as written there (nothing for a group that took
  // no part), and a backslash makes the next character literal. A reference
  // to a group that does not exist throws regex_exception with ICU's code
  // (U_INDEX_OUTOFBOUNDS_ERROR for a number, U_REGEX_INVALID_CAPTURE_GROUP_NAME
  // for a name or a "$" that is followed by neither), whether or not anything
  // matches.
  [[nodiscard]] std::u16string replace_all(std::u16string_view text,
                                           std::u16string_view replacement) const;

  // The same for UTF-8 text, with positions in bytes. The text is folded as
  // it is read, without a UTF-16 copy. replace_all keeps every byte outside
  // the matches exactly, ill-formed ones included.
  [[nodiscard]] bool found_in(std::string_view utf8_text) const;
  [[nodiscard]] std::optional<source_match> find_first(std::string_view utf8_text) const;
  [[nodiscard]] std::vector<source_match> find_all(std::string_view utf8_text) const;
  [[nodiscard]] std::string replace_all(std::string_view utf8_text,
                                        std::string_view utf8_replacement) const;

 private:
  std::shared_ptr<const detail::search_program> program_;
};

}  // namespace scl::regex

#endif  // SCL_REGEX_SEARCH_PATTERN_H
