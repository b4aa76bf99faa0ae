/// Selector 38 with a dialog, which a script works: what the records hold after OK, Cancel and Use File.

#include "Documents.h"
#include "TesselChecks.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace conformance {

namespace {

constexpr std::size_t kBufferSize = 10240;
constexpr std::size_t kNewPath = 28; // of the file-access record

/// What a request starts from: a clip that has the same settings in each of the three places.
enum class Source { SettingsText, File, Sequence };

constexpr Source kSources[] = {Source::SettingsText, Source::File, Source::Sequence};

const char* Name(Source source)
{
    constexpr const char* kNames[] = {"a clip without a file", "a clip with a file", "a new clip"};
    return kNames[static_cast<int>(source)];
}

/// One request with its records and a buffer, of whose bytes behind the text none may change.
class Exchange {
public:
    /// The file, where there is one, lies in `folder` and holds `Document()`, as the text does.
    Exchange(const TemporaryFolder& folder, Source source) : mBuffer(kBufferSize + 16, kFilling)
    {
        const std::filesystem::path file = folder.Path() / "clip.tessel";
        mPath = Wide(source == Source::File ? folder.Write("clip.tessel", Document()) : file);
        access.Put(12, mPath.c_str());
        exchange.Put(0, mBuffer.data());
        exchange.Put<std::uint8_t>(12, source == Source::Sequence ? 1 : 0);
        exchange.Put<std::int32_t>(37, 32);
        exchange.Put<std::int32_t>(41, 18);
        exchange.Put<std::int32_t>(45, 10);
        exchange.Put<std::int32_t>(49, 11);
        exchange.Put<std::int32_t>(53, 25);
        exchange.Put<std::int32_t>(57, 1);
        Foreign().legacyTicks = 10'160'640'000; // 254016000000 / 25
        if (source == Source::SettingsText) {
            const std::string text = Document();
            std::memcpy(mBuffer.data(), text.c_str(), text.size() + 1);
        }
        mBefore = mBuffer;
    }

    /// Sends it while `script` works the dialog.
    [[nodiscard]] std::int32_t Send(const Plugin& plugin, const TemporaryFolder& folder,
                                    const std::string& script, const ksStdParms* stdParms = ForeignStdParms())
    {
        setenv("KESTREL_UI", "scripted", 1);
        setenv("KESTREL_UI_SCRIPT", folder.Write("dialog.script", script).c_str(), 1);
        return plugin.Request(38, stdParms, access.Data(), exchange.Data());
    }

    /// @throws Violation unless text and size were written, and nothing else.
    [[nodiscard]] std::string ReturnedText(const std::string& what) const
    {
        access.ExpectUnchanged(what + ", file access");
        exchange.ExpectChangedOnly({{8, 4}}, what);
        ExpectEqual(exchange.Get<std::uint32_t>(8), kBufferSize, what + ", the buffer size");
        const std::size_t length = std::string(mBuffer.data()).size();
        Expect(std::equal(mBuffer.begin() + static_cast<std::ptrdiff_t>(kBufferSize), mBuffer.end(),
                          mBefore.begin() + static_cast<std::ptrdiff_t>(kBufferSize)),
               what + ": bytes behind the buffer were written");
        return {mBuffer.data(), length};
    }

    void ExpectNoText(const std::string& what) const
    {
        exchange.ExpectUnchanged(what);
        Expect(mBuffer == mBefore, what + ": the buffer was touched");
    }

    GuardedRecord access;
    GuardedRecord exchange;

private:
    static constexpr char kFilling = '\xCC';

    std::u16string mPath;
    std::vector<char> mBuffer;
    std::vector<char> mBefore;
};

/// The settings of each source as text. Selector 38 gives those of a file without a dialog; a new clip has
/// the default clip's, but for what the sequence says.
std::string TextBefore(const Plugin& plugin, Source source)
{
    if (source != Source::Sequence) {
        return SettingsText(plugin, Document());
    }
    std::string text = SettingsText(plugin, "{}");
    const std::string sequence = SettingsText(plugin, Document());
    for (const std::string key : {"\"mFrameWidth\":", "\"mFrameHeight\":", "\"numerator\":", "\"denominator\":",
                                  "\"ticksperframe\":"}) {
        const auto valueIn = [&key](const std::string& in) {
            const std::size_t from = in.find(key);
            Expect(from != std::string::npos, "the text lacks " + key + ' ' + in);
            return std::pair{from + key.size(), in.find_first_of(",}", from) - from - key.size()};
        };
        const auto [to, length] = valueIn(text);
        const auto [from, count] = valueIn(sequence);
        text.replace(to, length, sequence, from, count);
    }
    return text;
}

std::string ContentOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void ExpectFileUntouched(const TemporaryFolder& folder, Source source)
{
    const std::filesystem::path file = folder.Path() / "clip.tessel";
    if (source == Source::File) {
        Expect(ContentOf(file) == Document(), "the clip's file was written");
    } else {
        Expect(!std::filesystem::exists(file), "the clip's file was made");
    }
}

void CancelledGivesTheSettingsOfBefore(Plugin& plugin)
{
    for (const Source source : kSources) {
        const std::string before = TextBefore(plugin, source);
        for (const char* end : {"press cancelButton\n", ""}) {
            const TemporaryFolder folder;
            Exchange request(folder, source);
            ExpectEqual(request.Send(plugin, folder, std::string("set frameWidthID 640\n") + end), 300,
                        Name(source));
            Expect(request.ReturnedText(Name(source)) == before,
                   std::string(Name(source)) + ": the text is not that of the settings before the dialog");
            ExpectFileUntouched(folder, source);
        }
    }
    Expect(Foreign().blocks.empty(), "memory was asked for where no path is returned");
}

void AcceptedGivesTheNewSettings(Plugin& plugin)
{
    for (const Source source : kSources) {
        std::string expected = TextBefore(plugin, source);
        const std::string width = "\"mFrameWidth\":32,";
        expected.replace(expected.find(width), width.size(), "\"mFrameWidth\":640,");
        const TemporaryFolder folder;
        Exchange request(folder, source);
        ExpectEqual(request.Send(plugin, folder, "set frameWidthID 640\npress okButton\n"), 0, Name(source));
        const std::string text = request.ReturnedText(Name(source));
        Expect(text == expected, std::string(Name(source)) + ": the text is " + text + " and not " + expected);
        ExpectFileUntouched(folder, source);
    }
    Expect(Foreign().blocks.empty(), "memory was asked for where no path is returned");
}

/// Saves to a file whose name needs two UTF-16 units for one of its characters, and has the clip use it.
constexpr const char* kUseSavedFile = "set frameWidthID 640\n"
                                      "answer file \"saved \xF0\x9F\x8E\xA8.tessel\"\n"
                                      "set useAsCustomImporterID true\n"
                                      "press okButton\n";

void UsedFileGivesItsPath(Plugin& plugin)
{
    for (const Source source : kSources) {
        const TemporaryFolder folder;
        std::filesystem::current_path(folder.Path());
        Foreign().blocks.clear();
        Exchange request(folder, source);
        ExpectEqual(request.Send(plugin, folder, kUseSavedFile), 17, Name(source));
        request.ExpectNoText(Name(source));
        request.access.ExpectChangedOnly({{kNewPath, 8}}, "the file-access record");

        ExpectEqual(static_cast<long long>(Foreign().blocks.size()), 1, "blocks of the host's memory");
        const ForeignBlock& block = Foreign().blocks.front();
        Expect(request.access.Get<void*>(kNewPath) == block.Data(), "byte 28 is not the host's block");
        const std::u16string path = Wide(folder.Path()) + u"/saved \xD83C\xDFA8.tessel";
        ExpectEqual(block.size, static_cast<long long>((path.size() + 1) * sizeof(char16_t)),
                    "bytes of the block");
        Expect(std::memcmp(block.Data(), path.c_str(), block.size) == 0,
               "the block does not hold the saved file's path and its NUL");
        Expect(block.IsGuardIntact(), "bytes behind the block were written");
        Expect(SettingsText(plugin, ContentOf(path)).find("\"mFrameWidth\":640,") != std::string::npos,
               "the saved file does not hold the settings");
        ExpectFileUntouched(folder, source);
        std::filesystem::current_path("/");
    }
}

void WithoutABlockTheAnswerIs4(Plugin& plugin)
{
    const ksStdParms& complete = *ForeignStdParms();
    ksServiceTables services = *complete.services;
    ksStdParms incomplete = complete;
    incomplete.services = &services;
    const auto expect4 = [&](const ksStdParms* stdParms, const std::string& what) {
        const TemporaryFolder folder;
        std::filesystem::current_path(folder.Path());
        Exchange request(folder, Source::SettingsText);
        ExpectEqual(request.Send(plugin, folder, kUseSavedFile, stdParms), 4, what);
        request.ExpectNoText(what);
        request.access.ExpectUnchanged(what);
        std::filesystem::current_path("/");
    };
    Foreign().hasMemory = false;
    expect4(&complete, "an allocator that gives null");
    Foreign().hasMemory = true;
    const ksMemoryFunctions noFunctions{};
    services.memory = &noFunctions;
    expect4(&incomplete, "a table without an allocator");
    services.memory = nullptr;
    expect4(&incomplete, "no table of memory functions");
}

} // namespace

std::vector<Check> TesselSettingsDialogChecks()
{
    return {
        {"tessel.settings.cancelled",
         "A cancelled dialog answers 300 and gives the settings as they were before it",
         CancelledGivesTheSettingsOfBefore},
        {"tessel.settings.accepted", "An accepted dialog answers 0 and gives the new settings",
         AcceptedGivesTheNewSettings},
        {"tessel.settings.use-file",
         "A saved file that the clip is to use answers 17 and gives its path in the host's memory",
         UsedFileGivesItsPath},
        {"tessel.settings.no-block", "Where the host has no memory for that path the answer is 4",
         WithoutABlockTheAnswerIs4},
    };
}

} // namespace conformance
