// tests/fuzz/replay_main.cpp - runs a fuzz target without libFuzzer.
//
//   fuzz_replay_<target> FILE|DIR|=LITERAL ...
//
// Every file (directories are walked, one level of files) and every =literal
// argument goes once through LLVMFuzzerTestOneInput. This is how seeds and
// saved crash inputs become regression tests, built with the normal compiler.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

int runFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        std::fprintf(stderr, "cannot read %s\n", path.c_str());
        return 1;
    }
    std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    // A copy of exactly the input's size, so that a read past it is caught
    // under AddressSanitizer here too.
    std::vector<uint8_t> exact(bytes);
    exact.shrink_to_fit();
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    int failures = 0;
    int inputs = 0;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (!arg.empty() && arg[0] == '=') {
            const std::string text = arg.substr(1);
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(text.data()), text.size());
            ++inputs;
            continue;
        }
        const std::filesystem::path path(arg);
        if (std::filesystem::is_directory(path)) {
            std::vector<std::filesystem::path> files;
            for (const auto& e : std::filesystem::directory_iterator(path))
                if (e.is_regular_file() && e.path().filename().string()[0] != '.') files.push_back(e.path());
            std::sort(files.begin(), files.end());
            for (const auto& f : files) {
                failures += runFile(f);
                ++inputs;
            }
        } else if (std::filesystem::exists(path)) {
            failures += runFile(path);
            ++inputs;
        } else {
            std::fprintf(stderr, "no such input: %s\n", arg.c_str());
            ++failures;
        }
    }
    std::printf("%d inputs replayed\n", inputs);
    return failures == 0 ? 0 : 1;
}
