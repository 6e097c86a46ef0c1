// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/menu_table.h"

#include "run/window/velo_cortivo.h"

#include <QActionGroup>
#include <QMenu>
#include <QMenuBar>
#include <iterator>

namespace {

bool documentShown(VeloCortivo& window) {
    return window.documentShown();
}

bool documentExists(VeloCortivo& window) {
    return window.session().functionalDocument != nullptr;
}

bool runInMemory(VeloCortivo& window) {
    return window.session().volumesForPostprocessing() > 0;
}

bool codesSignificance(VeloCortivo& window) {
    return documentExists(window) && window.session().functionalDocument->SignificanceColorCoding;
}

bool codesContrasts(VeloCortivo& window) {
    return documentExists(window) && !codesSignificance(window);
}

bool inplanesExist(VeloCortivo& window) {
    return window.session().requests.pendingOverlayInplane != -1;
}

bool onInplanes(VeloCortivo& window) {
    return window.session().requests.pendingOverlayInplane == 1;
}

bool onFirstVolume(VeloCortivo& window) {
    return !onInplanes(window) && window.session().requests.overlayVolumeMode == 0;
}

bool onCurrentVolume(VeloCortivo& window) {
    return !onInplanes(window) && window.session().requests.overlayVolumeMode != 0;
}

constexpr auto Always = MenuPhase::Always;
constexpr auto Idle = MenuPhase::Idle;
constexpr bool separator = true;
using Window = VeloCortivo;

struct MenuTitle {
    const char* title;
    void (VeloCortivo::*aboutToShow)(); ///< null for a menu that never changes
};

constexpr MenuTitle titles[] = {{"&File", &Window::slotFileMenuAboutToShow},
                                {"&Analysis", &Window::slotAnalysisMenuAboutToShow},
                                {"&View", &Window::slotViewMenuAboutToShow},
                                {"&Help", nullptr}};

// clang-format off
constexpr MenuEntry entries[] = {
    {"&File", "Set New VCO File...", &Window::slotSetVCOSettingsFile, Idle},
    {"&File", "Recover Run...", &Window::slotRecoverRun, Idle},
    {"&File", "Replay Run...", &Window::slotReplayRun, Idle},
    {"&File", "Save View As BMP...", &Window::slotSaveAsBMP, Always, documentShown, nullptr, separator},
    {"&File", "Close", &Window::slotClose},
    {"&File", "Exit", &Window::slotExitVCO},
    {"&Analysis", "Colors Code Significance", &Window::slotSwitchToSignificanceColorCoding, Always, documentExists, codesSignificance},
    {"&Analysis", "Colors Code Contrasts", &Window::slotSwitchToMultiMapColorCoding, Always, documentExists, codesContrasts, separator},
    {"&Analysis", "Post-Processing...", &Window::slotPostProcessData, Idle, runInMemory},
    {"&View", "Multi-Slice View", &Window::slotSwitchToFMRView, Always, documentShown, nullptr, separator},
    {"&View", "Overlay On First Func Volume", &Window::slotShowOnEPIs, Always, nullptr, onFirstVolume},
    {"&View", "Overlay On Current Func Volume", &Window::slotShowOnCurrentEPIs, Always, nullptr, onCurrentVolume},
    {"&View", "Overlay On Inplanes", &Window::slotShowOnInplanes, Always, inplanesExist, onInplanes, separator},
    {"&View", "Switch Window Size", &Window::slotSwitchWindowSize},
    {"&Help", "License Information...", &Window::slotShowLicenseInfoDlg},
    {"&Help", "About Velo-Cortivo ", &Window::slotShowAboutDlg},
};
// clang-format on

} // namespace

std::span<const MenuEntry> menuEntries() {
    return entries;
}

MenuTable::MenuTable(QMenuBar& bar, VeloCortivo& window) : window_(window) {
    actions_.resize(std::size(entries));
    for (const MenuTitle& title : titles) {
        QMenu* menu = bar.addMenu(title.title);
        if (title.aboutToShow)
            QObject::connect(menu, &QMenu::aboutToShow, &window, title.aboutToShow);
        auto* marks = new QActionGroup(menu);
        for (size_t i = 0; i < actions_.size(); ++i)
            if (QLatin1String(entries[i].menu) == QLatin1String(title.title))
                actions_[i] = addEntry(*menu, *marks, entries[i]);
    }
}

QAction* MenuTable::addEntry(QMenu& menu, QActionGroup& marks, const MenuEntry& entry) {
    QAction* action = menu.addAction(entry.text, &window_, entry.slot);
    if (entry.checked) {
        action->setCheckable(true);
        marks.addAction(action);
    }
    if (entry.endsGroup)
        menu.addSeparator();
    return action;
}

void MenuTable::refresh(const char* title) {
    for (size_t i = 0; i < actions_.size(); ++i) {
        const MenuEntry& entry = entries[i];
        if (QLatin1String(entry.menu) != QLatin1String(title))
            continue;
        const bool inPhase = entry.phase == Always || window_.session().phase.isIdle();
        actions_[i]->setEnabled(inPhase && (!entry.possible || entry.possible(window_)));
        if (entry.checked)
            actions_[i]->setChecked(entry.checked(window_));
    }
}
