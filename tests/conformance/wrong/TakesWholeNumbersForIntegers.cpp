#include "DocumentShim.h"

#include <regex>
#include <string>

std::string Spoil(std::string document)
{
    static const std::regex kWholeNumber("([0-9])\\.0+([^0-9])");
    document = std::regex_replace(document, kWholeNumber, "$1$2");
    return document;
}
