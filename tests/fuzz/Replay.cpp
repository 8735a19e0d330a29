// Runs a fuzz target's inputs without libFuzzer, so that a build with any compiler replays the
// checked-in corpus as an ordinary test: LLVMFuzzerInitialize if the target has one, then every
// file named on the command line, or found in a folder named there, through
// LLVMFuzzerTestOneInput, in name order. A finding aborts, as it does under the fuzzer; the name
// of the file is printed first, so that the failure says which input it was.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace {

std::vector<std::filesystem::path> inputsOf(const std::filesystem::path& path) {
    std::vector<std::filesystem::path> inputs;
    if (std::filesystem::is_directory(path)) {
        for (const auto& entry : std::filesystem::directory_iterator(path)) {
            if (entry.is_regular_file()) inputs.push_back(entry.path());
        }
        std::sort(inputs.begin(), inputs.end());
    } else {
        inputs.push_back(path);
    }
    return inputs;
}

}  // namespace

int main(int argc, char** argv) {
    if (LLVMFuzzerInitialize != nullptr) LLVMFuzzerInitialize(&argc, &argv);
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        if (!std::filesystem::exists(argv[i])) {
            std::fprintf(stderr, "replay: %s does not exist\n", argv[i]);
            return 2;
        }
        for (const auto& input : inputsOf(argv[i])) {
            std::ifstream file(input, std::ios::binary);
            const std::vector<char> bytes((std::istreambuf_iterator<char>(file)),
                                          std::istreambuf_iterator<char>());
            std::fprintf(stderr, "replay: %s\n", input.c_str());
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                   bytes.size());
            ++count;
        }
    }
    std::printf("replay: %zu inputs\n", count);
    return count > 0 ? 0 : 1;
}
