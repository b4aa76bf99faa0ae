#include "ResourceFile.h"

#include <kestrel/importabi/Entries.h>

#include <link.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace qelcore::resources {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// What a note's description begins with; the resource's name follows.
struct Description {
    std::int32_t distance; ///< of the resource from the description
    std::uint32_t size;    ///< of the resource, in bytes
};

/// The resource `name`, if the note is of the host's resources and leads to it. `owner` and `description` are
/// the parts of the note behind its header.
std::optional<Bytes> ResourceOfNote(const ElfW(Nhdr) & header, const std::uint8_t* owner,
                                    const std::uint8_t* description, std::string_view name)
{
    Description found{};
    if (header.n_type != kResourceNoteType || header.n_namesz != sizeof kResourceNoteOwner ||
        std::memcmp(owner, kResourceNoteOwner, sizeof kResourceNoteOwner) != 0 ||
        header.n_descsz != sizeof found + name.size() + 1 ||
        std::memcmp(description + sizeof found, name.data(), name.size()) != 0) {
        return std::nullopt;
    }
    std::memcpy(&found, description, sizeof found);
    const std::uint8_t* const first = description + found.distance;
    return Bytes(first, first + found.size);
}

/// Looks through a segment of notes.
std::optional<Bytes> ResourceOfNotes(const std::uint8_t* notes, std::size_t size, std::size_t alignment,
                                     std::string_view name)
{
    const auto aligned = [alignment](std::size_t length) {
        return (length + alignment - 1) / alignment * alignment;
    };
    ElfW(Nhdr) header{};
    for (std::size_t place = 0; place + sizeof header <= size;) {
        std::memcpy(&header, notes + place, sizeof header);
        const std::size_t owner = place + sizeof header;
        const std::size_t description = place + aligned(sizeof header + header.n_namesz);
        if (description > size || header.n_descsz > size - description) {
            return std::nullopt; // no notes that one can walk
        }
        if (auto bytes = ResourceOfNote(header, notes + owner, notes + description, name)) {
            return bytes;
        }
        place = description + aligned(header.n_descsz);
    }
    return std::nullopt;
}

struct Search {
    std::string_view name;
    std::optional<Bytes> found;
};

/// Looks through one library's notes. The loader keeps the library loaded meanwhile.
std::optional<Bytes> ResourceOfLibrary(const dl_phdr_info& library, std::string_view name)
{
    for (std::size_t i = 0; i < library.dlpi_phnum; ++i) {
        const ElfW(Phdr)& segment = library.dlpi_phdr[i];
        if (segment.p_type != PT_NOTE) {
            continue;
        }
        const auto* const notes = reinterpret_cast<const std::uint8_t*>(library.dlpi_addr + segment.p_vaddr);
        // Notes are aligned to 4 bytes, in segments that say 8 to 8.
        if (auto bytes = ResourceOfNotes(notes, segment.p_memsz, segment.p_align == 8 ? 8 : 4, name)) {
            return bytes;
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<Bytes> FindLoadedResource(std::string_view name)
{
    enum Answer : int { kGoOn = 0, kFound = 1, kNoMemory = 2 };
    Search search{name, std::nullopt};
    const auto look = [](dl_phdr_info* library, std::size_t /*size*/, void* context) noexcept -> int {
        auto& wanted = *static_cast<Search*>(context);
        try {
            wanted.found = ResourceOfLibrary(*library, wanted.name);
            return wanted.found ? kFound : kGoOn;
        } catch (const std::bad_alloc&) {
            return kNoMemory; // An exception must not cross the loader's frames.
        }
    };
    if (dl_iterate_phdr(look, &search) == kNoMemory) {
        throw std::bad_alloc();
    }
    return std::move(search.found);
}

} // namespace qelcore::resources
