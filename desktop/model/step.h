// SPDX-License-Identifier: MIT
// The pages of the assistant, in their order.
#pragma once

#include <QString>
#include <array>
#include <optional>

namespace desktop {

enum class AssistantStep
{
    Permission,
    Modem,
    Provider,
    Account,
    Connect,
};

inline constexpr std::array<AssistantStep, 5> allSteps = {AssistantStep::Permission,
    AssistantStep::Modem, AssistantStep::Provider, AssistantStep::Account, AssistantStep::Connect};

/// What comes after and before; nothing at the ends.
std::optional<AssistantStep> stepAfter(AssistantStep step);
std::optional<AssistantStep> stepBefore(AssistantStep step);

/// A word for command lines, the same in every language.
QString stepWord(AssistantStep step);
std::optional<AssistantStep> stepNamed(const QString &word);

/// Its name in the user's language.
QString stepTitle(AssistantStep step);

} // namespace desktop
