#include "SequenceWriter.h"

#include <kestrel/qelcore/text/PathText.h>
#include <tessel/export/ExportError.h>

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <utility>

namespace tessel::exporting {
namespace {

namespace fs = std::filesystem;
using qelcore::text::UTF8Text;

constexpr int kMostDigits = 18;

} // namespace

std::optional<NumberedName> NumberedName::Parse(const std::string& name)
{
    NumberedName parsed;
    bool found = false;
    std::string* text = &parsed.mBefore;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (name[i] != '%') {
            *text += name[i];
            continue;
        }
        if (i + 1 < name.size() && name[i + 1] == '%') {
            *text += name[++i];
            continue;
        }
        const std::size_t end = name.find('d', i);
        int digits = 1;
        if (end != std::string::npos && end > i + 1) {
            const auto [stop, error] = std::from_chars(name.data() + i + 1, name.data() + end, digits);
            digits = error == std::errc() && stop == name.data() + end && name[i + 1] == '0' ? digits : -1;
        }
        if (end == std::string::npos || digits < 1 || digits > kMostDigits || found) {
            throw ExportError(fmt::format(
                "'{}' is no name for a sequence: it takes one number, as %d or %06d, and %% for a percent sign",
                name));
        }
        found = true;
        parsed.mDigits = digits;
        text = &parsed.mAfter;
        i = end;
    }
    if (!found) {
        return std::nullopt;
    }
    return parsed;
}

std::string NumberedName::With(std::int64_t number) const
{
    return fmt::format("{}{:0{}}{}", mBefore, number, mDigits, mAfter);
}

void RequireNames(const fs::path& target, std::int64_t pictureCount)
{
    if (target != "-" && pictureCount != 1 && !NumberedName::Parse(UTF8Text(target.filename()))) {
        throw RequestError(
            fmt::format("'{}' is one picture, but there are {} frames: put a number into the name, as "
                        "in {}_%06d{}, or choose one frame with --from N --frames 1",
                        UTF8Text(target), pictureCount, UTF8Text(target.stem()), UTF8Text(target.extension())));
    }
}

SequenceWriter::SequenceWriter(const fs::path& target, std::int64_t pictureCount)
{
    if (target == "-") {
        mSingle.emplace(OutputFile::StandardOutput{});
        return;
    }
    if (std::optional<NumberedName> name = NumberedName::Parse(UTF8Text(target.filename()))) {
        mNumbered.emplace(target.parent_path(), *std::move(name));
        return;
    }
    RequireNames(target, pictureCount);
    mSingle.emplace(target);
}

void SequenceWriter::Write(std::span<const std::byte> file, std::int64_t number)
{
    if (mSingle) {
        mSingle->Write(file);
        return;
    }
    std::string name = mNumbered->name.With(number);
    const fs::path goal = mNumbered->parent / name;
    RequireReplaceable(goal); // now, not when all are rendered
    OutputFile output(OutputFile::New{mNumbered->folder.Path() / name, goal});
    output.Write(file);
    mNumbered->files.push_back(std::move(name));
}

void SequenceWriter::Finish()
{
    if (mSingle) {
        mSingle->Commit();
        return;
    }
    // Once for all pictures: waiting for each of them takes many times as long.
    const fs::path folder = mNumbered->folder.Path();
    WaitForMedium(mNumbered->parent);
    // No picture is called so: the name has no number.
    JointReplacement files(folder / "replaced", mNumbered->parent);
    for (const std::string& name : mNumbered->files) {
        files.Replace(mNumbered->parent / name, folder / name);
    }
    WaitForNames(mNumbered->parent);
    files.Accept();
}

} // namespace tessel::exporting
