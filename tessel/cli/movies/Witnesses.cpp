#include "Witnesses.h"

#include <kestrel/qelcore/text/PathText.h>
#include <tessel/cli/Commands.h>
#include <tessel/cli/WholeText.h>
#include <tessel/export/ExportError.h>

#include <fmt/format.h>

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <utility>

namespace tessel::cli {

namespace fs = std::filesystem;
using exporting::ExportError;
using qelcore::text::UTF8Text;

namespace {

constexpr std::string_view kStandardOutput = "-";

/// A file in the making, or standard output for "-".
exporting::OutputFile TableFile(const fs::path& file)
{
    return file == kStandardOutput ? exporting::OutputFile(exporting::OutputFile::StandardOutput())
                                   : exporting::OutputFile(file);
}

} // namespace

void Witnesses::Check(const RenderOptions& options, const fs::path& output)
{
    const bool hasWitness = !options.hashes.empty() || !options.verify.empty() || !options.truth.empty();
    if (hasWitness && options.clips.size() > 1) {
        throw UsageError("--hash, --verify and --truth are for one clip; render the clips one by one");
    }
    if (!options.hashes.empty() && IsSameFile(options.hashes, options.truth)) {
        throw UsageError("--hash and --truth name the same file");
    }
    for (const fs::path& file : {options.hashes, options.truth}) {
        if (file.empty()) {
            continue;
        }
        if (file == kStandardOutput && options.output == kStandardOutput) {
            throw UsageError("-o, --hash and --truth cannot share standard output; name files for the others");
        }
        const std::pair<fs::path, const char*> others[] = {{output, "the file that is rendered"},
                                                           {options.clips.front(), "the clip itself"},
                                                           {options.verify, "the file of --verify"}};
        for (const auto& [other, what] : others) {
            if (IsSameFile(file, other)) {
                throw UsageError(fmt::format("'{}' is {}; give another name", UTF8Text(file), what));
            }
        }
    }
}

Witnesses::Witnesses(const RenderOptions& options)
{
    if (!options.verify.empty()) {
        mExpected.emplace(options.verify);
    }
    if (!options.hashes.empty()) {
        mHashFile = TableFile(options.hashes);
    }
    if (!options.truth.empty()) {
        mTruthFile = TableFile(options.truth);
    }
}

const exporting::RenderRecord* Witnesses::Watch(const exporting::OutputPlan& plan,
                                                const document::OpenedClip& clip, exporting::FrameRange frames)
{
    if (!mExpected && !mHashFile && !mTruthFile) {
        return nullptr;
    }
    if (mTruthFile && !plan.video) {
        throw ExportError("--truth describes pictures, but only sound is rendered: remove --truth");
    }
    mRecord.algorithm = mExpected ? mExpected->Algorithm() : mRecord.algorithm;
    mRecord.digestsCoded = mExpected || mHashFile;
    mRecord.digestsPainted = mTruthFile.has_value();
    mHashes.emplace(plan, mRecord.algorithm);
    if (mTruthFile) {
        mTruth.emplace(clip.facts, clip.clip.File(), frames, plan);
    }
    mRecord.picture = [this, &plan](std::int64_t index, const exporting::PictureDigests& digests) {
        if (mTruth) {
            mTruth->AddPicture(index, digests.painted);
        }
        if (mRecord.digestsCoded) {
            mHashes->AddPicture(index, digests.coded);
            Compare(plan);
        }
    };
    if (mRecord.digestsCoded) {
        mRecord.sound = [this, &plan](std::int64_t start, std::int64_t count, const exporting::Digest& digest) {
            mHashes->AddSound(start, count, digest);
            Compare(plan);
        };
    }
    mRecord.beforeCommit = [this, &plan] {
        if (mExpected) {
            mExpected->RequireEnd(plan);
        }
    };
    return &mRecord;
}

void Witnesses::Commit()
{
    if (mHashFile) {
        WriteAndCommit(*mHashFile, mHashes->Text());
    }
    if (mTruthFile) {
        WriteAndCommit(*mTruthFile, mTruth->Text());
    }
}

void Witnesses::Compare(const exporting::OutputPlan& plan)
{
    if (mExpected) {
        mExpected->Compare(mHashes->Lines().back(), plan);
    }
}

} // namespace tessel::cli
