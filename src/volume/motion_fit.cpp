// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/motion_fit.h"

#include "stats/numerics/linear_systems.h"

#include <algorithm>

namespace {

constexpr int maximumSteps = 11;
constexpr int minimumSteps = 3;
constexpr double smallestImprovement = 0.0001; // of the mean squared difference
constexpr double setUp = -1.0;
constexpr double finish = 0.0;

/// The solver and its state between steps.
class MotionSolver {
public:
    MotionSolver(const MotionEvaluation& evaluate, const MotionParameters& start, bool& failed)
        : parameters(start), evaluate_(evaluate), failed_(failed) {}

    /// Takes one step. A negative damping initialises the solver first; a damping of 0 ends the fit
    /// without another evaluation; otherwise the damping follows the success of the step. Does
    /// nothing once the fit has failed.
    void levenbergMarquardtStep(double& damping);

    MotionParameters parameters;
    double sumOfSquares = 0.0; ///< at the parameters
    int voxelsUsed = 0;        ///< by the evaluation of the last step

private:
    [[nodiscard]] bool hasCurvature() const;
    [[nodiscard]] bool solve(double damping, MotionParameters& change) const;
    void giveUp() {
        failed_ = true;
        parameters = {};
    }

    const MotionEvaluation& evaluate_;
    bool& failed_;
    MotionEquations best_;
};

bool MotionSolver::hasCurvature() const {
    return std::ranges::any_of(best_.curvature, [](double value) { return value != 0.0; });
}

/// False when the data do not determine some motion.
bool MotionSolver::solve(double damping, MotionParameters& change) const {
    auto curvature = best_.curvature;
    for (size_t i = 0; i < nrOfMotionParameters; ++i)
        curvature[i * nrOfMotionParameters + i] *= 1.0 + damping;
    change = best_.gradient;
    return numerics::eliminateGaussJordan(curvature, int(nrOfMotionParameters), change, 1) ==
           numerics::Elimination::Done;
}

void MotionSolver::levenbergMarquardtStep(double& damping) {
    voxelsUsed = 0;
    if (failed_)
        return;
    if (damping < 0.0) {
        damping = 0.001;
        evaluate_(transformationOf(parameters), best_);
        sumOfSquares = best_.sumOfSquares;
        voxelsUsed = best_.voxelsUsed;
    }
    if (!hasCurvature()) {
        giveUp();
        return;
    }
    // The covariance is not needed: where only the damping made the equations solvable, it doesn't
    // exist, though the parameters are valid.
    if (damping == finish)
        return;
    MotionParameters change;
    if (!solve(damping, change)) {
        giveUp();
        return;
    }
    MotionParameters trial = parameters;
    for (size_t i = 0; i < nrOfMotionParameters; ++i)
        trial[i] += change[i];
    MotionEquations equations;
    evaluate_(transformationOf(trial), equations);
    voxelsUsed = equations.voxelsUsed;
    if (equations.sumOfSquares < best_.sumOfSquares) {
        damping = std::max(damping * 0.1, 1e-20);
        parameters = trial;
        best_ = equations;
    } else {
        damping = std::min(damping * 10.0, 1e18);
    }
    sumOfSquares = best_.sumOfSquares;
}

} // namespace

RigidTransformation transformationOf(const MotionParameters& p) {
    return {float(p[0]), float(p[1]), float(p[2]), float(p[3]), float(p[4]), float(p[5])};
}

MotionFit fitMotion(const MotionEvaluation& evaluate, const MotionParameters& start,
                    bool& motionCorrectionFailed) {
    MotionSolver solver(evaluate, start, motionCorrectionFailed);
    double damping = setUp;
    double previousError = 0.0;
    int steps = 0;
    for (;;) {
        solver.levenbergMarquardtStep(damping);
        ++steps;
        const double error =
            solver.voxelsUsed > 0 ? solver.sumOfSquares / solver.voxelsUsed : previousError;
        // A rising error counts as movement too.
        const bool moving = previousError < error || previousError - error >= smallestImprovement ||
                            steps < minimumSteps;
        if (!moving || error == 0.0 || steps >= maximumSteps)
            break;
        previousError = error;
    }
    damping = finish;
    solver.levenbergMarquardtStep(damping);
    return {transformationOf(solver.parameters), steps};
}
