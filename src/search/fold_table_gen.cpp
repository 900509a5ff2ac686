// fold_table_gen OUTPUT.cpp: computes the fold tables from the ICU this
// program runs with and writes them as C++ source (see fold_table_data.h).
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <unicode/coll.h>
#include <unicode/locid.h>

#include <unicode/uchar.h>
#include <unicode/uversion.h>

#include "search/collation_tag.h"
#include "search/fold_table_build.h"

namespace {

using scl::regex::detail::code_point_pair;
using scl::regex::detail::composite_unit;

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

// Writes the arrays of `image` and the collation_tables `name` that holds them.
void write_collation(std::ostream& out, const std::string& name,
                     const scl::regex::detail::fold_tables_image& image) {
  const std::size_t count = image.tables.size();
  std::vector<std::vector<char16_t>> contractions(count);
  for (std::size_t t = 0; t < count; ++t) {
    const std::string index = name + '_' + std::to_string(t);
    out << "alignas(16) ";
    write_array(out, "std::uint8_t", "trie_" + index, image.tables[t].trie, 24,
                [&](std::uint8_t byte) { out << static_cast<unsigned>(byte); });
    const std::vector<char16_t> pool(image.tables[t].pool.begin(), image.tables[t].pool.end());
    write_array(out, "char16_t", "pool_" + index, pool, 16,
                [&](char16_t unit) { out << static_cast<unsigned>(unit); });
    const std::u16string stored = scl::regex::detail::stored_contractions(image.contractions[t]);
    contractions[t].assign(stored.begin(), stored.end());
    write_array(out, "char16_t", "contractions_" + index, contractions[t], 16,
                [&](char16_t unit) { out << static_cast<unsigned>(unit); });
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

  out << "const collation_tables " << name << " = {\n    {\n";
  for (std::size_t t = 0; t < count; ++t) {
    const std::string index = name + '_' + std::to_string(t);
    out << "        {trie_" << index << ", " << image.tables[t].trie.size() << ", pool_" << index
        << ", " << image.tables[t].pool.size() << "},\n";
  }
  out << "    },\n"
      << "    prevowel_pairs_" << name << ", " << image.prevowel_pairs.size() << ",\n"
      << "    dropped_starts_" << name << ", " << image.dropped_starts.size() << ",\n"
      << "    variable_ends_" << name << ", " << image.variable_ends.size() << ",\n"
      << "    {composites_" << name << "_0, composites_" << name << "_1},\n"
      << "    {" << image.composites[0].size() << ", " << image.composites[1].size() << "},\n"
      << "    {";
  for (std::size_t t = 0; t < count; ++t)
    out << (t != 0 ? ", " : "") << "contractions_" << name << '_' << t;
  out << "},\n    {";
  for (std::size_t t = 0; t < count; ++t) out << (t != 0 ? ", " : "") << contractions[t].size();
  out << "},\n};\n\n";
}

bool failed(UErrorCode status) {
  if (U_SUCCESS(status)) return false;
  std::cerr << "fold_table_gen: ICU failed: " << u_errorName(status) << '\n';
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: fold_table_gen OUTPUT.cpp\n";
    return 2;
  }
  scl::regex::detail::fold_tables_image root;
  if (failed(scl::regex::detail::build_fold_tables(root))) return 1;
  // The root's search collation, and the tag ICU gives it.
  UErrorCode status = U_ZERO_ERROR;
  const icu::Locale search_locale("@collation=search");
  const std::unique_ptr<icu::Collator> collator(
      icu::Collator::createInstance(search_locale, status));
  if (failed(status)) return 1;
  const std::string search_tag =
      scl::regex::detail::collation_tag(collator->getLocale(ULOC_ACTUAL_LOCALE, status), status);
  scl::regex::detail::fold_tables_image search;
  if (failed(status) ||
      failed(scl::regex::detail::build_fold_tables(collator->toUCollator(), search))) {
    return 1;
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
  write_collation(out, "search", search);
  out << "}  // namespace scl::regex::detail::fold_table_data\n";
  out.close();
  if (!out) {
    std::cerr << "fold_table_gen: cannot write " << argv[1] << '\n';
    return 1;
  }
  return 0;
}
