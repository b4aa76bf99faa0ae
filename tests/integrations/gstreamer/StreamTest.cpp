#include <gst/app/gstappsink.h>
#include <gst/gst.h>
#include <gst/video/video.h>
#include <gtest/gtest.h>
#include <support/ClipFolder.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace {

using testsupport::ClipFolder;
using testsupport::Document;

constexpr guint64 kFrames = 60; // of the document of the support: 2 s at 30000/1001, less a part of a frame

/// floor(n × 1001 / 30000 s), as the sum says: 1001 × 10^9 / 30000 = 100100000 / 3.
constexpr GstClockTime FrameTime(guint64 number)
{
    return number * 100'100'000 / 3;
}

struct Buffer {
    GstClockTime time = 0;
    GstClockTime duration = 0;
    guint64 offset = 0;
    bool isInterlaced = false;
    bool isTopFirst = false;
};

/// A pipeline from a clip's pads to two sinks that take one buffer after the other, without a clock.
class StreamTest : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        setenv("GST_PLUGIN_PATH", TEST_GST_PLUGINS, 1);
        setenv("GST_REGISTRY", TEST_GST_REGISTRY, 1);
        setenv("KESTREL_PLUGIN_PATH", TEST_PLUGIN, 1);
        gst_init(nullptr, nullptr);
    }

    void TearDown() override { Close(); }

    void Close()
    {
        if (mPipeline != nullptr) {
            gst_element_set_state(mPipeline, GST_STATE_NULL);
        }
        gst_clear_object(&mVideo);
        gst_clear_object(&mAudio);
        gst_clear_object(&mPipeline);
    }

    /// Ready to give buffers, in PAUSED.
    void Open(const Document& document)
    {
        Close();
        mFile = mFolder.Write("clip.tessel", document.Text());
        const std::string line = "tesselsrc name=source location=" + mFile.string() +
                                 " source.video ! appsink name=video sync=false max-buffers=2 "
                                 "source.audio ! appsink name=audio sync=false max-buffers=2";
        mPipeline = gst_parse_launch(line.c_str(), nullptr);
        ASSERT_NE(mPipeline, nullptr);
        mVideo = gst_bin_get_by_name(GST_BIN(mPipeline), "video");
        mAudio = gst_bin_get_by_name(GST_BIN(mPipeline), "audio");
        gst_element_set_state(mPipeline, GST_STATE_PAUSED);
        ASSERT_EQ(gst_element_get_state(mPipeline, nullptr, nullptr, 10 * GST_SECOND),
                  GST_STATE_CHANGE_SUCCESS);
    }

    void Play() { gst_element_set_state(mPipeline, GST_STATE_PLAYING); }

    static Buffer Taken(GstSample* sample)
    {
        GstBuffer* const buffer = gst_sample_get_buffer(sample);
        const Buffer taken{GST_BUFFER_PTS(buffer), GST_BUFFER_DURATION(buffer), GST_BUFFER_OFFSET(buffer),
                           GST_BUFFER_FLAG_IS_SET(buffer, GST_VIDEO_BUFFER_FLAG_INTERLACED) != 0,
                           GST_BUFFER_FLAG_IS_SET(buffer, GST_VIDEO_BUFFER_FLAG_TFF) != 0};
        gst_sample_unref(sample);
        return taken;
    }

    /// The buffer that a paused sink shows.
    static Buffer Shown(GstElement* sink)
    {
        GstSample* const sample = gst_app_sink_try_pull_preroll(GST_APP_SINK(sink), 10 * GST_SECOND);
        EXPECT_NE(sample, nullptr) << "the stream hangs";
        return sample != nullptr ? Taken(sample) : Buffer{};
    }

    /// The next buffer that a playing sink gets; nothing at the end.
    static std::optional<Buffer> Next(GstElement* sink)
    {
        GstSample* const sample = gst_app_sink_try_pull_sample(GST_APP_SINK(sink), 10 * GST_SECOND);
        if (sample == nullptr) {
            EXPECT_TRUE(gst_app_sink_is_eos(GST_APP_SINK(sink))) << "the stream hangs";
            return std::nullopt;
        }
        return Taken(sample);
    }

    static std::vector<Buffer> Rest(GstElement* sink)
    {
        std::vector<Buffer> buffers;
        while (const auto buffer = Next(sink)) {
            buffers.push_back(*buffer);
        }
        return buffers;
    }

    bool Seek(gdouble rate, GstFormat format, int flags, gint64 start, gint64 stop = -1)
    {
        return gst_element_seek(mPipeline, rate, format, static_cast<GstSeekFlags>(flags | GST_SEEK_FLAG_FLUSH),
                                GST_SEEK_TYPE_SET, start, stop >= 0 ? GST_SEEK_TYPE_SET : GST_SEEK_TYPE_NONE,
                                stop) != FALSE;
    }

    GstStructure* VideoCaps()
    {
        GstPad* const pad = gst_element_get_static_pad(mVideo, "sink");
        GstCaps* const caps = gst_pad_get_current_caps(pad);
        gst_object_unref(pad);
        GstStructure* const structure = gst_structure_copy(gst_caps_get_structure(caps, 0));
        gst_caps_unref(caps);
        return structure;
    }

    ClipFolder mFolder;
    std::filesystem::path mFile;
    GstElement* mPipeline = nullptr;
    GstElement* mVideo = nullptr;
    GstElement* mAudio = nullptr;
};

Document Clip()
{
    return Document().Set("mVideoDuration", R"({"ticks": 508540032000})"); // 60 × 8475667200
}

TEST_F(StreamTest, TimesComeFromTheNumberOfTheFrameAndLeaveNoGap)
{
    Open(Clip());
    Play();
    const std::vector<Buffer> frames = Rest(mVideo);
    ASSERT_EQ(frames.size(), kFrames);
    for (guint64 number = 0; number < kFrames; ++number) {
        EXPECT_EQ(frames[number].offset, number);
        EXPECT_EQ(frames[number].time, FrameTime(number));
        EXPECT_EQ(frames[number].time + frames[number].duration, FrameTime(number + 1));
    }
}

TEST_F(StreamTest, SamplesFollowEachOtherWithoutGapToTheEndOfThePicture)
{
    Open(Clip());
    Play();
    guint64 next = 0;
    for (const Buffer& buffer : Rest(mAudio)) {
        EXPECT_EQ(buffer.offset, next);
        EXPECT_EQ(buffer.time, next * GST_SECOND / 48000);
        next = (buffer.time + buffer.duration) * 48000 / GST_SECOND + 1; // both are rounded down
        next -= (buffer.time + buffer.duration) * 48000 % GST_SECOND == 0 ? 1 : 0;
    }
    EXPECT_EQ(next, 96096U); // 60 × 1001 / 30000 s
}

TEST_F(StreamTest, AnAccurateSeekToAFramesTimeGivesThatFrame)
{
    Open(Clip());
    for (const guint64 number : {0U, 1U, 2U, 29U, 30U, 31U, 58U, 59U, 7U}) {
        ASSERT_TRUE(Seek(1, GST_FORMAT_TIME, GST_SEEK_FLAG_ACCURATE, static_cast<gint64>(FrameTime(number))));
        EXPECT_EQ(Shown(mVideo).offset, number);
        if (number > 0) {
            ASSERT_TRUE(
                Seek(1, GST_FORMAT_TIME, GST_SEEK_FLAG_ACCURATE, static_cast<gint64>(FrameTime(number)) - 1));
            EXPECT_EQ(Shown(mVideo).offset, number - 1);
        }
    }
}

TEST_F(StreamTest, ASeekThatOnlyThePicturesPadGetsMovesTheSoundAsWell)
{
    Open(Clip());
    GstPad* const pad = gst_element_get_static_pad(mVideo, "sink");
    ASSERT_TRUE(
        gst_pad_push_event(pad, gst_event_new_seek(1, GST_FORMAT_TIME, GST_SEEK_FLAG_FLUSH, GST_SEEK_TYPE_SET,
                                                   GST_SECOND, GST_SEEK_TYPE_NONE, -1)));
    gst_object_unref(pad);
    EXPECT_EQ(Shown(mVideo).offset, 29U); // 29.97 frames
    EXPECT_EQ(Shown(mAudio).offset, 48000U);
}

TEST_F(StreamTest, SeeksCountFramesWhereTheyAreAskedTo)
{
    Open(Clip());
    ASSERT_TRUE(gst_element_seek(mVideo, 1, GST_FORMAT_DEFAULT,
                                 static_cast<GstSeekFlags>(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_ACCURATE),
                                 GST_SEEK_TYPE_SET, 17, GST_SEEK_TYPE_SET, 20));
    Play();
    std::vector<guint64> numbers;
    for (const Buffer& frame : Rest(mVideo)) {
        numbers.push_back(frame.offset);
    }
    EXPECT_EQ(numbers, (std::vector<guint64>{17, 18, 19}));
}

TEST_F(StreamTest, ReversePlaybackGivesTheFramesFromTheLastToTheFirst)
{
    Open(Clip());
    ASSERT_TRUE(Seek(-1, GST_FORMAT_TIME, GST_SEEK_FLAG_ACCURATE, static_cast<gint64>(FrameTime(10)),
                     static_cast<gint64>(FrameTime(20))));
    Play();
    const std::vector<Buffer> frames = Rest(mVideo);
    ASSERT_EQ(frames.size(), 10U);
    for (std::size_t index = 0; index < frames.size(); ++index) {
        EXPECT_EQ(frames[index].offset, 19 - index);
        EXPECT_EQ(frames[index].time, FrameTime(19 - index));
    }
    const std::vector<Buffer> sound = Rest(mAudio);
    ASSERT_GT(sound.size(), 2U);
    EXPECT_GT(sound.front().offset, sound.back().offset);
    EXPECT_EQ(sound.back().offset, 16016U); // 10 × 1001 / 30000 s
}

TEST_F(StreamTest, SegmentSeeksSayThatTheyAreDone)
{
    Open(Clip());
    ASSERT_TRUE(Seek(1, GST_FORMAT_TIME, GST_SEEK_FLAG_SEGMENT, 0, static_cast<gint64>(FrameTime(5))));
    Play();
    for (guint64 number = 0; number < 5; ++number) {
        EXPECT_EQ(Next(mVideo)->offset, number);
    }
    // The sound of 5 frames, or its sink's two buffers would hold it up.
    for (guint64 sample = 0; sample < 8008; sample += 960) {
        EXPECT_EQ(Next(mAudio)->offset, sample);
    }
    GstBus* const bus = gst_element_get_bus(mPipeline);
    GstMessage* const message = gst_bus_timed_pop_filtered(
        bus, 10 * GST_SECOND, static_cast<GstMessageType>(GST_MESSAGE_SEGMENT_DONE | GST_MESSAGE_ERROR));
    gst_object_unref(bus);
    ASSERT_NE(message, nullptr);
    EXPECT_EQ(GST_MESSAGE_TYPE(message), GST_MESSAGE_SEGMENT_DONE);
    gst_message_unref(message);
}

TEST_F(StreamTest, QueriesAreAnsweredInTimeAndInFrames)
{
    Open(Clip());
    gint64 length = 0;
    ASSERT_TRUE(gst_element_query_duration(mVideo, GST_FORMAT_TIME, &length));
    EXPECT_EQ(static_cast<GstClockTime>(length), FrameTime(kFrames));
    GstPad* const pad = gst_element_get_static_pad(mVideo, "sink");
    ASSERT_TRUE(gst_pad_peer_query_duration(pad, GST_FORMAT_DEFAULT, &length));
    EXPECT_EQ(length, 60);
    gint64 value = 0;
    ASSERT_TRUE(gst_pad_peer_query_convert(pad, GST_FORMAT_DEFAULT, 31, GST_FORMAT_TIME, &value));
    EXPECT_EQ(static_cast<GstClockTime>(value), FrameTime(31));
    ASSERT_TRUE(gst_pad_peer_query_convert(pad, GST_FORMAT_TIME, value, GST_FORMAT_DEFAULT, &value));
    EXPECT_EQ(value, 31);
    gst_object_unref(pad);
    GstQuery* const seeking = gst_query_new_seeking(GST_FORMAT_TIME);
    gboolean isSeekable = FALSE;
    ASSERT_TRUE(gst_element_query(mPipeline, seeking));
    gst_query_parse_seeking(seeking, nullptr, &isSeekable, nullptr, nullptr);
    EXPECT_TRUE(isSeekable);
    gst_query_unref(seeking);
    GstQuery* const latency = gst_query_new_latency();
    gboolean isLive = TRUE;
    ASSERT_TRUE(gst_element_query(mPipeline, latency));
    gst_query_parse_latency(latency, &isLive, nullptr, nullptr);
    EXPECT_FALSE(isLive);
    gst_query_unref(latency);
}

TEST_F(StreamTest, CapsSayRateAspectFieldsAndColours)
{
    Open(Clip().Set("mFieldType", "2").Set("mPixelFormat", "846820729")); // "yuy2", BT.601
    GstStructure* const caps = VideoCaps();
    EXPECT_STREQ(gst_structure_get_string(caps, "format"), "YUY2");
    int numerator = 0;
    int denominator = 0;
    ASSERT_TRUE(gst_structure_get_fraction(caps, "framerate", &numerator, &denominator));
    EXPECT_EQ(numerator, 30000);
    EXPECT_EQ(denominator, 1001);
    ASSERT_TRUE(gst_structure_get_fraction(caps, "pixel-aspect-ratio", &numerator, &denominator));
    EXPECT_EQ(numerator, 10);
    EXPECT_EQ(denominator, 11);
    EXPECT_STREQ(gst_structure_get_string(caps, "interlace-mode"), "interleaved");
    EXPECT_STREQ(gst_structure_get_string(caps, "field-order"), "bottom-field-first");
    // The document claims Rec. 709 for samples of BT.601: the claim is announced.
    EXPECT_STREQ(gst_structure_get_string(caps, "colorimetry"), "bt709");
    EXPECT_STREQ(gst_structure_get_string(caps, "chroma-site"), "mpeg2");
    gst_structure_free(caps);
}

TEST_F(StreamTest, BuffersOfFieldsSayWhichOneComesFirst)
{
    const auto flagsOf = [&](const char* order) {
        Open(Clip().Set("mFieldType", order));
        const Buffer buffer = Shown(mVideo);
        return std::make_pair(buffer.isInterlaced, buffer.isTopFirst);
    };
    EXPECT_EQ(flagsOf("0"), std::make_pair(false, false));
    EXPECT_EQ(flagsOf("1"), std::make_pair(true, true));
    EXPECT_EQ(flagsOf("2"), std::make_pair(true, false));
}

TEST_F(StreamTest, ADocumentThatIsRemovedWhileItPlaysPlaysOn)
{
    Open(Clip());
    std::filesystem::remove(mFile);
    ASSERT_TRUE(Seek(1, GST_FORMAT_TIME, GST_SEEK_FLAG_ACCURATE, GST_SECOND));
    Play();
    EXPECT_EQ(Rest(mVideo).back().offset, kFrames - 1);
}

TEST_F(StreamTest, StatesMayGoUpAndDownManyTimesAndSeeksMayStorm)
{
    Open(Clip());
    // Each start makes new pads; a pipeline's text links the first ones only.
    GstElement* const source = gst_bin_get_by_name(GST_BIN(mPipeline), "source");
    const auto link = +[](GstElement* element, GstPad* pad, gpointer pipeline) {
        gchar* const name = gst_pad_get_name(pad);
        GstElement* const sink = gst_bin_get_by_name(GST_BIN(pipeline), name);
        gst_element_link_pads(element, name, sink, "sink");
        gst_object_unref(sink);
        g_free(name);
    };
    gst_element_set_state(mPipeline, GST_STATE_NULL);
    g_signal_connect(source, "pad-added", G_CALLBACK(link), mPipeline);
    gst_object_unref(source);
    gst_element_set_state(mPipeline, GST_STATE_PAUSED);
    ASSERT_EQ(gst_element_get_state(mPipeline, nullptr, nullptr, 10 * GST_SECOND), GST_STATE_CHANGE_SUCCESS);
    for (int round = 0; round < 20; ++round) {
        for (int seek = 0; seek < 5; ++seek) {
            const guint64 number = static_cast<guint64>(round * 13 + seek * 7) % kFrames;
            ASSERT_TRUE(
                Seek(1, GST_FORMAT_TIME, GST_SEEK_FLAG_ACCURATE, static_cast<gint64>(FrameTime(number))));
            if (seek == 4) {
                ASSERT_EQ(Shown(mVideo).offset, number);
            }
        }
        gst_element_set_state(mPipeline, round % 2 == 0 ? GST_STATE_READY : GST_STATE_NULL);
        gst_element_set_state(mPipeline, GST_STATE_PAUSED);
        ASSERT_EQ(gst_element_get_state(mPipeline, nullptr, nullptr, 10 * GST_SECOND),
                  GST_STATE_CHANGE_SUCCESS);
    }
}

/// Answers the question for memory as an element does that wants room around its rows.
GstPadProbeReturn OfferPool(GstPad* /*pad*/, GstPadProbeInfo* probe, gpointer /*data*/)
{
    GstQuery* const query = GST_PAD_PROBE_INFO_QUERY(probe);
    if (GST_QUERY_TYPE(query) != GST_QUERY_ALLOCATION) {
        return GST_PAD_PROBE_OK;
    }
    GstCaps* caps = nullptr;
    gst_query_parse_allocation(query, &caps, nullptr);
    GstVideoInfo info;
    EXPECT_TRUE(gst_video_info_from_caps(&info, caps));
    GstVideoAlignment room;
    gst_video_alignment_reset(&room);
    room.padding_top = 2;
    room.padding_left = 32;
    room.padding_right = 48;
    GstBufferPool* const pool = gst_video_buffer_pool_new();
    GstStructure* const config = gst_buffer_pool_get_config(pool);
    gst_buffer_pool_config_set_params(config, caps, static_cast<guint>(GST_VIDEO_INFO_SIZE(&info)), 0, 0);
    gst_buffer_pool_config_add_option(config, GST_BUFFER_POOL_OPTION_VIDEO_META);
    gst_buffer_pool_config_add_option(config, GST_BUFFER_POOL_OPTION_VIDEO_ALIGNMENT);
    gst_buffer_pool_config_set_video_alignment(config, &room);
    EXPECT_TRUE(gst_buffer_pool_set_config(pool, config));
    gst_query_add_allocation_pool(query, pool, static_cast<guint>(GST_VIDEO_INFO_SIZE(&info)), 0, 0);
    gst_query_add_allocation_meta(query, GST_VIDEO_META_API_TYPE, nullptr);
    gst_object_unref(pool);
    return GST_PAD_PROBE_HANDLED;
}

/// A picture without what lies between its rows.
struct Pixels {
    std::string bytes;
    int stride = 0; ///< of the first plane
};

Pixels PixelsOf(GstSample* sample)
{
    GstVideoInfo info;
    GstVideoFrame frame;
    EXPECT_TRUE(gst_video_info_from_caps(&info, gst_sample_get_caps(sample)));
    EXPECT_TRUE(gst_video_frame_map(&frame, &info, gst_sample_get_buffer(sample), GST_MAP_READ));
    Pixels pixels;
    pixels.stride = GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0);
    for (guint component = 0; component < GST_VIDEO_FRAME_N_COMPONENTS(&frame); ++component) {
        const guint8* row = GST_VIDEO_FRAME_COMP_DATA(&frame, component);
        for (int line = 0; line < GST_VIDEO_FRAME_COMP_HEIGHT(&frame, component); ++line) {
            pixels.bytes.append(reinterpret_cast<const char*>(row),
                                static_cast<std::size_t>(GST_VIDEO_FRAME_COMP_WIDTH(&frame, component)));
            row += GST_VIDEO_FRAME_COMP_STRIDE(&frame, component);
        }
    }
    gst_video_frame_unmap(&frame);
    gst_sample_unref(sample);
    return pixels;
}

TEST_F(StreamTest, PicturesArePaintedIntoThePoolOfDownstreamByItsStrides)
{
    const std::string file = mFolder.Write("clip.tessel", Clip().Text()).string();
    const auto shown = [&](bool hasPool) {
        Close();
        const std::string line =
            "tesselsrc location=" + file + " ! video/x-raw,format=I420 ! appsink name=video sync=false";
        mPipeline = gst_parse_launch(line.c_str(), nullptr);
        mVideo = gst_bin_get_by_name(GST_BIN(mPipeline), "video");
        if (hasPool) {
            GstPad* const pad = gst_element_get_static_pad(mVideo, "sink");
            gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_QUERY_DOWNSTREAM, &OfferPool, nullptr, nullptr);
            gst_object_unref(pad);
        }
        gst_element_set_state(mPipeline, GST_STATE_PAUSED);
        GstSample* const sample = gst_app_sink_try_pull_preroll(GST_APP_SINK(mVideo), 10 * GST_SECOND);
        EXPECT_NE(sample, nullptr);
        return sample != nullptr ? PixelsOf(sample) : Pixels();
    };
    const Pixels usual = shown(false);
    const Pixels inPool = shown(true);
    EXPECT_GE(inPool.stride, usual.stride + 32 + 48);
    EXPECT_TRUE(inPool.bytes == usual.bytes);
}

GstPadProbeReturn CountAllocations(GstPad* /*pad*/, GstPadProbeInfo* probe, gpointer count)
{
    if (GST_QUERY_TYPE(GST_PAD_PROBE_INFO_QUERY(probe)) == GST_QUERY_ALLOCATION) {
        ++*static_cast<std::atomic<int>*>(count);
    }
    return GST_PAD_PROBE_OK;
}

TEST_F(StreamTest, AStreamThatIsNegotiatedAgainWhileItFlowsAsksForNoMemory)
{
    Open(Clip());
    std::atomic<int> asked = 0;
    GstPad* const pad = gst_element_get_static_pad(mVideo, "sink");
    gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_QUERY_DOWNSTREAM, &CountAllocations, &asked, nullptr);
    gst_pad_push_event(pad, gst_event_new_reconfigure());
    gst_object_unref(pad);
    Play();
    EXPECT_EQ(Rest(mVideo).size(), kFrames);
    Close();
    EXPECT_EQ(asked, 0);
}

TEST_F(StreamTest, AFormatThatTheClipCannotHaveIsAnError)
{
    mFile = mFolder.Write("clip.tessel", Clip().Text());
    mPipeline = gst_parse_launch(
        ("tesselsrc location=" + mFile.string() + " ! video/x-raw,format=GRAY8 ! fakesink").c_str(), nullptr);
    gst_element_set_state(mPipeline, GST_STATE_PLAYING);
    GstBus* const bus = gst_element_get_bus(mPipeline);
    GstMessage* const message = gst_bus_timed_pop_filtered(bus, 10 * GST_SECOND, GST_MESSAGE_ERROR);
    gst_object_unref(bus);
    ASSERT_NE(message, nullptr);
    gst_message_unref(message);
}

} // namespace
