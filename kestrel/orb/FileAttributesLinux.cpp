#include "FileAttributesPosix.h"

#include <grp.h>
#include <pwd.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <optional>
#include <vector>

namespace ORB {
namespace {

constexpr char kAccessList[] = "system.posix_acl_access";

void AddTo(std::string& list, const std::string& item)
{
    list += (list.empty() ? "" : ", ") + item;
}

std::string NameOfUser(uid_t user)
{
    std::array<char, 4096> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    const bool isKnown =
        getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr;
    return isKnown ? entry.pw_name : std::to_string(user);
}

std::string NameOfGroup(gid_t group)
{
    std::array<char, 4096> buffer{};
    struct group entry {};
    struct group* found = nullptr;
    const bool isKnown =
        getgrgid_r(group, &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr;
    return isKnown ? entry.gr_name : std::to_string(group);
}

/// Names of the extended attributes; none where the file system has none.
std::vector<std::string> AttributeNames(const std::string& path)
{
    const ssize_t size = listxattr(path.c_str(), nullptr, 0);
    std::string list(size > 0 ? static_cast<std::size_t>(size) : 0, '\0');
    const ssize_t got = list.empty() ? 0 : listxattr(path.c_str(), list.data(), list.size());
    list.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    std::vector<std::string> names;
    for (std::size_t at = 0; at < list.size(); at += names.back().size() + 1) {
        names.emplace_back(list.c_str() + at);
    }
    return names;
}

/// The value of an extended attribute; empty optional if the file lacks it. `get` calls `getxattr` or
/// `fgetxattr` for that file and name.
template <class Get>
std::optional<std::string> Value(Get get)
{
    const ssize_t size = get(nullptr, 0);
    if (size < 0) {
        return std::nullopt;
    }
    std::string value(static_cast<std::size_t>(size), '\0');
    const ssize_t got = get(value.data(), value.size());
    if (got < 0) {
        return std::nullopt;
    }
    value.resize(static_cast<std::size_t>(got));
    return value;
}

void CopyExtendedAttributes(const std::string& oldPath, int descriptor, std::string& notKept)
{
    bool hasAccessList = false;
    for (const std::string& name : AttributeNames(oldPath)) {
        hasAccessList = hasAccessList || name == kAccessList;
        const auto wanted = Value([&](char* value, std::size_t size) {
            return getxattr(oldPath.c_str(), name.c_str(), value, size);
        });
        const auto present = Value(
            [&](char* value, std::size_t size) { return fgetxattr(descriptor, name.c_str(), value, size); });
        if (wanted == present && wanted) {
            continue; // such as a security label, which the folder sets and a user may not
        }
        if (!wanted || fsetxattr(descriptor, name.c_str(), wanted->data(), wanted->size(), 0) != 0) {
            AddTo(notKept, "attribute " + name);
        }
    }
    if (!hasAccessList) {
        (void)fremovexattr(descriptor, kAccessList); // from the folder's default; the old file had none
    }
}

} // namespace

int CopyAttributes(const struct stat& old, const std::string& oldPath, int descriptor, std::string& notKept)
{
    mode_t mode = old.st_mode & 07777U;
    struct stat present {};
    if (fstat(descriptor, &present) != 0) {
        return errno;
    }
    // Owner and group separately: a user may set the group to one of their own, but not the owner. The
    // set-user-ID bit is dropped with the owner, because it would now stand for another user.
    if (present.st_uid != old.st_uid && fchown(descriptor, old.st_uid, static_cast<gid_t>(-1)) != 0) {
        AddTo(notKept, "owner " + NameOfUser(old.st_uid));
        mode &= ~static_cast<mode_t>(S_ISUID);
    }
    if (present.st_gid != old.st_gid && fchown(descriptor, static_cast<uid_t>(-1), old.st_gid) != 0) {
        AddTo(notKept, "group " + NameOfGroup(old.st_gid));
        mode &= ~static_cast<mode_t>(S_ISGID);
    }
    CopyExtendedAttributes(oldPath, descriptor, notKept);
    // Last, because changing the owner or the access list changes the permissions.
    return fchmod(descriptor, mode) == 0 ? 0 : errno;
}

} // namespace ORB
