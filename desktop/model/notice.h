// SPDX-License-Identifier: MIT
// What a person is told who does not look at the window: little, and nothing twice.
#pragma once

#include "desktop/model/connection_model.h"

#include <QHash>
#include <QString>
#include <optional>

namespace desktop {

enum class NoticeKind
{
    AttemptFailed,
    LinkLost, ///< without our request
    NewModem,
    LimitReached,
};

struct Notice
{
    NoticeKind kind;
    QString title;
    QString text;
};

/// Decides after each event. Times are milliseconds since 1970.
class NoticeDecision
{
public:
    static constexpr qint64 repeatMs = 10 * 60 * 1000; ///< the same reason is not told again before
    // So long nothing is told, unless somebody asks for a connection here meanwhile.
    static constexpr qint64 calmAtStartMs = 30 * 1000;
    static constexpr qint64 calmAtWakeUpMs = 60 * 1000;

    explicit NoticeDecision(qint64 startedAt)
        : m_calmUntil(startedAt + calmAtStartMs)
    {
    }

    /// What to tell of @p event, if anything. @p model has taken it in already; @p isSeen: the
    /// person has the window before the eyes.
    std::optional<Notice> take(
        const Event &event, const ConnectionModel &model, qint64 now, bool isSeen);

private:
    struct Taker;

    qint64 m_calmUntil;
    bool m_isAsleep = false;
    std::optional<int> m_state; ///< of the connection, before the event
    bool m_isEndWanted = false; ///< somebody here has ended connection or attempt
    std::optional<bool> m_isLimitReached;
    QHash<QString, qint64> m_told; ///< by reason
};

} // namespace desktop
