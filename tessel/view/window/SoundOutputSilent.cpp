/// Without Qt Multimedia: pictures alone.

#include "SoundOutput.h"

namespace tessel::view {

struct SoundOutput::Player {};

SoundOutput::SoundOutput() = default;
SoundOutput::~SoundOutput() = default;

void SoundOutput::Start(const std::shared_ptr<const ViewedClip>& /*clip*/, double /*seconds*/, SoundEnd /*end*/)
{
    mState = "this build plays no sound: it was made without Qt Multimedia";
}

void SoundOutput::Stop() {}

double SoundOutput::Position() const
{
    return -1;
}

} // namespace tessel::view
