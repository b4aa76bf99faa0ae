#include "Paths.h"

#include <kestrel/importhost/PathText.h>

#include <QFile>
#include <cstddef>
#include <string>

namespace tessel::view {

QString TextOfPath(const std::filesystem::path& path)
{
    return QString::fromStdString(importhost::DisplayName(path));
}

QString NameOf(const std::filesystem::path& path)
{
    return QFile::decodeName(path.c_str());
}

std::filesystem::path PathOf(const QString& name)
{
    const QByteArray bytes = QFile::encodeName(name);
    return bytes.toStdString();
}

} // namespace tessel::view
