// SPDX-License-Identifier: MIT
// The elapsed time of a process as ps prints it.
#pragma once

#include <QString>
#include <QTime>
#include <optional>

/// The hours, minutes and seconds in @p text ("05:07", "01:02:03", "1-02:03:04"; days are dropped).
/// Empty when its first 50 characters hold no time.
std::optional<QTime> parseElapsedTime(const QString &text);
