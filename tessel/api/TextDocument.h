/// A document in memory as the file that plug-ins open.
#pragma once

#include <filesystem>
#include <string_view>

namespace tessel::api {

/// A file with that text, in a folder of its own among the system's temporary ones; both go with the object.
class TextDocument {
public:
    /// @throws std::runtime_error  where it cannot be written; says where and why
    explicit TextDocument(std::string_view text);
    ~TextDocument();
    TextDocument(const TextDocument&) = delete;
    TextDocument& operator=(const TextDocument&) = delete;

    [[nodiscard]] const std::filesystem::path& File() const noexcept { return mFile; }

private:
    std::filesystem::path mFolder;
    std::filesystem::path mFile;
};

} // namespace tessel::api
