/// Text that a person reads. Threads: [ui-thread].
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelui/controls/UI_ControlView.h>

#include <string>

namespace qelui {

/// How a text is fitted into less room than it needs.
enum class DisplayOption {
    Clip = 0,
    ElideMiddle = 3 ///< for long paths: both ends stay readable, the whole in the tooltip
};

/// `Label()` stands before the value.
class KESTRELUI_API UI_StaticText final : public UI_ControlView {
public:
    static constexpr std::string_view kTypeName = "qelui::UI_StaticText";
    explicit UI_StaticText(std::string identifier)
        : UI_ControlView(ControlKind::StaticText, std::move(identifier))
    {
    }

    [[nodiscard]] const std::string& GetValue() const noexcept { return mValue; }
    void SetValue(std::string value);

    [[nodiscard]] DisplayOption GetDisplayOption() const noexcept { return mDisplayOption; }
    void SetDisplayOption(DisplayOption option);

    [[nodiscard]] std::string ShownText() const override { return mValue; }

private:
    std::string mValue;
    DisplayOption mDisplayOption = DisplayOption::Clip;
};

} // namespace qelui
