// scl_regex: regular expressions for UTF-16 text on ICU, with case-,
// normalisation- and accent-insensitive matching.
//
// Include this header for the whole public interface. The ICU engine's own
// header, <scl/regex/regex_impl_icu.h>, is separate: it needs ICU's headers.
//
// clang-format off
//   #include <scl/regex.h>
//   namespace re = scl::regex;
//   const auto loose = re::constants::case_insensitive | re::constants::ignore_diacritics;
//   re::regex_replace(u"Caf\u00e9 cr\u00e8me", u"cafe", u"tea", loose);             // u"tea creme"
//   re::regex_replace_preserving(u"Caf\u00e9 cr\u00e8me", u"cafe", u"tea", loose);  // u"tea cr\u00e8me"
//   re::matcher_ptr handle = re::createMatcher(u"(\\d+)-(\\d+)", 0);
//   if (re::regex_search(handle, u"pages 12-34", false)) re::get_group(handle, 2);  // u"34"
// clang-format on
#ifndef SCL_REGEX_H
#define SCL_REGEX_H

#include <scl/regex/check_pattern.h>
#include <scl/regex/exception.h>
#include <scl/regex/expected.h>
#include <scl/regex/matcher.h>
#include <scl/regex/matcher_replace.h>
#include <scl/regex/matcher_search.h>
#include <scl/regex/npos.h>
#include <scl/regex/oneshot_replace.h>
#include <scl/regex/oneshot_search.h>
#include <scl/regex/options.h>
#include <scl/regex/prepare.h>
#include <scl/regex/prepared_text.h>
#include <scl/regex/regex_class.h>
#include <scl/regex/regex_impl.h>
#include <scl/regex/regex_iterator.h>
#include <scl/regex/result.h>
#include <scl/regex/search_pattern.h>
#include <scl/regex/source_results.h>
#include <scl/regex/time_limit.h>

#endif  // SCL_REGEX_H
