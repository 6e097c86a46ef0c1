// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/velo_cortivo_application.h"

#include "dialogs/appearance.h"

#include <QLocale>
#include <QToolTip>
#include <clocale>

VeloCortivoApplication::VeloCortivoApplication(int& argc, char** argv) : QApplication(argc, argv) {
    // Numbers on the screen and in files look the same whatever the system's language.
    std::setlocale(LC_NUMERIC, "C");
    QLocale::setDefault(QLocale::c());
    setApplicationName("Velo-Cortivo");
    setApplicationVersion(VELO_VERSION);
    setDesktopFileName("velo-cortivo");
    // Boxes may open and close before the main window is shown, and while it ends a run.
    setQuitOnLastWindowClosed(false);
    setStyle("Fusion");
    setPalette(darkPalette());
    QToolTip::setPalette(darkPalette());
}
