#include "TruthTable.h"

#include <kestrel/qelmediatypes/TickTime.h>
#include <tessel/document/settings/IdentSegments.h>
#include <tessel/export/AudioBlocks.h>
#include <tessel/export/plan/Timecode.h>

#include <fmt/format.h>

#include <cmath>
#include <iterator>
#include <numeric>
#include <string_view>

namespace tessel::cli {
namespace {

constexpr bool kDropFrames = true;
constexpr bool kAllFrames = false;

} // namespace

TruthTable::TruthTable(const document::ClipFacts& facts, const std::filesystem::path& clip,
                       exporting::FrameRange frames, const exporting::OutputPlan& plan)
    : mFacts(facts), mFrames(frames),
      mHasDropFrames(exporting::Timecode::HasDropFrames(facts.timeScale, facts.sampleSize)),
      mIdent(document::IdentOf(clip)),
      mText("frame,seconds,timecode,drop_frame_timecode,picture_sha256,sample,ident\r\n")
{
    if (plan.timecode) {
        mFirstTimecode = plan.timecode->FrameNumber();
    } else if (exporting::Timecode::Counts(facts.timeScale, facts.sampleSize)) {
        mFirstTimecode = frames.first;
    }
}

void TruthTable::AddPicture(std::int64_t index, const exporting::Digest& painted)
{
    const std::int64_t frame = mFrames.first + index;
    const std::int64_t numerator = frame * mFacts.sampleSize;
    const std::int64_t divisor = std::gcd(numerator, std::int64_t{mFacts.timeScale});
    std::string timecode;
    std::string dropTimecode;
    if (mFirstTimecode) {
        const std::int64_t number = *mFirstTimecode + index;
        timecode = exporting::Timecode(mFacts.timeScale, mFacts.sampleSize, kAllFrames).After(number);
        if (mHasDropFrames) {
            dropTimecode = exporting::Timecode(mFacts.timeScale, mFacts.sampleSize, kDropFrames).After(number);
        }
    }
    std::string sample;
    std::string_view ident;
    if (mFacts.channelCount > 0 && mFacts.sampleRate >= 1 &&
        std::floor(mFacts.sampleRate) == mFacts.sampleRate) {
        const auto rate = static_cast<std::int32_t>(mFacts.sampleRate);
        sample = std::to_string(exporting::FrameStartSample(frame, mFacts.timeScale, mFacts.sampleSize, rate));
        if (mIdent) {
            ident = document::IdentSegmentAt(*mIdent, qelmediatypes::TickTime(frame, mFacts.rate).Ticks());
        }
    }
    fmt::format_to(std::back_inserter(mText), "{},{}/{},{},{},{},{},{}\r\n", frame, numerator / divisor,
                   mFacts.timeScale / divisor, timecode, dropTimecode, painted.hex, sample, ident);
}

} // namespace tessel::cli
