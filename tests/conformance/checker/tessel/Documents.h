/// The requests that most checks begin with, spelled out once.
#pragma once

#include "../host/ForeignHost.h"
#include "../host/GuardedRecord.h"
#include "../host/Plugin.h"
#include "../host/TemporaryFolder.h"

#include <string>

namespace conformance {

/// A complete document with every required key; `more` are further members, each followed by a comma:
/// `"mVersion": 1,`.
[[nodiscard]] std::string Document(const std::string& more = "");

/// The document for the general suite: pictures that change from frame to frame and from row to row, and a
/// tone on two channels.
[[nodiscard]] std::string SampleDocument();

/// `Document()` with the value of one of its root keys replaced; an empty `value` leaves the key out.
[[nodiscard]] std::string DocumentWith(const std::string& key, const std::string& value);

/// Opens `file` through selector 39 on an empty slot. @return the answer; the instance in `instance`.
[[nodiscard]] std::int32_t OpenFile(const Plugin& plugin, const std::filesystem::path& file,
                                    ksInstance& instance);

/// Opens a document. @return its instance. @throws Violation where the answer is not 0.
[[nodiscard]] ksInstance OpenDocument(const Plugin& plugin, const std::string& document);

/// Selector 38 for a file, as for a new clip and without a dialog: its records, and the buffer for the text.
struct SettingsTextRequest {
    explicit SettingsTextRequest(const std::filesystem::path& file);
    SettingsTextRequest(const SettingsTextRequest&) = delete;
    SettingsTextRequest& operator=(const SettingsTextRequest&) = delete;
    ~SettingsTextRequest() = default;

    [[nodiscard]] std::int32_t Send(const Plugin& plugin);
    /// @throws Violation where a byte of the buffer is not as it was.
    void ExpectBufferUntouched() const;

    std::u16string path;
    std::vector<char> buffer;
    GuardedRecord access;
    GuardedRecord exchange;
};

/// The settings text that selector 38 gives for a file with this content, without a dialog.
[[nodiscard]] std::string SettingsText(const Plugin& plugin, const std::string& fileContent);

/// Selector 37 for a clip without a file, whose settings are `text`.
[[nodiscard]] std::int32_t Describe(const Plugin& plugin, const std::string& text, GuardedRecord& info);

/// Selector 47 at `ticks` into the handle `frame`.
[[nodiscard]] std::int32_t RequestFrame(const Plugin& plugin, ksInstance instance, std::int64_t ticks,
                                        void*& frame);

} // namespace conformance
