/// What callers of the C interface hold, where several of its parts look inside.
#pragma once

#include "Clip.h"
#include "Results.h"

#include <memory>
#include <utility>

/// The clip lives as long as whatever was opened on it.
struct tessel_clip {
    std::shared_ptr<tessel::api::Clip> clip;
};

namespace tessel::api {

/// As `Serve`, for a call on something that has a member `clip`, or on a null pointer.
template <typename Handle, typename Call>
tessel_result ServeOn(const Handle* handle, tessel_result otherwise, Call&& call) noexcept
{
    const tessel_result result = Serve(otherwise, std::forward<Call>(call));
    if (result != TESSEL_OK && handle != nullptr) {
        NameDocument(handle->clip->StandIn());
    }
    return result;
}

} // namespace tessel::api
