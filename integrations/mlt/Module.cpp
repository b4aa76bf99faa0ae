/// What MLT calls when it loads the module.

#include "Producer.h"

#include <framework/mlt.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace {

constexpr char kService[] = "tessel";

/// MLT's table of names has no line for documents, so the loader would ask the service for movies. Its request
/// is answered here, which leaves the table as it is.
void OnCreateRequest(mlt_properties /*owner*/, void* /*self*/, mlt_event_data data)
{
    constexpr std::string_view kMovies = "avformat";
    constexpr std::string_view kEnding = ".tessel";
    auto* request = static_cast<mlt_factory_event_data*>(mlt_event_data_to_object(data));
    // Of other services the input may be no text: of "melt" it is an argument vector.
    if (request == nullptr || request->name == nullptr || request->input == nullptr ||
        !std::string_view(request->name).starts_with(kMovies) ||
        !std::string_view(static_cast<const char*>(request->input)).ends_with(kEnding)) {
        return;
    }
    auto* producer = static_cast<mlt_producer>(mlt_repository_create(
        mlt_factory_repository(), nullptr, mlt_service_producer_type, kService, request->input));
    if (producer != nullptr) {
        // Else the loader would name itself, and a saved project would not open.
        mlt_properties_set(MLT_PRODUCER_PROPERTIES(producer), "mlt_service", kService);
        *static_cast<mlt_producer*>(request->service) = producer;
    }
}

mlt_properties Metadata(mlt_service_type /*type*/, const char* /*id*/, void* /*data*/)
{
    char file[PATH_MAX];
    std::snprintf(file, sizeof file, "%s/tessel/producer_tessel.yml", mlt_environment("MLT_DATA"));
    return mlt_properties_parse_yaml(file);
}

} // namespace

extern "C" {
__attribute__((visibility("default"))) MLT_REPOSITORY
{
    MLT_REGISTER(mlt_service_producer_type, kService, tessel::mlt::CreateProducer);
    MLT_REGISTER_METADATA(mlt_service_producer_type, kService, Metadata, nullptr);
    mlt_events_listen(mlt_factory_event_object(), repository, "producer-create-request", OnCreateRequest);
}
}
