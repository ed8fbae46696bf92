// SPDX-License-Identifier: MIT
// Whether the name servers of this computer answer.
#pragma once

#include <QStringList>
#include <optional>

/// Asks the servers, all at once, for the servers of the root and waits for the first answer,
/// whatever it says; @p timeoutMs at most. Nothing when none is named. What is no address, or no
/// route leads to, does not answer.
std::optional<bool> doesNameServerAnswer(const QStringList &servers, int timeoutMs = 2000);
