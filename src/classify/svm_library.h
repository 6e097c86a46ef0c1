// Training and application of support vector machines: the only place that talks to libsvm.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "classify/pattern_set.h"

#include <QString>
#include <functional>
#include <memory>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

enum class SVMKernel { Linear = 0, Polynomial = 1, RBF = 2 };

struct SVMOptions {
    SVMKernel kernel = SVMKernel::Linear;
    double C = 1.0;
    double gamma = 0.0; ///< of Polynomial and RBF; 0 stands for 1 / features
    int degree = 3;     ///< of Polynomial

    bool operator==(const SVMOptions&) const = default;
};

/// A trained machine, for two or more classes. Class slots are numbered from 0 in the order in
/// which the labels first appeared in the training patterns, but libsvm puts 1 before -1 where
/// these are the two labels; older files may have them the other way round. Pairs of slots come in
/// the order (0, 1), (0, 2), ..., (1, 2), ...
class SVMModel {
public:
    SVMModel();
    ~SVMModel();
    SVMModel(SVMModel&&) noexcept;
    SVMModel& operator=(SVMModel&&) noexcept;

    [[nodiscard]] bool isEmpty() const { return parts_ == nullptr; }
    [[nodiscard]] int nrOfClasses() const;
    /// The highest index of a support vector.
    [[nodiscard]] int nrOfFeatures() const;
    [[nodiscard]] std::vector<int> labels() const; ///< by class slot
    [[nodiscard]] std::vector<double> rho() const; ///< by pair
    /// Support vectors stand class slot after class slot.
    [[nodiscard]] std::vector<int> supportVectorsOfClasses() const;
    /// Coefficient of a support vector, `row` from 0 to nrOfClasses() - 2.
    [[nodiscard]] double coefficient(int row, int supportVector) const;
    /// Adds factor times the support vector to `sum`, which has nrOfFeatures() entries.
    void addSupportVector(int supportVector, double factor, std::span<double> sum) const;
    /// Decision values of all pairs for a pattern of nrOfFeatures() features.
    [[nodiscard]] std::vector<double> decisionValues(std::span<const double> features) const;

    /// Writes libsvm's own format, as a whole or not at all.
    [[nodiscard]] bool save(const QString& path) const;
    /// Reads a file of that format, which was checked before (svm_model_file.h). False, with the
    /// model unchanged, when libsvm does not take it.
    [[nodiscard]] bool load(const QString& path);

private:
    friend class SVMTrainer;
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

enum class SVMResult { Done, Stopped, OutOfMemory };

/// A piece of work for libsvm. What it prints is collected here and goes nowhere else, but for one
/// line: where its solver gives up after ten million iterations, libsvm itself says so on the
/// standard error output, and a warning is collected here. Several may work at the same time, each
/// on its own thread.
class SVMTrainer {
public:
    /// The work ends early, within a thousand iterations, once `stop` asks for it.
    explicit SVMTrainer(std::stop_token stop = {}) : stop_(std::move(stop)) {}

    /// The patterns are finite and have at least one exemplar and one feature.
    [[nodiscard]] SVMResult train(const PatternSet& patterns, const SVMOptions& options,
                                  SVMModel& model);
    /// The label that each exemplar gets from a machine that was trained without its fold. The
    /// folds are libsvm's: of equal class sizes, dealt at random; the same seed gives the same
    /// folds. 2 to count() folds.
    [[nodiscard]] SVMResult crossValidate(const PatternSet& patterns, const SVMOptions& options,
                                          int nrOfFolds, unsigned seed,
                                          std::vector<double>& predictedLabels);
    [[nodiscard]] const std::string& printed() const { return printed_; }

private:
    [[nodiscard]] SVMResult run(const std::function<void()>& work);

    std::stop_token stop_;
    std::string printed_;
};
