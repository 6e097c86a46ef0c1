// How often the trials of each class were taken for each class.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/svm_prediction.h"

#include <QDialog>
#include <memory>

namespace Ui {
class ConfusionTable;
}

/// A modeless window with one row for each class of the trials and one column for each class that
/// they were taken for; the shade grows with the share of the row.
class ConfusionTable : public QDialog {
    Q_OBJECT

public:
    explicit ConfusionTable(QWidget* parent);
    ~ConfusionTable() override;

    void showReport(const PredictionReport& report);

private:
    const std::unique_ptr<Ui::ConfusionTable> ui_;
};
