// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/view_panel.h"

#include "dialogs/panel_controls.h"
#include "display/anatomical_view.h"
#include "display/qt_cortivo_view.h"
#include "run/session/run_session.h"

#include <QBoxLayout>
#include <QDockWidget>
#include <QMainWindow>
#include <QToolButton>

namespace {

constexpr char surfacesLater[] = "Surfaces come in a later version";

} // namespace

ViewPanel::ViewPanel(RunSession& session, QWidget* parent)
    : QFrame(parent), session_(session), area_(new QMainWindow(this)) {
    setObjectName("ImageView");
    auto* frame = new QVBoxLayout(this);
    frame->setContentsMargins(2, 2, 2, 2);
    frame->addWidget(area_);
    area_->setWindowFlags(Qt::Widget); // it is a window by birth
    auto* views = new QWidget(area_);
    (new QVBoxLayout(views))->setContentsMargins(0, 0, 0, 0);
    area_->setCentralWidget(views);
    createButtons(parent);
    connect(slices_, &QToolButton::clicked, this, &ViewPanel::slicesWanted);
    connect(volume_, &QToolButton::clicked, this, &ViewPanel::volumeWanted);
    connect(anatomy_, &QToolButton::clicked, this, &ViewPanel::anatomyWanted);
    session_.anatomy.changed = [this] {
        if (anatomicalView_)
            anatomicalView_->slotDocumentChanged();
    };
    session_.anatomy.voxelMarked = [this](int x, int y, int slice) {
        if (functionalView_)
            functionalView_->markVoxel(x < 0 ? std::optional<VoxelPosition>()
                                             : VoxelPosition{x, y, slice});
    };
    session_.listeners.add(*this, ListenerPlace::Views);
}

void ViewPanel::createButtons(QWidget* parent) {
    QFrame* frame = newPanel("ViewButtonsFrm", parent);
    auto* row = new QHBoxLayout(frame);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    const auto addButton = [&](const char* name, const char* text, const char* toolTip) {
        QToolButton* button = newButton(name, toolTip, frame);
        button->setText(text);
        button->setCheckable(true);
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        row->addWidget(button);
        return button;
    };
    slices_ = addButton("EPISlicesBtn", "Slices", "Show all slices of the functional volume");
    volume_ = addButton("EPISlices3DBtn", "Volume", "Show the functional volume in three sections");
    anatomy_ = addButton("VMRBtn", "Anatomy",
                         "Show the anatomical volume in three sections with the maps");
    leftHemisphere_ = addButton("LeftHemiBtn", "Left hemisphere", surfacesLater);
    rightHemisphere_ = addButton("RightHemiBtn", "Right hemisphere", surfacesLater);
}

bool ViewPanel::documentShown() const {
    return session_.functionalDocument && functionalView_;
}

void ViewPanel::refreshButtons() {
    const bool shown = documentShown();
    const int anatomy = session_.requests.pendingOverlayVMR;
    const auto refresh = [shown](QToolButton* button, bool enabled, bool checked) {
        button->setEnabled(shown && enabled);
        button->setChecked(shown && checked);
    };
    const bool sections = shown && anatomicalView_->isVisible();
    refresh(slices_, true, shown && functionalView_->isVisible());
    refresh(volume_, session_.anatomy.hasFunctionalCube(), sections && anatomy <= 0);
    refresh(anatomy_, anatomy >= 0, sections && anatomy == 1);
    refresh(leftHemisphere_, false, false);
    refresh(rightHemisphere_, false, false);
}

QWidget* ViewPanel::visibleView() const {
    if (anatomicalView_ && anatomicalView_->isVisible())
        return anatomicalView_;
    return functionalView_ && functionalView_->isVisible() ? functionalView_ : nullptr;
}

void ViewPanel::update(bool keepFocus) {
    QWidget* view = visibleView();
    if (!view)
        return;
    showCurrentState();
    if (!keepFocus)
        view->setFocus();
}

void ViewPanel::showCurrentState() {
    const OperatorRequests& requests = session_.requests;
    functionalView_->setShowInplanes(requests.pendingOverlayInplane == 1);
    // Those of a plug-in need no model.
    const bool mapsShown = session_.report.mapsPresent || requests.pluginMaps.shown;
    functionalView_->setOverlayShown(mapsShown);
    functionalView_->setHelpFile(session_.settings.ParadigmHelpFile);
    functionalView_->setRegionMarking(
        {.style = roiDisplayStyle_,
         .colors = session_.regionColors,
         .MultiSliceROISelection = session_.settings.MultiSliceROISelection,
         .bestVoxelSelection = requests.regions.BestVoxelSelection});
    const int measured = recordedVolumes(session_.report, session_.functionalDocument->project);
    const int readOut =
        requests.overlayVolumeMode == 0 || measured == 0 ? firstVolumeAsRead : measured - 1;
    functionalView_->setVolumeReadOut(readOut);
    functionalView_->slotDocumentChanged();
    anatomicalView_->setOverlayShown(mapsShown);
    anatomicalView_->setVolumeReadOut(readOut);
    anatomicalView_->slotDocumentChanged();
}

void ViewPanel::setROIDisplayStyle(RoiDisplayStyle style) {
    roiDisplayStyle_ = style;
    if (documentShown())
        showCurrentState();
}

bool ViewPanel::cancelDrag() {
    const bool onSlices = functionalView_ && functionalView_->cancelDrag();
    return (anatomicalView_ && anatomicalView_->cancelDrag()) || onSlices;
}

void ViewPanel::showHelp() {
    if (functionalView_)
        functionalView_->slotShowHelpHTML();
}

void ViewPanel::dock(QDockWidget& window) {
    area_->addDockWidget(Qt::BottomDockWidgetArea, &window);
    window.hide();
    // Its size is the operator's from then on.
    connect(&window, &QDockWidget::visibilityChanged, this, [this, &window](bool visible) {
        if (!visible || window.isFloating() || dockSized_)
            return;
        area_->resizeDocks({&window}, {firstDockHeight()}, Qt::Vertical);
        dockSized_ = true;
    });
}

// Plots need some room, slices would like a pixel for each voxel.
int ViewPanel::firstDockHeight() const {
    constexpr double least = 0.35;
    constexpr double most = 0.42;
    constexpr int separator = 8;
    const int height = area_->height();
    const int slices = functionalView_ ? functionalView_->unscaledHeight() : 0;
    return std::clamp(height - slices - separator, int(height * least), int(height * most));
}

void ViewPanel::showSlices() {
    showsSections_ = false;
    bringToFront(false);
}

void ViewPanel::showSections(ShownCube cube) {
    if (!documentShown() || !session_.anatomy.show(cube))
        return;
    showsSections_ = true;
    bringToFront(true);
}

void ViewPanel::bringToFront(bool sections) {
    if (!documentShown())
        return;
    QWidget* const views[] = {functionalView_, anatomicalView_};
    views[sections ? 0 : 1]->hide();
    views[sections ? 1 : 0]->show();
}

void ViewPanel::focusView() {
    if (QWidget* view = visibleView())
        view->setFocus();
}

void ViewPanel::saveAsBMP() {
    if (anatomicalView_ && anatomicalView_->isVisible())
        anatomicalView_->slotSaveAsBMP();
    else if (functionalView_)
        functionalView_->slotSaveAsBMP();
}

void ViewPanel::documentsLeaving() {
    delete functionalView_;
    functionalView_ = nullptr;
    delete anatomicalView_;
    anatomicalView_ = nullptr;
    refreshButtons();
}

void ViewPanel::documentsArrived(QtCortivoDoc& functional) {
    createSlices(functional);
    createSections(functional);
}

void ViewPanel::createSlices(QtCortivoDoc& functional) {
    functionalView_ = new QtCortivoView(&functional, session_.requests.thresholds, this);
    functionalView_->setObjectName("FunctionalView");
    functionalView_->setPluginMaps(&session_.requests.pluginMaps);
    functionalView_->setWorkers(session_.workers);
    area_->centralWidget()->layout()->addWidget(functionalView_);
    functionalView_->hide();
    connect(functionalView_, &QtCortivoView::rectangleSelected, this,
            [this](const VoxelRectangle& rectangle) {
                (void)session_.regions.selectRectangle(rectangle);
            });
    connect(functionalView_, &QtCortivoView::voxelClicked, this,
            [this](const VoxelPosition& voxel) {
                session_.anatomy.functionalVoxelClicked(voxel.x, voxel.y, voxel.slice);
            });
}

void ViewPanel::createSections(QtCortivoDoc& functional) {
    anatomicalView_ =
        new AnatomicalView({session_.anatomicalDocument->anatomy, functional,
                            session_.requests.thresholds, session_.requests.pluginMaps},
                           this);
    area_->centralWidget()->layout()->addWidget(anatomicalView_);
    anatomicalView_->hide();
    connect(anatomicalView_, &AnatomicalView::crossMoved, this,
            [this](const CubeVoxel& voxel) { session_.anatomy.moveCross(voxel); });
    connect(anatomicalView_, &AnatomicalView::windowChanged, this,
            [this](int low, int high) { session_.anatomy.changeWindow(low, high); });
}

void ViewPanel::runPrepared(QtCortivoDoc&) {
    bringToFront(showsSections_ && session_.anatomy.hasFunctionalCube());
    refreshButtons();
}

void ViewPanel::regionsChanged(QtCortivoDoc&) {
    if (documentShown())
        showCurrentState();
}
