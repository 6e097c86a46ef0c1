// Every test program runs with an application object, on the offscreen platform.
// SPDX-License-Identifier: GPL-3.0-or-later
#include <QApplication>
#include <clocale>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
