/// A folder that is made for the files that go into it.
#pragma once

#include <filesystem>
#include <vector>

namespace tessel::exporting {

/// Makes a folder where there is none. The destructor removes again what it made, as far as it is still empty:
/// a rendering that fails leaves no folder, one that succeeds leaves its files in it.
class OutputFolder {
public:
    enum class Missing { Last, All }; ///< how many folders of the path may be missing

    /// @param path  empty: the current folder, which is there
    /// @throws ExportError  naming the folder, where it cannot be made
    OutputFolder(const std::filesystem::path& path, Missing missing);
    ~OutputFolder();
    OutputFolder(const OutputFolder&) = delete;
    OutputFolder& operator=(const OutputFolder&) = delete;

private:
    void Remove() noexcept;

    std::vector<std::filesystem::path> mMade; ///< outermost first
};

} // namespace tessel::exporting
