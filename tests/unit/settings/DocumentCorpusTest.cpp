#include "DocumentCases.h"

#include <ImporterTessel/settings/DataFile.h>
#include <kestrel/qelcore/logging/Log.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

std::vector<std::filesystem::path> Manifests()
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(TESSEL_DOCUMENTS)) {
        files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// The document as a failure prints it: the generated ones are long.
std::string Excerpt(const std::string& document)
{
    constexpr std::size_t kLongest = 2000;
    return document.size() <= kLongest ? document : document.substr(0, kLongest) + " ...";
}

class DocumentCorpus : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(DocumentCorpus, GivesTheRecordAndTheLogLineOfItsManifest)
{
    for (const documents::Case& entry : documents::ReadManifest(GetParam())) {
        SCOPED_TRACE(GetParam().string() + ":" + std::to_string(entry.line) + ": " + entry.claim + "\n" +
                     Excerpt(entry.document));
        std::vector<qelcore::logging::Message> messages;
        const qelcore::logging::ScopedListener listener(
            [&messages](const qelcore::logging::Message& message) { messages.push_back(message); });

        const ImporterTessel::TesselInfo record = ImporterTessel::TesselFromUTF8String(entry.document);

        EXPECT_TRUE(record == entry.record) << ImporterTessel::TesselToUTF8String(record) << "\nand should be\n"
                                            << ImporterTessel::TesselToUTF8String(entry.record);
        ASSERT_EQ(messages.size(), entry.isLogged ? 1U : 0U) << (messages.empty() ? "" : messages[0].text);
        if (entry.isLogged) {
            EXPECT_EQ(messages[0].context, "ImporterTessel::`anonymous-namespace'::TesselFromUTF8String");
            EXPECT_NE(messages[0].text.find(entry.logPart), std::string::npos)
                << messages[0].text << "\nshould hold\n"
                << entry.logPart;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Manifest, DocumentCorpus, testing::ValuesIn(Manifests()), [](const auto& test) {
    std::string name = test.param.stem().string();
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

TEST(DocumentCorpus, HasTwoHundredDocumentsAtLeast)
{
    std::size_t count = 0;
    for (const std::filesystem::path& file : Manifests()) {
        count += documents::ReadManifest(file).size();
    }
    EXPECT_GE(count, 200U);
}

} // namespace
