// prepare_text_mapped: the prepared text with its map back to the source.
//
// Input: u32 option bits, then the text (the rest, at most 48 units: every
// range of the prepared text is checked, which is quadratic in its length).
//
// Properties (the rules of the map, tests/support/map_properties.h):
// 1. text() is prepare_text's result. 2. source_size() is the source up to its
// first U+0000 with ignore_diacritics, else all of it. 3. Ranges outside the
// text throw std::out_of_range; results lie within the source. 4. Where
// preparation keeps the text, the identity on code-point boundaries. 5. Both
// ends move monotonically. 6. The whole text maps to the whole source. 7. A
// range runs from the piece of its first unit to the piece of its last, an
// empty one sits at the start of its piece, and pieces are the shortest.
// 8. No range splits a surrogate pair or a character from its marks. 9.
// Between piece boundaries, preparing the source slice gives the text slice.
#include <cstdint>
#include <string>

#include "fuzz_input.h"
#include "support/map_properties.h"

namespace {
constexpr std::size_t kMaxMapped = 48;
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::input in(data, size);
  const std::uint32_t options = in.u32();
  const std::u16string text = in.rest(kMaxMapped);
  const std::string broken = scl_regex_test::broken_map_rule(text, options);
  if (!broken.empty()) std::fprintf(stderr, "\nrule %s\n", broken.c_str());
  FUZZ_CHECK(broken.empty());
  return 0;
}
