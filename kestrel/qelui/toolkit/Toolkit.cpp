#include "Toolkit.h"

namespace qelui {

Toolkit::~Toolkit() = default;

} // namespace qelui
