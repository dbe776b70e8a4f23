#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

// Runs a fuzz target over the files of the folders named on the command line: the collected inputs
// as an ordinary test. A folder without any file is a fault of its own.

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

int replayFolder(const std::filesystem::path& folder) {
    int count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file())
            continue;
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
        std::printf("%s\n", entry.path().filename().string().c_str());
        std::fflush(stdout);  // names the culprit when the next line crashes
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
        ++count;
    }
    return count;
}

}  // namespace

int main(int argc, char** argv) {
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        const int found = replayFolder(argv[i]);
        if (found == 0) {
            std::fprintf(stderr, "%s: no inputs\n", argv[i]);
            return 1;
        }
        count += found;
    }
    std::printf("%d inputs\n", count);
    return count > 0 ? 0 : 1;
}
