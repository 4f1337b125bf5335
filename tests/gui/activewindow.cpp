#include "tests/gui/activewindow.h"

#include <QApplication>
#include <QtTest>

bool becomesActive(const QWidget& window, const std::function<void()>& request)
{
    constexpr int kMaxRequests = 20;
    constexpr int kWaitMilliseconds = 1000;
    const auto isActive = [&] { return QApplication::activeWindow() == &window; };
    for (int i = 0; i < kMaxRequests; ++i) {
        request();
        if (QTest::qWaitFor(isActive, kWaitMilliseconds))
            return true;
    }
    return false;
}

bool becomesActive(QWidget& window)
{
    return becomesActive(window, [&window] { window.activateWindow(); });
}
