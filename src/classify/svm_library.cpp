// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/svm_library.h"

#include "base/file_writing.h"
#include "base/memory.h"

#include <QFile>
#include <QTemporaryDir>
#include <cstdlib>
#include <mutex>
#include <new>
#include <numeric>
#include <svm.h>

namespace {

/// Thrown out of libsvm's output function, the only place at which it can be left early. libsvm
/// then loses the few arrays of its solver, some kilobytes.
struct StopRequested {};

/// libsvm deals its folds with the C library's random numbers, of which the process has one
/// sequence. One thread at a time may deal; it is done when its first training begins to print.
std::mutex dealing;

/// What the thread that calls libsvm wants done with its output.
struct Output {
    std::string* printed;
    const std::stop_token& stop;
    std::unique_lock<std::mutex>* deal = nullptr;
};
thread_local Output* outputOfThread = nullptr;

void takeOutput(const char* text) {
    if (!outputOfThread)
        return;
    if (outputOfThread->deal && outputOfThread->deal->owns_lock())
        outputOfThread->deal->unlock();
    outputOfThread->printed->append(text);
    if (outputOfThread->stop.stop_requested())
        throw StopRequested();
}

svm_parameter parameters(const SVMOptions& options, int nrOfFeatures) {
    svm_parameter result{};
    result.svm_type = C_SVC;
    result.kernel_type = int(options.kernel);
    result.degree = options.degree;
    result.gamma = options.gamma == 0.0 && nrOfFeatures > 0 ? 1.0 / nrOfFeatures : options.gamma;
    result.coef0 = 0.0;
    result.cache_size = 100.0;
    result.eps = 0.001;
    result.C = options.C;
    result.nu = 0.5;
    result.p = 0.1;
    result.shrinking = 1;
    result.probability = 0;
    return result;
}

void fillNodes(std::span<const double> features, svm_node* nodes) {
    for (size_t i = 0; i < features.size(); ++i)
        nodes[i] = {int(i) + 1, features[i]};
    nodes[features.size()] = {-1, 0.0};
}

/// The patterns as libsvm takes them. A trained model points into it.
struct Problem {
    explicit Problem(const PatternSet& patterns) : labels(patterns.labels) {
        const size_t length = size_t(patterns.nrOfFeatures) + 1;
        if (!memoryIsAvailable(length * labels.size(), sizeof(svm_node)))
            throw std::bad_alloc();
        nodes.resize(length * labels.size());
        for (size_t i = 0; i < labels.size(); ++i) {
            exemplars.push_back(nodes.data() + i * length);
            fillNodes(patterns.features(int(i)), exemplars.back());
        }
        problem = {int(labels.size()), labels.data(), exemplars.data()};
    }
    std::vector<double> labels;
    std::vector<svm_node> nodes;
    std::vector<svm_node*> exemplars;
    svm_problem problem;
};

int highestIndex(const svm_model& model) {
    int highest = 0;
    for (int i = 0; i < model.l; ++i)
        for (const svm_node* node = model.SV[i]; node->index != -1; ++node)
            highest = std::max(highest, node->index);
    return highest;
}

struct ModelDeleter {
    void operator()(svm_model* model) const { svm_free_and_destroy_model(&model); }
};

} // namespace

struct SVMModel::Parts {
    std::unique_ptr<Problem> problem; ///< of a trained model; null for a loaded one
    std::unique_ptr<svm_model, ModelDeleter> model;
    int nrOfFeatures = 0;
};

SVMModel::SVMModel() = default;
SVMModel::~SVMModel() = default;
SVMModel::SVMModel(SVMModel&&) noexcept = default;
SVMModel& SVMModel::operator=(SVMModel&&) noexcept = default;

int SVMModel::nrOfClasses() const {
    return parts_ ? svm_get_nr_class(parts_->model.get()) : 0;
}

int SVMModel::nrOfFeatures() const {
    return parts_ ? parts_->nrOfFeatures : 0;
}

std::vector<int> SVMModel::labels() const {
    const int* labels = parts_ ? parts_->model->label : nullptr;
    return labels ? std::vector<int>(labels, labels + nrOfClasses()) : std::vector<int>();
}

std::vector<double> SVMModel::rho() const {
    const int classes = nrOfClasses();
    return parts_ ? std::vector<double>(parts_->model->rho,
                                        parts_->model->rho + classes * (classes - 1) / 2)
                  : std::vector<double>();
}

std::vector<int> SVMModel::supportVectorsOfClasses() const {
    const int* counts = parts_ ? parts_->model->nSV : nullptr;
    return counts ? std::vector<int>(counts, counts + nrOfClasses()) : std::vector<int>();
}

double SVMModel::coefficient(int row, int supportVector) const {
    return parts_->model->sv_coef[row][supportVector];
}

void SVMModel::addSupportVector(int supportVector, double factor, std::span<double> sum) const {
    for (const svm_node* node = parts_->model->SV[supportVector]; node->index != -1; ++node)
        if (node->index >= 1 && size_t(node->index) <= sum.size())
            sum[size_t(node->index) - 1] += factor * node->value;
}

std::vector<double> SVMModel::decisionValues(std::span<const double> features) const {
    std::vector<svm_node> nodes(features.size() + 1);
    fillNodes(features, nodes.data());
    std::vector<double> values(rho().size());
    svm_predict_values(parts_->model.get(), nodes.data(), values.data());
    return values;
}

// libsvm writes into the file that it is given, so that it gets one of its own first.
bool SVMModel::save(const QString& path) const {
    const QTemporaryDir folder;
    const QString written = folder.filePath("model.svm");
    if (!parts_ || !folder.isValid() ||
        svm_save_model(QFile::encodeName(written).constData(), parts_->model.get()) != 0)
        return false;
    QFile file(written);
    return file.open(QIODevice::ReadOnly) && writeFileAtomically(path, file.readAll());
}

bool SVMModel::load(const QString& path) {
    auto parts = std::make_unique<Parts>();
    parts->model.reset(svm_load_model(QFile::encodeName(path).constData()));
    if (!parts->model)
        return false;
    parts->nrOfFeatures = highestIndex(*parts->model);
    parts_ = std::move(parts);
    return true;
}

SVMResult SVMTrainer::run(const std::function<void()>& work) {
    static const bool installed = (svm_set_print_string_function(takeOutput), true);
    static_cast<void>(installed);
    Output output{&printed_, stop_};
    outputOfThread = &output;
    SVMResult result = SVMResult::Done;
    try {
        work();
    } catch (const StopRequested&) {
        result = SVMResult::Stopped;
    } catch (const std::bad_alloc&) {
        result = SVMResult::OutOfMemory;
    }
    outputOfThread = nullptr;
    if (printed_.find("#iter = 10000000\n") != std::string::npos)
        printed_ +=
            "\nWARNING: libsvm gave up after 10000000 iterations; a smaller C or scaled features "
            "may help\n";
    return result;
}

SVMResult SVMTrainer::train(const PatternSet& patterns, const SVMOptions& options,
                            SVMModel& model) {
    return run([&] {
        auto parts = std::make_unique<SVMModel::Parts>();
        parts->problem = std::make_unique<Problem>(patterns);
        const svm_parameter parameter = parameters(options, patterns.nrOfFeatures);
        parts->model.reset(svm_train(&parts->problem->problem, &parameter));
        parts->nrOfFeatures = patterns.nrOfFeatures;
        model.parts_ = std::move(parts);
    });
}

SVMResult SVMTrainer::crossValidate(const PatternSet& patterns, const SVMOptions& options,
                                    int nrOfFolds, unsigned seed,
                                    std::vector<double>& predictedLabels) {
    return run([&] {
        const Problem problem(patterns);
        const svm_parameter parameter = parameters(options, patterns.nrOfFeatures);
        std::vector<double> predicted(patterns.labels.size());
        std::unique_lock deal(dealing);
        outputOfThread->deal = &deal;
        std::srand(seed);
        svm_cross_validation(&problem.problem, &parameter, nrOfFolds, predicted.data());
        predictedLabels = std::move(predicted);
    });
}
