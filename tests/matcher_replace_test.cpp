// Replacement with a matcher handle, with fixed text and with callbacks.
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <scl/regex.h>

namespace {

namespace constants = scl::regex::constants;
using scl::regex::createMatcher;
using scl::regex::ECallbackTermination;
using scl::regex::get_group;
using scl::regex::get_group_count;
using scl::regex::matcher_ptr;
using scl::regex::regex_replace;
using scl::regex::regex_replace_first;
using namespace std::string_literals;

using TextCallback = std::function<std::u16string(const std::u16string&, bool&)>;
using HandleCallback = std::function<std::u16string(const matcher_ptr&, bool&)>;
using TerminationCallback =
    std::function<std::u16string(const std::u16string&, ECallbackTermination&)>;

static_assert(sizeof(ECallbackTermination) == 4);
static_assert(scl::regex::eContinue == 0 && scl::regex::eStop == 1 &&
              scl::regex::eStopAndTruncate == 2);

TextCallback constant_text(std::u16string text) {
  return [text](const std::u16string&, bool&) { return text; };
}

TEST(HandleReplace, FixedTextReplacesFirstOrEveryMatch) {
  const matcher_ptr handle = createMatcher(u"a", 0);
  EXPECT_EQ(regex_replace_first(handle, u"aaa", u"b"), u"baa");
  EXPECT_EQ(regex_replace(handle, u"aaa", u"b"), u"bbb");
}

TEST(HandleReplace, FixedTextUsesIcuReplacementSyntax) {
  const matcher_ptr handle = createMatcher(u"(\\w+)@(?<host>\\w+)", 0);
  EXPECT_EQ(regex_replace(handle, u"to anna@home", u"$2:$1"), u"to home:anna");
  EXPECT_EQ(regex_replace(handle, u"to anna@home", u"${host}"), u"to home");
  EXPECT_EQ(regex_replace_first(handle, u"a@b c@d", u"\\$1"), u"$1 c@d");
}

TEST(HandleReplace, EmptyHandleGivesEmptyStringForEveryForm) {
  const matcher_ptr empty;
  EXPECT_EQ(regex_replace_first(empty, u"abc", u"x"), u"");
  EXPECT_EQ(regex_replace(empty, u"abc", u"x"), u"");
  EXPECT_EQ(regex_replace(empty, u"abc", TextCallback{}), u"");
  EXPECT_EQ(regex_replace(empty, u"abc", HandleCallback{}), u"");
  EXPECT_EQ(regex_replace(empty, u"abc", TerminationCallback{}), u"");
  int calls = 0;
  EXPECT_EQ(regex_replace(empty, u"abc", TextCallback([&](const std::u16string&, bool&) {
                            ++calls;
                            return u"x";
                          })),
            u"");
  EXPECT_EQ(calls, 0);
}

TEST(HandleReplace, NoMatchReturnsSubjectFromEveryFormWithoutCallingTheCallback) {
  const matcher_ptr handle = createMatcher(u"z", 0);
  const std::u16string subject = u"abc";
  EXPECT_EQ(regex_replace_first(handle, subject, u"x"), subject);
  EXPECT_EQ(regex_replace(handle, subject, u"x"), subject);
  EXPECT_NO_THROW(EXPECT_EQ(regex_replace(handle, subject, TextCallback{}), subject));
  EXPECT_NO_THROW(EXPECT_EQ(regex_replace(handle, subject, HandleCallback{}), subject));
  EXPECT_NO_THROW(EXPECT_EQ(regex_replace(handle, subject, TerminationCallback{}), subject));
  EXPECT_NO_THROW(EXPECT_EQ(regex_replace(subject, u"z", TextCallback{}, 0), subject));
}

TEST(HandleReplace, EmptyCallbackThrowsBadFunctionCallAtFirstMatch) {
  const matcher_ptr handle = createMatcher(u"b", 0);
  EXPECT_THROW((void)regex_replace(handle, u"abc", TextCallback{}), std::bad_function_call);
  EXPECT_THROW((void)regex_replace(handle, u"abc", HandleCallback{}), std::bad_function_call);
  EXPECT_THROW((void)regex_replace(handle, u"abc", TerminationCallback{}), std::bad_function_call);
  EXPECT_THROW((void)regex_replace(u"abc", u"b", TextCallback{}, 0), std::bad_function_call);
}

TEST(CallbackReplace, EveryMatchGetsTheCallbacksText) {
  const matcher_ptr handle = createMatcher(u"[0-9]+", 0);
  std::vector<std::u16string> seen;
  const auto result =
      regex_replace(handle, u"a1b22c333", TextCallback([&](const std::u16string& m, bool&) {
                      seen.push_back(m);
                      return u"<" + m + u">";
                    }));
  EXPECT_EQ(result, u"a<1>b<22>c<333>");
  EXPECT_EQ(seen, (std::vector<std::u16string>{u"1", u"22", u"333"}));
}

TEST(CallbackReplace, ContinueFlagFalseDropsTheRest) {
  const matcher_ptr handle = createMatcher(u"[0-9]", 0);
  int calls = 0;
  const auto result =
      regex_replace(handle, u"a1b2c", TextCallback([&](const std::u16string&, bool& go_on) {
                      ++calls;
                      go_on = false;
                      return u"#";
                    }));
  EXPECT_EQ(result, u"a#");
  EXPECT_EQ(calls, 1);
}

TEST(CallbackReplace, ContinueFlagIsResetToTrueBeforeEachCall) {
  const matcher_ptr handle = createMatcher(u"[0-9]", 0);
  std::vector<bool> flags;
  (void)regex_replace(handle, u"1 2 3", TextCallback([&](const std::u16string&, bool& go_on) {
                        flags.push_back(go_on);
                        return u"#";
                      }));
  EXPECT_EQ(flags, (std::vector<bool>{true, true, true}));
}

TEST(CallbackReplace, HandleFormStopsThroughBoolAndAlwaysTruncates) {
  const matcher_ptr handle = createMatcher(u"[0-9]", 0);
  const auto result =
      regex_replace(handle, u"a1b2c", HandleCallback([](const matcher_ptr&, bool& go_on) {
                      go_on = false;
                      return u"#";
                    }));
  EXPECT_EQ(result, u"a#");
}

TEST(CallbackReplace, EStopKeepsTheRestEStopAndTruncateDropsIt) {
  const matcher_ptr handle = createMatcher(u"[0-9]", 0);
  auto stop_with = [&](ECallbackTermination how) {
    return regex_replace(handle, u"a1b2c",
                         TerminationCallback([how](const std::u16string&, ECallbackTermination& t) {
                           t = how;
                           return u"#";
                         }));
  };
  EXPECT_EQ(stop_with(scl::regex::eStop), u"a#b2c");
  EXPECT_EQ(stop_with(scl::regex::eStopAndTruncate), u"a#");
  EXPECT_EQ(stop_with(scl::regex::eContinue), u"a#b#c");
  // Any other non-zero value acts like eStop.
  EXPECT_EQ(stop_with(static_cast<ECallbackTermination>(7)), u"a#b2c");
  EXPECT_EQ(stop_with(static_cast<ECallbackTermination>(-1)), u"a#b2c");
}

TEST(CallbackReplace, TerminationIsResetToEContinueBeforeEachCall) {
  const matcher_ptr handle = createMatcher(u"[0-9]", 0);
  std::vector<ECallbackTermination> seen;
  (void)regex_replace(handle, u"1 2",
                      TerminationCallback([&](const std::u16string&, ECallbackTermination& t) {
                        seen.push_back(t);
                        return u"#";
                      }));
  EXPECT_EQ(seen,
            (std::vector<ECallbackTermination>{scl::regex::eContinue, scl::regex::eContinue}));
}

TEST(CallbackReplace, DollarZeroInsertsMatchBackslashDollarIsLiteralDollarXFails) {
  const matcher_ptr handle = createMatcher(u"[0-9]", 0);
  EXPECT_EQ(regex_replace(handle, u"a1b2", constant_text(u"[$0]")), u"a[1]b[2]");
  EXPECT_EQ(regex_replace(handle, u"a1b2", constant_text(u"\\$")), u"a$b$");
  EXPECT_EQ(regex_replace(handle, u"a1b2", constant_text(u"$x")), u"a1b2");
}

TEST(CallbackReplace, InvalidReplacementReturnsSubjectFromEveryForm) {
  const matcher_ptr handle = createMatcher(u"(b)", 0);
  const std::u16string subject = u"abcb";
  EXPECT_EQ(regex_replace_first(handle, subject, u"$9"), subject);
  EXPECT_EQ(regex_replace(handle, subject, u"$x"), subject);
  EXPECT_EQ(regex_replace(handle, subject,
                          HandleCallback([](const matcher_ptr&, bool&) { return u"$2"; })),
            subject);
  EXPECT_EQ(regex_replace(handle, subject,
                          TerminationCallback([](const std::u16string&, ECallbackTermination&) {
                            return u"${nope}";
                          })),
            subject);
  EXPECT_EQ(regex_replace(subject, u"b", constant_text(u"$"), 0), subject);
}

TEST(CallbackReplace, CallbackResultIsCutAtItsFirstNul) {
  const matcher_ptr handle = createMatcher(u"b", 0);
  EXPECT_EQ(regex_replace(handle, u"abc", constant_text(u"X\0Y"s)), u"aXc");
}

TEST(CallbackReplace, MatchedTextReachesCallbackCutAtNul) {
  const matcher_ptr handle = createMatcher(u"a\0b"s, 0);
  std::u16string seen;
  std::u16string seen_by_termination;
  (void)regex_replace(handle, u"xa\0by"s, TextCallback([&](const std::u16string& m, bool&) {
                        seen = m;
                        return u"";
                      }));
  (void)regex_replace(handle, u"xa\0by"s,
                      TerminationCallback([&](const std::u16string& m, ECallbackTermination&) {
                        seen_by_termination = m;
                        return u"";
                      }));
  EXPECT_EQ(seen, u"a");
  EXPECT_EQ(seen_by_termination, u"a");
}

TEST(CallbackReplace, HandleFormsMatchPastNulButResultIsCutAtFirstNul) {
  const matcher_ptr handle = createMatcher(u"x", 0);
  const std::u16string subject = u"x\0x"s;
  EXPECT_EQ(regex_replace(handle, subject, u"y"), u"y");
  int calls = 0;
  EXPECT_EQ(regex_replace(handle, subject, TextCallback([&](const std::u16string&, bool&) {
                            ++calls;
                            return u"y";
                          })),
            u"y");
  EXPECT_EQ(calls, 2);  // both "x" were matched, across the U+0000
  // Replacing the text before the U+0000 shows the output is cut, not the input.
  const matcher_ptr z = createMatcher(u"z", 0);
  EXPECT_EQ(regex_replace(z, u"a\0z"s, u"Z"), u"a");
}

TEST(OneShotCallbackReplace, MatchesOnlyUpToSubjectsFirstNul) {
  int calls = 0;
  const auto result = regex_replace(u"x\0x"s, u"x", TextCallback([&](const std::u16string&, bool&) {
                                      ++calls;
                                      return u"y";
                                    }),
                                    0);
  EXPECT_EQ(result, u"y");
  EXPECT_EQ(calls, 1);
}

TEST(OneShotCallbackReplace, PatternEndsAtFirstNul) {
  EXPECT_EQ(regex_replace(u"ab", u"a\0b"s, constant_text(u"#"), 0), u"#b");
}

TEST(OneShotCallbackReplace, UncompilablePatternReturnsSubject) {
  EXPECT_EQ(regex_replace(u"a(b", u"(", constant_text(u"#"), 0), u"a(b");
  // The whole subject, past any U+0000, comes back.
  EXPECT_EQ(regex_replace(u"a\0b"s, u"(", constant_text(u"#"), 0), u"a\0b"s);
}

TEST(OneShotCallbackReplace, HonoursOnlyCaseInsensitive) {
  EXPECT_EQ(regex_replace(u"xABCx", u"abc", constant_text(u"#"), constants::case_insensitive),
            u"x#x");
  EXPECT_EQ(regex_replace(u"xABCx", u"abc", constant_text(u"#"), 0), u"xABCx");
  // Neither NFC nor diacritics removal is applied to pattern or subject.
  EXPECT_EQ(regex_replace(u"caf\u00e9", u"cafe", constant_text(u"#"), 0x6), u"caf\u00e9");
  EXPECT_EQ(regex_replace(u"e\u0301", u"\u00e9", constant_text(u"#"), 0x7), u"e\u0301");
}

TEST(OneShotCallbackReplace, ContinueFlagFalseDropsTheRest) {
  const auto result =
      regex_replace(u"a1b2c", u"[0-9]", TextCallback([](const std::u16string&, bool& go_on) {
                      go_on = false;
                      return u"#";
                    }),
                    0);
  EXPECT_EQ(result, u"a#");
}

TEST(HandleReplace, SubjectIsTakenAsPassedWhateverTheHandleOptions) {
  const matcher_ptr nfc = createMatcher(u"\u00e9", constants::normalize_nfc);
  EXPECT_EQ(regex_replace(nfc, u"e\u0301", u"x"), u"e\u0301");
  EXPECT_EQ(regex_replace(nfc, u"\u00e9", u"x"), u"x");
  const matcher_ptr accents = createMatcher(u"cafe", constants::ignore_diacritics);
  EXPECT_TRUE(scl::regex::regex_search(accents, u"caf\u00e9", false));
  EXPECT_EQ(regex_replace(accents, u"caf\u00e9", u"tea"), u"caf\u00e9");
  EXPECT_EQ(regex_replace_first(accents, u"caf\u00e9", u"tea"), u"caf\u00e9");
  int calls = 0;
  EXPECT_EQ(regex_replace(accents, u"caf\u00e9", TextCallback([&](const std::u16string&, bool&) {
                            ++calls;
                            return u"tea";
                          })),
            u"caf\u00e9");
  EXPECT_EQ(calls, 0);
}

TEST(HandleReplace, OptionsFiveHandleSearchesPreparedButReplacesRaw) {
  const matcher_ptr handle = createMatcher(u"CAFE", 0x5);
  EXPECT_EQ(handle.get_deleter().options, 0x5u);
  EXPECT_TRUE(scl::regex::regex_search(handle, u"caf\u00e9", true));
  EXPECT_EQ(regex_replace(handle, u"caf\u00e9 cafe", u"tea"), u"caf\u00e9 tea");
}

TEST(CallbackReplace, HandleCallbackReadsGroupsOfCurrentMatch) {
  const matcher_ptr handle = createMatcher(u"(\\w+)=(\\d+)", 0);
  const auto result =
      regex_replace(handle, u"a=1, bb=22", HandleCallback([](const matcher_ptr& h, bool&) {
                      EXPECT_EQ(get_group_count(h), 3);
                      return get_group(h, 2) + u":" + get_group(h, 1);
                    }));
  EXPECT_EQ(result, u"1:a, 22:bb");
}

TEST(CallbackReplace, HandleCallbackGetsTheCallersOwnHandle) {
  const matcher_ptr handle = createMatcher(u"x", 0);
  const matcher_ptr* seen = nullptr;
  (void)regex_replace(handle, u"x", HandleCallback([&](const matcher_ptr& h, bool&) {
                        seen = &h;
                        return u"";
                      }));
  EXPECT_EQ(seen, &handle);
}

TEST(CallbackReplace, CallbackResultIsIcuReplacementSyntax) {
  const matcher_ptr handle = createMatcher(u"(?<k>\\w)(\\d)", 0);
  EXPECT_EQ(regex_replace(handle, u"a1 b2", constant_text(u"$2${k}")), u"1a 2b");
}

TEST(CallbackReplace, CallbackExceptionPropagatesAndLeavesHandleUsable) {
  const matcher_ptr handle = createMatcher(u"b", 0);
  EXPECT_THROW((void)regex_replace(handle, u"abcb",
                                   TextCallback([](const std::u16string&, bool&) -> std::u16string {
                                     throw std::runtime_error("callback failed");
                                   })),
               std::runtime_error);
  EXPECT_THROW((void)regex_replace(
                   handle, u"abcb",
                   HandleCallback([](const matcher_ptr&, bool&) -> std::u16string { throw 42; })),
               int);
  EXPECT_THROW((void)regex_replace(u"abcb", u"b",
                                   TextCallback([](const std::u16string&, bool&) -> std::u16string {
                                     throw std::runtime_error("one-shot");
                                   }),
                                   0),
               std::runtime_error);
  EXPECT_EQ(regex_replace(handle, u"abcb", u"x"), u"axcx");
}

TEST(CallbackReplace, CallbackCopiesAreReleased) {
  // A callback owning a resource: every copy the library makes must be destroyed.
  auto token = std::make_shared<int>(0);
  {
    const matcher_ptr handle = createMatcher(u"b", 0);
    TextCallback callback = [token](const std::u16string&, bool&) { return u"x"; };
    (void)regex_replace(handle, u"abc", callback);
    (void)regex_replace(u"abc", u"b", callback, 0);
  }
  EXPECT_EQ(token.use_count(), 1);
}

TEST(CallbackReplace, EmptyMatchesAreVisitedOnce) {
  const matcher_ptr handle = createMatcher(u"x*", 0);
  EXPECT_EQ(regex_replace(handle, u"ab", constant_text(u"-")), u"-a-b-");
}

TEST(HandleReplace, GroupsAfterReplacementReadLiveText) {
  const matcher_ptr handle = createMatcher(u"(b+)", 0);
  EXPECT_EQ(regex_replace_first(handle, std::u16string(u"a") + std::u16string(50, u'b'), u"x"),
            u"ax");
  // The matcher still stands on its last match; reading it must not touch freed memory.
  EXPECT_EQ(get_group(handle, 1), std::u16string(50, u'b'));
}

}  // namespace
