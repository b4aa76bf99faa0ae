/// What callers of the C interface hold, where several of its parts look inside.
#pragma once

#include "Clip.h"

#include <memory>

/// The clip lives as long as whatever was opened on it.
struct tessel_clip {
    std::shared_ptr<tessel::api::Clip> clip;
};
