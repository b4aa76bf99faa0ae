/// An output file as FFmpeg's muxers write to one.
#pragma once

#include "LibavHandles.h"

#include <tessel/export/files/OutputFile.h>

#include <exception>

namespace tessel::exporting {

/// Bridges a muxer's writes and seeks to an `OutputFile`. Borrows the file. A failed write comes back from the
/// muxer as some error; `RethrowFailure` then tells the real one.
class LibavOutput {
public:
    explicit LibavOutput(OutputFile& file);
    LibavOutput(const LibavOutput&) = delete;
    LibavOutput& operator=(const LibavOutput&) = delete;
    ~LibavOutput();

    [[nodiscard]] AVIOContext* Context() const noexcept { return mContext.get(); }

    /// Writes out what is buffered. @throws ExportError
    void Flush();

    /// Throws what a write or seek threw, where one did.
    void RethrowFailure() const;

private:
    static int WriteBytes(void* self, std::uint8_t* bytes, int count);
    static std::int64_t Seek(void* self, std::int64_t offset, int whence);

    OutputFile& mFile;
    std::exception_ptr mFailure;
    libav::IoContext mContext;
};

} // namespace tessel::exporting
