// SPDX-License-Identifier: MIT
#include <DiaryApp/QtExecutor.h>

#include <utility>

namespace diary {

QtExecutor::QtExecutor(int threads) {
    m_threads.setMaxThreadCount(threads);
}

QtExecutor::~QtExecutor() {
    m_threads.clear();
    m_threads.waitForDone();
}

void QtExecutor::runInBackground(Priority priority, std::function<void()> work) {
    // Work that someone waits for overtakes what nobody does.
    m_threads.start(std::move(work), priority == Priority::UserInitiated ? 1 : 0);
}

void QtExecutor::postToMain(std::function<void()> work) {
    QMetaObject::invokeMethod(this, std::move(work), Qt::QueuedConnection);
}

} // namespace diary
