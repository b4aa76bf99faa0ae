/// Records with every field drawn at random, for properties that must hold for all.
#pragma once

#include <ImporterTessel/settings/TesselInfo.h>

#include <random>

/// All fields from `random`, the texts that are not persisted included. Floats are any bit pattern but NaN:
/// denormals and infinities among them. Texts are well-formed UTF-16. The rate is not 0.
[[nodiscard]] ImporterTessel::TesselInfo RandomTesselInfo(std::mt19937_64& random);
