#include "MultichannelIdentification.h"

#include "SegmentWalk.h"
#include "SineSpan.h"

#include <kestrel/qelaccelerate/Vector.h>
#include <kestrel/qelmediatypes/TickTime.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>

namespace ImporterTessel {
namespace {

/// Which channels sound: one letter for each, channel 0 first, in the host's order left, right, left surround,
/// right surround, centre, low-frequency effects. 'x' sounds, '.' is silent.
class ChannelSet {
public:
    constexpr ChannelSet() = default;
    // NOLINTNEXTLINE(google-explicit-constructor): the tables below are read as tables.
    consteval ChannelSet(const char* letters)
    {
        for (std::int32_t channel = 0; letters[channel] != '\0'; ++channel) {
            if (letters[channel] == 'x') {
                mBits |= 1U << static_cast<std::uint32_t>(channel);
            } else if (letters[channel] != '.') {
                throw std::invalid_argument("a channel is 'x' or '.'");
            }
        }
    }
    [[nodiscard]] constexpr bool Has(std::int32_t channel) const noexcept
    {
        return (mBits >> static_cast<std::uint32_t>(channel) & 1U) != 0;
    }

private:
    std::uint32_t mBits = 0;
};

/// Whose first sample gives a tone its first phase: the segment's or the request's.
enum class PhaseOrigin : std::uint8_t { Segment, Request };

/// A run of units with one sound.
struct PatternRow {
    std::int32_t firstUnit = 0;
    std::int32_t lastUnit = 0;
    ChannelSet sounding;
    Tone tone{};
    PhaseOrigin phaseOrigin = PhaseOrigin::Segment;
};

/// The row of each unit of a cycle.
template <std::int32_t UnitCount>
using UnitRows = std::array<PatternRow, static_cast<std::size_t>(UnitCount)>;

/// Spreads rows over a cycle's units. Does not compile where rows are out of order or leave a unit out.
template <std::int32_t UnitCount, std::size_t RowCount>
consteval UnitRows<UnitCount> SpreadRows(const std::array<PatternRow, RowCount>& rows)
{
    UnitRows<UnitCount> units{};
    std::int32_t unit = 0;
    for (const PatternRow& row : rows) {
        if (row.firstUnit != unit) {
            throw std::invalid_argument("a row begins where the one before ended");
        }
        for (; unit <= row.lastUnit; ++unit) {
            units[static_cast<std::size_t>(unit)] = row;
        }
    }
    if (unit != UnitCount) {
        throw std::invalid_argument("the last row ends the cycle");
    }
    return units;
}

constexpr float kLevel = 0.125F;
constexpr float kLowLevel = 0.0625F;

/// 12 s = 24 × 0.5 s
constexpr PatternGrid kEBUGrid{{qelmediatypes::kTicksPerSecond / 2}, 24};
constexpr Tone kEBUTone{1000.0F, kLevel};
constexpr Tone kEBULowTone{80.0F, kLevel};
constexpr std::int32_t kEBUPatternChannels = 5;
constexpr std::int32_t kEBULowChannel = 5;

// Intended: the tones on single channels take the request's phase, not their segment's.
// clang-format off
constexpr auto kEBURows = SpreadRows<kEBUGrid.unitCount>(std::to_array<PatternRow>({
    { 0,  5, "xxxxx", kEBUTone},
    { 6,  6, "....."},
    { 7,  7, "x....", kEBUTone, PhaseOrigin::Request},
    { 8,  8, "....."},
    { 9,  9, "....x", kEBUTone, PhaseOrigin::Request},
    {10, 10, "....."},
    {11, 11, ".x...", kEBUTone, PhaseOrigin::Request},
    {12, 12, "....."},
    {13, 13, "...x.", kEBUTone, PhaseOrigin::Request},
    {14, 14, "....."},
    {15, 15, "..x..", kEBUTone, PhaseOrigin::Request},
    {16, 17, "....."},
    {18, 23, "xxxxx", kEBUTone},
}));
// clang-format on

/// 13.4 s = 134 × 0.1 s
constexpr PatternGrid kBLITSGrid{{qelmediatypes::kTicksPerSecond / 10}, 134};
constexpr std::int32_t kBLITSChannels = 6;

// Intended: 88.5 Hz on the low-frequency channel, where the published sequence has 82.5 Hz.
// clang-format off
constexpr auto kBLITSRows = SpreadRows<kBLITSGrid.unitCount>(std::to_array<PatternRow>({
    {  0,   5, "x.....", { 880.0F, kLevel}},
    {  6,   7, "......"},
    {  8,  13, ".x....", { 880.0F, kLevel}},
    { 14,  15, "......"},
    { 16,  21, "....x.", {1320.0F, kLevel}},
    { 22,  23, "......"},
    { 24,  29, ".....x", {  88.5F, kLevel}},
    { 30,  31, "......"},
    { 32,  37, "..x...", { 660.0F, kLevel}},
    { 38,  39, "......"},
    { 40,  45, "...x..", { 660.0F, kLevel}},
    { 46,  47, "......"},
    { 48,  57, "xx....", {1000.0F, kLevel}},
    { 58,  60, ".x....", {1000.0F, kLevel}},
    { 61,  63, "xx....", {1000.0F, kLevel}},
    { 64,  66, ".x....", {1000.0F, kLevel}},
    { 67,  69, "xx....", {1000.0F, kLevel}},
    { 70,  72, ".x....", {1000.0F, kLevel}},
    { 73,  75, "xx....", {1000.0F, kLevel}},
    { 76,  78, ".x....", {1000.0F, kLevel}},
    { 79,  98, "xx....", {1000.0F, kLevel}},
    { 99, 101, "......"},
    {102, 131, "xxxxxx", {2000.0F, kLowLevel}},
    {132, 133, "......"},
}));
// clang-format on

/// Writes one segment of the channels 0 to `channelCount` - 1: the row's tone once, copies of it, and silence.
void WriteSegment(const AudioRequest& request, const Segment& segment, const PatternRow& row,
                  std::int32_t channelCount) noexcept
{
    std::span<float> first;
    for (std::int32_t channel = 0; channel < channelCount; ++channel) {
        const std::span<float> samples = request.Samples(channel, segment.offset, segment.length);
        if (samples.empty()) {
            continue;
        }
        if (!row.sounding.Has(channel)) {
            qelaccelerate::utility::Zero(samples.size(), samples.data());
        } else if (first.empty()) {
            first = samples;
            FillSineSpan(request.rate, row.phaseOrigin == PhaseOrigin::Segment ? segment.start : request.start,
                         row.tone, first);
        } else {
            qelaccelerate::utility::Copy(first.size(), first.data(), samples.data());
        }
    }
}

/// Segments never span two units, also where the sound stays: a tone takes its phase anew in each.
void WritePattern(const AudioRequest& request, const PatternGrid& grid, std::span<const PatternRow> units,
                  std::int32_t channelCount) noexcept
{
    WalkSegments(
        request, grid, [](std::int32_t unit) { return unit + 1; },
        [&](const Segment& segment) {
            WriteSegment(request, segment, units[static_cast<std::size_t>(segment.unit)], channelCount);
        });
}

} // namespace

void SynthesizeEBUMultichannel(const AudioRequest& request) noexcept
{
    WritePattern(request, kEBUGrid, kEBURows, kEBUPatternChannels);
    FillSineSpan(request.rate, request.start, kEBULowTone, request.Samples(kEBULowChannel));
}

void SynthesizeBLITS(const AudioRequest& request) noexcept
{
    WritePattern(request, kBLITSGrid, kBLITSRows, kBLITSChannels);
}

} // namespace ImporterTessel
