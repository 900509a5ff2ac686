// Word boundaries of a caller's text, as ICU's word break iterator finds them
// (dictionaries included: Thai, Chinese and Japanese words have boundaries).
#ifndef SCL_REGEX_SRC_SEARCH_WORD_BREAKS_H
#define SCL_REGEX_SRC_SEARCH_WORD_BREAKS_H

#include <cstdint>
#include <string>

#include <unicode/ubrk.h>
#include <unicode/utext.h>

namespace scl::regex::detail {

// The boundaries of text[0, size): UTF-16, or UTF-8 with offsets in bytes,
// as the word break rules of `locale` (an ICU locale ID; "" for the root's)
// find them. Uses the calling thread's iterator for the locale; one object at
// a time per thread. The text must outlive the object. Throws regex_exception
// with ICU's code if ICU cannot open the iterator.
class word_breaks {
 public:
  word_breaks(const char16_t* text, int32_t size, const std::string& locale = {});
  word_breaks(const char* text, int32_t size, const std::string& locale = {});
  word_breaks(const word_breaks&) = delete;
  word_breaks& operator=(const word_breaks&) = delete;
  ~word_breaks();

  // Whether a word boundary falls at `at` (the ends of the text are ones).
  bool is_boundary(int32_t at) const;
  // The first boundary after `at`.
  int32_t following(int32_t at) const;

 private:
  UBreakIterator* breaks_;
  UText text_ = UTEXT_INITIALIZER;
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_WORD_BREAKS_H
