#include "IdentSegments.h"

#include "DocumentEditor.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/qelcore/serialization/Value.h>
#include <kestrel/qelmediatypes/TickTime.h>

#include <array>
#include <cstddef>
#include <span>

namespace tessel::document {
namespace {

/// A part of a cycle: from its beginning, in hundredths of a second, to that of the next one.
struct Part {
    int begin;
    std::string_view name;
};

struct Cycle {
    int length; ///< in hundredths of a second
    std::span<const Part> parts;
};

// The left channel is silent for the last quarter of a second of each three.
constexpr std::array<Part, 2> kStereo{{{0, "L+R"}, {275, "R"}}};

constexpr std::array<Part, 13> kMultichannel{{{0, "all"},
                                              {300, "silence"},
                                              {350, "L"},
                                              {400, "silence"},
                                              {450, "C"},
                                              {500, "silence"},
                                              {550, "R"},
                                              {600, "silence"},
                                              {650, "Rs"},
                                              {700, "silence"},
                                              {750, "Ls"},
                                              {800, "silence"},
                                              {900, "all"}}};

// Lines of one speaker after the other, the stereo line with its three gaps on the left, and the phase line.
constexpr std::array<Part, 24> kBlits{
    {{0, "L"},     {60, "silence"},  {80, "R"},    {140, "silence"}, {160, "C"},    {220, "silence"},
     {240, "LFE"}, {300, "silence"}, {320, "Ls"},  {380, "silence"}, {400, "Rs"},   {460, "silence"},
     {480, "L+R"}, {580, "R"},       {610, "L+R"}, {640, "R"},       {670, "L+R"},  {700, "R"},
     {730, "L+R"}, {760, "R"},       {790, "L+R"}, {990, "silence"}, {1020, "all"}, {1320, "silence"}}};

} // namespace

std::string_view IdentSegmentAt(std::int32_t format, std::int64_t ticks) noexcept
{
    constexpr std::array<Cycle, 4> kCycles{
        {{300, kStereo}, {300, kStereo}, {1200, kMultichannel}, {1340, kBlits}}};
    if (format < 0 || static_cast<std::size_t>(format) >= kCycles.size() || ticks < 0) {
        return {};
    }
    const Cycle& cycle = kCycles[static_cast<std::size_t>(format)];
    constexpr std::int64_t kHundredth = qelmediatypes::kTicksPerSecond / 100;
    const auto place = static_cast<int>(ticks / kHundredth % cycle.length);
    std::string_view name;
    for (const Part& part : cycle.parts) {
        if (place < part.begin) {
            break;
        }
        name = part.name;
    }
    return name;
}

std::optional<std::int32_t> IdentOf(const std::filesystem::path& clip)
{
    try {
        const DocumentEditor settings = DocumentEditor::Open(clip);
        const auto read = [&settings](std::string_view key) {
            return static_cast<std::int32_t>(
                qelcore::serialization::FindInteger(settings.Find(key)).value_or(0));
        };
        return read("mToneFormat") == 1 ? std::optional(read("mIdentifierFormat")) : std::nullopt;
    } catch (const importhost::HostError&) {
        return std::nullopt;
    }
}

} // namespace tessel::document
