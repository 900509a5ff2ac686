#include "search/collation_tag.h"

#include <array>
#include <cstring>

#include <unicode/uloc.h>

namespace scl::regex::detail {

std::string collation_tag(const icu::Locale& locale, UErrorCode& status) {
  std::array<char, ULOC_FULLNAME_CAPACITY> base{};
  uloc_toLanguageTag(locale.getBaseName(), base.data(), static_cast<int32_t>(base.size()), false,
                     &status);
  std::array<char, ULOC_KEYWORDS_CAPACITY> type{};
  locale.getKeywordValue("collation", type.data(), static_cast<int32_t>(type.size()), status);
  if (U_FAILURE(status)) return {};
  std::string tag(base.data());
  // A tag with an extension of its own ("en-US-u-va-posix") is ICU's to write.
  if (tag.find("-u-") != std::string::npos) return locale.toLanguageTag<std::string>(status);
  if (type[0] == '\0') return tag;
  // A type of up to 8 characters is its own BCP 47 form ("search", "pinyin");
  // longer ones are legacy names, which ICU maps ("phonebook" is "phonebk").
  const char* bcp47 = type.data();
  if (std::strlen(bcp47) > 8) {
    const char* mapped = uloc_toUnicodeLocaleType("collation", bcp47);
    if (mapped != nullptr) bcp47 = mapped;
  }
  return tag + "-u-co-" + bcp47;
}

}  // namespace scl::regex::detail
