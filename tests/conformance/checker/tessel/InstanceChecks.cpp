/// Instances of the importer of `.tessel` files: what opening does to them, and what they report.

#include "Documents.h"
#include "TesselChecks.h"

#include <string>

namespace conformance {

namespace {

void DeleteInstance(const Plugin& plugin, ksInstance instance)
{
    ExpectEqual(plugin.Request(9, ForeignStdParms(), nullptr, instance), 0, "selector 9");
}

void OpensAgainIntoTheSameInstance(Plugin& plugin)
{
    const TemporaryFolder folder;
    const ksInstance instance = OpenDocument(plugin, Document());
    const std::u16string path = Wide(folder.Write("other.tessel", DocumentWith("mFrameWidth", "77")));
    GuardedRecord open;
    open.Put(12, path.c_str());
    open.Put(36, instance);
    ExpectEqual(plugin.Request(39, ForeignStdParms(), nullptr, open.Data()), 0, "a second open");
    open.ExpectUnchanged("a second open");
    GuardedRecord size;
    size.Put(0, instance);
    size.Put<std::uint32_t>(20, 0);
    ExpectEqual(plugin.Request(45, ForeignStdParms(), size.Data(), nullptr), 0, "selector 45");
    ExpectEqual(size.Get<std::int32_t>(24), 77, "the width");
    DeleteInstance(plugin, instance);
}

void MalformedOpensAsDefault(Plugin& plugin)
{
    for (const std::string document : {"", "{}", "[]", "{\"mPixelFormat\":", "no json"}) {
        const ksInstance instance = OpenDocument(plugin, document);
        GuardedRecord size;
        size.Put(0, instance);
        size.Put<std::uint32_t>(20, 0);
        ExpectEqual(plugin.Request(45, ForeignStdParms(), size.Data(), nullptr), 0, "selector 45");
        ExpectEqual(size.Get<std::int32_t>(24), 720, "the default width");
        ExpectEqual(size.Get<std::int32_t>(28), 480, "the default height");
        DeleteInstance(plugin, instance);
    }
}

void Selector81AnswersThreeTwice(Plugin& plugin)
{
    GuardedRecord record;
    record.Put<ksInstance>(198, nullptr);
    ExpectEqual(plugin.Request(81, ForeignStdParms(), nullptr, record.Data()), 3,
                "selector 81 on an empty slot");
    record.ExpectChangedOnly({{198, 8}}, "selector 81");
    const auto instance = record.Get<ksInstance>(198);
    Expect(instance != nullptr, "selector 81 made no instance");
    record.Remember();
    ExpectEqual(plugin.Request(81, ForeignStdParms(), nullptr, record.Data()), 3, "selector 81 on a full slot");
    record.ExpectUnchanged("selector 81 on a full slot");
    DeleteInstance(plugin, instance);
}

void FrameSize(Plugin& plugin)
{
    const ksInstance instance = OpenDocument(plugin, Document());
    GuardedRecord size;
    size.Put(0, instance);
    size.Put<std::uint32_t>(20, 1);
    ExpectEqual(plugin.Request(45, ForeignStdParms(), size.Data(), nullptr), 3, "frame size 1");
    size.ExpectUnchanged("frame size 1");
    size.Put<std::uint32_t>(20, 0);
    ExpectEqual(plugin.Request(45, ForeignStdParms(), size.Data(), nullptr), 0, "frame size 0");
    size.ExpectChangedOnly({{24, 8}}, "frame size 0");
    ExpectEqual(size.Get<std::int32_t>(24), 32, "width");
    ExpectEqual(size.Get<std::int32_t>(28), 18, "height");
    size.Put<ksInstance>(0, nullptr);
    ExpectEqual(plugin.Request(45, ForeignStdParms(), size.Data(), nullptr), 5,
                "frame size without an instance");
    DeleteInstance(plugin, instance);
}

void ColorCodes(Plugin& plugin)
{
    const ksInstance instance = OpenDocument(plugin, Document());
    GuardedRecord color;
    color.Put(0, instance);
    ExpectEqual(plugin.Request(73, ForeignStdParms(), reinterpret_cast<void*>(1), color.Data()), 19, "index 1");
    color.ExpectUnchanged("index 1");
    ExpectEqual(plugin.Request(73, ForeignStdParms(), nullptr, color.Data()), 0, "index 0");
    color.ExpectChangedOnly({{8, 4}, {48, 16}}, "index 0");
    ExpectEqual(color.Get<std::uint32_t>(8), 3, "byte 8");
    // Rec. 709 in ITU-T H.273: primaries, transfer and matrix 1, limited range.
    for (const std::size_t offset : {48U, 52U, 56U}) {
        ExpectEqual(color.Get<std::int32_t>(offset), 1, "byte " + std::to_string(offset));
    }
    ExpectEqual(color.Get<std::int32_t>(60), 0, "byte 60");
    color.Put<ksInstance>(0, nullptr);
    ExpectEqual(plugin.Request(73, ForeignStdParms(), reinterpret_cast<void*>(1), color.Data()), 5,
                "a null instance, whatever the index");
    DeleteInstance(plugin, instance);
}

void UnknownColorSpaceIsUnspecified(Plugin& plugin)
{
    const ksInstance instance = OpenDocument(plugin, Document(R"("mColorSpace": {},)"));
    GuardedRecord color;
    color.Put(0, instance);
    ExpectEqual(plugin.Request(73, ForeignStdParms(), nullptr, color.Data()), 0, "selector 73");
    for (const std::size_t offset : {48U, 52U, 56U}) {
        ExpectEqual(color.Get<std::int32_t>(offset), 2, "byte " + std::to_string(offset));
    }
    DeleteInstance(plugin, instance);
}

} // namespace

std::vector<Check> TesselInstanceChecks()
{
    return {
        {"tessel.instance.opened-again", "A file opened into an instance replaces its settings",
         OpensAgainIntoTheSameInstance},
        {"tessel.instance.malformed", "A malformed document opens as the default clip",
         MalformedOpensAsDefault},
        {"tessel.instance.81",
         "Selector 81 creates an instance in an empty slot only, and answers 3 either way",
         Selector81AnswersThreeTwice},
        {"tessel.instance.frame-size", "Selector 45 gives width and height at index 0 only", FrameSize},
        {"tessel.color.rec709", "Selector 73 gives Rec. 709's codes for a document without a colour space",
         ColorCodes},
        {"tessel.color.unspecified",
         "An empty colour-space object gives the codes of an unspecified colour space",
         UnknownColorSpaceIsUnspecified},
    };
}

} // namespace conformance
