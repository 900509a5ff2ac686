// The regex class: engine ownership, forwarding, and matching.
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <scl/regex.h>

namespace {

namespace constants = scl::regex::constants;
using scl::regex::expected_result;
using scl::regex::group_result;
using scl::regex::regex;
using scl::regex::regex_impl_abstract;
using scl::regex::regex_result;

using scl::regex::npos;

static_assert(!std::is_copy_constructible_v<regex>);
static_assert(std::is_nothrow_move_constructible_v<regex>);
static_assert(std::has_virtual_destructor_v<regex_impl_abstract>);
static_assert(std::is_abstract_v<regex_impl_abstract>);

// An engine that records every call made to it.
class RecordingEngine : public regex_impl_abstract {
 public:
  explicit RecordingEngine(std::vector<std::string>* log) : log_(log) {}
  ~RecordingEngine() override { log_->push_back("destroyed"); }

  void init(const std::u16string& p, constants::syntax_option_type o) override {
    record("init(string," + std::to_string(o) + ")");
    pattern_ = p;
  }
  void init(const char16_t* first, const char16_t* last, constants::syntax_option_type o) override {
    record("init(range," + std::to_string(o) + ")");
    pattern_.assign(first, last);
  }
  void init(const std::u16string_view& p, constants::syntax_option_type o) override {
    record("init(view," + std::to_string(o) + ")");
    pattern_ = p;
  }
  const std::u16string& getPattern() const override { return pattern_; }
  void reset(const std::u16string& s, constants::syntax_option_type o) override {
    record("reset(string," + std::to_string(o) + ")");
    subject_ = s;
  }
  void reset(const char16_t* first, const char16_t* last,
             constants::syntax_option_type o) override {
    record("reset(range," + std::to_string(o) + ")");
    subject_.assign(first, last);
  }
  void reset(const std::u16string_view& s, constants::syntax_option_type o) override {
    record("reset(view," + std::to_string(o) + ")");
    subject_ = s;
  }
  std::u16string str(std::size_t start, std::size_t length) const override {
    record("str(" + std::to_string(start) + "," + std::to_string(length) + ")");
    return subject_.substr(start, length);
  }
  regex_result match(std::uint32_t flags) override {
    record("match(" + std::to_string(flags) + ")");
    return regex_result(0, 1, this);
  }
  void getGroups(std::vector<group_result>& groups) const override {
    groups.assign(1, group_result{0, 1, this});
  }
  std::u16string replace(const std::u16string& s, const std::u16string&) override { return s; }
  expected_result<std::u16string> replace_ex(const std::u16string& s,
                                             const std::u16string&) override {
    return s;
  }
  std::u16string getGroupReference(const std::u16string& n) const override { return n; }
  int getGroupNumber(const std::string&) const override { return 0; }
  int getGroupsCount() const override {
    record("getGroupsCount");
    return 42;
  }
  expected_result<regex_result> match_ex(std::uint32_t flags) override {
    record("match_ex(" + std::to_string(flags) + ")");
    return regex_result(0, 1, this);
  }

  std::u16string subject_;

 private:
  void record(std::string call) const { log_->push_back(std::move(call)); }
  std::vector<std::string>* log_;
  std::u16string pattern_;
};

TEST(Regex, NullEngineArgumentGetsTheDefaultIcuEngine) {
  regex re(std::u16string(u"a+"), 0, nullptr);
  re.reset(u"baa");
  const regex_result m = re.match();
  EXPECT_EQ(m.start, 1u);
  EXPECT_EQ(m.end, 3u);
  EXPECT_NE(m.impl, nullptr);
  EXPECT_EQ(re.getGroupsCount(), 0);
}

TEST(Regex, CallersEngineReceivesEveryCallWithOptionsOnResetAndZeroFlagsOnMatch) {
  std::vector<std::string> log;
  auto engine = std::make_unique<RecordingEngine>(&log);
  RecordingEngine* raw = engine.get();
  {
    regex re(std::u16string(u"p"), 0x5, std::move(engine));
    EXPECT_EQ(engine, nullptr);  // the regex took it
    const std::u16string subject = u"subject";
    re.reset(subject);
    re.reset(subject.cbegin() + 1, subject.cend());
    re.reset(std::u16string_view(subject).substr(2));
    EXPECT_EQ(raw->subject_, u"bject");
    const regex_result m = re.match();
    EXPECT_EQ(m.impl, raw);
    EXPECT_FALSE(re.match_ex().has_error());
    EXPECT_EQ(re.str(1, 2), u"je");
    EXPECT_EQ(re.getGroupsCount(), 42);
  }
  const std::vector<std::string> expected = {"init(string,5)", "reset(string,5)", "reset(range,5)",
                                             "reset(view,5)",  "match(0)",        "match_ex(0)",
                                             "str(1,2)",       "getGroupsCount",  "destroyed"};
  EXPECT_EQ(log, expected);
}

TEST(Regex, EachConstructorForwardsToItsInitForm) {
  std::vector<std::string> log;
  const std::u16string pattern = u"abc";
  regex by_string(pattern, 1, std::make_unique<RecordingEngine>(&log));
  regex by_range(pattern.cbegin(), pattern.cend(), 2, std::make_unique<RecordingEngine>(&log));
  regex by_view(std::u16string_view(pattern), 4, std::make_unique<RecordingEngine>(&log));
  EXPECT_EQ(log, (std::vector<std::string>{"init(string,1)", "init(range,2)", "init(view,4)"}));
}

TEST(Regex, EmptyRangesReachTheEngineAsEmptyText) {
  std::vector<std::string> log;
  auto engine = std::make_unique<RecordingEngine>(&log);
  RecordingEngine* raw = engine.get();
  const std::u16string empty;
  regex re(empty.cbegin(), empty.cend(), 0, std::move(engine));
  EXPECT_EQ(raw->getPattern(), u"");
  re.reset(empty.cbegin(), empty.cend());
  EXPECT_EQ(raw->subject_, u"");
}

TEST(Regex, InitWithNewEngineDestroysOldOneBeforeCompiling) {
  std::vector<std::string> log;
  regex re(std::u16string(u"a"), 1, std::make_unique<RecordingEngine>(&log));
  re.init(std::u16string(u"b"), 2, std::make_unique<RecordingEngine>(&log));
  EXPECT_EQ(log, (std::vector<std::string>{"init(string,1)", "destroyed", "init(string,2)"}));
  log.clear();
  re.reset(u"x");
  EXPECT_EQ(log, (std::vector<std::string>{"reset(string,2)"}));  // the new options
}

TEST(Regex, InitWithNullEngineDestroysOldOneAndMakesDefault) {
  std::vector<std::string> log;
  regex re(std::u16string(u"a"), 0, std::make_unique<RecordingEngine>(&log));
  re.init(std::u16string(u"b+"), 0, nullptr);
  EXPECT_EQ(log, (std::vector<std::string>{"init(string,0)", "destroyed"}));
  re.reset(u"abbb");
  EXPECT_EQ(re.match().end, 4u);
}

TEST(Regex, BadPatternThrowsFromConstructorAndInit) {
  EXPECT_THROW(regex(u"(", 0), scl::regex::regex_exception);
  EXPECT_THROW(regex(std::u16string_view(u"a{2,1}"), 0), scl::regex::regex_exception);
  regex re(u"a", 0);
  EXPECT_THROW(re.init(std::u16string(u"["), constants::case_insensitive, nullptr),
               scl::regex::regex_exception);
  // The regex keeps its new engine and options; the engine has no matcher.
  re.reset(u"A");
  EXPECT_EQ(re.match().start, npos);
  const auto ex = re.match_ex();
  ASSERT_TRUE(ex.has_error());
  EXPECT_STREQ(ex.error().what(), "Matcher is not available.");
}

TEST(Regex, MatchBeforeAnyResetFindsNothing) {
  regex re(u"a", 0);
  EXPECT_EQ(re.match().start, npos);
}

TEST(Regex, CaseInsensitiveFindsOneMatchThenNone) {
  regex re(u"abc", constants::case_insensitive);
  re.reset(u"xABCx");
  const regex_result m = re.match();
  EXPECT_EQ(m.start, 1u);
  EXPECT_EQ(m.end, 4u);
  const regex_result none = re.match();
  EXPECT_EQ(none.start, npos);
  EXPECT_EQ(none.end, npos);
}

TEST(Regex, NfcPositionsCountNormalisedSubjectAndStrCutsIt) {
  regex re(u"x", constants::normalize_nfc);
  re.reset(u"e\u0301e\u0301x");
  const regex_result m = re.match();
  EXPECT_EQ(m.start, 2u);
  EXPECT_EQ(re.str(0, 3), u"\u00e9\u00e9x");
}

TEST(Regex, DiacriticsRemovalAppliesToSubjects) {
  regex re(u"caf\u00e9", constants::ignore_diacritics);
  re.reset(u"un cafe, un caf\u00e9");
  EXPECT_EQ(re.match().start, 3u);
  EXPECT_EQ(re.match().start, 12u);
  EXPECT_EQ(re.match().start, npos);
}

TEST(Regex, StrOfNothingAndBeyondTheSubjectIsEmpty) {
  regex re(u"a", 0);
  re.reset(u"abc");
  EXPECT_EQ(re.str(0, 0), u"");
  EXPECT_EQ(re.str(10, 2), u"");
  EXPECT_EQ(re.str(1, 5), u"bc");
}

TEST(Regex, StrTakesPositionsAsSigned32BitValuesPinnedToTheSubject) {
  // Found by fuzzing; this is how ICU pins substrings, and it is kept.
  regex re(u"a", 0);
  re.reset(u"abc");
  const std::size_t two_to_32 = std::size_t{1} << 32;
  EXPECT_EQ(re.str(two_to_32, 3), u"abc");            // start cut to 0
  EXPECT_EQ(re.str(npos, 2), u"ab");                  // start -1 counts as 0
  EXPECT_EQ(re.str(std::size_t{1} << 31, 2), u"ab");  // INT32_MIN counts as 0
  EXPECT_EQ(re.str(0, two_to_32 + 1), u"a");          // length cut to 1
  EXPECT_EQ(re.str(1, npos), u"");                    // length -1 counts as 0
  EXPECT_EQ(re.str(3, 5), u"");                       // start at the end
}

TEST(Regex, ResetFormsAndStringLiteralsAgree) {
  const std::u16string subject = u"a1b2";
  regex re(u"\\d", 0);
  re.reset(subject.cbegin() + 2, subject.cend());
  EXPECT_EQ(re.match().start, 1u);
  re.reset(u"zz9");
  EXPECT_EQ(re.match().start, 2u);
}

TEST(Regex, MovedFromRegexHasNoEngine) {
  regex source(u"a", 0);
  regex target = std::move(source);
  source.reset(u"a");  // does nothing
  const regex_result m = source.match();
  EXPECT_EQ(m.start, npos);
  EXPECT_EQ(m.end, npos);
  EXPECT_EQ(m.impl, nullptr);
  EXPECT_TRUE(m.groups.empty());
  const auto ex = source.match_ex();
  ASSERT_TRUE(ex.has_error());
  EXPECT_STREQ(ex.error().what(), "Unknown regex implementation.");
  EXPECT_EQ(source.str(0, 1), u"");
  EXPECT_EQ(source.getGroupsCount(), 0);
  target.reset(u"ba");
  EXPECT_EQ(target.match().start, 1u);
}

TEST(Regex, MoveAssignmentDestroysTheEngineItReplaces) {
  std::vector<std::string> log;
  regex re(u"a", 0, std::make_unique<RecordingEngine>(&log));
  re = regex(u"b", 0);
  EXPECT_EQ(log, (std::vector<std::string>{"init(string,0)", "destroyed"}));
  re.reset(u"ab");
  EXPECT_EQ(re.match().start, 1u);
}

TEST(Regex, IcuSearchFailureGivesEmptyResultOrIcuError) {
  regex re(u"(a|aa)+$", 0);
  const std::u16string huge(1000000, u'a');
  re.reset(huge);
  EXPECT_EQ(re.match().start, npos);  // no retry for regex objects
  re.reset(huge);
  const auto ex = re.match_ex();
  ASSERT_TRUE(ex.has_error());
  EXPECT_EQ(ex.error().getErrorCodeMnemonic(), "U_REGEX_STACK_OVERFLOW");
}

TEST(Regex, GroupsCountOfDefaultEngine) { EXPECT_EQ(regex(u"(a)(b)(?:c)", 0).getGroupsCount(), 2); }

}  // namespace
