// What the library's own walks need of a regex beyond its public members.
#ifndef SCL_REGEX_SRC_OBJECT_REGEX_ACCESS_H
#define SCL_REGEX_SRC_OBJECT_REGEX_ACCESS_H

#include <string>

#include "prepare/prepared_subject.h"
#include "scl/regex/regex_class.h"

namespace scl::regex::detail {

struct regex_access {
  // Resets `re` onto `subject`, whose prepared form with re.options() is
  // `prepared`, as re.reset(subject) does. The library's own engine takes the
  // prepared text as it stands; an engine of the caller's own (or one derived
  // from the library's) is reset through its interface and prepares for itself.
  static void reset(regex& re, const std::u16string& subject, const prepared_subject& prepared);
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_OBJECT_REGEX_ACCESS_H
