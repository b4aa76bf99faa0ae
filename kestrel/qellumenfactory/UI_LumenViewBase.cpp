#include "UI_LumenViewBase.h"

#include "LayoutBuilder.h"
#include "Parser.h"

#include <kestrel/qelcore/resources/ResourceFile.h>

#include <array>
#include <iterator>
#include <utility>

namespace qellumenfactory {

UI_LumenViewBase::UI_LumenViewBase(std::string identifier, const qelui::DrawSupplier& supplier,
                                   qelui::TopLevelWindow* parent, LumenVersionPreference preference)
    : mIdentifier(std::move(identifier)), mSupplier(supplier), mParent(parent), mPreference(preference)
{
}

UI_LumenViewBase::~UI_LumenViewBase() = default;

void* UI_LumenViewBase::QueryInterface(std::string_view typeName) noexcept
{
    return typeName == UI_ILumenView::kTypeName ? static_cast<UI_ILumenView*>(this) : nullptr;
}

bool UI_LumenViewBase::GetScriptStream(std::string_view identifier, std::ostream& stream) const
{
    std::array<std::string_view, 2> types{"LUMEN", "SABLE"};
    if (mPreference != kPreferLumen) {
        std::swap(types[0], types[1]);
    }
    for (const std::string_view type : types) {
        const std::string name = std::string(type) + '.' + std::string(identifier);
        if (const auto bytes = qelcore::resources::FindLoadedResource(name)) {
            stream.write(reinterpret_cast<const char*>(bytes->data()),
                         static_cast<std::streamsize>(bytes->size()));
            return true;
        }
    }
    return false;
}

void UI_LumenViewBase::ParseLumenScript(std::istream& stream)
{
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    mDialog = BuildDialog(ParseLayout(text, mIdentifier).root);
    mDialog->SetDrawSupplier(mSupplier);
    mDialog->SetParentWindow(mParent);
    BindControls();
    mDialog->RunModal();
}

} // namespace qellumenfactory
