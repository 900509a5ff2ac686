// Makes prepared_text objects: from preparation, or from parts that another
// pass computed (search folding).
#ifndef SCL_REGEX_SRC_PREPARE_PREPARED_TEXT_BUILDER_H
#define SCL_REGEX_SRC_PREPARE_PREPARED_TEXT_BUILDER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "scl/regex/prepared_text.h"

namespace scl::regex::detail {

struct prepared_text_builder {
  // prepare_text_mapped(source, options).
  static prepared_text make(std::u16string_view source, constants::syntax_option_type options);

  // A prepared text with these parts. The map's first stretch starts at
  // prepared unit 0 and source unit 0; stretches come in order of both.
  static prepared_text assemble(std::u16string text, std::size_t source_size,
                                std::vector<map_stretch> map);
};

}  // namespace scl::regex::detail

#endif  // SCL_REGEX_SRC_PREPARE_PREPARED_TEXT_BUILDER_H
