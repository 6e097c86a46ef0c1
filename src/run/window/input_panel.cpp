// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/input_panel.h"

#include "dialogs/panel_controls.h"
#include "run/window/velo_cortivo.h"

#include <QBoxLayout>
#include <QPushButton>
#include <QToolButton>

namespace {

QPushButton* newPreLoadButton(const char* name, const char* text, const QString& toolTip,
                              QWidget* parent) {
    auto* button = new QPushButton(text, parent);
    button->setObjectName(name);
    button->setToolTip(toolTip);
    button->setCheckable(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return button;
}

// HTML, which wraps.
QString preLoadToolTip(const QString& chosen) {
    const QString file =
        chosen.isEmpty() ? QStringLiteral("None is chosen.")
                         : QStringLiteral("Chosen: <b>%1</b>; cancel the file chooser to clear it.")
                               .arg(chosen.toHtmlEscaped());
    return QStringLiteral("<p>Choose a file of regions (.roi) to be opened at the first volume of "
                          "each run from now on. %1 Lit while auto-advance is on.</p>")
        .arg(file);
}

QIcon runButtonIcon(const char* name) {
    return QIcon(QStringLiteral(":/images/%1.png").arg(name));
}

} // namespace

InputPanel::InputPanel(QWidget* parent)
    : QFrame(parent), record_(newButton("RecordBtn",
                                        "Start the run of the current settings file; during a "
                                        "run, stop it and save what was measured",
                                        this)),
      toBegin_(newIconButton("ToBeginBtn", "to_begin",
                             "Take the settings file of the previous recording", this)),
      toEnd_(newIconButton("ToEndBtn", "to_end", "Take the settings file of the next recording",
                           this)),
      reload_(newIconButton("ReloadDataBtn", "reload",
                            "Reload the saved run of the current settings file", this)),
      preLoadROI_(newPreLoadButton("AutoAdvanceRunBtn", "Pre-Load ROI", {}, this)),
      preLoadVOI_(newPreLoadButton("AutoStartRunBtn", "Pre-Load VOI",
                                   "Choose a file of volumes of interest (.voi) to be mapped at "
                                   "the first volume of the next run. Lit while auto-start is on",
                                   this)),
      runButtonIcons_{runButtonIcon("record_none"), runButtonIcon("record_ready"),
                      runButtonIcon("record_finished"), runButtonIcon("record_running")} {
    setObjectName("InputPanelFrm");
    record_->setIconSize({85, 40});
    record_->setFixedSize(97, 52);
    auto* transport = new QHBoxLayout;
    transport->setSpacing(6);
    for (QToolButton* button : {toBegin_, record_, toEnd_})
        transport->addWidget(button);
    transport->addStretch();
    transport->addWidget(reload_);
    auto* preLoad = new QHBoxLayout;
    preLoad->setSpacing(8);
    preLoad->addWidget(preLoadROI_);
    preLoad->addWidget(preLoadVOI_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 14, 12, 14);
    layout->addLayout(transport);
    layout->addStretch();
    layout->addLayout(preLoad);
}

void InputPanel::connectTo(VeloCortivo& window) {
    connect(record_, &QToolButton::clicked, &window, &VeloCortivo::slotRealTimeAnalysis);
    connect(reload_, &QToolButton::clicked, &window, &VeloCortivo::slotReloadData);
    connect(toBegin_, &QToolButton::clicked, &window, &VeloCortivo::slotToPreviousRecording);
    connect(toEnd_, &QToolButton::clicked, &window, &VeloCortivo::slotToNextRecording);
    connect(preLoadROI_, &QPushButton::clicked, &window, &VeloCortivo::onPreLoadROI);
    connect(preLoadVOI_, &QPushButton::clicked, &window, &VeloCortivo::onPreLoadVOI);
}

void InputPanel::showRunButton(RunButtonState state) {
    record_->setIcon(runButtonIcons_[size_t(state)]);
}

void InputPanel::showControls(const InputControls& controls) {
    toBegin_->setEnabled(controls.previousExists);
    toEnd_->setEnabled(controls.nextExists);
    reload_->setEnabled(controls.reloadPossible);
    preLoadROI_->setEnabled(controls.preLoadPossible);
    preLoadVOI_->setEnabled(controls.preLoadPossible);
    preLoadROI_->setToolTip(preLoadToolTip(controls.preLoadedRegions));
    preLoadROI_->setChecked(controls.autoAdvanceRun);
    preLoadVOI_->setChecked(controls.autoStartRun);
}

void InputPanel::focusRunButton() {
    record_->setFocus();
}

bool InputPanel::autoAdvanceLit() const {
    return preLoadROI_->isChecked();
}

bool InputPanel::autoStartLit() const {
    return preLoadVOI_->isChecked();
}
