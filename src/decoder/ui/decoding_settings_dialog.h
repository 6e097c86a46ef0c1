// The dialog that prepares the decoding of letters.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/messages.h"
#include "dialogs/edit_dialog.h"
#include "run/session/session_decoder.h"

#include <memory>

class QLineEdit;

namespace Ui {
class BOLDDecodingSettingsDlg;
}

/// Edits a copy of the decoder's preparation, which OK hands over; it stays open when that fails.
class BOLDDecodingSettingsDlg : public EditDialog {
    Q_OBJECT

public:
    BOLDDecodingSettingsDlg(SessionDecoder& decoder, QWidget* parent);
    ~BOLDDecodingSettingsDlg() override;

public Q_SLOTS:
    void selectIdealResponsesRTCFile();
    /// Chooses the offline data and turns to the offline analysis.
    void selectVOITimeCoursesRTCFile();
    void loadWeights();
    void saveWeights();
    void selectOfflineRTCFile();
    /// The numbers of VOIs and time points become those of the file.
    void selectOfflineAnalysisOp();
    /// They become those of the run again.
    void selectRealTimeAnalysisOp();
    void onNrOfExtraLinesChanged(int nrOfLines);
    /// From 1.
    void onExtraLineNrChanged(int line);
    void onExtraLineAtPointChanged(double point);
    void loadDefaultSettings();
    void saveDefaultSettings();

protected:
    [[nodiscard]] bool apply() override;

private:
    void connectControls();
    void showPreparation();
    void showSettings(const DecoderSettings& settings);
    void showWeights(const TaskWeights& weights);
    void showExtraLine();
    [[nodiscard]] DecoderSettings readSettings() const;
    /// Nothing after a message when a cell has no number.
    [[nodiscard]] std::optional<TaskWeights> readWeights();
    void openWeights(const QString& path);
    void openSettings(const QString& path);
    static void writeText(const QString& path, const QByteArray& text);
    void showSize(const CurvesSize& size);
    void takeOfflineFile(const QString& path);
    void readOfflineFile();
    void refreshData();

    SessionDecoder& decoder_;
    const std::unique_ptr<Ui::BOLDDecodingSettingsDlg> ui_;
    DecoderPreparation preparation_;
    CurvesSize sizeOfRun_;   ///< as it was shown last for the real-time analysis
    bool isOffline_ = false; ///< what is chosen
    QString shownFile_;      ///< the file whose numbers are shown
    float tau_ = 0.0f;       ///< with all digits of a file, until another one is entered
    std::vector<float> extraLines_;
    OpenChooser chooser_;
};

/// Opens the dialog as a child of `window` with what is prepared now, or raises it.
void openDecodingSettingsDialog(SessionDecoder& decoder, QWidget& window);
