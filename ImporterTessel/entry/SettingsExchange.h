/// Selector 38: a clip's settings as text for the host to keep, edited in the dialog where one is due.
#pragma once

#include <kestrel/importabi/Records.h>
#include <kestrel/importabi/StandardParameters.h>

#include <cstdint>

namespace ImporterTessel {

/// The size that the host's text buffer has to have, in bytes; settings that do not fit are dropped.
inline constexpr std::uint32_t kSettingsBufferSize = 10240;

/// Serves selector 38. The dialog is shown for a clip without a file and for a file that the host does not
/// take into a new clip.
///
/// @param file      The clip's path; receives the saved file's with `ksResultUseSavedFile`.
/// @param exchange  Where its buffer is null only the buffer's size is answered. Else the buffer holds the
///                  settings of a clip without a file and receives the new ones, if they fit.
/// @return `ksResultServed`; `ksResultFileUnreadable`, `ksResultUseSavedFile` and `ksResultFailed` (a host
///         without the legacy suite) with the buffer untouched; `ksResultCancelled` with the settings as they
///         were in the buffer.
/// @throws qelcore::null_pointer_exception where a dialog is due and there is no user interface;
///         std::bad_alloc.
/// Threads: [ui-thread] where a dialog is due, else [any-thread].
[[nodiscard]] std::int32_t ExchangeSettings(const ksStdParms* stdParms, ksFileAccessRec& file,
                                            ksSettingsExchangeRec& exchange);

} // namespace ImporterTessel
