#include "search/search_settings.h"

#include <unicode/utypes.h>

#include "scl/regex/exception.h"

namespace scl::regex::detail {

void search_settings::validate(const search_options& options) {
  switch (options.diacritics) {
    case diacritics_rule::ignore:
    case diacritics_rule::match:
    case diacritics_rule::match_typed:
      break;
    default:
      throw regex_exception(U_ILLEGAL_ARGUMENT_ERROR);
  }
  if (!options.locale.empty()) throw regex_exception(U_UNSUPPORTED_ERROR);
}

fold_variant search_settings::text_fold(const search_options& options) {
  return fold_variant{options.diacritics != diacritics_rule::ignore, options.match_case,
                      options.ignore_punctuation};
}

search_settings search_settings::of(const search_options& options, query_syntax syntax) {
  search_settings settings;
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
