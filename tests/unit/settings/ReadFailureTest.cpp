// A file that opens but cannot be read. Its reading fails by a `pread` of this program in place of the
// system's.
#include <ImporterTessel/settings/DataFile.h>
#include <ImporterTessel/settings/SwatchFiles.h>
#include <kestrel/qelcore/logging/Log.h>

#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace {

bool gReadingFails = false;

/// Lets every read of the process fail while it lives.
class BrokenMedium {
public:
    BrokenMedium() { gReadingFails = true; }
    ~BrokenMedium() { gReadingFails = false; }
    BrokenMedium(const BrokenMedium&) = delete;
    BrokenMedium& operator=(const BrokenMedium&) = delete;
};

} // namespace

extern "C" ssize_t pread(int descriptor, void* buffer, std::size_t size, off_t position)
{
    if (gReadingFails) {
        errno = EIO;
        return -1;
    }
    return syscall(SYS_pread64, descriptor, buffer, size, position);
}

TEST(UnreadableFile, IsAnErrorOfTheFileAndNoMalformedDocument)
{
    const test::TemporaryFolder folder;
    test::WriteFile(folder / "clip.tessel", "{}");
    const std::u16string path = (folder / "clip.tessel").u16string();
    int logged = 0;
    const qelcore::logging::ScopedListener listener([&](const qelcore::logging::Message&) { ++logged; });

    ImporterTessel::TesselInfo info;
    info.mFrameWidth = 1;
    ImporterTessel::SwatchColors colors{{1.0F}, {}, {}};
    {
        const BrokenMedium medium;
        EXPECT_EQ(ImporterTessel::ReadTesselFile(path, info), ORB::kIoError);
        EXPECT_EQ(ImporterTessel::ReadSwatchColorsFile(path, colors), ORB::kIoError);
    }
    EXPECT_EQ(info.mFrameWidth, 1) << "the record stays";
    EXPECT_EQ(colors.colorSwatches.size(), 1U);
    EXPECT_EQ(logged, 0);
    EXPECT_EQ(ImporterTessel::ReadTesselFile(path, info), ORB::kDone);
    EXPECT_EQ(info.mFrameWidth, 720);
}
