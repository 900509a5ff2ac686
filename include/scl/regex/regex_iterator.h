// Walking the successive matches of a regex.
//
//   namespace re = scl::regex;
//   re::regex digits(u"\\d+", 0);
//   for (re::regex_iterator it(u"a1b22", digits); it->start != re::npos; ++it) {
//     it->str();  // u"1", then u"22"
//   }
//   for (const re::regex_result& m : re::regex_range(u"a1b22", digits)) m.str();  // the same
#ifndef SCL_REGEX_REGEX_ITERATOR_H
#define SCL_REGEX_REGEX_ITERATOR_H

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

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
  // An input iterator: one pass, each step moves the regex it borrows.
  using iterator_category = std::input_iterator_tag;
  using value_type = regex_result;
  using difference_type = std::ptrdiff_t;
  using pointer = const regex_result*;
  using reference = const regex_result&;

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

  // Whether the walk is over: the current result's start and end are npos.
  [[nodiscard]] bool at_end() const noexcept {
    return current_.start == npos && current_.end == npos;
  }

  // Two iterators are equal when both are at the end, or when they walk the
  // same regex and stand on the same match.
  [[nodiscard]] friend bool operator==(const regex_iterator& a, const regex_iterator& b) noexcept {
    if (a.at_end() || b.at_end()) return a.at_end() && b.at_end();
    return a.regex_ == b.regex_ && a.current_.start == b.current_.start &&
           a.current_.end == b.current_.end;
  }
  [[nodiscard]] friend bool operator!=(const regex_iterator& a, const regex_iterator& b) noexcept {
    return !(a == b);
  }

 private:
  regex_result current_;
  regex* regex_;
};

// The end of every walk, for range-for and for comparing with an iterator.
struct regex_sentinel {};

[[nodiscard]] inline bool operator==(const regex_iterator& it, regex_sentinel) noexcept {
  return it.at_end();
}
[[nodiscard]] inline bool operator==(regex_sentinel, const regex_iterator& it) noexcept {
  return it.at_end();
}
[[nodiscard]] inline bool operator!=(const regex_iterator& it, regex_sentinel) noexcept {
  return !it.at_end();
}
[[nodiscard]] inline bool operator!=(regex_sentinel, const regex_iterator& it) noexcept {
  return !it.at_end();
}

// The matches of `re` in `subject` as a range, for range-for:
//
//   for (const regex_result& m : regex_range(u"a1b22", digits)) m.str();  // u"1", u"22"
//
// begin() resets `re` onto the subject (a copy kept by the range) and stands
// on its first match; end() is the sentinel. `re` must outlive the walk, and
// one range is walked once: as with regex_iterator, every step moves `re`.
class regex_range {
 public:
  regex_range(std::u16string subject, regex& re) : subject_(std::move(subject)), regex_(&re) {}

  [[nodiscard]] regex_iterator begin() const { return regex_iterator(subject_, *regex_); }
  [[nodiscard]] regex_sentinel end() const noexcept { return {}; }

 private:
  std::u16string subject_;
  regex* regex_;
};

}  // namespace scl::regex

#endif  // SCL_REGEX_REGEX_ITERATOR_H
