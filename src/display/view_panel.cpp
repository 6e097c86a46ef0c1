// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/view_panel.h"

#include "dialogs/panel_controls.h"
#include "display/qt_cortivo_view.h"
#include "run/session/run_session.h"

#include <QBoxLayout>
#include <QDockWidget>
#include <QMainWindow>
#include <QToolButton>

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
    volume_ = addButton("EPISlices3DBtn", "Volume", "Show the functional volume in three planes");
    anatomy_ = addButton("VMRBtn", "Anatomy", "Show the anatomical volume with the maps");
    leftHemisphere_ =
        addButton("LeftHemiBtn", "Left hemisphere", "Show the surface of the left hemisphere");
    rightHemisphere_ =
        addButton("RightHemiBtn", "Right hemisphere", "Show the surface of the right hemisphere");
}

bool ViewPanel::documentShown() const {
    return session_.functionalDocument && functionalView_;
}

void ViewPanel::refreshButtons() {
    const bool shown = documentShown();
    slices_->setEnabled(shown);
    slices_->setChecked(shown && functionalView_->isVisible());
    for (QToolButton* button : {volume_, anatomy_, leftHemisphere_, rightHemisphere_}) {
        button->setEnabled(false);
        button->setChecked(false);
    }
}

void ViewPanel::update(bool keepFocus) {
    if (!functionalView_ || !functionalView_->isVisible())
        return;
    showCurrentState();
    if (!keepFocus)
        functionalView_->setFocus();
}

void ViewPanel::showCurrentState() {
    const OperatorRequests& requests = session_.requests;
    functionalView_->setShowInplanes(requests.pendingOverlayInplane == 1);
    // Those of a plug-in need no model.
    functionalView_->setOverlayShown(session_.report.mapsPresent || requests.pluginMaps.shown);
    functionalView_->setHelpFile(session_.settings.ParadigmHelpFile);
    functionalView_->setRegionMarking(
        {.style = roiDisplayStyle_,
         .colors = session_.regionColors,
         .MultiSliceROISelection = session_.settings.MultiSliceROISelection,
         .bestVoxelSelection = requests.regions.BestVoxelSelection});
    const int measured = recordedVolumes(session_.report, session_.functionalDocument->project);
    functionalView_->setVolumeReadOut(
        requests.overlayVolumeMode == 0 || measured == 0 ? firstVolumeAsRead : measured - 1);
    functionalView_->slotDocumentChanged();
}

void ViewPanel::setROIDisplayStyle(RoiDisplayStyle style) {
    roiDisplayStyle_ = style;
    if (documentShown())
        showCurrentState();
}

bool ViewPanel::cancelDrag() {
    return functionalView_ && functionalView_->cancelDrag();
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
    if (functionalView_)
        functionalView_->show();
}

void ViewPanel::focusSlices() {
    if (functionalView_)
        functionalView_->setFocus();
}

void ViewPanel::saveAsBMP() {
    if (functionalView_)
        functionalView_->slotSaveAsBMP();
}

void ViewPanel::documentsLeaving() {
    delete functionalView_;
    functionalView_ = nullptr;
    refreshButtons();
}

void ViewPanel::documentsArrived(QtCortivoDoc& functional) {
    functionalView_ = new QtCortivoView(&functional, session_.requests.thresholds, this);
    functionalView_->setObjectName("FunctionalView");
    functionalView_->setPluginMaps(&session_.requests.pluginMaps);
    area_->centralWidget()->layout()->addWidget(functionalView_);
    functionalView_->hide();
    connect(functionalView_, &QtCortivoView::rectangleSelected, this,
            [this](const VoxelRectangle& rectangle) {
                (void)session_.regions.selectRectangle(rectangle);
            });
}

void ViewPanel::runPrepared(QtCortivoDoc&) {
    functionalView_->show();
    refreshButtons();
}

void ViewPanel::regionsChanged(QtCortivoDoc&) {
    if (documentShown())
        showCurrentState();
}
