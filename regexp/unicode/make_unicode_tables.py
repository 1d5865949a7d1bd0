#!/usr/bin/env python3
"""Generate the Unicode 5.1.0 tables of the regular-expression engine.

Reads UnicodeData.txt, Blocks.txt and Scripts.txt of version 5.1.0 and writes
one C++ source with the constant tables declared in unicode_tables.h:

  CharTable        one row per assigned character (code, flags, upper, lower)
  CharRanges       the ten First/Last runs of UnicodeData.txt
  CharPageFirstRow per 256-code page, the first CharTable row at or above it
  CharClassIndex,  two-stage map from every code to its CharTable row or
  CharClassBlocks  CharRanges row, for the matcher's per-character checks
  BlockTable       171 blocks, named "In" + the name without blanks and hyphens
  ScriptTable      77 scripts, each a slice of ScriptRangeTable
  ScriptRangeTable one (low, high) pair per data line of Scripts.txt

Every count that the engine's behaviour depends on is checked against the
published figures of version 5.1.0; the script exits non-zero (and so fails
the build) when any of them differs, so a wrong or newer data file cannot slip
in unnoticed.

Usage: make_unicode_tables.py --ucd DIR --out FILE
"""

import argparse
import os
import sys

# General category -> (flags word, rows in CharTable for version 5.1.0). The
# flags hold the group above bit 7 and one sub-bit below it.
CATEGORIES = {
    "Ll": (0x81, 1748), "Lu": (0x82, 1421), "Lt": (0x84, 31), "Lm": (0x88, 187),
    "Lo": (0x90, 8671),
    "Mn": (0x101, 1032), "Mc": (0x102, 236), "Me": (0x104, 13),
    "Zs": (0x201, 18), "Zl": (0x202, 1), "Zp": (0x204, 1),
    "Sm": (0x401, 945), "Sc": (0x402, 41), "Sk": (0x404, 99), "So": (0x408, 3225),
    "Nd": (0x801, 370), "Nl": (0x802, 214), "No": (0x804, 349),
    "Pd": (0x1001, 20), "Ps": (0x1002, 72), "Pe": (0x1004, 71), "Pi": (0x1008, 12),
    "Pf": (0x1010, 10), "Pc": (0x1020, 10), "Po": (0x1040, 315),
    "Cc": (0x2001, 65), "Cf": (0x2002, 139), "Co": (0x2004, 0), "Cs": (0x2008, 0),
    "Cn": (0x2010, 0),
}
EXPECTED_CHAR_ROWS = 19316
EXPECTED_UPPER_ROWS = 1027
EXPECTED_LOWER_ROWS = 1023
EXPECTED_LAST_CODE = 0xE01EF

EXPECTED_RANGES = [
    (0x3400, 0x4DB5, 0x90), (0x4E00, 0x9FC3, 0x90), (0xAC00, 0xD7A3, 0x90),
    (0xD800, 0xDB7F, 0x2008), (0xDB80, 0xDBFF, 0x2008), (0xDC00, 0xDFFF, 0x2008),
    (0xE000, 0xF8FF, 0x2004), (0x20000, 0x2A6D6, 0x90), (0xF0000, 0xFFFFD, 0x2004),
    (0x100000, 0x10FFFD, 0x2004),
]

EXPECTED_BLOCKS = 171
EXPECTED_BLOCK_ROWS = {
    "InBasicLatin": (0, 0x7F), "InCyrillic": (0x400, 0x4FF), "InThai": (0xE00, 0xE7F),
    "InCJKUnifiedIdeographs": (0x4E00, 0x9FFF), "InPhagspa": (0xA840, 0xA87F),
    "InLatin1Supplement": (0x80, 0xFF),
    "InSupplementaryPrivateUseAreaB": (0x100000, 0x10FFFF),
}

# Scripts in order of first appearance in Scripts.txt, with their line counts.
EXPECTED_SCRIPTS = """
Common 530, Latin 42, Greek 51, Cyrillic 18, Armenian 6, Hebrew 22, Arabic 36,
Syriac 7, Thaana 3, Devanagari 17, Bengali 25, Gurmukhi 21, Gujarati 21,
Oriya 25, Tamil 24, Telugu 18, Kannada 20, Malayalam 18, Sinhala 13, Thai 10,
Lao 22, Tibetan 34, Myanmar 33, Georgian 4, Hangul 12, Ethiopic 31,
Cherokee 1, Canadian_Aboriginal 3, Ogham 4, Runic 2, Khmer 17, Mongolian 13,
Hiragana 3, Katakana 8, Bopomofo 2, Han 15, Yi 4, Old_Italic 2, Gothic 4,
Deseret 1, Inherited 22, Tagalog 3, Hanunoo 2, Buhid 2, Tagbanwa 3, Limbu 12,
Tai_Le 2, Linear_B 7, Ugaritic 2, Shavian 1, Osmanya 2, Cypriot 6, Braille 1,
Buginese 4, Coptic 6, New_Tai_Lue 6, Glagolitic 2, Tifinagh 2,
Syloti_Nagri 11, Old_Persian 4, Kharoshthi 11, Balinese 17, Cuneiform 3,
Phoenician 3, Phags_Pa 2, Nko 7, Sundanese 10, Lepcha 8, Ol_Chiki 4, Vai 6,
Saurashtra 6, Kayah_Li 4, Rejang 4, Lycian 1, Carian 1, Lydian 2, Cham 13
"""
EXPECTED_SCRIPT_RANGES = 1344

PAGE_SHIFT = 8
CLASS_SHIFT = 7
CODE_SPACE = 0x110000
RANGE_CLASS = 0xFFF0


class TableError(Exception):
    pass


def check(condition, message):
    if not condition:
        raise TableError(message)


def data_lines(path):
    """Yields the data part of each non-empty, non-comment line."""
    with open(path, encoding="utf-8") as f:
        for line in f:
            text = line.split("#", 1)[0].strip()
            if text:
                yield text


def parse_range(text):
    if ".." in text:
        low, high = text.split("..")
        return int(low, 16), int(high, 16)
    code = int(text, 16)
    return code, code


def read_unicode_data(path):
    rows = []
    ranges = []
    first = None
    for text in data_lines(path):
        fields = text.split(";")
        check(len(fields) == 15, "UnicodeData.txt: bad line %r" % text)
        code = int(fields[0], 16)
        name = fields[1]
        check(fields[2] in CATEGORIES, "unknown category %r" % fields[2])
        flags = CATEGORIES[fields[2]][0]
        if name.endswith(", First>"):
            first = (code, flags)
            continue
        if name.endswith(", Last>"):
            check(first is not None and first[1] == flags, "unpaired Last line at %X" % code)
            ranges.append((first[0], code, flags))
            first = None
            continue
        upper = int(fields[12], 16) if fields[12] else 0
        lower = int(fields[13], 16) if fields[13] else 0
        # A row keeps one mapping at most; the titlecase letters keep the
        # lowercase one, which is the only one the engine reads.
        if upper and lower:
            upper = 0
        rows.append((code, flags, upper, lower, fields[2]))
    return rows, ranges


def check_unicode_data(rows, ranges):
    check(len(rows) == EXPECTED_CHAR_ROWS,
          "CharTable: %d rows, expected %d" % (len(rows), EXPECTED_CHAR_ROWS))
    counts = {name: 0 for name in CATEGORIES}
    for row in rows:
        counts[row[4]] += 1
    for name, (_, expected) in CATEGORIES.items():
        check(counts[name] == expected,
              "category %s: %d rows, expected %d" % (name, counts[name], expected))
    codes = [row[0] for row in rows]
    check(codes == sorted(set(codes)), "CharTable codes are not strictly rising")
    check(codes[0] == 0 and codes[-1] == EXPECTED_LAST_CODE, "CharTable first/last code")
    uppers = sum(1 for row in rows if row[2])
    lowers = sum(1 for row in rows if row[3])
    check(uppers == EXPECTED_UPPER_ROWS, "rows with upper: %d" % uppers)
    check(lowers == EXPECTED_LOWER_ROWS, "rows with lower: %d" % lowers)
    check(ranges == EXPECTED_RANGES, "CharRanges differ from the 5.1.0 runs")
    for low, high, flags in ranges:
        check(not any(low <= c <= high for c in codes), "range overlaps a row")
        check(flags_group(flags) != 0x100, "a range row is a mark")


def flags_group(flags):
    return flags & ~0x7F


def read_blocks(path):
    blocks = []
    for text in data_lines(path):
        span, name = [part.strip() for part in text.split(";")]
        low, high = parse_range(span)
        blocks.append(("In" + name.replace(" ", "").replace("-", ""), low, high))
    check(len(blocks) == EXPECTED_BLOCKS, "BlockTable: %d rows" % len(blocks))
    lows = [b[1] for b in blocks]
    check(lows == sorted(lows), "blocks are not in rising order")
    table = {b[0]: (b[1], b[2]) for b in blocks}
    check(len(table) == len(blocks), "duplicate block names")
    for name, span in EXPECTED_BLOCK_ROWS.items():
        check(table.get(name) == span, "block %s: %r" % (name, table.get(name)))
    return blocks


def read_scripts(path):
    names = []
    pairs = {}
    lines = 0
    for text in data_lines(path):
        span, name = [part.strip() for part in text.split(";")]
        if name not in pairs:
            names.append(name)
            pairs[name] = []
        elif names[-1] != name:
            raise TableError("script %s is not contiguous in Scripts.txt" % name)
        pairs[name].append(parse_range(span))
        lines += 1
    check(lines == EXPECTED_SCRIPT_RANGES, "Scripts.txt: %d ranges" % lines)
    expected = []
    for item in EXPECTED_SCRIPTS.replace("\n", " ").split(","):
        name, count = item.split()
        expected.append((name, int(count)))
    actual = [(name, len(pairs[name])) for name in names]
    check(actual == expected, "script names or range counts differ from 5.1.0")
    for name in names:
        lows = [p[0] for p in pairs[name]]
        check(lows == sorted(lows), "ranges of %s are not rising" % name)
    return names, pairs


def check_script_cover(rows, ranges, names, pairs):
    """Every assigned code point lies in exactly one script range, except the
    surrogates and private-use characters, which have no script."""
    assigned = set(row[0] for row in rows)
    for low, high, flags in ranges:
        if flags not in (0x2004, 0x2008):
            assigned.update(range(low, high + 1))
    covered = set()
    for name in names:
        for low, high in pairs[name]:
            span = set(range(low, high + 1))
            check(not (span & covered), "script ranges overlap at %X" % low)
            covered |= span
    check(covered == assigned, "script ranges do not cover exactly the assigned codes")


def page_first_rows(rows):
    """For each 256-code page up to the last row's page, and one past it,
    the index of the first row whose code is not below the page's start."""
    codes = [row[0] for row in rows]
    pages = (codes[-1] >> PAGE_SHIFT) + 1
    result = []
    index = 0
    for page in range(pages + 1):
        start = page << PAGE_SHIFT
        while index < len(codes) and codes[index] < start:
            index += 1
        result.append(index)
    return result


def point_classes(rows, ranges):
    """Two-stage classification of every code 0..0x10FFFF: 0 for no data,
    row + 1 for a CharTable row, RANGE_CLASS + r for CharRanges row r.
    Returns (stage 1: block number per 128 codes, stage 2: the blocks)."""
    classes = [0] * CODE_SPACE
    for index, row in enumerate(rows):
        classes[row[0]] = index + 1
    for number, (low, high, _) in enumerate(ranges):
        for code in range(low, high + 1):
            classes[code] = RANGE_CLASS + number
    size = 1 << CLASS_SHIFT
    blocks = {}
    stage1 = []
    for start in range(0, CODE_SPACE, size):
        block = tuple(classes[start:start + size])
        stage1.append(blocks.setdefault(block, len(blocks)))
    check(len(blocks) <= 256, "class blocks do not fit one byte: %d" % len(blocks))
    check(len(rows) < RANGE_CLASS, "too many rows for 16-bit classes")
    stage2 = [value for block in sorted(blocks, key=blocks.get) for value in block]
    return stage1, stage2


def dense_prefix(rows):
    """Number of leading rows whose code equals their index."""
    count = 0
    while count < len(rows) and rows[count][0] == count:
        count += 1
    return count


def emit_numbers(w, declaration, values, form, per_line):
    """A flat array of numbers, `per_line` to a line."""
    w(declaration + " = {")
    for i in range(0, len(values), per_line):
        w("    " + " ".join(form % v for v in values[i:i + per_line]))
    w("};")
    w("")


def emit(out, rows, ranges, blocks, names, pairs, command):
    w = out.append
    w("// GENERATED BY make_unicode_tables.py; DO NOT EDIT.")
    w("// " + command)
    w("//")
    w("// Unicode 5.1.0 character, block and script data; declarations and the")
    w("// meaning of each field are in regexp/unicode/unicode_tables.h.")
    w("")
    w('#include "regexp/unicode/unicode_tables.h"')
    w("")
    w("static_assert(CharTableCount == %d, \"CharTable rows\");" % len(rows))
    w("static_assert(CharRangesCount == %d, \"CharRanges rows\");" % len(ranges))
    w("static_assert(BlockTableCount == %d, \"BlockTable rows\");" % len(blocks))
    w("static_assert(ScriptTableCount == %d, \"ScriptTable rows\");" % len(names))
    w("static_assert(ScriptRangeCount == %d, \"script ranges\");"
      % sum(len(pairs[n]) for n in names))
    pages = page_first_rows(rows)
    w("static_assert(CharPageCount == %d, \"pages of CharPageFirstRow\");" % (len(pages) - 1))
    w("static_assert(CharDensePrefix == %d, \"rows whose code is their index\");"
      % dense_prefix(rows))
    stage1, stage2 = point_classes(rows, ranges)
    w("static_assert(CharClassShift == %d && CharClassRange == 0x%X, \"class encoding\");"
      % (CLASS_SHIFT, RANGE_CLASS))
    w("static_assert(CharClassBlockCount == %d, \"blocks of CharClassBlocks\");"
      % (len(stage2) >> CLASS_SHIFT))
    w("")
    w("const CharRow CharTable[CharTableCount] = {")
    for code, flags, upper, lower, _ in rows:
        w("    {0x%X, 0x%X, 0x%X, 0x%X}," % (code, flags, upper, lower))
    w("};")
    w("")
    w("const CharRangeRow CharRanges[CharRangesCount] = {")
    for low, high, flags in ranges:
        w("    {0x%X, 0x%X, 0x%X}," % (low, high, flags))
    w("};")
    w("")
    emit_numbers(w, "const uint16_t CharPageFirstRow[CharPageCount + 1]", pages, "%d,", 12)
    emit_numbers(w, "const uint8_t CharClassIndex[CharClassIndexCount]", stage1, "%d,", 16)
    emit_numbers(w, "const uint16_t CharClassBlocks[CharClassBlockCount << CharClassShift]",
                 stage2, "0x%X,", 12)
    w("const BlockRow BlockTable[BlockTableCount] = {")
    for name, low, high in blocks:
        w('    {"%s", 0x%X, 0x%X},' % (name, low, high))
    w("};")
    w("")
    w("const ScriptRow ScriptTable[ScriptTableCount] = {")
    first = 0
    for name in names:
        w('    {"%s", %d, %d},' % (name, first, len(pairs[name])))
        first += len(pairs[name])
    w("};")
    w("")
    w("const int32_t ScriptRangeTable[2 * ScriptRangeCount] = {")
    for name in names:
        w("    // %s" % name)
        for low, high in pairs[name]:
            w("    0x%X, 0x%X," % (low, high))
    w("};")
    w("")


def main(argv):
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--ucd", required=True, help="folder with the 5.1.0 UCD files")
    parser.add_argument("--out", required=True, help="C++ file to write")
    args = parser.parse_args(argv)
    try:
        rows, ranges = read_unicode_data(os.path.join(args.ucd, "UnicodeData.txt"))
        check_unicode_data(rows, ranges)
        blocks = read_blocks(os.path.join(args.ucd, "Blocks.txt"))
        names, pairs = read_scripts(os.path.join(args.ucd, "Scripts.txt"))
        check_script_cover(rows, ranges, names, pairs)
    except (TableError, OSError, ValueError) as error:
        sys.stderr.write("make_unicode_tables.py: %s\n" % error)
        return 1
    command = "python3 make_unicode_tables.py --ucd %s --out %s" % (
        os.path.basename(os.path.normpath(args.ucd)), os.path.basename(args.out))
    out = []
    emit(out, rows, ranges, blocks, names, pairs, command)
    directory = os.path.dirname(args.out)
    if directory:
        os.makedirs(directory, exist_ok=True)
    temporary = args.out + ".tmp"
    with open(temporary, "w", encoding="utf-8") as f:
        f.write("\n".join(out))
    os.replace(temporary, args.out)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
