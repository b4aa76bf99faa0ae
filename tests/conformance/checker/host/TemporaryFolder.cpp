#include "TemporaryFolder.h"

#include <fstream>
#include <random>
#include <stdexcept>

namespace conformance {

TemporaryFolder::TemporaryFolder()
{
    std::random_device random;
    for (int attempt = 0; attempt < 100; ++attempt) {
        mPath = std::filesystem::temp_directory_path() / ("conformance-" + std::to_string(random()));
        std::error_code error;
        if (std::filesystem::create_directory(mPath, error)) {
            return;
        }
    }
    throw std::runtime_error("no temporary folder can be made like " + mPath.string());
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
}

std::filesystem::path TemporaryFolder::Write(const std::string& name, const std::string& bytes) const
{
    std::filesystem::path file = mPath / name;
    std::ofstream(file, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return file;
}

} // namespace conformance
