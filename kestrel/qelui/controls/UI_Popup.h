/// A list of which one item is chosen. Threads: [ui-thread].
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelui/controls/UI_ControlView.h>

#include <string>
#include <vector>

namespace qelui {

class KESTRELUI_API UI_Popup final : public UI_ControlView {
public:
    static constexpr std::string_view kTypeName = "qelui::UI_Popup";

    struct Item {
        std::string text; ///< UTF-8
        bool enabled = true;
    };

    explicit UI_Popup(std::string identifier) : UI_ControlView(ControlKind::Popup, std::move(identifier)) {}

    /// Inserts an item at `position`, -1 for the end. @return the item's index. The choice stays on its
    /// index.
    int AddItem(std::string text, int position = -1);
    void RemoveAllItems();
    [[nodiscard]] const std::vector<Item>& Items() const noexcept { return mItems; }
    /// A person cannot choose a disabled item; code can. Indices without item are ignored.
    void SetItemEnabled(int index, bool enabled);

    /// Index of the chosen item, -1 for none. @{
    [[nodiscard]] int GetValue() const noexcept { return mValue; }
    /// An index without an item chooses none.
    void SetValue(int index);
    /// @}

    /// A person chose an item: handlers run, also where it was chosen already, because a popup may show an
    /// item that the settings behind it do not have. Nothing happens on a disabled control or item.
    void Choose(int index);

    [[nodiscard]] std::string ShownText() const override;

private:
    [[nodiscard]] bool HasItem(int index) const noexcept;

    std::vector<Item> mItems;
    int mValue = -1;
};

} // namespace qelui
