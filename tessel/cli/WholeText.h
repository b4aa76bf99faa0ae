/// Texts that commands write into files of their own.
#pragma once

#include <tessel/export/files/OutputFile.h>

#include <string_view>

namespace tessel::cli {

/// Fills the file and gives it its name. @throws exporting::ExportError  naming the file; an earlier one of
/// that name is then as it was
void WriteAndCommit(exporting::OutputFile& file, std::string_view text);

} // namespace tessel::cli
