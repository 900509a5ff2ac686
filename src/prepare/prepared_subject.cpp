#include "prepare/prepared_subject.h"

#include <algorithm>
#include <stdexcept>

#include "prepare/mark_table.h"
#include "prepare/prepare_pass.h"

namespace scl::regex::detail {

namespace {

constexpr constants::syntax_option_type kPreparing =
    constants::normalize_nfc | constants::ignore_diacritics;

}  // namespace

void prepare_into(std::u16string& out, std::u16string_view text,
                  constants::syntax_option_type options) {
  if ((options & kPreparing) == 0) {
    out.append(text);
    return;
  }
  // Without ICU's means to remove marks, removing them passes the text whole.
  if ((options & constants::ignore_diacritics) != 0 && !mark_table::instance().ready()) {
    out.append(text);
    return;
  }
  text = preparation_source(text, options);
  out.reserve(out.size() + text.size());
  no_map map;
  prepare_pass(text.data(), text.size(), options, out, map);
}

prepared_subject::prepared_subject(std::u16string_view raw, constants::syntax_option_type options,
                                   bool mapped)
    : raw_(raw), options_(options), has_map_(mapped) {
  if (mapped) {
    mapped_ = prepare_text_mapped(raw, options);
    text_ = mapped_.text();
  } else if ((options & kPreparing) == 0) {
    text_ = raw;
  } else {
    prepare_into(unmapped_, raw, options);
    text_ = unmapped_;
  }
}

std::pair<std::size_t, std::size_t> prepared_subject::source_range(std::size_t start,
                                                                   std::size_t end) const {
  if (!has_map_) throw std::logic_error("scl::regex: source_range of a subject without its map");
  const std::size_t size = text_.size();
  start = std::min(start, size);
  return mapped_.source_range(start, std::max(start, std::min(end, size)));
}

}  // namespace scl::regex::detail
