#include <tessel/export/ExportError.h>
#include <tessel/export/files/WholeFile.h>

#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <span>
#include <string>
#include <vector>

namespace tessel::exporting {
namespace {

/// What the refusal to read a file says; nothing where it was read.
std::string Refusal(const std::filesystem::path& file)
{
    try {
        static_cast<void>(ReadFileBytes(file));
        return {};
    } catch (const ExportError& error) {
        return error.what();
    }
}

TEST(WholeFile, HasEveryByteWhateverItsLength)
{
    const test::TemporaryFolder folder;
    for (const std::size_t length : {0U, 1U, 65535U, 65536U, 200'000U}) {
        std::string text(length, '\0');
        for (std::size_t k = 0; k < length; ++k) {
            text[k] = static_cast<char>(k * 7);
        }
        std::ofstream(folder.Path() / "x", std::ios::binary) << text;
        const std::vector<std::byte> bytes = ReadFileBytes(folder.Path() / "x");
        EXPECT_TRUE(std::ranges::equal(bytes, std::as_bytes(std::span(text)))) << length;
    }
}

TEST(WholeFile, RefusalsNameTheFileAndTheReason)
{
    EXPECT_EQ(Refusal("/no/such/file"), "cannot read '/no/such/file': no such file or directory");
    EXPECT_EQ(Refusal("/"), "cannot read '/': is a directory");
    // Page 0 of a process is never mapped, so that reading fails where opening does not.
    EXPECT_EQ(Refusal("/proc/self/mem"), "cannot read '/proc/self/mem': input/output error");
}

} // namespace
} // namespace tessel::exporting
