// Every test program runs with an application object, on the offscreen platform.
// SPDX-License-Identifier: GPL-3.0-or-later
#include <QApplication>
#include <clocale>
#include <gtest/gtest.h>

/// A training that is stopped leaves libsvm through an exception, and libsvm then loses the arrays
/// of its solver, some kilobytes. They can't be told from what it allocates otherwise: its frames
/// lack names.
extern "C" const char* __lsan_default_suppressions(); // NOLINT(bugprone-reserved-identifier)
const char* __lsan_default_suppressions() {           // NOLINT(bugprone-reserved-identifier)
    return "leak:libsvm.so";
}

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
