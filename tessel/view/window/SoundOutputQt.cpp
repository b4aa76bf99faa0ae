#include "SoundOutput.h"

#include <tessel/verify/reference/ClipSound.h>

#include <QAudioDevice>
#include <QAudioFormat>
#include <QAudioSink>
#include <QIODevice>
#include <QMediaDevices>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <exception>
#include <utility>
#include <vector>

namespace tessel::view {
namespace {

/// Weights of left and right: ITU-R BS.775-4, table 2, without the low-frequency channel.
struct Weights {
    float left;
    float right;
};

std::vector<Weights> DownmixOf(std::size_t channels)
{
    constexpr float kHalfPower = 0.7071F;
    if (channels == 6) {
        return {{1, 0}, {0, 1}, {kHalfPower, kHalfPower}, {0, 0}, {kHalfPower, 0}, {0, kHalfPower}};
    }
    // Of channels without known places, odd ones go left and even ones right.
    std::vector<Weights> weights;
    for (std::size_t i = 0; i < channels; ++i) {
        weights.push_back(channels == 1 ? Weights{1, 1} : i % 2 == 0 ? Weights{1, 0} : Weights{0, 1});
    }
    return weights;
}

/// A clip's samples as the device asks for them.
class SampleStream final : public QIODevice {
public:
    SampleStream(std::shared_ptr<const ViewedClip> clip, const QAudioFormat& format, std::int64_t position)
        : mClip(std::move(clip)), mSound(mClip->Source()), mFormat(format), mPosition(position)
    {
        open(QIODevice::ReadOnly);
    }
    [[nodiscard]] bool isSequential() const override { return true; }
    [[nodiscard]] qint64 bytesAvailable() const override { return 1 << 20; } // it never ends: silence follows

protected:
    qint64 readData(char* data, qint64 most) override
    {
        const std::int64_t count = most / mFormat.bytesPerFrame();
        try {
            mSound.Read(mPosition, count, mSamples);
        } catch (const std::exception&) {
            mSamples.assign(static_cast<std::size_t>(mSound.Channels()),
                            std::vector<float>(static_cast<std::size_t>(count), 0.0F));
        }
        mPosition += count;
        const auto channels = static_cast<std::size_t>(mFormat.channelCount());
        const bool isMixed = channels != mSamples.size();
        const std::vector<Weights> weights = isMixed ? DownmixOf(mSamples.size()) : std::vector<Weights>();
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
            for (std::size_t channel = 0; channel < channels; ++channel) {
                float value = 0;
                if (!isMixed) {
                    value = mSamples[channel][i];
                } else if (channel < 2) {
                    for (std::size_t from = 0; from < weights.size(); ++from) {
                        value += mSamples[from][i] * (channel == 0 ? weights[from].left : weights[from].right);
                    }
                }
                data = Store(data, value);
            }
        }
        return count * mFormat.bytesPerFrame();
    }
    qint64 writeData(const char* /*data*/, qint64 /*most*/) override { return -1; }

private:
    char* Store(char* at, float value) const
    {
        value = std::clamp(value, -1.0F, 1.0F);
        if (mFormat.sampleFormat() == QAudioFormat::Float) {
            std::memcpy(at, &value, sizeof value);
            return at + sizeof value;
        }
        const auto code = static_cast<std::int16_t>(std::lround(value * 32767.0F));
        std::memcpy(at, &code, sizeof code);
        return at + sizeof code;
    }

    std::shared_ptr<const ViewedClip> mClip;
    verify::reference::ClipSound mSound;
    QAudioFormat mFormat;
    std::int64_t mPosition;
    verify::reference::Samples mSamples;
};

} // namespace

struct SoundOutput::Player {
    std::unique_ptr<SampleStream> stream;
    std::unique_ptr<QAudioSink> sink;
    double startSeconds = 0;
};

SoundOutput::SoundOutput() = default;
SoundOutput::~SoundOutput() = default;

void SoundOutput::Start(std::shared_ptr<const ViewedClip> clip, double seconds)
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
    mPlayer->stream = std::make_unique<SampleStream>(std::move(clip), format, position);
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
    return mPlayer->startSeconds + static_cast<double>(mPlayer->sink->processedUSecs()) / 1e6;
}

} // namespace tessel::view
