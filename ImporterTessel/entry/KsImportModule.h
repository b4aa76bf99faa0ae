/// The host's module template: the dispatcher of an importer's requests and the base of its instances.
#pragma once

#include "ImportFailures.h"
#include "ImportRequest.h"

#include <kestrel/importabi/Records.h>
#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/Selectors.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <new>

/// Base of `Module`, one importer's per-file instance, which the host carries from request to request.
///
/// `Module` derives from this and brings what the rows call:
/// - `kTypeName`, its run-time name for the log;
/// - static `StartUp(ksStartUpRec*)`, `DescribeFileType(ksFileTypeRec&)` and
///   `ExchangeSettings(const ksStdParms*, ksFileAccessRec&, ksSettingsExchangeRec&)`;
/// - `OpenFile(const ksOpenRec&)`, `DescribeClip(const ksFileAccessRec&, ksFileInfoRec&)`,
///   `SynthesizeFrame(ksFrameRec&, const ksStdParms*)`, `SynthesizeAudio(const ksAudioRec&)`,
///   `GetFrameSize(ksFrameSizeRec&)` and `GetColorInformation(ksColorRec&)`.
/// Each returns the request's result and may throw. `Module` may also bring its own
/// `CreateImportModuleInstance`, which is then called in place of this one.
///
/// Not in a namespace, because the logs carry the template's name.
template <class Module>
class KsImportModule {
public:
    KsImportModule() = default;
    virtual ~KsImportModule() = default;
    KsImportModule(const KsImportModule&) = delete;
    KsImportModule(KsImportModule&&) = delete;
    KsImportModule& operator=(const KsImportModule&) = delete;
    KsImportModule& operator=(KsImportModule&&) = delete;

    /// Keeps the host's standard parameters, which outlive the instance.
    virtual void SetStdParms(const ksStdParms* stdParms) { mStdParms = stdParms; }

    /// Serves one request; see `ksImportEntry`. Whatever a row throws is reported and becomes a result:
    /// `std::bad_alloc` gives `ksResultOutOfMemory`, anything else `ksResultFailed`.
    ///
    /// A null record or instance where one is needed gives `ksResultFailed` and is never dereferenced.
    /// Threads: [any-thread], with each record and instance in one call at a time.
    [[nodiscard]] static std::int32_t ImportEntry(std::int32_t selector, const ksStdParms* stdParms,
                                                  void* param1, void* param2) noexcept;

    /// A new instance with default settings and the host's parameters.
    /// @throws what its construction threw, after reporting a `std::exception`.
    [[nodiscard]] static std::unique_ptr<Module> CreateImportModuleInstance(const ksStdParms* stdParms);

protected:
    /// Serves a request of a known selector by its row, outside of the barrier: what the row noted for the log
    /// stands in the request afterwards, also where it throws.
    [[nodiscard]] static std::int32_t Serve(ImportRequest& request);

    [[nodiscard]] const ksStdParms* StdParms() const noexcept { return mStdParms; }

private:
    static Module* InstanceFrom(ksInstance instance) noexcept { return static_cast<Module*>(instance); }

    static std::int32_t ServeStartUp(ImportRequest& request);
    static std::int32_t ServeDelete(ImportRequest& request);
    static std::int32_t ServeFileType(ImportRequest& request);
    static std::int32_t ServeAudio(ImportRequest& request);
    static std::int32_t ServeIndexed27(ImportRequest& request);
    static std::int32_t ServeClipDescription(ImportRequest& request);
    static std::int32_t ServeSettingsExchange(ImportRequest& request);
    static std::int32_t ServeOpenFile(ImportRequest& request);
    static std::int32_t ServeFrameSize(ImportRequest& request);
    static std::int32_t ServeFrame(ImportRequest& request);
    static std::int32_t ServeColorInformation(ImportRequest& request);
    static std::int32_t ServeCreateInstance(ImportRequest& request);

    static constexpr ImportParameter kParam1 = &ImportRequest::param1;
    static constexpr ImportParameter kParam2 = &ImportRequest::param2;
    static constexpr ImportRow kDecline = &Answer<ksResultUnsupported>;

    /// One row for each selector.
    static constexpr std::array<ImportRow, ksSelectorLast + 1> kRows{
        &ServeStartUp,                             // 0
        &Answer<ksResultServed>,                   // 1
        kDecline,                                  // 2
        kDecline,                                  // 3
        kDecline,                                  // 4
        &NotePointer<kParam2, 92>,                 // 5
        kDecline,                                  // 6
        kDecline,                                  // 7
        &NoteRecord<kParam2, ksResultServed>,      // 8
        &ServeDelete,                              // 9
        kDecline,                                  // 10
        kDecline,                                  // 11
        &NotePointer<kParam2, 0>,                  // 12
        &NotePointer<kParam2, 0>,                  // 13
        &ServeFileType,                            // 14
        kDecline,                                  // 15
        kDecline,                                  // 16
        kDecline,                                  // 17
        kDecline,                                  // 18
        kDecline,                                  // 19
        kDecline,                                  // 20
        kDecline,                                  // 21
        kDecline,                                  // 22
        &NotePointer<kParam2, 0>,                  // 23
        &NotePointer<kParam2, 0>,                  // 24
        &ServeAudio,                               // 25
        kDecline,                                  // 26
        &ServeIndexed27,                           // 27
        &Answer<ksResultSelector28>,               // 28
        &NotePointer<kParam2, 20>,                 // 29
        &NotePointer<kParam2, 20>,                 // 30
        kDecline,                                  // 31
        kDecline,                                  // 32
        kDecline,                                  // 33
        kDecline,                                  // 34
        kDecline,                                  // 35
        &Answer<ksResultSelector36>,               // 36
        &ServeClipDescription,                     // 37
        &ServeSettingsExchange,                    // 38
        &ServeOpenFile,                            // 39
        &NotePointer<kParam1, 0>,                  // 40
        kDecline,                                  // 41
        kDecline,                                  // 42
        kDecline,                                  // 43
        kDecline,                                  // 44
        &ServeFrameSize,                           // 45
        &NeedPointer<kParam1, 0>,                  // 46
        &ServeFrame,                               // 47
        &NotePointer<kParam1, 0>,                  // 48
        &NotePointer<kParam2, 0>,                  // 49
        kDecline,                                  // 50
        &NotePointer<kParam1, 0>,                  // 51
        &NotePointer<kParam2, 0>,                  // 52
        &NotePointer<kParam2, 0>,                  // 53
        kDecline,                                  // 54
        &NoteRecord<kParam2, ksResultUnsupported>, // 55
        &NeedPointer<kParam1, 0>,                  // 56
        kDecline,                                  // 57
        &NeedPointer<kParam2, 0>,                  // 58
        &NeedPointer<kParam1, 0>,                  // 59
        &NeedPointer<kParam1, 0>,                  // 60
        &NeedPointer<kParam2, 0>,                  // 61
        &NeedPointer<kParam2, 0>,                  // 62
        &NeedPointer<kParam2, 0>,                  // 63
        &NeedPointer<kParam2, 0>,                  // 64
        &NeedPointer<kParam2, 64>,                 // 65
        kDecline,                                  // 66
        &NeedPointer<kParam2, 0>,                  // 67
        &NeedPointer<kParam2, 0>,                  // 68
        &NeedPointer<kParam2, 0>,                  // 69
        &NeedPointer<kParam2, 0>,                  // 70
        kDecline,                                  // 71
        &NotePointer<kParam2, 0>,                  // 72
        &ServeColorInformation,                    // 73
        &NeedPointer<kParam2, 0>,                  // 74
        &NeedPointer<kParam2, 0>,                  // 75
        &NeedPointer<kParam2, 0>,                  // 76
        &NeedPointer<kParam2, 0>,                  // 77
        &NeedPointer<kParam2, 0>,                  // 78
        &NeedPointer<kParam2, 0>,                  // 79
        kDecline,                                  // 80
        &ServeCreateInstance,                      // 81
        &NeedPointer<kParam2, 0>,                  // 82
        &NeedPointer<kParam2, 64>,                 // 83
        &NeedPointer<kParam2, 0>,                  // 84
        &NeedPointer<kParam2, 0>,                  // 85
        &NeedPointer<kParam2, 0>,                  // 86
    };

    const ksStdParms* mStdParms = nullptr;
};

template <class Module>
std::int32_t KsImportModule<Module>::ImportEntry(std::int32_t selector, const ksStdParms* stdParms,
                                                 void* param1, void* param2) noexcept
{
    if (static_cast<std::uint32_t>(selector) >= kRows.size()) {
        return ksResultUnsupported;
    }
    ImportRequest request{selector, stdParms, param1, param2};
    try {
        return Serve(request);
    } catch (const std::bad_alloc&) {
        ReportBadAlloc(Module::kTypeName, request);
        return ksResultOutOfMemory;
    } catch (const std::exception& exception) {
        ReportException(Module::kTypeName, request, exception.what());
        return ksResultFailed;
    } catch (...) {
        ReportUnknownException(Module::kTypeName, request);
        return ksResultFailed;
    }
}

template <class Module>
std::int32_t KsImportModule<Module>::Serve(ImportRequest& request)
{
    return kRows[static_cast<std::uint32_t>(request.selector)](request);
}

template <class Module>
std::unique_ptr<Module> KsImportModule<Module>::CreateImportModuleInstance(const ksStdParms* stdParms)
{
    try {
        auto instance = std::make_unique<Module>();
        instance->SetStdParms(stdParms);
        return instance;
    } catch (const std::exception& exception) {
        ReportFailedCreation(Module::kTypeName, exception.what());
        throw;
    }
}

template <class Module>
std::int32_t KsImportModule<Module>::ServeStartUp(ImportRequest& request)
{
    return Module::StartUp(static_cast<ksStartUpRec*>(request.param1));
}

template <class Module>
std::int32_t KsImportModule<Module>::ServeDelete(ImportRequest& request)
{
    if (request.param2 == nullptr) {
        return ksResultUnsupported;
    }
    delete InstanceFrom(request.param2);
    return ksResultServed;
}

template <class Module>
std::int32_t KsImportModule<Module>::ServeFileType(ImportRequest& request)
{
    if (IndexFrom(request.param1) != 0) {
        return ksResultNoMoreEntries;
    }
    auto* const record = static_cast<ksFileTypeRec*>(request.param2);
    return record == nullptr ? ksResultFailed : Module::DescribeFileType(*record);
}

template <class Module>
std::int32_t KsImportModule<Module>::ServeAudio(ImportRequest& request)
{
    const auto* const record = static_cast<const ksAudioRec*>(request.param2);
    Module* const instance = record == nullptr ? nullptr : InstanceFrom(record->instance);
    return instance == nullptr ? ksResultFailed : instance->SynthesizeAudio(*record);
}

template <class Module>
std::int32_t KsImportModule<Module>::ServeIndexed27(ImportRequest& request)
{
    auto* const record = static_cast<ksIndexedRec*>(request.param2);
    if (record == nullptr || record->instance == nullptr) {
        return ksResultFailed;
    }
    if (IndexFrom(request.param1) != 0) {
        return ksResultNoMoreEntries;
    }
    record->value8 = 0;
    return ksResultServed;
}

template <class Module>
std::int32_t KsImportModule<Module>::ServeClipDescription(ImportRequest& request)
{
    const auto* const file = static_cast<const ksFileAccessRec*>(request.param1);
    auto* const record = static_cast<ksFileInfoRec*>(request.param2);
    if (file == nullptr || record == nullptr) {
        return ksResultFailed;
    }
    if (Module* const instance = InstanceFrom(record->instance)) {
        return instance->DescribeClip(*file, *record);
    }
    std::unique_ptr<Module> created = Module::CreateImportModuleInstance(request.stdParms);
    const std::int32_t result = created == nullptr ? ksResultNoInstance : created->DescribeClip(*file, *record);
    // Intended: the slot gets the new instance whatever the description's result; the host deletes it.
    record->instance = created.release();
    return result;
}

template <class Module>
std::int32_t KsImportModule<Module>::ServeSettingsExchange(ImportRequest& request)
{
    auto* const file = static_cast<ksFileAccessRec*>(request.param1);
    auto* const record = static_cast<ksSettingsExchangeRec*>(request.param2);
    if (file == nullptr || record == nullptr) {
        return ksResultFailed;
    }
    return Module::ExchangeSettings(request.stdParms, *file, *record);
}

template <class Module>
std::int32_t KsImportModule<Module>::ServeOpenFile(ImportRequest& request)
{
    auto* const record = static_cast<ksOpenRec*>(request.param2);
    if (record == nullptr) {
        return ksResultFailed;
    }
    if (Module* const instance = InstanceFrom(record->instance)) {
        // Intended: an instance that is there stays, also when the file does not open.
        return instance->OpenFile(*record);
    }
    std::unique_ptr<Module> created = Module::CreateImportModuleInstance(request.stdParms);
    const std::int32_t result = created == nullptr ? ksResultNoInstance : created->OpenFile(*record);
    if (result != ksResultServed) {
        created.reset();
    }
    record->instance = created.release();
    return result;
}

template <class Module>
std::int32_t KsImportModule<Module>::ServeFrameSize(ImportRequest& request)
{
    auto* const record = static_cast<ksFrameSizeRec*>(request.param1);
    if (record == nullptr) {
        return ksResultFailed;
    }
    if (record->index != 0) {
        return ksResultUnsupported;
    }
    Module* const instance = InstanceFrom(record->instance);
    return instance == nullptr ? ksResultFailed : instance->GetFrameSize(*record);
}

template <class Module>
std::int32_t KsImportModule<Module>::ServeFrame(ImportRequest& request)
{
    auto* const record = static_cast<ksFrameRec*>(request.param2);
    Module* const instance = record == nullptr ? nullptr : InstanceFrom(record->instance);
    return instance == nullptr ? ksResultFailed : instance->SynthesizeFrame(*record, request.stdParms);
}

template <class Module>
std::int32_t KsImportModule<Module>::ServeColorInformation(ImportRequest& request)
{
    auto* const record = static_cast<ksColorRec*>(request.param2);
    Module* const instance = record == nullptr ? nullptr : InstanceFrom(record->instance);
    if (instance == nullptr) {
        return ksResultFailed;
    }
    return IndexFrom(request.param1) == 0 ? instance->GetColorInformation(*record) : ksResultNoSuchColorIndex;
}

template <class Module>
std::int32_t KsImportModule<Module>::ServeCreateInstance(ImportRequest& request)
{
    auto* const record = static_cast<ksFileInfoRec*>(request.param2);
    if (record == nullptr) {
        return ksResultFailed;
    }
    if (record->instance != nullptr) {
        return ksResultUnsupported;
    }
    record->instance = Module::CreateImportModuleInstance(request.stdParms).release();
    // Intended: declined, although the instance is there now.
    return record->instance == nullptr ? ksResultNoInstance : ksResultUnsupported;
}
