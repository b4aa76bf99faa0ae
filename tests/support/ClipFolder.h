/// A folder of clip documents that lives as long as a test.
#pragma once

#include <support/TemporaryFolder.h>

#include <map>
#include <string>

namespace testsupport {

/// Keys of a document with their JSON texts, beginning with those of a small complete clip.
class Document {
public:
    Document& Set(const std::string& key, const std::string& json)
    {
        mKeys[key] = json;
        return *this;
    }
    Document& Remove(const std::string& key)
    {
        mKeys.erase(key);
        return *this;
    }
    [[nodiscard]] std::string Text() const
    {
        std::string text;
        for (const auto& [key, json] : mKeys) {
            text += (text.empty() ? "{\"" : ",\n\"") + key + "\": " + json;
        }
        return text + "}";
    }

private:
    static constexpr const char* kRed = R"({"mAlphaPart": 1, "mRedPart": 1, "mGreenPart": 0, "mBluePart": 0})";
    static constexpr const char* kGreen =
        R"({"mAlphaPart": 1, "mRedPart": 0, "mGreenPart": 1, "mBluePart": 0})";
    std::map<std::string, std::string> mKeys = {
        {"mPixelFormat", "1634887522"}, // "bgra"
        {"mFrameWidth", "64"},
        {"mFrameHeight", "32"},
        {"mFramePAR", R"({"numerator": 10, "denominator": 11})"},
        {"mFieldType", "0"},
        {"mRenderFormat", "0"},
        {"mUpperFieldColor", kRed},
        {"mLowerFieldColor", kGreen},
        {"mTopGradiantColorStart", kRed},
        {"mTopGradiantColorEnd", kRed},
        {"mBottomGradiantColorStart", kGreen},
        {"mBottomGradiantColorEnd", kGreen},
        {"mVideoDuration", R"({"ticks": 508032000000})"},        // 2 s
        {"mVideoFrameRate", R"({"ticksperframe": 8475667200})"}, // 30000/1001
        {"mVersion", "1"},
        {"mDrawFrameFieldNumber", "false"},
    };
};

using ClipFolder = test::TemporaryFolder;

} // namespace testsupport
