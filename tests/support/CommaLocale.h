/// A locale whose decimal point is a comma, on any machine with the GNU C library: few have one installed.
#pragma once

#include <support/ScopedVariable.h>
#include <support/TemporaryFolder.h>

#include <array>
#include <clocale>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>

namespace test {

/// In force from construction to destruction, for numbers only and for the whole process.
class CommaLocale {
public:
    CommaLocale() : mSavedName(std::setlocale(LC_NUMERIC, nullptr))
    {
        std::filesystem::create_directory(mFolder.Path() / "comma");
        // A compiled category: a magic number, the number of fields, where each begins, and the fields:
        // decimal point, thousands separator, grouping, both separators as wide characters, character set.
        constexpr std::array<std::uint32_t, 8> kHead{0x20031114, 6, 32, 34, 35, 36, 40, 44};
        constexpr char kFields[] = ",\0"
                                   "\0"
                                   "\0"
                                   ",\0\0\0"
                                   "\0\0\0\0"
                                   "UTF-8";
        std::string bytes(sizeof kHead, '\0');
        std::memcpy(bytes.data(), kHead.data(), sizeof kHead);
        bytes.append(kFields, sizeof kFields);
        static_cast<void>(mFolder.Write("comma/LC_NUMERIC", bytes));
        const ScopedVariable path("LOCPATH", mFolder.Path().c_str());
        mIsInForce = std::setlocale(LC_NUMERIC, "comma") != nullptr &&
                     std::strcmp(std::localeconv()->decimal_point, ",") == 0;
    }

    ~CommaLocale() { std::setlocale(LC_NUMERIC, mSavedName.c_str()); }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    /// False where the C library is another one, or this one no longer reads such files.
    [[nodiscard]] bool IsInForce() const { return mIsInForce; }

private:
    TemporaryFolder mFolder;
    std::string mSavedName;
    bool mIsInForce = false;
};

} // namespace test
