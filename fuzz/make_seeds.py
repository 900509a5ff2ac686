#!/usr/bin/env python3
"""Writes the seed corpus of the fuzz targets: fuzz/corpus/<target>/<name>.

Each seed is laid out as its target reads it (see fuzz_input.h and the comment
at the top of each target). Run it again after changing a layout:
    python3 fuzz/make_seeds.py
"""
import pathlib
import shutil
import struct

CASE_INSENSITIVE, NFC, NO_DIACRITICS = 0x1, 0x2, 0x4


def units(text):
    """The fuzz input bytes for `text`, one UTF-16 unit at a time."""
    out = bytearray()
    data = text.encode("utf-16-le", "surrogatepass")
    for i in range(0, len(data), 2):
        unit = data[i] | data[i + 1] << 8
        if unit < 0x80:
            out.append(unit)
        elif 0x300 <= unit <= 0x36F:
            out.append(0x80 + unit - 0x300)
        else:
            out += bytes([0xF0, unit >> 8, unit & 0xFF])
    return bytes(out)


def text(value):
    """A length-prefixed text."""
    count = len(value.encode("utf-16-le", "surrogatepass")) // 2
    assert count < 256
    return bytes([count]) + units(value)


def raw(value):
    """A length-prefixed string of bytes."""
    return bytes([len(value)]) + value


def u8(value):
    return bytes([value & 0xFF])


def u32(value):
    return struct.pack("<I", value & 0xFFFFFFFF)


LONE_LEAD, LONE_TRAIL = "\ud800", "\udc00"
GRIN = "\U0001F600"

SEEDS = {
    "fuzz_prepare": {
        "accents": u32(NO_DIACRITICS) + units("Caf\u00e9 cre\u0300me \u1e0a\u0323"),
        "nfc": u32(NFC) + units("e\u0301 \u212b \u1100\u1161\u11a8 \u0f73"),
        "both": u32(NFC | NO_DIACRITICS) + units("A\u030a\u0323 \u00c5 \u0958"),
        "nul": u32(NFC) + units("e\u0301\0e\u0301"),
        "surrogates": u32(NO_DIACRITICS) + units(LONE_LEAD + "x\u0301" + LONE_TRAIL + GRIN + "\u0300"),
        "marks_only": u32(NO_DIACRITICS) + units("\u0300\u0301\u0345\u05b0\u064b"),
        "spacing_marks": u32(NFC | NO_DIACRITICS) + units("\u0bc6\u0bbe \u0915\u093c"),
        "case_letters": u32(CASE_INSENSITIVE) + units("\u0130\u0131\u00df\u1e9e\ufb03"),
    },
    "fuzz_prepare_map": {
        "decomposed": u32(NO_DIACRITICS) + units("Cre\u0300me bru\u0302le\u0301e"),
        "nfc": u32(NFC) + units("e\u0301 \u0958 a\u0301\u0301 \u1100\u1161\u11a8"),
        "leading_marks": u32(NO_DIACRITICS) + units("\u0301abc"),
        "nul": u32(NO_DIACRITICS) + units("ab\0c\u0301d"),
        "supplementary": u32(NO_DIACRITICS) + units("\U0001d400\u0301x" + GRIN),
        "split_vowel": u32(NFC | NO_DIACRITICS) + units("x\u0b47\u0b3ey \u0bc6\u0bbe"),
        "joined_surrogates": u32(NO_DIACRITICS) + units("a" + LONE_LEAD + "\u0301" + LONE_TRAIL + "\u0301b"),
        "identity": u32(CASE_INSENSITIVE) + units("plain " + GRIN + " text"),
    },
    "fuzz_compile": {
        "plain": u32(0) + u8(0) + u32(0) + units("(\\d{4})-(\\d{2})"),
        "named": u32(0) + u8(1) + u32(3) + units("(?<year>\\d+)-(?<month>\\d+)"),
        "mismatched_paren": u32(0) + u8(2) + u32(0x10306) + units("(a"),
        "bad_escape": u32(CASE_INSENSITIVE) + u8(3) + u32(1) + units("\\k"),
        "bad_interval": u32(0) + u8(4) + u32(0xFFFF) + units("a{2,1}"),
        "lookbehind": u32(0) + u8(1) + u32(20) + units("(?<=a*)b"),
        "bad_name": u32(0) + u8(1) + u32(22) + units("(?<1a>x)"),
        "accents": u32(CASE_INSENSITIVE | NO_DIACRITICS) + u8(0) + u32(0) + units("caf\u00e9 cre\u0300me"),
        "nul": u32(NFC) + u8(0) + u32(1) + units("a\0("),
        "surrogates": u32(0) + u8(1) + u32(14) + units("[" + LONE_LEAD + "-" + GRIN + "]"),
        "mark_after_backslash": u32(NO_DIACRITICS) + u8(0) + u32(0) + units("\\\u0301"),
        "property": u32(0) + u8(1) + u32(4) + units("\\p{Nonspacing_Mark}+\\p{Bogus}"),
    },
    "fuzz_handle_search": {
        "date": u32(0) + text("(\\d{4})-(\\d{2})") + units("due 2026-11"),
        "whole": u32(0) + text("\\d+") + units("2026"),
        "accents": u32(CASE_INSENSITIVE | NO_DIACRITICS) + text("cafe") + units("Caf\u00e9!"),
        "nfc": u32(NFC) + text("e\u0301") + units("caf\u00e9"),
        "nul": u32(0) + text("b") + units("a\0b"),
        "nul_in_pattern": u32(0) + text("a\0b") + units("a"),
        "groups": u32(0) + text("(a)|(b)(c)?") + units("xbz"),
        "named": u32(0) + text("(?<w>\\w+) (?<n>\\d+)") + units("caf\u00e9 12"),
        "surrogates": u32(0) + text(GRIN + "|" + LONE_TRAIL) + units("x" + LONE_TRAIL + GRIN),
        "marks": u32(NFC | NO_DIACRITICS) + text("a.") + units("a\u0301\u0302\u0303b\u0300"),
    },
    "fuzz_handle_replace": {
        "date": u32(0) + u8(255) + u8(0) + text("(\\d{4})-(\\d{2})") + text("$2/$1")
        + text("${x}") + units("2026-11 and 2027-01"),
        "digits_stop": u32(0) + u8(0) + u8(1) + text("[0-9]") + text("#") + text("\\$")
        + units("a1b2c"),
        "truncate": u32(0) + u8(1) + u8(2) + text("[0-9]") + text("$0!") + text("") + units("a1b2c3"),
        "seven": u32(0) + u8(0) + u8(3) + text("[0-9]") + text("#") + text("#") + units("a1b2c"),
        "empty_matches": u32(0) + u8(255) + u8(0) + text("x*") + text("-") + text("$0")
        + units("abc"),
        "named": u32(CASE_INSENSITIVE) + u8(255) + u8(0) + text("(?<word>\\w+)")
        + text("<${word}>") + text("$9") + units("Caf\u00e9 cr\u00e8me"),
        "nul": u32(0) + u8(255) + u8(0) + text("b") + text("[$0]") + text("\\u0000")
        + units("ab\0b"),
        "accents": u32(NO_DIACRITICS) + u8(255) + u8(0) + text("e") + text("E") + text("$0")
        + units("e\u0301 \u00e9 e"),
        "surrogates": u32(0) + u8(255) + u8(0) + text(".") + text("$0$0") + text("x")
        + units(GRIN + LONE_LEAD + "a"),
    },
    "fuzz_oneshot_replace": {
        "accents": u32(CASE_INSENSITIVE | NO_DIACRITICS) + text("cafe") + text("tea")
        + units("Caf\u00e9 cr\u00e8me"),
        "groups": u32(0) + text("(\\d{4})-(\\d{2})") + text("$2/$1") + units("2026-11 and 2027-01"),
        "dollar": u32(0) + text("a") + text("\\$") + units("banana"),
        "bad_replacement": u32(0) + text("a") + text("$x") + units("aaa"),
        "bad_pattern": u32(NFC) + text("(") + text("x") + units("e\u0301(\0rest"),
        "nul": u32(0) + text("a") + text("b") + units("aa\0aa"),
        "surrogates": u32(0) + text(LONE_LEAD) + text(GRIN) + units(LONE_LEAD + "x" + LONE_LEAD),
        "marks": u32(NFC) + text("\u00e9") + text("[$0]") + units("e\u0301\u0323 \u00e9"),
        # For the UTF-8 form the field bytes are read as UTF-8: these are ill-formed.
        "invalid_utf8": u32(0) + bytes([2, 0xF0, 0x9F]) + text("#") + bytes([0xC3, 0xA9, 0xFF, 0x80, 0x61]),
        "utf8_accents": u32(CASE_INSENSITIVE) + raw("\u00e9".encode()) + raw(b"e")
        + "caf\u00e9 CAF\u00c9".encode(),
    },
    "fuzz_escape": {
        "syntax_characters": u32(0) + units("-[]{}()*+?.,\\^$|#"),
        "white_space": u32(0) + units("a b\tc\u00a0d\u2028e\u3000"),
        "sentence": u32(CASE_INSENSITIVE) + units("1+1=2? (yes) $5 \\o/"),
        "accents": u32(NO_DIACRITICS) + units("caf\u00e9 (cr\u00e8me) .\u0301"),
        "nfc": u32(NFC) + units("e\u0301 \u212b ($)"),
        "nul": u32(0) + units("a.b\0c.d"),
        "surrogates": u32(0) + units(GRIN + "." + LONE_LEAD + "*" + LONE_TRAIL),
        "backslashes": u32(0) + units("\\Q.\\E \\u0041 \\\\"),
        "case": u32(CASE_INSENSITIVE) + units("Stra\u00dfe \u0130stanbul \u212a \ufb03"),
    },
    "fuzz_regex_walk": {
        "named": u32(NO_DIACRITICS) + u8(0) + raw(b"word") + raw(b"n") + u8(2) + u8(1)
        + u8(0) + u32(0) + u32(5) + text("(?<word>\\w+) (?<n>\\d+)")
        + units("Caf\u00e9 12, cr\u00e8me 7"),
        "digits": u32(0) + u8(0b0101) + raw(b"0") + raw(b"2x") + u8(0xFF) + u8(0)
        + u8(0) + u32(1) + u32(2) + text("\\d+") + units("a1b22"),
        "empty_matches": u32(0) + u8(0b0010) + raw(b"") + raw(b"x") + u8(3) + u8(0)
        + u8(0) + u32(2) + u32(1) + text("a*") + units("baaac"),
        "optional_groups": u32(CASE_INSENSITIVE) + u8(0b1011) + raw(b"a") + raw(b"-1") + u8(1)
        + u8(2) + u8(0) + u32(0) + u32(3) + text("(?<a>x)|(y)") + units("XyY"),
        "nul": u32(0) + u8(0b1000) + raw(b"1") + raw(b"9") + u8(1) + u8(0) + u8(0) + u32(0)
        + u32(9) + text("b") + units("ab\0b"),
        "pointer_nul": u32(0) + u8(0b1011) + raw(b"g") + raw(b"0") + u8(0) + u8(0) + u8(0)
        + u32(0) + u32(1) + text("(?<g>.)\0(") + units("xy\0z"),
        "nfc_length": u32(NFC) + u8(0) + raw(b"") + raw(b"") + u8(0) + u8(0) + u8(0) + u32(0)
        + u32(4) + text("\u00e9") + units("e\u0301x\u00e9"),
        "names_in_subject": u32(0) + u8(0) + raw(b"year") + raw(b"") + u8(0) + u8(1) + u8(0)
        + u32(0) + u32(4) + text("(?<year>\\d+)") + units("(?<x1>a) 2026 ?<Bad-name>"),
        "surrogates": u32(CASE_INSENSITIVE) + u8(0) + raw(b"\xff") + raw(b"") + u8(0) + u8(0)
        + u8(0) + u32(0) + u32(2) + text(".") + units(GRIN + LONE_LEAD + LONE_TRAIL),
        "far_probe": u32(0) + u8(0) + raw(b"") + raw(b"") + u8(0) + u8(0) + u8(0b0110) + u32(0)
        + u32(3) + text("a") + units("abc"),
    },
    "fuzz_search_fold": {
        "lodz": text("lodz") + text("<>") + units("\u0141\u00f3d\u017a and Lodz, \u0141OD\u0179"),
        # The text and the query as UTF-8 bytes: the UTF-8 checks read the input's own bytes.
        "lodz_utf8": text("lodz") + text("#") + "\u0141\u00f3d\u017a and Lodz".encode(),
        "utf8_query": raw("\u0141\u00f3d\u017a".encode()) + text("#") + "lodz LODZ \u0141\u00f3d\u017a".encode(),
        "ill_formed_utf8": text("a") + text("z")
        + bytes([0x61, 0xC3, 0x28, 0xED, 0xA0, 0x80, 0xF0, 0x9F, 0x98, 0x61, 0xFF, 0xE2, 0x82]),
        "eszett": text("ss") + text("") + units("Stra\u00dfe STRASSE \u00df s"),
        "marks": text("e") + text("E") + units("e\u0301 \u00e9 e\u00ad e\u0323\u0301"),
        "emoji": text("\U0001F469") + text("x") + units("\U0001F469\u200d\U0001F4BB \U0001F469 \U0001F44D\U0001F3FD"),
        "thai": text("\u0e01") + text("-") + units("\u0e40\u0e01 \u0e44\u0e01\u0e48 \u0e01\u0e33 \u0e4d\u0e32"),
        "kana_hangul": text("\uff76\uff80\uff76\uff85") + text("")
        + units("\u30ab\u30bf\u30ab\u30ca \u304b\u305f\u304b\u306a \uac00 \u1100\u1161"),
        "surrogates": text(LONE_LEAD + "a") + text("!") + units("x" + LONE_LEAD + "a" + LONE_TRAIL + GRIN),
        "nul_and_soft_hyphen": text("ab") + text("") + units("a\0b a\u00adb ab"),
        "middle_dot": text("ll") + text("") + units("col\u00b7lecci\u00f3 L\u00b7L l\u00b7"),
        "folds_to_nothing": text("\u0301\u00ad") + text("x") + units("a\u0301\u00ad"),
        "virama": text("\u0939\u093f\u0928\u0926\u0940") + text("")
        + units("\u0939\u093f\u0928\u094d\u0926\u0940 \u0939\u093f\u0928\u0926\u0940"),
        "width_and_ligatures": text("usb fi") + text("")
        + units("\uff35\uff33\uff22 \ufb01 usb fi \u2122"),
    },
    "fuzz_search_regex": {
        "groups": text("(?<street>\\w+)stra\u00dfe (\\d+)(?:x)?") + units("Hauptstrasse 5, STRASSE 7"),
        "optional_groups": text("(a)|(b)(c)?") + units("xbz A\u00e1"),
        "quantified_fold": text("x\u00df+y|\ufb01{2}") + units("xssssy x\u00dfsy fifi \ufb01\ufb01"),
        "classes": text("[\u00e9\u00df]|\\p{Lu}[a-z--[e]]|[[:upper:]]\\d")
        + units("\u00c9 \u00df ss Ab \u00c9e E\u0661"),
        "empty_matches": text("x*|\u0301") + units("a\u00df\u00ad e\u0301 \U0001F469\u200d\U0001F4BB"),
        "quoted": text("\\Qa.b(\u00df)*\\E") + units("A.B(SS)* a.b(\u00df)*"),
        "backslash_before_end": text("\\Qa\\\\E") + units("a\\ A\\"),
        "look_around": text("(?<=\u00df)e|e(?=\u00df)|\\be\\b") + units("sse ess \u00e9 de"),
        "back_reference": text("(?<c>\\w)\\k<c>(\\w)\\2") + units("\u00c9eAa aA\u00e1A"),
        "flags": text("(?ix) s t r a \u00df e  # comment") + units("STRASSE stra\u00dfe"),
        "escapes": text("caf\\u00e9|\\x{1F600}|\\N{LATIN SMALL LETTER SHARP S}|a\\cIb")
        + units("CAFE " + GRIN + " SS a\tb"),
        "anchors_and_dot": text("^.|.$|\\X") + units("e\u0301\nb\r\n\u00df"),
        "mismatched_paren": text("stra\u00dfe(") + units("strasse"),
        "bad_class": text("[z-a]\u00e9") + units("e"),
        "bad_look_behind": text("(?<=a+)b") + units("ab"),
        "surrogates": text(LONE_LEAD + "|" + GRIN + "+|[" + LONE_TRAIL + "]")
        + units("x" + LONE_LEAD + GRIN + GRIN + LONE_TRAIL),
        "thai": text("\u0e01|\u0e40") + units("\u0e40\u0e01 \u0e01\u0e33"),
        "nul": text("a\0b|\\x00") + units("a\0b ab \0"),
        "middle_dot": text("l+") + units("col\u00b7lecci\u00f3 L\u00b7L"),
        "hangs_without_a_limit": text("(a?)+?b") + units("a" * 40 + "c"),
        # Free spacing between "(", "?" and the kind of group, and a comment before a quantifier.
        "free_spacing_groups": text("(?x)( ?:a) (? =\u00df) (?< =b)\u00df #c\n+")
        + units("ass bss"),
        # Letters after a backslash that ICU reads as themselves.
        "letter_escapes": text("\\K\\T+\\y|\\C") + units("K k tT y c"),
        # \G after a leading literal.
        "prefix_and_g": text("x(?<=\\G.)") + units("xxx"),
        # Word boundaries and grapheme clusters next to a lone surrogate.
        "surrogate_boundaries": text("a\\b|\\B\\X") + units("a" + LONE_LEAD + "\u1161 a"),
        # Lone surrogates that meet in the folded pattern, in a group.
        "false_pair_in_group": text("(?:" + LONE_LEAD + "\u0301" + LONE_TRAIL + ")")
        + units(LONE_LEAD + "\u0301" + LONE_TRAIL + " \U00010000"),
        "nested_negation": text("[^[^a-c]]|[[:^alpha:]&&\\p{ASCII}]|[\\W]") + units("abcd1 !"),
        "octal_and_control": text("\\0101\\0377\\cA\\c@(a)\\1\\0060") + units("A\u00ff\u0001\0aa0"),
    },
}


# Long texts: preparing more than 1024 units takes another path.
LONG = "e\u0301xy" * 350  # 1400 units, 1050 in NFC
# fuzz_search_options: a byte of options (1 match_case, 2 whole_words,
# 4 ignore_punctuation, the diacritics rule in bits 3 and 4, the locale in bits
# 5 to 7: "", da, sv, tr, de, ar, sk, ca), then as fuzz_search_fold.
CASE, WORDS, PUNCTUATION, MATCH, TYPED = 1, 2, 4, 1 << 3, 2 << 3
DANISH, SWEDISH, TURKISH, GERMAN, ARABIC, SLOVAK, CATALAN = (i << 5 for i in range(1, 8))
SEEDS["fuzz_search_options"] = {
    "match_case": bytes([CASE]) + text("Resume") + text("<>")
    + units("R\u00e9sum\u00e9, resume, RESUME, \uff32\uff25\uff33\uff35\uff2d\uff25"),
    "diacritics_match": bytes([MATCH]) + text("\u0142\u00f3d\u017a") + text("")
    + units("\u0141\u00d3D\u0179 lodz \u0141\u00f3d\u017a"),
    "typed": bytes([TYPED]) + text("caf\u00e9") + text("x") + units("CAF\u00c9 cafe caf\u00e8 \u00e9\u0301"),
    "typed_sharp_s": bytes([TYPED]) + text("strasse") + text("") + units("Stra\u00dfe \n\u0301strasse"),
    "whole_words": bytes([WORDS]) + text("cat") + text("") + units("a cat. concat cats Cat's cat\u00ad "),
    "whole_words_thai": bytes([WORDS]) + text("\u0e41\u0e21\u0e27") + text("") + units("\u0e41\u0e21\u0e27\u0e14\u0e33"),
    "punctuation": bytes([PUNCTUATION]) + text("email") + text("") + units("e-mail E mail e.mail a\u2474"),
    "every_toggle": bytes([CASE | WORDS | PUNCTUATION | TYPED]) + text("NewYork") + text("")
    + units("New York, New-York, newyork, NewYorker, l\u00b7l"),
    "accents_punctuation": bytes([MATCH | PUNCTUATION]) + text("ea") + text("") + units("e-\u0301a \u0301 l\u00b7\u0300"),
    "out_of_range": bytes([31 << 3]) + text("x") + text("") + units("x"),
    "danish": bytes([DANISH]) + text("aarhus") + text("<>") + units("Aarhus \u00c5rhus AArhus aArhus"),
    "danish_typed": bytes([DANISH | TYPED | CASE]) + text("Aa") + text("") + units("AA Aa \u00c5 aa"),
    "swedish": bytes([SWEDISH]) + text("\u00e5nger") + text("") + units("Anger \u00c5nger \u00f8l \u00f6l"),
    "turkish_case": bytes([TURKISH | CASE]) + text("\u0131") + text("") + units("I i \u0130 \u0131"),
    "german": bytes([GERMAN | WORDS]) + text("ae") + text("") + units("\u00e4 ae a\u0308e"),
    "arabic": bytes([ARABIC]) + text("\u0627\u062d\u0645\u062f") + text("")
    + units("\u0623\u062d\u0645\u062f \u0625\u062d\u0645\u062f"),
    "slovak": bytes([SLOVAK | MATCH]) + text("ch") + text("") + units("Chata chata c\u0068 \u010d"),
    "catalan": bytes([CATALAN | PUNCTUATION]) + text("l\u00b7l") + text("") + units("col\u00b7legi coll l.l"),
}
SEEDS["fuzz_prepare"]["long_nfc"] = u32(NFC | NO_DIACRITICS) + units(LONG)
SEEDS["fuzz_handle_search"]["long_nfc"] = u32(NFC) + text("(e\u0301|\u00e9)xy$") + units(LONG)
SEEDS["fuzz_regex_walk"]["long_nfc"] = (
    u32(NFC) + u8(0) + raw(b"") + raw(b"") + u8(0) + u8(0) + u8(0) + u32(1200) + u32(9)
    + text("\u00e9xy") + units(LONG))

# Inputs that once broke a property, kept so that they can be run again:
#   build/fuzz/fuzz/<target> fuzz/regressions/<target>/*
REGRESSIONS = {
    "fuzz_prepare_map": {
        # With normalize_nfc, "h", 28 U+0326, U+0336, 4 U+0326 is one stretch between NFC
        # boundaries (U+0336 sorts before the U+0326 ahead of it); it was left one piece
        # although each of the last four marks prepares on its own.
        "long_stretch_cut_short": u32(NFC) + units("\\h" + "\u0326" * 28 + "\u0336" + "\u0326" * 4 + "?"),
    },
    "fuzz_prepare": {
        # prepare_text(D800 0301 DC00 0301, ignore_diacritics) gives D800 DC00 0301: removing
        # the first mark joins the surrogates, and the mark after them is kept.
        "mark_after_joined_surrogates": u32(NO_DIACRITICS)
        + units(LONE_LEAD + "\u0301" + LONE_TRAIL + "\u0301"),
    },
    "fuzz_regex_walk": {
        # regex_search(re, subject, tuples) prepares the subject twice: "." over D800 0301 DC00
        # 0301 "a" with ignore_diacritics gives 2 tuples, the walk over the regex gives 3 matches.
        "tuples_prepare_twice": u32(NO_DIACRITICS) + u8(0) + raw(b"") + raw(b"") + u8(0) + u8(0)
        + u8(0) + u32(0) + u32(1) + text(".") + units(LONE_LEAD + "\u0301" + LONE_TRAIL + "\u0301a"),
        # regex::str(2^32, 3) on the subject "abc" gives "abc" instead of "".
        "str_start_beyond_32_bits": u32(0) + u8(0) + raw(b"") + raw(b"") + u8(0) + u8(0)
        + u8(2 | 0 << 2) + u32(0) + u32(3) + text("a") + units("abc"),
        # regex::str(0, 2^32 + 1) on the subject "abc" gives "a" instead of "abc".
        "str_length_beyond_32_bits": u32(0) + u8(0) + raw(b"") + raw(b"") + u8(0) + u8(0)
        + u8(0 | 2 << 2) + u32(0) + u32(1) + text("a") + units("abc"),
    },
}


def write(root, groups):
    for target, files in groups.items():
        folder = root / target
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        for name, data in files.items():
            (folder / name).write_bytes(data)
        print(f"{folder}: {len(files)} files")


def main():
    here = pathlib.Path(__file__).resolve().parent
    write(here / "corpus", SEEDS)
    write(here / "regressions", REGRESSIONS)


if __name__ == "__main__":
    main()
