// The regex object: a regex built from a pattern and options (any constructor
// form), walked with regex_iterator; its results and their groups, operator[],
// str(), getGroupNamesIfAvailable(), match_ex; the match tuples of
// regex_search; regex_search_prefix_suffix.
//
// Input: u32 option bits, u8 forms, two group names (length-prefixed bytes),
// two group numbers (u8 each), u8 str() probe kind, u32 probe start, u32
// probe length, the pattern (length-prefixed), the subject (the rest).
//
// Properties:
// - The walk visits ICU's matches over the prepared subject, in increasing,
//   non-overlapping order (start <= end, start >= previous end), and ends.
// - A result's text, and each group's, is the prepared subject's between its
//   positions (cut at U+0000); a group that took no part has both positions
//   npos and no text; there are getGroupsCount() + 1 groups.
// - operator[] with a number 0..groups-1 gives that group, with a negative or
//   larger number throws std::out_of_range; any name gives a group of the
//   result or throws std::out_of_range whose what() is the name.
// - str(start, length) is the part of [start, start + length) inside the
//   prepared subject, cut at U+0000.
// - getGroupNamesIfAvailable() lists the "?<name>" texts of the pattern, and
//   after a walk those of the subject.
// - match_ex walks the same matches, and reports an error only where ICU
//   failed; an end-of-sequence iterator neither resets nor searches.
// - regex_search into tuples gives one tuple per step of a walk over the
//   subject prepared once more (the same walk for well-formed text), with the
//   same texts, whether with a regex or with a pattern.
// - regex_search_prefix_suffix throws nothing but std::out_of_range, and that
//   only when preparing the subject changes its length; with a subject that
//   preparing leaves alone, it gives the text before the first match and
//   after the last.
// - regex_find_all, with a regex or with a pattern, gives one match per step
//   of the walk (a failed step ends it), each the walk's positions mapped
//   through prepare_text_mapped; every range lies inside the subject and
//   never splits a surrogate pair; matches come in order; every match has
//   getGroupsCount() + 1 groups; where both ends of a match fall on piece
//   boundaries of the prepared text, preparing its source slice gives back
//   the prepared match text.
#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include <scl/regex.h>
#include <unicode/utf16.h>

#include "fuzz_input.h"

namespace re = scl::regex;

namespace {

using scl::regex::npos;

// The "?<name>" texts of `text` as the library describes them: an ASCII
// letter, then ASCII letters and digits, between "?<" and ">".
std::vector<std::string> names_in(const std::u16string& text) {
  const auto letter = [](char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
  };
  const auto digit = [](char16_t c) { return c >= u'0' && c <= u'9'; };
  std::vector<std::string> names;
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] != u'?' || text[i + 1] != u'<') continue;
    std::size_t j = i + 2;
    if (j >= text.size() || !letter(text[j])) continue;
    while (j < text.size() && (letter(text[j]) || digit(text[j]))) ++j;
    if (j >= text.size() || text[j] != u'>') continue;
    names.emplace_back(text.begin() + static_cast<std::ptrdiff_t>(i + 2),
                       text.begin() + static_cast<std::ptrdiff_t>(j));
    i = j;
  }
  return names;
}

// A position or length for str(): small, or one that does not fit 32 bits.
std::size_t probe_value(unsigned kind, std::uint32_t bits, std::size_t subject_size) {
  switch (kind % 4) {
    case 0:
      return bits % (subject_size + 2);
    case 1:
      return (std::size_t{1} << 31) + bits % 4;
    case 2:
      return (std::size_t{1} << 32) + bits % 4;
    default:
      return npos - bits % 4;
  }
}

std::u16string piece(const std::u16string& text, std::size_t start, std::size_t end) {
  return fuzz::cut(text.substr(start, end - start));
}

// What str(start, length) gives: both taken as signed 32-bit values, pinned to
// the subject as ICU pins substrings, the text cut at U+0000.
std::u16string str_model(const std::u16string& text, std::size_t start, std::size_t length) {
  const auto size = static_cast<std::int64_t>(text.size());
  std::int64_t from = static_cast<std::int32_t>(start);
  std::int64_t count = static_cast<std::int32_t>(length);
  from = std::clamp<std::int64_t>(from, 0, size);
  count = std::clamp<std::int64_t>(count, 0, size - from);
  return fuzz::cut(text.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(count)));
}

// Everything the input asks for, decoded.
struct walk_input {
  std::uint32_t options;
  unsigned pattern_form;  // 0 string, 1 iterators, 2 view, 3 pointer (ends at U+0000)
  unsigned subject_form;  // 0 string, 1 iterators, 2 pointer (ends at U+0000), 3 end iterator first
  std::string names[2];
  int numbers[2];
  std::size_t probe_start, probe_length;
  std::u16string pattern, subject;  // as the regex sees them (cut for pointer forms)
};

re::regex make_regex(const walk_input& w) {
  switch (w.pattern_form) {
    case 1:
      return re::regex(w.pattern.begin(), w.pattern.end(), w.options);
    case 2:
      return re::regex(std::u16string_view(w.pattern), w.options);
    case 3:
      return re::regex(w.pattern.c_str(), w.options);
    default:
      return re::regex(w.pattern, w.options);
  }
}

void check_group(const re::group_result& g, const std::u16string& prepared) {
  FUZZ_CHECK((g.start == npos) == (g.end == npos));
  if (g.start == npos) {
    FUZZ_CHECK(g.str().empty());
  } else {
    FUZZ_CHECK(g.start <= g.end && g.end <= prepared.size());
    FUZZ_CHECK(g.str() == piece(prepared, g.start, g.end));
  }
}

void check_lookups(const re::regex_result& m, const walk_input& w) {
  for (const std::string& name : w.names) {
    try {
      const re::group_result& g = m[name];
      FUZZ_CHECK(&g >= m.groups.data() && &g < m.groups.data() + m.groups.size());
    } catch (const std::out_of_range& e) {
      FUZZ_CHECK(e.what() == name.substr(0, name.find('\0')));  // a C string ends at a zero byte
    }
  }
  for (const int number : w.numbers) {
    const std::string name = std::to_string(number);
    const bool exists = number >= 0 && static_cast<std::size_t>(number) < m.groups.size();
    try {
      const re::group_result& g = m[name];
      FUZZ_CHECK(exists && &g == &m.groups[static_cast<std::size_t>(number)]);
    } catch (const std::out_of_range& e) {
      FUZZ_CHECK(!exists && e.what() == name);
    }
  }
}

// Walks `rx` over the subject and checks each step; returns the match texts.
std::vector<std::u16string> walk(re::regex& rx, const walk_input& w, const std::u16string& prepared,
                                 const fuzz::icu_run& run) {
  std::vector<std::u16string> texts;
  std::size_t previous_end = 0;
  const auto step = [&](const re::regex_result& m) {
    FUZZ_CHECK(texts.size() < run.spans.size());
    const auto [start, end] = run.spans[texts.size()];
    FUZZ_CHECK(m.start == static_cast<std::size_t>(start));
    FUZZ_CHECK(m.end == static_cast<std::size_t>(end));
    FUZZ_CHECK(m.start <= m.end && m.start >= previous_end);
    previous_end = m.end;
    FUZZ_CHECK(m.str() == piece(prepared, m.start, m.end));
    FUZZ_CHECK(m.groups.size() == static_cast<std::size_t>(rx.getGroupsCount()) + 1);
    FUZZ_CHECK(m.groups[0].start == m.start && m.groups[0].end == m.end);
    for (const re::group_result& g : m.groups) check_group(g, prepared);
    check_lookups(m, w);
    texts.push_back(m.str());
  };
  // The walk is over when start and end are both npos.
  const auto on_match = [](const re::regex_iterator& it) {
    return it->start != npos || it->end != npos;
  };
  switch (w.subject_form) {
    case 1:
      for (re::regex_iterator it(w.subject.begin(), w.subject.end(), rx); on_match(it); ++it)
        step(*it);
      break;
    case 2:
      for (re::regex_iterator it(w.subject.c_str(), rx); on_match(it); ++it) step(*it);
      break;
    default:
      for (re::regex_iterator it(w.subject, rx); on_match(it); ++it) step(*it);
  }
  FUZZ_CHECK(texts.size() == run.spans.size());
  return texts;
}

void check_match_ex(const walk_input& w, const fuzz::icu_run& run) {
  re::regex rx = make_regex(w);
  rx.reset(w.subject);
  for (std::size_t steps = 0;; ++steps) {
    re::expected_result<re::regex_result> next = rx.match_ex();
    if (next.has_error()) {
      FUZZ_CHECK(run.failed() && steps == run.spans.size());
      return;
    }
    if (next.value().start == npos) {
      FUZZ_CHECK(!run.failed() && steps == run.spans.size());
      FUZZ_CHECK(next.value().end == npos);
      return;
    }
    FUZZ_CHECK(steps < run.spans.size());
    FUZZ_CHECK(next.value().start == static_cast<std::size_t>(run.spans[steps].first));
  }
}

// The tuple search walks the subject after preparing it once more (which
// changes nothing for well-formed text), so it has one tuple per match of a
// walk over the twice-prepared subject.
void check_tuples(const walk_input& w, const std::vector<std::u16string>& texts,
                  const std::u16string& prepared, const std::u16string& prepared_twice,
                  const fuzz::icu_run& run_twice) {
  std::vector<re::match_tuple> out{{u"stale", {}}};
  re::regex rx = make_regex(w);
  re::regex_search(rx, w.subject, out);
  FUZZ_CHECK(out.size() == run_twice.spans.size());
  if (prepared_twice == prepared) FUZZ_CHECK(out.size() == texts.size());
  for (std::size_t i = 0; i < out.size(); ++i) {
    const auto [start, end] = run_twice.spans[i];
    FUZZ_CHECK(std::get<0>(out[i]) == piece(prepared_twice, static_cast<std::size_t>(start),
                                            static_cast<std::size_t>(end)));
    FUZZ_CHECK(std::get<1>(out[i]).size() == static_cast<std::size_t>(run_twice.group_count));
  }
  std::vector<re::match_tuple> again;
  re::regex_search(w.subject, w.pattern, again, w.options);
  FUZZ_CHECK(again == out);
}

void check_prefix_suffix(const walk_input& w, const std::u16string& prepared,
                         const fuzz::icu_run& run) {
  try {
    const auto [prefix, suffix] = re::regex_search_prefix_suffix(w.subject, w.pattern, w.options);
    if (run.spans.empty()) {
      FUZZ_CHECK(prefix.empty() && suffix == w.subject);
    } else if (prepared == w.subject) {
      FUZZ_CHECK(prefix == w.subject.substr(0, static_cast<std::size_t>(run.spans.front().first)));
      FUZZ_CHECK(suffix == w.subject.substr(static_cast<std::size_t>(run.spans.back().second)));
    }
  } catch (const std::out_of_range&) {
    FUZZ_CHECK(prepared.size() != w.subject.size());
  }
}

// Whether prepared position `at` is a boundary between two pieces of the map:
// the ends of the text, or where the units either side map to different pieces.
bool piece_boundary(const re::prepared_text& mapped, std::size_t at) {
  if (at == 0 || at == mapped.text().size()) return true;
  return mapped.source_range(at - 1, at) != mapped.source_range(at, at + 1);
}

void check_find_all(const walk_input& w, const std::u16string& prepared, const fuzz::icu_run& run) {
  re::regex rx = make_regex(w);
  const std::vector<re::source_match> found = re::regex_find_all(rx, w.subject);
  const std::vector<re::source_match> again = re::regex_find_all(w.subject, w.pattern, w.options);
  const re::prepared_text mapped = re::prepare_text_mapped(w.subject, w.options);
  FUZZ_CHECK(mapped.text() == prepared);
  FUZZ_CHECK(found.size() == run.spans.size() && again.size() == found.size());
  const auto splits_pair = [&w](std::size_t at) {
    return at > 0 && at < w.subject.size() && U16_IS_LEAD(w.subject[at - 1]) &&
           U16_IS_TRAIL(w.subject[at]);
  };
  const auto inside = [&](std::size_t start, std::size_t end) {
    return start <= end && end <= w.subject.size() && !splits_pair(start) && !splits_pair(end);
  };
  std::size_t previous_start = 0, previous_end = 0;
  for (std::size_t i = 0; i < found.size(); ++i) {
    const re::source_match& m = found[i];
    const auto span = std::make_pair(static_cast<std::size_t>(run.spans[i].first),
                                     static_cast<std::size_t>(run.spans[i].second));
    FUZZ_CHECK(std::make_pair(m.start, m.end) == mapped.source_range(span.first, span.second));
    FUZZ_CHECK(inside(m.start, m.end));
    FUZZ_CHECK(m.start >= previous_start && m.end >= previous_end);
    previous_start = m.start;
    previous_end = m.end;
    FUZZ_CHECK(m.groups.size() == static_cast<std::size_t>(run.group_count) + 1);
    FUZZ_CHECK(m.groups[0] == std::make_pair(m.start, m.end));
    for (const auto& [start, end] : m.groups) {
      FUZZ_CHECK((start == npos) == (end == npos));
      if (start != npos) FUZZ_CHECK(inside(start, end));
    }
    FUZZ_CHECK(again[i].start == m.start && again[i].end == m.end && again[i].groups == m.groups);
    if (piece_boundary(mapped, span.first) && piece_boundary(mapped, span.second)) {
      FUZZ_CHECK(re::prepare_text(w.subject.substr(m.start, m.end - m.start), w.options) ==
                 prepared.substr(span.first, span.second - span.first));
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::input in(data, size);
  walk_input w;
  w.options = in.u32();
  const std::uint8_t forms = in.byte();
  w.pattern_form = forms & 3;
  w.subject_form = (forms >> 2) & 3;
  w.names[0] = in.bytes(16);
  w.names[1] = in.bytes(16);
  w.numbers[0] = static_cast<std::int8_t>(in.byte());
  w.numbers[1] = in.byte() % 8;
  const std::uint8_t probe_kind = in.byte();
  const std::uint32_t probe_start = in.u32();
  const std::uint32_t probe_length = in.u32();
  w.pattern = in.text();
  w.subject = in.rest(fuzz::kMaxSubject);
  if (w.pattern_form == 3) w.pattern = fuzz::cut(w.pattern);
  if (w.subject_form == 2) w.subject = fuzz::cut(w.subject);

  // The regex searches its whole prepared subject; regex_search into tuples
  // prepares it once more.
  const std::u16string prepared = re::prepare_text(w.subject, w.options);
  const std::u16string prepared_twice = re::prepare_text(prepared, w.options);
  const std::u16string prepared_pattern = re::prepare_text(w.pattern, w.options);
  const auto run = fuzz::screen(prepared_pattern, w.options, prepared);
  const auto run_twice = fuzz::screen(prepared_pattern, w.options, prepared_twice);
  if (!run || !run_twice) return fuzz::kReject;
  w.probe_start = probe_value(probe_kind, probe_start, prepared.size());
  w.probe_length = probe_value(probe_kind >> 2, probe_length, prepared.size());

  re::regex rx(u"", 0);
  try {
    rx = make_regex(w);
    FUZZ_CHECK(run->compiled);
  } catch (const re::regex_exception&) {
    FUZZ_CHECK(!run->compiled);
    return 0;
  }
  FUZZ_CHECK(rx.getGroupsCount() == run->group_count);
  FUZZ_CHECK(rx.getGroupNamesIfAvailable() == names_in(w.pattern));

  if (w.subject_form == 3) {  // an end-of-sequence iterator touches nothing
    re::regex_iterator end(std::u16string_view(w.subject), rx);
    FUZZ_CHECK(end->start == npos && end->end == npos);
    ++end;
    FUZZ_CHECK(end->start == npos && end->end == npos);
    FUZZ_CHECK(rx.getGroupNamesIfAvailable() == names_in(w.pattern));
  }

  const std::vector<std::u16string> texts = walk(rx, w, prepared, *run);
  FUZZ_CHECK(rx.getGroupNamesIfAvailable() == names_in(w.subject));
  FUZZ_CHECK(rx.match().start == npos);  // the walk is over and stays over

  FUZZ_CHECK(rx.str(w.probe_start, w.probe_length) ==
             str_model(prepared, w.probe_start, w.probe_length));

  check_match_ex(w, *run);
  check_tuples(w, texts, prepared, prepared_twice, *run_twice);
  check_prefix_suffix(w, prepared, *run);
  check_find_all(w, prepared, *run);
  return 0;
}
