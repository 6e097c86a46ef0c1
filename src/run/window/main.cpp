// Velo-Cortivo: real-time analysis of functional magnetic resonance imaging.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/event_pump.h"
#include "base/standard_folders.h"
#include "run/window/message_boxes.h"
#include "run/window/program_dialogs.h"
#include "run/window/termination_signals.h"
#include "run/window/velo_cortivo.h"
#include "run/window/velo_cortivo_application.h"

#include <QSplashScreen>
#include <memory>

int main(int argc, char** argv) {
    ignoreSignalsOfWrites();
    VeloCortivoApplication application(argc, argv);
    QCoreApplication::addLibraryPath(QCoreApplication::applicationDirPath() + "/plugins");
    MessageBoxes boxes;
    installMessageHandler(&boxes);
    const StandardFolders folders = standardFolders();
    createStandardFolders(folders);

    auto splash = std::make_unique<QSplashScreen>(QPixmap(":/images/VCO_Splash_v32.png"));
    splash->show();
    QCoreApplication::processEvents();

    QtEventPump pump;
    auto window = std::make_unique<VeloCortivo>(folders, pump);
    boxes.isModeless = [&window](MessageLevel level) {
        return window && window->session().messagesAreModeless(level);
    };
    if (!licencePermits())
        return 1;
    static_cast<void>(window->readMasterFile()); // without it the defaults hold: size 2, centred
    window->initVars();
    window->applyWindowSize();
    window->placeOnScreen();
    window->show();
    splash->finish(window.get());
    splash.reset();
    window->offerUnsavedRuns();

    // Not earlier: up to here there is nothing to lose, and only the event loop can be left.
    const TerminationSignals terminationSignals([&window] { window->endProgramOrderly(); });
    const int status = QCoreApplication::exec();
    window.reset();
    installMessageHandler(nullptr);
    return status;
}
