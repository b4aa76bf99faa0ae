/// `tessel schema`: the JSON Schema of documents.

#include "CommandLine.h"
#include "Commands.h"

#include <tessel/document/settings/Schema.h>

namespace tessel::cli {

void AddSchemaCommand(CommandLine& commandLine)
{
    const Command command = commandLine.AddCommand("schema", "Print the JSON Schema of documents");
    command.SetDescription("Editors check documents by it while they are written, and offer keys and values.");
    command.AddExample("tessel schema > tessel.schema.json", "Keep it for an editor");
    command.OnRun([] { WriteOut(document::DocumentSchema()); });
}

} // namespace tessel::cli
