// tools/zevch/demo_cmd.cpp - `zevch demo`: a few searches, replacements and a
// multi-pattern count on a sample text compiled into the tool.
#include <string>
#include <vector>

#include "tools/zevch/tool.h"

namespace {

const char* const DemoHelp =
    "usage: zevch demo\n"
    "\n"
    "Runs a few zevch grep, replace and multi commands on a short sample text\n"
    "built into the tool and prints each command with its output.\n";

const char SampleText[] =
    "2026-03-14 09:12:01 INFO  server started on http://10.0.0.12:8080/status\n"
    "2026-03-14 09:12:07 INFO  mail relay is smtp.example.org, reports to ops@example.org\n"
    "2026-03-14 09:13:44 WARN  slow answer from https://api.example.com/v2/items?page=3 (812 ms)\n"
    "2026-03-14 09:15:02 ERROR connection to 192.168.1.300 refused: not an address\n"
    "2026-03-14 09:15:03 error retrying via 192.168.1.30 for jane.doe+alerts@example.net\n"
    "2026-03-15 00:00:00 INFO  rotated logs; next rotation 2026-03-16\n"
    "Grüße aus Köln: café, naïve, ß and 東京 are matched byte by byte or as UTF-8.\n";

void heading(const std::string& command) {
    out("\n$ zevch " + command + " sample.txt\n");
}

}  // namespace

int commandDemo(int argc, char** argv) {
    const OptionTable accepted{"", "", {}, {}, false};
    Arguments a;
    int status = ExitTrouble;
    if (!parseCommand(argc, argv, accepted, "demo", DemoHelp, a, status)) return status;
    if (!a.positional.empty()) {
        toolError("demo: takes no arguments");
        return ExitTrouble;
    }
    Input sample;
    sample.borrow("sample.txt", reinterpret_cast<const uint8_t*>(SampleText), sizeof(SampleText) - 1);
    out("zevch demo: the sample text (" + std::to_string(sample.size()) + " bytes)\n\n");
    out(SampleText);
    bool ok = true;
    int64_t selected = 0;

    struct GrepRun {
        const char* shown;
        const char* pattern;
        const char* options;
        GrepSettings settings;
    };
    GrepSettings onlyMatching;
    onlyMatching.onlyMatching = true;
    GrepSettings numbered;
    numbered.lineNumbers = true;
    GrepSettings counting;
    counting.count = true;
    const GrepRun greps[] = {
        {"grep -o '[\\w.+-]+@[\\w.-]+\\.\\w+'", "[\\w.+-]+@[\\w.-]+\\.\\w+", "", onlyMatching},
        {"grep -n -i 'error|warn'", "error|warn", "i", numbered},
        {"grep -o '\\b(?:(?:25[0-5]|2[0-4]\\d|1?\\d?\\d)\\.){3}(?:25[0-5]|2[0-4]\\d|1?\\d?\\d)\\b'",
         "\\b(?:(?:25[0-5]|2[0-4]\\d|1?\\d?\\d)\\.){3}(?:25[0-5]|2[0-4]\\d|1?\\d?\\d)\\b", "", onlyMatching},
        {"grep -o '\\p{L}*[^\\x00-\\x7f]\\p{L}*'", "\\p{L}*[^\\x00-\\x7f]\\p{L}*", "", onlyMatching},
        {"grep -c 'INFO'", "INFO", "", counting},
    };
    for (const GrepRun& g : greps) {
        heading(g.shown);
        Pattern p;
        if (compilePattern(g.pattern, g.options, p) != zevStatusOk) {
            ok = false;
            continue;
        }
        if (!grepInput(p, g.settings, sample, selected)) ok = false;
    }

    struct ReplaceRun {
        const char* shown;
        const char* pattern;
        const char* tmpl;
        bool global;
    };
    const ReplaceRun replaces[] = {
        {"replace -g '(\\d{4})-(\\d\\d)-(\\d\\d)' '$3.$2.$1'", "(\\d{4})-(\\d\\d)-(\\d\\d)", "$3.$2.$1", true},
        {"replace '^\\S+ \\S+ (\\w+)\\s+' '[$1] '", "^\\S+ \\S+ (\\w+)\\s+", "[$1] ", false},
    };
    for (const ReplaceRun& r : replaces) {
        heading(r.shown);
        ReplaceJob job;
        job.global = r.global;
        if (compilePattern(r.pattern, "", job.pattern) != zevStatusOk || !prepareTemplate(r.tmpl, job)) {
            ok = false;
            continue;
        }
        if (!replaceInput(job, sample)) ok = false;
    }

    heading("multi -f patterns.txt");
    const char* const patterns[] = {
        "[\\w.+-]+@[\\w.-]+\\.\\w+",
        "\\w+://[^/\\s?#]+[^\\s?#]+(?:\\?[^\\s#]*)?",
        "\\d{4}-\\d\\d-\\d\\d",
        "(?i)error",
        "\\d+ ms",
    };
    out("(patterns.txt holds, one a line:");
    for (const char* p : patterns) out(std::string(" ") + p);
    out(")\n");
    MultiJob multi;
    for (const char* text : patterns) {
        Pattern p;
        if (compilePattern(text, "", p) != zevStatusOk) {
            ok = false;
            continue;
        }
        multi.patterns.push_back(std::move(p));
    }
    if (multiInput(multi, sample) < 0) ok = false;
    outFlush();
    return ok ? ExitSelected : ExitTrouble;
}
