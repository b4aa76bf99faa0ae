#include "FieldView.h"

namespace tessel::view {

Rows RowsOf(FieldView view, FirstField firstField, bool isSecondField, int height) noexcept
{
    const bool isLower = view == FieldView::Lower ||
                         (view == FieldView::Bob && (firstField == FirstField::Lower) != isSecondField);
    // A picture of one row has no lower field.
    if (view == FieldView::Woven || height < 2) {
        return {0, 1, height};
    }
    return isLower ? Rows{1, 2, height / 2} : Rows{0, 2, (height + 1) / 2};
}

} // namespace tessel::view
