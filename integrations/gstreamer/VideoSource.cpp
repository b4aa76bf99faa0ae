#include "VideoSource.h"

#include "StreamSource.h"
#include "VideoCaps.h"

#include <gst/video/gstvideometa.h>
#include <gst/video/gstvideopool.h>
#include <gst/video/video.h>

#include <cstddef>

namespace tessel::gstreamer {
namespace {

struct TesselVideoSource {
    TesselStreamSource parent;
    GstCaps* caps; ///< all that is offered
    GstVideoInfo info;
    tessel_layout layout;
    tessel_picture picture; ///< in that layout
    bool hasPadding;        ///< buffers have bytes that are no part of the picture
};

struct TesselVideoSourceClass {
    TesselStreamSourceClass parent;
};

G_DEFINE_TYPE(TesselVideoSource, tessel_video_source, StreamSourceType())

TesselVideoSource* AsVideoSource(gpointer object)
{
    return reinterpret_cast<TesselVideoSource*>(object);
}

void Finalize(GObject* object)
{
    gst_clear_caps(&AsVideoSource(object)->caps);
    G_OBJECT_CLASS(tessel_video_source_parent_class)->finalize(object);
}

GstCaps* GetCaps(GstBaseSrc* base, GstCaps* filter)
{
    GstCaps* const caps = AsVideoSource(base)->caps;
    return filter != nullptr ? gst_caps_intersect_full(caps, filter, GST_CAPS_INTERSECT_FIRST)
                             : gst_caps_ref(caps);
}

gboolean SetCaps(GstBaseSrc* base, GstCaps* caps)
{
    TesselVideoSource* const source = AsVideoSource(base);
    GstVideoInfo info;
    if (gst_video_info_from_caps(&info, caps) == FALSE) {
        return FALSE;
    }
    tessel_picture picture{};
    picture.size = sizeof picture;
    const tessel_layout layout = LayoutOf(GST_VIDEO_INFO_FORMAT(&info));
    tessel_clip* const clip = ClipOf(&source->parent).handle.get();
    if (tessel_describe_picture(clip, layout, &picture) != TESSEL_OK) {
        return FailRequest(&source->parent) == GST_FLOW_OK;
    }
    std::size_t pictureBytes = 0;
    for (int plane = 0; plane < picture.plane_count; ++plane) {
        pictureBytes += picture.row_bytes[plane] * static_cast<std::size_t>(picture.plane_rows[plane]);
    }
    source->info = info;
    source->layout = layout;
    source->picture = picture;
    source->hasPadding = pictureBytes != GST_VIDEO_INFO_SIZE(&info);
    gst_base_src_set_blocksize(base, static_cast<guint>(GST_VIDEO_INFO_SIZE(&info)));
    return TRUE;
}

/// A pool of downstream's where it has one, with rows as it wants them if it understands GstVideoMeta.
gboolean DecideAllocation(GstBaseSrc* base, GstQuery* query)
{
    GstCaps* caps = nullptr;
    gst_query_parse_allocation(query, &caps, nullptr);
    GstVideoInfo info;
    if (caps == nullptr || gst_video_info_from_caps(&info, caps) == FALSE) {
        return FALSE;
    }
    // Rows that start on cache lines are painted fastest.
    constexpr gsize kAlignmentMask = 63;
    GstAllocator* allocator = nullptr;
    GstAllocationParams params;
    gst_allocation_params_init(&params);
    if (gst_query_get_n_allocation_params(query) > 0) {
        gst_query_parse_nth_allocation_param(query, 0, &allocator, &params);
    }
    params.align |= kAlignmentMask;

    GstBufferPool* pool = nullptr;
    auto size = static_cast<guint>(GST_VIDEO_INFO_SIZE(&info));
    guint least = 0;
    guint most = 0;
    const bool isProposed = gst_query_get_n_allocation_pools(query) > 0;
    if (isProposed) {
        gst_query_parse_nth_allocation_pool(query, 0, &pool, &size, &least, &most);
        size = MAX(size, static_cast<guint>(GST_VIDEO_INFO_SIZE(&info)));
    }
    if (pool == nullptr) {
        pool = gst_video_buffer_pool_new();
    }
    GstStructure* const config = gst_buffer_pool_get_config(pool);
    gst_buffer_pool_config_set_params(config, caps, size, least, most);
    gst_buffer_pool_config_set_allocator(config, allocator, &params);
    if (gst_query_find_allocation_meta(query, GST_VIDEO_META_API_TYPE, nullptr) != FALSE) {
        gst_buffer_pool_config_add_option(config, GST_BUFFER_POOL_OPTION_VIDEO_META);
    }
    if (gst_buffer_pool_set_config(pool, config) == FALSE) {
        // The pool changed what it was asked for; its own wishes will do.
        GstStructure* const changed = gst_buffer_pool_get_config(pool);
        if (gst_buffer_pool_config_validate_params(changed, caps, size, least, most) == FALSE) {
            gst_structure_free(changed);
            gst_object_unref(pool);
            gst_clear_object(&allocator);
            return FALSE;
        }
        (void)gst_buffer_pool_set_config(pool, changed);
    }
    if (isProposed) {
        gst_query_set_nth_allocation_pool(query, 0, pool, size, least, most);
    } else {
        gst_query_add_allocation_pool(query, pool, size, least, most);
    }
    gst_object_unref(pool);
    gst_clear_object(&allocator);
    return GST_BASE_SRC_CLASS(tessel_video_source_parent_class)->decide_allocation(base, query);
}

/// Has the clip painted into the mapped frame, by its own strides.
tessel_result Paint(const TesselVideoSource* source, guint64 number, GstVideoFrame& frame)
{
    void* planes[GST_VIDEO_MAX_PLANES] = {};
    std::ptrdiff_t strides[GST_VIDEO_MAX_PLANES] = {};
    for (int index = 0; index < source->picture.plane_count; ++index) {
        const auto plane =
            source->picture.plane_count > 1 ? GST_VIDEO_FRAME_COMP_PLANE(&frame, index) : guint{0};
        planes[index] = GST_VIDEO_FRAME_PLANE_DATA(&frame, plane);
        strides[index] = GST_VIDEO_FRAME_PLANE_STRIDE(&frame, plane);
    }
    return tessel_frame(ClipOf(&source->parent).handle.get(), static_cast<int64_t>(number), source->layout,
                        planes, strides);
}

void SetFieldFlags(GstBuffer* buffer, int fieldOrder)
{
    if (fieldOrder == TESSEL_PROGRESSIVE) {
        return;
    }
    GST_BUFFER_FLAG_SET(buffer, GST_VIDEO_BUFFER_FLAG_INTERLACED);
    if (fieldOrder == TESSEL_UPPER_FIELD_FIRST) {
        GST_BUFFER_FLAG_SET(buffer, GST_VIDEO_BUFFER_FLAG_TFF);
    }
}

GstFlowReturn Make(TesselStreamSource* base, guint64 first, guint64 /*count*/, GstBuffer** made)
{
    TesselVideoSource* const source = AsVideoSource(base);
    GstBuffer* buffer = nullptr;
    const GstFlowReturn flow = GST_BASE_SRC_GET_CLASS(base)->alloc(
        GST_BASE_SRC(base), first, static_cast<guint>(GST_VIDEO_INFO_SIZE(&source->info)), &buffer);
    if (flow != GST_FLOW_OK) {
        return flow;
    }
    if (source->hasPadding) {
        gst_buffer_memset(buffer, 0, 0, gst_buffer_get_size(buffer)); // else memory's earlier content goes out
    }
    GstVideoFrame frame;
    if (gst_video_frame_map(&frame, &source->info, buffer, GST_MAP_WRITE) == FALSE) {
        gst_buffer_unref(buffer);
        GST_ELEMENT_ERROR(base, RESOURCE, WRITE, ("The buffer for a picture cannot be written"), (nullptr));
        return GST_FLOW_ERROR;
    }
    const tessel_result result = Paint(source, first, frame);
    gst_video_frame_unmap(&frame);
    if (result != TESSEL_OK) {
        gst_buffer_unref(buffer);
        return FailRequest(base);
    }
    SetFieldFlags(buffer, ClipOf(base).facts.field_order);
    *made = buffer;
    return GST_FLOW_OK;
}

void tessel_video_source_init(TesselVideoSource* source)
{
    gst_video_info_init(&source->info);
}

void tessel_video_source_class_init(TesselVideoSourceClass* kind)
{
    G_OBJECT_CLASS(kind)->finalize = &Finalize;
    GstElementClass* const element = GST_ELEMENT_CLASS(kind);
    gst_element_class_set_static_metadata(element, "Tessel picture", "Source/Video",
                                          "The picture of a clip, inside tesselsrc and tesseldemux", "Tessel");
    GstCaps* const caps = VideoTemplateCaps();
    gst_element_class_add_pad_template(element, gst_pad_template_new("src", GST_PAD_SRC, GST_PAD_ALWAYS, caps));
    gst_caps_unref(caps);
    GstBaseSrcClass* const base = GST_BASE_SRC_CLASS(kind);
    base->get_caps = &GetCaps;
    base->set_caps = &SetCaps;
    base->decide_allocation = &DecideAllocation;
    kind->parent.make = &Make;
}

} // namespace

GstElement* NewVideoSource(const ClipPointer& clip)
{
    auto* const source =
        AsVideoSource(g_object_new(tessel_video_source_get_type(), "name", "picture", nullptr));
    const tessel_description& facts = clip->facts;
    SetClip(&source->parent, clip,
            {.rate = {static_cast<guint64>(facts.rate_numerator), static_cast<guint64>(facts.rate_denominator)},
             .unitCount = static_cast<guint64>(facts.frame_count)});
    source->caps = VideoCapsOf(*clip);
    return GST_ELEMENT(source);
}

} // namespace tessel::gstreamer
