/// Sound of any importer: which samples are written, and what they depend on.

#include "Clip.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace conformance {

namespace {

constexpr std::uint32_t kSamples = 4'800;

/// How far the same sample of two requests may differ: -80 dB of full scale. A generator may accumulate
/// its phase, whose rounding depends on where a request begins.
constexpr float kTolerance = 1e-4F;

/// `count` positions within the first hour, chosen at random from the seed; the first is 0.
std::vector<std::int64_t> Positions(const Plugin& plugin, const Clip& clip, std::size_t count)
{
    std::mt19937_64 random(plugin.Seed());
    const double hour = std::clamp(static_cast<double>(clip.Info().audioSampleRate) * 3600.0, 1.0, 1e12);
    std::vector<std::int64_t> positions = {0};
    while (positions.size() < count) {
        positions.push_back(static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(hour)));
    }
    return positions;
}

void WritesItsBuffers(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireAudio();
    for (const std::uint32_t count : {1U, 2U, 47U, kSamples, 96'001U}) {
        const Sound sound = RequireSound(plugin, clip, 0, count);
        for (std::size_t channel = 0; channel < sound.channels.size(); ++channel) {
            const auto& samples = sound.channels[channel];
            Expect(std::none_of(
                       samples.begin(), samples.end(),
                       [](float sample) { return std::isnan(sample) || sample == SoundBuffers::kUntouched; }),
                   "channel " + std::to_string(channel) + " is not written whole by a request for " +
                       std::to_string(count) + " samples");
        }
    }
}

void SoundDependsOnPositionAlone(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireAudio();
    const std::vector<std::int64_t> positions = Positions(plugin, clip, 6);
    std::vector<Sound> sounds;
    for (const std::int64_t position : positions) {
        sounds.push_back(RequireSound(plugin, clip, position, kSamples));
    }
    const Clip other(plugin);
    for (std::size_t at = positions.size(); at-- > 0;) {
        const std::string where = " at sample " + std::to_string(positions[at]);
        Expect(RequireSound(plugin, clip, positions[at], kSamples) == sounds[at],
               "a second request differs" + where);
        Expect(RequireSound(plugin, other, positions[at], kSamples) == sounds[at],
               "a second instance differs" + where);
    }
}

void AnyCutJoins(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireAudio();
    std::mt19937_64 random(plugin.Seed());
    for (const std::int64_t position : Positions(plugin, clip, 4)) {
        const Sound whole = RequireSound(plugin, clip, position, kSamples);
        const auto cut = static_cast<std::uint32_t>(1 + random() % (kSamples - 1));
        const Sound second = RequireSound(plugin, clip, position + cut, kSamples - cut);
        const Sound first = RequireSound(plugin, clip, position, cut);
        for (std::size_t channel = 0; channel < whole.channels.size(); ++channel) {
            for (std::uint32_t at = 0; at < kSamples; ++at) {
                const float part = at < cut ? first.channels[channel][at] : second.channels[channel][at - cut];
                if (!(std::fabs(part - whole.channels[channel][at]) <= kTolerance)) {
                    throw Violation("sample " + std::to_string(position + at) + " of channel " +
                                    std::to_string(channel) + " differs where the request is cut at " +
                                    std::to_string(position + cut));
                }
            }
        }
    }
}

void AnyPositionIsAnswered(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireAudio();
    for (const std::int64_t position :
         {std::int64_t{-1}, std::int64_t{-48'000}, std::int64_t{1} << 40, std::int64_t{0x7FFFFFFFFFFFFFFF},
          static_cast<std::int64_t>(0x8000000000000000ULL)}) {
        (void)RequestSound(plugin, clip, position, 1'000);
    }
    (void)RequireSound(plugin, clip, 0, kSamples);
}

void NoSamplesWriteNothing(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireAudio();
    (void)RequireSound(plugin, clip, 100, 0); // the guards of the buffers touch each other
}

void NullBuffersAreRefused(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireAudio();
    GuardedRecord request;
    request.Put<std::int64_t>(offsetof(ksAudioRec, position), 0);
    request.Put<std::uint32_t>(offsetof(ksAudioRec, sampleCount), kSamples);
    request.Put<float**>(offsetof(ksAudioRec, channels), nullptr);
    request.Put(offsetof(ksAudioRec, instance), clip.Instance());
    ExpectEqual(plugin.Request(ksSelectorAudio, ForeignStdParms(), nullptr, request.Data()), ksResultFailed,
                "the answer to a request for samples without an array of buffers");
    request.ExpectUnchanged("a request for sound without an array of buffers");
    (void)RequireSound(plugin, clip, 0, kSamples);
}

} // namespace

std::vector<Check> AudioChecks()
{
    return {
        {"audio.buffers", "A request writes every sample of the clip's channels and none outside its buffers",
         WritesItsBuffers},
        {"audio.pure", "Sound depends on the document and the position only", SoundDependsOnPositionAlone},
        {"audio.cuts", "A request gives the samples that its two parts give, to -80 dB", AnyCutJoins},
        {"audio.any-position", "Positions before the start and at both ends of 64 bits do no harm",
         AnyPositionIsAnswered},
        {"audio.no-samples", "A request for no samples writes none", NoSamplesWriteNothing},
        {"audio.null-buffers", "A request for samples with a null array of buffers answers 5",
         NullBuffersAreRefused},
    };
}

} // namespace conformance
