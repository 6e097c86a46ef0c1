// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/main_window_pointer.h"

namespace {
VeloCortivo* currentWindow = nullptr;
}

VeloCortivo* mainWindow() {
    return currentWindow;
}

void setMainWindow(VeloCortivo* window) {
    currentWindow = window;
}
