#include "SoundOutput.h"

#include <tessel/view/model/DeviceSamples.h>

#include <QAudioDevice>
#include <QAudioFormat>
#include <QAudioSink>
#include <QIODevice>
#include <QMediaDevices>
#include <cmath>
#include <cstddef>
#include <utility>

namespace tessel::view {
namespace {

/// A clip's samples as the device asks for them.
class SampleStream final : public QIODevice {
public:
    explicit SampleStream(DeviceSamples samples) : mSamples(std::move(samples)) { open(QIODevice::ReadOnly); }
    [[nodiscard]] bool isSequential() const override { return true; }
    [[nodiscard]] qint64 bytesAvailable() const override { return 1 << 20; } // it never ends

protected:
    qint64 readData(char* data, qint64 most) override
    {
        return static_cast<qint64>(
            mSamples.Read({reinterpret_cast<std::byte*>(data), static_cast<std::size_t>(most)}));
    }
    qint64 writeData(const char* /*data*/, qint64 /*most*/) override { return -1; }

private:
    DeviceSamples mSamples;
};

} // namespace

struct SoundOutput::Player {
    std::unique_ptr<SampleStream> stream;
    std::unique_ptr<QAudioSink> sink;
    double startSeconds = 0;
    double loopSeconds = 0; ///< after which the clip begins again; 0: it does not
};

SoundOutput::SoundOutput() = default;
SoundOutput::~SoundOutput() = default;

void SoundOutput::Start(const std::shared_ptr<const ViewedClip>& clip, double seconds, SoundEnd end)
{
    Stop();
    if (clip->ChannelNames().empty()) {
        mState = "the clip has no sound";
        return;
    }
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (device.isNull()) {
        mState = "no sound device: playing without sound";
        return;
    }
    QAudioFormat format;
    format.setSampleRate(static_cast<int>(clip->Facts().sampleRate));
    format.setChannelCount(static_cast<int>(clip->ChannelNames().size()));
    format.setSampleFormat(QAudioFormat::Float);
    if (!device.isFormatSupported(format)) {
        format.setChannelCount(2);
    }
    if (!device.isFormatSupported(format)) {
        format.setSampleFormat(QAudioFormat::Int16);
    }
    if (!device.isFormatSupported(format)) {
        mState = "the sound device does not take " + std::to_string(format.sampleRate()) +
                 " Hz: playing without sound";
        return;
    }
    mPlayer = std::make_unique<Player>();
    mPlayer->startSeconds = seconds;
    const auto position = static_cast<std::int64_t>(std::llround(seconds * format.sampleRate()));
    const std::size_t channels = clip->ChannelNames().size();
    mState = static_cast<std::size_t>(format.channelCount()) == channels
                 ? "sound: " + std::to_string(channels) + " channels"
                 : "sound: stereo mix of " + std::to_string(channels) + " channels";
    if (end == SoundEnd::Loop) {
        mPlayer->loopSeconds = static_cast<double>(SamplesOf(*clip)) / format.sampleRate();
    }
    const DeviceFormat samples{format.channelCount(), format.sampleFormat() == QAudioFormat::Float
                                                          ? DeviceSampleType::Float32
                                                          : DeviceSampleType::Int16};
    mPlayer->stream = std::make_unique<SampleStream>(DeviceSamples(clip, samples, position, end));
    mPlayer->sink = std::make_unique<QAudioSink>(device, format);
    mPlayer->sink->start(mPlayer->stream.get());
    if (mPlayer->sink->error() != QAudio::NoError) {
        mPlayer.reset();
        mState = "the sound device cannot be opened: playing without sound";
    }
}

void SoundOutput::Stop()
{
    if (mPlayer) {
        mPlayer->sink->stop();
        mPlayer.reset();
    }
}

double SoundOutput::Position() const
{
    if (!mPlayer || mPlayer->sink->state() != QAudio::ActiveState) {
        return -1;
    }
    const double seconds = mPlayer->startSeconds + static_cast<double>(mPlayer->sink->processedUSecs()) / 1e6;
    return mPlayer->loopSeconds > 0 ? std::fmod(seconds, mPlayer->loopSeconds) : seconds;
}

} // namespace tessel::view
