// The collations search folds by, each with its fold tables: the root
// collator, the root's search collation (und-u-co-search, which most
// languages use) and the languages' own search collations ("sv" reads
// sv-u-co-search), whose tables are computed at build time (a language's as
// changes to the root's search collation, applied at its first use), and any
// other collation a tag names ("de-u-co-phonebk"), whose tables are built
// from ICU's collator at their first use. All are kept for the life of the
// process, read-only and shared by all threads.
#ifndef SCL_REGEX_SRC_SEARCH_FOLD_COLLATION_H
#define SCL_REGEX_SRC_SEARCH_FOLD_COLLATION_H

#include <array>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include <unicode/coll.h>

#include "search/fold_table.h"
#include "search/fold_table_build.h"
#include "search/fold_table_data.h"
#include "search/fold_variant.h"

namespace scl::regex::detail {

class fold_collation;

// A locale tag as a search reads it: its collation, and the ICU locale ID
// whose word break rules whole_words follows ("" for the root's).
struct search_locale {
  const fold_collation* collation;
  std::string word_locale;
};

class fold_collation {
 public:
  // The root collator's.
  static const fold_collation& root();

  // The collation of `locale`: the root's for "", else the locale's search
  // collation, or the one its tag names ("de-u-co-phonebk"), as ICU resolves
  // it. Made at the first use of each tag. Throws regex_exception with
  // U_ILLEGAL_ARGUMENT_ERROR for an ill-formed tag, or ICU's code
  // if ICU cannot open the collator.
  static const fold_collation& of(std::string_view locale) { return *resolve(locale).collation; }
  // The same with the tag's word break locale; made once per tag.
  static const search_locale& resolve(std::string_view locale);

  // The BCP 47 tag of the collation: "und" for the root's, "sv-u-co-search".
  const std::string& tag() const { return tag_; }

  // The table of `variant`. A tailored collation's is built at its first use
  // (throws regex_exception with ICU's code if ICU fails then).
  const fold_table& table(fold_variant variant) const;

  // Made by root() and of() alone.
  class key {
    key() = default;
    friend class fold_collation;
  };
  explicit fold_collation(key);
  fold_collation(key, std::string tag, std::unique_ptr<icu::Collator> collator);
  fold_collation(const fold_collation&) = delete;
  fold_collation& operator=(const fold_collation&) = delete;
  ~fold_collation();

 private:
  void load(std::size_t index) const;
  void build(fold_variant variant) const;

  std::string tag_;
  std::unique_ptr<icu::Collator> collator_;  // a tailored collation's
  // The tables computed at build time: the root's, and the root's search collation's.
  const fold_table_data::collation_tables* embedded_ = nullptr;
  // A language's search collation ICU has, computed at build time as changes
  // to the root's search collation.
  const fold_table_data::collation_changes* changes_ = nullptr;
  // Each table's lists.
  mutable std::array<fold_table_lists, fold_variant::count> lists_{};
  mutable std::array<fold_tables_image, fold_variant::count> images_;
  mutable std::array<std::once_flag, fold_variant::count> loaded_;
  mutable std::array<std::unique_ptr<fold_table>, fold_variant::count> tables_;
};

// The ICU locale ID of a BCP 47 tag ("sv-SE" or "sv_SE": "sv_SE"; "" for ""),
// or no value if the tag is not well-formed.
std::optional<std::string> locale_id(std::string_view locale);

// The lists of table `index` of `image` (fold_table.h), pointing into it.
fold_table_lists lists_of(const fold_tables_image& image, std::size_t index);

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_SEARCH_FOLD_COLLATION_H
