#include "scl/regex/search_pattern.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include <unicode/regex.h>

#include "errors/parse_offset.h"
#include "errors/pattern_error_description.h"
#include "i18n/host_i18n.h"
#include "icu/compile.h"
#include "icu/icu_string.h"
#include "icu/replacement_template.h"
#include "icu/spare_matchers.h"
#include "search/cluster_syntax.h"
#include "search/code_points.h"
#include "search/fold_collation.h"
#include "search/fold_table.h"
#include "search/folded_text.h"
#include "search/literal_search.h"
#include "search/pattern_fold.h"
#include "search/pattern_text.h"
#include "search/regex_search.h"
#include "search/search_settings.h"
#include "search/typed_accents.h"
#include "search/word_breaks.h"
#include "time_limit/deadline.h"

namespace scl::regex {

namespace detail {

// What a search_pattern shares between its copies.
struct search_program {
  query_syntax syntax = query_syntax::literal;
  search_options options;
  search_settings settings;
  // A literal query folded, or a regex query that is literal characters alone
  // (then ICU would find what literal search finds): searched as such.
  literal_query query;
  // With diacritics matched where typed, the literal query's accents.
  typed_accents accents;
  // A regex query: ICU's pattern for its fold, and the folded units that
  // start every match.
  shared_pattern pattern;
  std::optional<spare_matchers> matchers;  // of `pattern`, kept from search to search
  std::u16string prefix;
  // Diacritics matched where typed: how a match ends, if the pattern ends
  // with a letter and the accents typed after it (find_regex).
  std::optional<typed_ending> ending;
  int group_count = 0;
};

}  // namespace detail

namespace {

using detail::source_span;

// A query compiled, or why it cannot be: ICU's error, with its UTF-16 offset
// in the query (npos where ICU gives none).
struct compiled_query {
  std::shared_ptr<const detail::search_program> program;
  std::optional<regex_exception> error;
  std::size_t offset = npos;
};

// A new program for `options`, searching a query of `syntax`.
std::shared_ptr<detail::search_program> new_program(query_syntax syntax,
                                                    const search_options& options,
                                                    const detail::search_locale& locale) {
  auto program = std::make_shared<detail::search_program>();
  program->syntax = syntax;
  program->options = options;
  program->settings = detail::search_settings::of(options, syntax, locale);
  return program;
}

// Whether `query` folds, as `variant` (with accents) of the collation of
// `settings` says, to accents alone: to something, and without accents to
// nothing.
bool accents_alone(std::u16string_view query, const detail::search_settings& settings,
                   detail::fold_variant variant) {
  auto folds_to_nothing = [&](detail::fold_variant fold) {
    detail::folded_text folded;
    detail::fold_text(settings.table(fold), query.data(), detail::icu_length(query.size()), false,
                      folded);
    return folded.size == 0;
  };
  return folds_to_nothing(variant.without_accents()) && !folds_to_nothing(variant);
}

// The literal query folded as `settings` say.
detail::literal_query fold_literal(std::u16string_view query,
                                   const detail::search_settings& settings) {
  detail::folded_text folded;
  detail::fold_text(settings.table(settings.fold), query.data(), detail::icu_length(query.size()),
                    false, folded);
  return detail::literal_query::of(folded);
}

// The offset in `pattern` where ICU stopped compiling it, or npos.
std::size_t error_offset(const std::u16string& pattern, const detail::compiled_pattern& compiled) {
  return detail::parse_offset(pattern, compiled.where.line, compiled.where.offset);
}

// ICU's error for a folded pattern, with its offset in the caller's pattern.
struct pattern_failure {
  regex_exception error;
  std::size_t offset;
};

// Folds `pattern` by its syntax into `program`, as its settings say: ICU's
// pattern for the fold, the units every match starts with, how a typed
// ending ends, the number of groups. Returns ICU's error if it rejects the
// fold.
std::optional<pattern_failure> fold_regex(detail::search_program& program,
                                          std::u16string_view pattern,
                                          detail::folded_pattern& folded) {
  const bool typed = program.options.diacritics == diacritics_rule::match_typed;
  const detail::fold_table& table = program.settings.table(program.settings.fold);
  folded = detail::fold_pattern(table, pattern, typed);
  const detail::compiled_pattern compiled = detail::compile_prepared(folded.text, 0);
  if (!compiled) {
    const std::size_t at = error_offset(folded.text, compiled);
    return pattern_failure{compiled.error(),
                           at == npos ? npos : static_cast<std::size_t>(folded.source_offset(at))};
  }
  program.pattern = compiled.pattern;
  program.prefix = folded.prefix;
  if (folded.typed_ending >= 0) {
    program.ending = detail::typed_ending{&detail::cluster_syntax::accents_of(table),
                                          folded.typed_ending, folded.typed_ending_after_letter};
  }
  program.matchers.emplace(*program.pattern);
  try {
    // The first search takes this matcher up.
    program.group_count = program.matchers->borrow()->groupCount();
  } catch (const regex_exception& error) {
    return pattern_failure{error, npos};
  }
  return std::nullopt;
}

// `text` as a pattern of escaped characters, which stand for themselves.
std::u16string escaped(std::u16string_view text) {
  std::u16string pattern;
  const auto size = detail::icu_length(text.size());
  for (int32_t at = 0; at < size;) {
    detail::append_escaped(pattern, detail::next_code_point(text.data(), at, size));
  }
  return pattern;
}

// Makes `program` search `query` as a literal query.
void make_literal(detail::search_program& program, std::u16string_view query) {
  detail::search_settings& settings = program.settings;
  program.query = fold_literal(query, settings);
  const detail::fold_variant accent_fold =
      settings.typed_accents ? settings.accents : settings.fold;
  if (accent_fold.accents && accent_fold.shifted && accents_alone(query, settings, accent_fold)) {
    // As in ICU's usearch with "shifted", accents alone are nothing to find.
    program.query = {};
    settings.typed_accents = false;
    return;
  }
  if (settings.typed_accents) {
    if (program.query.units.empty()) {
      settings.fold = settings.accents;
      program.query = fold_literal(query, settings);
      if (program.query.units.empty()) return;  // folds to nothing: finds nothing
      // Accents alone, with no letter to find them by: searched as the regex
      // of the characters they are (cluster_syntax.h), which finds them as
      // typed and more of the last one after them, as ICU's usearch does.
      // (ICU takes escaped characters; were it not so, they would be found
      // as they are.)
      detail::search_settings regex =
          detail::search_settings::of(program.options, query_syntax::regex, *settings.locale);
      std::swap(settings, regex);
      detail::folded_pattern folded;
      if (!fold_regex(program, escaped(query), folded)) {
        program.query = {};
        return;
      }
      std::swap(settings, regex);
    }
    program.accents =
        detail::typed_accents(settings.table(settings.accents), query,
                              program.options.match_case && !program.options.ignore_punctuation);
  }
}

compiled_query compile_literal(std::u16string_view query, const search_options& options,
                               const detail::search_locale& locale) {
  auto program = new_program(query_syntax::literal, options, locale);
  make_literal(*program, query);
  return compiled_query{std::move(program), std::nullopt, npos};
}

// A regex query: ICU must compile it as it stands (so that its errors are
// ICU's, at ICU's offsets), then its fold, which ICU runs on folded text.
// "." matches line ends, as everywhere in the library.
compiled_query compile_regex(std::u16string_view query, const search_options& options,
                             const detail::search_locale& locale) {
  const detail::compiled_pattern as_written = detail::compile_prepared(query, 0);
  if (!as_written) {
    return compiled_query{nullptr, as_written.error(),
                          error_offset(std::u16string(query), as_written)};
  }
  auto program = new_program(query_syntax::regex, options, locale);
  detail::folded_pattern folded;
  if (const std::optional<pattern_failure> failure = fold_regex(*program, query, folded)) {
    return compiled_query{nullptr, failure->error, failure->offset};
  }
  if (folded.literal && options.diacritics == diacritics_rule::match_typed) {
    // Searched as the literal query it is, whose accents are checked after.
    program->settings = detail::search_settings::of(options, query_syntax::literal, locale);
    make_literal(*program, folded.literal_text);
  } else if (folded.literal) {
    program->query = folded.literal_fold;
  }
  return compiled_query{std::move(program), std::nullopt, npos};
}

// The query compiled, or why it cannot be; options that are out of range
// throw.
compiled_query compile_query(std::u16string_view query, query_syntax syntax,
                             const search_options& options) {
  const detail::search_locale& locale = detail::search_settings::validate(options);
  return syntax == query_syntax::regex ? compile_regex(query, options, locale)
                                       : compile_literal(query, options, locale);
}

std::shared_ptr<const detail::search_program> compile(std::u16string_view query,
                                                      query_syntax syntax,
                                                      const search_options& options) {
  compiled_query compiled = compile_query(query, syntax, options);
  if (compiled.error) throw *compiled.error;
  return std::move(compiled.program);
}

// The byte offset in `utf8` of UTF-16 offset `at` in its decoding (ill-formed
// sequences read as one U+FFFD each).
std::size_t utf8_offset(std::string_view utf8, std::size_t at) {
  const auto size = detail::icu_length(utf8.size());
  int32_t byte = 0;
  for (std::size_t units = 0; units < at && byte < size;) {
    units += detail::next_code_point(utf8.data(), byte, size) > 0xFFFF ? 2 : 1;
  }
  return static_cast<std::size_t>(byte);
}

// The error that compiling `query` gives, if any, with its offset in the
// caller's units as `to_caller` maps a UTF-16 offset in `query`.
template <class OffsetMap>
std::optional<pattern_error> check_query(std::u16string_view query, query_syntax syntax,
                                         const search_options& options, OffsetMap to_caller) {
  if (const auto wrong = detail::search_settings::check(options)) {
    return pattern_error{wrong->error, npos,
                         std::string(wrong->error.what()) + " (" + wrong->option + ")"};
  }
  if (syntax == query_syntax::literal) return std::nullopt;  // never fails
  const compiled_query compiled = compile_query(query, syntax, options);
  if (!compiled.error) return std::nullopt;
  const std::size_t offset = compiled.offset == npos ? npos : to_caller(compiled.offset);
  return pattern_error{*compiled.error, offset,
                       detail::describe_pattern_error(*compiled.error, std::u16string(query),
                                                      compiled.offset, offset)};
}

// The first stretch of text folded and searched for a regex query's first
// match (regex_finder).
constexpr int32_t first_regex_stretch = 1 << 12;

// The matches of `program` in `text`, at most `limit` of them.
template <class Unit>
detail::regex_matches search(const detail::search_program* program,
                             std::basic_string_view<Unit> text, std::size_t limit) {
  detail::regex_matches found;
  if (program == nullptr || (program->query.units.empty() && program->pattern == nullptr))
    return found;
  UErrorCode status = U_ZERO_ERROR;
  detail::check_deadline(status);
  if (U_FAILURE(status)) throw regex_exception(status);
  const detail::search_settings& settings = program->settings;
  const detail::fold_table& table = settings.table(settings.fold);
  const detail::scratch_text scratch;
  detail::folded_text& folded = scratch.text();
  const int32_t size = detail::icu_length(text.size());
  std::optional<detail::word_breaks> words;
  if (settings.whole_words) words.emplace(text.data(), size, settings.locale->word_locale);
  const detail::match_policy policy{
      settings.fold.shifted, words ? &*words : nullptr,
      program->syntax == query_syntax::regex &&
              program->options.diacritics == diacritics_rule::match_typed
          ? &detail::cluster_syntax::accents_of(table)
          : nullptr};
  if (program->query.units.empty()) {
    const detail::typed_ending* ending = program->ending ? &*program->ending : nullptr;
    if (limit != 1) {
      // All matches: the whole text is folded first.
      detail::fold_text(table, text.data(), size, true, folded);
      detail::find_regex(table, *program->matchers, program->prefix, policy, ending, text.data(),
                         folded, limit, found);
      return found;
    }
    // The first match: searched in the start of the text as it is folded,
    // in stretches from 4 Ki units on, twice as long each time, and found
    // there unless ICU's engine read to the end of what is folded. Each
    // search of a start reads it anew, so they stop at an eighth of the
    // text: past that, the rest is folded and searched once.
    detail::regex_finder<Unit> finder(table, *program->matchers, program->prefix, policy, ending,
                                      text.data(), folded);
    int32_t searched = 0;  // the units the last search of a start read
    detail::fold_text(
        table, text.data(), size, true, folded,
        [&](int32_t final_units, bool last) {
          if (last) return finder.search(folded.size, true, limit, found);
          if (final_units > size / 8 || final_units < 2 * searched) return false;
          searched = final_units;
          return finder.search(final_units, false, limit, found);
        },
        first_regex_stretch);
    return found;
  }
  // The search follows the fold, so that it can stop at the first match. (One
  // reference captured: std::function keeps it without allocating.)
  const detail::literal_search literal{
      table, program->query, settings.typed_accents ? &program->accents : nullptr, policy};
  struct {
    const detail::literal_search& literal;
    std::basic_string_view<Unit> text;
    const detail::folded_text& folded;
    std::size_t limit;
    std::vector<source_span>& spans;
    int32_t from;
  } state{literal, text, folded, limit, found.spans, 0};
  detail::fold_text(
      table, text.data(), size, true, folded, [&state](int32_t final_units, bool last) {
        state.from = detail::find_literal(state.literal, state.text.data(), state.folded,
                                          state.from, final_units, last, state.limit, state.spans);
        return state.spans.size() >= state.limit;
      });
  return found;
}

source_match to_match(const detail::regex_matches& found, std::size_t i) {
  const source_span* spans = found.match(i);
  source_match match;
  match.start = static_cast<std::size_t>(spans[0].start);
  match.end = static_cast<std::size_t>(spans[0].end);
  match.groups.reserve(found.per_match);
  for (std::size_t group = 0; group < found.per_match; ++group) {
    const source_span& span = spans[group];
    if (span.start < 0) {
      match.groups.emplace_back(npos, npos);
    } else {
      match.groups.emplace_back(static_cast<std::size_t>(span.start),
                                static_cast<std::size_t>(span.end));
    }
  }
  return match;
}

template <class Unit>
std::vector<source_match> all_matches(const detail::search_program* program,
                                      std::basic_string_view<Unit> text) {
  const detail::regex_matches found = search(program, text, npos);
  std::vector<source_match> matches;
  matches.reserve(found.size());
  for (std::size_t i = 0; i < found.size(); ++i) matches.push_back(to_match(found, i));
  return matches;
}

template <class Unit>
std::optional<source_match> first_match(const detail::search_program* program,
                                        std::basic_string_view<Unit> text) {
  const detail::regex_matches found = search(program, text, 1);
  if (found.size() == 0) return std::nullopt;
  return to_match(found, 0);
}

int group_number_of(const detail::search_program* program, std::string_view name) {
  if (program == nullptr || program->pattern == nullptr || name.size() > INT32_MAX) return -1;
  UErrorCode status = U_ZERO_ERROR;
  const int32_t number =
      program->pattern->groupNumberFromName(name.data(), static_cast<int32_t>(name.size()), status);
  return U_SUCCESS(status) ? number : -1;
}

std::u16string to_utf16(std::u16string_view text) { return std::u16string(text); }
std::u16string to_utf16(std::string_view utf8) {
  return detail::i18n::utf8_to_ustring(std::string(utf8));
}
std::u16string from_utf16(std::u16string text, char16_t) { return text; }
std::string from_utf16(const std::u16string& text, char) { return detail::i18n::to_string(text); }

// A replacement read as the query's syntax says: taken literally after a
// literal query, with ICU's syntax after a regex query.
template <class Unit>
struct expansion_part {
  std::basic_string<Unit> text;
  int group = -1;
};

template <class Unit>
std::vector<expansion_part<Unit>> read_replacement(const detail::search_program* program,
                                                   std::basic_string_view<Unit> replacement) {
  std::vector<expansion_part<Unit>> expansion;
  if (program == nullptr || program->syntax == query_syntax::literal) {
    expansion.push_back({std::basic_string<Unit>(replacement), -1});
    return expansion;
  }
  std::vector<detail::replacement_part> parts;
  const UErrorCode status = detail::parse_replacement(
      to_utf16(replacement), program->group_count,
      [program](const std::string& name) { return group_number_of(program, name); }, parts);
  if (U_FAILURE(status)) throw regex_exception(status);
  for (detail::replacement_part& part : parts) {
    expansion.push_back({from_utf16(std::move(part.text), Unit{}), part.group});
  }
  return expansion;
}

template <class Unit>
std::basic_string<Unit> replace(const detail::search_program* program,
                                std::basic_string_view<Unit> text,
                                std::basic_string_view<Unit> replacement) {
  const std::vector<expansion_part<Unit>> expansion = read_replacement(program, replacement);
  const detail::regex_matches found = search(program, text, npos);
  std::basic_string<Unit> result;
  result.reserve(text.size());
  std::size_t kept = 0;
  for (std::size_t i = 0; i < found.size(); ++i) {
    const source_span* spans = found.match(i);
    result.append(text.substr(kept, static_cast<std::size_t>(spans[0].start) - kept));
    for (const expansion_part<Unit>& part : expansion) {
      if (part.group < 0) {
        result.append(part.text);
      } else if (const source_span& group = spans[part.group]; group.start >= 0) {
        result.append(text.substr(static_cast<std::size_t>(group.start),
                                  static_cast<std::size_t>(group.end - group.start)));
      }
    }
    kept = static_cast<std::size_t>(spans[0].end);
  }
  result.append(text.substr(kept));
  return result;
}

}  // namespace

search_pattern::search_pattern() = default;

search_pattern::search_pattern(std::u16string_view query, query_syntax syntax)
    : search_pattern(query, syntax, search_options{}) {}

search_pattern::search_pattern(std::string_view utf8_query, query_syntax syntax)
    : search_pattern(utf8_query, syntax, search_options{}) {}

search_pattern::search_pattern(std::u16string_view query, query_syntax syntax,
                               const search_options& options)
    : program_(compile(query, syntax, options)) {}

search_pattern::search_pattern(std::string_view utf8_query, query_syntax syntax,
                               const search_options& options)
    : program_(compile(detail::i18n::utf8_to_ustring(std::string(utf8_query)), syntax, options)) {}

search_pattern::search_pattern(const search_pattern&) noexcept = default;
search_pattern::search_pattern(search_pattern&&) noexcept = default;
search_pattern& search_pattern::operator=(const search_pattern&) noexcept = default;
search_pattern& search_pattern::operator=(search_pattern&&) noexcept = default;
search_pattern::~search_pattern() = default;

std::optional<pattern_error> search_pattern::check(std::u16string_view query, query_syntax syntax) {
  return check(query, syntax, search_options{});
}

std::optional<pattern_error> search_pattern::check(std::string_view utf8_query,
                                                   query_syntax syntax) {
  return check(utf8_query, syntax, search_options{});
}

std::optional<pattern_error> search_pattern::check(std::u16string_view query, query_syntax syntax,
                                                   const search_options& options) {
  return check_query(query, syntax, options, [](std::size_t at) { return at; });
}

std::optional<pattern_error> search_pattern::check(std::string_view utf8_query, query_syntax syntax,
                                                   const search_options& options) {
  return check_query(detail::i18n::utf8_to_ustring(std::string(utf8_query)), syntax, options,
                     [utf8_query](std::size_t at) { return utf8_offset(utf8_query, at); });
}

query_syntax search_pattern::syntax() const noexcept {
  return program_ != nullptr ? program_->syntax : query_syntax::literal;
}

const search_options& search_pattern::options() const noexcept {
  static const search_options defaults;
  return program_ != nullptr ? program_->options : defaults;
}

std::string search_pattern::collation_locale() const {
  return program_ != nullptr ? program_->settings.locale->collation->tag()
                             : detail::fold_collation::root().tag();
}

int search_pattern::group_count() const noexcept {
  return program_ != nullptr ? program_->group_count : 0;
}

int search_pattern::group_number(std::string_view name) const noexcept {
  return group_number_of(program_.get(), name);
}

bool search_pattern::found_in(std::u16string_view text) const {
  return search(program_.get(), text, 1).size() != 0;
}

std::optional<source_match> search_pattern::find_first(std::u16string_view text) const {
  return first_match(program_.get(), text);
}

std::vector<source_match> search_pattern::find_all(std::u16string_view text) const {
  return all_matches(program_.get(), text);
}

std::u16string search_pattern::replace_all(std::u16string_view text,
                                           std::u16string_view replacement) const {
  return replace(program_.get(), text, replacement);
}

bool search_pattern::found_in(std::string_view utf8_text) const {
  return search(program_.get(), utf8_text, 1).size() != 0;
}

std::optional<source_match> search_pattern::find_first(std::string_view utf8_text) const {
  return first_match(program_.get(), utf8_text);
}

std::vector<source_match> search_pattern::find_all(std::string_view utf8_text) const {
  return all_matches(program_.get(), utf8_text);
}

std::string search_pattern::replace_all(std::string_view utf8_text,
                                        std::string_view utf8_replacement) const {
  return replace(program_.get(), utf8_text, utf8_replacement);
}

}  // namespace scl::regex
