/// Main function of a fuzzer that was built without libFuzzer: plays every file of the folders given.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argumentCount, char** arguments)
{
    std::size_t played = 0;
    for (int i = 1; i < argumentCount; ++i) {
        std::vector<std::filesystem::path> files;
        for (const auto& entry : std::filesystem::directory_iterator(arguments[i])) {
            files.push_back(entry.path());
        }
        std::sort(files.begin(), files.end());
        for (const std::filesystem::path& file : files) {
            std::ifstream stream(file, std::ios::binary);
            const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
            // Named before, so that a crash tells which one it was.
            std::cout << file.string() << std::endl;
            (void)LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
            ++played;
        }
    }
    if (played == 0) {
        std::cerr << "There is no corpus to play: name its folder.\n";
        return 1;
    }
    return 0;
}
