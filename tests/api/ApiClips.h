/// Clips, movies and documents of the C interface for its tests.
#pragma once

#include <tessel/api/tessel.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace apitests {

struct Closer {
    void operator()(tessel_clip* clip) const { tessel_close(clip); }
    void operator()(tessel_movie* movie) const { tessel_movie_close(movie); }
    void operator()(tessel_document* document) const { tessel_document_close(document); }
};
using Clip = std::unique_ptr<tessel_clip, Closer>;
using Movie = std::unique_ptr<tessel_movie, Closer>;
using Document = std::unique_ptr<tessel_document, Closer>;
using Bytes = std::vector<std::byte>;

/// The text of a new document. @param settings  as `tessel_document_new` takes them
inline std::string TextWith(const std::vector<std::string>& settings)
{
    std::vector<const char*> pointers;
    for (const std::string& setting : settings) {
        pointers.push_back(setting.c_str());
    }
    tessel_document* made = nullptr;
    EXPECT_EQ(tessel_document_new(nullptr, pointers.data(), pointers.size(), &made), TESSEL_OK)
        << tessel_error_text();
    const Document document(made);
    return tessel_document_text(made, nullptr);
}

/// The text of a small clip of 20 frames with sound, `rows` high.
inline std::string TextOf(int rows)
{
    return TextWith({"size=64x" + std::to_string(rows), "rate=29.97", "duration=20f", "pixel-format=v210"});
}

inline Clip OpenFile(const std::filesystem::path& file)
{
    tessel_clip* clip = nullptr;
    EXPECT_EQ(tessel_open_file(file.c_str(), nullptr, &clip), TESSEL_OK) << tessel_error_text();
    return Clip(clip);
}

inline Clip OpenText(const std::string& text)
{
    tessel_clip* clip = nullptr;
    EXPECT_EQ(tessel_open_text(text.data(), text.size(), nullptr, &clip), TESSEL_OK) << tessel_error_text();
    return Clip(clip);
}

inline Movie OpenMovie(tessel_clip* clip)
{
    tessel_movie* movie = nullptr;
    EXPECT_EQ(tessel_movie_open(clip, nullptr, &movie), TESSEL_OK) << tessel_error_text();
    return Movie(movie);
}

/// The planes of a frame.
inline std::vector<Bytes> FrameOf(tessel_clip* clip, std::int64_t number,
                                  tessel_layout layout = TESSEL_LAYOUT_YUV422P10)
{
    tessel_picture picture{};
    picture.size = sizeof picture;
    EXPECT_EQ(tessel_describe_picture(clip, layout, &picture), TESSEL_OK) << tessel_error_text();
    std::vector<Bytes> planes;
    std::vector<void*> pointers;
    std::vector<std::ptrdiff_t> strides;
    for (int plane = 0; plane < picture.plane_count; ++plane) {
        planes.emplace_back(picture.row_bytes[plane] * static_cast<std::size_t>(picture.plane_rows[plane]));
        strides.push_back(static_cast<std::ptrdiff_t>(picture.row_bytes[plane]));
    }
    for (Bytes& plane : planes) {
        pointers.push_back(plane.data());
    }
    EXPECT_EQ(tessel_frame(clip, number, layout, pointers.data(), strides.data()), TESSEL_OK)
        << tessel_error_text();
    return planes;
}

inline std::vector<float> SamplesOf(tessel_clip* clip, std::int64_t start, std::size_t count)
{
    std::vector<float> left(count);
    std::vector<float> right(count);
    const std::vector<float*> channels{left.data(), right.data()};
    EXPECT_EQ(tessel_samples(clip, start, count, channels.data(), channels.size()), TESSEL_OK)
        << tessel_error_text();
    return left;
}

inline Bytes Read(tessel_movie* movie, std::int64_t offset, std::size_t count)
{
    Bytes bytes(count);
    std::size_t got = 0;
    EXPECT_EQ(tessel_movie_read(movie, offset, bytes.data(), count, &got), TESSEL_OK) << tessel_error_text();
    bytes.resize(got);
    return bytes;
}

inline Bytes Whole(tessel_movie* movie)
{
    return Read(movie, 0, static_cast<std::size_t>(tessel_movie_size(movie)));
}

} // namespace apitests
