#include "Source.h"

#include "ClipBin.h"

#include <mutex>
#include <string>

namespace tessel::gstreamer {
namespace {

constexpr const char* kScheme = "tessel";

struct SourceState {
    std::mutex mutex;
    std::string location; ///< empty: none
};

struct TesselSrc {
    TesselClipBin parent;
    SourceState* state;
};

struct TesselSrcClass {
    TesselClipBinClass parent;
};

enum Property { kNoProperty, kLocation };

void AddUriHandler(gpointer interface, gpointer data);

G_DEFINE_TYPE_WITH_CODE(TesselSrc, tessel_src, ClipBinType(),
                        G_IMPLEMENT_INTERFACE(GST_TYPE_URI_HANDLER, AddUriHandler))

SourceState& StateOf(gpointer object)
{
    return *reinterpret_cast<TesselSrc*>(object)->state;
}

std::string LocationOf(gpointer object)
{
    SourceState& state = StateOf(object);
    const std::lock_guard lock(state.mutex);
    return state.location;
}

void SetLocation(gpointer object, const char* location)
{
    SourceState& state = StateOf(object);
    const std::lock_guard lock(state.mutex);
    state.location = location != nullptr ? location : "";
}

// ---- tessel:///a/document.tessel ----

GstURIType UriType(GType /*type*/)
{
    return GST_URI_SRC;
}

const gchar* const* Protocols(GType /*type*/)
{
    static const gchar* const kProtocols[] = {kScheme, nullptr};
    return kProtocols;
}

gchar* GetUri(GstURIHandler* handler)
{
    const std::string location = LocationOf(handler);
    if (location.empty()) {
        return nullptr;
    }
    gchar* const absolute = g_canonicalize_filename(location.c_str(), nullptr);
    gchar* const escaped = g_uri_escape_string(absolute, G_URI_RESERVED_CHARS_ALLOWED_IN_PATH, FALSE);
    gchar* const uri = g_strconcat(kScheme, "://", escaped, nullptr);
    g_free(escaped);
    g_free(absolute);
    return uri;
}

gboolean SetUri(GstURIHandler* handler, const gchar* uri, GError** error)
{
    gchar* const location = gst_uri_get_location(uri);
    if (location == nullptr || g_path_is_absolute(location) == FALSE) {
        g_set_error(error, GST_URI_ERROR, GST_URI_ERROR_BAD_URI,
                    "%s: the path of a document must be absolute, as in tessel:///clips/bars.tessel", uri);
        g_free(location);
        return FALSE;
    }
    SetLocation(handler, location);
    g_free(location);
    return TRUE;
}

void AddUriHandler(gpointer interface, gpointer /*data*/)
{
    auto* const handler = static_cast<GstURIHandlerInterface*>(interface);
    handler->get_type = &UriType;
    handler->get_protocols = &Protocols;
    handler->get_uri = &GetUri;
    handler->set_uri = &SetUri;
}

// ---- The element ----

void SetProperty(GObject* object, guint id, const GValue* value, GParamSpec* spec)
{
    if (id == kLocation) {
        SetLocation(object, g_value_get_string(value));
    } else {
        G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
    }
}

void GetProperty(GObject* object, guint id, GValue* value, GParamSpec* spec)
{
    if (id == kLocation) {
        const std::string location = LocationOf(object);
        g_value_set_string(value, location.empty() ? nullptr : location.c_str());
    } else {
        G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
    }
}

bool Open(TesselClipBin* bin)
{
    const std::string location = LocationOf(bin);
    if (location.empty()) {
        GST_ELEMENT_ERROR(bin, RESOURCE, NOT_FOUND, ("No document is named: set the property 'location'"),
                          (nullptr));
        return false;
    }
    const OpenedClip opened = OpenFile(location);
    if (!opened.clip) {
        FailOpening(bin, opened.error);
        return false;
    }
    ShowClip(bin, opened.clip, gst_util_group_id_next());
    return true;
}

GstStateChangeReturn ChangeState(GstElement* element, GstStateChange change)
{
    if (change == GST_STATE_CHANGE_READY_TO_PAUSED && !Open(reinterpret_cast<TesselClipBin*>(element))) {
        return GST_STATE_CHANGE_FAILURE;
    }
    return GST_ELEMENT_CLASS(tessel_src_parent_class)->change_state(element, change);
}

gboolean Query(GstElement* element, GstQuery* query)
{
    if (GST_QUERY_TYPE(query) != GST_QUERY_URI) {
        return GST_ELEMENT_CLASS(tessel_src_parent_class)->query(element, query);
    }
    gchar* const uri = GetUri(GST_URI_HANDLER(element));
    if (uri == nullptr) {
        return FALSE;
    }
    gst_query_set_uri(query, uri);
    g_free(uri);
    return TRUE;
}

void Finalize(GObject* object)
{
    delete reinterpret_cast<TesselSrc*>(object)->state;
    G_OBJECT_CLASS(tessel_src_parent_class)->finalize(object);
}

void tessel_src_init(TesselSrc* source)
{
    source->state = new SourceState;
}

void tessel_src_class_init(TesselSrcClass* kind)
{
    GObjectClass* const object = G_OBJECT_CLASS(kind);
    object->finalize = &Finalize;
    object->set_property = &SetProperty;
    object->get_property = &GetProperty;
    constexpr int kFlags = static_cast<int>(G_PARAM_READWRITE) | static_cast<int>(G_PARAM_STATIC_STRINGS) |
                           GST_PARAM_MUTABLE_READY;
    g_object_class_install_property(
        object, kLocation,
        g_param_spec_string("location", "Document",
                            "The .tessel document to play; read when the element starts", nullptr,
                            static_cast<GParamFlags>(kFlags)));
    GstElementClass* const element = GST_ELEMENT_CLASS(kind);
    element->change_state = &ChangeState;
    element->query = &Query;
    gst_element_class_set_static_metadata(
        element, "Tessel source", "Source/Video/Audio",
        "Exact test signals: the picture and the sound that a .tessel document describes", "Tessel");
}

} // namespace

GType SourceType()
{
    return tessel_src_get_type();
}

} // namespace tessel::gstreamer
