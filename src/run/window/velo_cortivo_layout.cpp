// The widgets of the main window and their places.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/appearance.h"
#include "dialogs/number_fields.h"
#include "run/window/contrast_list.h"
#include "run/window/velo_cortivo.h"

#include <QBitmap>
#include <QBoxLayout>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QMenuBar>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QTextBrowser>
#include <QTextDocument>
#include <QToolButton>

namespace {

constexpr int spinBoxWidth = 104;

QFrame* newPanel(const char* name, QWidget* parent) {
    auto* frame = new QFrame(parent);
    frame->setObjectName(name);
    return frame;
}

QToolButton* newButton(const char* name, const QString& toolTip, QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setObjectName(name);
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

/// The icon of a disabled button is as faint as its text would be.
QIcon dimmableIcon(const QString& path) {
    QIcon icon(path);
    const QPixmap bright(path);
    QPixmap faint(bright.size());
    faint.fill(Qt::transparent);
    QPainter painter(&faint);
    painter.setOpacity(0.3);
    painter.drawPixmap(0, 0, bright);
    painter.end();
    icon.addPixmap(faint, QIcon::Disabled);
    return icon;
}

QToolButton* newIconButton(const char* name, const char* icon, const QString& toolTip,
                           QWidget* parent) {
    QToolButton* button = newButton(name, toolTip, parent);
    button->setIcon(dimmableIcon(QStringLiteral(":/images/%1.png").arg(icon)));
    button->setIconSize({24, 24});
    button->setFixedSize(44, 44);
    return button;
}

QToolButton* newViewButton(const char* name, const QString& text, const QString& toolTip,
                           QWidget* parent) {
    QToolButton* button = newButton(name, toolTip, parent);
    button->setText(text);
    button->setCheckable(true);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    return button;
}

QPushButton* newPreLoadButton(const char* name, const QString& toolTip, QWidget* parent) {
    auto* button = new QPushButton(parent);
    button->setObjectName(name);
    button->setToolTip(toolTip);
    button->setCheckable(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return button;
}

/// One row: the label, and the number field at the right with a fixed width.
void addNumberRow(QGridLayout* grid, const QString& label, QAbstractSpinBox* box, const char* name,
                  const QString& toolTip) {
    box->setObjectName(name);
    box->setToolTip(toolTip);
    box->setFixedWidth(spinBoxWidth);
    box->setAlignment(Qt::AlignRight);
    // A number counts when it is finished, not digit by digit.
    box->setKeyboardTracking(false);
    auto* text = new QLabel(label, box->parentWidget());
    text->setBuddy(box);
    text->setToolTip(toolTip);
    const int row = grid->rowCount();
    grid->addWidget(text, row, 0);
    grid->addWidget(box, row, 1, Qt::AlignRight);
}

} // namespace

void VeloCortivo::createTitleRow() {
    titleFrame_ = newPanel("TitleFrm", this);
    titleFrame_->setToolTip("Drag to move the window");
    auto* title = new QHBoxLayout(titleFrame_);
    title->setContentsMargins(4, 0, 0, 0);
    auto* logo = new QLabel(titleFrame_);
    logo->setObjectName("LogoLbl");
    const QPixmap picture(":/images/VCOLogo4.png");
    logo->setPixmap(picture.scaledToHeight(26, Qt::SmoothTransformation));
    title->addWidget(logo);
    title->addStretch();

    menuBarFrame_ = newPanel("MenuBarFrm", this);
    auto* menu = new QHBoxLayout(menuBarFrame_);
    menu->setContentsMargins(0, 5, 0, 0);
    menuBar_ = new QMenuBar(menuBarFrame_);
    menuBar_->setNativeMenuBar(false);
    menuBar_->setObjectName("MenuBar");
    // No wider than its menus: the rest of the row is where the window is dragged.
    menuBar_->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Minimum);
    menu->addWidget(menuBar_);
    menu->addStretch();

    windowButtonsFrame_ = newPanel("WindowButtonsFrm", this);
    auto* buttons = new QHBoxLayout(windowButtonsFrame_);
    buttons->setContentsMargins(0, 2, 0, 2);
    buttons->setSpacing(4);
    buttons->addStretch();
    QToolButton* size = newButton("WindowSizeBtn",
                                  "Switch the window between 1024 x 768 and "
                                  "1280 x 1024 pixels",
                                  windowButtonsFrame_);
    size->setIcon(QIcon(":/images/window_size.png"));
    QToolButton* minimise = newButton("MinimizeBtn", "Minimize the window", windowButtonsFrame_);
    minimise->setIcon(QIcon(":/images/window_minimize.png"));
    QToolButton* close = newButton(
        "CloseBtn", "End the program; a running measurement is saved first", windowButtonsFrame_);
    close->setIcon(QIcon(":/images/window_close.png"));
    for (QToolButton* button : {size, minimise, close}) {
        button->setIconSize({16, 16});
        button->setFixedSize(34, 28);
        buttons->addWidget(button);
    }
    connect(size, &QToolButton::clicked, this, &VeloCortivo::slotSwitchWindowSize);
    connect(minimise, &QToolButton::clicked, this, &QWidget::showMinimized);
    connect(close, &QToolButton::clicked, this, &VeloCortivo::slotClose);
}

void VeloCortivo::createInputPanel() {
    inputPanel_ = newPanel("InputPanelFrm", this);
    toBeginButton_ = newIconButton("ToBeginBtn", "to_begin",
                                   "Take the settings file of the previous recording", inputPanel_);
    recordButton_ = newButton("RecordBtn",
                              "Start the run of the current settings file; during a "
                              "run, stop it and save what was measured",
                              inputPanel_);
    recordButton_->setIconSize({85, 40});
    recordButton_->setFixedSize(97, 52);
    toEndButton_ = newIconButton("ToEndBtn", "to_end",
                                 "Take the settings file of the next recording", inputPanel_);
    reloadButton_ = newIconButton("ReloadDataBtn", "reload",
                                  "Reload the saved run of the current settings file", inputPanel_);
    preLoadRoiButton_ =
        newPreLoadButton("AutoAdvanceRunBtn",
                         "Choose a file of regions (.roi) to be opened at the first volume of "
                         "the next run. Lit while auto-advance is on",
                         inputPanel_);
    preLoadVoiButton_ =
        newPreLoadButton("AutoStartRunBtn",
                         "Choose a file of volumes of interest (.voi) to be mapped at the first "
                         "volume of the next run. Lit while auto-start is on",
                         inputPanel_);

    auto* transport = new QHBoxLayout;
    transport->setSpacing(6);
    for (QToolButton* button : {toBeginButton_, recordButton_, toEndButton_})
        transport->addWidget(button);
    transport->addStretch();
    transport->addWidget(reloadButton_);
    auto* preLoad = new QHBoxLayout;
    preLoad->setSpacing(8);
    preLoad->addWidget(preLoadRoiButton_);
    preLoad->addWidget(preLoadVoiButton_);
    auto* layout = new QVBoxLayout(inputPanel_);
    layout->setContentsMargins(12, 14, 12, 14);
    layout->addLayout(transport);
    layout->addStretch();
    layout->addLayout(preLoad);
}

void VeloCortivo::createViewPanels() {
    imageView_ = newPanel("ImageView", this);
    auto* view = new QVBoxLayout(imageView_);
    view->setContentsMargins(2, 2, 2, 2);

    viewButtonsFrame_ = newPanel("ViewButtonsFrm", this);
    epiSlicesButton_ = newViewButton("EPISlicesBtn", "Slices",
                                     "Show all slices of the functional volume", viewButtonsFrame_);
    epiSlices3DButton_ =
        newViewButton("EPISlices3DBtn", "Volume", "Show the functional volume in three planes",
                      viewButtonsFrame_);
    vmrButton_ = newViewButton("VMRBtn", "Anatomy", "Show the anatomical volume with the maps",
                               viewButtonsFrame_);
    leftHemisphereButton_ =
        newViewButton("LeftHemiBtn", "Left hemisphere", "Show the surface of the left hemisphere",
                      viewButtonsFrame_);
    rightHemisphereButton_ =
        newViewButton("RightHemiBtn", "Right hemisphere",
                      "Show the surface of the right hemisphere", viewButtonsFrame_);
    auto* buttons = new QHBoxLayout(viewButtonsFrame_);
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->setSpacing(8);
    for (QToolButton* button : {epiSlicesButton_, epiSlices3DButton_, vmrButton_,
                                leftHemisphereButton_, rightHemisphereButton_})
        buttons->addWidget(button);

    logInfos_ = new QTextBrowser(this);
    logInfos_->setObjectName("LogInfos");
    logInfos_->setToolTip("State of the run");
    logInfos_->setOpenLinks(false);
    logInfos_->setFocusPolicy(Qt::ClickFocus);
}

void VeloCortivo::createContrastPanel() {
    contrastGroup_ = new QGroupBox("Contrasts and maps", this);
    contrastGroup_->setObjectName("ContrastBackgroundGrpBx");
    contrastList_ = new ContrastList(contrastGroup_);
    conjunctionBox_ = new QCheckBox("Conjunction of contrasts", contrastGroup_);
    conjunctionBox_->setObjectName("ConjunctionOfContrastsOp");
    conjunctionBox_->setToolTip("Show only voxels in which all selected contrasts agree; needs at "
                                "least two of them");
    auto* grid = new QGridLayout;
    grid->setVerticalSpacing(8);
    grid->setColumnStretch(0, 1);
    thresholdBox_ = new ThresholdSpinBox(contrastGroup_);
    addNumberRow(grid, "Lower threshold", thresholdBox_, "ThresholdSpBx",
                 "Smallest value of the map that is shown, in units of the map (t, r or F). "
                 "Ctrl+Up and Ctrl+Down change it in steps");
    colorMaxThresholdBox_ = new ThresholdSpinBox(contrastGroup_);
    addNumberRow(grid, "Upper threshold", colorMaxThresholdBox_, "ColorMaxThresholdSpBx",
                 "Value from which the strongest colour is used, in units of the map");
    clusterSizeBox_ = new QSpinBox(contrastGroup_);
    clusterSizeBox_->setRange(1, 9999);
    addNumberRow(grid, "Cluster size", clusterSizeBox_, "ClusterSizeSpBx",
                 "Smallest connected area of a slice that is shown, in pixels");
    multiSliceBox_ = new QSpinBox(contrastGroup_);
    multiSliceBox_->setRange(0, 99);
    addNumberRow(grid, "ROI slices", multiSliceBox_, "MultiSliceROISelectionSpBx",
                 "Number of neighbouring slices that the selection of a region takes in");

    auto* layout = new QVBoxLayout(contrastGroup_);
    layout->setContentsMargins(12, 30, 12, 14);
    layout->setSpacing(10);
    layout->addWidget(contrastList_, 1);
    layout->addWidget(conjunctionBox_);
    layout->addSpacing(4);
    layout->addLayout(grid);
}

void VeloCortivo::initDefaultPalettes() {
    setPalette(darkPalette());
    setStyleSheet(windowStyleSheet());
}

void VeloCortivo::placePanels() {
    const auto size = WindowSize(master_.windowSize);
    for (const PanelPlace& place : panelPlaces())
        if (auto* panel = findChild<QWidget*>(place.name, Qt::FindDirectChildrenOnly))
            panel->setGeometry(place.at(size));
    // In the small window the seven lines after a run need all of the panel.
    logInfos_->document()->setDocumentMargin(size == WindowSize::Small ? 0 : 6);
}

void VeloCortivo::applyWindowSize() {
    const auto size = WindowSize(master_.windowSize);
    skin_.load(size == WindowSize::Small ? ":/images/VCO_Skin_1024x768.png"
                                         : ":/images/VCO_Skin_1280x1024.png");
    setFixedSize(windowPixels(size));
    setMask(skin_.mask());
    placePanels();
    update();
}

void VeloCortivo::placeOnScreen() {
    const QRect area = screenArea(this);
    const QPoint wanted =
        windowPosition(area, windowPixels(WindowSize(master_.windowSize)), master_.windowCentredX,
                       master_.windowCentredY, {master_.windowX, master_.windowY});
    move(reachablePosition(area, size(), wanted));
}

void VeloCortivo::slotUpdateWindowSize() {
    applyWindowSize();
    // On a screen that the larger window leaves, its title row comes back.
    move(reachablePosition(screenArea(this), size(), pos()));
    if (functionalView_)
        updateViews();
}

void VeloCortivo::slotSwitchWindowSize() {
    master_.windowSize = master_.windowSize == 1 ? 2 : 1;
    remembered_.windowSize = master_.windowSize;
    slotUpdateWindowSize();
}
