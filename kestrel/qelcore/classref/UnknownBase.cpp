#include "UnknownBase.h"

namespace qelcore::classref {

UnknownBase::~UnknownBase() = default;

} // namespace qelcore::classref
