// Match results: positions plus a pointer back to the engine that cuts their text.
#include "scl/regex/result.h"

#include <stdexcept>

#include "scl/regex/regex_impl.h"

namespace scl::regex {
namespace {

std::u16string cut(const regex_impl_abstract* impl, std::size_t start, std::size_t end) {
  if (impl == nullptr) return {};
  return impl->str(start, end - start);
}

}  // namespace

std::u16string group_result::str() const { return cut(impl, start, end); }

regex_result::regex_result(std::size_t start_, std::size_t end_, const regex_impl_abstract* impl_)
    : start(start_), end(end_), impl(impl_) {
  if (impl != nullptr) impl->getGroups(groups);
}

regex_result::~regex_result() = default;

std::u16string regex_result::str() const { return cut(impl, start, end); }

const group_result& regex_result::operator[](const std::string& name) const {
  const int number = impl != nullptr ? impl->getGroupNumber(name) : -1;
  if (number < 0 || static_cast<std::size_t>(number) >= groups.size()) {
    throw std::out_of_range(name);
  }
  return groups[static_cast<std::size_t>(number)];
}

}  // namespace scl::regex
