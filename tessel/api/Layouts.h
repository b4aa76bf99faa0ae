/// The layouts of the C interface.
#pragma once

#include "tessel.h"

#include <tessel/export/convert/Picture.h>

namespace tessel::api {

/// @throws CallError  TESSEL_BAD_ARGUMENT for `TESSEL_LAYOUT_OWN`, which is no layout of pictures, and for a
///                    number that is no value of `tessel_layout`
[[nodiscard]] exporting::PictureLayout PictureLayoutOf(tessel_layout layout);

} // namespace tessel::api
