// The ICU engine's work, on the parts of an engine object: its matcher (null
// when it has no pattern), the prepared subject the matcher searches, and the
// stored text. detail::regex_impl_icu holds the parts and forwards every
// operation here.
//
//   icu_engine engine(matcher, subject, owner);
//   icu_engine::set_subject(matcher, subject, stored, prepared_subject(raw, options));
//   for (regex_result m = engine.match(0); m.start != npos; m = engine.match(0)) ...
#ifndef SCL_REGEX_SRC_ICU_ENGINE_H
#define SCL_REGEX_SRC_ICU_ENGINE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include "prepare/prepared_subject.h"
#include "scl/regex/expected.h"
#include "scl/regex/options.h"
#include "scl/regex/regex_impl.h"
#include "scl/regex/result.h"

namespace scl::regex::detail {

class icu_engine {
 public:
  // The engine `owner`, whose results refer to it, searching `subject` with
  // `matcher` (which may be null).
  icu_engine(icu::RegexMatcher* matcher, const icu::UnicodeString& subject,
             const regex_impl_abstract& owner) noexcept
      : matcher_(matcher), subject_(subject), owner_(owner) {}

  // Stores `prepared.raw()` in `stored`, copies the prepared text into
  // `subject` (reusing its buffer) and rewinds `matcher` onto it.
  static void set_subject(icu::RegexMatcher* matcher, icu::UnicodeString& subject,
                          std::u16string& stored, const prepared_subject& prepared);

  // `length` units of the subject from `start`, both taken as signed 32-bit
  // values pinned to the subject, up to the first U+0000 among them.
  [[nodiscard]] std::u16string str(std::size_t start, std::size_t length) const;

  // The next match, or a no-match result (null engine) when there is none or
  // the search failed.
  regex_result match(std::uint32_t match_flags);

  // The next match, a no-match result (that refers to the engine), or ICU's
  // error (-1000 without a matcher).
  expected_result<regex_result> match_ex(std::uint32_t match_flags);

  // The positions of the current match's groups, group 0 first.
  void groups(std::vector<group_result>& groups) const;

  // Resets `owner` onto `subject_text` through its interface (with `options`),
  // then replaces every match in it; -1000 without a matcher.
  expected_result<std::u16string> replace_all(regex_impl_abstract& owner,
                                              constants::syntax_option_type options,
                                              const std::u16string& subject_text,
                                              const std::u16string& replacement);

  // The group called `name`, or `name` read as a number, or -1.
  [[nodiscard]] int group_number(const std::string& name) const;

  // The number of capture groups; 0 without a matcher.
  [[nodiscard]] int group_count() const;

  // The replacement-text reference to the group `name`: "${name}".
  [[nodiscard]] static std::u16string group_reference(const std::u16string& name);

 private:
  icu::RegexMatcher* matcher_;
  const icu::UnicodeString& subject_;
  const regex_impl_abstract& owner_;
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ICU_ENGINE_H
