#include "VideoCaps.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace tessel::gstreamer {
namespace {

/// A format of GStreamer and the layout that has its samples.
struct Row {
    GstVideoFormat format;
    tessel_layout layout;
    bool isRgb;
    int bits;
    bool isSubsampled;
};

/// The everyday formats, in the order in which they are offered where nothing else decides.
constexpr std::array<Row, 19> kFormats{{
    {GST_VIDEO_FORMAT_BGRA, TESSEL_LAYOUT_BGRA, true, 8, false},
    {GST_VIDEO_FORMAT_ARGB, TESSEL_LAYOUT_ARGB, true, 8, false},
    {GST_VIDEO_FORMAT_BGRx, TESSEL_LAYOUT_BGRX, true, 8, false},
    {GST_VIDEO_FORMAT_xRGB, TESSEL_LAYOUT_XRGB, true, 8, false},
    {GST_VIDEO_FORMAT_RGBA, TESSEL_LAYOUT_RGBA, true, 8, false},
    {GST_VIDEO_FORMAT_RGB, TESSEL_LAYOUT_RGB, true, 8, false},
    {GST_VIDEO_FORMAT_RGBA64_LE, TESSEL_LAYOUT_RGBA64, true, 16, false},
    {GST_VIDEO_FORMAT_A444_10LE, TESSEL_LAYOUT_YUVA444P10, false, 10, false},
    {GST_VIDEO_FORMAT_Y444_10LE, TESSEL_LAYOUT_YUV444P10, false, 10, false},
    {GST_VIDEO_FORMAT_v210, TESSEL_LAYOUT_V210, false, 10, true},
    {GST_VIDEO_FORMAT_I422_10LE, TESSEL_LAYOUT_YUV422P10, false, 10, true},
    {GST_VIDEO_FORMAT_I420_10LE, TESSEL_LAYOUT_YUV420P10, false, 10, true},
    {GST_VIDEO_FORMAT_Y444, TESSEL_LAYOUT_YUV444P, false, 8, false},
    {GST_VIDEO_FORMAT_UYVY, TESSEL_LAYOUT_UYVY, false, 8, true},
    {GST_VIDEO_FORMAT_YUY2, TESSEL_LAYOUT_YUYV, false, 8, true},
    {GST_VIDEO_FORMAT_Y42B, TESSEL_LAYOUT_YUV422P, false, 8, true},
    {GST_VIDEO_FORMAT_I420, TESSEL_LAYOUT_YUV420P, false, 8, true},
    {GST_VIDEO_FORMAT_YV12, TESSEL_LAYOUT_YUV420P, false, 8, true},
    // Only of clips whose own samples lie so.
    {GST_VIDEO_FORMAT_VUYA, TESSEL_LAYOUT_OWN, false, 8, false},
}};

constexpr guint32 Code(const char (&text)[5]) noexcept
{
    guint32 code = 0;
    for (int index = 3; index >= 0; --index) {
        code = code << 8 | static_cast<unsigned char>(text[index]);
    }
    return code;
}

/// A clip's own format and the one of GStreamer that has the very same bytes.
struct OwnFormat {
    guint32 code;
    GstVideoFormat format;
};

constexpr std::array<OwnFormat, 18> kOwnFormats{{
    {Code("bgra"), GST_VIDEO_FORMAT_BGRA},
    {Code("bgrp"), GST_VIDEO_FORMAT_BGRA},
    {Code("argb"), GST_VIDEO_FORMAT_ARGB},
    {Code("prgb"), GST_VIDEO_FORMAT_ARGB},
    {Code("bgrx"), GST_VIDEO_FORMAT_BGRx},
    {Code("xrgb"), GST_VIDEO_FORMAT_xRGB},
    {Code("vuya"), GST_VIDEO_FORMAT_VUYA},
    {Code("VUYA"), GST_VIDEO_FORMAT_VUYA},
    {Code("vuyx"), GST_VIDEO_FORMAT_VUYA},
    {Code("vux7"), GST_VIDEO_FORMAT_VUYA},
    {Code("vuyp"), GST_VIDEO_FORMAT_VUYA},
    {Code("vup7"), GST_VIDEO_FORMAT_VUYA},
    {Code("yuy2"), GST_VIDEO_FORMAT_YUY2},
    {Code("yuy3"), GST_VIDEO_FORMAT_YUY2},
    {Code("uyvy"), GST_VIDEO_FORMAT_UYVY},
    {Code("uyv7"), GST_VIDEO_FORMAT_UYVY},
    {Code("v210"), GST_VIDEO_FORMAT_v210},
    {Code("v211"), GST_VIDEO_FORMAT_v210},
}};

GstVideoFormat SameBytes(guint32 code) noexcept
{
    const auto* const found = std::find_if(kOwnFormats.begin(), kOwnFormats.end(),
                                           [&](const OwnFormat& own) { return own.code == code; });
    return found == kOwnFormats.end() ? GST_VIDEO_FORMAT_UNKNOWN : found->format;
}

bool IsPlanar420(guint32 code) noexcept
{
    return code == Code("yv12") || code == Code("yvi2") || code == Code("yv17") || code == Code("yvi7");
}

/// What a clip's own samples are.
struct OwnSamples {
    GstVideoFormat format; ///< of GStreamer, or unknown
    bool isRgb;
    int bits;
    bool isSubsampled;
};

OwnSamples OwnSamplesOf(const Clip& clip) noexcept
{
    if (IsPlanar420(clip.facts.pixel_format)) {
        // Their frames come as 4:4:4, and `tessel render` makes files of 4:2:0 of them.
        return {GST_VIDEO_FORMAT_I420, false, 8, true};
    }
    return {SameBytes(clip.own->format), clip.own->matrix == 0, clip.own->sample_bits,
            clip.own->group_pixels > 1};
}

/// How far a format is from the clip's own samples; lower is nearer.
auto Distance(const Row& row, const OwnSamples& own) noexcept
{
    const int wanted = own.bits > 16 ? 16 : own.bits; // no format has floats: the deepest is the nearest
    const int missing = std::max(0, wanted - row.bits);
    const int spare = std::max(0, row.bits - wanted);
    return std::make_tuple(row.format != own.format, row.isRgb != own.isRgb, missing,
                           row.isSubsampled != own.isSubsampled, spare);
}

bool Has(const Row& row, const OwnSamples& own) noexcept
{
    return row.layout != TESSEL_LAYOUT_OWN || row.format == own.format;
}

/// The colours that pictures in a layout announce, by the rules of the files that `tessel render` writes:
/// R'G'B' has matrix 0 and full range; Y'CbCr samples of the clip announce what the clip claims, also where
/// that contradicts the format, because wrong tags are a wanted test; Y'CbCr made from R'G'B' what it was made
/// with.
GstVideoColorimetry ColorimetryOf(const Clip& clip, bool isRgb, const tessel_picture& picture) noexcept
{
    constexpr int kRgbMatrix = 0;
    constexpr int kBt709 = 1;
    constexpr int kLinear = 8;
    const tessel_description& facts = clip.facts;
    int matrix = facts.matrix;
    bool isFullRange = facts.full_range != 0;
    if (isRgb) {
        matrix = kRgbMatrix;
        isFullRange = true;
    } else if (clip.own->matrix == kRgbMatrix || facts.matrix == kRgbMatrix) {
        matrix = picture.matrix;
        isFullRange = picture.full_range != 0;
    }
    // Linear light passes the curve of BT.709 on its way into integers.
    const bool isCurved = clip.own->is_linear != 0 && facts.transfer == kLinear;
    const int transfer = isCurved ? kBt709 : facts.transfer;

    GstVideoColorimetry colorimetry{};
    colorimetry.range = isFullRange ? GST_VIDEO_COLOR_RANGE_0_255 : GST_VIDEO_COLOR_RANGE_16_235;
    colorimetry.matrix = gst_video_color_matrix_from_iso(static_cast<guint>(matrix));
    colorimetry.transfer = gst_video_transfer_function_from_iso(static_cast<guint>(transfer));
    colorimetry.primaries = gst_video_color_primaries_from_iso(static_cast<guint>(facts.primaries));
    return colorimetry;
}

void SetInterlacing(GstStructure* structure, int fieldOrder)
{
    if (fieldOrder == TESSEL_PROGRESSIVE) {
        gst_structure_set(structure, "interlace-mode", G_TYPE_STRING, "progressive", nullptr);
        return;
    }
    gst_structure_set(structure, "interlace-mode", G_TYPE_STRING, "interleaved", "field-order", G_TYPE_STRING,
                      fieldOrder == TESSEL_UPPER_FIELD_FIRST ? "top-field-first" : "bottom-field-first",
                      nullptr);
}

void SetColors(GstStructure* structure, const Clip& clip, const Row& row)
{
    tessel_picture picture{};
    picture.size = sizeof picture;
    if (tessel_describe_picture(clip.handle.get(), row.layout, &picture) != TESSEL_OK) {
        return;
    }
    const GstVideoColorimetry colorimetry = ColorimetryOf(clip, row.isRgb, picture);
    if (gchar* const text = gst_video_colorimetry_to_string(&colorimetry)) {
        gst_structure_set(structure, "colorimetry", G_TYPE_STRING, text, nullptr);
        g_free(text);
    }
    if (row.isSubsampled) {
        // Chroma lies on the even columns, and between the rows in 4:2:0.
        gst_structure_set(structure, "chroma-site", G_TYPE_STRING, "mpeg2", nullptr);
    }
}

GstStructure* StructureOf(const Clip& clip, const Row& row)
{
    const tessel_description& facts = clip.facts;
    GstStructure* const structure =
        gst_structure_new("video/x-raw", "format", G_TYPE_STRING, gst_video_format_to_string(row.format),
                          "width", G_TYPE_INT, facts.width, "height", G_TYPE_INT, facts.height, "framerate",
                          GST_TYPE_FRACTION, facts.rate_numerator, facts.rate_denominator, nullptr);
    const bool hasAspect = facts.pixel_aspect_numerator > 0 && facts.pixel_aspect_denominator > 0;
    gst_structure_set(structure, "pixel-aspect-ratio", GST_TYPE_FRACTION,
                      hasAspect ? facts.pixel_aspect_numerator : 1,
                      hasAspect ? facts.pixel_aspect_denominator : 1, nullptr);
    SetInterlacing(structure, facts.field_order);
    SetColors(structure, clip, row);
    return structure;
}

} // namespace

GstCaps* VideoTemplateCaps()
{
    GValue formats = G_VALUE_INIT;
    g_value_init(&formats, GST_TYPE_LIST);
    for (const Row& row : kFormats) {
        GValue name = G_VALUE_INIT;
        g_value_init(&name, G_TYPE_STRING);
        g_value_set_static_string(&name, gst_video_format_to_string(row.format));
        gst_value_list_append_and_take_value(&formats, &name);
    }
    GstCaps* const caps = gst_caps_new_simple("video/x-raw", "width", GST_TYPE_INT_RANGE, 1, G_MAXINT, "height",
                                              GST_TYPE_INT_RANGE, 1, G_MAXINT, "framerate",
                                              GST_TYPE_FRACTION_RANGE, 0, 1, G_MAXINT, 1, nullptr);
    gst_caps_set_value(caps, "format", &formats);
    g_value_unset(&formats);
    return caps;
}

GstCaps* VideoCapsOf(const Clip& clip)
{
    const OwnSamples own = OwnSamplesOf(clip);
    std::array<Row, kFormats.size()> rows = kFormats;
    std::stable_sort(rows.begin(), rows.end(), [&](const Row& left, const Row& right) {
        return Distance(left, own) < Distance(right, own);
    });
    GstCaps* const caps = gst_caps_new_empty();
    for (const Row& row : rows) {
        if (Has(row, own)) {
            gst_caps_append_structure(caps, StructureOf(clip, row));
        }
    }
    return caps;
}

tessel_layout LayoutOf(GstVideoFormat format) noexcept
{
    const auto* const row =
        std::find_if(kFormats.begin(), kFormats.end(), [&](const Row& each) { return each.format == format; });
    return row == kFormats.end() ? TESSEL_LAYOUT_OWN : row->layout;
}

} // namespace tessel::gstreamer
