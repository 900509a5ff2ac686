// The BCP 47 tag of a collator's locale ("sv-u-co-search", "und"), which
// names the collation a search folds by.
#ifndef SCL_REGEX_SRC_SEARCH_COLLATION_TAG_H
#define SCL_REGEX_SRC_SEARCH_COLLATION_TAG_H

#include <string>

#include <unicode/locid.h>
#include <unicode/utypes.h>

namespace scl::regex::detail {

// The tag of `locale` (a collator's actual locale): its language, script,
// region and variants, and its collation keyword as "-u-co-TYPE"; "und" for
// the root. Gives what icu::Locale::toLanguageTag gives, without that
// function's first call loading ICU's table of every keyword's types (some
// milliseconds), except for a legacy collation name ("phonebook"). Sets
// `status` if ICU fails.
std::string collation_tag(const icu::Locale& locale, UErrorCode& status);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_COLLATION_TAG_H
