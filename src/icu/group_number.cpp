#include "icu/group_number.h"

#include <cerrno>
#include <climits>
#include <cstdlib>

namespace scl::regex::detail {

int group_number_from_digits(const std::string& name) noexcept {
  const int saved_errno = errno;
  errno = 0;
  const char* begin = name.c_str();
  char* end = nullptr;
  const long value = std::strtol(begin, &end, 10);
  const bool out_of_range = errno == ERANGE || value < INT_MIN || value > INT_MAX;
  errno = saved_errno;
  if (end == begin || out_of_range) return -1;
  return static_cast<int>(value);
}

}  // namespace scl::regex::detail
