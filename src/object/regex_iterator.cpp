#include "scl/regex/regex_iterator.h"

namespace scl::regex {
namespace {

regex_result end_of_sequence() { return regex_result(npos, npos, nullptr); }

}  // namespace

regex_iterator::regex_iterator(const std::u16string& subject, regex& re)
    : current_(end_of_sequence()), regex_(&re) {
  re.reset(subject);
  current_ = re.match();
}

regex_iterator::regex_iterator(std::u16string::const_iterator first,
                               std::u16string::const_iterator last, regex& re)
    : current_(end_of_sequence()), regex_(&re) {
  re.reset(first, last);
  current_ = re.match();
}

regex_iterator::regex_iterator(const char16_t* subject, regex& re)
    : regex_iterator(std::u16string(subject), re) {}

regex_iterator::regex_iterator(const std::u16string_view&, regex&)
    : current_(end_of_sequence()), regex_(nullptr) {}

void regex_iterator::increment() {
  if (regex_ == nullptr) return;  // an end-of-sequence iterator has nothing to walk
  current_ = regex_->match();
}

}  // namespace scl::regex
