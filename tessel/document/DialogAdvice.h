/// Sentences for the settings dialog's status line that take knowledge of the document.
#pragma once

#include <string>
#include <string_view>

namespace tessel::document {

/// What there is to say of a control while the dialog holds these settings: why a chart is not shown, which
/// values the chosen modes do not use. One sentence or two, empty where there is nothing to say.
/// @param control    The control's identifier in the dialog's layout.
/// @param complaint  What the plug-in logged when a person used the control, empty on other occasions. With
///                   one, the answer is what became of a swatch file, or empty for other complaints.
/// Threads: [any-thread].
[[nodiscard]] std::string DialogAdvice(std::string_view control, std::string_view settingsText,
                                       std::string_view complaint);

} // namespace tessel::document
