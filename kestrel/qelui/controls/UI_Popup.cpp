#include "UI_Popup.h"

#include <cstddef>
#include <utility>

namespace qelui {

bool UI_Popup::HasItem(int index) const noexcept
{
    return index >= 0 && static_cast<std::size_t>(index) < mItems.size();
}

int UI_Popup::AddItem(std::string text, int position)
{
    const int index = HasItem(position) ? position : static_cast<int>(mItems.size());
    mItems.insert(mItems.begin() + index, Item{std::move(text), true});
    ChangedLook();
    return index;
}

void UI_Popup::RemoveAllItems()
{
    mItems.clear();
    mValue = -1;
    ChangedLook();
}

void UI_Popup::SetItemEnabled(int index, bool enabled)
{
    if (HasItem(index)) {
        mItems[static_cast<std::size_t>(index)].enabled = enabled;
        ChangedLook();
    }
}

void UI_Popup::SetValue(int index)
{
    mValue = HasItem(index) ? index : -1;
    ChangedLook();
}

void UI_Popup::Choose(int index)
{
    if (IsEnabled() && HasItem(index) && mItems[static_cast<std::size_t>(index)].enabled) {
        SetValue(index);
        NotifyChanged();
    }
}

std::string UI_Popup::ShownText() const
{
    return HasItem(mValue) ? mItems[static_cast<std::size_t>(mValue)].text : std::string();
}

} // namespace qelui
