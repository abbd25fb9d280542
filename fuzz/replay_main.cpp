// Runs a fuzz target on every file of the given folders, in the order of their names: a
// main() for builds without libFuzzer.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

// Of the exact size, for the address sanitizer. False if the file cannot be read.
bool run_file(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios_base::binary);
    const std::string bytes(std::istreambuf_iterator<char>(in), {});
    if (!in.is_open() || in.bad())
        return false;
    const auto data = std::make_unique<std::uint8_t[]>(bytes.size());
    bytes.copy(reinterpret_cast<char*>(data.get()), bytes.size());
    // Kept on the screen by a crash, so that it names its input.
    std::fprintf(stderr, "%s\n", path.c_str());
    LLVMFuzzerTestOneInput(data.get(), bytes.size());
    return true;
}

}  // namespace

int main(int argc, char** argv)
{
    int failures = argc < 2;
    std::set<std::filesystem::path> files;  // absolute: a target may change the folder
    for (int i = 1; i < argc; ++i) {
        const std::size_t before = files.size();
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(argv[i], error))
            if (entry.is_regular_file())
                files.insert(absolute(entry.path()));
        if (files.size() == before) {
            std::fprintf(stderr, "%s: no files\n", argv[i]);
            ++failures;
        }
    }
    for (const auto& file : files)
        if (!run_file(file)) {
            std::fprintf(stderr, "%s: cannot be read\n", file.c_str());
            ++failures;
        }
    return failures != 0;
}
