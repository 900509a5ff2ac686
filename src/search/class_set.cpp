#include "search/class_set.h"

#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <unicode/regex.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "icu/compile.h"
#include "icu/matcher.h"
#include "scl/regex/exception.h"
#include "search/code_points.h"

namespace scl::regex::detail {
namespace {

void throw_if_failed(UErrorCode status) {
  if (U_FAILURE(status)) throw regex_exception(status);
}

void close_over_case(icu::UnicodeSet& set) {
  set.closeOver(USET_CASE_INSENSITIVE);
  set.removeAllStrings();
}

// The members of "\p{name}" found by asking ICU's regex engine about every
// code point: for the names that only the regex compiler knows (Java's
// "javaLowerCase", "InBasicLatin", "IsL", "word", "all"). Kept per name for the
// life of the process.
icu::UnicodeSet probed_property(const std::u16string& name, bool case_insensitive) {
  static std::mutex mutex;
  static std::map<std::pair<std::u16string, bool>, icu::UnicodeSet> known;
  const std::lock_guard<std::mutex> lock(mutex);
  const auto key = std::make_pair(name, case_insensitive);
  if (const auto found = known.find(key); found != known.end()) return found->second;

  const compiled_pattern compiled =
      compile_prepared(u"\\p{" + name + u"}", case_insensitive ? constants::case_insensitive : 0);
  if (!compiled) throw compiled.error();
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::RegexMatcher> matcher = new_matcher(*compiled.pattern, status);
  throw_if_failed(status);

  // Every code point once, surrogates apart: they are asked one by one.
  icu::UnicodeString every;
  for (UChar32 c = 0; c <= 0x10FFFF; ++c) {
    if (!U_IS_SURROGATE(c)) every.append(c);
  }
  icu::UnicodeSet members;
  matcher->reset(every);
  while (matcher->find(status)) {
    members.add(every.char32At(matcher->start(status)));
  }
  throw_if_failed(status);
  for (UChar32 c = 0xD800; c <= 0xDFFF; ++c) {
    const icu::UnicodeString one(static_cast<char16_t>(c));
    matcher->reset(one);
    if (matcher->matches(status)) members.add(c);
  }
  throw_if_failed(status);
  known.emplace(key, members);
  return members;
}

// "\p{name}" as the regex compiler reads it: a UnicodeSet property where
// UnicodeSet knows the name, else what the engine matches.
icu::UnicodeSet property(const std::u16string& name, bool case_insensitive) {
  icu::UnicodeString expression(u"[\\p{");
  expression.append(icu::UnicodeString(name.data(), static_cast<int32_t>(name.size())));
  expression.append(u"}]", -1);
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeSet set(expression, case_insensitive ? USET_CASE_INSENSITIVE : 0, nullptr, status);
  if (U_FAILURE(status)) return probed_property(name, case_insensitive);
  set.removeAllStrings();
  return set;
}

// Reads "{...}" with the lexer's rules: the text between the braces. As in
// ICU, a brace counts quoted or not ("\p\Q{L}\E" is "\p{L}").
std::u16string read_braced(pattern_lexer& lexer) {
  std::u16string name;
  const pattern_char open = lexer.next();
  if (open.c != u'{') return name;
  for (pattern_char c = lexer.next(); c.c >= 0 && c.c != u'}'; c = lexer.next()) {
    append_code_point(name, c.c);
  }
  return name;
}

const icu::UnicodeSet& word_set() {
  static const icu::UnicodeSet set = [] {
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeSet word(u"[\\p{Alphabetic}\\p{M}\\p{Nd}\\p{Pc}\\u200c\\u200d]", status);
    throw_if_failed(status);
    return word;
  }();
  return set;
}

icu::UnicodeSet positive_shorthand(UChar32 letter) {
  icu::UnicodeSet set;
  UErrorCode status = U_ZERO_ERROR;
  switch (u_tolower(letter)) {
    case u'd':
      set.applyIntPropertyValue(UCHAR_GENERAL_CATEGORY_MASK, U_GC_ND_MASK, status);
      break;
    case u'w':
      set = word_set();
      break;
    case u's':
      set.applyIntPropertyValue(UCHAR_WHITE_SPACE, 1, status);
      break;
    case u'h':
      set.applyIntPropertyValue(UCHAR_GENERAL_CATEGORY_MASK, U_GC_ZS_MASK, status);
      set.add(u'\t');
      break;
    default:  // 'v'
      set.add(0x0A, 0x0D).add(0x85).add(0x2028, 0x2029);
      break;
  }
  throw_if_failed(status);
  return set;
}

// A "[...]" set, read with the states and the operator stack of ICU's
// compiler, so that ranges, literal "-" and "&", nesting and the operators
// come out as they do there.
class set_reader {
 public:
  set_reader(pattern_lexer& lexer, bool case_insensitive)
      : lexer_(lexer), case_insensitive_(case_insensitive) {}

  class_set read() {
    sets_.push_back(std::make_unique<icu::UnicodeSet>());
    begin_operand();
    run();
    class_set result;
    result.members = *sets_.back();
    result.members.removeAllStrings();
    result.negated = negated_;
    return result;
  }

 private:
  // Operators: precedence in the high half; the higher binds first, and
  // those of one level from left to right. A union of nested sets and the old
  // "-" and "&" share a level: "[[a][b]-[ab]]" is empty.
  enum op : int {
    op_start = 0 << 16 | 1,
    op_end = 1 << 16 | 2,
    op_negation = 2 << 16 | 3,
    op_case_close = 2 << 16 | 9,
    op_difference2 = 3 << 16 | 4,    // "--"
    op_intersection2 = 3 << 16 | 5,  // "&&"
    op_union = 4 << 16 | 6,          // items side by side
    op_difference1 = 4 << 16 | 7,    // "[a]-[b]"
    op_intersection1 = 4 << 16 | 8,  // "[a]&[b]"
  };

  enum class state {
    open,
    open2,
    start,
    start_dash,
    start_amp,
    after_lit,
    after_set,
    after_range,
    after_op,
    set_amp,
    lit_amp,
    set_dash,
    range_dash,
    range_amp,
    lit_dash,
    lit_dash_escape,
    escape,
  };

  icu::UnicodeSet& top() { return *sets_.back(); }

  void begin_operand() {
    ops_.push_back(op_start);
    if (case_insensitive_) ops_.push_back(op_case_close);
  }

  void evaluate(int next) {
    while ((ops_.back() & 0xFFFF0000) >= (next & 0xFFFF0000)) {
      const int pending = ops_.back();
      ops_.pop_back();
      icu::UnicodeSet& right = top();
      if (pending == op_negation) {
        right.complement();
      } else if (pending == op_case_close) {
        close_over_case(right);
      } else {
        const std::unique_ptr<icu::UnicodeSet> operand = std::move(sets_.back());
        sets_.pop_back();
        if (pending == op_union) {
          top().addAll(*operand);
        } else if (pending == op_intersection1 || pending == op_intersection2) {
          top().retainAll(*operand);
        } else {
          top().removeAll(*operand);
        }
      }
    }
  }

  void push_op(int operation) {
    evaluate(operation);
    ops_.push_back(operation);
    sets_.push_back(std::make_unique<icu::UnicodeSet>());
  }

  void nested(int operation) {
    push_op(operation);
    begin_operand();
    returns_.push_back(state::after_set);
    ++depth_;
  }

  // "]": the current set is complete. Returns whether the whole set is.
  bool end() {
    evaluate(op_end);
    ops_.pop_back();  // op_start
    if (returns_.empty()) return true;
    state_ = returns_.back();
    returns_.pop_back();
    --depth_;
    return false;
  }

  // At a "]" that is the current character: ends the current set, and reads
  // on unless it was the whole set. Returns whether it was.
  bool close() {
    if (returns_.empty()) {
      end();
      return true;
    }
    advance();
    end();
    return false;
  }

  void negate() {
    if (depth_ == 0) {
      negated_ = true;  // taken after folding
      return;
    }
    if (ops_.back() == op_case_close) {
      ops_.back() = op_negation;
      ops_.push_back(op_case_close);
    } else {
      ops_.push_back(op_negation);
    }
  }

  // A literal character first completes a pending union, "-" or "&", and
  // joins the result: "[[a-c]-[b]x]" is a, c and x.
  void literal(UChar32 c) {
    evaluate(op_union);
    top().add(c);
    last_literal_ = c;
  }

  // A "-" or "&" that is no operator joins the set being read, a pending
  // operand too ("[[a-c]-[b]-x]" has no "-"), and starts no range ("[c&-e]"
  // is "&" and c to e).
  void operator_char(UChar32 c) { top().add(c); }

  // A range starts at the last literal character, wherever it was: neither a
  // range, a class nor a nested set forgets it ("[a-c&-d]" is a to d).
  void range(UChar32 last) {
    if (last_literal_ >= 0 && last_literal_ <= last) top().add(last_literal_, last);
  }

  // A class joins the set being read, a pending operand too: "[[0-9a]-[a]\d]"
  // is empty.
  void add_set(const icu::UnicodeSet& set) { top().addAll(set); }

  // A class inside the set: its negation is applied as ICU applies it.
  void add_member(class_set member) {
    if (member.negated) member.members.complement();
    add_set(member.members);
  }

  // "[:name:]" or "[:^name:]" from the ':' just read; false (and nothing
  // read) if the text is not one.
  bool posix_property() {
    const pattern_lexer::mark saved = lexer_.save();
    bool negated = false;
    pattern_char c = lexer_.next();
    if (c.is(u'^')) {
      negated = true;
      c = lexer_.next();
    }
    std::u16string name;
    for (;;) {
      if (c.c >= 0) append_code_point(name, c.c);
      c = lexer_.next();
      if (c.quoted || c.c < 0) break;
      if (c.is(u':')) {
        c = lexer_.next();
        if (c.is(u']')) {
          icu::UnicodeSet set = property(name, case_insensitive_);
          if (negated && depth_ == 0) {
            negated_ = true;
          } else if (negated) {
            set.complement();
          }
          add_set(set);
          current_ = c;
          return true;
        }
        break;
      }
    }
    lexer_.restore(saved);
    return false;
  }

  void advance() { current_ = lexer_.next(); }

  void run() {
    state_ = state::open;
    advance();
    for (;;) {
      const pattern_char c = current_;
      switch (state_) {
        case state::open:
          if (c.is(u'^')) {
            negate();
            advance();
            state_ = state::open2;
          } else if (c.is(u':') && posix_property()) {
            if (close()) return;
          } else {
            state_ = state::open2;
          }
          break;
        case state::open2:
          if (c.is(u']')) {
            literal(c.c);
            advance();
            state_ = state::after_lit;
          } else {
            state_ = state::start;
          }
          break;
        case state::start:
        case state::after_lit:
        case state::after_set:
        case state::after_range:
        case state::after_op:
          if (c.is(u']') && state_ != state::after_op) {
            if (close()) return;
          } else if (c.is(u'[')) {
            advance();
            nested(op_union);
            state_ = state::open;
          } else if (c.is(u'\\')) {
            current_ = lexer_.next_raw();
            state_ = state::escape;
          } else if (c.is(u'-') && state_ != state::after_op) {
            advance();
            state_ = state_ == state::start       ? state::start_dash
                     : state_ == state::after_lit ? state::lit_dash
                     : state_ == state::after_set ? state::set_dash
                                                  : state::range_dash;
          } else if (c.is(u'&') && state_ != state::after_op) {
            advance();
            state_ = state_ == state::start       ? state::start_amp
                     : state_ == state::after_lit ? state::lit_amp
                     : state_ == state::after_set ? state::set_amp
                                                  : state::range_amp;
          } else {
            if (c.c < 0) return;  // not for a pattern ICU compiled
            literal(c.c);
            advance();
            state_ = state::after_lit;
          }
          break;
        case state::start_dash:
          operator_char(u'-');
          state_ = state::after_lit;
          break;
        case state::start_amp:
          operator_char(u'&');
          state_ = state::after_lit;
          break;
        case state::set_amp:
        case state::lit_amp:
        case state::range_amp:
          if (c.is(u'[') && state_ == state::set_amp) {
            advance();
            nested(op_intersection1);
            state_ = state::open;
          } else if (c.is(u'&')) {
            advance();
            push_op(op_intersection2);
            state_ = state::after_op;
          } else {
            operator_char(u'&');
            state_ = state::after_lit;
          }
          break;
        case state::set_dash:
        case state::range_dash:
          if (c.is(u'[') && state_ == state::set_dash) {
            advance();
            nested(op_difference1);
            state_ = state::open;
          } else if (c.is(u'-')) {
            advance();
            push_op(op_difference2);
            state_ = state::after_op;
          } else {
            operator_char(u'-');
            state_ = state::after_lit;
          }
          break;
        case state::lit_dash:
          if (c.is(u'-')) {
            advance();
            push_op(op_difference2);
            state_ = state::after_op;
          } else if (c.is(u'[') || c.is(u']')) {
            operator_char(u'-');
            state_ = state::after_lit;
          } else if (c.is(u'\\')) {
            current_ = lexer_.next_raw();
            state_ = state::lit_dash_escape;
          } else {
            range(c.c);
            advance();
            state_ = state::after_range;
          }
          break;
        case state::lit_dash_escape:
          if (c.c == u'N') {
            range(read_named_char(lexer_));
          } else {
            range(c.c);
          }
          advance();
          state_ = state::after_range;
          break;
        case state::escape:
          if (c.c == u'p' || c.c == u'P') {
            add_member(read_property(lexer_, c.c == u'P', case_insensitive_));
            advance();
            state_ = state::after_set;
          } else if (c.c == u'N') {
            literal(read_named_char(lexer_));
            advance();
            state_ = state::after_lit;
          } else if (is_shorthand(c.c)) {
            add_member(shorthand_set(c.c));
            advance();
            state_ = state::after_range;
          } else {
            literal(c.c);
            advance();
            state_ = state::after_lit;
          }
          break;
      }
    }
  }

  pattern_lexer& lexer_;
  bool case_insensitive_;
  std::vector<std::unique_ptr<icu::UnicodeSet>> sets_;
  std::vector<int> ops_;
  std::vector<state> returns_;
  state state_ = state::open;
  pattern_char current_;
  UChar32 last_literal_ = -1;
  int depth_ = 0;
  bool negated_ = false;
};

}  // namespace

class_set read_bracket_set(pattern_lexer& lexer, bool case_insensitive) {
  return set_reader(lexer, case_insensitive).read();
}

class_set read_property(pattern_lexer& lexer, bool negated, bool case_insensitive) {
  class_set result;
  result.members = property(read_braced(lexer), case_insensitive);
  result.negated = negated;
  return result;
}

class_set shorthand_set(UChar32 letter) {
  class_set result;
  result.members = positive_shorthand(letter);
  result.negated = u_isupper(letter);
  return result;
}

UChar32 read_named_char(pattern_lexer& lexer) {
  const std::u16string name = read_braced(lexer);
  std::string invariant;
  for (const char16_t unit : name) {
    if (unit > 0x7F) return 0xFFFD;  // not for a pattern ICU compiled
    invariant += static_cast<char>(unit);
  }
  UErrorCode status = U_ZERO_ERROR;
  const UChar32 c = u_charFromName(U_UNICODE_CHAR_NAME, invariant.c_str(), &status);
  return U_SUCCESS(status) ? c : 0xFFFD;
}

}  // namespace scl::regex::detail
