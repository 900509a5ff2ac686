// A value or the regex_exception that took its place.
//
//   auto handle = scl::regex::createExpectedMatcher(u"a{2,1}", 0);
//   if (handle.has_error()) {
//     handle.error().what();  // "In {min,max}, max is less than min."
//   } else {
//     use(handle.value());
//   }
#ifndef SCL_REGEX_EXPECTED_H
#define SCL_REGEX_EXPECTED_H

#include <utility>
#include <variant>

#include <scl/regex/exception.h>

namespace scl::regex {

// Holds either a T or a regex_exception, never both. Returned by the
// functions that report failures by value instead of throwing.
// Test has_error() first; asking for the one that is not present throws
// std::bad_variant_access.
template <class T>
class expected_result {
 public:
  // A result holding `value`; has_error() is false.
  expected_result(const T& value) : storage_(std::in_place_index<0>, value) {}
  expected_result(T&& value) : storage_(std::in_place_index<0>, std::move(value)) {}
  // A result holding `error`; has_error() is true.
  expected_result(const regex_exception& error) : storage_(std::in_place_index<1>, error) {}

  // Returns true if this holds the error, false if it holds the value.
  [[nodiscard]] bool has_error() const noexcept { return storage_.index() == 1; }

  // Returns the value.
  T& value() & { return std::get<0>(storage_); }
  [[nodiscard]] const T& value() const& { return std::get<0>(storage_); }
  T&& value() && { return std::get<0>(std::move(storage_)); }

  // Returns the error.
  regex_exception& error() & { return std::get<1>(storage_); }
  [[nodiscard]] const regex_exception& error() const& { return std::get<1>(storage_); }

 private:
  std::variant<T, regex_exception> storage_;
};

}  // namespace scl::regex

#endif  // SCL_REGEX_EXPECTED_H
