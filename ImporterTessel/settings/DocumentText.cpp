#include "DocumentText.h"

#include <kestrel/qelcore/serialization/Json.h>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace ImporterTessel {

namespace {

constexpr std::string_view kWrapperKey = "SerializerWrappedObject";

} // namespace

malformed_document::malformed_document(const std::string& detail)
    : std::runtime_error("JSON not well-formed"), mExplanation(std::string(what()) + ": " + detail)
{
}

ORB::Status ReadDocumentText(std::u16string_view path, std::string& text)
{
    ORB::File file;
    const ORB::Status opened = ORB::File::OpenForReading(path, file);
    if (opened < 0) {
        return opened;
    }
    std::uint64_t size = 0;
    if (const ORB::Status status = file.GetSizeOnDisk(size); status < 0) {
        return status;
    }
    constexpr std::uint64_t kLongestRead = qelcore::serialization::kLongestJSONText + 1;
    std::string bytes(static_cast<std::size_t>(std::min(size, kLongestRead)), '\0');
    std::uint32_t read = 0;
    if (const ORB::Status status = file.Read(bytes, read); status < 0) {
        return status;
    }
    bytes.resize(read);
    bytes.resize(std::min(bytes.find('\0'), bytes.size()));
    text = std::move(bytes);
    return opened;
}

ParsedDocument ParseDocument(std::string_view text)
{
    std::string error;
    qelcore::serialization::Value root = qelcore::serialization::JSONParse(text, &error);
    if (root.IsNothing()) {
        throw malformed_document(error);
    }
    const bool isWrapper = qelcore::serialization::ObjectHasProperty(root, kWrapperKey);
    return {root, isWrapper ? qelcore::serialization::GetVariantInObject(root, kWrapperKey) : root};
}

} // namespace ImporterTessel
