/// What is true of each picture of a render, for tests of players and networks.
#pragma once

#include <tessel/document/OpenClip.h>
#include <tessel/export/Render.h>
#include <tessel/export/encode/Digest.h>
#include <tessel/export/plan/OutputPlan.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace tessel::cli {

/// A table in CSV (RFC 4180), a row for each picture: `frame` (of the clip, as printed on it), `seconds` (its
/// time in the clip, an exact fraction), `timecode` and `drop_frame_timecode` (empty where the rate has none),
/// `picture_sha256` (its pixels as painted), `sample` (where its sound begins, in samples of the clip), `ident`
/// (what the channel identification does then; empty for a steady tone).
class TruthTable {
public:
    /// @param clip  the clip's file: its document says what is heard
    TruthTable(const document::ClipFacts& facts, const std::filesystem::path& clip,
               exporting::FrameRange frames, const exporting::OutputPlan& plan);

    /// @param index  in the file, from 0
    void AddPicture(std::int64_t index, const exporting::Digest& painted);

    [[nodiscard]] const std::string& Text() const noexcept { return mText; }

private:
    const document::ClipFacts& mFacts;
    exporting::FrameRange mFrames;
    std::optional<std::int64_t>
        mFirstTimecode; ///< frames from 00:00:00:00; none where the rate has no timecodes
    bool mHasDropFrames = false;
    std::optional<std::int32_t> mIdent; ///< its number; none for a steady tone
    std::string mText;
};

} // namespace tessel::cli
