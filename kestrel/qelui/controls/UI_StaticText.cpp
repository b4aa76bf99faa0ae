#include "UI_StaticText.h"

#include <utility>

namespace qelui {

void UI_StaticText::SetValue(std::string value)
{
    mValue = std::move(value);
    ChangedLook();
}

void UI_StaticText::SetDisplayOption(DisplayOption option)
{
    mDisplayOption = option;
    ChangedLook();
}

} // namespace qelui
