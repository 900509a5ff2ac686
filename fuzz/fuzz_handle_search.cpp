// Searching with a matcher handle: regex_search (whole and anywhere),
// get_group, get_group_count, and the pointer form of regex_search.
//
// Input: u32 option bits, the pattern (length-prefixed), the subject (the rest).
//
// Properties:
// - regex_search answers as ICU does on the prepared subject cut at its first
//   U+0000 (matches() for whole, the first find() otherwise).
// - get_group(h, n) for n < 0 is group 0; a group text is never longer than
//   the prepared subject, holds no U+0000, and is empty without a current match
//   and for numbers from get_group_count(h) on; group 0 is the text of ICU's
//   match (whole code points, as ICU extracts it).
// - get_group_count(h) is ICU's group count plus one.
// - The pointer form throws exactly when its pattern (up to U+0000) does not
//   compile, and otherwise answers as a handle made from that pattern.
#include <cstdint>
#include <string>

#include <unicode/utf16.h>

#include <scl/regex.h>

#include "fuzz_input.h"

namespace re = scl::regex;

namespace {

// A position moved back to a code point boundary: ICU's group() extracts whole
// code points, so a match boundary between the two halves of a surrogate pair
// (a lone lead surrogate in the pattern can match the lead half of a pair)
// moves back to the pair's lead.
std::size_t code_point_boundary(const std::u16string& text, std::size_t at) {
  if (at > 0 && at < text.size() && U16_IS_LEAD(text[at - 1]) && U16_IS_TRAIL(text[at]))
    return at - 1;
  return at;
}

// The text of the first match from the start as ICU gives it, or the whole subject.
std::u16string expected_group0(const fuzz::icu_run& run, const std::u16string& prepared,
                               bool whole) {
  if (whole) return fuzz::cut(prepared);
  const std::size_t start =
      code_point_boundary(prepared, static_cast<std::size_t>(run.spans.front().first));
  const std::size_t end =
      code_point_boundary(prepared, static_cast<std::size_t>(run.spans.front().second));
  return fuzz::cut(prepared.substr(start, end - start));
}

void check_search(const re::matcher_ptr& handle, const std::u16string& subject,
                  const std::u16string& prepared, const fuzz::icu_run& run, bool whole) {
  const bool found = re::regex_search(handle, subject, whole);
  FUZZ_CHECK(found == (whole ? run.whole : !run.spans.empty()));

  const int count = re::get_group_count(handle);
  FUZZ_CHECK(count == run.group_count + 1);
  for (int n = -2; n <= count + 1; ++n) {
    const std::u16string group = re::get_group(handle, n);
    FUZZ_CHECK(group.size() <= prepared.size());
    FUZZ_CHECK(group.find(u'\0') == std::u16string::npos);
    if (!found || n >= count) FUZZ_CHECK(group.empty());
  }
  FUZZ_CHECK(re::get_group(handle, -1) == re::get_group(handle, 0));
  if (found) FUZZ_CHECK(re::get_group(handle, 0) == expected_group0(run, prepared, whole));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::input in(data, size);
  const std::uint32_t options = in.u32();
  const std::u16string pattern = in.text();
  const std::u16string subject = in.rest(fuzz::kMaxSubject);

  // The handle searches the prepared subject up to its first U+0000 with the
  // whole prepared pattern; the pointer form takes both up to their first U+0000.
  const std::u16string prepared = fuzz::cut(re::prepare_text(subject, options));
  const std::u16string pattern_c = fuzz::cut(pattern);
  const std::u16string prepared_c = fuzz::cut(re::prepare_text(fuzz::cut(subject), options));
  const auto run = fuzz::screen(re::prepare_text(pattern, options), options, prepared);
  const auto run_c = fuzz::screen(re::prepare_text(pattern_c, options), options, prepared_c);
  if (!run || !run_c) return fuzz::kReject;

  // An empty handle finds nothing and has no groups.
  const re::matcher_ptr empty;
  FUZZ_CHECK(!re::regex_search(empty, subject, false));
  FUZZ_CHECK(re::get_group(empty, 0).empty() && re::get_group_count(empty) == 0);

  re::expected_result<re::matcher_ptr> compiled = re::createExpectedMatcher(pattern, options);
  FUZZ_CHECK(compiled.has_error() == !run->compiled);
  if (!compiled.has_error()) {
    const re::matcher_ptr& handle = compiled.value();
    // Before any search there is no match to read.
    FUZZ_CHECK(re::get_group(handle, 0).empty());
    check_search(handle, subject, prepared, *run, false);
    check_search(handle, subject, prepared, *run, true);
    check_search(handle, subject, prepared, *run, false);
  }

  for (const bool whole : {false, true}) {
    try {
      const bool found = re::regex_search(subject.c_str(), pattern_c.c_str(), whole, options);
      FUZZ_CHECK(run_c->compiled);
      FUZZ_CHECK(found == (whole ? run_c->whole : !run_c->spans.empty()));
    } catch (const re::regex_exception&) {
      FUZZ_CHECK(!run_c->compiled);
    }
  }
  FUZZ_CHECK(!re::regex_search(nullptr, pattern_c.c_str(), false, options));
  FUZZ_CHECK(!re::regex_search(subject.c_str(), nullptr, true, options));
  return 0;
}
