/// Names of files, between Qt's texts and paths.
#pragma once

#include <QString>
#include <filesystem>

namespace tessel::view {

/// For people: control characters are made visible.
[[nodiscard]] QString TextOfPath(const std::filesystem::path& path);

/// The name as Qt takes it to open the file.
[[nodiscard]] QString NameOf(const std::filesystem::path& path);

/// The path that a name of Qt's stands for.
[[nodiscard]] std::filesystem::path PathOf(const QString& name);

} // namespace tessel::view
