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

bool functionalCubeShown(VeloCortivo& window) {
    return window.documentShown() && window.session().anatomy.hasFunctionalCube();
}

QString exportHindrance(VeloCortivo& window) {
    return window.session().exports.hindrance();
}

QString anatomyHindrance(VeloCortivo& window) {
    if (window.documentShown() && window.session().anatomy.hasAnatomy())
        return {};
    return "There is no anatomy: the settings file names none that can be used (OverlayOnVMRMode), "
           "and none was loaded";
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

bool averagesEpochs(VeloCortivo& window) {
    return window.timeCourses().epochBased();
}

bool showsDetrended(VeloCortivo& window) {
    return window.timeCourses().detrended();
}

bool regionsMayChange(VeloCortivo& window) {
    return window.session().regions.mayChange();
}

bool regionsExist(VeloCortivo& window) {
    return regionsMayChange(window) && !window.session().regions.list()->empty();
}

bool selectsOnlyMapVoxels(VeloCortivo& window) {
    return window.session().requests.regions.SelectOnlyMapVoxels;
}

QString roiGLMHindrance(VeloCortivo& window) {
    return window.session().regions.roiGLMHindrance();
}

bool logsTimePoints(VeloCortivo& window) {
    return window.session().requests.saveRTPs;
}

bool logsTimeCourses(VeloCortivo& window) {
    return window.session().requests.saveROITimeCourses;
}

bool logsBetas(VeloCortivo& window) {
    return window.session().requests.saveROIBetaTimeCourses;
}

bool showsRectangles(VeloCortivo& window) {
    return window.roiDisplayStyle() == RoiDisplayStyle::Rectangles;
}

bool showsMarkedVoxels(VeloCortivo& window) {
    return window.roiDisplayStyle() == RoiDisplayStyle::MarkedVoxels;
}

bool showsBoth(VeloCortivo& window) {
    return window.roiDisplayStyle() == RoiDisplayStyle::RectanglesAndMarkedVoxels;
}

bool paradigmHelpExists(VeloCortivo& window) {
    return !window.session().settings.ParadigmHelpFile.isEmpty();
}

bool inplanesExist(VeloCortivo& window) {
    return window.session().requests.pendingOverlayInplane != -1;
}

bool onInplanes(VeloCortivo& window) {
    return window.session().requests.pendingOverlayInplane == 1;
}

bool showsBeforePreprocessing(VeloCortivo& window) {
    return !window.session().requests.overlayAfterPreprocessing;
}

bool onFirstVolume(VeloCortivo& window) {
    return !onInplanes(window) && window.session().requests.overlayVolumeMode == 0;
}

bool onCurrentVolume(VeloCortivo& window) {
    return !onInplanes(window) && window.session().requests.overlayVolumeMode != 0;
}

constexpr char laterEditors[] = "The editors of settings and protocols come in a later version";
constexpr auto Always = MenuPhase::Always;
constexpr auto Idle = MenuPhase::Idle;
constexpr auto Later = MenuPhase::Later;
constexpr bool separator = true;
using Window = VeloCortivo;

struct MenuTitle {
    const char* title;
    void (VeloCortivo::*aboutToShow)();
};

constexpr MenuTitle titles[] = {{"&File", &Window::slotFileMenuAboutToShow},
                                {"&Analysis", &Window::slotAnalysisMenuAboutToShow},
                                {"&View", &Window::slotViewMenuAboutToShow},
                                {"&Multi-Run", &Window::slotMultiRunMenuAboutToShow},
                                {"&Plugins", &Window::onPluginsMenuAboutToShow},
                                {"&Help", &Window::slotHelpMenuAboutToShow}};

// clang-format off
constexpr MenuEntry entries[] = {
    {"&File", "Set New VCO File...", &Window::slotSetVCOSettingsFile, Idle},
    {.menu = "&File", .text = "Edit VCO File...", .slot = &Window::slotEditVCOSettingsFile, .phase = Later, .toolTip = laterEditors},
    {.menu = "&File", .text = "Edit MasterVCO File...", .slot = &Window::slotEditMasterVCOFileSettings, .phase = Later, .toolTip = laterEditors},
    {.menu = "&File", .text = "Rename DICOM Files...", .slot = &Window::slotRenameDICOMFiles, .phase = Later, .endsSection = separator, .toolTip = laterEditors},
    {.menu = "&File", .text = "VMR-VMR Coregistration...", .slot = &Window::slotVMR2VMRCoregistration, .phase = Later, .endsSection = separator, .toolTip = "Registration of anatomies comes in a later version"},
    {.menu = "&File", .text = "Load Anatomy...", .slot = &Window::slotLoadAnatomy, .phase = Idle, .toolTip = "Show this run and those that follow over an anatomy (.vmr, NIfTI)"},
    {.menu = "&File", .text = "Export As NIfTI...", .slot = &Window::slotExportAsNifti, .phase = Idle, .endsSection = separator, .toolTip = "Write the run in memory, its maps and its mask as NIfTI files", .hindrance = exportHindrance},
    {"&File", "Recover Run...", &Window::slotRecoverRun, Idle},
    {"&File", "Replay Run...", &Window::slotReplayRun, Idle},
    {.menu = "&File", .text = "Save View As BMP...", .slot = &Window::slotSaveAsBMP, .possible = documentShown, .endsSection = separator},
    {"&File", "Close", &Window::slotClose},
    {"&File", "Exit", &Window::slotExitVCO},
    {"&Analysis", "Colors Code Significance", &Window::slotSwitchToSignificanceColorCoding, Always, documentExists, MenuGroup::Colors, codesSignificance},
    {"&Analysis", "Colors Code Contrasts", &Window::slotSwitchToMultiMapColorCoding, Always, documentExists, MenuGroup::Colors, codesContrasts, separator},
    {"&Analysis", "Epoch-Based Averaging", &Window::slotSwitchAveragingType, Always, nullptr, MenuGroup::Toggle, averagesEpochs, false, "Each trial has its own baseline in the event-related average; otherwise all trials share one"},
    {.menu = "&Analysis", .text = "Stimulation Protocol...", .slot = &Window::slotStimulationProtocol, .phase = Later, .endsSection = separator, .toolTip = laterEditors},
    {.menu = "&Analysis", .text = "SVM Training...", .slot = &Window::onOfflineSVMDlg, .toolTip = "Estimate single trials of finished runs, cut out patterns and train a classifier"},
    {.menu = "&Analysis", .text = "RFE Training...", .slot = &Window::onRFEDlg, .toolTip = "Find the voxels of a region that tell two conditions apart"},
    {.menu = "&Analysis", .text = "Real-Time SVM Classification...", .slot = &Window::onRealTimeSVMClassification, .endsSection = separator, .toolTip = "Let a trained classifier predict while a run is measured"},
    {.menu = "&Analysis", .text = "Post-Processing...", .slot = &Window::slotPostProcessData, .phase = Idle, .possible = runInMemory, .endsSection = separator},
    {.menu = "&Analysis", .text = "Neurofeedback... ", .slot = &Window::slotShowNeurofeedbackDlg, .toolTip = "What the subject sees of the signal of regions"},
    {.menu = "&Analysis", .text = "BOLD Decoder... ", .slot = &Window::slotShowBOLDDecoder, .endsSection = separator, .toolTip = "Read letters from the signal of regions"},
    {"&Analysis", "Load ROIs...", &Window::slotLoadROIs, Always, regionsMayChange},
    {"&Analysis", "Save ROIs...", &Window::slotSaveROIs, Always, regionsExist},
    {.menu = "&Analysis", .text = "Load VOIs...", .slot = &Window::slotLoadVOIs, .possible = regionsMayChange, .toolTip = "Replace the regions by volumes of interest, which lie in the space of the anatomy"},
    {.menu = "&Analysis", .text = "Save VOIs...", .slot = &Window::slotSaveVOIs, .possible = regionsExist, .toolTip = "Write the volumes of interest that the regions were made of"},
    {.menu = "&Analysis", .text = "ROI GLM...", .slot = &Window::slotROIGLM, .phase = Idle, .toolTip = "Fit the model of the run to the time course of a region", .hindrance = roiGLMHindrance},
    {"&Analysis", "Select Only Voxels Of Plug-In Maps", &Window::onToggleSelectOnlyMapVoxels, Always, nullptr, MenuGroup::Toggle, selectsOnlyMapVoxels, separator, "A drag on a slice selects the voxels in which a shown map of the plug-in reaches the lower threshold"},
    {"&Analysis", "Log ROI Time Point Files (RTPs)", &Window::slotSaveRTPsOption, Always, nullptr, MenuGroup::Toggle, logsTimePoints, false, "Write the mean of each region into a file of its own at each volume, into the feedback folder"},
    {"&Analysis", "Log ROI Time Courses (ERT)", &Window::slotSaveROITimeCourses, Always, nullptr, MenuGroup::Toggle, logsTimeCourses, false, "Append the values of all voxels of each region to a file at each volume, in the target folder"},
    {"&Analysis", "Log ROI Betas (BTC)", &Window::slotSaveROIBetaTimeCourses, Always, nullptr, MenuGroup::Toggle, logsBetas, false, "Append the betas of each region to a file at each volume, in the target folder"},
    {.menu = "&View", .text = "Multi-Slice View", .slot = &Window::slotSwitchToFMRView, .possible = documentShown},
    {.menu = "&View", .text = "Volume View", .slot = &Window::slotSwitchToEPI3DView, .possible = functionalCubeShown, .toolTip = "Three sections through the functional volume"},
    {.menu = "&View", .text = "Anatomical Volume View", .slot = &Window::slotSwitchToVMRView, .toolTip = "Three sections through the anatomy", .hindrance = anatomyHindrance},
    {.menu = "&View", .text = "Surface View", .slot = &Window::slotSwitchToSurfaceView, .phase = Later, .endsSection = separator, .toolTip = "Surfaces come in a later version"},
    {"&View", "Overlay On First Func Volume", &Window::slotShowOnEPIs, Always, nullptr, MenuGroup::Overlay, onFirstVolume},
    {"&View", "Overlay On Current Func Volume", &Window::slotShowOnCurrentEPIs, Always, nullptr, MenuGroup::Overlay, onCurrentVolume},
    {"&View", "Overlay On Inplanes", &Window::slotShowOnInplanes, Always, inplanesExist, MenuGroup::Overlay, onInplanes},
    {"&View", "Current Func Volume Before Preprocessing", &Window::slotToggleBeforePreprocessing, Always, nullptr, MenuGroup::Toggle, showsBeforePreprocessing, separator, "Show each current volume as it was measured, instead of after motion correction and smoothing, from the next one on"},
    {"&View", "Show ROIs With Rectangles", &Window::onShowROIsAsRectangles, Always, nullptr, MenuGroup::RegionStyle, showsRectangles},
    {"&View", "Show ROIs With Highlighted Voxels", &Window::onShowROIsAsMarkedVoxels, Always, nullptr, MenuGroup::RegionStyle, showsMarkedVoxels},
    {"&View", "Show ROIs With Rectangles And Highlighted Voxels", &Window::onShowROIsAsRectanglesAndMarkedVoxels, Always, nullptr, MenuGroup::RegionStyle, showsBoth, separator},
    {"&View", "Show ROI Time Courses Container", &Window::onShowTimeCoursesContainer},
    {"&View", "Remove ROI Time Course Plots", &Window::slotRemoveROITimeCoursePlots, Always, regionsExist},
    {"&View", "Display Detrended ROI Time Courses", &Window::onToggleROITimeCoursesDetrended, Always, nullptr, MenuGroup::Toggle, showsDetrended, separator, "Show the curves without their linear trend; files and feedback are not changed"},
    {"&View", "Show Motion Plot", &Window::slotShowMotionPlot},
    {.menu = "&View", .text = "Show Response Plot", .slot = &Window::slotShowResponsePlot, .endsSection = separator},
    {.menu = "&View", .text = "Switch Window Size", .slot = &Window::slotSwitchWindowSize},
    {.menu = "&Help", .text = "Help On Paradigm", .slot = &Window::slotShowHelpHTML, .possible = paradigmHelpExists, .toolTip = "Open the help file that the settings file names"},
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
        menus_[title.title] = menu;
        menu->setToolTipsVisible(true);
        QObject::connect(menu, &QMenu::aboutToShow, &window, title.aboutToShow);
        for (size_t i = 0; i < actions_.size(); ++i)
            if (QLatin1String(entries[i].menu) == QLatin1String(title.title))
                actions_[i] = addEntry(*menu, entries[i]);
    }
}

QAction* MenuTable::addEntry(QMenu& menu, const MenuEntry& entry) {
    QAction* action = menu.addAction(entry.text, &window_, entry.slot);
    action->setCheckable(entry.checked != nullptr);
    // Without a tool tip of its own an action has its text as one.
    action->setToolTip(entry.toolTip ? QString(entry.toolTip) : QString());
    if (entry.checked && entry.group != MenuGroup::Toggle) {
        QActionGroup*& group = groups_[entry.group];
        if (!group)
            group = new QActionGroup(&menu);
        group->addAction(action);
    }
    if (entry.endsSection)
        menu.addSeparator();
    return action;
}

bool MenuTable::inPhase(MenuPhase phase) const {
    switch (phase) {
    case MenuPhase::Always:
        return true;
    case MenuPhase::Idle:
        return window_.session().phase.isIdle();
    case MenuPhase::Later:
        break;
    }
    return false;
}

void MenuTable::refresh(const char* title) {
    for (size_t i = 0; i < actions_.size(); ++i) {
        const MenuEntry& entry = entries[i];
        if (QLatin1String(entry.menu) != QLatin1String(title))
            continue;
        const QString hindrance = entry.hindrance ? entry.hindrance(window_) : QString();
        actions_[i]->setEnabled(inPhase(entry.phase) && hindrance.isEmpty() &&
                                (!entry.possible || entry.possible(window_)));
        if (entry.hindrance)
            actions_[i]->setToolTip(hindrance.isEmpty() ? entry.toolTip : hindrance);
        if (entry.checked)
            actions_[i]->setChecked(entry.checked(window_));
    }
}

void MenuTable::rebuild(const char* title, const std::vector<MenuRow>& rows) {
    QMenu& menu = *menus_.at(title);
    menu.clear();
    for (const MenuRow& row : rows) {
        if (!row.slot) {
            menu.addSeparator();
            continue;
        }
        // A file name may hold the character that marks a mnemonic.
        QAction* action = menu.addAction(QString(row.text).replace('&', "&&"), &window_, row.slot);
        action->setData(row.data);
        action->setEnabled(row.enabled);
        action->setCheckable(row.checked);
        action->setChecked(row.checked);
        action->setToolTip(row.toolTip);
    }
}
