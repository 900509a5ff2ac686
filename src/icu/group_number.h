// Reading a group name as a decimal number.
#ifndef SCL_REGEX_SRC_ICU_GROUP_NUMBER_H
#define SCL_REGEX_SRC_ICU_GROUP_NUMBER_H

#include <string>

namespace scl::regex::detail {

// Reads `name` as std::stoi would: optional blanks and sign, decimal digits,
// trailing characters ignored ("2x" is 2, "-3" is -3). Returns -1 where stoi
// would throw: no digits, or a value outside int. errno is left as it was.
int group_number_from_digits(const std::string& name) noexcept;

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_ICU_GROUP_NUMBER_H
