#include "search/pattern_fold.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "search/cluster_syntax.h"
#include "search/code_points.h"
#include "search/fold_runs.h"
#include "search/folded_text.h"
#include "search/pattern_lexer.h"
#include "search/pattern_text.h"
#include "search/surrogate_stand_in.h"

namespace scl::regex::detail {
namespace {

bool is_ascii_digit(UChar32 c) { return c >= u'0' && c <= u'9'; }

// The folds of the class's members that fold to one code point (a lone
// surrogate in either form).
code_point_bits single_folds(const fold_table& table, const class_set& set) {
  const fold_runs& runs = fold_runs::of(table);
  code_point_bits folds;
  for (int32_t i = 0; i < set.members.getRangeCount(); ++i) {
    runs.set_folds_of(table, set.members.getRangeStart(i), set.members.getRangeEnd(i), folds);
  }
  for (UChar32 c = folds.next(0xD800, true); c <= 0xDFFF; c = folds.next(c + 1, true)) {
    folds.set(surrogate_stand_in(c), surrogate_stand_in(c));
  }
  return folds;
}

class pattern_folder {
 public:
  pattern_folder(const fold_table& table, std::u16string_view pattern, bool typed)
      : table_(table),
        typed_(typed),
        dot_apart_(typed && table.variant().case_level && !table.variant().shifted),
        pattern_(pattern),
        lexer_(pattern) {
    scopes_.push_back(flags{});
    if (table.variant().accents) clusters_.emplace(table, typed);
  }

  folded_pattern run() {
    for (;;) {
      lexer_.set_free_spacing(scopes_.back().free_spacing);
      const pattern_char c = lexer_.next();
      if (c.c < 0) break;
      if (c.quoted) {
        literal(c.c, c.start);
        continue;
      }
      switch (c.c) {
        case u'\\':
          escape(c);
          break;
        case u'[':
          flush(false);
          emit_class(read_bracket_set(lexer_, scopes_.back().case_insensitive), c.start);
          break;
        case u'(':
          if (skip_comment()) break;  // a comment is not there: a run goes on
          flush(false);
          keeping_end([&] { open_group(c); });
          break;
        case u')':
          flush(false);
          if (scopes_.size() > 1) scopes_.pop_back();
          keeping_end([&] { copy(c.start); });
          break;
        case u'*':
        case u'+':
        case u'?':
        case u'{':
          flush(true);
          quantifier(c);
          break;
        case u'|':
          flush(false);
          if (scopes_.size() == 1) top_level_alternation_ = true;
          copy(c.start);
          break;
        case u'^':
        case u'$':
          flush(false);
          copy(c.start);
          break;
        case u'.':
          flush(false);
          if (clusters_) {
            only_literals_ = false;
            std::u16string any;
            clusters_->append_any(any);
            emit_text(any, c.start);
          } else {
            copy(c.start);
          }
          break;
        default:
          literal(c.c, c.start);
          break;
      }
    }
    flush(false);
    out_.origin.push_back(static_cast<int32_t>(pattern_.size()));
    out_.literal = only_literals_;
    if (!top_level_alternation_) {
      out_.typed_ending = typed_ending_.accents;
      out_.typed_ending_after_letter = typed_ending_.letter;
    }
    // A prefix with surrogates is not used: the text's lone ones are shown
    // to ICU as stand-ins, and the prefix is looked for in that text.
    // Searches that start at a prefix restart the engine, which \G would see.
    // Where diacritics are matched where typed, a letter matches others.
    if (top_level_alternation_ || uses_previous_match_ || typed_ ||
        std::any_of(out_.prefix.begin(), out_.prefix.end(),
                    [](char16_t unit) { return U16_IS_SURROGATE(unit); })) {
      out_.prefix.clear();
    }
    return std::move(out_);
  }

 private:
  struct flags {
    bool case_insensitive = false;
    bool free_spacing = false;
  };

  void emit_unit(char16_t unit, int32_t origin) {
    out_.text += unit;
    out_.origin.push_back(origin);
  }

  void emit_text(std::u16string_view text, int32_t origin) {
    for (const char16_t unit : text) emit_unit(unit, origin);
    after_back_reference_ = false;
    anything_emitted_ = true;
    typed_ending_ = {};
    at_start_ = false;
  }

  // The pattern from `from` to where the lexer is, as written.
  void copy(int32_t from) {
    only_literals_ = false;
    emit_text(pattern_.substr(static_cast<std::size_t>(from),
                              static_cast<std::size_t>(lexer_.position() - from)),
              from);
  }

  void emit_code_point(UChar32 c, int32_t origin) {
    std::u16string text;
    if (U_IS_SURROGATE(c)) {  // in either form
      text += u'[';
      append_escaped(text, c);
      append_escaped(text, surrogate_stand_in(c));
      text += u']';
      emit_text(text, origin);
      return;
    }
    // A digit right after a back reference would become part of its number.
    if (stands_for_itself(c) && !(after_back_reference_ && is_ascii_digit(c))) {
      append_code_point(text, c);
    } else {
      append_escaped(text, c);
    }
    emit_text(text, origin);
  }

  void emit_class(const class_set& set, int32_t origin) {
    only_literals_ = false;
    std::u16string text;
    if (clusters_) {
      clusters_->append_class(set, text);
    } else {
      append_folded_class(table_, set, text);
    }
    emit_text(text, origin);
  }

  void literal(UChar32 c, int32_t origin) {
    append_code_point(run_, c);
    run_origin_.resize(run_.size(), origin);
  }

  // Emits the pending run of literal characters, folded; with `quantified`,
  // its last piece is made one atom for the quantifier that follows.
  void flush(bool quantified) {
    if (run_.empty()) return;
    folded_text folded;
    fold_text(table_, run_.data(), static_cast<int32_t>(run_.size()), false, folded);
    const int32_t size = folded.size;
    int32_t last_piece = size;  // where the quantified fold starts
    if (quantified) last_piece = last_character_fold(folded);
    if (quantified && last_piece < 0) {
      // Not to be told apart: the last piece.
      const int32_t last_start = size > 0 ? folded.origin[size - 1] : -1;
      const int32_t last_empty = folded.empty_pieces.empty() ? -1 : folded.empty_pieces.back();
      if (last_empty > last_start) {
        last_piece = size;  // the run ends in a piece that folds to nothing
      } else {
        last_piece = size - 1;
        while (last_piece > 0 && folded.origin[last_piece - 1] == last_start) --last_piece;
      }
    }
    if (!anything_emitted_) {
      // The run the pattern starts with: its part that is not quantified
      // starts every match.
      out_.prefix.assign(folded.units.data(), static_cast<std::size_t>(last_piece));
    }
    if (only_literals_) {
      append_literal_fold(folded);
      out_.literal_text += run_;
    }
    emit_units(folded, 0, last_piece);
    if (quantified) {
      int32_t at = last_piece;
      const bool one_code_point =
          !typed_ && at < size && (next_code_point(folded.units.data(), at, size), at == size);
      const int32_t origin = last_piece < size
                                 ? run_origin_[static_cast<std::size_t>(folded.origin[last_piece])]
                                 : run_origin_.back();
      if (one_code_point) {
        emit_units(folded, last_piece, size);
      } else {
        emit_text(u"(?:", origin);
        emit_units(folded, last_piece, size);
        emit_text(u")", origin);
      }
    }
    run_.clear();
    run_origin_.clear();
  }

  // Where, in the fold of the run, the fold of its last character (after
  // NFC) starts: the fold of the run without that character, if the run's
  // fold starts with it; -1 if not. "q" U+0301 gives 1 (the mark folds to
  // nothing), "l" U+00B7 too (the middle dot after "l"), "\u00df" gives 0.
  int32_t last_character_fold(const folded_text& folded) const {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* nfc = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status)) return -1;
    const icu::UnicodeString normalised =
        nfc->normalize(icu::UnicodeString(run_.data(), static_cast<int32_t>(run_.size())), status);
    if (U_FAILURE(status)) return -1;
    int32_t before = normalised.length();
    U16_BACK_1(normalised.getBuffer(), 0, before);
    folded_text rest;
    fold_text(table_, normalised.getBuffer(), before, false, rest);
    if (rest.size > folded.size ||
        folded.text().substr(0, static_cast<std::size_t>(rest.size)) != rest.text()) {
      return -1;
    }
    return rest.size;
  }

  // Adds a run's fold to the pattern's fold as a literal query.
  void append_literal_fold(const folded_text& folded) {
    literal_query& query = out_.literal_fold;
    const auto base = static_cast<int32_t>(query.units.size());
    if (base > 0 && folded.size > 0 && U16_IS_LEAD(query.units.back()) &&
        U16_IS_TRAIL(folded.units[0])) {
      query.false_pairs.push_back(base);  // runs apart: two characters
    }
    query.units.append(folded.text());
    for (int32_t at = 1; at < folded.size; ++at) {
      if (folded.false_pair(at)) query.false_pairs.push_back(base + at);
    }
  }

  // Whether folded units [from, to) hold two lone surrogates that meet
  // (which read as a pair; see emit_units).
  static bool has_false_pair(const folded_text& folded, int32_t from, int32_t to) {
    for (int32_t at = from + 1; at < to; ++at) {
      if (folded.false_pair(at)) return true;
    }
    return false;
  }

  void emit_units(const folded_text& folded, int32_t from, int32_t to) {
    const std::u16string_view units(folded.units.data() + from,
                                    static_cast<std::size_t>(to - from));
    if (typed_ && from < to && !has_false_pair(folded, from, to)) {
      std::u16string text;
      if (at_start_ && !clusters_->accent(code_point_at(units.data(), 0, to - from))) {
        // ICU skips the text's accents before a query's first letter: a match
        // may start with accents that are pieces of their own.
        clusters_->append_accents(text, dot_apart_);
      }
      cluster_syntax::typed_end typed_ending = clusters_->append_literal(units, text);
      // Accents alone count from the match's start: only where they start it.
      if (!typed_ending.letter && !at_start_) typed_ending = {};
      emit_text(text, run_origin_[static_cast<std::size_t>(folded.origin[from])]);
      typed_ending_ = typed_ending;
      return;
    }
    for (int32_t at = from; at < to;) {
      const int32_t origin = run_origin_[static_cast<std::size_t>(folded.origin[at])];
      if (at + 1 < to && folded.false_pair(at + 1)) {  // two lone surrogates
        emit_code_point(folded.units[at], origin);
        ++at;
        continue;
      }
      emit_code_point(next_code_point(folded.units.data(), at, to), origin);
    }
  }

  void escape(const pattern_char& backslash) {
    const pattern_char c = lexer_.next_raw();
    const bool case_insensitive = scopes_.back().case_insensitive;
    if (is_shorthand(c.c)) {
      flush(false);
      emit_class(shorthand_set(c.c), backslash.start);
    } else if (c.c == u'p' || c.c == u'P') {
      flush(false);
      emit_class(read_property(lexer_, c.c == u'P', case_insensitive), backslash.start);
    } else if (c.c == u'N') {
      literal(read_named_char(lexer_), backslash.start);
    } else if (c.c >= u'1' && c.c <= u'9') {
      flush(false);
      while (is_ascii_digit(lexer_.peek_raw())) lexer_.next_raw();
      copy(backslash.start);
      after_back_reference_ = true;
    } else if (c.c == u'k') {
      flush(false);
      for (pattern_char name = lexer_.next_raw(); name.c >= 0 && name.c != u'>';
           name = lexer_.next_raw()) {
      }
      copy(backslash.start);
    } else if (c.c < 0 || std::u16string_view(u"bBAzZGXR").find(static_cast<char16_t>(c.c)) !=
                              std::u16string_view::npos) {
      flush(false);  // an assertion or \X, \R: as written
      if (c.c == u'G') uses_previous_match_ = true;
      copy(backslash.start);
    } else {
      literal(c.c, backslash.start);  // any other escaped character stands for itself
    }
  }

  // Emits a group's parenthesis, which leaves what the pattern ends with as it was.
  template <class Emit>
  void keeping_end(Emit emit) {
    const cluster_syntax::typed_end typed_ending = typed_ending_;
    const bool at_start = at_start_;
    emit();
    typed_ending_ = typed_ending;
    at_start_ = at_start;
  }

  // Skips "(?#...)" after its "(", if that is what follows.
  bool skip_comment() {
    const pattern_lexer::mark saved = lexer_.save();
    if (opener_char().c == u'?' && opener_char().c == u'#') {
      for (pattern_char c = lexer_.next_raw(); c.c >= 0 && c.c != u')'; c = lexer_.next_raw()) {
      }
      return true;
    }
    lexer_.restore(saved);
    return false;
  }

  // The next character of a group's opening, which ICU reads skipping white
  // space in free-spacing mode (but not "#" comments).
  pattern_char opener_char() {
    if (scopes_.back().free_spacing) {
      while (u_hasBinaryProperty(lexer_.peek_raw(), UCHAR_PATTERN_WHITE_SPACE)) lexer_.next_raw();
    }
    return lexer_.next_raw();
  }
  UChar32 peek_opener_char() {
    const pattern_lexer::mark saved = lexer_.save();
    const UChar32 c = opener_char().c;
    lexer_.restore(saved);
    return c;
  }

  void open_group(const pattern_char& paren) {
    flags inner = scopes_.back();
    if (peek_opener_char() != u'?') {
      scopes_.push_back(inner);
      copy(paren.start);
      return;
    }
    opener_char();
    const UChar32 kind = peek_opener_char();
    if (kind == u'<') {
      opener_char();
      const UChar32 after = peek_opener_char();
      if (after == u'=' || after == u'!') {  // look-behind
        opener_char();
      } else {  // a named group: up to the '>'
        for (pattern_char c = opener_char(); c.c >= 0 && c.c != u'>'; c = opener_char()) {
        }
      }
    } else if (kind == u':' || kind == u'=' || kind == u'!' || kind == u'>') {
      opener_char();
    } else {
      // Flags, "(?ix-s)" for the rest of the group or "(?ix-s:...)" for a new one.
      bool on = true;
      pattern_char c = opener_char();
      for (; c.c >= 0 && c.c != u':' && c.c != u')'; c = opener_char()) {
        if (c.c == u'-') on = false;
        if (c.c == u'i') inner.case_insensitive = on;
        if (c.c == u'x') inner.free_spacing = on;
      }
      if (c.c == u')') {
        scopes_.back() = inner;
        copy(paren.start);
        return;
      }
    }
    scopes_.push_back(inner);
    copy(paren.start);
  }

  void quantifier(const pattern_char& c) {
    if (c.c == u'{') {  // read as ICU reads it: in free-spacing mode, comments too
      for (pattern_char next = lexer_.next(); next.c >= 0 && !next.is(u'}'); next = lexer_.next()) {
      }
    }
    copy(c.start);
    // A lazy or possessive mark.
    const pattern_lexer::mark saved = lexer_.save();
    const pattern_char mark = lexer_.next();
    if (mark.is(u'?') || mark.is(u'+')) {
      copy(mark.start);
    } else {
      lexer_.restore(saved);
    }
  }

  const fold_table& table_;
  bool typed_;      // diacritics matched where typed
  bool dot_apart_;  // with case: no match starts at the dot of "l\u00b7" (typed_accents.h)
  std::optional<cluster_syntax> clusters_;  // with accents
  std::u16string_view pattern_;
  pattern_lexer lexer_;
  std::vector<flags> scopes_;
  std::u16string run_;               // literal characters not folded yet
  std::vector<int32_t> run_origin_;  // for each unit of run_, its offset in the pattern
  bool after_back_reference_ = false;
  bool anything_emitted_ = false;           // syntax dropped (a comment) counts as nothing
  cluster_syntax::typed_end typed_ending_;  // how what was emitted last ends
  bool at_start_ = true;                    // nothing but group openings emitted yet
  bool only_literals_ = true;
  bool top_level_alternation_ = false;
  bool uses_previous_match_ = false;  // \G
  folded_pattern out_;
};

}  // namespace

void append_folded_class(const fold_table& table, const class_set& set, std::u16string& out) {
  append_set(single_folds(table, set), !set.negated, fold_runs::of(table).alphabet, out);
}

folded_pattern fold_pattern(const fold_table& table, std::u16string_view pattern, bool typed) {
  return pattern_folder(table, pattern, typed).run();
}

}  // namespace scl::regex::detail
