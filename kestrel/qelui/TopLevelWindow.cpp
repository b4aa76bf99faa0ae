#include "TopLevelWindow.h"

namespace qelui {

TopLevelWindow::~TopLevelWindow() = default;

} // namespace qelui
