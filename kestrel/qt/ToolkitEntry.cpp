/// The library's one export.

#include "Display.h"
#include "QtToolkit.h"

#include <exception>
#include <memory>
#include <string>

extern "C" [[gnu::visibility("default")]] qelui::Toolkit* KestrelGetToolkit(const char** whyNot)
{
    // Never destroyed, because Qt's own statics are destroyed before ours at the end of the process.
    static kestrelqt::QtToolkit* toolkit = nullptr;
    if (toolkit != nullptr) {
        return toolkit;
    }
    static std::string reason; // stays valid for the caller
    try {
        reason = kestrelqt::WhyNoWindow();
        if (!reason.empty()) {
            *whyNot = reason.c_str();
            return nullptr;
        }
        toolkit = std::make_unique<kestrelqt::QtToolkit>().release();
    } catch (const std::exception&) {
        *whyNot = "out of memory";
    }
    return toolkit;
}
