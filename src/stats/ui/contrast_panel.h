// Contrasts, thresholds and the cluster size, at the right of the slices.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_listeners.h"

#include <QGroupBox>

class ContrastList;
class QCheckBox;
class QDoubleSpinBox;
class QGridLayout;
class QSpinBox;
class RunSession;

/// Shows what the session has, and follows its documents.
class ContrastPanel : public QGroupBox, public RunListener {
    Q_OBJECT

public:
    ContrastPanel(RunSession& session, QWidget* parent);

    /// Writes thresholds, cluster size and number of slices into their boxes, without signals.
    void refresh();

    /// What the boxes hold, handed to the session.
    void takeThreshold();
    void takeColorMaxThreshold();
    void takeClusterSize();
    void takeMultiSliceROISelection();
    void takeConjunction();

    void documentsLeaving() override;
    void runPrepared(QtCortivoDoc& functional) override;
    void settingsFileChanged() override;

Q_SIGNALS:
    /// The operator changed a control; the take functions hand its value over.
    void thresholdEdited();
    void colorMaxThresholdEdited();
    void clusterSizeEdited();
    void multiSliceEdited();
    void conjunctionClicked();
    /// A number was finished with the Return key.
    void numberEntered();

private:
    void connectControls();
    void addThresholdRows(QGridLayout* grid);
    void addSizeRows(QGridLayout* grid);

    RunSession& session_;
    ContrastList* list_;
    QCheckBox* conjunction_;
    QDoubleSpinBox* threshold_;
    QDoubleSpinBox* colorMaxThreshold_;
    QSpinBox* clusterSize_;
    QSpinBox* multiSlice_;
};
