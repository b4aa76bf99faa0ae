/// An importer whose operations do what a test says, behind the real dispatcher.
#pragma once

#include <ImporterTessel/entry/KsImportModule.h>

#include <cstdint>
#include <functional>
#include <string_view>

class TestModule final : public KsImportModule<TestModule> {
public:
    static constexpr std::string_view kTypeName = "class TestModule";

    /// How the next requests behave; `Reset` gives the defaults.
    struct Script {
        bool factoryGivesNull = false;
        std::function<void()> onConstruction;                       ///< may throw
        std::function<std::int32_t()> onRequest = [] { return 0; }; ///< may throw
        int living = 0;
        int served = 0;
        const ksStdParms* stdParms = nullptr; ///< of the instance that served last
    };

    static Script& TheScript()
    {
        static Script script;
        return script;
    }

    static void Reset() { TheScript() = Script(); }

    /// The dispatcher without its barrier.
    using KsImportModule<TestModule>::Serve;

    TestModule()
    {
        if (TheScript().onConstruction) {
            TheScript().onConstruction();
        }
        ++TheScript().living;
    }
    ~TestModule() override { --TheScript().living; }
    TestModule(const TestModule&) = delete;
    TestModule& operator=(const TestModule&) = delete;

    static std::unique_ptr<TestModule> CreateImportModuleInstance(const ksStdParms* stdParms)
    {
        return TheScript().factoryGivesNull ? nullptr
                                            : KsImportModule<TestModule>::CreateImportModuleInstance(stdParms);
    }

    static std::int32_t StartUp(ksStartUpRec* /*record*/) { return Answer(nullptr); }
    static std::int32_t DescribeFileType(ksFileTypeRec& /*record*/) { return Answer(nullptr); }
    static std::int32_t ExchangeSettings(const ksStdParms* stdParms, ksFileAccessRec& /*file*/,
                                         ksSettingsExchangeRec& /*exchange*/)
    {
        return Answer(stdParms);
    }
    std::int32_t OpenFile(const ksOpenRec& /*open*/) { return Answer(StdParms()); }
    std::int32_t DescribeClip(const ksFileAccessRec& /*file*/, ksFileInfoRec& /*record*/)
    {
        return Answer(StdParms());
    }
    std::int32_t SynthesizeFrame(ksFrameRec& /*record*/, const ksStdParms* stdParms)
    {
        return Answer(stdParms);
    }
    std::int32_t SynthesizeAudio(const ksAudioRec& /*record*/) { return Answer(StdParms()); }
    std::int32_t GetFrameSize(ksFrameSizeRec& /*record*/) { return Answer(StdParms()); }
    std::int32_t GetColorInformation(ksColorRec& /*record*/) { return Answer(StdParms()); }

private:
    static std::int32_t Answer(const ksStdParms* stdParms)
    {
        ++TheScript().served;
        TheScript().stdParms = stdParms;
        return TheScript().onRequest();
    }
};
