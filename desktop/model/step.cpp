// SPDX-License-Identifier: MIT
#include "desktop/model/step.h"

#include "client/say.h"

#include <algorithm>

namespace desktop {

std::optional<AssistantStep> stepAfter(AssistantStep step)
{
    const auto *place = std::find(allSteps.begin(), allSteps.end(), step);
    return place + 1 < allSteps.end() ? std::optional<AssistantStep>(place[1]) : std::nullopt;
}

std::optional<AssistantStep> stepBefore(AssistantStep step)
{
    const auto *place = std::find(allSteps.begin(), allSteps.end(), step);
    return place > allSteps.begin() ? std::optional<AssistantStep>(place[-1]) : std::nullopt;
}

QString stepWord(AssistantStep step)
{
    switch (step) {
    case AssistantStep::Permission:
        return QStringLiteral("permission");
    case AssistantStep::Modem:
        return QStringLiteral("modem");
    case AssistantStep::Provider:
        return QStringLiteral("provider");
    case AssistantStep::Account:
        return QStringLiteral("account");
    case AssistantStep::Connect:
        break;
    }
    return QStringLiteral("connect");
}

std::optional<AssistantStep> stepNamed(const QString &word)
{
    for (const AssistantStep step : allSteps) {
        if (stepWord(step) == word) {
            return step;
        }
    }
    return std::nullopt;
}

QString stepTitle(AssistantStep step)
{
    switch (step) {
    case AssistantStep::Permission:
        return Say::tr("May I?");
    case AssistantStep::Modem:
        return Say::tr("Modem");
    case AssistantStep::Provider:
        return Say::tr("Provider");
    case AssistantStep::Account:
        return Say::tr("Account");
    case AssistantStep::Connect:
        break;
    }
    return Say::tr("Connect");
}

} // namespace desktop
