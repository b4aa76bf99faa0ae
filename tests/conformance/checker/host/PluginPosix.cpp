#include "Plugin.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <gelf.h>
#include <libelf.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace conformance {

namespace {

void* Resolve(void* library, const char* name)
{
    void* symbol = dlsym(library, name);
    if (symbol == nullptr) {
        throw std::runtime_error(std::string("the library does not export ") + name);
    }
    return symbol;
}

} // namespace

Plugin::Plugin(std::filesystem::path file, std::uint64_t seed) : mFile(std::move(file)), mSeed(seed)
{
    void* library = dlopen(mFile.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        throw std::runtime_error(dlerror());
    }
    mEntry = reinterpret_cast<ksImportEntry>(Resolve(library, kImportEntryName));
    mDataEntry = reinterpret_cast<ksPluginDataEntry>(Resolve(library, kPluginDataEntryName));
}

std::optional<std::vector<std::uint8_t>> Plugin::Section(const std::string& name) const
{
    elf_version(EV_CURRENT);
    const int descriptor = open(mFile.c_str(), O_RDONLY | O_CLOEXEC);
    Elf* elf = elf_begin(descriptor, ELF_C_READ, nullptr);
    std::optional<std::vector<std::uint8_t>> bytes;
    std::size_t names = 0;
    if (elf != nullptr && elf_getshdrstrndx(elf, &names) == 0) {
        for (Elf_Scn* section = elf_nextscn(elf, nullptr); section != nullptr;
             section = elf_nextscn(elf, section)) {
            GElf_Shdr header;
            const bool isReadable = gelf_getshdr(section, &header) != nullptr;
            const char* const sectionName = isReadable ? elf_strptr(elf, names, header.sh_name) : nullptr;
            if (sectionName == nullptr || name != sectionName) {
                continue;
            }
            bytes.emplace();
            for (Elf_Data* data = elf_rawdata(section, nullptr); data != nullptr;
                 data = elf_rawdata(section, data)) {
                const auto* first = static_cast<const std::uint8_t*>(data->d_buf);
                bytes->insert(bytes->end(), first, first + data->d_size);
            }
        }
    }
    elf_end(elf);
    close(descriptor);
    return bytes;
}

} // namespace conformance
