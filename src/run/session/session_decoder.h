// The operator's work with the letter decoder, and what a run does for it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/decoder_files.h"
#include "decoder/empirical_responses.h"
#include "decoder/letter_decoder.h"
#include "run/loop/run_listeners.h"

#include <QImage>
#include <QString>

class SessionPhase;
struct RunReport;
struct RunSettings;

/// What shows the decoder: its window.
class DecoderScreen {
public:
    virtual ~DecoderScreen() = default;
    virtual void log(const QString& text) = 0;
    /// Curves, letters, choices or what is possible may have changed.
    virtual void refresh() = 0;
    /// As it is shown, for the files of the feedback folder: the letters, and the whole window.
    [[nodiscard]] virtual QImage letterDisplay() = 0;
    [[nodiscard]] virtual QImage windowPicture() = 0;
};

/// What the operator prepares: settings, and the files with references and, offline, the data.
struct DecoderPreparation {
    DecoderSettings settings = defaultDecoderSettings(); ///< weights as entered, not yet scaled
    QString referencesPath = idealResponsesFileName; ///< without a folder: the one of the program
    bool offline = false;
    QString dataPath; ///< offline: the curves
};

/// A member of the session. While its window is open it takes the step of each volume, decodes the
/// letter that is due, and writes log, letters and pictures. Offline it decodes a file of curves.
class SessionDecoder : public RunListener {
public:
    struct Parts {
        const RunSettings& settings;
        const SessionPhase& phase;
        RunReport& report;
        RunListeners& listeners;
    };

    explicit SessionDecoder(const Parts& parts);

    /// The window opens; it isn't owned and must call close().
    void open(DecoderScreen& screen);
    void close();
    [[nodiscard]] bool isOpen() const { return screen_ != nullptr; }

    /// As the preparation dialog begins: expected time points are those of the run.
    [[nodiscard]] DecoderPreparation preparation() const;
    /// Loads references and data, scales the weights, writes ScaledTaskVOIWeights.txt. False, after
    /// a message and without any data, when something can't be loaded.
    bool prepare(const DecoderPreparation& preparation);
    /// "Reload ROI Data": the offline curves anew, from the first letter.
    bool reloadROIDataForOfflineAnalysis();

    void useOnlyCorrForComparisonWithIdealResponses();
    void useCorrForShapeAndBetaForTaskSelection();
    void changeABCDMode(bool on);
    /// Why another letter can't be gone to now; empty when it can.
    [[nodiscard]] QString letterHindrance() const;
    void goToNextLetter();
    void goToPreviousLetter();
    /// Offline: one volume more, as the timer has it. False at the end of the data.
    bool nextTR();

    [[nodiscard]] const LetterDecoder& decoder() const { return decoder_; }
    /// What is decoded: of the run so far, or of the file.
    [[nodiscard]] const ROICurves& curves() const { return curves_; }
    [[nodiscard]] const ReferenceCurves& references() const { return references_; }

    /// Makes reference responses from the run in memory, or from a file of curves and a protocol,
    /// and writes them. False after a message.
    bool createEmpiricalResponses(const EmpiricalOptions& options, const QString& path);
    bool createEmpiricalResponses(const EmpiricalOptions& options, const QString& curvesPath,
                                  const QString& protocolPath, const QString& path);

    void settingsFileChanged() override;
    void documentsLeaving() override;
    void documentsArrived(QtCortivoDoc& functional) override;
    void runPrepared(QtCortivoDoc& functional) override;
    [[nodiscard]] bool atStep(VolumeStep step, const VolumeAtHand& hand) override;
    void loopEnded(QtCortivoDoc& document) override;

private:
    void takeCurves(const QtCortivoDoc& document, int volume);
    void take(const std::optional<LetterDecoding>& decoding);
    void writeLog(const LetterDecoding& decoding);
    void savePicture(const LetterDecoding& decoding);

    Parts parts_;
    DecoderScreen* screen_ = nullptr;
    QtCortivoDoc* document_ = nullptr;
    DecoderPreparation preparation_;
    LetterDecoder decoder_;
    ReferenceCurves references_;
    ROICurves curves_;
    int nrOfOfflinePoints_ = 0;
};
