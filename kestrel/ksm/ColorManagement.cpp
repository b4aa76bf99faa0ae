#include "ColorManagement.h"

namespace KSM {

bool IsAbleToSupportColorManagement() noexcept
{
    return true;
}

} // namespace KSM
