#include "FrameHashes.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>
#include <tessel/document/DocumentFacts.h>
#include <tessel/export/convert/Picture.h>

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

namespace tessel::cli {
namespace {

using exporting::OutputPlan;
using importhost::DisplayName;
using importhost::HostError;

constexpr std::size_t kMostStreams = 2;

int SoundStream(const OutputPlan& plan)
{
    return plan.video ? 1 : 0;
}

/// What a line is called in messages: "picture 12", "the sound from sample 4608 on".
std::string NameOf(const HashLine& line, const OutputPlan& plan)
{
    return plan.video && line.stream == 0 ? fmt::format("picture {}", line.start)
                                          : fmt::format("the sound from sample {} on", line.start);
}

std::string_view LayoutName(const exporting::AudioPlan& audio, std::string& count)
{
    switch (audio.layout) {
    case exporting::SpeakerLayout::Mono:
        return "mono";
    case exporting::SpeakerLayout::Stereo:
        return "stereo";
    case exporting::SpeakerLayout::Surround51:
        return "5.1(side)";
    case exporting::SpeakerLayout::None:
        break;
    }
    count = fmt::format("{} channels", audio.hostChannels.size());
    return count;
}

/// FFmpeg's name of PCM with as many bits as the codec's samples have.
std::string PcmName(int bits)
{
    return bits == 0 ? "pcm_f32le" : fmt::format("pcm_s{}le", bits);
}

/// Whether a line's time is before another's: by time, then by stream.
bool IsBefore(const HashLine& left, const HashLine& right, const OutputPlan& plan)
{
    const auto seconds = [&plan](const HashLine& line) {
        if (plan.video && line.stream == 0) {
            return static_cast<long double>(line.start) * plan.video->geometry.rateDenominator /
                   plan.video->geometry.rateNumerator;
        }
        return static_cast<long double>(line.start) / plan.audio->sampleRate;
    };
    const long double leftTime = seconds(left);
    const long double rightTime = seconds(right);
    return leftTime != rightTime ? leftTime < rightTime : left.stream < right.stream;
}

std::string_view Trimmed(std::string_view text)
{
    const std::size_t begin = std::min(text.find_first_not_of(" \t\r"), text.size());
    const std::size_t end = text.find_last_not_of(" \t\r");
    return end == std::string_view::npos ? std::string_view() : text.substr(begin, end + 1 - begin);
}

template <class Number>
bool Parse(std::string_view text, Number& number)
{
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc{} && stop == text.data() + text.size();
}

/// "0, 12, 12, 1, 12288, 4d3f...".
std::optional<HashLine> ParseLine(std::string_view text)
{
    std::vector<std::string_view> fields;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        fields.push_back(Trimmed(text.substr(begin, end - begin)));
        begin = end + 1;
    }
    constexpr std::size_t kFields = 6; // stream, dts, pts, duration, size, hash
    HashLine line;
    const bool isLine = fields.size() == kFields && Parse(fields[0], line.stream) &&
                        Parse(fields[2], line.start) && Parse(fields[3], line.duration) &&
                        Parse(fields[4], line.digest.bytes) && line.stream >= 0 &&
                        line.stream < static_cast<int>(kMostStreams);
    line.digest.hex = isLine ? std::string(fields[5]) : std::string();
    return isLine ? std::optional(line) : std::nullopt;
}

/// Whether two lines are of the same piece: codecs cut sound into pieces of other lengths, and take pictures in
/// other layouts.
bool IsCutAlike(const HashLine& left, const HashLine& right)
{
    return left.start == right.start && left.duration == right.duration &&
           left.digest.bytes == right.digest.bytes;
}

} // namespace

FrameHashes::FrameHashes(const OutputPlan& plan, std::string algorithm)
    : mPlan(plan), mAlgorithm(std::move(algorithm))
{
}

void FrameHashes::AddPicture(std::int64_t index, const exporting::Digest& digest)
{
    mLines.push_back({0, index, 1, digest});
}

void FrameHashes::AddSound(std::int64_t start, std::int64_t count, const exporting::Digest& digest)
{
    mLines.push_back({SoundStream(mPlan), start, count, digest});
}

std::string FrameHashes::Text() const
{
    std::string text =
        fmt::format("#format: frame checksums\n#version: 2\n#hash: {}\n#software: tessel\n", mAlgorithm);
    const auto out = std::back_inserter(text);
    if (mPlan.video) {
        const exporting::PictureGeometry& geometry = mPlan.video->geometry;
        const bool isV210 = mPlan.video->conversion.target == exporting::PictureLayout::V210;
        fmt::format_to(
            out, "#tb 0: {}/{}\n#media_type 0: video\n#codec_id 0: {}\n#dimensions 0: {}x{}\n#sar 0: {}/{}\n",
            geometry.rateDenominator, geometry.rateNumerator, isV210 ? "v210" : "rawvideo", geometry.width,
            geometry.height, geometry.aspectNumerator, geometry.aspectDenominator);
    }
    if (mPlan.audio) {
        const int stream = SoundStream(mPlan);
        std::string count;
        fmt::format_to(out,
                       "#tb {0}: 1/{1}\n#media_type {0}: audio\n#codec_id {0}: {2}\n#sample_rate {0}: "
                       "{1}\n#channel_layout_name {0}: {3}\n",
                       stream, mPlan.audio->sampleRate, PcmName(mPlan.audio->codec->bits),
                       LayoutName(*mPlan.audio, count));
    }
    text += "#stream#, dts,        pts, duration,     size, hash\n";
    std::vector<HashLine> lines = mLines;
    std::stable_sort(lines.begin(), lines.end(), [this](const HashLine& left, const HashLine& right) {
        return IsBefore(left, right, mPlan);
    });
    for (const HashLine& line : lines) {
        fmt::format_to(out, "{}, {:>10}, {:>10}, {:>8}, {:>8}, {}\n", line.stream, line.start, line.start,
                       line.duration, line.digest.bytes, line.digest.hex);
    }
    return text;
}

ExpectedHashes::ExpectedHashes(const std::filesystem::path& file)
    : mFile(file), mStreams(kMostStreams), mCompared(kMostStreams, 0)
{
    const std::string content = document::DocumentText(file);
    std::string_view text = content;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view row = Trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        constexpr std::string_view kHash = "#hash:";
        if (row.starts_with(kHash)) {
            mAlgorithm = Trimmed(row.substr(kHash.size()));
        }
        if (row.empty() || row.front() == '#') {
            continue;
        }
        const std::optional<HashLine> line = ParseLine(row);
        if (!line) {
            throw HostError(fmt::format("{}: '{}' is no line of a framehash file", DisplayName(file), row));
        }
        mStreams[static_cast<std::size_t>(line->stream)].push_back(*line);
    }
    if (mAlgorithm.empty()) {
        throw HostError(DisplayName(file) +
                        ": is no framehash file: a line '#hash: SHA256' or the like was expected");
    }
}

void ExpectedHashes::Compare(const HashLine& line, const OutputPlan& plan)
{
    const auto stream = static_cast<std::size_t>(line.stream);
    const std::size_t index = mCompared[stream]++;
    if (index >= mStreams[stream].size()) {
        throw HostError(fmt::format("{} ends before {}", DisplayName(mFile), NameOf(line, plan)));
    }
    const HashLine& expected = mStreams[stream][index];
    if (!IsCutAlike(expected, line)) {
        throw HostError(
            fmt::format("{} cannot be compared with {}, which has {} bytes from {} on where there are "
                        "{} from {} on: render with the format and codecs that it was written with",
                        NameOf(line, plan), DisplayName(mFile), expected.digest.bytes, expected.start,
                        line.digest.bytes, line.start));
    }
    if (expected.digest.hex != line.digest.hex) {
        throw HostError(fmt::format("{} is not as {} says: {} was expected, {} came", NameOf(line, plan),
                                    DisplayName(mFile), expected.digest.hex, line.digest.hex));
    }
}

void ExpectedHashes::RequireEnd(const OutputPlan& plan) const
{
    for (std::size_t stream = 0; stream < mStreams.size(); ++stream) {
        if (mCompared[stream] < mStreams[stream].size()) {
            throw HostError(fmt::format("{} has more: {}", DisplayName(mFile),
                                        NameOf(mStreams[stream][mCompared[stream]], plan)));
        }
    }
}

} // namespace tessel::cli
