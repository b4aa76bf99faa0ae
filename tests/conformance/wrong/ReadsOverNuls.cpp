#include "DocumentShim.h"

#include <algorithm>
#include <string>

std::string Spoil(std::string document)
{
    std::replace(document.begin(), document.end(), '\0', ' ');
    return document;
}
