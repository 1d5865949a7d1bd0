// tools/zevch/main.cpp - the zevch command: grep, replace, multi, explain and
// demo on top of the library's public interface.
#include <cstring>
#include <string>

#include "tools/zevch/tool.h"

namespace {

const char* const MainHelp =
    "usage: zevch COMMAND [ARGUMENTS]\n"
    "\n"
    "Commands:\n"
    "  grep      print the lines that a pattern matches\n"
    "  replace   replace the matches of a pattern by a template\n"
    "  multi     count or list the matches of many patterns in one pass\n"
    "  explain   show the compiled form of a pattern, or why it does not compile\n"
    "  demo      run a few examples on a built-in sample text\n"
    "\n"
    "zevch COMMAND --help describes each command. Files are read whole; - or no\n"
    "file at all means standard input.\n";

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fputs(MainHelp, stderr);
        return ExitTrouble;
    }
    const std::string command = argv[1];
    if (command == "--help" || command == "-h" || command == "help") {
        out(MainHelp);
        outFlush();
        return ExitSelected;
    }
    if (command == "--version") {
        const LibVersion* v = zevchGetLibVersion();
        out(std::string("zevch ") + v->versionText + "\n");
        outFlush();
        return ExitSelected;
    }
    int rest = argc - 2;
    char** args = argv + 2;
    int status = ExitTrouble;
    if (command == "grep") {
        status = commandGrep(rest, args);
    } else if (command == "replace") {
        status = commandReplace(rest, args);
    } else if (command == "multi") {
        status = commandMulti(rest, args);
    } else if (command == "explain") {
        status = commandExplain(rest, args);
    } else if (command == "demo") {
        status = commandDemo(rest, args);
    } else {
        toolError("unknown command \"%s\" (see zevch --help)", command.c_str());
    }
    outFlush();
    return status;
}
