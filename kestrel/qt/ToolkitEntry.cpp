/// The library's one export.

#include "Display.h"
#include "QtToolkit.h"

#include <exception>
#include <memory>

extern "C" [[gnu::visibility("default")]] qelui::Toolkit* KestrelGetToolkit(const char** whyNot)
{
    static std::unique_ptr<kestrelqt::QtToolkit> toolkit;
    if (toolkit) {
        return toolkit.get();
    }
    *whyNot = kestrelqt::WhyNoWindow();
    if (*whyNot != nullptr) {
        return nullptr;
    }
    try {
        toolkit = std::make_unique<kestrelqt::QtToolkit>();
    } catch (const std::exception&) {
        *whyNot = "out of memory";
    }
    return toolkit.get();
}
