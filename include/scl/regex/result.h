// Match results handed out by a regex and its engine.
//
//   namespace re = scl::regex;
//   re::regex date(u"(?<year>\\d{4})-(\\d\\d)?", 0);
//   date.reset(u"in 2026-");
//   re::regex_result m = date.match();
//   m.start;             // 3
//   m["year"].str();     // u"2026"
//   m.groups[2].start;   // npos: the group took no part
#ifndef SCL_REGEX_RESULT_H
#define SCL_REGEX_RESULT_H

#include <cstddef>
#include <string>
#include <vector>

#include <scl/regex/export.h>
#include <scl/regex/npos.h>

namespace scl::regex {

class regex_impl_abstract;

// One capture group of a match. Positions are UTF-16 code units of the
// subject as the engine prepared it; npos in both means the group took
// no part in the match. The text is cut from the engine when asked, so a
// group_result must not outlive its engine.
struct SCL_REGEX_API group_result {
  std::size_t start;
  std::size_t end;
  const regex_impl_abstract* impl;  // the engine that found it; not owned

  // Returns the group's text from the engine's current subject; empty for a
  // group that took no part or when there is no engine.
  [[nodiscard]] std::u16string str() const;
};

// One match: where it starts and ends in the prepared subject, and its groups
// (element 0 the whole match, element i capture group i) as they were when the
// match was found. npos in start and end means no match; test start
// against npos, not impl against null.
// Results are light handles, not copies of text: str() reads the engine's
// current subject, so after the engine is reset onto another subject an older
// result cuts the new one. A result must not outlive its engine.
class SCL_REGEX_API regex_result {
 public:
  // Makes a result; if `impl` is not null, takes the groups of its current match.
  regex_result(std::size_t start, std::size_t end, const regex_impl_abstract* impl);
  regex_result(const regex_result&) = default;
  regex_result(regex_result&&) noexcept = default;
  regex_result& operator=(const regex_result&) = default;
  regex_result& operator=(regex_result&&) noexcept = default;
  ~regex_result();

  // Returns the matched text; empty for a no-match result or without an engine.
  [[nodiscard]] std::u16string str() const;

  // Returns the group called `name`, or numbered `name` ("0" is the whole
  // match, "2x" reads as 2). Throws std::out_of_range, whose what() is `name`,
  // for an unknown name, a negative number, a number the result has no group
  // for, or a result without an engine.
  const group_result& operator[](const std::string& name) const;

  std::size_t start;
  std::size_t end;
  const regex_impl_abstract* impl;  // the engine that produced it; not owned
  std::vector<group_result> groups;
};

}  // namespace scl::regex

#endif  // SCL_REGEX_RESULT_H
