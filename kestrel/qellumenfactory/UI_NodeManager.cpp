#include "UI_NodeManager.h"

namespace qellumenfactory {

UI_NodeManager& UI_NodeManager::Get()
{
    static UI_NodeManager instance;
    return instance;
}

} // namespace qellumenfactory
