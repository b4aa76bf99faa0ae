/// Selector 38 where it shows no dialog.

#include "Documents.h"
#include "TesselChecks.h"

#include <string>

namespace conformance {

namespace {

void SizeRequest(Plugin& plugin)
{
    const TemporaryFolder folder;
    for (const std::filesystem::path& file :
         {folder.Path(), std::filesystem::path("/nowhere/clip.tessel"), folder.Write("a.tessel", "{")}) {
        const std::u16string path = Wide(file);
        GuardedRecord access;
        access.Put(12, path.c_str());
        GuardedRecord exchange;
        exchange.Put<void*>(0, nullptr);
        ExpectEqual(plugin.Request(38, ForeignStdParms(), access.Data(), exchange.Data()), 0, "size request");
        exchange.ExpectChangedOnly({{8, 4}}, "size request");
        ExpectEqual(exchange.Get<std::uint32_t>(8), 10240, "the size");
        access.ExpectUnchanged("size request");
    }
}

void ExistingFileAsText(Plugin& plugin)
{
    const std::string text = SettingsText(plugin, Document(R"("mVersion": 1,)"));
    for (const char* member : {"\"mFrameWidth\":32", "\"mFrameHeight\":18", "\"mVersion\":1",
                               "\"numerator\":10", "\"ticksperframe\":10160640000"}) {
        Expect(text.find(member) != std::string::npos, std::string("the text lacks ") + member + ": " + text);
    }
    Expect(text.rfind("{\"mBottomGradiantColorEnd\":", 0) == 0, "the keys do not begin in byte order: " + text);
}

void TextIsStable(Plugin& plugin)
{
    const std::string once = SettingsText(plugin, Document());
    Expect(SettingsText(plugin, once) == once, "the text of a text differs from it");
}

void UnreadableFile(Plugin& plugin)
{
    const TemporaryFolder folder;
    SettingsTextRequest request(folder.Path()); // a directory exists and cannot be read
    for (const std::uint8_t newClip : {std::uint8_t{0}, std::uint8_t{1}}) {
        request.exchange.Put(12, newClip);
        ExpectEqual(request.Send(plugin), 2, "a directory");
        request.exchange.ExpectUnchanged("a directory");
        request.ExpectBufferUntouched();
    }
}

/// A document whose settings text has `bytes` bytes, by the length of a swatch path.
std::string DocumentOfTextLength(const Plugin& plugin, std::size_t bytes)
{
    const std::size_t without = SettingsText(plugin, Document()).size();
    return Document("\"mSwatchColorsFilePath\": \"" + std::string(bytes - without, 'p') + "\",");
}

void LongestTextThatFits(Plugin& plugin)
{
    const std::string text = SettingsText(plugin, DocumentOfTextLength(plugin, 10238));
    ExpectEqual(static_cast<long long>(text.size()), 10238, "bytes of text");
}

void TooLongTextIsDropped(Plugin& plugin)
{
    const TemporaryFolder folder;
    SettingsTextRequest request(folder.Write("clip.tessel", DocumentOfTextLength(plugin, 10239)));
    ExpectEqual(request.Send(plugin), 0, "selector 38");
    request.exchange.ExpectUnchanged("a text of 10239 bytes");
    request.ExpectBufferUntouched();
}

} // namespace

std::vector<Check> TesselSettingsTextChecks()
{
    return {
        {"tessel.settings.size", "A null buffer gives the size 10240, whatever the file", SizeRequest},
        {"tessel.settings.existing",
         "An existing file with the new-clip flag gives its settings as text, without a dialog",
         ExistingFileAsText},
        {"tessel.settings.stable", "A settings text read back gives the same settings text", TextIsStable},
        {"tessel.settings.unreadable", "An unreadable file answers 2 and leaves buffer and size unchanged",
         UnreadableFile},
        {"tessel.settings.10238", "A settings text of 10238 bytes fits the buffer with its NUL",
         LongestTextThatFits},
        {"tessel.settings.10239", "A settings text of 10239 bytes is not written, and the answer is 0",
         TooLongTextIsDropped},
    };
}

} // namespace conformance
