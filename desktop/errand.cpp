// SPDX-License-Identifier: MIT
#include "desktop/errand.h"

#include <QMetaObject>
#include <QThreadPool>

namespace desktop {

void Errand::start(const std::function<void()> &work)
{
    QThreadPool::globalInstance()->start([this, work] {
        work();
        QMetaObject::invokeMethod(
            this,
            [this] {
                emit done();
                deleteLater();
            },
            Qt::QueuedConnection);
    });
}

} // namespace desktop
