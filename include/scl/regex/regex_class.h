// scl::regex::regex: a compiled pattern bound to an engine, walked match by match.
//
//   namespace re = scl::regex;
//   re::regex words(u"(?<w>\\w+)", 0);
//   words.reset(u"two words");
//   for (re::regex_result m = words.match(); m.start != re::npos; m = words.match()) {
//     m.str();          // u"two", then u"words"
//     m["w"].start;     // 0, then 4
//   }
//   words.getGroupNamesIfAvailable();  // after a reset: the names found in the subject
#ifndef SCL_REGEX_REGEX_CLASS_H
#define SCL_REGEX_REGEX_CLASS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <scl/regex/expected.h>
#include <scl/regex/export.h>
#include <scl/regex/options.h>
#include <scl/regex/regex_impl.h>
#include <scl/regex/result.h>

namespace scl::regex {

namespace detail {
struct regex_access;
}  // namespace detail

// A pattern compiled with options, plus the subject it is searching. Give it
// subjects with reset and pull successive matches with match or match_ex.
// Subjects are prepared with the options the pattern was compiled with, and
// positions count UTF-16 code units of the prepared subject.
// Movable, not copyable; a moved-from regex has no engine. One thread at a time.
class SCL_REGEX_API regex {
 public:
  // Compiles `pattern` with `options` into `impl`, or into a new ICU engine
  // when `impl` is null. Throws regex_exception if the pattern is rejected.
  regex(const std::u16string& pattern, constants::syntax_option_type options,
        std::unique_ptr<regex_impl_abstract> impl = nullptr);
  regex(std::u16string::const_iterator first, std::u16string::const_iterator last,
        constants::syntax_option_type options, std::unique_ptr<regex_impl_abstract> impl = nullptr);
  regex(const std::u16string_view& pattern, constants::syntax_option_type options,
        std::unique_ptr<regex_impl_abstract> impl = nullptr);
  // For string literals: the same as the std::u16string form.
  regex(const char16_t* pattern, constants::syntax_option_type options,
        std::unique_ptr<regex_impl_abstract> impl = nullptr);

  regex(regex&&) noexcept;
  regex& operator=(regex&&) noexcept;
  ~regex();

  // Replaces the engine by `impl` (a new ICU engine when null; the old engine
  // is destroyed first) and compiles `pattern` with `options` into it.
  // Throws regex_exception if the pattern is rejected; the regex then keeps the
  // new engine and options.
  void init(const std::u16string& pattern, constants::syntax_option_type options,
            std::unique_ptr<regex_impl_abstract> impl);
  void init(std::u16string::const_iterator first, std::u16string::const_iterator last,
            constants::syntax_option_type options, std::unique_ptr<regex_impl_abstract> impl);
  void init(const std::u16string_view& pattern, constants::syntax_option_type options,
            std::unique_ptr<regex_impl_abstract> impl);

  // Sets the subject, prepared with the regex's options, and rewinds the
  // search. Does nothing without an engine.
  void reset(const std::u16string& subject);
  void reset(std::u16string::const_iterator first, std::u16string::const_iterator last);
  void reset(const std::u16string_view& subject);
  // For string literals: the same as the std::u16string form.
  void reset(const char16_t* subject);

  // Returns `length` code units of the prepared subject from `start`, up to the
  // first U+0000 among them; empty without an engine. As in ICU, both numbers
  // are taken as signed 32-bit values (their low 32 bits) and pinned to the
  // subject: a start past its end gives an empty text, a negative one counts
  // as 0 (so start npos with length 0 is empty), a length reaching past
  // the end stops there.
  [[nodiscard]] std::u16string str(std::size_t start, std::size_t length) const;

  // Returns the next match, or a no-match result (start == npos) when
  // there is none, the search failed, or there is no engine. Never throws
  // regex_exception.
  regex_result match();

  // Returns the next match or a no-match result, or the error: ICU's for a
  // failed search, -1000 for an engine without a pattern, -1001 without an engine.
  expected_result<regex_result> match_ex();

  // Returns the number of capture groups (not counting the whole match), or 0
  // without an engine.
  [[nodiscard]] int getGroupsCount() const;

  // Returns the names of named groups ("(?<name>...)"), as UTF-8, in order of
  // appearance, duplicates kept; empty without an engine. The names are found
  // by scanning the engine's stored text, which is the pattern until the first
  // reset and the last raw subject after it: after a reset this lists the
  // "?<name>" texts found in the subject. The scan is textual: a name is an
  // ASCII letter followed by ASCII letters and digits between "?<" and ">".
  [[nodiscard]] std::vector<std::string> getGroupNamesIfAvailable() const;

  // Returns the options given to the last init (or constructor).
  [[nodiscard]] constants::syntax_option_type options() const noexcept { return options_; }

 private:
  friend struct detail::regex_access;

  std::unique_ptr<regex_impl_abstract> impl_;
  constants::syntax_option_type options_ = 0;
  std::uint32_t match_flags_ = 0;
};

}  // namespace scl::regex

#endif  // SCL_REGEX_REGEX_CLASS_H
