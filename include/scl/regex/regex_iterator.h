// Walking the successive matches of a regex.
#ifndef SCL_REGEX_REGEX_ITERATOR_H
#define SCL_REGEX_REGEX_ITERATOR_H

#include <cstddef>
#include <string>
#include <string_view>

#include <scl/regex/export.h>
#include <scl/regex/regex_class.h>
#include <scl/regex/result.h>

namespace scl::regex {

// Walks the matches of a regex over a subject. It borrows the regex (which
// must outlive it and must not be reset or matched by anyone else meanwhile)
// and owns only its current result. The walk is over when the current result's
// start and end are both npos; a search error ends it the same way.
//
//   for (regex_iterator it(subject, re); it->start != npos; ++it) use(*it);
class SCL_REGEX_API regex_iterator {
 public:
  // Resets `re` onto `subject` and stands on its first match (or at the end).
  regex_iterator(const std::u16string& subject, regex& re);
  // As above, with the subject [first, last).
  regex_iterator(std::u16string::const_iterator first, std::u16string::const_iterator last,
                 regex& re);
  // For string literals: the same as the std::u16string form.
  regex_iterator(const char16_t* subject, regex& re);
  // An end-of-sequence iterator: both arguments are ignored, `re` is neither
  // reset nor searched.
  regex_iterator(const std::u16string_view& subject, regex& re);

  // Moves to the regex's next match, or to the end. At the end of an
  // end-of-sequence iterator it stays there.
  void increment();

  // The current match (a no-match result at the end).
  const regex_result& operator*() const noexcept { return current_; }
  const regex_result* operator->() const noexcept { return &current_; }

  // Moves to the next match; see increment.
  regex_iterator& operator++() {
    increment();
    return *this;
  }

 private:
  regex_result current_;
  regex* regex_;
};

}  // namespace scl::regex

#endif  // SCL_REGEX_REGEX_ITERATOR_H
