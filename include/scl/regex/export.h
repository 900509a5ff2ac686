// Symbol visibility for the scl_regex shared library.
//
//   SCL_REGEX_API std::u16string regex_escape(const std::u16string& text);  // exported
#ifndef SCL_REGEX_EXPORT_H
#define SCL_REGEX_EXPORT_H

// The library is built with hidden visibility; SCL_REGEX_API marks what it exports.
#if defined(_WIN32)
#if defined(SCL_REGEX_BUILDING)
#define SCL_REGEX_API __declspec(dllexport)
#else
#define SCL_REGEX_API __declspec(dllimport)
#endif
#else
#define SCL_REGEX_API __attribute__((visibility("default")))
#endif

#endif  // SCL_REGEX_EXPORT_H
