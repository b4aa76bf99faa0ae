/// Whatever a host sends that keeps the wire format, the entry answers with one of its results and touches
/// nothing beyond the records. An input is a clip's settings and a list of requests for it.
#include <ImporterTessel/entry/ImporterTessel.h>
#include <ImporterTessel/settings/DataFile.h>
#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/importabi/Records.h>
#include <kestrel/importabi/Selectors.h>
#include <kestrel/qelcore/logging/Log.h>

#include <support/ForeignHost.h>
#include <support/TemporaryFolder.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

using ImporterTessel::TesselInfo;
using Module = KsImportModule<ImporterTessel::ImporterTessel>;

void Require(bool holds, std::string_view claim)
{
    if (!holds) {
        std::cerr << "broken: " << claim << '\n';
        std::abort();
    }
}

/// Takes values off an input; an input that is used up gives zeros.
class Input {
public:
    explicit Input(std::span<const std::uint8_t> bytes) : mBytes(bytes) {}

    [[nodiscard]] bool IsEmpty() const { return mBytes.empty(); }

    void Take(void* destination, std::size_t size)
    {
        const std::size_t count = std::min(size, mBytes.size());
        std::memset(destination, 0, size);
        std::memcpy(destination, mBytes.data(), count);
        mBytes = mBytes.subspan(count);
    }

    template <class Number>
    Number Take()
    {
        Number number{};
        Take(&number, sizeof number);
        return number;
    }

private:
    std::span<const std::uint8_t> mBytes;
};

/// One request's record in a block of exactly its size, so that a sanitizer sees every byte beyond it.
class Record {
public:
    Record(Input& input, std::size_t size) : mBytes(std::make_unique<std::uint8_t[]>(size))
    {
        input.Take(mBytes.get(), size);
    }

    template <class Type>
    [[nodiscard]] Type& As()
    {
        return *reinterpret_cast<Type*>(mBytes.get());
    }

    [[nodiscard]] void* Address() { return mBytes.get(); }

private:
    std::unique_ptr<std::uint8_t[]> mBytes;
};

/// Settings of which few are usual, so that most requests have something to do.
TesselInfo TakeSettings(Input& input)
{
    TesselInfo info;
    const auto unusual = input.Take<std::uint16_t>();
    const auto change = [&](int bit, auto& field) {
        if ((unusual >> bit & 1) != 0) {
            input.Take(&field, sizeof field);
        }
    };
    const auto formats = BR::AllPixelFormats();
    info.mPixelFormat = formats[input.Take<std::uint8_t>() % formats.size()].sdkCode;
    info.mFrameWidth = input.Take<std::uint8_t>();
    info.mFrameHeight = input.Take<std::uint8_t>();
    info.mRenderFormat = input.Take<std::uint8_t>() % 4;
    info.mToneFormat = input.Take<std::uint8_t>() % 3;
    info.mIdentifierFormat = input.Take<std::uint8_t>() % 5;
    change(0, info.mPixelFormat);
    change(1, info.mFrameWidth);
    change(2, info.mFrameHeight);
    change(3, info.mFieldType);
    change(4, info.mUpperFieldColor);
    change(5, info.mTopGradiantColorEnd);
    change(6, info.mVideoDuration);
    change(7, info.mVideoFrameRate);
    change(8, info.mSampleRate);
    change(9, info.mNumChannels);
    change(10, info.mSteadyToneFrequency);
    change(11, info.mSteadyToneAmplitude);
    change(12, info.mFramePAR);
    if ((unusual >> 13 & 1) != 0) {
        // The one frame that swatches are for, with a patch in each band.
        info.mFrameWidth = 1920;
        info.mFrameHeight = 1080;
        info.mSwatchCoordinates = {{{100}, {100}}, {{200}, {400}}, {{300}, {800}}};
        info.mSwatchColors = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
        change(14, info.mSwatchCoordinates.colorSwatches.yCoordinates[0]);
        change(15, info.mSwatchCoordinates.fullRangeGradient.xCoordinates[0]);
    }
    return info;
}

class Session {
public:
    explicit Session(Input& input)
        : mInput(input), mText(ImporterTessel::TesselToUTF8String(TakeSettings(input)))
    {
        const std::u16string file = mFolder.Write("clip.tessel", mText).u16string();
        mPaths = {file, u"/", u"", file + u".absent"};
    }

    ~Session()
    {
        for (const ksInstance instance : mInstances) {
            static_cast<void>(Module::ImportEntry(ksSelectorDeleteInstance, nullptr, nullptr, instance));
        }
    }

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void SendOne()
    {
        auto selector = static_cast<std::int32_t>(mInput.Take<std::uint8_t>());
        if (selector == 255) {
            selector = mInput.Take<std::int32_t>();
        }
        switch (selector) {
        case ksSelectorDeleteInstance:
            Delete();
            break;
        case ksSelectorAudio:
            RequestAudio();
            break;
        case ksSelectorIndexed27:
        case ksSelectorColorInformation:
            RequestIndexed(selector);
            break;
        case ksSelectorClipDescription:
        case ksSelectorCreateInstance:
            Describe(selector);
            break;
        case ksSelectorSettingsExchange:
            ExchangeSettings();
            break;
        case ksSelectorOpenFile:
            Open();
            break;
        case ksSelectorFrameSize: {
            Record record(mInput, sizeof(ksFrameSizeRec));
            record.As<ksFrameSizeRec>().instance = AnyInstance();
            Send(selector, record.Address(), nullptr);
            break;
        }
        case ksSelectorFrame:
            RequestFrame();
            break;
        default: {
            // Whatever stands in them: these selectors follow no pointer.
            Record param1(mInput, sizeof(ksStartUpRec));
            Record param2(mInput, sizeof(ksFileTypeRec));
            const auto missing = mInput.Take<std::uint8_t>();
            const bool isIndexed = selector == ksSelectorFileType;
            Send(selector, isIndexed || (missing & 1) != 0 ? nullptr : param1.Address(),
                 (missing & 2) != 0 ? nullptr : param2.Address());
        }
        }
    }

private:
    std::int32_t Send(std::int32_t selector, void* param1, void* param2)
    {
        static const std::set<std::int32_t> results{0, 2, 3, 4, 5, 17, 19, 99, 100, 101, 300, 301};
        const bool hasParms = mInput.Take<std::uint8_t>() < 250;
        const std::int32_t result =
            Module::ImportEntry(selector, hasParms ? &mHost.stdParms : nullptr, param1, param2);
        Require(results.contains(result), "the answer is a result");
        Require(selector >= 0 && selector <= ksSelectorLast ? true : result == 3,
                "unknown selectors are declined");
        return result;
    }

    ksInstance AnyInstance()
    {
        const auto choice = mInput.Take<std::uint8_t>();
        return mInstances.empty() || choice == 255 ? nullptr : mInstances[choice % mInstances.size()];
    }

    /// A slot as a host has it: empty, or with an instance of its own.
    ksInstance AnySlot() { return mInput.Take<std::uint8_t>() % 2 == 0 ? nullptr : AnyInstance(); }

    void KeepNew(ksInstance before, ksInstance after)
    {
        if (before == nullptr && after != nullptr) {
            mInstances.push_back(after);
        } else {
            Require(before == after, "an instance in a slot stays there");
        }
    }

    const char16_t* AnyPath()
    {
        const auto choice = mInput.Take<std::uint8_t>() % 5U;
        return choice == 4 ? nullptr : mPaths[choice].c_str();
    }

    void Delete()
    {
        const ksInstance instance = AnyInstance();
        const std::int32_t result = Send(ksSelectorDeleteInstance, nullptr, instance);
        Require(result == (instance == nullptr ? 3 : 0), "deletion is served where there is an instance");
        std::erase(mInstances, instance);
    }

    /// The clip's channels, which a host asks for before it asks for sound.
    std::int32_t ChannelCountOf(ksInstance instance)
    {
        ksFileAccessRec file{};
        file.path = mPaths[1].c_str();
        ksFileInfoRec info{};
        info.instance = instance;
        static_cast<void>(Module::ImportEntry(ksSelectorClipDescription, &mHost.stdParms, &file, &info));
        return info.audioChannelCount;
    }

    void RequestAudio()
    {
        Record record(mInput, sizeof(ksAudioRec));
        auto& audio = record.As<ksAudioRec>();
        audio.instance = AnyInstance();
        audio.sampleCount %= 2048;
        const std::int32_t channelCount = audio.instance == nullptr ? 0 : ChannelCountOf(audio.instance);
        if (channelCount > 64) {
            return; // more than a host plays
        }
        const auto bufferCount = static_cast<std::size_t>(std::max(channelCount, 6));
        std::vector<std::unique_ptr<float[]>> buffers(bufferCount);
        std::vector<float*> channels(bufferCount);
        for (std::size_t channel = 0; channel < bufferCount; ++channel) {
            buffers[channel] = std::make_unique<float[]>(audio.sampleCount);
            channels[channel] = buffers[channel].get();
        }
        audio.channels = mInput.Take<std::uint8_t>() == 255 ? nullptr : channels.data();
        Send(ksSelectorAudio, nullptr, record.Address());
    }

    void RequestIndexed(std::int32_t selector)
    {
        Record record(mInput, selector == ksSelectorIndexed27 ? sizeof(ksIndexedRec) : sizeof(ksColorRec));
        record.As<ksIndexedRec>().instance = AnyInstance();
        const std::uintptr_t index = mInput.Take<std::uint8_t>() % 4U;
        Send(selector, reinterpret_cast<void*>(index), record.Address());
    }

    void Describe(std::int32_t selector)
    {
        Record file(mInput, sizeof(ksFileAccessRec));
        Record record(mInput, sizeof(ksFileInfoRec));
        file.As<ksFileAccessRec>().path = AnyPath();
        auto& info = record.As<ksFileInfoRec>();
        info.settingsText = mInput.Take<std::uint8_t>() % 4 == 0 ? nullptr : mText.c_str();
        const ksInstance slot = AnySlot();
        info.instance = slot;
        Send(selector, file.Address(), record.Address());
        KeepNew(slot, info.instance);
    }

    void ExchangeSettings()
    {
        Record file(mInput, sizeof(ksFileAccessRec));
        Record record(mInput, sizeof(ksSettingsExchangeRec));
        file.As<ksFileAccessRec>().path = AnyPath();
        const auto buffer = std::make_unique<char[]>(10240);
        std::memcpy(buffer.get(), mText.data(), std::min<std::size_t>(mText.size(), 10239));
        record.As<ksSettingsExchangeRec>().text = mInput.Take<std::uint8_t>() % 4 == 0 ? nullptr : buffer.get();
        Send(ksSelectorSettingsExchange, file.Address(), record.Address());
    }

    void Open()
    {
        Record record(mInput, sizeof(ksOpenRec));
        auto& open = record.As<ksOpenRec>();
        open.path = AnyPath();
        const ksInstance slot = AnySlot();
        open.instance = slot;
        Send(ksSelectorOpenFile, nullptr, record.Address());
        KeepNew(slot, open.instance);
    }

    void RequestFrame()
    {
        Record record(mInput, sizeof(ksFrameRec));
        auto& request = record.As<ksFrameRec>();
        void* frame = nullptr;
        request.instance = AnyInstance();
        request.frame = mInput.Take<std::uint8_t>() == 255 ? nullptr : &frame;
        Send(ksSelectorFrame, nullptr, record.Address());
        Require(mHost.GuardsAreIntact(), "a frame is painted inside its rows");
        mHost.FreeFramesAndBlocks();
    }

    Input& mInput;
    std::string mText;
    // No guards at a frame's ends, so that a sanitizer sees its memory end there, and no frame that takes long.
    testsupport::ForeignHost mHost{{.guardBytes = 0, .largestSide = 2048}};
    test::TemporaryFolder mFolder;
    std::vector<std::u16string> mPaths;
    std::vector<ksInstance> mInstances;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // No dialog, whatever the desktop.
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    unsetenv("KESTREL_UI");
    unsetenv("KESTREL_UI_SCRIPT");
    const qelcore::logging::ScopedListener quiet([](const qelcore::logging::Message&) {});
    Input input({data, size});
    Session session(input);
    while (!input.IsEmpty()) {
        session.SendOne();
    }
    return 0;
}
