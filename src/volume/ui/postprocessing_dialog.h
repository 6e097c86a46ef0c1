// The dialog in which the operator chooses how a finished run is post-processed.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "volume/fmr_project.h"
#include "volume/postprocessing_options.h"

#include <QDialog>

class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QRadioButton;

/// Collects the options and shows the names that the result will bear; it changes nothing itself.
/// What can't be carried out is named when "OK" is pressed, and the dialog stays.
class PostprocessingDlg : public QDialog {
    Q_OBJECT

public:
    /// What the dialog shows of the run is copied: the project may go while the dialog is open.
    PostprocessingDlg(const FMRProject& project, int nrOfMeasuredVolumes, QWidget* parent);

    /// As chosen. A text that is no number gives NaN, which accept() does not let pass.
    [[nodiscard]] PostprocessingOptions options() const;
    /// True to go on with the statistics of the changed data.
    [[nodiscard]] bool recomputeStatistics() const;

public Q_SLOTS:
    void accept() override;

private:
    /// What keeps "OK" from being carried out, and where; empty text when nothing does.
    struct Fault {
        QString text;
        QWidget* control = nullptr;
    };

    [[nodiscard]] QGroupBox* newGroup(const QString& title, const char* name,
                                      const QString& toolTip);
    [[nodiscard]] QGroupBox* createSliceScanTimeGroup();
    [[nodiscard]] QGroupBox* createSpatialGroup();
    [[nodiscard]] QGroupBox* createTemporalGroup();
    [[nodiscard]] QWidget* createResultRow();
    void setOptions(const PostprocessingOptions& options);
    void connectControls();

    [[nodiscard]] QString shown(const QString& fileName) const;
    [[nodiscard]] QString runText() const;
    [[nodiscard]] QString sliceOrderText() const;
    [[nodiscard]] bool hasEvenNumberOfSlices() const { return header_.NrOfSlices % 2 == 0; }
    [[nodiscard]] Fault findFault() const;
    [[nodiscard]] QWidget* findImpossibleStep() const;
    [[nodiscard]] QString resultText() const;
    void onChanged();

    const FMRHeader header_;
    const QString projectPath_;
    const QString targetFolder_;
    const int nrOfVolumes_;

    QGroupBox* sliceScanTime_ = nullptr;
    QRadioButton* ascending_ = nullptr;
    QRadioButton* descending_ = nullptr;
    QRadioButton* sequential_ = nullptr;
    QRadioButton* interleaved_ = nullptr;
    QRadioButton* interleaved2_ = nullptr;
    QRadioButton* linear_ = nullptr;
    QRadioButton* cubicSpline_ = nullptr;
    QRadioButton* sinc_ = nullptr;
    QLabel* sliceOrder_ = nullptr;

    QGroupBox* spatial_ = nullptr;
    QRadioButton* inSpaceDomain_ = nullptr;
    QRadioButton* inFrequencyDomain_ = nullptr;
    QRadioButton* in3D_ = nullptr;
    QRadioButton* in2D_ = nullptr;
    QLineEdit* fwhm_ = nullptr;
    QRadioButton* gaussInMm_ = nullptr;
    QRadioButton* gaussInPixels_ = nullptr;

    QGroupBox* temporal_ = nullptr;
    QCheckBox* linearTrend_ = nullptr;
    QCheckBox* highPass_ = nullptr;
    QLineEdit* highPassCycles_ = nullptr;
    QCheckBox* gaussian_ = nullptr;
    QLineEdit* gaussianWidth_ = nullptr;
    QRadioButton* gaussianInSeconds_ = nullptr;
    QRadioButton* gaussianInDataPoints_ = nullptr;

    QCheckBox* statistics_ = nullptr;
    QLabel* result_ = nullptr;
};
