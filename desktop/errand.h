// SPDX-License-Identifier: MIT
// Work that may take its time (files, programs, calls that wait), done beside the window.
#pragma once

#include <QObject>
#include <functional>
#include <memory>

namespace desktop {

/// One piece of work in a thread of the pool. Deletes itself when it is done.
class Errand : public QObject
{
    Q_OBJECT

public:
    /// Begins; done() is emitted in the thread of the caller.
    void start(const std::function<void()> &work);

signals:
    void done();
};

/// Does @p work in another thread, and then @p then with its result in the thread of @p receiver,
/// unless that has gone by then. The window never waits.
template <typename Result>
void inBackground(QObject *receiver, const std::function<Result()> &work,
    const std::function<void(const Result &)> &then)
{
    auto *errand = new Errand;
    const auto result = std::make_shared<Result>();
    QObject::connect(errand, &Errand::done, receiver, [result, then] { then(*result); });
    errand->start([result, work] { *result = work(); });
}

} // namespace desktop
