#include "DocumentShim.h"

#include <string>

std::string Spoil(std::string document)
{
    int depth = 0;
    for (std::size_t at = 0; at < document.size() && document.front() == '{'; ++at) {
        depth += document[at] == '{' ? 1 : 0;
        depth -= document[at] == '}' ? 1 : 0;
        if (depth == 0) {
            return document.substr(0, at + 1);
        }
    }
    return document;
}
