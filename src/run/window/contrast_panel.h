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
class VeloCortivo;

/// Shows what the session has, and follows its documents. The slots of the window change it.
class ContrastPanel : public QGroupBox, public RunListener {
public:
    ContrastPanel(RunSession& session, QWidget* parent);

    /// Connects the controls to the slots of the window.
    void connectTo(VeloCortivo& window);
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

private:
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
