#include <string>
#include <utility>
#include <vector>

#include "icu/icu_string.h"
#include "prepare/prepared_text_builder.h"
#include "scl/regex/search_pattern.h"
#include "search/fold_map.h"
#include "search/fold_table.h"
#include "search/folded_text.h"
#include "search/search_settings.h"

namespace scl::regex {

prepared_text search_fold(std::u16string_view text) { return search_fold(text, search_options{}); }

prepared_text search_fold(std::u16string_view text, const search_options& options) {
  const detail::search_locale& locale = detail::search_settings::validate(options);
  const detail::scratch_text scratch(/*note_aligned=*/true);
  detail::folded_text& folded = scratch.text();
  detail::fold_text(locale.collation->table(detail::search_settings::text_fold(options)),
                    text.data(), detail::icu_length(text.size()), false, folded);
  return detail::prepared_text_builder::assemble(std::u16string(folded.text()), text.size(),
                                                 detail::map_of(folded, text));
}

}  // namespace scl::regex
