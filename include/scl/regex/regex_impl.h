// The engine interface behind scl::regex::regex.
//
//   class my_engine : public scl::regex::regex_impl_abstract { /* every operation */ };
//   scl::regex::regex re(u"pattern", 0, std::make_unique<my_engine>());
#ifndef SCL_REGEX_REGEX_IMPL_H
#define SCL_REGEX_REGEX_IMPL_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <scl/regex/expected.h>
#include <scl/regex/export.h>
#include <scl/regex/options.h>
#include <scl/regex/result.h>

namespace scl::regex {

// A regular-expression engine: compiles a pattern, holds the current subject,
// finds successive matches and answers questions about groups. The library's
// engine is detail::regex_impl_icu; callers may supply their own to regex.
// The order of the operations is part of the interface: engines built against
// it rely on it. Positions are UTF-16 code units of the prepared subject.
class SCL_REGEX_API regex_impl_abstract {
 public:
  // Compiles `pattern` with `options` and stores its text; throws
  // regex_exception if the pattern is rejected. Does not set a subject.
  virtual void init(const std::u16string& pattern, constants::syntax_option_type options) = 0;
  // As above, with the pattern [first, last).
  virtual void init(const char16_t* first, const char16_t* last,
                    constants::syntax_option_type options) = 0;
  // As above, with the pattern in a view.
  virtual void init(const std::u16string_view& pattern, constants::syntax_option_type options) = 0;

  // Returns the stored text: the pattern after init, the raw subject after reset.
  virtual const std::u16string& getPattern() const = 0;

  // Sets the subject (prepared with `options`) and rewinds the search.
  virtual void reset(const std::u16string& subject, constants::syntax_option_type options) = 0;
  // As above, with the subject [first, last).
  virtual void reset(const char16_t* first, const char16_t* last,
                     constants::syntax_option_type options) = 0;
  // As above, with the subject in a view.
  virtual void reset(const std::u16string_view& subject, constants::syntax_option_type options) = 0;

  // Returns `length` code units of the prepared subject from `start` (the ICU
  // engine takes both as signed 32-bit values pinned to the subject, and ends
  // the text at its first U+0000).
  virtual std::u16string str(std::size_t start, std::size_t length) const = 0;

  // Returns the next match, or a no-match result; never reports an error.
  virtual regex_result match(std::uint32_t match_flags) = 0;

  // Fills `groups` with the positions of the current match's groups.
  virtual void getGroups(std::vector<group_result>& groups) const = 0;

  // Returns `subject_text` with every match replaced by `replacement` (ICU
  // replacement syntax); `subject_text` unchanged on failure.
  virtual std::u16string replace(const std::u16string& subject_text,
                                 const std::u16string& replacement) = 0;
  // As replace, but reports a failure as the error.
  virtual expected_result<std::u16string> replace_ex(const std::u16string& subject_text,
                                                     const std::u16string& replacement) = 0;

  // Returns the replacement-text reference to the group `name`: "${name}".
  virtual std::u16string getGroupReference(const std::u16string& name) const = 0;

  // Returns the number of the group called `name`, or `name` read as a
  // decimal number, or -1.
  virtual int getGroupNumber(const std::string& name) const = 0;

  // Returns the number of capture groups, not counting the whole match.
  virtual int getGroupsCount() const = 0;

  virtual ~regex_impl_abstract();

  // Returns the next match, a no-match result, or the error that stopped the search.
  virtual expected_result<regex_result> match_ex(std::uint32_t match_flags) = 0;

 protected:
  regex_impl_abstract() = default;
  regex_impl_abstract(const regex_impl_abstract&) = default;
  regex_impl_abstract(regex_impl_abstract&&) = default;
  regex_impl_abstract& operator=(const regex_impl_abstract&) = default;
  regex_impl_abstract& operator=(regex_impl_abstract&&) = default;
};

}  // namespace scl::regex

#endif  // SCL_REGEX_REGEX_IMPL_H
