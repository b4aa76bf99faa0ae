/// Clips of the built plug-in, opened as the program does.
#pragma once

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/Importer.h>
#include <tessel/document/OpenClip.h>

#include <gtest/gtest.h>
#include <support/ClipFolder.h>

#include <memory>
#include <string>

namespace tessel::document {

using testsupport::Document;

class DocumentTest : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        sImporter = importhost::Importer::Load(TEST_PLUGIN, importhost::TestingPlugins::Allowed);
    }
    static void TearDownTestSuite() { sImporter.reset(); }

    OpenedClip Open(const Document& document, const OpenOptions& options = {})
    {
        return OpenClip(sImporter, mFolder.Write("clip.tessel", document.Text()), options);
    }

    /// The line that refuses a document of this text, without the file's name; empty where it opens.
    std::string Refusal(const std::string& text)
    {
        return LineOf([&] { static_cast<void>(OpenClip(sImporter, mFolder.Write("clip.tessel", text))); });
    }

    /// The line with which frame 0 fails, without the file's name.
    std::string FrameFailure(const Document& document)
    {
        return LineOf([&] { static_cast<void>(Open(document).clip.RenderFrame(0)); });
    }

    template <class Action>
    std::string LineOf(const Action& action)
    {
        try {
            action();
            return {};
        } catch (const importhost::HostError& error) {
            const std::string line = error.what();
            const std::string start = (mFolder.Path() / "clip.tessel: ").string();
            EXPECT_TRUE(line.starts_with(start)) << line;
            EXPECT_EQ(line.find('\n'), std::string::npos) << line;
            return line.substr(start.size());
        }
    }

    static inline std::shared_ptr<importhost::Importer> sImporter;
    testsupport::ClipFolder mFolder;
};

inline std::string CodeText(const char (&text)[5])
{
    std::uint32_t code = 0;
    for (unsigned i = 0; i < 4; ++i) {
        code |= static_cast<std::uint32_t>(static_cast<unsigned char>(text[i])) << (8 * i);
    }
    return std::to_string(code);
}

} // namespace tessel::document
