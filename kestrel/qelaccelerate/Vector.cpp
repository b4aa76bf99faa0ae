#include "Vector.h"

#include <algorithm>
#include <cstring>

namespace qelaccelerate::utility {

void Zero(std::size_t count, float* destination) noexcept
{
    std::fill_n(destination, count, 0.0F);
}

void Copy(std::size_t count, const float* source, float* destination) noexcept
{
    // A null buffer may come with a count of 0, which memmove does not allow. memcpy would not allow
    // source and destination to be the same.
    if (count != 0) {
        std::memmove(destination, source, count * sizeof(float));
    }
}

} // namespace qelaccelerate::utility
