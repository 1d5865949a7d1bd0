// tools/zevch/multi_cmd.cpp - `zevch multi`: many patterns over one text with
// the library's multi-pattern set.
#include <algorithm>
#include <climits>
#include <functional>
#include <string>
#include <vector>

#include "tools/zevch/status_names.h"
#include "tools/zevch/tool.h"

namespace {

const char* const MultiHelp =
    "usage: zevch multi -f PATTERNS [-o] [-i -m -s -x] [--limit N] [FILE...]\n"
    "\n"
    "Runs every pattern of the file PATTERNS (one a line; empty lines are\n"
    "skipped) over each FILE as one subject (standard input when none is given,\n"
    "or for -), all in one call of the library's multi-pattern search, which\n"
    "spreads the patterns over the available threads. Prints, per pattern, its\n"
    "id (its number among the patterns, from 1), the number of matches and the\n"
    "pattern. With -o it prints every match instead, in text order, as ID:TEXT;\n"
    "for a pattern with groups the library reports the groups of each match, and\n"
    "those are printed, separated by tabs.\n"
    "\n"
    "  -f PATTERNS   the file of patterns\n"
    "  -o            print the matches, tagged by pattern id\n"
    "  -i -m -s -x   pattern options, as for zevch grep\n"
    "  --limit N     match limit of each pattern (default: 10000 plus 256 per byte)\n"
    "\n"
    "Exit status: 0 something matched, 1 nothing did, 2 an error occurred.\n";

// Entries that one match leaves in a global find: the groups alone when the
// pattern has any, else the whole match.
int32_t entriesPerMatch(const Pattern& p) { return p.captureCount > 1 ? p.captureCount - 1 : 1; }

struct Slot {
    std::vector<RegExpFindEntry> find;
    int32_t found = 0;
    bool failed = false;
};

struct Tagged {
    const uint8_t* start;
    uint32_t id;
    int32_t first;   // index of the match's first entry in its slot's array
};

}  // namespace

int64_t multiInput(MultiJob& job, const Input& in) {
    const size_t size = in.size();
    const size_t n = job.patterns.size();
    if (size > INT32_MAX) {
        toolError("%s: too large to search as one subject (more than 2 GB)", in.name().c_str());
        return -1;
    }
    const auto length = static_cast<int32_t>(size);
    std::vector<Slot> slots(n);
    bool failed = false;

    if (length == 0) {
        // The set refuses an empty text; an empty text has at most one match
        // per pattern, which a single search finds.
        for (size_t i = 0; i < n; ++i) {
            RegExpFindEntry m{};
            const int32_t r = findFirst(job.patterns[i], in.data(), 0, m);
            if (r < 0) {
                toolError("%s: pattern %zu: %s", in.name().c_str(), i + 1, statusName(r));
                slots[i].failed = failed = true;
            } else if (r == 1) {
                slots[i].find.assign(static_cast<size_t>(entriesPerMatch(job.patterns[i])), m);
                slots[i].found = static_cast<int32_t>(slots[i].find.size());
            }
        }
    } else {
        RegExpMultiState* set = nullptr;
        if (zevsRegExpMultiInitAlloc(&set, static_cast<uint32_t>(n)) != zevStatusOk) {
            toolError("out of memory for a set of %zu patterns", n);
            return -1;
        }
        std::vector<int64_t> capacity(n);
        for (size_t i = 0; i < n; ++i) {
            Pattern& p = job.patterns[i];
            zevsRegExpSetMatchLimit(matchLimitFor(p, size), p.global);
            zevsRegExpMultiAdd(p.global, static_cast<uint32_t>(i + 1), set);
            capacity[i] = entriesPerMatch(p) * int64_t{16384};
        }
        std::vector<RegExpMultiResult> results(n);
        Progress progress(in.name(), size);
        progress.note("searching with all patterns at once");
        // Each round runs the patterns still in the set. A pattern whose array
        // filled up stays in with a larger one; the others leave the set.
        size_t left = n;
        while (left > 0) {
            for (size_t i = 0; i < n; ++i) {
                const int64_t most = entriesPerMatch(job.patterns[i]) * (2 * int64_t{length} + 3);
                capacity[i] = std::min({capacity[i], most, int64_t{INT32_MAX}});
                slots[i].find.resize(static_cast<size_t>(capacity[i]));
                results[i] = RegExpMultiResult{0, 0, static_cast<int32_t>(capacity[i]), 0, slots[i].find.data()};
            }
            zevsRegExpMultiFind_8u(in.data(), length, results.data(), set);
            for (size_t i = 0; i < n; ++i) {
                const RegExpMultiResult& r = results[i];
                if (r.done != 1) continue;
                const int32_t per = entriesPerMatch(job.patterns[i]);
                const int64_t most = per * (2 * int64_t{length} + 3);
                if (r.status == zevStatusOk && r.findCount > capacity[i] - per && capacity[i] < most &&
                    capacity[i] < INT32_MAX) {
                    capacity[i] *= 4;
                    continue;
                }
                if (r.status != zevStatusOk) {
                    toolError("%s: pattern %zu (%s): %s%s", in.name().c_str(), i + 1,
                              job.patterns[i].text.c_str(), statusName(r.status),
                              r.status == zevStatusRegExpMatchLimit ? "; raise the limit with --limit" : "");
                    slots[i].failed = failed = true;
                } else {
                    slots[i].found = r.findCount;
                }
                zevsRegExpMultiDelete(r.id, set);
                --left;
            }
        }
        zevsRegExpMultiFree(set);
    }

    int64_t total = 0;
    const std::string name = job.showNames ? in.name() + ":" : "";
    if (!job.onlyMatching) {
        for (size_t i = 0; i < n; ++i) {
            const int64_t matches = slots[i].found / entriesPerMatch(job.patterns[i]);
            total += matches;
            out(name + std::to_string(i + 1) + "\t" + (slots[i].failed ? std::string("-") : std::to_string(matches)) +
                "\t" + job.patterns[i].text + "\n");
        }
        return failed ? -1 : total;
    }
    std::vector<Tagged> all;
    for (size_t i = 0; i < n; ++i) {
        const int32_t per = entriesPerMatch(job.patterns[i]);
        for (int32_t k = 0; k + per <= slots[i].found; k += per) {
            const RegExpFindEntry& e = slots[i].find[static_cast<size_t>(k)];
            all.push_back(Tagged{e.start, static_cast<uint32_t>(i + 1), k});
        }
    }
    // Matches of a group that took no part have no start; they sort first.
    std::stable_sort(all.begin(), all.end(), [](const Tagged& a, const Tagged& b) {
        if (a.start != b.start) return std::less<const uint8_t*>()(a.start, b.start);
        return a.id < b.id;
    });
    for (const Tagged& t : all) {
        const size_t i = t.id - 1;
        const int32_t per = entriesPerMatch(job.patterns[i]);
        const RegExpFindEntry* e = slots[i].find.data() + t.first;
        ++total;
        if (job.patterns[i].captureCount == 1 && e->length <= 0) continue;
        std::string line = name + std::to_string(t.id) + ":";
        for (int32_t g = 0; g < per; ++g) {
            if (g > 0) line += '\t';
            if (e[g].start != nullptr && e[g].length > 0) {
                line.append(reinterpret_cast<const char*>(e[g].start), static_cast<size_t>(e[g].length));
            }
        }
        out(line + "\n");
    }
    return failed ? -1 : total;
}

int commandMulti(int argc, char** argv) {
    const OptionTable accepted{"o", "f", {}, {"limit"}, true};
    Arguments a;
    int status = ExitTrouble;
    if (!parseCommand(argc, argv, accepted, "multi", MultiHelp, a, status)) return status;
    const std::string* listFile = a.value("f");
    if (listFile == nullptr) {
        toolError("multi: -f PATTERNS is needed (see zevch multi --help)");
        return ExitTrouble;
    }
    const int64_t limit = a.limit;
    MultiJob job;
    job.onlyMatching = a.has('o');
    {
        Input list;
        if (!list.open(*listFile)) return ExitTrouble;
        const std::string text(reinterpret_cast<const char*>(list.data()), list.size());
        size_t at = 0;
        int lineNumber = 0;
        bool bad = false;
        while (at < text.size()) {
            size_t end = text.find('\n', at);
            if (end == std::string::npos) end = text.size();
            std::string line = text.substr(at, end - at);
            at = end + 1;
            ++lineNumber;
            if (!line.empty() && line.back() == '\r') line.pop_back();
            if (line.empty()) continue;
            Pattern p;
            p.limit = limit;
            if (compilePattern(line, a.patternOptions, p, *listFile + ":" + std::to_string(lineNumber) + ": ") !=
                zevStatusOk) {
                bad = true;
                continue;
            }
            job.patterns.push_back(std::move(p));
        }
        if (bad) return ExitTrouble;
    }
    if (job.patterns.empty()) {
        toolError("multi: %s holds no pattern", listFile->c_str());
        return ExitTrouble;
    }
    job.showNames = a.positional.size() > 1;
    int64_t total = 0;
    const bool ok = forEachInput(a.positional, [&](const Input& in) {
        const int64_t found = multiInput(job, in);
        if (found > 0) total += found;
        return found >= 0;
    });
    if (!ok) return ExitTrouble;
    return total > 0 ? ExitSelected : ExitNothing;
}
