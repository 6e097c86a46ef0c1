// The dynamics of a simulated run: protocol, responses, drift, pulsation, motion.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "head_phantom.h"

#include <QString>
#include <vector>

struct ProtocolInterval {
    int from; ///< analysed volumes from 1, both inclusive
    int to;
};

struct SimulatedCondition {
    QString name;
    int color[3]; ///< red, green, blue
    std::vector<ProtocolInterval> intervals;
};

/// In seconds from the start of the first analysed volume.
struct StimulusTime {
    double start;
    double end;
};

[[nodiscard]] std::vector<StimulusTime> timesOf(const SimulatedCondition& condition,
                                                int repetitionTime);

/// Conditions in protocol order, the baseline first: blocks of equal length, with one of baseline
/// before each block of a condition, to the end of the run.
[[nodiscard]] std::vector<SimulatedCondition> blockProtocol(const SimulationOptions& options);

/// Step response: to a stimulus that starts at time 0 and never ends; it converges to 1.
///
/// The impulse response is the difference of two gamma densities with scale 1 s and shapes 6 and
/// 16, the second divided by 6 (Friston et al., NeuroImage 7, 1998). For whole shapes the integral
/// of a gamma density is the closed form of the Erlang distribution.
[[nodiscard]] double stepResponse(double seconds);

/// Voxels that respond alike. Faces and Houses have a region each. Mental tasks have six: one for
/// each task, which answers to the other two by a fifth, and one for each that answers to it alone.
struct RespondingRegion {
    QString name;
    std::vector<double> weights; ///< by stimulus: its share of the full response
};

/// Factors at one moment of a run, in seconds from the start of the measurement.
class SimulatedDynamics {
public:
    explicit SimulatedDynamics(const SimulationOptions& options);
    /// Response of a region, from 0: 0 at rest and about 1 at the end of a long block.
    [[nodiscard]] double response(size_t region, double seconds) const;
    /// Drift as a fraction of the signal: a trend and one slow wave.
    [[nodiscard]] double drift(double seconds) const;
    /// Heart beat and breathing as a fraction of the signal where they are strongest.
    [[nodiscard]] double pulsation(double seconds) const;
    /// Brightness before the steady state; exactly 1 from the first analysed volume on.
    [[nodiscard]] double saturation(int volume) const;
    /// Where the head is; at rest until the first analysed volume is measured.
    [[nodiscard]] HeadPose pose(int volume) const;
    [[nodiscard]] const std::vector<SimulatedCondition>& conditions() const { return conditions_; }
    [[nodiscard]] const std::vector<RespondingRegion>& regions() const { return regions_; }

private:
    [[nodiscard]] double responseTo(const std::vector<StimulusTime>& times, double seconds) const;
    [[nodiscard]] HeadPose driftPose(int volume) const;
    [[nodiscard]] HeadPose jumpPose(int volume) const;

    SimulationOptions options_;
    std::vector<SimulatedCondition> conditions_;
    std::vector<RespondingRegion> regions_;
    std::vector<std::vector<StimulusTime>> stimuli_; ///< conditions behind the baseline, or tasks
    double secondsPerVolume_;
    double heartPhase_;
    double breathPhase_;
};
