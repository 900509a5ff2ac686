// One-shot replacement and escaping: compile, replace and discard in one call.
//
// clang-format off
//   namespace re = scl::regex;
//   re::regex_replace(u"a1 b22", u"\\d+", u"<$0>", 0);     // u"a<1> b<22>"
//   re::regex_replace_first(u"a1 b22", u"\\d+", u"#", 0);  // u"a# b22"
//   re::regex_replace(std::string("caf\xC3\xA9"), std::string("\xC3\xA9"), std::string("e"), 0);  // "cafe"
//   re::regex_escape(u"1+1=2?");                            // u"1\\+1=2\\?"
// clang-format on
#ifndef SCL_REGEX_ONESHOT_REPLACE_H
#define SCL_REGEX_ONESHOT_REPLACE_H

#include <string>

#include <scl/regex/export.h>
#include <scl/regex/options.h>

namespace scl::regex {

// Returns `subject` with every match of `pattern` replaced by `replacement`
// (ICU replacement syntax: "$1", "${name}", "\$"). Pattern and subject are
// first prepared with `options` (prepare_text), so the result is built from the
// prepared subject; pattern, subject and replacement end at their first U+0000.
// If the pattern does not compile or the replacement is invalid, returns the
// prepared subject. Never throws regex_exception.
[[nodiscard]] SCL_REGEX_API std::u16string regex_replace(const std::u16string& subject,
                                                         const std::u16string& pattern,
                                                         const std::u16string& replacement,
                                                         constants::syntax_option_type options);

// As regex_replace above, but replaces only the first match.
[[nodiscard]] SCL_REGEX_API std::u16string regex_replace_first(
    const std::u16string& subject, const std::u16string& pattern, const std::u16string& replacement,
    constants::syntax_option_type options);

// UTF-8 form: returns `subject` with every match of `pattern` replaced by
// `replacement`, all three UTF-8 and read up to their first zero byte; any
// ill-formed UTF-8 reads as U+FFFD. Only `case_insensitive` is honoured:
// nothing is normalised or stripped of diacritics. If the pattern does not
// compile or the replacement is invalid, returns `subject` as passed in.
// Never throws regex_exception.
[[nodiscard]] SCL_REGEX_API std::string regex_replace(const std::string& subject,
                                                      const std::string& pattern,
                                                      const std::string& replacement,
                                                      constants::syntax_option_type options);

// Returns `text`, up to its first U+0000, with a backslash put before every
// character that is special in a pattern ("-[]{}()*+?.,\^$|#") and every white
// space character, so that, used as a pattern, it matches itself literally.
// Throws only std::bad_alloc.
[[nodiscard]] SCL_REGEX_API std::u16string regex_escape(const std::u16string& text);

}  // namespace scl::regex

#endif  // SCL_REGEX_ONESHOT_REPLACE_H
