/// The MLT producer "tessel".
#pragma once

#include <framework/mlt.h>

namespace tessel::mlt {

/// As `mlt_register_callback`: opens the document `resource`, a text. Null where it cannot be opened; the log
/// says why. profile: may be null; lengths are computed when a profile is set
void* CreateProducer(mlt_profile profile, mlt_service_type type, const char* id, const void* resource);

} // namespace tessel::mlt
