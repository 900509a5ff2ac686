// The engine of the regex objects that one-shot functions make for one call:
// it works as the public ICU engine does, but makes its matcher from a
// pattern in the thread's cache instead of compiling its own.
#ifndef SCL_REGEX_SRC_ENGINE_CACHED_ICU_ENGINE_H
#define SCL_REGEX_SRC_ENGINE_CACHED_ICU_ENGINE_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include "cache/pattern_cache.h"
#include "scl/regex/regex_impl.h"

namespace scl::regex::detail {

class cached_icu_engine final : public regex_impl_abstract {
 public:
  cached_icu_engine() = default;
  ~cached_icu_engine() override;

  // Throws regex_exception, as createMatcher does, if ICU rejects the pattern.
  void init(const std::u16string& pattern, constants::syntax_option_type options) override;
  void init(const char16_t* first, const char16_t* last,
            constants::syntax_option_type options) override;
  void init(const std::u16string_view& pattern, constants::syntax_option_type options) override;
  const std::u16string& getPattern() const override { return stored_; }
  void reset(const std::u16string& subject, constants::syntax_option_type options) override;
  void reset(const char16_t* first, const char16_t* last,
             constants::syntax_option_type options) override;
  void reset(const std::u16string_view& subject, constants::syntax_option_type options) override;
  std::u16string str(std::size_t start, std::size_t length) const override;
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

 private:
  void compile(std::u16string_view pattern, constants::syntax_option_type options);

  shared_pattern compiled_;                     // declared first: the matcher refers to it
  std::unique_ptr<icu::RegexMatcher> matcher_;  // null until a pattern compiled
  constants::syntax_option_type options_ = 0;
  icu::UnicodeString subject_;
  std::u16string stored_;
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ENGINE_CACHED_ICU_ENGINE_H
