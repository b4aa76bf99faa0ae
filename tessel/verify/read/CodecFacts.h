/// FFmpeg's facts about containers and codecs, in the terms of `MovieFacts`.
#pragma once

#include "MovieFacts.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/pixdesc.h>
}

namespace tessel::verify::read {

[[nodiscard]] SampleFormat FormatFacts(const AVPixFmtDescriptor& format);

/// Everything but the sound. @param codec,stream  of the pictures; null for a movie without pictures
void FillFacts(MovieFacts& facts, const AVFormatContext& input, const AVCodecContext* codec, AVStream* stream);

/// Adds one sound stream to those before it.
void AddSoundFacts(MovieFacts& facts, const AVFormatContext& input, const AVCodecContext& codec,
                   const AVStream& stream);

/// What only decoded pictures tell.
void CompletePictureFacts(PictureFacts& facts, const AVFrame& first, const Sayable& sayable);

} // namespace tessel::verify::read
