/// From a clip and a movie to a report.
#pragma once

#include <tessel/export/SignalSource.h>
#include <tessel/verify/report/Findings.h>
#include <tessel/verify/report/Report.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace tessel::verify {

struct VerifyJob {
    std::string clipName;                                  ///< for the report
    std::string movieName;                                 ///< a file, `-`, or a picture sequence
    std::map<std::string, double, std::less<>> tolerances; ///< by id, instead of the defaults
    Findings::Choice choice;
    bool isStrict = false;      ///< what a container cannot say or carry is a fault, not a note
    bool measuresAll = false;   ///< PSNR and SSIM of every picture instead of some
    bool keepsPictures = false; ///< fills the report's telling frames
    int threadCount = 1;
    /// Called now and then with the number of pictures read. May be empty.
    std::function<void(std::int64_t)> progress;
};

/// Reads the movie once, from its beginning to its end, and compares it with what the clip gives.
/// @throws read::ReadError, importhost::HostError, exporting::ExportError, std::bad_alloc
[[nodiscard]] Report Verify(const exporting::SignalSource& clip, const VerifyJob& job);

/// What the clip can show: the report of a movie that carries it without any loss. Its findings are empty, and
/// every check is as expected or not visible.
[[nodiscard]] Report TellVisible(const exporting::SignalSource& clip, const std::string& clipName);

} // namespace tessel::verify
