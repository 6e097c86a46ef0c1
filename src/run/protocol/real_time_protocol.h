// The real-time protocol (.rtp): a header, and a line for each moment of the run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/protocol/arriving_lines.h"
#include "run/protocol/protocol_contrasts.h"
#include "run/protocol/protocol_lines.h"

/// How far a run goes.
struct RunLength {
    int nrOfAnalysedVolumes = 0;
    float TR = 2000.0f; ///< milliseconds
};

/// What is known of such a protocol beside its conditions and intervals.
struct RealTimeProtocolState {
    /// Values of these magnitudes and above are none: as weights they would drown the model.
    static constexpr double valueLimit = 1e6;

    bool rtpHasBaseline = false;    ///< the first condition is no predictor
    std::vector<float> rtpPrevious; ///< these three: one value for each predictor condition
    std::vector<float> rtpCurrent;  ///< of the latest line
    std::vector<float> rtpWeights;  ///< with which each condition began last
    std::vector<bool> holds;        ///< for each condition: its last interval has not ended
    bool rtpFirstLine = true;
    bool rtpFinished = false;       ///< "SCAN END" has come
    bool rtpAllZero = true;         ///< no condition holds, by the latest line
    bool rtpPreviousAllZero = true; ///< by the line before
    bool rewardParadigm = false;    ///< Motion, Fixation, Stimulus and Reward are all declared
    bool baselineMisplaced = false; ///< a condition behind the first is no predictor
    ProtocolContrasts contrasts;    ///< what the header says on contrasts
};

/// Reads the header from the text of a file, word by word; key words are skipped, not compared.
[[nodiscard]] HeaderParsing parseRTPHeader(const QString& text, StimulationProtocol& protocol,
                                           RealTimeProtocolState& state);

/// Takes one line that is not blank. A line with too few values, or with one that is no finite
/// number below valueLimit, has no effect at all; a value below 0 counts as 0.
[[nodiscard]] LineEffect takeRTPLine(const QString& line, const RunLength& run,
                                     StimulationProtocol& protocol, RealTimeProtocolState& state);

/// The protocol of a run with its file.
struct RealTimeProtocol {
    RealTimeProtocolState state;
    ArrivingLines lines;
    LineMessages messages;
};

/// Reads the header and leaves the file open. False after a message.
[[nodiscard]] bool readRTPFile(const QString& path, StimulationProtocol& protocol,
                               RealTimeProtocol& realTime);

/// Takes one line, if a whole one has come; closes the file at "SCAN END".
ProtocolUpdate readRTPUpdate(const RunLength& run, StimulationProtocol& protocol,
                             RealTimeProtocol& realTime);
