#include "TextDocument.h"

#include <kestrel/importhost/PathText.h>

#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <system_error>

namespace tessel::api {
namespace {

std::filesystem::path NewFolder()
{
    const std::filesystem::path parent = std::filesystem::temp_directory_path();
    std::random_device random;
    constexpr int kAttempts = 100;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        std::filesystem::path folder =
            parent / ("tessel-" + std::to_string(random()) + "-" + std::to_string(random()));
        // False where the name is taken: another attempt.
        if (std::filesystem::create_directory(folder)) {
            std::error_code ignored; // without permissions of its own the folder serves as well
            std::filesystem::permissions(folder, std::filesystem::perms::owner_all, ignored);
            return folder;
        }
    }
    throw std::runtime_error(importhost::DisplayName(parent) +
                             ": no folder for the document can be made there");
}

} // namespace

TextDocument::TextDocument(std::string_view text) : mFolder(NewFolder()), mFile(mFolder / "document.tessel")
{
    std::ofstream stream(mFile, std::ios::binary);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    stream.close();
    if (!stream) {
        std::error_code ignored;
        std::filesystem::remove_all(mFolder, ignored);
        throw std::runtime_error(importhost::DisplayName(mFile) + ": the document cannot be written there");
    }
}

TextDocument::~TextDocument()
{
    std::error_code ignored;
    std::filesystem::remove_all(mFolder, ignored);
}

} // namespace tessel::api
