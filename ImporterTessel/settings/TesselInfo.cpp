#include "TesselInfo.h"

#include <utility>

namespace ImporterTessel {

TesselInfo::TesselInfo() = default;
TesselInfo::~TesselInfo() = default;
TesselInfo::TesselInfo(const TesselInfo&) = default;
TesselInfo& TesselInfo::operator=(const TesselInfo&) = default;
TesselInfo::TesselInfo(TesselInfo&&) noexcept = default;

TesselInfo& TesselInfo::operator=(TesselInfo&& source) noexcept
{
    if (this == &source) {
        return *this;
    }
#define TESSEL_MOVE(type, name, initial, presence, place) name = std::move(source.name);
    TESSEL_INFO_FIELDS(TESSEL_MOVE)
#undef TESSEL_MOVE
    // Intended: the duration is the one scalar that leaves its source; the frame rate stays.
    source.mVideoDuration = {};
    return *this;
}

} // namespace ImporterTessel
