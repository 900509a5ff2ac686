#include "scl/regex/regex_impl.h"

namespace scl::regex {

// Defined here so the interface's type information lives in the library.
regex_impl_abstract::~regex_impl_abstract() = default;

}  // namespace scl::regex
