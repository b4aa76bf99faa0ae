/// Sentences about a dialog's controls that only the program can give, because the host does not know what the
/// document means. Threads: [ui-thread].
#pragma once

#include <functional>
#include <string>

namespace qelui {

struct AdviceRequest {
    std::string control;      ///< the control's identifier
    std::string settingsText; ///< the document that the dialog's controls describe now
    /// The last line that the plug-in logged when a person used the control; empty if it logged nothing, and
    /// when the control only has the focus.
    std::string complaint;
};

/// One sentence for the status line, UTF-8; empty where there is nothing to say. With a complaint the sentence
/// takes its place. Called at each change and each move of the focus, so it has a few milliseconds.
using Adviser = std::function<std::string(const AdviceRequest&)>;

} // namespace qelui
