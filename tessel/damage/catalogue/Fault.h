/// The faults that can be put in: one row each, named by the id under which a judge would report it.
#pragma once

#include "FaultValue.h"

#include <tessel/damage/DamagePlan.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessel::damage {

struct Fault {
    std::string_view name;     ///< a name of `tessel/verify/catalogue/Names.h`
    std::string_view form;     ///< of its value, as help shows it
    std::string_view usual;    ///< the value by default; without its "FRAME", the middle frame
    std::string_view sentence; ///< what it does
    void (*apply)(DamagePlan& plan, FaultValue& value, Truth& truth);
};

/// The rows by what they are about. @{
[[nodiscard]] std::span<const Fault> ContainerFaults() noexcept;
[[nodiscard]] std::span<const Fault> OrderFaults() noexcept;
[[nodiscard]] std::span<const Fault> GeometryFaults() noexcept;
[[nodiscard]] std::span<const Fault> FieldFaults() noexcept;
[[nodiscard]] std::span<const Fault> ColorFaults() noexcept;
[[nodiscard]] std::span<const Fault> SoundFaults() noexcept;
/// @}

/// All rows, in the order of the groups above.
[[nodiscard]] std::vector<Fault> AllFaults();

/// Adds what `text`, NAME or NAME=VALUE, asks for.
/// @throws FaultError  for an unknown name or an invalid value, and for a fault that this clip cannot have
void AddFault(DamagePlan& plan, const std::string& text);

} // namespace tessel::damage
