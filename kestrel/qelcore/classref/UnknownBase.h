/// Objects of the host that are held by shared ownership and asked for interfaces by name.
#pragma once

#include <kestrel/Export.h>

#include <memory>
#include <string_view>

namespace qelcore::classref {

/// Base of such objects. Create them with `std::make_shared`. Threads: [any-thread]; references may be taken
/// and dropped on any thread at once.
class KESTREL_API UnknownBase : public std::enable_shared_from_this<UnknownBase> {
public:
    virtual ~UnknownBase();

    /// The sub-object of the interface whose type name is `typeName` (compared by length, then byte for
    /// byte), or null where this object does not have it. Valid as long as this object.
    [[nodiscard]] virtual void* QueryInterface(std::string_view typeName) noexcept = 0;

    /// The shared reference to this object, for handing it out.
    [[nodiscard]] std::shared_ptr<UnknownBase> GetSharedFromThis() { return shared_from_this(); }

protected:
    UnknownBase() = default;
    UnknownBase(const UnknownBase&) = default;
    UnknownBase& operator=(const UnknownBase&) = default;
};

} // namespace qelcore::classref
