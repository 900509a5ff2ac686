// A pattern shown with a caret under one position, as error messages do.
#ifndef SCL_REGEX_SRC_ERRORS_CARET_EXCERPT_H
#define SCL_REGEX_SRC_ERRORS_CARET_EXCERPT_H

#include <cstddef>
#include <string>

namespace scl::regex::detail {

// Returns two UTF-8 lines, each indented by two spaces: `text` around UTF-16
// offset `at` (at most 40 characters before it and 30 after, "..." where it
// is cut), then a caret under `at`. Line breaks, other control and format
// characters and unpaired surrogates are shown as escapes ("\n", "\u{85}"),
// combining marks take no column and wide characters two, so that the caret
// lines up in a terminal.
std::string caret_excerpt(const std::u16string& text, std::size_t at);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ERRORS_CARET_EXCERPT_H
