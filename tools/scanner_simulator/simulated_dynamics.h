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

/// Conditions in protocol order, the baseline first: blocks of equal length, with one of baseline
/// before each block of a condition, to the end of the run.
[[nodiscard]] std::vector<SimulatedCondition> blockProtocol(const SimulationOptions& options);

/// Step response: to a stimulus that starts at time 0 and never ends; it converges to 1.
///
/// The impulse response is the difference of two gamma densities with scale 1 s and shapes 6 and
/// 16, the second divided by 6 (Friston et al., NeuroImage 7, 1998). For whole shapes the integral
/// of a gamma density is the closed form of the Erlang distribution.
[[nodiscard]] double stepResponse(double seconds);

/// Factors at one moment of a run, in seconds from the start of the measurement.
class SimulatedDynamics {
public:
    explicit SimulatedDynamics(const SimulationOptions& options);
    /// Response of a condition, 0 at rest and about 1 at the end of a long block.
    [[nodiscard]] double response(int condition, double seconds) const;
    /// Drift as a fraction of the signal: a trend and one slow wave.
    [[nodiscard]] double drift(double seconds) const;
    /// Heart beat and breathing as a fraction of the signal where they are strongest.
    [[nodiscard]] double pulsation(double seconds) const;
    /// Brightness before the steady state; exactly 1 from the first analysed volume on.
    [[nodiscard]] double saturation(int volume) const;
    /// Where the head is; at rest until the first analysed volume is measured.
    [[nodiscard]] HeadPose pose(int volume) const;
    [[nodiscard]] const std::vector<SimulatedCondition>& conditions() const { return conditions_; }

private:
    [[nodiscard]] HeadPose driftPose(int volume) const;
    [[nodiscard]] HeadPose jumpPose(int volume) const;

    SimulationOptions options_;
    std::vector<SimulatedCondition> conditions_;
    double secondsPerVolume_;
    double heartPhase_;
    double breathPhase_;
};
