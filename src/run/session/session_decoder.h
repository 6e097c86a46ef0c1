// The operator's work with the letter decoder, and what a run does for it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "decoder/letter_decoder.h"
#include "run/loop/run_listeners.h"
#include "run/session/decoded_run.h"
#include "run/session/decoder_output.h"
#include "run/session/decoder_preparation.h"
#include "run/session/decoder_records.h"

class SessionPhase;

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

/// A member of the session. While its window is open it takes the step of each volume, decodes the
/// letter that is due, and writes log, letters and pictures. Offline it decodes a file of curves; a
/// run that is measured beside it produces nothing, not even pictures of the letter display: a
/// program that polls for them would receive the letters of the file.
///
/// Letters that became due while the window was closed, or while the run had too few regions, are
/// decoded at the next volume, without pictures. What volumes gave that are played in a recovery,
/// log and pictures, is not given again. The preparation stays for further runs; a recovery takes
/// that with which the run was measured.
class SessionDecoder : public RunListener {
public:
    struct Parts {
        const RunSettings& settings;
        const SessionPhase& phase;
        const RunReport& report;
        RunListeners& listeners;
    };

    explicit SessionDecoder(const Parts& parts);

    /// The window opens; it isn't owned and must call close().
    void open(DecoderScreen& screen);
    void close();
    [[nodiscard]] bool isOpen() const { return screen_ != nullptr; }

    /// As the preparation dialog begins: expected time points are those of the run, unless the
    /// decoder works offline.
    [[nodiscard]] DecoderPreparation preparation() const;
    /// What the run has: its ROIs, all that can be decoded before any are known, and its volumes.
    [[nodiscard]] CurvesSize sizeOfRun() const { return run_.size(); }
    /// Where the sample message belongs.
    void setSampleFolder(const QString& folder) { sampleFolder_ = folder; }
    /// The file of the sample message, as sampleMessagePath() has it.
    [[nodiscard]] QString samplePath() const;
    /// Whether it is what is decoded.
    [[nodiscard]] bool isSample() const;
    /// Loads references and data, scales the weights, writes ScaledTaskVOIWeights.txt, and begins
    /// with the first letter. False, after a message and without any data, when something can't be
    /// loaded or doesn't fit the settings. A run that is longer or shorter than the one that it was
    /// prepared for is expected to have its own number of volumes. Of data inside the program
    /// nothing is written, after a message.
    bool prepare(const DecoderPreparation& preparation);
    /// "Reload ROI Data": the offline curves anew, from the first letter. False like prepare(), and
    /// unless it works offline.
    bool reloadROIDataForOfflineAnalysis();

    void useOnlyCorrForComparisonWithIdealResponses();
    void useCorrForShapeAndBetaForTaskSelection();
    void changeABCDMode(bool on);
    /// Why another letter can't be gone to now; empty when it can. Going to one does nothing then.
    [[nodiscard]] QString letterHindrance() const;
    /// What keeps any letter from being decoded, also during a run; empty when nothing does.
    [[nodiscard]] QString dataHindrance() const;
    /// Why the timer has no volumes to take; empty when it has: offline those of the file that are
    /// left; as long as nobody has tried to prepare anything and no run is in memory, those of the
    /// sample message.
    [[nodiscard]] QString playHindrance() const;
    [[nodiscard]] bool mayPlay() const { return playHindrance().isEmpty(); }
    /// Why there is nothing to reload; empty when there is.
    [[nodiscard]] QString reloadHindrance() const;
    void goToNextLetter();
    void goToPreviousLetter();
    /// The current letter once more, whose result is appended again.
    void processCurrentLetterWindow();
    /// The timer begins: prepares the sample message, with default settings, where it is what will
    /// be played. False where nothing can be played, after a message if the sample is at fault.
    [[nodiscard]] bool beginPlaying();
    /// Offline: one volume more, as the timer has it. False at the end of the data, without data,
    /// and while a run is prepared or recorded.
    bool nextTR();

    [[nodiscard]] const LetterDecoder& decoder() const { return decoder_; }
    /// What is decoded: of the run so far, or of the file.
    [[nodiscard]] const ROICurves& curves() const { return curves_; }
    [[nodiscard]] bool isOffline() const { return sources_.offline; }
    /// What could not be written, for the operator; empty when all is well.
    [[nodiscard]] QString fault() const { return output_.fault(); }

    /// A free name for reference responses in the target folder, or before that is known beside
    /// these data; empty without either.
    [[nodiscard]] QString proposedResponsesPath(const QString& dataPath = {}) const;
    /// Why reference responses can't be made from the run in memory now; empty when they can.
    [[nodiscard]] QString responsesHindrance() const;
    /// Makes reference responses from the run in memory, or from a file of curves and a protocol in
    /// volumes, writes them, and logs where. False after a message.
    bool createEmpiricalResponses(const EmpiricalOptions& options, const QString& path);
    bool createEmpiricalResponses(const EmpiricalOptions& options, const QString& curvesPath,
                                  const QString& protocolPath, const QString& path);

    void settingsFileChanged() override;
    void documentsLeaving() override;
    void documentsArrived(QtCortivoDoc& functional) override;
    void runPrepared(QtCortivoDoc& functional) override;
    void regionsChanged(QtCortivoDoc& functional) override;
    [[nodiscard]] bool atStep(VolumeStep step, const VolumeAtHand& hand) override;
    void loopEnded(QtCortivoDoc& document) override;
    void recordPlayed(const RunRecord& record) override;

private:
    [[nodiscard]] DecoderPlace place() const;
    [[nodiscard]] bool offersSample() const;
    [[nodiscard]] QString fileHindrance() const;
    [[nodiscard]] bool isPrepared() const { return !decoder_.references()[0].empty(); }
    void logPrepared();
    void restart(int nrOfTimePoints);
    void changeScores(bool useCorr, bool useBeta);
    [[nodiscard]] RecordedDecoder recordedPreparation() const;
    void recordPreparation();
    void refresh();
    void log(const QString& text);

    void takeCurves(int volume);
    void takeMeasuredCurves();
    std::optional<int> takeVolumes(const VolumeAtHand& hand);
    std::optional<int> decodeCurrentLetter(bool played);
    void showLetter(std::optional<int> letter);
    bool createResponses(const EmpiricalOptions& options, const TrainingRun& run,
                         const QString& path);

    Parts parts_;
    DecoderScreen* screen_ = nullptr;
    DecodedRun run_;
    DecoderSources sources_;
    TaskWeights enteredWeights_ =
        defaultTaskWeights(); ///< of which the decoder has the scaled ones
    LetterDecoder decoder_;   ///< has the settings; references only where it is prepared
    QString referencesFrom_;  ///< the file that they were read from, or could not be
    ROICurves curves_;
    bool preparationTried_ = false;
    QString sampleFolder_;
    int preparedPoints_ = 0; ///< volumes of the run that it was prepared for
    int lastPlayed_ = -1;    ///< volume
    bool preparationPlayed_ =
        false; ///< one was played for this run, whether it could be used or not
    DecoderOutput output_;
};
