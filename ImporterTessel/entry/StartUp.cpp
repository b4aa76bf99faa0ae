#include "StartUp.h"

#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/qelcore/debug/DebugDatabase.h>

#include <algorithm>
#include <cstring>
#include <string_view>

namespace ImporterTessel {

namespace {

constexpr std::string_view kGateKey = "ML.LoadTestingPluginsAtStartup";
constexpr std::string_view kGateOpen = "true";
constexpr std::string_view kGateDefault = "false";

constexpr std::uint32_t kFileTypeFlags = 0xE008;
constexpr std::string_view kDisplayName = "Tessel";
/// The list's one extension with the NUL that ends it.
constexpr std::string_view kExtensionList{"tessel\0", 7};

} // namespace

std::int32_t StartUp(ksStartUpRec* record)
{
    if (qelcore::debug::DebugDatabase::Instance().GetEntry(kGateKey, kGateDefault) != kGateOpen) {
        return ksResultUnsupported;
    }
    if (record == nullptr) {
        return ksResultFailed;
    }
    record->fileTypeCode = kFileTypeCode;
    record->flag28 = 1;
    record->flag32 = 1;
    record->flag36 = 1;
    record->flag44 = 1;
    record->flag52 = 1;
    record->flag60 = 1;
    record->flag72 = 1;
    return ksResultServed;
}

std::int32_t DescribeFileType(ksFileTypeRec& record) noexcept
{
    record.fileTypeCode = kFileTypeCode;
    record.flags = kFileTypeFlags;
    record.zero8 = 0;
    record.zero760 = 0;

    constexpr std::size_t kNameLength = std::min(kDisplayName.size(), sizeof record.displayName - 1);
    std::memset(record.displayName, 0, sizeof record.displayName);
    std::memcpy(record.displayName, kDisplayName.data(), kNameLength);

    // Two bytes stay for the empty entry that closes the list; what lies behind it is the host's.
    constexpr std::size_t kListLength = std::min(kExtensionList.size(), sizeof record.extensions - 2);
    std::memcpy(record.extensions, kExtensionList.data(), kListLength);
    std::memset(record.extensions + kListLength, 0, 2);
    return ksResultServed;
}

} // namespace ImporterTessel
