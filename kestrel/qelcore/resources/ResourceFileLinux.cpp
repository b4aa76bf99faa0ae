#include "ResourceFile.h"

#include <kestrel/qelcore/files/DescriptorPosix.h>
#include <kestrel/qelcore/text/PathText.h>

#include <fcntl.h>
#include <gelf.h>
#include <libelf.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <system_error>

/// The header of the library that this code stands in; the linker makes it. It says what a library of this
/// platform looks like.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the linker's name.
extern "C" [[gnu::visibility("hidden")]] const ElfW(Ehdr) __ehdr_start;

namespace qelcore::resources {
namespace {

using files::Descriptor;
using Bytes = std::vector<std::uint8_t>;

struct ElfCloser {
    void operator()(Elf* elf) const noexcept { elf_end(elf); }
};
using ElfPtr = std::unique_ptr<Elf, ElfCloser>;

[[noreturn]] void Fail(const std::filesystem::path& file, const std::string& reason)
{
    throw resource_exception(text::UTF8Text(file) + ": " + reason);
}

/// Whether programs and libraries of this platform have that header.
bool IsOfThisPlatform(Elf* elf)
{
    GElf_Ehdr header{};
    return elf_kind(elf) == ELF_K_ELF && gelf_getehdr(elf, &header) != nullptr &&
           (header.e_type == ET_DYN || header.e_type == ET_EXEC) &&
           header.e_ident[EI_CLASS] == __ehdr_start.e_ident[EI_CLASS] &&
           header.e_ident[EI_DATA] == __ehdr_start.e_ident[EI_DATA] &&
           header.e_machine == __ehdr_start.e_machine;
}

/// The section of that name, or null.
Elf_Scn* FindSection(Elf* elf, std::string_view name)
{
    std::size_t namesSection = 0;
    if (elf_getshdrstrndx(elf, &namesSection) != 0) {
        return nullptr;
    }
    for (Elf_Scn* section = elf_nextscn(elf, nullptr); section != nullptr;
         section = elf_nextscn(elf, section)) {
        GElf_Shdr header{};
        if (gelf_getshdr(section, &header) == nullptr || header.sh_type == SHT_NOBITS) {
            continue;
        }
        const char* const sectionName = elf_strptr(elf, namesSection, header.sh_name);
        if (sectionName != nullptr && sectionName == name) {
            return section;
        }
    }
    return nullptr;
}

} // namespace

resource_exception::resource_exception(const std::string& message)
    : Exception(message), std::runtime_error(message)
{
}

resource_exception::~resource_exception() = default;

std::optional<Bytes> ReadResource(const std::filesystem::path& file, std::string_view name)
{
    // Without blocking, because the name may be a pipe's.
    const Descriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (descriptor.Get() < 0) {
        Fail(file, std::generic_category().message(errno));
    }
    struct stat status {};
    if (fstat(descriptor.Get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        Fail(file, "is not a file");
    }
    elf_version(EV_CURRENT);
    const ElfPtr elf(elf_begin(descriptor.Get(), ELF_C_READ, nullptr));
    if (elf == nullptr || !IsOfThisPlatform(elf.get())) {
        Fail(file, "is not a library of this platform");
    }
    Elf_Scn* const section = FindSection(elf.get(), name);
    if (section == nullptr) {
        return std::nullopt;
    }
    Bytes bytes;
    Elf_Data* data = nullptr;
    while ((data = elf_rawdata(section, data)) != nullptr) {
        const auto* const first = static_cast<const std::uint8_t*>(data->d_buf);
        if (first != nullptr) {
            bytes.insert(bytes.end(), first, first + data->d_size);
        }
    }
    GElf_Shdr header{};
    if (gelf_getshdr(section, &header) == nullptr || bytes.size() != header.sh_size) {
        Fail(file, "is cut short: its section " + std::string(name) + " cannot be read");
    }
    return bytes;
}

} // namespace qelcore::resources
