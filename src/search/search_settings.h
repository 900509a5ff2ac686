// What a search's options mean for folding and matching.
#ifndef SCL_REGEX_SRC_SEARCH_SEARCH_SETTINGS_H
#define SCL_REGEX_SRC_SEARCH_SEARCH_SETTINGS_H

#include <optional>
#include <string>

#include "scl/regex/exception.h"
#include "scl/regex/search_pattern.h"
#include "search/fold_collation.h"
#include "search/fold_table.h"
#include "search/fold_variant.h"

namespace scl::regex::detail {

struct search_settings {
  // The options' locale: its collation, and the word breaks whole_words finds.
  const search_locale* locale = &fold_collation::resolve({});
  fold_variant fold;           // how the text and the query are folded for searching
  bool typed_accents = false;  // a literal query's accents are checked after (typed_accents.h)
  fold_variant accents;        // ... in this fold
  bool whole_words = false;

  // The collation's table of `variant`.
  const fold_table& table(fold_variant variant) const { return locale->collation->table(variant); }

  // What is wrong with `options`, if anything: the error to throw, and which
  // option, for people. The locale's collation is opened here.
  struct options_error {
    regex_exception error;
    const char* option;
  };
  static std::optional<options_error> check(const search_options& options);
  // Throws the error check() gives, if any: regex_exception with
  // U_ILLEGAL_ARGUMENT_ERROR for a value out of range or an ill-formed locale
  // tag, ICU's code if ICU cannot open the locale's collator. Returns the
  // locale.
  static const search_locale& validate(const search_options& options);

  // The settings for a query of `syntax` in `locale`, the options' locale. A
  // literal query with diacritics matched where typed is searched without
  // accents and checked with them; a regex query is searched with accents
  // (pattern_fold.h).
  static search_settings of(const search_options& options, query_syntax syntax,
                            const search_locale& locale);

  // The fold search_fold gives: the one a regex query searches.
  static fold_variant text_fold(const search_options& options);
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_SEARCH_SETTINGS_H
