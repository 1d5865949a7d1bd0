// tools/zevch/common.cpp - inputs, patterns, the whole-match search, argument
// parsing and output of the zevch tool.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "tools/zevch/status_names.h"
#include "tools/zevch/tool.h"

void toolError(const char* format, ...) {
    outFlush();
    std::fputs("zevch: ", stderr);
    va_list args;
    va_start(args, format);
    std::vfprintf(stderr, format, args);
    va_end(args);
    std::fputc('\n', stderr);
}

// ---------------------------------------------------------------------------
// Inputs

Input::~Input() {
    if (map_ != nullptr) munmap(map_, size_);
}

void Input::borrow(const std::string& name, const uint8_t* data, size_t size) {
    name_ = name;
    data_ = data;
    size_ = size;
}

bool Input::open(const std::string& path) {
    const bool standardInput = path == "-";
    name_ = standardInput ? "(standard input)" : path;
    const int fd = standardInput ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY);
    if (fd < 0) {
        toolError("cannot open %s: %s", path.c_str(), std::strerror(errno));
        return false;
    }
    struct stat st {};
    if (fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) {
        toolError("%s is a directory", path.c_str());
        if (!standardInput) close(fd);
        return false;
    }
    // A regular file is mapped: no copy, and the page cache does the reading.
    if (fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_size > 0) {
        void* map = mmap(nullptr, static_cast<size_t>(st.st_size), PROT_READ, MAP_PRIVATE, fd, 0);
        if (map != MAP_FAILED) {
            madvise(map, static_cast<size_t>(st.st_size), MADV_SEQUENTIAL);
            map_ = map;
            data_ = static_cast<const uint8_t*>(map);
            size_ = static_cast<size_t>(st.st_size);
            if (!standardInput) close(fd);
            return true;
        }
    }
    // Pipes, terminals and files that cannot be mapped are read to the end.
    size_t used = 0;
    buffer_.resize(1 << 16);
    for (;;) {
        if (used == buffer_.size()) buffer_.resize(buffer_.size() * 2);
        const ssize_t got = read(fd, buffer_.data() + used, buffer_.size() - used);
        if (got == 0) break;
        if (got < 0) {
            if (errno == EINTR) continue;
            toolError("cannot read %s: %s", name_.c_str(), std::strerror(errno));
            if (!standardInput) close(fd);
            return false;
        }
        used += static_cast<size_t>(got);
    }
    if (!standardInput) close(fd);
    buffer_.resize(used);
    data_ = buffer_.data();
    size_ = used;
    return true;
}

Progress::Progress(const std::string& name, size_t total)
    : name_(name), total_(total), enabled_(total >= ProgressThreshold && isatty(STDERR_FILENO)) {}

Progress::~Progress() {
    if (enabled_ && shown_ >= 0) std::fputs("\r\033[K", stderr);
}

void Progress::note(const char* what) {
    if (!enabled_) return;
    shown_ = 0;
    std::fprintf(stderr, "\rzevch: %s: %s", name_.c_str(), what);
    std::fflush(stderr);
}

void Progress::update(size_t done) {
    if (!enabled_) return;
    const int percent = static_cast<int>(static_cast<double>(done) * 100.0 / static_cast<double>(total_));
    if (percent == shown_) return;
    shown_ = percent;
    std::fprintf(stderr, "\rzevch: %s %d%%", name_.c_str(), percent);
    std::fflush(stderr);
}

// ---------------------------------------------------------------------------
// Patterns

Pattern::Pattern(Pattern&& other) noexcept
    : text(std::move(other.text)),
      single(std::exchange(other.single, nullptr)),
      global(std::exchange(other.global, nullptr)),
      captureCount(other.captureCount),
      limit(other.limit) {}

Pattern::~Pattern() {
    zevsRegExpFree(single);
    zevsRegExpFree(global);
}

namespace {

// The number of capture records of a compiled pattern, through the public
// interface: with a match limit of 0 a single search ends at once, and it
// has then already set the count to the smaller of the capacity and the
// pattern's captureCount; a capacity of 1000 is above every captureCount.
int32_t probeCaptureCount(RegExpState* single) {
    static const uint8_t subject[] = "x";
    RegExpFindEntry find[1000];
    int32_t count = 1000;
    zevsRegExpSetMatchLimit(0, single);
    zevsRegExpFind_8u(subject, 1, single, find, &count);
    zevsRegExpSetMatchLimit(10000, single);
    return count > 0 ? count : 1;
}

}  // namespace

zevStatus compilePattern(const std::string& text, const std::string& options, Pattern& out,
                         const std::string& where) {
    int32_t errOffset = 0;
    zevStatus st = zevsRegExpInitAlloc(text.c_str(), options.c_str(), &out.single, &errOffset);
    if (st != zevStatusOk) {
        if (st == zevStatusRegExpBadOptions) {
            toolError("%sbad options \"%s\": %s", where.c_str(), options.c_str(), statusName(st));
        } else {
            toolError("%sbad pattern at offset %d: %s", where.c_str(), static_cast<int>(errOffset),
                      statusName(st));
        }
        return st;
    }
    const std::string globalOptions = options + "g";
    st = zevsRegExpInitAlloc(text.c_str(), globalOptions.c_str(), &out.global, &errOffset);
    if (st != zevStatusOk) {
        toolError("%scannot compile the pattern: %s", where.c_str(), statusName(st));
        return st;
    }
    out.text = text;
    out.captureCount = probeCaptureCount(out.single);
    return zevStatusOk;
}

int32_t matchLimitFor(const Pattern& p, size_t length) {
    if (p.limit >= 0) return static_cast<int32_t>(p.limit);
    const uint64_t budget = 10000 + 256 * static_cast<uint64_t>(length);
    return budget > INT32_MAX ? INT32_MAX : static_cast<int32_t>(budget);
}

// A match under case folding of a \x{...} character can report an end
// behind the subject (the node steps over its own code's UTF-8 length); cut
// every entry at the subject's end so that nothing behind it is printed.
static void clampToSubject(RegExpFindEntry* entries, int32_t count, const uint8_t* src, int32_t length) {
    for (int32_t i = 0; i < count; ++i) {
        RegExpFindEntry& e = entries[i];
        if (e.start == nullptr || e.length < 0) continue;
        const int32_t inside = static_cast<int32_t>(src + length - e.start);
        if (e.length > inside) e.length = inside;
    }
}

zevStatus findAll(Pattern& p, const uint8_t* src, int32_t length,
                  std::vector<RegExpFindEntry>& entries, int32_t& count) {
    count = 0;
    if (length < 1) {
        // The replacement's search takes no empty subject; an empty subject
        // has at most the one match of a single search.
        RegExpFindEntry match{};
        const int32_t found = findFirst(p, src, length, match);
        if (found < 0) return found;
        if (found == 1) {
            entries.assign(static_cast<size_t>(p.captureCount), RegExpFindEntry{nullptr, -1});
            entries[0] = match;
            count = p.captureCount;
        }
        return zevStatusOk;
    }
    // zevsRegExpFind_8u reports only the groups of a global match when the
    // pattern has groups; the replacement's search reports each match's whole
    // extent and its groups. Run it with an empty template and a one-byte
    // output: only its find array is of interest here.
    static std::vector<uint8_t> emptyTemplate;
    if (emptyTemplate.empty()) {
        int32_t size = 0;
        zevsRegExpReplaceGetSize("", &size);
        emptyTemplate.resize(static_cast<size_t>(size));
        zevsRegExpReplaceInit("", reinterpret_cast<RegExpReplaceState*>(emptyTemplate.data()));
    }
    const int32_t stride = p.captureCount;
    // There are at most two matches per position (an empty one and its
    // one-byte retry), so the array never needs more than this.
    const int64_t most = static_cast<int64_t>(stride) * (2 * static_cast<int64_t>(length) + 3);
    int64_t capacity = std::min<int64_t>(most, static_cast<int64_t>(stride) * 4096);
    zevsRegExpSetMatchLimit(matchLimitFor(p, static_cast<size_t>(length)), p.global);
    for (;;) {
        if (capacity > INT32_MAX) capacity = INT32_MAX;
        if (static_cast<int64_t>(entries.size()) < capacity) entries.resize(static_cast<size_t>(capacity));
        uint8_t dst[1];
        int32_t srcLen = length;
        int32_t dstLen = 1;
        int32_t found = static_cast<int32_t>(capacity);
        const zevStatus st = zevsRegExpReplace_8u(src, &srcLen, dst, &dstLen, entries.data(), &found,
                                                  p.global,
                                                  reinterpret_cast<RegExpReplaceState*>(emptyTemplate.data()));
        if (st != zevStatusOk) return st;
        if (found < 1) return zevStatusOk;
        // The search stops when the array has no room for one more match;
        // then run it again with a larger one.
        if (found > capacity - stride && capacity < most && capacity < INT32_MAX) {
            capacity *= 4;
            if (capacity > most) capacity = most;
            continue;
        }
        count = found;
        clampToSubject(entries.data(), count, src, length);
        return zevStatusOk;
    }
}

int32_t findFirst(Pattern& p, const uint8_t* src, int32_t length, RegExpFindEntry& match) {
    static const uint8_t nothing[1] = {0};
    int32_t count = 1;
    zevsRegExpSetMatchLimit(matchLimitFor(p, static_cast<size_t>(length)), p.single);
    const zevStatus st = zevsRegExpFind_8u(src != nullptr ? src : nothing, length, p.single, &match, &count);
    if (st != zevStatusOk) return st;
    if (count > 0 && src != nullptr) clampToSubject(&match, 1, src, length);
    return count > 0 ? 1 : 0;
}

// ---------------------------------------------------------------------------
// Arguments

bool Arguments::has(char letter) const { return flags.find(letter) != std::string::npos; }

bool Arguments::has(const std::string& longName) const {
    for (const std::string& f : longFlags) {
        if (f == longName) return true;
    }
    return false;
}

const std::string* Arguments::value(const std::string& name) const {
    const std::string* found = nullptr;
    for (const auto& v : values) {
        if (v.first == name) found = &v.second;
    }
    return found;
}

namespace {
bool listed(const std::vector<std::string>& names, const std::string& name) {
    for (const std::string& n : names) {
        if (n == name) return true;
    }
    return false;
}
}  // namespace

Arguments parseArguments(int argc, char** argv, const OptionTable& accepted, const char* command) {
    Arguments a;
    bool options = true;
    for (int i = 0; i < argc; ++i) {
        const std::string arg = argv[i];
        if (!options || arg.size() < 2 || arg[0] != '-') {
            a.positional.push_back(arg);
            continue;
        }
        if (arg == "--") {
            options = false;
            continue;
        }
        if (arg[1] == '-') {
            std::string name = arg.substr(2);
            std::string value;
            const size_t eq = name.find('=');
            const bool inlineValue = eq != std::string::npos;
            if (inlineValue) {
                value = name.substr(eq + 1);
                name.resize(eq);
            }
            if (name == "help") {
                a.help = true;
            } else if (listed(accepted.longFlags, name)) {
                if (inlineValue) {
                    toolError("%s: --%s takes no value", command, name.c_str());
                    a.bad = true;
                    return a;
                }
                a.longFlags.push_back(name);
            } else if (listed(accepted.longValued, name)) {
                if (!inlineValue) {
                    if (i + 1 >= argc) {
                        toolError("%s: --%s needs a value", command, name.c_str());
                        a.bad = true;
                        return a;
                    }
                    value = argv[++i];
                }
                a.values.emplace_back(name, value);
            } else {
                toolError("%s: unknown option --%s (see zevch %s --help)", command, name.c_str(), command);
                a.bad = true;
                return a;
            }
            continue;
        }
        for (size_t k = 1; k < arg.size(); ++k) {
            const char c = arg[k];
            if (c == 'h') {
                a.help = true;
            } else if (accepted.patternLetters && (c == 'i' || c == 'm' || c == 's' || c == 'x')) {
                a.patternOptions += c;
            } else if (accepted.flags.find(c) != std::string::npos) {
                a.flags += c;
            } else if (accepted.valued.find(c) != std::string::npos) {
                std::string value;
                if (k + 1 < arg.size()) {
                    value = arg.substr(k + 1);
                } else if (i + 1 < argc) {
                    value = argv[++i];
                } else {
                    toolError("%s: -%c needs a value", command, c);
                    a.bad = true;
                    return a;
                }
                a.values.emplace_back(std::string(1, c), value);
                break;
            } else {
                toolError("%s: unknown option -%c (see zevch %s --help)", command, c, command);
                a.bad = true;
                return a;
            }
        }
    }
    return a;
}

bool parseCommand(int argc, char** argv, const OptionTable& accepted, const char* command,
                  const char* help, Arguments& a, int& status) {
    a = parseArguments(argc, argv, accepted, command);
    if (a.help) {
        out(help);
        status = ExitSelected;
        return false;
    }
    if (const std::string* limit = a.value("limit")) {
        if (!parseLimit(*limit, a.limit)) {
            toolError("%s: --limit needs a number from 0 to 2147483647, not \"%s\"", command, limit->c_str());
            a.bad = true;
        }
    }
    status = ExitTrouble;
    return !a.bad;
}

bool forEachInput(std::vector<std::string> files, const std::function<bool(const Input&)>& work) {
    if (files.empty()) files.push_back("-");
    bool ok = true;
    for (const std::string& f : files) {
        Input in;
        if (!in.open(f) || !work(in)) ok = false;
    }
    return ok;
}

void forEachLine(const Input& in,
                 const std::function<bool(const uint8_t*, size_t, bool, int64_t)>& line) {
    const uint8_t* data = in.data();
    const size_t size = in.size();
    Progress progress(in.name(), size);
    size_t at = 0;
    int64_t number = 0;
    while (at < size) {
        const void* nl = std::memchr(data + at, '\n', size - at);
        const size_t end = nl != nullptr ? static_cast<size_t>(static_cast<const uint8_t*>(nl) - data) : size;
        ++number;
        if (!line(data + at, end - at, nl != nullptr, number)) return;
        at = end + 1;
        if ((number & 0xFFF) == 0) progress.update(at < size ? at : size);
    }
}

bool parseLimit(const std::string& text, int64_t& limit) {
    if (text.empty() || text.size() > 10) return false;
    int64_t v = 0;
    for (char c : text) {
        if (c < '0' || c > '9') return false;
        v = v * 10 + (c - '0');
    }
    if (v > INT32_MAX) return false;
    limit = v;
    return true;
}

// ---------------------------------------------------------------------------
// Output: one large buffer in front of stdout.

namespace {
std::string pending;
constexpr size_t FlushAt = size_t{1} << 20;
}  // namespace

void out(const void* data, size_t size) {
    pending.append(static_cast<const char*>(data), size);
    if (pending.size() >= FlushAt) outFlush();
}

void out(const std::string& text) { out(text.data(), text.size()); }

void outFlush() {
    if (!pending.empty()) {
        std::fwrite(pending.data(), 1, pending.size(), stdout);
        pending.clear();
    }
    std::fflush(stdout);
}

bool colourWanted() {
    const char* noColour = std::getenv("NO_COLOR");
    const char* term = std::getenv("TERM");
    return isatty(STDOUT_FILENO) && (noColour == nullptr || *noColour == '\0') &&
           (term == nullptr || std::strcmp(term, "dumb") != 0);
}
