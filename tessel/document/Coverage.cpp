#include "Coverage.h"

#include <kestrel/brindle/PixelFormat.h>

namespace tessel::document {

bool PaintsWholeFrame(const importhost::ClipDescription& description, const DocumentFacts& facts)
{
    switch (facts.renderFormat) {
    case kRenderFieldColors:
        return facts.fieldType == 0 || description.height % 2 == 0;
    case kRenderGradient:
        return true;
    case kRenderSwatches:
        return BR::SDKToBEPixelFormat(facts.pixelFormatCode) == BR::PixelFormat::BGRA_4444_32f;
    default:
        return false;
    }
}

bool IsStill(const DocumentFacts& facts) noexcept
{
    return !facts.drawsNumber && facts.renderFormat != kRenderGradient;
}

} // namespace tessel::document
