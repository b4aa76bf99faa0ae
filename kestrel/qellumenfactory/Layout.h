/// Layout texts as trees: what the two dialects of the layout language have in common. Threads: [any-thread].
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qelui/controls/UI_ControlView.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace qellumenfactory {

/// Lumen calls, `qel_button(label: "Save")`, or Sable property sheets, `button { label = "Save" }`.
enum class Dialect { Lumen, Sable };

/// In the order in which messages list them.
enum class Key {
    Identifier,
    Layout,
    Title,
    Label,
    Orientation,
    Border,
    Spacing,
    Margin,
    Checked,
    Value,
    MinValue,
    MaxValue,
    AllowZero,
    DecimalPlaces,
    Step,
    PostLabel,
    MinWidth,
    MinHeight,
    Tooltip
};
inline constexpr int kKeyCount = 19;

/// Counted from 1; columns count characters, not bytes.
struct Position {
    int line = 1;
    int column = 1;
};

using ParameterValue = std::variant<std::string, double, bool>;

struct Parameter {
    Key key = Key::Identifier;
    ParameterValue value;
    Position position; ///< of the name
};

using qelui::ControlKind;

/// One widget with what it holds.
struct KESTRELUI_API LayoutNode {
    ControlKind kind = ControlKind::Dialog;
    std::vector<Parameter> parameters; ///< in the order of the text
    std::vector<LayoutNode> children;

    [[nodiscard]] const Parameter* Find(Key key) const noexcept;
    /// The parameter's value, `fallback` where the node lacks it. @{
    [[nodiscard]] std::string Text(Key key, std::string_view fallback = {}) const;
    [[nodiscard]] double Number(Key key, double fallback) const;
    [[nodiscard]] std::optional<double> Number(Key key) const;
    [[nodiscard]] bool Truth(Key key, bool fallback) const;
    /// @}
};

struct Layout {
    Dialect dialect = Dialect::Lumen;
    LayoutNode root;
};

/// A text that is not a layout. `what()` reads "NAME:LINE:COLUMN: what was expected and what was found".
class KESTRELUI_API LayoutError : public qelcore::Exception, public std::runtime_error {
public:
    LayoutError(std::string_view name, Position position, std::string_view text);
    ~LayoutError() override;
    LayoutError(const LayoutError&) = default;
    LayoutError& operator=(const LayoutError&) = default;
    [[nodiscard]] Position Where() const noexcept { return mPosition; }

private:
    Position mPosition;
};

} // namespace qellumenfactory
