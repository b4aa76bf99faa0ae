#include "Pace.h"

#include <algorithm>

namespace tessel::gstreamer {

template <typename Change>
void Pace::Apply(Id id, Change&& change)
{
    const std::lock_guard lock(mMutex);
    change(mPlaces[id]);
    mChanged.notify_all();
}

Pace::Id Pace::Add()
{
    mPlaces.emplace_back();
    return mPlaces.size() - 1;
}

void Pace::Begin(Id id)
{
    Apply(id, [](Place& place) {
        place.progress = 0;
        place.isEnded = false;
    });
}

void Pace::Advance(Id id, GstClockTime progress)
{
    Apply(id, [progress](Place& place) { place.progress = progress; });
}

void Pace::End(Id id)
{
    Apply(id, [](Place& place) { place.isEnded = true; });
}

void Pace::Start(Id id)
{
    Apply(id, [](Place& place) { place.isStarted = true; });
}

void Pace::SetLinked(Id id, bool isLinked)
{
    // A link that was made while the buffer was on its way has not been tried yet.
    Apply(id, [isLinked](Place& place) { place.isLinked = isLinked || place.isReconfigured; });
}

void Pace::Reconfigure(Id id)
{
    Apply(id, [](Place& place) {
        place.isReconfigured = true;
        place.isLinked = true;
    });
}

void Pace::SetFlushing(Id id, bool isFlushing)
{
    Apply(id, [isFlushing](Place& place) { place.isFlushing = isFlushing; });
}

bool Pace::HasTurn(const Place& place) const
{
    return place.isLinked || place.isFlushing ||
           std::none_of(mPlaces.begin(), mPlaces.end(), [&place](const Place& other) {
               return other.isLinked && !other.isEnded && other.progress < place.progress;
           });
}

bool Pace::WaitForTurn(Id id)
{
    std::unique_lock lock(mMutex);
    mChanged.wait(lock, [&] { return HasTurn(mPlaces[id]); });
    mPlaces[id].isReconfigured = false;
    return !mPlaces[id].isFlushing;
}

bool Pace::WaitForOthersToStart(Id id)
{
    std::unique_lock lock(mMutex);
    mChanged.wait(lock, [&] {
        return mPlaces[id].isFlushing || std::all_of(mPlaces.begin(), mPlaces.end(), [](const Place& place) {
                   return place.isStarted || place.isEnded;
               });
    });
    return !mPlaces[id].isFlushing;
}

} // namespace tessel::gstreamer
