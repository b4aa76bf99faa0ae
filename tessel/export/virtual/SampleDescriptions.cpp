#include "SampleDescriptions.h"

#include "UncodedPicture.h"

#include <cstdint>
#include <limits>
#include <string_view>

namespace tessel::exporting {
namespace {

using importhost::FieldOrder;

void PutLittleEndian(std::string_view type, AtomWriter& out)
{
    out.Atom("wave", [&] {
        out.Atom("frma", [&] { out.PutText(type); });
        out.Atom("enda", [&] { out.Put16(1); });
        out.Put32(8); // the end of the list
        out.Put32(0);
    });
}

void PutSpeakers(SpeakerLayout layout, AtomWriter& out)
{
    // Apple's tags of channel layouts; L R C LFE Ls Rs is "MPEG 5.1 A".
    std::uint64_t tag = 0;
    switch (layout) {
    case SpeakerLayout::Mono:
        tag = 0x640001;
        break;
    case SpeakerLayout::Stereo:
        tag = 0x650002;
        break;
    case SpeakerLayout::Surround51:
        tag = 0x790006;
        break;
    case SpeakerLayout::None:
        return;
    }
    out.FullAtom("chan", 0, 0, [&] {
        out.Put32(tag);
        out.Put32(0);
        out.Put32(0);
    });
}

} // namespace

void PutPictureDescription(const VideoPlan& plan, AtomWriter& out)
{
    const UncodedPicture picture = UncodedPictureOf(plan);
    const PictureGeometry& geometry = plan.geometry;
    out.Atom(picture.type, [&] {
        out.PutZeros(6);
        out.Put16(1); // the one data reference
        out.Put16(picture.isPackedYcbcr ? 2 : 0);
        out.Put16(0);
        out.PutText("FFMP");
        out.Put32(0);
        out.Put32(0x400); // lossless
        out.Put16(static_cast<std::uint32_t>(geometry.width));
        out.Put16(static_cast<std::uint32_t>(geometry.height));
        out.PutFixed(72); // dots an inch
        out.PutFixed(72);
        out.Put32(0);
        out.Put16(1);     // frame in a packet
        out.PutZeros(32); // no name of a compressor
        out.Put16(static_cast<std::uint32_t>(picture.depth));
        out.Put16(0xFFFF); // no palette
        out.Atom("fiel", [&] {
            const bool isProgressive = geometry.order == FieldOrder::Progressive;
            out.Put8(isProgressive ? 1 : 2);
            // Fields lie interleaved; the upper or the lower one is shown first.
            out.Put8(isProgressive ? 0 : geometry.order == FieldOrder::UpperFirst ? 9 : 14);
        });
        out.Atom("colr", [&] {
            out.PutText("nclc");
            out.Put16(static_cast<std::uint32_t>(plan.tags.primaries));
            out.Put16(static_cast<std::uint32_t>(plan.tags.transfer));
            out.Put16(static_cast<std::uint32_t>(plan.tags.matrix));
        });
        if (geometry.aspectNumerator != 0) {
            out.Atom("pasp", [&] {
                out.Put32(static_cast<std::uint64_t>(geometry.aspectNumerator));
                out.Put32(static_cast<std::uint64_t>(geometry.aspectDenominator));
            });
        }
        if (picture.isPackedYcbcr) {
            out.Atom("clap", [&] {
                for (const std::int32_t number : {geometry.width, 1, geometry.height, 1, 0, 1, 0, 1}) {
                    out.Put32(static_cast<std::uint64_t>(number));
                }
            });
        }
    });
}

void PutSoundDescription(const AudioPlan& plan, AtomWriter& out)
{
    const int bits = plan.codec->bits == 0 ? 32 : plan.codec->bits;
    const auto bytes = static_cast<std::uint64_t>(bits / 8);
    const auto channels = static_cast<std::uint32_t>(plan.hostChannels.size());
    const bool isFast = plan.sampleRate > std::numeric_limits<std::uint16_t>::max();
    const bool isWide = bits > 16;
    std::string_view type = "sowt";
    if (plan.codec->bits == 0) {
        type = "fl32";
    } else if (isWide) {
        type = bits == 24 ? "in24" : "in32";
    }
    out.Atom(isFast ? "lpcm" : type, [&] {
        out.PutZeros(6);
        out.Put16(1); // the one data reference
        out.Put16(isFast ? 2 : isWide ? 1 : 0);
        out.PutZeros(6);
        if (isFast) {
            constexpr std::uint64_t kSize = 72;
            constexpr std::uint32_t kFloat = 1;
            constexpr std::uint32_t kSigned = 4;
            constexpr std::uint32_t kPacked = 8;
            out.Put16(3);
            out.Put16(16);
            out.Put16(0xFFFE);
            out.Put16(0);
            out.Put32(0x10000);
            out.Put32(kSize);
            out.PutDouble(plan.sampleRate);
            out.Put32(channels);
            out.Put32(0x7F000000);
            out.Put32(static_cast<std::uint64_t>(bits));
            out.Put32(kPacked | (plan.codec->bits == 0 ? kFloat : kSigned));
            out.Put32(bytes * channels);
            out.Put32(1);
        } else {
            out.Put16(channels);
            out.Put16(16);
            out.PutZeros(4);
            out.PutFixed(plan.sampleRate);
            if (isWide) {
                out.Put32(1); // sample in a packet
                out.Put32(bytes);
                out.Put32(bytes * channels);
                out.Put32(2);
                PutLittleEndian(type, out);
            }
        }
        PutSpeakers(plan.layout, out);
    });
}

} // namespace tessel::exporting
