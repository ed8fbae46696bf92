// SPDX-License-Identifier: MIT
// The program's own pictures. They come from its resources, so that no theme and no plugin is
// needed.
#pragma once

#include "desktop/model/headline.h"

#include <QIcon>

namespace desktop {

/// Told by its shape, too; readable on light and on dark panels.
QIcon standingIcon(Standing standing);

QIcon programIcon();

} // namespace desktop
