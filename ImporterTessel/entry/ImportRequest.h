/// One request of the host as the dispatcher's rows see it, and the rows that decline.
#pragma once

#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/StandardParameters.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

/// A request with the two records that it brought. The pointers are the host's and may be null.
struct ImportRequest {
    std::int32_t selector = 0;
    const ksStdParms* stdParms = nullptr;
    void* param1 = nullptr;
    void* param2 = nullptr;
    /// Noted by some rows, for the log line of a request that throws; otherwise null.
    const void* currentImporter = nullptr;
};

/// Serves one selector; may throw.
using ImportRow = std::int32_t (*)(ImportRequest& request);

/// param1 or param2 of a request.
using ImportParameter = void* ImportRequest::*;

/// Reads the pointer at byte `offset` of a packed record, where it may be unaligned.
[[nodiscard]] inline void* PointerAt(const void* record, std::size_t offset) noexcept
{
    void* pointer = nullptr;
    std::memcpy(&pointer, static_cast<const std::byte*>(record) + offset, sizeof pointer);
    return pointer;
}

/// The index that some selectors have in place of a record: the low 32 bits of the parameter.
[[nodiscard]] inline std::uint32_t IndexFrom(const void* parameter) noexcept
{
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(parameter));
}

/// Does nothing and answers `result`.
template <std::int32_t result>
std::int32_t Answer(ImportRequest& /*request*/)
{
    return result;
}

/// Notes the record itself as the current importer and answers `result`.
template <ImportParameter parameter, std::int32_t result>
std::int32_t NoteRecord(ImportRequest& request)
{
    request.currentImporter = request.*parameter;
    return result;
}

/// Notes the pointer at byte `offset` of the record and declines; a null record leaves nothing to note.
template <ImportParameter parameter, std::size_t offset>
std::int32_t NotePointer(ImportRequest& request)
{
    if (request.*parameter != nullptr) {
        request.currentImporter = PointerAt(request.*parameter, offset);
    }
    return ksResultUnsupported;
}

/// Notes the pointer at byte `offset` of the record and declines; fails where the record or the pointer is
/// null.
template <ImportParameter parameter, std::size_t offset>
std::int32_t NeedPointer(ImportRequest& request)
{
    NotePointer<parameter, offset>(request);
    return request.currentImporter == nullptr ? ksResultFailed : ksResultUnsupported;
}
