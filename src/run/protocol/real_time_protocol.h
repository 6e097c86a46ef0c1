// The real-time protocol (.rtp): a header, and a line for each moment of the run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/protocol/growing_text_file.h"
#include "run/protocol/protocol_lines.h"

/// Length of a run.
struct RunLength {
    int nrOfAnalysedVolumes = 0;
    float TR = 2000.0f; ///< milliseconds
};

/// State of such a protocol besides its conditions and intervals.
struct RealTimeProtocolState {
    /// Values from this magnitude on are invalid: as weights they would swamp the model.
    static constexpr double valueLimit = 1e6;

    bool rtpHasBaseline = false;    ///< the first condition is not a predictor
    std::vector<float> rtpPrevious; ///< these three: one value for each predictor condition
    std::vector<float> rtpCurrent;  ///< of the latest line
    std::vector<float> rtpWeights;  ///< at the latest onset of each condition
    std::vector<bool> holds;        ///< for each condition: its last interval is open
    bool rtpFirstLine = true;
    bool rtpFinished = false;       ///< "SCAN END" was read
    bool rtpAllZero = true;         ///< no condition holds as of the latest line
    bool rtpPreviousAllZero = true; ///< as of the line before
    bool rewardParadigm = false;    ///< Motion, Fixation, Stimulus and Reward are all declared
    bool baselineMisplaced = false; ///< a condition after the first is not a predictor
    ProtocolContrasts contrasts;    ///< from the header
};

/// Parses the header from the text of a file, word by word; keywords are skipped, not compared.
[[nodiscard]] HeaderParsing parseRTPHeader(const QString& text, StimulationProtocol& protocol,
                                           RealTimeProtocolState& state);

/// Applies one line that is not blank. A line with too few values, or with one that is not a finite
/// number below valueLimit, has no effect at all; a value below 0 counts as 0.
[[nodiscard]] LineEffect applyRTPLine(const QString& line, const RunLength& run,
                                      StimulationProtocol& protocol, RealTimeProtocolState& state);

/// The protocol of a run with its file.
struct RealTimeProtocol {
    RealTimeProtocolState state;
    GrowingTextFile lines;
    LineMessages messages;
};

/// Reads the header and leaves the file open. False after a message.
[[nodiscard]] bool readRTPFile(const QString& path, StimulationProtocol& protocol,
                               RealTimeProtocol& realTime);

/// Applies the next line if it is complete; closes the file at "SCAN END".
ProtocolUpdate readRTPUpdate(const RunLength& run, StimulationProtocol& protocol,
                             RealTimeProtocol& realTime);
