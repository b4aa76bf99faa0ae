/// A file per picture.
#pragma once

#include "OutputFile.h"
#include "OutputFolder.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace tessel::exporting {

/// A file name with one number in it, `%d` or `%06d`; `%%` is a percent sign.
class NumberedName {
public:
    /// @return nothing where the name has no place for a number
    /// @throws ExportError  for two places, or a `%` that means nothing
    [[nodiscard]] static std::optional<NumberedName> Parse(const std::string& name);

    [[nodiscard]] std::string With(std::int64_t number) const;

private:
    std::string mBefore;
    std::string mAfter;
    int mDigits = 1;
};

/// Every picture of a sequence needs a different name.
/// @param target  as `SequenceWriter` takes it
/// @throws RequestError  for several pictures and a target without a number
/// @throws ExportError   as `NumberedName::Parse`
void RequireNames(const std::filesystem::path& target, std::int64_t pictureCount);

/// Where the pictures of a sequence go: numbered files, one file, or one after the other into standard output.
/// Numbered files take their names when all are whole. If one of them cannot, the old files come back and no
/// new ones stay. Their folder is made where it is missing. Threads: one object, one thread at a time.
class SequenceWriter {
public:
    /// @param target        path with a number in its file name; for one picture it may go without; `-`
    /// @param pictureCount  how many will come
    /// @throws RequestError  as `RequireNames`
    /// @throws ExportError   where the folder cannot be written to
    SequenceWriter(const std::filesystem::path& target, std::int64_t pictureCount);

    /// @param number  the frame's number in its clip
    void Write(std::span<const std::byte> file, std::int64_t number);
    /// @throws ExportError
    void Finish();

private:
    struct Numbered {
        Numbered(std::filesystem::path folderOfFiles, NumberedName nameOfFiles)
            : parent(std::move(folderOfFiles)), name(std::move(nameOfFiles)),
              made(parent, OutputFolder::Missing::Last), folder(parent)
        {
        }

        std::filesystem::path parent;
        NumberedName name;
        OutputFolder made; ///< before the temporary one in it, which goes first
        TemporaryFolder folder;
        std::vector<std::string> files;
    };
    std::optional<Numbered> mNumbered;
    std::optional<OutputFile> mSingle;
};

} // namespace tessel::exporting
