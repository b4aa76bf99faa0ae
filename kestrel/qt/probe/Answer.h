/// What the probe and the toolkit share.
#pragma once

namespace kestrelqt {

/// The probe's last line if windows can be opened.
inline constexpr char kProbeSuccess[] = "ok";

/// The probe's path, relative to the folder of the toolkit's library.
inline constexpr char kProbeFile[] = "kestrel/qt-probe";

} // namespace kestrelqt
