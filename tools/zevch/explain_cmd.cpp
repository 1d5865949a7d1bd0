// tools/zevch/explain_cmd.cpp - `zevch explain`: the compiled form of a
// pattern, or where and why it does not compile.
#include <string>
#include <vector>

#include "regexp/compile/dump.h"
#include "tools/zevch/status_names.h"
#include "tools/zevch/tool.h"

namespace {

const char* const ExplainHelp =
    "usage: zevch explain PATTERN [OPTIONS]\n"
    "\n"
    "Compiles PATTERN with the option letters OPTIONS (any of g i m s x) and\n"
    "prints the record header and its node table, one node a line. For a\n"
    "pattern that does not compile it prints the status, its meaning, and the\n"
    "pattern with a caret under the offset of the fault.\n"
    "\n"
    "Exit status: 0 the pattern compiled, 2 it did not.\n";

}  // namespace

int commandExplain(int argc, char** argv) {
    const OptionTable accepted{"", "", {}, {}, false};
    Arguments a;
    int status = ExitTrouble;
    if (!parseCommand(argc, argv, accepted, "explain", ExplainHelp, a, status)) return status;
    if (a.positional.empty() || a.positional.size() > 2) {
        toolError("explain: give a pattern and at most one option string (see zevch explain --help)");
        return ExitTrouble;
    }
    const std::string& pattern = a.positional[0];
    const std::string options = a.positional.size() > 1 ? a.positional[1] : "";
    RegExpState* state = nullptr;
    int32_t errOffset = 0;
    const zevStatus st = zevsRegExpInitAlloc(pattern.c_str(), options.c_str(), &state, &errOffset);
    if (st != zevStatusOk) {
        const StatusName* s = findStatusName(st);
        const char* meaning = s != nullptr ? s->meaning : "unknown status";
        if (st == zevStatusRegExpBadOptions) {
            toolError("bad options \"%s\": %s (%s)", options.c_str(), statusName(st), meaning);
            return ExitTrouble;
        }
        toolError("bad pattern at offset %d: %s (%s)", static_cast<int>(errOffset), statusName(st), meaning);
        std::string caret(errOffset > 0 ? static_cast<size_t>(errOffset) : 0, ' ');
        // Keep tabs so that the caret lines up under them in a terminal.
        for (size_t i = 0; i < caret.size() && i < pattern.size(); ++i) {
            if (pattern[i] == '\t') caret[i] = '\t';
        }
        std::fprintf(stderr, "  %s\n  %s^\n", pattern.c_str(), caret.c_str());
        return ExitTrouble;
    }
    const int32_t needed = ownRegExpDump(state, nullptr, 0);
    std::vector<char> text(static_cast<size_t>(needed) + 1);
    ownRegExpDump(state, text.data(), static_cast<int32_t>(text.size()));
    out(text.data(), static_cast<size_t>(needed));
    if (needed > 0 && text[static_cast<size_t>(needed) - 1] != '\n') out("\n", 1);
    zevsRegExpFree(state);
    outFlush();
    return ExitSelected;
}
