#include "scl/regex/search_pattern.h"

#include <string>
#include <utility>

#include "i18n/host_i18n.h"
#include "icu/icu_string.h"
#include "search/fold_table.h"
#include "search/folded_text.h"
#include "search/literal_search.h"
#include "time_limit/deadline.h"

namespace scl::regex {

namespace detail {

// What a search_pattern shares between its copies.
struct search_program {
  query_syntax syntax = query_syntax::literal;
  std::u16string query;  // folded
};

}  // namespace detail

namespace {

using detail::source_span;

std::shared_ptr<const detail::search_program> compile(std::u16string_view query,
                                                      query_syntax syntax) {
  if (syntax != query_syntax::literal) throw regex_exception(U_UNSUPPORTED_ERROR);
  auto program = std::make_shared<detail::search_program>();
  program->syntax = syntax;
  detail::folded_text folded;
  detail::fold_text(detail::fold_table::get(), query.data(), detail::icu_length(query.size()),
                    false, folded);
  program->query.assign(folded.text());
  return program;
}

std::optional<pattern_error> check_query(query_syntax syntax) {
  if (syntax == query_syntax::literal) return std::nullopt;
  return pattern_error{regex_exception(U_UNSUPPORTED_ERROR), npos,
                       "Regex queries are not supported yet: search_pattern takes literal "
                       "queries (query_syntax::literal)."};
}

// The thread's folded text, reused from search to search; a large one is
// given back when the search ends.
class scratch_text {
 public:
  scratch_text() = default;
  scratch_text(const scratch_text&) = delete;
  scratch_text& operator=(const scratch_text&) = delete;
  ~scratch_text() { text().trim(); }

  static detail::folded_text& text() {
    thread_local detail::folded_text folded;
    return folded;
  }
};

// The matches of `program` in `text`, at most `limit` of them.
template <class Unit>
std::vector<source_span> search(const detail::search_program* program,
                                std::basic_string_view<Unit> text, std::size_t limit) {
  std::vector<source_span> spans;
  if (program == nullptr || program->query.empty()) return spans;
  UErrorCode status = U_ZERO_ERROR;
  detail::check_deadline(status);
  if (U_FAILURE(status)) throw regex_exception(status);
  const detail::fold_table& table = detail::fold_table::get();
  const scratch_text scratch;
  detail::folded_text& folded = scratch_text::text();
  // The search follows the fold, so that it can stop at the first match. (One
  // reference captured: std::function keeps it without allocating.)
  struct {
    const detail::fold_table& table;
    const detail::search_program& program;
    std::basic_string_view<Unit> text;
    const detail::folded_text& folded;
    std::size_t limit;
    std::vector<source_span>& spans;
    int32_t from;
  } state{table, *program, text, folded, limit, spans, 0};
  detail::fold_text(table, text.data(), detail::icu_length(text.size()), true, folded,
                    [&state](int32_t final_units, bool last) {
                      state.from = detail::find_literal(
                          state.table, state.program.query, state.text.data(), state.folded,
                          state.from, final_units, last, state.limit, state.spans);
                      return state.spans.size() >= state.limit;
                    });
  return spans;
}

source_match to_match(const source_span& span) {
  const auto start = static_cast<std::size_t>(span.start);
  const auto end = static_cast<std::size_t>(span.end);
  return source_match{start, end, {{start, end}}};
}

template <class Unit>
std::vector<source_match> all_matches(const detail::search_program* program,
                                      std::basic_string_view<Unit> text) {
  const std::vector<source_span> spans = search(program, text, npos);
  std::vector<source_match> matches;
  matches.reserve(spans.size());
  for (const source_span& span : spans) matches.push_back(to_match(span));
  return matches;
}

template <class Unit>
std::optional<source_match> first_match(const detail::search_program* program,
                                        std::basic_string_view<Unit> text) {
  const std::vector<source_span> spans = search(program, text, 1);
  if (spans.empty()) return std::nullopt;
  return to_match(spans.front());
}

template <class Unit>
std::basic_string<Unit> replace(const detail::search_program* program,
                                std::basic_string_view<Unit> text,
                                std::basic_string_view<Unit> replacement) {
  const std::vector<source_span> spans = search(program, text, npos);
  std::basic_string<Unit> result;
  result.reserve(text.size());
  std::size_t kept = 0;
  for (const source_span& span : spans) {
    result.append(text.substr(kept, static_cast<std::size_t>(span.start) - kept));
    result.append(replacement);
    kept = static_cast<std::size_t>(span.end);
  }
  result.append(text.substr(kept));
  return result;
}

}  // namespace

search_pattern::search_pattern() = default;

search_pattern::search_pattern(std::u16string_view query, query_syntax syntax)
    : program_(compile(query, syntax)) {}

search_pattern::search_pattern(std::string_view utf8_query, query_syntax syntax)
    : program_(compile(detail::i18n::utf8_to_ustring(std::string(utf8_query)), syntax)) {}

search_pattern::search_pattern(const search_pattern&) noexcept = default;
search_pattern::search_pattern(search_pattern&&) noexcept = default;
search_pattern& search_pattern::operator=(const search_pattern&) noexcept = default;
search_pattern& search_pattern::operator=(search_pattern&&) noexcept = default;
search_pattern::~search_pattern() = default;

std::optional<pattern_error> search_pattern::check(std::u16string_view, query_syntax syntax) {
  return check_query(syntax);
}

std::optional<pattern_error> search_pattern::check(std::string_view, query_syntax syntax) {
  return check_query(syntax);
}

query_syntax search_pattern::syntax() const noexcept {
  return program_ != nullptr ? program_->syntax : query_syntax::literal;
}

int search_pattern::group_count() const noexcept { return 0; }

int search_pattern::group_number(std::string_view) const noexcept { return -1; }

bool search_pattern::found_in(std::u16string_view text) const {
  return !search(program_.get(), text, 1).empty();
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
  return !search(program_.get(), utf8_text, 1).empty();
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
