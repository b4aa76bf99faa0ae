#include "Wrapper.h"

namespace tessel::document {

qelcore::serialization::Value Unwrapped(const qelcore::serialization::Value& root) noexcept
{
    return qelcore::serialization::ObjectHasProperty(root, kWrapperKey)
               ? qelcore::serialization::GetVariantInObject(root, kWrapperKey)
               : root;
}

} // namespace tessel::document
