// Contrasts, thresholds and cluster size, to the right of the slices.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/loop/run_listeners.h"
#include "stats/ui/contrast_rows.h"
#include "stats/ui/plugin_map_rows.h"

#include <QGroupBox>

class ContrastList;
class QCheckBox;
class QDoubleSpinBox;
class QGridLayout;
class QSpinBox;
class RunSession;

/// Shows the values of the session's documents.
class ContrastPanel : public QGroupBox, public RunListener {
    Q_OBJECT

public:
    ContrastPanel(RunSession& session, QWidget* parent);

    /// Shows thresholds, cluster size, number of slices, conjunction and the rows of the list as
    /// the session has them, without signals.
    void refresh();

    /// Pass the value of a control to the session.
    void takeThreshold();
    void takeColorMaxThreshold();
    void takeClusterSize();
    void takeMultiSliceROISelection();
    void takeConjunction();
    void takeContrasts();
    void takeShowPluginMaps();
    [[nodiscard]] ContrastList& list() { return *list_; }

    void documentsLeaving() override;
    void runPrepared(QtCortivoDoc& functional) override;
    void settingsFileChanged() override;
    void playedRunStays(QtCortivoDoc& functional) override { runPrepared(functional); }
    void mapListChanged() override;
    void pluginThresholdApplied(float shown) override;

Q_SIGNALS:
    /// The operator changed a control; the take functions pass its value on.
    void thresholdEdited();
    void colorMaxThresholdEdited();
    void clusterSizeEdited();
    void multiSliceEdited();
    void conjunctionClicked();
    void showPluginMapsClicked();
    /// Another statistic is shown, or F of other contrasts, or maps of a plug-in: what the text of
    /// the threshold says beside the number has changed.
    void statisticChanged();
    /// A number was confirmed with the Return key.
    void numberEntered();

private:
    void connectControls();
    void connectStatistics();
    void addThresholdRows(QGridLayout* grid);
    void addSizeRows(QGridLayout* grid);
    /// Fills the list with the contrasts or the maps of the plug-in, as the operator or the plug-in
    /// wants.
    void fillList();

    RunSession& session_;
    ContrastRows contrasts_;
    PluginMapRows mapsOfPlugin_;
    bool pluginMapsListed_ = false;
    ContrastList* list_;
    QCheckBox* conjunction_;
    QCheckBox* pluginMaps_;
    QDoubleSpinBox* threshold_;
    QDoubleSpinBox* colorMaxThreshold_;
    QSpinBox* clusterSize_;
    QSpinBox* multiSlice_;
};
