// SPDX-License-Identifier: MIT
// Findings on their way from the program that may look everywhere to the window.
#pragma once

#include "client/doctor_checks.h"

#include <QByteArray>
#include <optional>

namespace desktop {

/// The findings as one line of JSON.
QByteArray findingsText(const QList<Finding> &findings);

/// What findingsText() has made; nothing for any other text.
std::optional<QList<Finding>> findingsFrom(const QByteArray &text);

} // namespace desktop
