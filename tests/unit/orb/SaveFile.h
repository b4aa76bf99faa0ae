/// Saving a file as a program does.
#pragma once

#include <kestrel/orb/File.h>

#include <filesystem>
#include <string_view>

namespace orbtests {

[[nodiscard]] inline ORB::Status Create(const std::filesystem::path& path, ORB::File& file)
{
    return ORB::File::Create(path.u16string(), 3, 3, 2, 1, 0, file);
}

[[nodiscard]] inline ORB::Status Save(const std::filesystem::path& path, std::string_view bytes)
{
    ORB::File file;
    const ORB::Status status = Create(path, file);
    return status < 0 ? status : file.Write(bytes);
}

} // namespace orbtests
