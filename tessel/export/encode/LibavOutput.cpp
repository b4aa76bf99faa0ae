#include "LibavOutput.h"

extern "C" {
#include <libavutil/mem.h>
}

#include <cstdio>
#include <new>
#include <span>

namespace tessel::exporting {

LibavOutput::LibavOutput(OutputFile& file) : mFile(file)
{
    constexpr int kBufferSize = 1 << 18;
    auto* buffer = static_cast<unsigned char*>(av_malloc(kBufferSize));
    if (buffer == nullptr) {
        throw std::bad_alloc();
    }
    mContext.reset(
        avio_alloc_context(buffer, kBufferSize, 1, this, nullptr, WriteBytes, file.CanSeek() ? Seek : nullptr));
    if (!mContext) {
        av_free(buffer);
        throw std::bad_alloc();
    }
}

LibavOutput::~LibavOutput() = default;

void LibavOutput::Flush()
{
    avio_flush(mContext.get());
    RethrowFailure();
}

void LibavOutput::RethrowFailure() const
{
    if (mFailure) {
        std::rethrow_exception(mFailure);
    }
}

int LibavOutput::WriteBytes(void* self, std::uint8_t* bytes, int count)
{
    auto& output = *static_cast<LibavOutput*>(self);
    if (output.mFailure) {
        return AVERROR(EIO);
    }
    try {
        output.mFile.Write(std::as_bytes(std::span(bytes, static_cast<std::size_t>(count))));
        return count;
    } catch (...) {
        output.mFailure = std::current_exception();
        return AVERROR(EIO);
    }
}

std::int64_t LibavOutput::Seek(void* self, std::int64_t offset, int whence)
{
    auto& output = *static_cast<LibavOutput*>(self);
    if (output.mFailure) {
        return AVERROR(EIO);
    }
    try {
        switch (whence & ~AVSEEK_FORCE) {
        case AVSEEK_SIZE:
            return output.mFile.Size();
        case SEEK_CUR:
            offset += output.mFile.Position();
            break;
        case SEEK_END:
            offset += output.mFile.Size();
            break;
        default:
            break;
        }
        output.mFile.SeekTo(offset);
        return offset;
    } catch (...) {
        output.mFailure = std::current_exception();
        return AVERROR(EIO);
    }
}

} // namespace tessel::exporting
