/// What the probe and the toolkit agree on.
#pragma once

namespace kestrelqt {

/// The probe's last line where windows can be opened.
inline constexpr char kProbeSuccess[] = "ok";

/// Where the probe stands, seen from the folder of the toolkit's library.
inline constexpr char kProbeFile[] = "kestrel/qt-probe";

} // namespace kestrelqt
