#include "TypeFinder.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tessel::gstreamer {
namespace {

/// Keys that every document has, whatever its order; see docs/file-format.md.
constexpr std::array<std::string_view, 8> kKeys = {
    "\"mPixelFormat\"",  "\"mFrameWidth\"",    "\"mFrameHeight\"",    "\"mFramePAR\"",
    "\"mRenderFormat\"", "\"mVideoDuration\"", "\"mVideoFrameRate\"", "\"mFieldType\"",
};

/// The beginning of the stream, as much as there is of what is wanted.
std::string_view Peek(GstTypeFind* find)
{
    constexpr guint kMost = 64 * 1024;
    const guint64 length = gst_type_find_get_length(find);
    const guint most = length > 0 && length < kMost ? static_cast<guint>(length) : kMost;
    for (guint size = most; size >= 2; size /= 2) {
        if (const guint8* const data = gst_type_find_peek(find, 0, size)) {
            return {reinterpret_cast<const char*>(data), size};
        }
    }
    return {};
}

bool BeginsAsObject(std::string_view text)
{
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
        text.remove_prefix(kByteOrderMark.size());
    }
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && text[first] == '{';
}

/// Whether a text stands there as a key, not as a value.
bool HasKey(std::string_view text, std::string_view key)
{
    const std::size_t place = text.find(key);
    if (place == std::string_view::npos) {
        return false;
    }
    const std::size_t behind = text.find_first_not_of(" \t\r\n", place + key.size());
    return behind != std::string_view::npos && text[behind] == ':';
}

void Find(GstTypeFind* find, gpointer /*data*/)
{
    const std::string_view text = Peek(find);
    if (!BeginsAsObject(text)) {
        return;
    }
    const auto found =
        std::count_if(kKeys.begin(), kKeys.end(), [&](std::string_view key) { return HasKey(text, key); });
    if (found > 0) {
        gst_type_find_suggest_simple(find, found > 1 ? GST_TYPE_FIND_NEARLY_CERTAIN : GST_TYPE_FIND_LIKELY,
                                     kDocumentType, nullptr, nullptr);
    }
}

} // namespace

bool RegisterTypeFinder(GstPlugin* plugin)
{
    GstCaps* const caps = gst_caps_new_empty_simple(kDocumentType);
    const gboolean isRegistered = gst_type_find_register(plugin, kDocumentType, GST_RANK_PRIMARY, &Find,
                                                         "tessel", caps, nullptr, nullptr);
    gst_caps_unref(caps);
    return isRegistered != FALSE;
}

} // namespace tessel::gstreamer
