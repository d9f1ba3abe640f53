// Replays fuzz inputs through a target without libFuzzer, so that the
// regular test run checks every committed corpus with any compiler.
// tarv_fuzz_replay TARGET PATH...: each path is a file, or a directory whose
// files are replayed in name order. A failing input aborts, naming the file
// first.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz_support.h"

namespace {

void replay(const tarv::fuzz::Target& target, const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    std::fprintf(stderr, "replaying %s (%zu bytes)\n", file.c_str(), bytes.size());
    // A copy of exactly the input's size, as libFuzzer hands it over.
    const std::vector<std::uint8_t> data(bytes.begin(), bytes.end());
    tarv::fuzz::run(target, data.data(), data.size());
}

}  // namespace

int main(int argc, char** argv) {
    const tarv::fuzz::Target* target = nullptr;
    for (const tarv::fuzz::Target* t : tarv::fuzz::all_targets)
        if (argc > 1 && std::strcmp(t->name, argv[1]) == 0) target = t;
    if (target == nullptr) return 2;
    std::size_t replayed = 0;
    for (int i = 2; i < argc; ++i) {
        const std::filesystem::path arg(argv[i]);
        std::vector<std::filesystem::path> files;
        if (std::filesystem::is_directory(arg)) {
            for (const auto& e : std::filesystem::directory_iterator(arg))
                if (e.is_regular_file()) files.push_back(e.path());
            std::sort(files.begin(), files.end());
        } else {
            files.push_back(arg);
        }
        for (const auto& f : files) replay(*target, f);
        replayed += files.size();
    }
    std::fprintf(stderr, "replayed %zu inputs\n", replayed);
    return replayed > 0 ? 0 : 1;
}
