// tools/zevch/grep_cmd.cpp - `zevch grep`: lines that match a pattern.
#include <cstring>
#include <string>
#include <vector>

#include "tools/zevch/status_names.h"
#include "tools/zevch/tool.h"

namespace {

const char* const GrepHelp =
    "usage: zevch grep [-i -m -s -x] [-c] [-o] [-n] [-l] [--whole] [--limit N] PATTERN [FILE...]\n"
    "\n"
    "Prints the lines of each FILE (standard input when none is given, or for -)\n"
    "that the pattern matches. Each line is searched on its own, without its\n"
    "newline; with --whole the whole input is one subject, so that a pattern may\n"
    "span lines, and every line that a match touches is printed.\n"
    "\n"
    "  -i -m -s -x   pattern options: ignore case, multi-line ^ and $, dot matches\n"
    "                newline, extended (blanks and # comments in the pattern)\n"
    "  -c            print the number of matching lines (with --whole: of matches)\n"
    "  -o            print each non-empty match on a line of its own\n"
    "  -n            prefix the line number\n"
    "  -l            print only the names of files with a match\n"
    "  -e PATTERN    the pattern, also one that starts with - (or put -- before it)\n"
    "  --whole       search each input as one subject\n"
    "  --limit N     match limit of each search, in interpreter steps (default:\n"
    "                10000 plus 256 per byte of the subject)\n"
    "\n"
    "Exit status: 0 a line was selected, 1 none was, 2 an error occurred.\n"
    "Matches are coloured when standard output is a terminal (NO_COLOR turns\n"
    "this off). A file with a zero byte is treated as binary: instead of its\n"
    "lines, one note says that it matches.\n";

const char* const ColourOn = "\033[1;31m";
const char* const ColourOff = "\033[0m";

struct Context {
    Context(Pattern& pattern, const GrepSettings& settings, const Input& input)
        : p(pattern), s(settings), in(input),
          binary(input.size() > 0 && std::memchr(input.data(), 0, input.size()) != nullptr) {}
    Pattern& p;
    const GrepSettings& s;
    const Input& in;
    bool binary;
    bool binaryNoted = false;
    bool failed = false;
    int64_t failures = 0;   // lines that could not be searched
    std::vector<RegExpFindEntry> entries;
};

void prefix(const Context& c, int64_t lineNumber) {
    if (c.s.showNames) out(c.in.name() + ":");
    if (c.s.lineNumbers) out(std::to_string(lineNumber) + ":");
}

// Writes [from, to) with the matches inside it coloured.
void writeColoured(const Context& c, const uint8_t* from, const uint8_t* to, int32_t count) {
    const uint8_t* at = from;
    for (int32_t k = 0; k < count; k += c.p.captureCount) {
        const RegExpFindEntry& m = c.entries[static_cast<size_t>(k)];
        if (m.length <= 0 || m.start + m.length <= at || m.start >= to) continue;
        const uint8_t* s = m.start < at ? at : m.start;
        const uint8_t* e = m.start + m.length > to ? to : m.start + m.length;
        out(at, static_cast<size_t>(s - at));
        out(ColourOn, std::strlen(ColourOn));
        out(s, static_cast<size_t>(e - s));
        out(ColourOff, std::strlen(ColourOff));
        at = e;
    }
    out(at, static_cast<size_t>(to - at));
}

void reportSearchError(Context& c, int64_t lineNumber, zevStatus st) {
    if (!c.failed) {
        if (st == zevStatusRegExpMatchLimit) {
            toolError("%s:%lld: the match limit ran out (%s); raise it with --limit",
                      c.in.name().c_str(), static_cast<long long>(lineNumber), statusName(st));
        } else {
            toolError("%s:%lld: search failed: %s", c.in.name().c_str(),
                      static_cast<long long>(lineNumber), statusName(st));
        }
    }
    c.failed = true;
    ++c.failures;
}

// Prints the note for a binary input once; true when lines must not be printed.
bool binaryNote(Context& c) {
    if (!c.binary) return false;
    if (!c.binaryNoted) out("Binary file " + c.in.name() + " matches\n");
    c.binaryNoted = true;
    return true;
}

// One line of [line, line + length). Returns 1 selected, 0 not, -1 error.
int grepLine(Context& c, const uint8_t* line, int32_t length, int64_t lineNumber) {
    const GrepSettings& s = c.s;
    const bool needAll = !s.count && !s.filesWithMatches && !c.binary && (s.onlyMatching || s.colour);
    int32_t count = 0;
    if (needAll) {
        const zevStatus st = findAll(c.p, line, length, c.entries, count);
        if (st != zevStatusOk) {
            reportSearchError(c, lineNumber, st);
            return -1;
        }
        if (count == 0) return 0;
    } else {
        RegExpFindEntry m{};
        const int32_t found = findFirst(c.p, line, length, m);
        if (found < 0) {
            reportSearchError(c, lineNumber, found);
            return -1;
        }
        if (found == 0) return 0;
    }
    if (s.count || s.filesWithMatches) return 1;
    if (binaryNote(c)) return 1;
    if (s.onlyMatching) {
        for (int32_t k = 0; k < count; k += c.p.captureCount) {
            const RegExpFindEntry& m = c.entries[static_cast<size_t>(k)];
            if (m.length <= 0) continue;
            prefix(c, lineNumber);
            if (s.colour) out(ColourOn, std::strlen(ColourOn));
            out(m.start, static_cast<size_t>(m.length));
            if (s.colour) out(ColourOff, std::strlen(ColourOff));
            out("\n", 1);
        }
        return 1;
    }
    prefix(c, lineNumber);
    if (s.colour) {
        writeColoured(c, line, line + length, count);
    } else {
        out(line, static_cast<size_t>(length));
    }
    out("\n", 1);
    return 1;
}

bool grepLines(Context& c, int64_t& selected) {
    int64_t found = 0;
    forEachLine(c.in, [&](const uint8_t* line, size_t length, bool, int64_t number) {
        if (length > INT32_MAX) {
            toolError("%s:%lld: line too long for one search (more than 2 GB)", c.in.name().c_str(),
                      static_cast<long long>(number));
            c.failed = true;
            return true;
        }
        if (grepLine(c, line, static_cast<int32_t>(length), number) != 1) return true;
        ++found;
        return !c.s.filesWithMatches && !(c.binary && !c.s.count);
    });
    if (c.s.count) {
        if (c.s.showNames) out(c.in.name() + ":");
        out(std::to_string(found) + "\n");
    }
    if (c.s.filesWithMatches && found > 0) out(c.in.name() + "\n");
    if (c.failures > 1) {
        toolError("%s: %lld lines in all could not be searched", c.in.name().c_str(),
                  static_cast<long long>(c.failures));
    }
    selected += found;
    return !c.failed;
}

// --whole: one subject; prints each line that a match touches, once.
bool grepWhole(Context& c, int64_t& selected) {
    const uint8_t* data = c.in.data();
    const size_t size = c.in.size();
    if (size > INT32_MAX) {
        toolError("%s: too large to search as one subject (more than 2 GB)", c.in.name().c_str());
        return false;
    }
    int32_t count = 0;
    zevStatus st;
    {
        Progress progress(c.in.name(), size);
        progress.note("searching as one subject");
        st = findAll(c.p, data, static_cast<int32_t>(size), c.entries, count);
    }
    if (st != zevStatusOk) {
        reportSearchError(c, 1, st);
        return false;
    }
    const int32_t matches = count / c.p.captureCount;
    selected += matches;
    if (c.s.count) {
        if (c.s.showNames) out(c.in.name() + ":");
        out(std::to_string(matches) + "\n");
        return true;
    }
    if (c.s.filesWithMatches) {
        if (matches > 0) out(c.in.name() + "\n");
        return true;
    }
    if (matches > 0 && binaryNote(c)) return true;

    const uint8_t* end = data + size;
    const uint8_t* counted = data;   // newlines before this are in lineNumber
    int64_t lineNumber = 1;
    auto lineNumberAt = [&](const uint8_t* p) {
        for (const uint8_t* q = counted; q < p;) {
            const void* nl = std::memchr(q, '\n', static_cast<size_t>(p - q));
            if (nl == nullptr) break;
            q = static_cast<const uint8_t*>(nl) + 1;
            ++lineNumber;
        }
        if (p > counted) counted = p;
        return lineNumber;
    };
    const uint8_t* printedTo = data;   // a line start: the lines before it are out
    for (int32_t k = 0; k < count; k += c.p.captureCount) {
        const RegExpFindEntry& m = c.entries[static_cast<size_t>(k)];
        if (c.s.onlyMatching) {
            if (m.length <= 0) continue;
            prefix(c, lineNumberAt(m.start));
            if (c.s.colour) out(ColourOn, std::strlen(ColourOn));
            out(m.start, static_cast<size_t>(m.length));
            if (c.s.colour) out(ColourOff, std::strlen(ColourOff));
            out("\n", 1);
            continue;
        }
        // The lines from the one holding the match's first byte to the one
        // holding its last byte (an empty match: the line it stands in).
        const uint8_t* lastByte = m.length > 0 ? m.start + m.length - 1 : m.start;
        if (lastByte < printedTo) continue;
        const uint8_t* from = m.start > printedTo ? m.start : printedTo;
        const uint8_t* first = from;
        while (first > printedTo && first[-1] != '\n') --first;
        if (first == end) continue;   // behind the final newline: no line
        const void* nl = lastByte < end ? std::memchr(lastByte, '\n', static_cast<size_t>(end - lastByte)) : nullptr;
        const uint8_t* stop = nl != nullptr ? static_cast<const uint8_t*>(nl) : end;
        // Line by line, so that each gets its own prefix.
        for (const uint8_t* line = first; line <= stop;) {
            const void* lineEnd = std::memchr(line, '\n', static_cast<size_t>(stop - line));
            const uint8_t* e = lineEnd != nullptr ? static_cast<const uint8_t*>(lineEnd) : stop;
            prefix(c, lineNumberAt(line));
            if (c.s.colour) {
                writeColoured(c, line, e, count);
            } else {
                out(line, static_cast<size_t>(e - line));
            }
            out("\n", 1);
            line = e + 1;
        }
        printedTo = stop + 1;
    }
    return true;
}

}  // namespace

bool grepInput(Pattern& p, const GrepSettings& s, const Input& in, int64_t& selected) {
    Context c(p, s, in);
    return s.whole ? grepWhole(c, selected) : grepLines(c, selected);
}

int commandGrep(int argc, char** argv) {
    const OptionTable accepted{"conl", "e", {"whole"}, {"limit"}, true};
    Arguments a;
    int status = ExitTrouble;
    if (!parseCommand(argc, argv, accepted, "grep", GrepHelp, a, status)) return status;
    std::vector<std::string> files = a.positional;
    std::string patternText;
    if (const std::string* e = a.value("e")) {
        patternText = *e;
    } else if (!files.empty()) {
        patternText = files.front();
        files.erase(files.begin());
    } else {
        toolError("grep: no pattern given (see zevch grep --help)");
        return ExitTrouble;
    }
    Pattern p;
    p.limit = a.limit;
    if (compilePattern(patternText, a.patternOptions, p) != zevStatusOk) return ExitTrouble;

    GrepSettings s;
    s.count = a.has('c');
    s.onlyMatching = a.has('o');
    s.lineNumbers = a.has('n');
    s.filesWithMatches = a.has('l');
    s.whole = a.has(std::string("whole"));
    s.colour = colourWanted();
    s.showNames = files.size() > 1;
    int64_t selected = 0;
    const bool ok = forEachInput(files, [&](const Input& in) { return grepInput(p, s, in, selected); });
    if (!ok) return ExitTrouble;
    return selected > 0 ? ExitSelected : ExitNothing;
}
