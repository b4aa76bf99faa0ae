#include "Documents.h"

#include <utility>
#include <vector>

namespace conformance {

namespace {

const std::vector<std::pair<std::string, std::string>>& RequiredMembers()
{
    static const std::string kColor =
        R"({"mAlphaPart": 1.0, "mRedPart": 1.0, "mGreenPart": 0.5, "mBluePart": 0.25})";
    static const std::vector<std::pair<std::string, std::string>> kMembers = {
        {"mPixelFormat", "1634887522"}, // "bgra"
        {"mFrameWidth", "32"},
        {"mFrameHeight", "18"},
        {"mFramePAR", R"({"numerator": 10, "denominator": 11})"},
        {"mFieldType", "0"},
        {"mRenderFormat", "0"},
        {"mUpperFieldColor", kColor},
        {"mLowerFieldColor", R"({"mAlphaPart": 1, "mRedPart": 0, "mGreenPart": 1, "mBluePart": 0})"},
        {"mTopGradiantColorStart", kColor},
        {"mTopGradiantColorEnd", kColor},
        {"mBottomGradiantColorStart", kColor},
        {"mBottomGradiantColorEnd", kColor},
        {"mVideoDuration", R"({"ticks": 254016000000})"},
        {"mVideoFrameRate", R"({"ticksperframe": 10160640000})"},
    };
    return kMembers;
}

std::string Assemble(const std::string& more, const std::string& changedKey, const std::string& changedValue)
{
    std::string text = "{" + more;
    bool first = true;
    for (const auto& [key, value] : RequiredMembers()) {
        const std::string& used = key == changedKey ? changedValue : value;
        if (!used.empty()) {
            text += (first ? "\"" : ", \"") + key + "\": " + used;
            first = false;
        }
    }
    return text + "}";
}

} // namespace

std::string Document(const std::string& more)
{
    return Assemble(more, "", "");
}

std::string SampleDocument()
{
    std::string document = Document("\"mVersion\": 1, \"mDrawFrameFieldNumber\": true,");
    const auto replace = [&document](const std::string& from, const std::string& to) {
        document.replace(document.find(from), from.size(), to);
    };
    replace("\"mFrameWidth\": 32", "\"mFrameWidth\": 96");
    replace("\"mFrameHeight\": 18", "\"mFrameHeight\": 54");
    replace("\"mRenderFormat\": 0", "\"mRenderFormat\": 1");
    replace("\"mTopGradiantColorEnd\": {\"mAlphaPart\": 1.0", "\"mTopGradiantColorEnd\": {\"mAlphaPart\": 0.5");
    return document;
}

std::string DocumentWith(const std::string& key, const std::string& value)
{
    return Assemble("", key, value);
}

std::int32_t OpenFile(const Plugin& plugin, const std::filesystem::path& file, ksInstance& instance)
{
    const std::u16string path = Wide(file);
    GuardedRecord open;
    open.Put(12, path.c_str());
    open.Put<ksInstance>(36, nullptr);
    const std::int32_t answer = plugin.Request(39, ForeignStdParms(), nullptr, open.Data());
    open.ExpectChangedOnly({{36, 8}}, "selector 39");
    instance = open.Get<ksInstance>(36);
    return answer;
}

ksInstance OpenDocument(const Plugin& plugin, const std::string& document)
{
    const TemporaryFolder folder;
    ksInstance instance = nullptr;
    ExpectEqual(OpenFile(plugin, folder.Write("clip.tessel", document), instance), 0, "selector 39");
    return instance;
}

SettingsTextRequest::SettingsTextRequest(const std::filesystem::path& file)
    : path(Wide(file)), buffer(10240, '\xCC')
{
    access.Put(12, path.c_str());
    exchange.Put(0, buffer.data());
    exchange.Put<std::uint8_t>(12, 1);
}

std::int32_t SettingsTextRequest::Send(const Plugin& plugin)
{
    return plugin.Request(38, ForeignStdParms(), access.Data(), exchange.Data());
}

void SettingsTextRequest::ExpectBufferUntouched() const
{
    Expect(buffer == std::vector<char>(buffer.size(), '\xCC'), "the buffer was touched");
}

std::string SettingsText(const Plugin& plugin, const std::string& fileContent)
{
    const TemporaryFolder folder;
    SettingsTextRequest request(folder.Write("clip.tessel", fileContent));
    ExpectEqual(request.Send(plugin), 0, "selector 38");
    ExpectEqual(request.exchange.Get<std::uint32_t>(8), 10240, "the buffer size of selector 38");
    request.access.ExpectUnchanged("selector 38, file access");
    request.exchange.ExpectChangedOnly({{8, 4}}, "selector 38");
    return request.buffer.data();
}

std::int32_t Describe(const Plugin& plugin, const std::string& text, GuardedRecord& info)
{
    static const std::u16string kNoFile = u"/nowhere/clip.tessel";
    GuardedRecord access;
    access.Put(12, kNoFile.c_str());
    info.Put<ksInstance>(198, nullptr);
    info.Put(206, text.c_str());
    const std::int32_t answer = plugin.Request(37, ForeignStdParms(), access.Data(), info.Data());
    access.ExpectUnchanged("selector 37, file access");
    return answer;
}

std::int32_t RequestFrame(const Plugin& plugin, ksInstance instance, std::int64_t ticks, void*& frame)
{
    GuardedRecord request;
    request.Put(0, instance);
    request.Put(12, ticks);
    request.Put(36, &frame);
    const std::int32_t answer = plugin.Request(47, ForeignStdParms(), nullptr, request.Data());
    request.ExpectUnchanged("selector 47");
    return answer;
}

} // namespace conformance
