#include "Idents.h"

#include <array>

namespace tessel::document {
namespace {

constexpr std::array<Ident, 4> kIdents{{{"ebu-stereo-1000", "EBU Stereo (1000 Hz)", 0, kStereoChannels, 2},
                                        {"ebu-stereo-400", "EBU Stereo (400 Hz)", 1, kStereoChannels, 2},
                                        {"ebu-5.1", "EBU Multichannel (5.1)", 2, kSurroundChannels, 6},
                                        {"blits", "BLITS (5.1)", 3, kSurroundChannels, 6}}};

} // namespace

std::span<const Ident> AllIdents() noexcept
{
    return kIdents;
}

} // namespace tessel::document
