#include "UI_Group.h"

#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qelui/controls/UI_Button.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace qelui {

UI_Group::UI_Group(std::string identifier, ControlKind kind) : UI_ControlView(kind, std::move(identifier)) {}

UI_Group::~UI_Group() = default;

void UI_Group::AddChild(std::unique_ptr<UI_ControlView> child)
{
    child->mParent = this;
    mChildren.push_back(std::move(child));
}

std::vector<UI_ControlView*> UI_Group::AllControls()
{
    std::vector<UI_ControlView*> controls;
    std::vector<UI_ControlView*> waiting;
    const auto push = [&waiting](UI_Group& group) {
        std::transform(group.mChildren.rbegin(), group.mChildren.rend(), std::back_inserter(waiting),
                       [](const auto& child) { return child.get(); });
    };
    push(*this);
    while (!waiting.empty()) {
        UI_ControlView* const control = waiting.back();
        waiting.pop_back();
        controls.push_back(control);
        if (auto* const group = dynamic_cast<UI_Group*>(control)) {
            push(*group);
        }
    }
    return controls;
}

UI_ControlView* UI_Group::FindControl(std::string_view identifier) noexcept
{
    if (identifier.empty()) {
        return nullptr;
    }
    for (const auto& child : mChildren) {
        if (child->Identifier() == identifier) {
            return child.get();
        }
        if (auto* const group = dynamic_cast<UI_Group*>(child.get())) {
            if (UI_ControlView* const found = group->FindControl(identifier)) {
                return found;
            }
        }
    }
    return nullptr;
}

void UI_Group::ThrowMissing(std::string_view typeName, std::string_view identifier)
{
    throw qelcore::null_pointer_exception(std::string(typeName) + " \"" + std::string(identifier) + '"');
}

UI_OkCancelRow::UI_OkCancelRow(std::string identifier)
    : UI_Group(std::move(identifier), ControlKind::OkCancelRow)
{
    SetOrientation(Orientation::Row);
    SetBorder(false);
    Add(std::make_unique<UI_Button>(std::string(kOkIdentifier))).SetLabel("OK");
    Add(std::make_unique<UI_Button>(std::string(kCancelIdentifier))).SetLabel("Cancel");
}

} // namespace qelui
