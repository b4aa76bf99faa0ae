/// A folder of one test, gone with it.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string pattern = (std::filesystem::path(testing::TempDir()) / "tessel-XXXXXX").string();
        mPath = mkdtemp(pattern.data());
    }

    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& Path() const { return mPath; }

    /// Writes a file and gives its path as the host would.
    [[nodiscard]] std::u16string Write(std::string_view name, std::string_view bytes) const
    {
        const std::filesystem::path file = mPath / name;
        std::ofstream(file, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return file.u16string();
    }

private:
    std::filesystem::path mPath;
};
