#include "RepeatingEncoder.h"

#include <deque>
#include <optional>
#include <utility>

namespace tessel::exporting {
namespace {

class RepeatingEncoder final : public VideoEncoder {
public:
    explicit RepeatingEncoder(std::unique_ptr<VideoEncoder> encoder)
        : mEncoder(std::move(encoder)), mPacket(libav::MakePacket())
    {
    }

    void DescribeStream(AVStream& stream) const override { mEncoder->DescribeStream(stream); }

    void Encode(const Picture& picture, std::int64_t index, const Sink& sink) override
    {
        if (mPicture && IsSamePicture(*mPicture, picture)) {
            mRepeats.push_back({mPictureTime, index});
            EmitRepeats(sink);
            return;
        }
        mPicture = picture;
        mPictureTime = index;
        mEncoder->Encode(picture, index, Keeping(sink));
    }

    void Finish(const Sink& sink) override { mEncoder->Finish(Keeping(sink)); }

private:
    struct Repeat {
        std::int64_t of; ///< time of the encoded picture
        std::int64_t time;
    };

    /// Encoders give packets late, so each is followed by the repeats that have come meanwhile.
    [[nodiscard]] Sink Keeping(const Sink& sink)
    {
        return [this, &sink](AVPacket& packet) {
            av_packet_unref(mPacket.get());
            libav::Check(av_packet_ref(mPacket.get(), &packet), "cannot keep a picture");
            mHasPacket = true;
            sink(packet);
            EmitRepeats(sink);
        };
    }

    void EmitRepeats(const Sink& sink)
    {
        while (mHasPacket && !mRepeats.empty() && mRepeats.front().of == mPacket->pts) {
            const libav::Packet copy = libav::MakePacket();
            libav::Check(av_packet_ref(copy.get(), mPacket.get()), "cannot repeat a picture");
            copy->pts = mRepeats.front().time;
            copy->dts = mRepeats.front().time;
            mRepeats.pop_front();
            sink(*copy);
        }
    }

    std::unique_ptr<VideoEncoder> mEncoder;
    std::optional<Picture> mPicture; ///< the last one that was encoded
    std::int64_t mPictureTime = 0;
    libav::Packet mPacket; ///< the last one that came out
    bool mHasPacket = false;
    std::deque<Repeat> mRepeats; ///< whose packet has not come out yet
};

} // namespace

std::unique_ptr<VideoEncoder> EncodeRepeatsOnce(std::unique_ptr<VideoEncoder> encoder)
{
    return std::make_unique<RepeatingEncoder>(std::move(encoder));
}

} // namespace tessel::exporting
