// fold_table_gen OUTPUT.cpp: computes the fold table from the ICU this program
// runs with and writes it as C++ source (see fold_table_data.h).
#include <cstdio>
#include <fstream>
#include <iostream>

#include <unicode/uchar.h>
#include <unicode/uversion.h>

#include "search/fold_table_build.h"

namespace {

void write_version(std::ostream& out, const char* name, const UVersionInfo version) {
  out << "const std::uint8_t " << name << "[4] = {";
  for (int i = 0; i < 4; ++i) out << (i != 0 ? ", " : "") << static_cast<unsigned>(version[i]);
  out << "};\n";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: fold_table_gen OUTPUT.cpp\n";
    return 2;
  }
  scl::regex::detail::fold_table_image image;
  const UErrorCode status = scl::regex::detail::build_fold_table(image);
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
  out << "\nalignas(16) const std::uint8_t trie[] = {";
  for (std::size_t i = 0; i < image.trie.size(); ++i) {
    out << (i % 24 == 0 ? "\n" : "") << static_cast<unsigned>(image.trie[i]) << ',';
  }
  out << "\n};\nconst std::size_t trie_size = " << image.trie.size() << ";\n\n"
      << "const char16_t pool[] = {";
  for (std::size_t i = 0; i < image.pool.size(); ++i) {
    out << (i % 16 == 0 ? "\n" : "") << static_cast<unsigned>(image.pool[i]) << ',';
  }
  out << "\n0};\nconst std::size_t pool_size = " << image.pool.size() << ";\n\n"
      << "const code_point_pair prevowel_pairs[] = {";
  for (std::size_t i = 0; i < image.prevowel_pairs.size(); ++i) {
    out << (i % 6 == 0 ? "\n" : "") << '{'
        << static_cast<unsigned long>(image.prevowel_pairs[i].first) << ", "
        << static_cast<unsigned long>(image.prevowel_pairs[i].second) << "},";
  }
  out << "\n};\nconst std::size_t prevowel_pair_count = " << image.prevowel_pairs.size()
      << ";\n\n}  // namespace scl::regex::detail::fold_table_data\n";
  out.close();
  if (!out) {
    std::cerr << "fold_table_gen: cannot write " << argv[1] << '\n';
    return 1;
  }
  return 0;
}
