#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QThread>
#include <chrono>
#include <utility>

#include <gtest/gtest.h>

namespace vorn::test {

/// Runs the event loop until the condition holds; false when it does not in time.
template <typename Condition>
bool waitUntil(Condition condition, std::chrono::milliseconds patience = std::chrono::seconds(10)) {
    const QDeadlineTimer deadline(patience);
    while (!condition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        QThread::usleep(500);
    }
    return true;
}

/// The same, where all that follows needs it.
template <typename Condition>
void waitFor(Condition condition) {
    EXPECT_TRUE(waitUntil(std::move(condition))) << "waited in vain";
}

}  // namespace vorn::test
