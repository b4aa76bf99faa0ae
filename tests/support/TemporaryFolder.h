/// A folder for one test, gone with it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <system_error>

namespace test {

inline void WriteFile(const std::filesystem::path& file, std::string_view bytes)
{
    std::ofstream(file, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::random_device random;
        // A new name each time: tests run side by side.
        do {
            const std::uint64_t number = std::uint64_t{random()} << 32 | random();
            mPath = std::filesystem::temp_directory_path() / ("tessel-test-" + std::to_string(number));
        } while (!std::filesystem::create_directory(mPath));
    }
    ~TemporaryFolder()
    {
        std::error_code error;
        std::filesystem::remove_all(mPath, error);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& Path() const { return mPath; }
    [[nodiscard]] std::filesystem::path operator/(std::string_view name) const { return mPath / name; }

    /// Writes a file into it. @return the file's path, which not every caller needs.
    // NOLINTNEXTLINE(modernize-use-nodiscard)
    std::filesystem::path Write(std::string_view name, std::string_view bytes) const
    {
        std::filesystem::path file = mPath / name;
        WriteFile(file, bytes);
        return file;
    }

    /// How many files and folders it holds, hidden ones included.
    [[nodiscard]] std::size_t Count() const
    {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(mPath), std::filesystem::directory_iterator()));
    }

private:
    std::filesystem::path mPath;
};

[[nodiscard]] inline std::string ReadFile(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace test
