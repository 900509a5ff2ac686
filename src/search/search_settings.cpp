#include "search/search_settings.h"

#include <unicode/utypes.h>

#include "scl/regex/exception.h"

namespace scl::regex::detail {

namespace {

bool known(diacritics_rule rule) {
  switch (rule) {
    case diacritics_rule::ignore:
    case diacritics_rule::match:
    case diacritics_rule::match_typed:
      return true;
  }
  return false;
}

}  // namespace

std::optional<search_settings::options_error> search_settings::check(
    const search_options& options) {
  if (!known(options.diacritics)) {
    return options_error{regex_exception(U_ILLEGAL_ARGUMENT_ERROR),
                         "search_options::diacritics is not a diacritics_rule"};
  }
  try {
    fold_collation::resolve(options.locale);
  } catch (const regex_exception& error) {
    return options_error{error, locale_id(options.locale)
                                    ? "search_options::locale: ICU cannot open its collator"
                                    : "search_options::locale is not a well-formed BCP 47 tag"};
  }
  return std::nullopt;
}

const search_locale& search_settings::validate(const search_options& options) {
  if (!known(options.diacritics)) throw regex_exception(U_ILLEGAL_ARGUMENT_ERROR);
  return fold_collation::resolve(options.locale);  // throws check()'s error
}

fold_variant search_settings::text_fold(const search_options& options) {
  return fold_variant{options.diacritics != diacritics_rule::ignore, options.match_case,
                      options.ignore_punctuation};
}

search_settings search_settings::of(const search_options& options, query_syntax syntax,
                                    const search_locale& locale) {
  search_settings settings;
  settings.locale = &locale;
  settings.fold = text_fold(options);
  settings.whole_words = options.whole_words;
  if (options.diacritics == diacritics_rule::match_typed && syntax == query_syntax::literal) {
    settings.typed_accents = true;
    settings.accents = settings.fold.without_case();
    settings.fold = settings.fold.without_accents();
  }
  return settings;
}

}  // namespace scl::regex::detail
