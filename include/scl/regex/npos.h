// The library's "no position".
//
//   scl::regex::regex_result r = re.match();
//   if (r.start == scl::regex::npos) { /* no (more) matches */ }
#ifndef SCL_REGEX_NPOS_H
#define SCL_REGEX_NPOS_H

#include <cstddef>

namespace scl::regex {

// All bits set: a match or group that does not exist starts and ends here.
inline constexpr std::size_t npos = static_cast<std::size_t>(-1);

}  // namespace scl::regex

#endif  // SCL_REGEX_NPOS_H
