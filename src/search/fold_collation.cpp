#include "search/fold_collation.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <utility>
#include <vector>

#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/uversion.h>

#include "scl/regex/exception.h"
#include "search/collation_tag.h"
#include "search/fold_table_changes.h"
#include "search/fold_table_data.h"

namespace scl::regex::detail {

namespace {

bool built_for_running_icu() {
  UVersionInfo icu;
  UVersionInfo unicode;
  u_getVersion(icu);
  u_getUnicodeVersion(unicode);
  return std::memcmp(icu, fold_table_data::icu_version, sizeof icu) == 0 &&
         std::memcmp(unicode, fold_table_data::unicode_version, sizeof unicode) == 0;
}

void throw_if_failed(UErrorCode status) {
  if (U_FAILURE(status)) throw regex_exception(status);
}

// The character bits of every code point (fold_value.h), as the root's
// table has them.
std::vector<std::uint32_t> character_bits() {
  constexpr std::uint32_t fold_bits = 3U << fold_value::kind_shift | fold_value::payload_mask;
  const fold_table& root = fold_collation::root().table({});
  std::vector<std::uint32_t> bits(0x110000);
  for (UChar32 c = 0; c < 0x110000; ++c) {
    bits[static_cast<std::size_t>(c)] = root.value(c) & ~fold_bits;
  }
  return bits;
}

}  // namespace

std::optional<std::string> locale_id(std::string_view locale) {
  std::string tag(locale);
  for (char& c : tag) {
    if (c == '_') c = '-';
  }
  UErrorCode status = U_ZERO_ERROR;
  const icu::Locale parsed = icu::Locale::forLanguageTag(tag, status);
  if (U_FAILURE(status) || parsed.isBogus()) return std::nullopt;
  return std::string(parsed.getName());
}

fold_table_lists lists_of(const fold_tables_image& image, std::size_t index) {
  return {{image.prevowel_pairs.data(),
           image.prevowel_pairs.size(),
           image.dropped_starts.data(),
           image.dropped_starts.size(),
           image.variable_ends.data(),
           image.variable_ends.size(),
           {image.composites[0].data(), image.composites[1].data()},
           {image.composites[0].size(), image.composites[1].size()}},
          image.contractions[index].data(),
          image.contractions[index].size()};
}

fold_collation::fold_collation(key) : tag_("und") {
  if (built_for_running_icu()) {
    embedded_ = &fold_table_data::root;
  } else {
    throw_if_failed(build_fold_tables(images_[0]));
  }
}

fold_collation::fold_collation(key, std::string tag, std::unique_ptr<icu::Collator> collator)
    : tag_(std::move(tag)), collator_(std::move(collator)) {
  if (!built_for_running_icu()) return;
  if (tag_ == fold_table_data::search_tag) {
    embedded_ = &fold_table_data::search;
    return;
  }
  namespace data = fold_table_data;
  const data::language_collation* end = data::languages + data::language_count;
  const data::language_collation* found =
      std::lower_bound(data::languages, end, tag_,
                       [](const data::language_collation& language, const std::string& tag) {
                         return language.tag < tag;
                       });
  if (found != end && found->tag == tag_) changes_ = found->changes;
}

fold_collation::~fold_collation() = default;

const fold_collation& fold_collation::root() {
  static const std::unique_ptr<const fold_collation> root =
      std::make_unique<const fold_collation>(key{});
  return *root;
}

const search_locale& fold_collation::resolve(std::string_view locale) {
  static const search_locale none{&root(), ""};
  if (locale.empty()) return none;
  // The tag this thread asked for last: a pattern asks twice (to check its
  // options, then to use them), and a program mostly searches in one language.
  // (Entries stay where they are: std::map does not move them.)
  struct last_asked {
    std::string tag;
    const search_locale* locale = nullptr;
  };
  thread_local last_asked last;
  if (last.locale != nullptr && last.tag.size() == locale.size() &&
      std::equal(locale.begin(), locale.end(), last.tag.begin())) {
    return *last.locale;
  }

  static std::mutex mutex;
  static std::map<std::string, search_locale, std::less<>> by_request;
  static std::map<std::string, std::unique_ptr<const fold_collation>> by_tag;
  const std::lock_guard<std::mutex> lock(mutex);
  auto found = by_request.find(locale);
  if (found == by_request.end()) {
    // The locale with its collation: the one the tag names, else "search".
    // (Other keywords are the options' to set: strength, case, punctuation.)
    const std::optional<std::string> id = locale_id(locale);
    if (!id) throw regex_exception(U_ILLEGAL_ARGUMENT_ERROR);
    const icu::Locale requested(id->c_str());
    UErrorCode status = U_ZERO_ERROR;
    char collation[64] = {};
    requested.getKeywordValue("collation", collation, sizeof collation, status);
    icu::Locale with_collation(requested.getBaseName());
    with_collation.setKeywordValue("collation", collation[0] != '\0' ? collation : "search",
                                   status);
    std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(with_collation, status));
    throw_if_failed(status);
    if (collator == nullptr) throw std::bad_alloc();
    const std::string tag = collation_tag(collator->getLocale(ULOC_ACTUAL_LOCALE, status), status);
    throw_if_failed(status);

    const fold_collation* resolved = &root();
    if (tag != root().tag()) {
      auto& made = by_tag[tag];
      if (made == nullptr) {
        made = std::make_unique<const fold_collation>(key{}, tag, std::move(collator));
      }
      resolved = made.get();
    }
    found = by_request.emplace(std::string(locale), search_locale{resolved, *id}).first;
  }
  last.tag = locale;
  last.locale = &found->second;
  return *last.locale;
}

const fold_table& fold_collation::table(fold_variant variant) const {
  const auto index = static_cast<std::size_t>(variant.index());
  std::call_once(loaded_[index], [&] {
    if (embedded_ != nullptr || changes_ != nullptr || collator_ == nullptr) {
      load(index);
    } else {
      build(variant);
    }
  });
  return *tables_[index];
}

void fold_collation::load(std::size_t index) const {
  namespace data = fold_table_data;
  fold_tables_image& image = images_[index];
  fold_table::source from{};
  const data::collation_lists* lists = nullptr;
  if (embedded_ != nullptr) {
    const data::table& table = embedded_->tables[index];
    from = {table.trie, table.trie_size, nullptr, 0, table.pool, table.pool_size, nullptr};
    lists = &embedded_->lists;
  } else if (changes_ != nullptr) {
    // The root's search collation's table, changed.
    const data::table& base = data::search.tables[index];
    const data::table_changes& changes = changes_->tables[index];
    std::vector<std::uint8_t>& trie = image.tables[index].trie;
    bool bmp_only = false;
    throw_if_failed(apply_changes(base.trie, base.trie_size, changes.changes, changes.change_count,
                                  trie, bmp_only));
    from = {trie.data(), trie.size(), nullptr, 0, base.pool, base.pool_size, changes.pool};
    if (bmp_only) {
      from.bmp_trie = from.trie;
      from.bmp_trie_size = from.trie_size;
      from.trie = base.trie;
      from.trie_size = base.trie_size;
    }
    lists = &changes_->lists;
  } else {
    // The root's tables, computed when the collation was made.
    const fold_table_image& table = images_[0].tables[index];
    from = {table.trie.data(),  table.trie.size(), nullptr, 0,
            table.pool.c_str(), table.pool.size(), nullptr};
    lists_[index] = lists_of(images_[0], index);
  }
  if (lists != nullptr) {
    std::vector<contraction_fold>& contractions = image.contractions[index];
    contractions = stored_contractions(lists->contractions[index], lists->contractions_size[index]);
    lists_[index] = {lists->characters, contractions.data(), contractions.size()};
  }
  UErrorCode status = U_ZERO_ERROR;
  auto table = std::make_unique<fold_table>(*this, fold_variant::at(static_cast<int>(index)), from,
                                            lists_[index], status);
  throw_if_failed(status);
  tables_[index] = std::move(table);
}

void fold_collation::build(fold_variant variant) const {
  const auto index = static_cast<std::size_t>(variant.index());
  fold_tables_image& image = images_[index];
  throw_if_failed(build_fold_table(collator_->toUCollator(), variant, character_bits(), image));
  lists_[index] = lists_of(image, index);
  UErrorCode status = U_ZERO_ERROR;
  auto table = std::make_unique<fold_table>(
      *this, variant, image.tables[index].trie.data(), image.tables[index].trie.size(),
      image.tables[index].pool.c_str(), lists_[index], status);
  throw_if_failed(status);
  tables_[index] = std::move(table);
}

}  // namespace scl::regex::detail
