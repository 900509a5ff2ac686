// Replacing with a matcher handle: regex_replace_first and regex_replace with
// fixed text, the three callback forms, and the one-shot callback form.
//
// Input: u32 option bits, u8 number of the callback call that stops (none if
// there are fewer matches), u8 termination kind, the pattern, two replacement
// texts (length-prefixed each), the subject (the rest).
//
// Properties (the handle forms search the subject as passed, whole, and cut
// their result at its first U+0000; on an ICU failure they return the subject):
// - "$0", fixed or from a callback that goes on, gives the subject back up to
//   its first U+0000; callbacks see ICU's matches in order, and the handle form
//   stands on the same match as the text form saw.
// - A callback that stops at match k with "$0" gives the subject up to the end
//   of match k (bool false, eStopAndTruncate) or the whole subject (eStop and
//   any other non-zero value); it is called k + 1 times.
// - Any replacement gives a result without U+0000, or the subject unchanged.
// - An empty callback throws std::bad_function_call exactly when there is a match.
// - No callback is called for an empty handle, and every form returns "".
// - The one-shot callback form behaves as the handle form over the pattern and
//   subject cut at their first U+0000, and returns the subject when the
//   pattern does not compile.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <scl/regex.h>

#include "fuzz_input.h"

namespace re = scl::regex;

namespace {

using text_callback = std::function<std::u16string(const std::u16string&, bool&)>;
using handle_callback = std::function<std::u16string(const re::matcher_ptr&, bool&)>;
using termination_callback =
    std::function<std::u16string(const std::u16string&, re::ECallbackTermination&)>;

re::ECallbackTermination termination_of(std::uint8_t kind) {
  static constexpr std::int32_t kValues[] = {0, 1, 2, 7, -1, 3, INT32_MIN};
  return static_cast<re::ECallbackTermination>(kValues[kind % 7]);
}

// What the callbacks of one input decide.
struct script {
  std::uint8_t stop_at;
  re::ECallbackTermination termination;
  std::u16string texts[2];

  const std::u16string& text(std::size_t call) const { return texts[call % 2]; }
};

// The subject as passed, up to the end of match k, cut at its first U+0000.
std::u16string through_match(const std::u16string& subject, const fuzz::icu_run& run,
                             std::size_t k) {
  return fuzz::cut(subject.substr(0, static_cast<std::size_t>(run.spans[k].second)));
}

void check_handle(const re::matcher_ptr& handle, const std::u16string& subject,
                  const fuzz::icu_run& run, const script& s) {
  const std::u16string unchanged = fuzz::cut(subject);
  const std::size_t matches = run.spans.size();
  // The result every "$0" replacement must give when nothing stops it early.
  const std::u16string identity = run.failed() ? subject : unchanged;

  FUZZ_CHECK(re::regex_replace(handle, subject, u"$0") == identity);
  FUZZ_CHECK(re::regex_replace_first(handle, subject, u"$0") ==
             (matches == 0 && run.failed() ? subject : unchanged));

  for (const std::u16string& text : s.texts) {
    for (const std::u16string& result : {re::regex_replace(handle, subject, text),
                                         re::regex_replace_first(handle, subject, text)}) {
      FUZZ_CHECK(result == subject || result.find(u'\0') == std::u16string::npos);
    }
  }

  // "$0" from callbacks that go on; the text and handle forms see the same matches.
  std::vector<std::u16string> seen;
  const std::u16string by_text = re::regex_replace(
      handle, subject, text_callback([&](const std::u16string& matched, bool&) {
        FUZZ_CHECK(seen.size() < matches);
        const auto [start, end] = run.spans[seen.size()];
        FUZZ_CHECK(matched == fuzz::cut(subject.substr(static_cast<std::size_t>(start),
                                                       static_cast<std::size_t>(end - start))));
        seen.push_back(matched);
        return u"$0";
      }));
  FUZZ_CHECK(by_text == identity);
  FUZZ_CHECK(seen.size() == matches);

  std::size_t calls = 0;
  const std::u16string by_handle = re::regex_replace(
      handle, subject, handle_callback([&](const re::matcher_ptr& current, bool&) {
        FUZZ_CHECK(calls < seen.size());
        FUZZ_CHECK(re::get_group(current, 0) == seen[calls]);
        FUZZ_CHECK(re::get_group(current, -1) == seen[calls]);
        FUZZ_CHECK(re::get_group_count(current) == run.group_count + 1);
        ++calls;
        return u"$0";
      }));
  FUZZ_CHECK(by_handle == identity);
  FUZZ_CHECK(calls == matches);

  // "$0" from callbacks that stop at match k.
  const std::size_t k = s.stop_at;
  const bool stops = k < matches;
  calls = 0;
  const std::u16string stopped_bool =
      re::regex_replace(handle, subject, text_callback([&](const std::u16string&, bool& go_on) {
                          go_on = calls++ != k;
                          return u"$0";
                        }));
  FUZZ_CHECK(stopped_bool == (stops ? through_match(subject, run, k) : identity));
  FUZZ_CHECK(calls == (stops ? k + 1 : matches));

  calls = 0;
  const std::u16string stopped_handle =
      re::regex_replace(handle, subject, handle_callback([&](const re::matcher_ptr&, bool& go_on) {
                          go_on = calls++ != k;
                          return u"$0";
                        }));
  FUZZ_CHECK(stopped_handle == stopped_bool);

  calls = 0;
  const std::u16string stopped_termination = re::regex_replace(
      handle, subject,
      termination_callback([&](const std::u16string&, re::ECallbackTermination& how) {
        if (calls++ == k) how = s.termination;
        return u"$0";
      }));
  const bool stops_here = stops && s.termination != re::eContinue;
  FUZZ_CHECK(calls == (stops_here ? k + 1 : matches));
  if (!stops_here) {
    FUZZ_CHECK(stopped_termination == identity);
  } else if (s.termination == re::eStopAndTruncate) {
    FUZZ_CHECK(stopped_termination == through_match(subject, run, k));
  } else {
    FUZZ_CHECK(stopped_termination == unchanged);
  }

  // Fuzzed texts and decisions: never more calls than matches, no U+0000 in a result.
  calls = 0;
  const std::u16string fuzzed_bool =
      re::regex_replace(handle, subject, text_callback([&](const std::u16string&, bool& go_on) {
                          go_on = calls != k;
                          return s.text(calls++);
                        }));
  FUZZ_CHECK(calls <= matches);
  FUZZ_CHECK(fuzzed_bool == subject || fuzzed_bool.find(u'\0') == std::u16string::npos);
  calls = 0;
  const std::u16string fuzzed_termination = re::regex_replace(
      handle, subject,
      termination_callback([&](const std::u16string&, re::ECallbackTermination& how) {
        if (calls == k) how = s.termination;
        return s.text(calls++);
      }));
  FUZZ_CHECK(calls <= matches);
  FUZZ_CHECK(fuzzed_termination == subject ||
             fuzzed_termination.find(u'\0') == std::u16string::npos);

  // An empty callback is noticed at the first match.
  const bool first_match = matches > 0;
  const auto throws = [](auto&& replace) {
    try {
      replace();
    } catch (const std::bad_function_call&) {
      return true;
    }
    return false;
  };
  FUZZ_CHECK(throws([&] { re::regex_replace(handle, subject, text_callback()); }) == first_match);
  FUZZ_CHECK(throws([&] { re::regex_replace(handle, subject, handle_callback()); }) == first_match);
  FUZZ_CHECK(throws([&] { re::regex_replace(handle, subject, termination_callback()); }) ==
             first_match);
}

void check_empty_handle(const std::u16string& subject, const std::u16string& replacement) {
  const re::matcher_ptr empty;
  bool called = false;
  FUZZ_CHECK(re::regex_replace(empty, subject, replacement).empty());
  FUZZ_CHECK(re::regex_replace_first(empty, subject, replacement).empty());
  FUZZ_CHECK(re::regex_replace(empty, subject, text_callback([&](const std::u16string&, bool&) {
                                 called = true;
                                 return u"";
                               }))
                 .empty());
  FUZZ_CHECK(re::regex_replace(empty, subject, handle_callback([&](const re::matcher_ptr&, bool&) {
                                 called = true;
                                 return u"";
                               }))
                 .empty());
  FUZZ_CHECK(
      re::regex_replace(empty, subject,
                        termination_callback([&](const std::u16string&, re::ECallbackTermination&) {
                          called = true;
                          return u"";
                        }))
          .empty());
  FUZZ_CHECK(!called);
}

void check_oneshot(const std::u16string& subject, const std::u16string& pattern,
                   std::uint32_t options, const fuzz::icu_run& run, const script& s) {
  std::size_t calls = 0;
  const std::u16string same = re::regex_replace(
      subject, pattern,
      [&](const std::u16string&, bool&) {
        ++calls;
        return std::u16string(u"$0");
      },
      options);
  if (!run.compiled || run.failed()) {
    FUZZ_CHECK(same == subject);
  } else {
    FUZZ_CHECK(same == fuzz::cut(subject));
  }
  FUZZ_CHECK(calls == run.spans.size());

  calls = 0;
  const std::u16string result = re::regex_replace(
      subject, pattern,
      [&](const std::u16string&, bool& go_on) {
        go_on = calls != s.stop_at;
        return s.text(calls++);
      },
      options);
  FUZZ_CHECK(calls <= run.spans.size());
  FUZZ_CHECK(result == subject || result.find(u'\0') == std::u16string::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::input in(data, size);
  const std::uint32_t options = in.u32();
  script s{in.byte(), termination_of(in.byte()), {}};
  const std::u16string pattern = in.text();
  s.texts[0] = in.text();
  s.texts[1] = in.text();
  const std::u16string subject = in.rest(fuzz::kMaxSubject);

  // Handles search the whole subject with the whole prepared pattern; the
  // one-shot callback form cuts both at U+0000 and prepares nothing.
  const auto run = fuzz::screen(re::prepare_text(pattern, options), options, subject);
  const auto run_oneshot = fuzz::screen(fuzz::cut(pattern), options, fuzz::cut(subject));
  if (!run || !run_oneshot) return fuzz::kReject;

  check_empty_handle(subject, s.texts[0]);
  re::expected_result<re::matcher_ptr> compiled = re::createExpectedMatcher(pattern, options);
  FUZZ_CHECK(compiled.has_error() == !run->compiled);
  if (!compiled.has_error()) check_handle(compiled.value(), subject, *run, s);
  check_oneshot(subject, pattern, options, *run_oneshot, s);
  return 0;
}
