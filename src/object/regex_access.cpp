#include "object/regex_access.h"

#include <typeinfo>

#include "icu/engine.h"
#include "icu/handle_matcher.h"
#include "scl/regex/regex_impl_icu.h"

namespace scl::regex::detail {

void regex_access::reset(regex& re, const std::u16string& subject,
                         const prepared_subject& prepared) {
  regex_impl_abstract* impl = re.impl_.get();
  if (impl == nullptr) return;
  if (typeid(*impl) == typeid(regex_impl_icu) && prepared.options() == re.options_) {
    auto& engine = static_cast<regex_impl_icu&>(*impl);
    icu_engine::set_subject(icu_matcher(engine.matcher), engine.subject, engine.pattern, prepared);
    return;
  }
  re.reset(subject);
}

}  // namespace scl::regex::detail
