/// The host's defaults for views.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelui/DrawSupplier.h>

namespace qellumenfactory {

/// One object for the process. [ui-thread]
class KESTRELUI_API UI_NodeManager {
public:
    [[nodiscard]] static UI_NodeManager& Get();

    /// The draw supplier of views that choose none; initially the dark theme. @{
    [[nodiscard]] const qelui::DrawSupplier& GetDefaultDrawSupplier() const noexcept { return mSupplier; }
    void SetDefaultDrawSupplier(const qelui::DrawSupplier& supplier) noexcept { mSupplier = supplier; }
    /// @}

    UI_NodeManager(const UI_NodeManager&) = delete;
    UI_NodeManager& operator=(const UI_NodeManager&) = delete;

private:
    UI_NodeManager() = default;
    ~UI_NodeManager() = default;
    qelui::DrawSupplier mSupplier;
};

} // namespace qellumenfactory
