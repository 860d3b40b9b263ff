// The driver a fuzz target is linked with when libFuzzer is not: it runs the target once
// on every file of the folders (or on the files) named on the command line, so that the
// seeds of each corpus replay as a regression test in every build. A crash or a broken
// property aborts, as under libFuzzer; an empty corpus is an error too, since it would
// test nothing.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

// The inputs of one argument, in name order so that a failing run names the same file.
std::vector<fs::path> inputsOf(const fs::path& argument) {
    if (!fs::is_directory(argument)) {
        return {argument};
    }
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(argument)) {
        if (entry.is_regular_file()) {
            files.push_back(entry.path());
        }
    }
    std::ranges::sort(files);
    return files;
}

std::vector<std::uint8_t> contentsOf(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        throw fs::filesystem_error("cannot read the input", file, std::make_error_code(std::errc::io_error));
    }
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

} // namespace

int main(int argc, char** argv) {
    std::size_t replayed = 0;
    for (int i = 1; i < argc; ++i) {
        for (const fs::path& file : inputsOf(argv[i])) {
            // Shown before the run, so that a crash is attributed to its input.
            std::cout << "replaying " << file.string() << std::endl;
            const std::vector<std::uint8_t> data = contentsOf(file);
            LLVMFuzzerTestOneInput(data.data(), data.size());
            ++replayed;
        }
    }
    std::cout << replayed << " inputs replayed\n";
    return replayed == 0 ? 1 : 0;
}
