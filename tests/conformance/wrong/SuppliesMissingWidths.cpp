#include "DocumentShim.h"

#include <string>

std::string Spoil(std::string document)
{
    if (!document.empty() && document.front() == '{' && document.find("\"mFrameWidth\"") == std::string::npos) {
        document.insert(1, "\"mFrameWidth\": 32,");
    }
    return document;
}
