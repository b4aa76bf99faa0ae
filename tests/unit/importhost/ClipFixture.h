/// Clips of the built plug-in, opened by the host alone.
#pragma once

#include <kestrel/importhost/Clip.h>
#include <kestrel/importhost/HostError.h>

#include <gtest/gtest.h>
#include <support/ClipFolder.h>

#include <filesystem>
#include <memory>
#include <string>

namespace importhosttests {

using importhost::Clip;
using importhost::HostError;
using importhost::Importer;
using testsupport::ClipFolder;
using testsupport::Document;

/// One of the tests' own importers.
inline std::filesystem::path TestImporter(const std::string& name)
{
    return std::filesystem::path(TEST_IMPORTERS) / name / (name + ".so");
}

class ClipTest : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        sImporter = Importer::Load(TEST_PLUGIN, importhost::TestingPlugins::Allowed);
    }
    static void TearDownTestSuite() { sImporter.reset(); }

    Clip Open(const Document& document, importhost::FrameFilling filling = importhost::FrameFilling::Zero)
    {
        return Clip::Open(sImporter, mFolder.Write("clip.tessel", document.Text()), filling);
    }

    /// The line that refuses a file; empty where it opens. The folder's name is cut off.
    std::string Refusal(const std::filesystem::path& file)
    {
        return LineOf([&] { static_cast<void>(Clip::Open(sImporter, file)); });
    }

    /// The line with which frame 0 fails.
    std::string FrameFailure(const Clip& clip)
    {
        return LineOf([&] { static_cast<void>(clip.RenderFrame(0)); });
    }

    template <class Action>
    std::string LineOf(const Action& action)
    {
        try {
            action();
            return {};
        } catch (const HostError& error) {
            const std::string line = error.what();
            const std::string folder = mFolder.Path().string() + "/";
            EXPECT_EQ(line.find('\n'), std::string::npos) << line;
            return line.starts_with(folder) ? line.substr(folder.size()) : line;
        }
    }

    static inline std::shared_ptr<Importer> sImporter;
    ClipFolder mFolder;
};

} // namespace importhosttests
