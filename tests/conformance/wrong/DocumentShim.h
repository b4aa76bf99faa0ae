/// A plug-in that reads other documents than it is given: where a request reads a file, the right plug-in reads
/// what `Spoil` makes of it.
#pragma once

#include "Shim.h"

#include <string>

/// The wrong plug-in's. @return what is read instead of `document`
std::string Spoil(std::string document);
