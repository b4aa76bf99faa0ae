#include "EditedDocument.h"

#include <kestrel/importhost/PathText.h>
#include <kestrel/orb/File.h>
#include <kestrel/orb/SaveReport.h>

#include <span>
#include <system_error>

namespace tessel::cli {
namespace {

namespace fs = std::filesystem;

/// The file's name without its extension, short enough that something can be added to it.
fs::path ShortStem(const fs::path& file)
{
    constexpr std::size_t kLongest = 200; // of 255 bytes that a file name may have
    std::u8string stem = file.stem().u8string();
    if (stem.size() > kLongest) {
        std::size_t end = kLongest;
        while (end > 0 && (static_cast<unsigned>(stem[end]) & 0xC0U) == 0x80U) {
            --end; // not within a character
        }
        stem.resize(end);
    }
    return stem;
}

/// The first of "clip.unsaved.tessel", "clip.unsaved-2.tessel", ... that nothing has yet.
std::optional<fs::path> FreeName(const fs::path& folder, const fs::path& target)
{
    constexpr int kMostNames = 1000;
    for (int number = 1; number <= kMostNames; ++number) {
        fs::path name = ShortStem(target);
        name += number == 1 ? ".unsaved" : ".unsaved-" + std::to_string(number);
        name += target.extension();
        std::error_code error;
        if (!fs::exists(fs::symlink_status(folder / name, error))) {
            return folder / name;
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<std::string> WriteDocument(const fs::path& file, const std::string& text)
{
    std::string failure = "out of memory";
    const ORB::ScopedSaveListener listener([&](const ORB::SaveReport& report) { failure = report.failure; });
    ORB::File out;
    ORB::Status status = ORB::File::Create(file.u16string(), 3, 3, 2, 1, 0, out);
    if (status >= 0) {
        status = out.Write(std::span<const char>(text));
    }
    return status < 0 ? std::optional(failure) : std::nullopt;
}

std::string KeepUnsaved(const fs::path& target, const std::optional<std::string>& text)
{
    if (!text) {
        return "the settings are lost";
    }
    std::error_code error;
    for (const fs::path& folder :
         {target.parent_path(), fs::current_path(error), fs::temp_directory_path(error)}) {
        const std::optional<fs::path> file = FreeName(folder, target);
        if (file && !WriteDocument(*file, *text)) {
            return "the settings are kept in " + importhost::DisplayName(*file);
        }
    }
    return "the settings are lost, because no other folder takes them either";
}

} // namespace tessel::cli
