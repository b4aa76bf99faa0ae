#include "Importer.h"

#include "HostError.h"
#include "Library.h"
#include "PathText.h"
#include "PluginResources.h"
#include "StandardParameters.h"

#include <kestrel/importabi/Entries.h>
#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/Selectors.h>
#include <kestrel/qelcore/debug/DebugDatabase.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>

namespace importhost {
namespace {

constexpr char kTestingPluginsKey[] = "ML.LoadTestingPluginsAtStartup";

/// Plug-ins whose enumeration never ends are cut off here.
constexpr std::intptr_t kMostFileTypes = 256;

/// Held while a plug-in is loaded and started, and while it is shut down and unloaded: both change what it has
/// for the whole process, and two importers may be the same library.
std::mutex& LoadingMutex() noexcept
{
    static std::mutex sMutex;
    return sMutex;
}

/// What the identity callback was told.
struct Told {
    int calls = 0;
    std::string nameKey;
    std::string matchName;
    std::string kind;
    std::uint32_t code = 0;
};

std::int32_t CollectIdentity(void* hostContext, const char* nameKey, const char* matchName, const char* kind,
                             const char* /*text*/, std::uint32_t code, std::int32_t /*value13*/,
                             std::int32_t /*value29*/, std::int64_t /*zero*/)
{
    auto& told = *static_cast<Told*>(hostContext);
    const auto text = [](const char* characters) { return characters != nullptr ? characters : ""; };
    ++told.calls;
    told.nameKey = text(nameKey);
    told.matchName = text(matchName);
    told.kind = text(kind);
    told.code = code;
    return 0;
}

void RequireAgreement(const std::filesystem::path& file, const PluginIdentity& identity, const Told& told)
{
    const auto require = [&file](bool agrees, const char* what, const std::string& listed,
                                 const std::string& said) {
        if (!agrees) {
            throw HostError(DisplayName(file) +
                            ": the plug-in contradicts itself: its property list gives the " + what + " \"" +
                            OneLine(listed) + "\", its entry \"" + OneLine(said) + "\"");
        }
    };
    if (told.calls != 1) {
        throw HostError(DisplayName(file) + ": " + kPluginDataEntryName + " called back " +
                        std::to_string(told.calls) + " times, once expected");
    }
    require(told.nameKey == identity.nameKey, "name", identity.nameKey, told.nameKey);
    require(told.matchName == identity.matchName, "match name", identity.matchName, told.matchName);
    require(told.kind == identity.kind, "kind", identity.kind, told.kind);
    require(told.code == identity.kindCode, "kind code", std::to_string(identity.kindCode),
            std::to_string(told.code));
}

/// The text of a fixed field that need not be closed.
template <std::size_t Size>
std::string_view FieldText(const std::array<char, Size>& field)
{
    return {field.data(),
            static_cast<std::size_t>(std::find(field.begin(), field.end(), '\0') - field.begin())};
}

FileType FileTypeFromRecord(const ksFileTypeRec& record)
{
    FileType type;
    type.code = record.fileTypeCode;
    std::array<char, sizeof record.displayName> name{};
    std::memcpy(name.data(), record.displayName, name.size());
    type.displayName = FieldText(name);

    std::array<char, sizeof record.extensions> extensions{};
    std::memcpy(extensions.data(), record.extensions, extensions.size());
    const std::string_view all(extensions.data(), extensions.size());
    for (std::size_t begin = 0; begin < all.size();) {
        const std::size_t end = std::min(all.find('\0', begin), all.size());
        if (end == begin) {
            break; // an empty entry closes the list
        }
        type.extensions.emplace_back(all.substr(begin, end - begin));
        begin = end + 1;
    }
    return type;
}

} // namespace

struct Importer::State {
    std::filesystem::path file;
    PluginIdentity identity;
    std::vector<FileType> fileTypes;
    std::optional<Library> library;
    ksImportEntry entry = nullptr;
    bool isStarted = false;
    std::atomic<bool> servedFirstFrame = false;
};

Importer::Importer(std::unique_ptr<State> state) : mState(std::move(state)) {}

Importer::~Importer()
{
    const std::lock_guard lock(LoadingMutex());
    if (mState->isStarted) {
        (void)Request(ksSelectorShutDown, nullptr, nullptr);
    }
    mState->library.reset();
}

std::shared_ptr<Importer> Importer::Load(const std::filesystem::path& pluginFile, TestingPlugins testingPlugins)
{
    auto state = std::make_unique<State>();
    state->file = pluginFile;
    state->identity = ReadPluginIdentity(pluginFile);
    // The constructor is private to callers, hence no make_shared. The importer is made before the lock is
    // taken: where loading fails, its destructor takes the lock itself.
    std::shared_ptr<Importer> importer(new Importer(std::move(state)));
    const std::lock_guard lock(LoadingMutex());
    importer->LoadLibrary();
    importer->StartUp(testingPlugins);
    importer->AskFileTypes();
    return importer;
}

void Importer::LoadLibrary()
{
    const Library& library = mState->library.emplace(mState->file);
    mState->entry = library.Find<ksImportEntry>(kImportEntryName);
    const auto tellIdentity = library.Find<ksPluginDataEntry>(kPluginDataEntryName);
    if (mState->entry == nullptr || tellIdentity == nullptr) {
        throw HostError(DisplayName(mState->file) + ": the plug-in does not export " +
                        (mState->entry == nullptr ? kImportEntryName : kPluginDataEntryName));
    }
    Told told;
    tellIdentity(&told, &CollectIdentity);
    RequireAgreement(mState->file, mState->identity, told);
}

void Importer::StartUp(TestingPlugins testingPlugins)
{
    // The plug-in asks the debug database on this thread while it starts, so loads on other threads are not
    // affected.
    std::optional<qelcore::debug::ScopedOverride> openGate;
    if (testingPlugins == TestingPlugins::Allowed) {
        openGate.emplace(kTestingPluginsKey, "true");
    }
    ksStartUpRec record{};
    const std::int32_t result = Request(ksSelectorStartUp, &record, nullptr);
    if (result == ksResultUnsupported) {
        const bool isGateOpen =
            qelcore::debug::DebugDatabase::Instance().GetEntry(kTestingPluginsKey, "") == "true";
        throw HostError(DisplayName(mState->file) + ": " + mState->identity.displayName + " declined to start" +
                        (isGateOpen
                             ? " (result " + std::to_string(result) + ")"
                             : std::string(": the debug setting ") + kTestingPluginsKey + " is not \"true\""));
    }
    if (result != ksResultServed) {
        throw HostError(DisplayName(mState->file) + ": the plug-in failed to start (result " +
                        std::to_string(result) + ")");
    }
    mState->isStarted = true;
}

void Importer::AskFileTypes()
{
    for (std::intptr_t index = 0; index < kMostFileTypes; ++index) {
        ksFileTypeRec record{};
        const std::int32_t result = Request(ksSelectorFileType, reinterpret_cast<void*>(index), &record);
        if (result == ksResultNoMoreEntries) {
            break;
        }
        if (result != ksResultServed) {
            throw HostError(DisplayName(mState->file) +
                            ": the plug-in failed to describe its file types (result " +
                            std::to_string(result) + ")");
        }
        mState->fileTypes.push_back(FileTypeFromRecord(record));
    }
    if (mState->fileTypes.empty()) {
        throw HostError(DisplayName(mState->file) + ": the plug-in opens no file type");
    }
}

const PluginIdentity& Importer::Identity() const noexcept
{
    return mState->identity;
}

const std::vector<FileType>& Importer::FileTypes() const noexcept
{
    return mState->fileTypes;
}

const std::filesystem::path& Importer::File() const noexcept
{
    return mState->file;
}

std::int32_t Importer::Request(std::int32_t selector, void* param1, void* param2) const noexcept
{
    if (selector == ksSelectorFrame && !mState->servedFirstFrame.load(std::memory_order_acquire)) {
        // The first frame request fills the plug-in's process-wide suite handles without a lock, so it runs
        // alone. One lock for all importers: two of them may be the same library.
        static std::mutex firstFrame;
        const std::lock_guard lock(firstFrame);
        const std::int32_t result = mState->entry(selector, &HostStandardParameters(), param1, param2);
        if (result == ksResultServed) { // others may have failed before the handles were there
            mState->servedFirstFrame.store(true, std::memory_order_release);
        }
        return result;
    }
    return mState->entry(selector, &HostStandardParameters(), param1, param2);
}

} // namespace importhost
