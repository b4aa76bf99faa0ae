#include "DocumentShim.h"

#include <string>

std::string Spoil(std::string document)
{
    const std::string key = "SerializerWrappedObject";
    if (const std::size_t at = document.find(key); at != std::string::npos) {
        document.replace(at, key.size(), "somethingElse");
    }
    return document;
}
