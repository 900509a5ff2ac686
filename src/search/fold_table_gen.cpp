// fold_table_gen OUTPUT.cpp: computes the fold tables from the ICU this
// program runs with and writes them as C++ source (see fold_table_data.h):
// the root collator's, the root's search collation's, and those of the
// languages that have search collations of their own, as changes to the
// root's search collation.
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/tblcoll.h>
#include <unicode/uchar.h>
#include <unicode/uversion.h>

#include "search/collation_tag.h"
#include "search/fold_table_build.h"
#include "search/fold_table_changes.h"

namespace {

namespace detail = scl::regex::detail;
using detail::code_point_pair;
using detail::composite_unit;

void write_version(std::ostream& out, const char* name, const UVersionInfo version) {
  out << "const std::uint8_t " << name << "[4] = {";
  for (int i = 0; i < 4; ++i) out << (i != 0 ? ", " : "") << static_cast<unsigned>(version[i]);
  out << "};\n";
}

// Writes `values` as the array `name` (with one entry more, so that it is
// never empty).
template <class T, class Write>
void write_array(std::ostream& out, const char* type, const std::string& name,
                 const std::vector<T>& values, int per_line, Write write) {
  out << "static const " << type << ' ' << name << "[] = {";
  for (std::size_t i = 0; i < values.size(); ++i) {
    out << (i % static_cast<std::size_t>(per_line) == 0 ? "\n" : "");
    write(values[i]);
    out << ',';
  }
  out << "\n{}};\n\n";
}

template <class Container>
void write_units(std::ostream& out, const std::string& name, const Container& units) {
  const std::vector<char16_t> values(units.begin(), units.end());
  write_array(out, "char16_t", name, values, 16,
              [&](char16_t unit) { out << static_cast<unsigned>(unit); });
}

// Writes the arrays of the lists of `image`; returns the collation_lists
// that holds them, as source.
std::string write_lists(std::ostream& out, const std::string& name,
                        const detail::fold_tables_image& image) {
  const std::size_t count = image.tables.size();
  std::vector<std::size_t> contraction_sizes;
  for (std::size_t t = 0; t < count; ++t) {
    const std::u16string stored = detail::stored_contractions(image.contractions[t]);
    write_units(out, "contractions_" + name + '_' + std::to_string(t), stored);
    contraction_sizes.push_back(stored.size());
  }
  write_array(out, "code_point_pair", "prevowel_pairs_" + name, image.prevowel_pairs, 6,
              [&](const code_point_pair& pair) {
                out << '{' << static_cast<unsigned long>(pair.first) << ", "
                    << static_cast<unsigned long>(pair.second) << '}';
              });
  auto code_point = [&](char32_t c) { out << static_cast<unsigned long>(c); };
  write_array(out, "char32_t", "dropped_starts_" + name, image.dropped_starts, 12, code_point);
  write_array(out, "char32_t", "variable_ends_" + name, image.variable_ends, 12, code_point);
  auto write_composite = [&](const composite_unit& unit) {
    out << '{' << static_cast<unsigned long>(unit.unit) << ", " << unit.count << ", {";
    for (int i = 0; i < composite_unit::max_elements; ++i) {
      out << (i != 0 ? ", " : "") << static_cast<unsigned long>(unit.primaries[i]);
    }
    out << "}, " << unit.common_secondary << '}';
  };
  for (std::size_t c = 0; c < image.composites.size(); ++c) {
    write_array(out, "composite_unit", "composites_" + name + '_' + std::to_string(c),
                image.composites[c], 1, write_composite);
  }

  std::ostringstream lists;
  lists << "{{prevowel_pairs_" << name << ", " << image.prevowel_pairs.size() << ", dropped_starts_"
        << name << ", " << image.dropped_starts.size() << ", variable_ends_" << name << ", "
        << image.variable_ends.size() << ", {composites_" << name << "_0, composites_" << name
        << "_1}, {" << image.composites[0].size() << ", " << image.composites[1].size() << "}}, {";
  for (std::size_t t = 0; t < count; ++t) {
    lists << (t != 0 ? ", " : "") << "contractions_" << name << '_' << t;
  }
  lists << "}, {";
  for (std::size_t t = 0; t < count; ++t) lists << (t != 0 ? ", " : "") << contraction_sizes[t];
  lists << "}}";
  return lists.str();
}

// Writes the arrays of `image` and the collation_tables `name` that holds them.
void write_collation(std::ostream& out, const std::string& name,
                     const detail::fold_tables_image& image) {
  for (std::size_t t = 0; t < image.tables.size(); ++t) {
    const std::string index = name + '_' + std::to_string(t);
    out << "alignas(16) ";
    write_array(out, "std::uint8_t", "trie_" + index, image.tables[t].trie, 24,
                [&](std::uint8_t byte) { out << static_cast<unsigned>(byte); });
    write_units(out, "pool_" + index, image.tables[t].pool);
  }
  const std::string lists = write_lists(out, name, image);
  out << "const collation_tables " << name << " = {\n    {\n";
  for (std::size_t t = 0; t < image.tables.size(); ++t) {
    const std::string index = name + '_' + std::to_string(t);
    out << "        {trie_" << index << ", " << image.tables[t].trie.size() << ", pool_" << index
        << ", " << image.tables[t].pool.size() << "},\n";
  }
  out << "    },\n    " << lists << "};\n\n";
}

// Writes `image` as the collation_changes `name` to `base`.
UErrorCode write_changes(std::ostream& out, const std::string& name,
                         const detail::fold_tables_image& base,
                         const detail::fold_tables_image& image) {
  std::ostringstream tables;
  for (std::size_t t = 0; t < image.tables.size(); ++t) {
    detail::fold_table_changes changes;
    const UErrorCode status = detail::changes_between(base.tables[t], image.tables[t], changes);
    if (U_FAILURE(status)) return status;
    const std::string index = name + '_' + std::to_string(t);
    write_array(out, "std::uint32_t", "changes_" + index, changes.changes, 8,
                [&](std::uint32_t value) { out << value << 'U'; });
    write_units(out, "pool_" + index, changes.pool);
    tables << "        {changes_" << index << ", " << changes.changes.size() / 2 << ", pool_"
           << index << ", " << changes.pool.size() << "},\n";
  }
  const std::string lists = write_lists(out, name, image);
  out << "static const collation_changes " << name << " = {\n    {\n"
      << tables.str() << "    },\n    " << lists << "};\n\n";
  return U_ZERO_ERROR;
}

bool failed(UErrorCode status) {
  if (U_SUCCESS(status)) return false;
  std::cerr << "fold_table_gen: ICU failed: " << u_errorName(status) << '\n';
  return true;
}

// A collation to compute: its collator, and the tags that name it.
struct collation {
  std::unique_ptr<icu::Collator> collator;
  std::vector<std::string> tags;
  detail::fold_tables_image image;
  UErrorCode status = U_ZERO_ERROR;
};

// The search collations ICU has for languages, other than the root's: one for
// each set of rules, with every tag ICU gives it ("hr-u-co-search" and
// "bs-u-co-search" import the same rules).
UErrorCode language_collations(const std::string& search_tag, std::vector<collation>& out) {
  int32_t count = 0;
  const icu::Locale* locales = icu::Collator::getAvailableLocales(count);
  std::map<icu::UnicodeString, std::size_t> by_rules;
  std::vector<std::string> seen;
  for (int32_t i = 0; i < count; ++i) {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale locale(locales[i].getBaseName());
    locale.setKeywordValue("collation", "search", status);
    std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(locale, status));
    if (U_FAILURE(status)) return status;
    const std::string tag =
        detail::collation_tag(collator->getLocale(ULOC_ACTUAL_LOCALE, status), status);
    if (U_FAILURE(status)) return status;
    if (tag == search_tag || tag == "und" ||
        std::find(seen.begin(), seen.end(), tag) != seen.end()) {
      continue;
    }
    seen.push_back(tag);
    const auto* rules = dynamic_cast<const icu::RuleBasedCollator*>(collator.get());
    if (rules == nullptr) return U_UNSUPPORTED_ERROR;
    const auto [it, inserted] = by_rules.emplace(rules->getRules(), out.size());
    if (inserted) {
      out.push_back({std::move(collator), {}, {}, U_ZERO_ERROR});
    }
    out[it->second].tags.push_back(tag);
  }
  return U_ZERO_ERROR;
}

// Builds the tables of every collation, on every core.
void build_all(std::vector<collation>& collations) {
  std::mutex mutex;
  std::size_t next = 0;
  auto work = [&] {
    for (;;) {
      collation* c = nullptr;
      {
        const std::lock_guard<std::mutex> lock(mutex);
        if (next == collations.size()) return;
        c = &collations[next++];
      }
      c->status = detail::build_fold_tables(c->collator->toUCollator(), c->image);
    }
  };
  std::vector<std::thread> threads(std::max(1U, std::thread::hardware_concurrency()));
  for (std::thread& thread : threads) thread = std::thread(work);
  for (std::thread& thread : threads) thread.join();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: fold_table_gen OUTPUT.cpp\n";
    return 2;
  }
  // The root's search collation, and the tag ICU gives it, then the languages'.
  UErrorCode status = U_ZERO_ERROR;
  std::vector<collation> collations(1);
  collations[0].collator.reset(
      icu::Collator::createInstance(icu::Locale("@collation=search"), status));
  if (failed(status)) return 1;
  const std::string search_tag =
      detail::collation_tag(collations[0].collator->getLocale(ULOC_ACTUAL_LOCALE, status), status);
  if (failed(status) || failed(language_collations(search_tag, collations))) return 1;
  build_all(collations);
  detail::fold_tables_image root;
  if (failed(detail::build_fold_tables(root))) return 1;
  for (const collation& c : collations) {
    if (failed(c.status)) return 1;
  }

  std::ofstream out(argv[1], std::ios::trunc);
  out << "// Written by fold_table_gen from ICU " U_ICU_VERSION "; do not edit.\n"
      << "#include \"search/fold_table_data.h\"\n\n"
      << "namespace scl::regex::detail::fold_table_data {\n\n";
  UVersionInfo version;
  u_getVersion(version);
  write_version(out, "icu_version", version);
  u_getUnicodeVersion(version);
  write_version(out, "unicode_version", version);
  out << '\n';
  write_collation(out, "root", root);
  out << "const char search_tag[] = \"" << search_tag << "\";\n";
  write_collation(out, "search", collations[0].image);

  std::vector<std::pair<std::string, std::size_t>> tags;
  for (std::size_t i = 1; i < collations.size(); ++i) {
    const std::string name = "language_" + std::to_string(i);
    if (failed(write_changes(out, name, collations[0].image, collations[i].image))) return 1;
    for (const std::string& tag : collations[i].tags) tags.emplace_back(tag, i);
  }
  std::sort(tags.begin(), tags.end());
  out << "const language_collation languages[] = {\n";
  for (const auto& [tag, index] : tags) {
    out << "    {\"" << tag << "\", &language_" << index << "},\n";
  }
  out << "    {nullptr, nullptr}};\nconst std::size_t language_count = " << tags.size() << ";\n\n";
  out << "}  // namespace scl::regex::detail::fold_table_data\n";
  out.close();
  if (!out) {
    std::cerr << "fold_table_gen: cannot write " << argv[1] << '\n';
    return 1;
  }
  return 0;
}
