/// In programs without Qt: the player's command, handed to the program that is linked with it.

#include "ViewCommand.h"

#include <tessel/cli/ElsewherePosix.h>

namespace tessel::cli {

void RunView(const ViewOptions& /*options*/, Context& context)
{
    RunElsewhere(context, "tessel-view", "the player", "install the package tessel-qt");
}

} // namespace tessel::cli
