// The library's engine, on ICU's RegexMatcher.
//
// This is the one public header that includes ICU: the engine holds an ICU
// string by value. Include it only to construct the engine yourself, hand it
// to regex, or derive from it; <scl/regex.h> does not include it. Link
// scl_regex::icu_engine (or ICU's uc library) when you do.
//
//   #include <scl/regex/regex_impl_icu.h>
//   auto engine = std::make_unique<scl::regex::detail::regex_impl_icu>();
//   scl::regex::regex re(u"a+", 0, std::move(engine));  // the same as passing no engine
#ifndef SCL_REGEX_REGEX_IMPL_ICU_H
#define SCL_REGEX_REGEX_IMPL_ICU_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <unicode/unistr.h>

#include <scl/regex/export.h>
#include <scl/regex/matcher.h>
#include <scl/regex/regex_impl.h>

namespace scl::regex::detail {

// The ICU engine. Failures of a search are folded into no-match results by
// match and reported by match_ex; an engine without a compiled pattern reports
// -1000 ("Matcher is not available.") from its _ex operations.
class SCL_REGEX_API regex_impl_icu : public regex_impl_abstract {
 public:
  // An engine with no pattern, no matcher and an empty subject.
  regex_impl_icu();
  ~regex_impl_icu() override;

  void init(const std::u16string& pattern, constants::syntax_option_type options) override;
  void init(const char16_t* first, const char16_t* last,
            constants::syntax_option_type options) override;
  void init(const std::u16string_view& pattern, constants::syntax_option_type options) override;
  const std::u16string& getPattern() const override;
  void reset(const std::u16string& subject, constants::syntax_option_type options) override;
  void reset(const char16_t* first, const char16_t* last,
             constants::syntax_option_type options) override;
  void reset(const std::u16string_view& subject, constants::syntax_option_type options) override;
  std::u16string str(std::size_t start, std::size_t length) const override;
  // With constants::retry_on_stack_overflow in `match_flags`, a search that
  // overflows ICU's backtrack stack is tried once more with the limit doubled
  // (the new limit stays). ICU rewinds the matcher when its limit changes, so
  // that second search starts at the beginning of the subject: after earlier
  // matches, the walk meets them again.
  regex_result match(std::uint32_t match_flags) override;
  void getGroups(std::vector<group_result>& groups) const override;
  std::u16string replace(const std::u16string& subject_text,
                         const std::u16string& replacement) override;
  expected_result<std::u16string> replace_ex(const std::u16string& subject_text,
                                             const std::u16string& replacement) override;
  std::u16string getGroupReference(const std::u16string& name) const override;
  int getGroupNumber(const std::string& name) const override;
  int getGroupsCount() const override;
  expected_result<regex_result> match_ex(std::uint32_t match_flags) override;

  icu::UnicodeString subject;  // the prepared subject; matches run on it
  matcher_ptr matcher;         // the compiled pattern, with the options it was made with
  std::u16string pattern;      // the text of the last init, or of the last reset's raw subject
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_REGEX_IMPL_ICU_H
