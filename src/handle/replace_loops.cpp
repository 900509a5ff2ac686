#include "handle/replace_loops.h"

#include <functional>

#include "icu/handle_matcher.h"
#include "icu/icu_string.h"
#include "icu/matcher.h"

namespace scl::regex::detail {
namespace {

// What a callback decided after its replacement was appended.
enum class after_match { go_on, stop_keeping_rest, stop_dropping_rest };

after_match decision(bool go_on) {
  return go_on ? after_match::go_on : after_match::stop_dropping_rest;
}

after_match decision(ECallbackTermination termination) {
  if (termination == eStopAndTruncate) return after_match::stop_dropping_rest;
  return termination == eContinue ? after_match::go_on : after_match::stop_keeping_rest;
}

// The loop all callback forms share. `call` is given the matched text (empty
// when `with_text` is false: the handle form reads the match itself) and the
// flag to hand to the callback, and returns the replacement text.
template <class Flag, class Call>
bool replace_loop(icu::UnicodeString& output, icu::RegexMatcher& matcher, bool with_text,
                  Flag initial, Call&& call) {
  UErrorCode status = U_ZERO_ERROR;
  for (;;) {
    // A callback's time counts toward the deadline.
    if (!find_next(matcher, status)) {
      if (U_FAILURE(status)) return false;
      matcher.appendTail(output);
      return true;
    }
    icu::UnicodeString matched;
    if (with_text) {
      matched = matcher.group(status);
      if (U_FAILURE(status)) return false;
    }
    Flag flag = initial;
    status = U_ZERO_ERROR;
    const std::u16string matched_text = with_text ? from_icu_until_nul(matched) : std::u16string();
    const std::u16string replacement = call(matched_text, flag);
    matcher.appendReplacement(output, to_icu_until_nul(replacement), status);
    if (U_FAILURE(status)) return false;
    switch (decision(flag)) {
      case after_match::stop_dropping_rest:
        return true;
      case after_match::stop_keeping_rest:
        matcher.appendTail(output);
        return true;
      case after_match::go_on:
        break;
    }
    if (status < U_ZERO_ERROR) {  // an ICU warning ends the replacement too
      matcher.appendTail(output);
      return true;
    }
  }
}

template <class Callback>
void require(const Callback& callback) {
  if (!callback) throw std::bad_function_call();
}

}  // namespace

bool replace_loop_text(icu::UnicodeString& output, icu::RegexMatcher& matcher,
                       const text_callback& callback) {
  return replace_loop(output, matcher, true, true, [&](const std::u16string& matched, bool& go_on) {
    require(callback);
    return callback(matched, go_on);
  });
}

bool replace_loop_handle(icu::UnicodeString& output, const matcher_ptr& handle,
                         const handle_callback& callback) {
  return replace_loop(output, *icu_matcher(handle), false, true,
                      [&](const std::u16string&, bool& go_on) {
                        require(callback);
                        return callback(handle, go_on);
                      });
}

bool replace_loop_termination(icu::UnicodeString& output, const matcher_ptr& handle,
                              const termination_callback& callback) {
  return replace_loop(output, *icu_matcher(handle), true, eContinue,
                      [&](const std::u16string& matched, ECallbackTermination& termination) {
                        require(callback);
                        return callback(matched, termination);
                      });
}

}  // namespace scl::regex::detail
