// The window of a series of matrices.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/messages.h"

#include <QDialog>
#include <memory>

class MatrixPlotter;

namespace Ui {
class MatrixPlotterDlg;
}

/// A modeless window that shows one matrix of a series, chosen with a slider or by its number from
/// 1. Its owner gives the matrices to plotter().
class MatrixPlotterDlg : public QDialog {
    Q_OBJECT

public:
    explicit MatrixPlotterDlg(QWidget* parent = nullptr);
    ~MatrixPlotterDlg() override;

    [[nodiscard]] MatrixPlotter& plotter();

public Q_SLOTS:
    /// For a series of `new_max` matrices.
    void onChangeSliderRange(int new_max);
    /// Matrix `new_i`, from 0, is shown now.
    void onSelectedSignalChanged(int new_i);
    /// The operator chose the matrix with this number from 1.
    void onSelectSliderChanged(int new_val);
    void onSelectSpBxChanged(int new_val);
    /// Shows the chosen file of colours, which isn't read: the built-in table stays in use.
    void onBrowseLUTFile();

private:
    const std::unique_ptr<Ui::MatrixPlotterDlg> ui_;
    OpenChooser chooser_;
};
