// SPDX-License-Identifier: MIT
// A picture of how it stands: its shape tells it as well as its colour.
#pragma once

#include "desktop/model/headline.h"

#include <QPalette>
#include <QPixmap>

namespace desktop {

/// @p size is in the units of the screen, which has @p ratio pixels for each.
QPixmap standingPicture(Standing standing, const QPalette &palette, int size, double ratio);

/// The same in a word.
QString standingWord(Standing standing);

} // namespace desktop
