/// Settings texts, where the importer has them.

#include "Clip.h"

namespace conformance {

namespace {

/// A settings request for the document as an existing file: without a dialog.
struct SettingsRequest {
    explicit SettingsRequest(const Plugin& underTest) : plugin(underTest), path(Wide(underTest.Document()))
    {
        RequireStartUp(plugin);
        access.Put(offsetof(ksFileAccessRec, path), path.c_str());
        exchange.Put<char*>(offsetof(ksSettingsExchangeRec, text), nullptr);
        exchange.Put<std::uint8_t>(offsetof(ksSettingsExchangeRec, newClip), 1);
    }

    [[nodiscard]] std::int32_t Send()
    {
        return plugin.Request(ksSelectorSettingsExchange, ForeignStdParms(), access.Data(), exchange.Data());
    }

    /// The size that the importer asks for. @throws Skipped where it has no settings text.
    [[nodiscard]] std::uint32_t RequireSize()
    {
        const std::int32_t answer = Send();
        access.ExpectUnchanged("the request for the size of the settings text");
        if (answer != ksResultServed) {
            exchange.ExpectUnchanged("a request for the size of the settings text that is not served");
            throw Skipped("the importer has no settings text (answer " + std::to_string(answer) + ")");
        }
        return exchange.Get<std::uint32_t>(offsetof(ksSettingsExchangeRec, bufferSize));
    }

    const Plugin& plugin;
    std::u16string path;
    GuardedRecord access;
    GuardedRecord exchange;
};

void SettingsSize(Plugin& plugin)
{
    SettingsRequest request(plugin);
    const std::uint32_t size = request.RequireSize();
    request.exchange.ExpectChangedOnly({{offsetof(ksSettingsExchangeRec, bufferSize), 4}},
                                       "the request for the size of the settings text");
    Expect(size > 0 && size <= 1U << 30U, "the size of the settings text is " + std::to_string(size));
}

void SettingsTextFits(Plugin& plugin)
{
    SettingsRequest request(plugin);
    const std::uint32_t size = request.RequireSize();
    const ForeignBlock buffer(size);
    request.exchange.Put(offsetof(ksSettingsExchangeRec, text), static_cast<char*>(buffer.Data()));
    request.exchange.Put<std::uint32_t>(offsetof(ksSettingsExchangeRec, bufferSize), 0);
    ExpectEqual(request.Send(), ksResultServed, "the answer to the request for the settings text");
    Expect(buffer.IsGuardIntact(), "bytes behind the buffer were written");
    if (request.exchange.Get<std::uint32_t>(offsetof(ksSettingsExchangeRec, bufferSize)) == 0) {
        throw Skipped("the document's settings text does not fit the importer's buffer");
    }
    Expect(std::memchr(buffer.Data(), 0, size) != nullptr, "the settings text is not closed by a NUL");
}

} // namespace

std::vector<Check> SettingsChecks()
{
    return {
        {"settings.size", "A settings request without a buffer gives the buffer's size and writes nothing else",
         SettingsSize},
        {"settings.text", "The settings text of an existing file ends with a NUL inside its buffer",
         SettingsTextFits},
    };
}

} // namespace conformance
