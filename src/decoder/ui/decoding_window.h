// The window of the letter decoder.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/ui/decoding_plots.h"
#include "run/session/session_decoder.h"

#include <QHash>
#include <QMainWindow>
#include <QTimer>
#include <memory>

class QCheckBox;
class ReferencePlot;
class RunSession;

namespace Ui {
class BOLDDecodingMW;
}

/// Shows what the session's decoder finds: the curves of the latest letter, its scores with the
/// nine references, the letters and the log. The decoder works while this window is shown.
class BOLDDecodingMW : public QMainWindow, public DecoderScreen {
    Q_OBJECT

public:
    BOLDDecodingMW(SessionDecoder& decoder, QWidget* parent);
    ~BOLDDecodingMW() override;

    void log(const QString& text) override;
    void refresh() override;
    [[nodiscard]] QImage letterDisplay() override;
    [[nodiscard]] QImage windowPicture() override;

public Q_SLOTS:
    void callSettingsDlg();
    void createEmpiricalIdealResponsesFileFromVCO();
    void createEmpiricalIdealResponsesFileFromRTC();
    void showAllCurvesInDataPlot() { showInDataPlot(0b111111); }
    void showTaskCurvesInDataPlot() { showInDataPlot(0b000111); }
    void showSMACurvesInDataPlot() { showInDataPlot(0b111000); }
    void showTaskAndSMA1InDataPlot() { showInDataPlot(0b001001); }
    void showTaskAndSMA2InDataPlot() { showInDataPlot(0b010010); }
    void showTaskAndSMA3InDataPlot() { showInDataPlot(0b100100); }
    /// Shows or hides the choice of the single curves.
    void manageDataCurves();
    /// The slope of a curve on a reference; both have `nrOfPoints` values.
    void fitGLMForLetter(int nrOfPoints, float* curve, float* reference, float& slope);
    /// Starts the timer that takes the volumes of a file, or stops it.
    void runWithTimer();
    void processCurrentLetterWindow() { decoder_.processCurrentLetterWindow(); }
    void goToNextLetter() { decoder_.goToNextLetter(); }
    void goToPreviousLetter() { decoder_.goToPreviousLetter(); }
    void nextTR();
    void slotPreparationMenuAboutToShow();
    void useOnlyCorrForComparisonWithIdealResponses();
    void useCorrForShapeAndBetaForTaskSelection();
    void reloadROIDataForOfflineAnalysis();
    void checkABCDMode();

protected:
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void connectActions();
    void connectCurveActions();
    void showInDataPlot(ShownROIs shown);
    void refreshActions();
    /// Empty: the action is possible, and has its own tool tip.
    void setHindrance(QAction& action, const QString& hindrance);
    void refreshPlots();
    void refreshReferences();
    void refreshLetters();

    SessionDecoder& decoder_;
    const std::unique_ptr<Ui::BOLDDecodingMW> ui_;
    std::array<QCheckBox*, nrOfDecoderROIs> dataCurves_;
    std::array<ReferencePlot*, LetterCode::nrOfReferences> references_;
    QHash<const QAction*, QString> toolTips_; ///< of actions that are possible
    ShownROIs shown_ = 0b111111;
    QTimer timer_{this};
};

/// Shows the window, as a child of the main one, or raises it.
void openBOLDDecoder(RunSession& session, QWidget& window);
