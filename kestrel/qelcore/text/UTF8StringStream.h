/// A stream that composes UTF-8 texts without regard to the process's locale.
#pragma once

#include <kestrel/Export.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace qelcore {

/// Collects texts, whole numbers and pointers. Pointers print as bare lower-case hexadecimal digits, without
/// "0x" and without padding; whole numbers in the base that was set last (ten at first).
/// Threads: [any-thread].
class KESTREL_API oUTF8StringStream {
public:
    enum class Base { Decimal = 10, Hexadecimal = 16 };

    oUTF8StringStream& operator<<(std::string_view text);
    /// NUL-terminated; null adds nothing. Without this overload a literal would print as a pointer.
    oUTF8StringStream& operator<<(const char* text);
    oUTF8StringStream& operator<<(const void* pointer);
    oUTF8StringStream& operator<<(Base base);

    template <class Integer>
    requires(std::is_integral_v<Integer> && !std::is_same_v<Integer, bool> &&
             !std::is_same_v<Integer, char>) oUTF8StringStream&
    operator<<(Integer value)
    {
        if constexpr (std::is_signed_v<Integer>) {
            AppendSigned(value);
        } else {
            AppendUnsigned(value);
        }
        return *this;
    }

    [[nodiscard]] const std::string& Str() const noexcept { return mText; }

private:
    void AppendSigned(std::int64_t value);
    void AppendUnsigned(std::uint64_t value);

    std::string mText;
    Base mBase = Base::Decimal;
};

} // namespace qelcore
