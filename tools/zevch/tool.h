// tools/zevch/tool.h - what the zevch commands share: inputs, compiled
// patterns, the whole-match search, argument parsing and error reporting.
//
// The tool is a client of the public interface only (plus the node dump of
// `explain`); everything here goes through zevch.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "zevch.h"

// Exit statuses, as grep has them.
constexpr int ExitSelected = 0;
constexpr int ExitNothing = 1;
constexpr int ExitTrouble = 2;

// Inputs at or above this size get a progress indicator when stderr is a
// terminal.
constexpr size_t ProgressThreshold = size_t{64} << 20;

// ---------------------------------------------------------------------------
// Messages. Every message starts with "zevch: ".
void toolError(const char* format, ...) __attribute__((format(printf, 1, 2)));

// ---------------------------------------------------------------------------
// Inputs: a named file (mapped when it is a regular file) or stdin for "-".
class Input {
public:
    Input() = default;
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;
    ~Input();

    // Reports an unreadable file and returns false.
    bool open(const std::string& path);
    // An in-memory text, not owned (the demo's sample).
    void borrow(const std::string& name, const uint8_t* data, size_t size);

    const std::string& name() const { return name_; }
    const uint8_t* data() const { return data_; }
    size_t size() const { return size_; }

private:
    std::string name_;
    const uint8_t* data_ = nullptr;
    size_t size_ = 0;
    void* map_ = nullptr;
    std::vector<uint8_t> buffer_;
};

// A progress line on stderr for one large input: "zevch: NAME 42%".
class Progress {
public:
    Progress(const std::string& name, size_t total);
    ~Progress();
    void update(size_t done);
    // For work done in one library call: says what is going on instead.
    void note(const char* what);

private:
    std::string name_;
    size_t total_;
    bool enabled_;
    int shown_ = -1;
};

// ---------------------------------------------------------------------------
// A compiled pattern in the two forms the commands need: `single` finds the
// first match, `global` (the same text with the g option) all of them.
struct Pattern {
    Pattern() = default;
    Pattern(const Pattern&) = delete;
    Pattern& operator=(const Pattern&) = delete;
    Pattern(Pattern&& other) noexcept;
    ~Pattern();

    std::string text;
    RegExpState* single = nullptr;
    RegExpState* global = nullptr;
    int32_t captureCount = 1;   // capturing groups + 1
    int64_t limit = -1;         // fixed match limit, or -1 for the automatic one
};

// Compiles `text` with the option letters in `options` (no g). On a bad
// pattern prints "zevch: <where>bad pattern at offset N: <status name>" and
// returns the status; `where` may be empty or e.g. "patterns.txt:3: ".
zevStatus compilePattern(const std::string& text, const std::string& options, Pattern& out,
                         const std::string& where = "");

// The match limit for a subject of `length` bytes: the fixed one, or a budget
// that grows with the subject (10000 steps and 256 per byte, saturated), so
// that a long subject is not cut short by the library's default.
int32_t matchLimitFor(const Pattern& p, size_t length);

// All matches of `p` in one subject, each as its whole extent (entry
// k * captureCount) followed by its groups. Status of the search; on
// zevStatusOk, `count` entries stand in `entries`.
zevStatus findAll(Pattern& p, const uint8_t* src, int32_t length,
                  std::vector<RegExpFindEntry>& entries, int32_t& count);

// The first match of `p`, with no groups: found (1), none (0), or a status
// below 0.
int32_t findFirst(Pattern& p, const uint8_t* src, int32_t length, RegExpFindEntry& match);

// ---------------------------------------------------------------------------
// Command-line parsing shared by the commands. Options may stand anywhere
// before "--"; single letters combine ("-in"); a valued option takes the next
// argument or, for a long one, "--name=value". The pattern letters i, m, s
// and x are accepted by every command that compiles patterns and collected in
// `patternOptions`.
struct OptionTable {
    std::string flags;                    // letters without a value
    std::string valued;                   // letters that take a value
    std::vector<std::string> longFlags;   // e.g. "whole"
    std::vector<std::string> longValued;  // e.g. "limit"
    bool patternLetters = true;
};

struct Arguments {
    std::vector<std::string> positional;
    std::string patternOptions;
    std::string flags;                    // letters seen, in order
    std::vector<std::pair<std::string, std::string>> values;   // valued options, by name
    std::vector<std::string> longFlags;
    int64_t limit = -1;                   // --limit N, or -1
    bool help = false;
    bool bad = false;

    bool has(char letter) const;
    bool has(const std::string& longName) const;
    const std::string* value(const std::string& name) const;   // last one given
};

Arguments parseArguments(int argc, char** argv, const OptionTable& accepted, const char* command);

// parseArguments, then --help (printed) and a bad option or --limit. False
// when the command is to end at once, with its exit status in `status`.
bool parseCommand(int argc, char** argv, const OptionTable& accepted, const char* command,
                  const char* help, Arguments& a, int& status);

// Opens each of `files` ("-" is standard input; none means standard input) and
// runs `work` on it. False when a file could not be read or `work` said so;
// the other files go on either way.
bool forEachInput(std::vector<std::string> files, const std::function<bool(const Input&)>& work);

// Calls `line` for each line of `in`, without its newline; `newline` tells
// whether one followed. `line` returns false to stop. Shows progress.
void forEachLine(const Input& in,
                 const std::function<bool(const uint8_t* line, size_t length, bool newline,
                                          int64_t number)>& line);

// Parses a non-negative decimal number that fits int32.
bool parseLimit(const std::string& text, int64_t& limit);

// ---------------------------------------------------------------------------
// Buffered output to stdout.
void out(const void* data, size_t size);
void out(const std::string& text);
void outFlush();
bool colourWanted();

// ---------------------------------------------------------------------------
// The commands. Each returns the process exit status.
int commandGrep(int argc, char** argv);
int commandReplace(int argc, char** argv);
int commandMulti(int argc, char** argv);
int commandExplain(int argc, char** argv);
int commandDemo(int argc, char** argv);

// The work of the commands on one input, shared with the demo.
struct GrepSettings {
    bool count = false;
    bool onlyMatching = false;
    bool lineNumbers = false;
    bool filesWithMatches = false;
    bool whole = false;
    bool colour = false;
    bool showNames = false;
};
// Searches one input; adds to `selected` the lines (or matches with --whole)
// found. Returns false after a search error, which it reports.
bool grepInput(Pattern& p, const GrepSettings& s, const Input& in, int64_t& selected);

struct ReplaceJob {
    Pattern pattern;
    RegExpReplaceState* replace = nullptr;
    std::vector<uint8_t> replaceBlock;
    std::string templateText;
    int64_t templateBytes = 0;   // length of the template text
    int64_t templateRefs = 0;    // its $ signs: each yields at most one group
    bool global = false;
    bool whole = false;
    int64_t failures = 0;        // subjects of the current input passed on unchanged
};
// Parses the template into `job`; reports a bad one.
bool prepareTemplate(const std::string& text, ReplaceJob& job);
bool replaceInput(ReplaceJob& job, const Input& in);

struct MultiJob {
    std::vector<Pattern> patterns;
    bool onlyMatching = false;
    bool showNames = false;
};
// Returns the number of matches found, or -1 after an error.
int64_t multiInput(MultiJob& job, const Input& in);
