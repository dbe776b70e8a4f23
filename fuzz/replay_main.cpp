#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "replay_targets.h"

// Runs one fuzz target over every file of a folder: the collected inputs as an ordinary test.
// Usage: fuzz_replay TARGET FOLDER. A folder without any file is an error.

namespace {

int replayFolder(const FuzzTarget& target, const std::filesystem::path& folder) {
    int count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file())
            continue;
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
        std::printf("%s\n", entry.path().filename().string().c_str());
        std::fflush(stdout);  // names the input if the next line crashes
        target.run(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
        ++count;
    }
    return count;
}

}  // namespace

int main(int argc, char** argv) {
    const auto* target = std::find_if(
        std::begin(kFuzzTargets), std::end(kFuzzTargets),
        [&](const FuzzTarget& one) { return argc == 3 && std::strcmp(one.name, argv[1]) == 0; });
    if (target == std::end(kFuzzTargets)) {
        std::fprintf(stderr, "Usage: fuzz_replay TARGET FOLDER\n");
        return 2;
    }
    const int count = replayFolder(*target, argv[2]);
    if (count == 0) {
        std::fprintf(stderr, "%s: no inputs\n", argv[2]);
        return 1;
    }
    std::printf("%d inputs\n", count);
    return 0;
}
