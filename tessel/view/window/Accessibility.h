/// What the player's own widgets are to assistive tools.
#pragma once

namespace tessel::view {

/// Pictures are images, scopes and meters are charts, readouts are labels; without this, Qt calls all of them
/// panels. Once per application. [ui-thread]
void InstallAccessibleRoles();

} // namespace tessel::view
