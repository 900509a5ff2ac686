// fold_table_gen OUTPUT.cpp: computes the fold tables from the ICU this
// program runs with and writes them as C++ source (see fold_table_data.h).
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include <unicode/uchar.h>
#include <unicode/uversion.h>

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
// never empty) and its `count`.
template <class T, class Write>
void write_array(std::ostream& out, const char* type, const std::string& name,
                 const std::vector<T>& values, int per_line, const char* count, Write write) {
  out << (count != nullptr ? "" : "static ") << "const " << type << ' ' << name << "[] = {";
  for (std::size_t i = 0; i < values.size(); ++i) {
    out << (i % static_cast<std::size_t>(per_line) == 0 ? "\n" : "");
    write(values[i]);
    out << ',';
  }
  out << "\n{}};\n";
  if (count != nullptr) out << "const std::size_t " << count << " = " << values.size() << ";\n";
  out << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: fold_table_gen OUTPUT.cpp\n";
    return 2;
  }
  scl::regex::detail::fold_tables_image image;
  const UErrorCode status = scl::regex::detail::build_fold_tables(image);
  if (U_FAILURE(status)) {
    std::cerr << "fold_table_gen: ICU failed: " << u_errorName(status) << '\n';
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

  for (std::size_t t = 0; t < image.tables.size(); ++t) {
    const std::string index = std::to_string(t);
    out << "alignas(16) ";
    write_array(out, "std::uint8_t", "trie_" + index, image.tables[t].trie, 24, nullptr,
                [&](std::uint8_t byte) { out << static_cast<unsigned>(byte); });
    const std::vector<char16_t> pool(image.tables[t].pool.begin(), image.tables[t].pool.end());
    write_array(out, "char16_t", "pool_" + index, pool, 16, nullptr,
                [&](char16_t unit) { out << static_cast<unsigned>(unit); });
  }
  out << "const table tables[fold_variant::count] = {\n";
  for (std::size_t t = 0; t < image.tables.size(); ++t) {
    out << "    {trie_" << t << ", " << image.tables[t].trie.size() << ", pool_" << t << ", "
        << image.tables[t].pool.size() << "},\n";
  }
  out << "};\n\n";

  write_array(out, "code_point_pair", "prevowel_pairs", image.prevowel_pairs, 6,
              "prevowel_pair_count", [&](const code_point_pair& pair) {
                out << '{' << static_cast<unsigned long>(pair.first) << ", "
                    << static_cast<unsigned long>(pair.second) << '}';
              });
  auto code_point = [&](char32_t c) { out << static_cast<unsigned long>(c); };
  write_array(out, "char32_t", "dropped_starts", image.dropped_starts, 12, "dropped_start_count",
              code_point);
  write_array(out, "char32_t", "variable_ends", image.variable_ends, 12, "variable_end_count",
              code_point);
  auto write_composite = [&](const composite_unit& unit) {
    out << '{' << static_cast<unsigned long>(unit.unit) << ", " << unit.count << ", {";
    for (int i = 0; i < composite_unit::max_elements; ++i) {
      out << (i != 0 ? ", " : "") << static_cast<unsigned long>(unit.primaries[i]);
    }
    out << "}, " << unit.common_secondary << '}';
  };
  write_array(out, "composite_unit", "composites", image.composites[0], 1, "composite_count",
              write_composite);
  write_array(out, "composite_unit", "case_composites", image.composites[1], 1,
              "case_composite_count", write_composite);
  out << "}  // namespace scl::regex::detail::fold_table_data\n";
  out.close();
  if (!out) {
    std::cerr << "fold_table_gen: cannot write " << argv[1] << '\n';
    return 1;
  }
  return 0;
}
