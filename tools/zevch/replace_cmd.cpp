// tools/zevch/replace_cmd.cpp - `zevch replace`: template substitution.
#include <algorithm>
#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "tools/zevch/status_names.h"
#include "tools/zevch/tool.h"

namespace {

const char* const ReplaceHelp =
    "usage: zevch replace [-g] [-i -m -s -x] [--whole] [--limit N] PATTERN TEMPLATE [FILE...]\n"
    "\n"
    "Writes each FILE (standard input when none is given, or for -) to standard\n"
    "output with the first match of the pattern in each line replaced by the\n"
    "template, or every match with -g. With --whole the whole input is one\n"
    "subject. Empty lines are passed on as they are.\n"
    "\n"
    "Template: $& is the whole match, $1 to $999 a group (all digits after the $\n"
    "count: $12 is group 12; write $1\\2 for group 1 then the digit 2). A backslash\n"
    "is dropped and ends a digit run; it does not protect a following $. A group\n"
    "that took no part, or that the pattern does not have, inserts nothing.\n"
    "\n"
    "  -g            replace every match, not only the first\n"
    "  -i -m -s -x   pattern options, as for zevch grep\n"
    "  --whole       replace in each input as one subject\n"
    "  --limit N     match limit of each search (default: 10000 plus 256 per byte)\n"
    "\n"
    "Exit status: 0 success, 2 an error occurred (the text it concerns is passed\n"
    "on unchanged).\n";

struct Buffers {
    std::vector<uint8_t> output;
    std::vector<RegExpFindEntry> find;
};

// Replaces in one subject and writes the result. The library stops cleanly
// when the output runs out, so the call runs again with more room until the
// result is known to be complete; with -g the match array grows the same way.
//
// Completeness: every stop leaves at most as much room as the piece that did
// not fit, and a piece is either source text behind the returned offset (at
// most length - *srcLen bytes) or one expansion of the template (at most its
// length plus, per $, the longest entry found). Room above both bounds proves
// that no stop happened.
bool replaceSubject(ReplaceJob& job, Buffers& b, const uint8_t* src, int32_t length,
                    const std::string& where) {
    Pattern& p = job.pattern;
    RegExpState* state = job.global ? p.global : p.single;
    zevsRegExpSetMatchLimit(matchLimitFor(p, static_cast<size_t>(length)), state);
    const int64_t stride = p.captureCount;
    const int64_t mostFind = job.global ? stride * (2 * static_cast<int64_t>(length) + 3) : stride;
    int64_t findCapacity = job.global ? std::min<int64_t>(mostFind, stride * 4096) : stride;
    int64_t dstCapacity = 2 * static_cast<int64_t>(length) + 64 + job.templateBytes;
    for (;;) {
        findCapacity = std::min<int64_t>(findCapacity, INT32_MAX);
        dstCapacity = std::min<int64_t>(dstCapacity, INT32_MAX);
        if (static_cast<int64_t>(b.find.size()) < findCapacity) b.find.resize(static_cast<size_t>(findCapacity));
        if (static_cast<int64_t>(b.output.size()) < dstCapacity) b.output.resize(static_cast<size_t>(dstCapacity));
        int32_t srcLen = length;
        int32_t dstLen = static_cast<int32_t>(dstCapacity);
        int32_t found = static_cast<int32_t>(findCapacity);
        const zevStatus st = zevsRegExpReplace_8u(src, &srcLen, b.output.data(), &dstLen, b.find.data(),
                                                  &found, state, job.replace);
        if (st != zevStatusOk) {
            if (job.failures++ > 0) {
                // Reported once per input, counted at its end.
            } else if (st == zevStatusRegExpMatchLimit) {
                toolError("%sthe match limit ran out (%s); text passed on unchanged; raise it with --limit",
                          where.c_str(), statusName(st));
            } else {
                toolError("%sreplacement failed: %s", where.c_str(), statusName(st));
            }
            out(src, static_cast<size_t>(length));
            return false;
        }
        if (found < 1) {   // no match: the source was copied whole
            out(b.output.data(), static_cast<size_t>(dstLen));
            return true;
        }
        if (job.global && found > findCapacity - stride && findCapacity < mostFind &&
            findCapacity < INT32_MAX) {
            findCapacity = std::min(mostFind, findCapacity * 4);
            continue;
        }
        int64_t longest = 0;
        for (int32_t k = 0; k < found; ++k) longest = std::max<int64_t>(longest, b.find[static_cast<size_t>(k)].length);
        const int64_t bound = std::max<int64_t>(static_cast<int64_t>(length) - srcLen,
                                                job.templateBytes + job.templateRefs * longest);
        if (dstCapacity - dstLen > bound) {
            out(b.output.data(), static_cast<size_t>(dstLen));
            return true;
        }
        if (dstCapacity >= INT32_MAX) {
            toolError("%sthe result would pass 2 GB; text passed on unchanged", where.c_str());
            out(src, static_cast<size_t>(length));
            return false;
        }
        dstCapacity = std::max(dstCapacity * 2, static_cast<int64_t>(dstLen) + bound + 2);
    }
}

}  // namespace

bool prepareTemplate(const std::string& text, ReplaceJob& job) {
    int32_t size = 0;
    zevsRegExpReplaceGetSize(text.c_str(), &size);
    job.templateText = text;
    job.replaceBlock.assign(static_cast<size_t>(size), 0);
    job.replace = reinterpret_cast<RegExpReplaceState*>(job.replaceBlock.data());
    const zevStatus st = zevsRegExpReplaceInit(job.templateText.c_str(), job.replace);
    if (st != zevStatusOk) {
        toolError("bad template \"%s\": %s (a $ must be followed by & or a group number from 1)",
                  text.c_str(), statusName(st));
        return false;
    }
    job.templateBytes = static_cast<int64_t>(text.size());
    job.templateRefs = std::count(text.begin(), text.end(), '$');
    return true;
}

bool replaceInput(ReplaceJob& job, const Input& in) {
    job.failures = 0;
    Buffers b;
    const uint8_t* data = in.data();
    const size_t size = in.size();
    if (job.whole) {
        if (size == 0) return true;
        if (size > INT32_MAX) {
            toolError("%s: too large to replace in as one subject (more than 2 GB); passed on unchanged",
                      in.name().c_str());
            out(data, size);
            return false;
        }
        Progress progress(in.name(), size);
        progress.note("replacing in one subject");
        return replaceSubject(job, b, data, static_cast<int32_t>(size), in.name() + ": ");
    }
    bool ok = true;
    forEachLine(in, [&](const uint8_t* line, size_t length, bool newline, int64_t number) {
        if (length > INT32_MAX) {
            toolError("%s:%lld: line too long (more than 2 GB); passed on unchanged", in.name().c_str(),
                      static_cast<long long>(number));
            out(line, length);
            ok = false;
        } else if (length > 0) {
            const std::string where = in.name() + ":" + std::to_string(number) + ": ";
            if (!replaceSubject(job, b, line, static_cast<int32_t>(length), where)) ok = false;
        }
        if (newline) out("\n", 1);
        return true;
    });
    if (job.failures > 1) {
        toolError("%s: %lld lines in all were passed on unchanged", in.name().c_str(),
                  static_cast<long long>(job.failures));
    }
    return ok;
}

int commandReplace(int argc, char** argv) {
    const OptionTable accepted{"g", "", {"whole"}, {"limit"}, true};
    Arguments a;
    int status = ExitTrouble;
    if (!parseCommand(argc, argv, accepted, "replace", ReplaceHelp, a, status)) return status;
    if (a.positional.size() < 2) {
        toolError("replace: a pattern and a template are needed (see zevch replace --help)");
        return ExitTrouble;
    }
    ReplaceJob job;
    job.global = a.has('g');
    job.whole = a.has(std::string("whole"));
    job.pattern.limit = a.limit;
    if (compilePattern(a.positional[0], a.patternOptions, job.pattern) != zevStatusOk) return ExitTrouble;
    if (!prepareTemplate(a.positional[1], job)) return ExitTrouble;
    const std::vector<std::string> files(a.positional.begin() + 2, a.positional.end());
    return forEachInput(files, [&](const Input& in) { return replaceInput(job, in); }) ? ExitSelected
                                                                                       : ExitTrouble;
}
