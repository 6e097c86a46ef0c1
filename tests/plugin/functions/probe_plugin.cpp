// Calls every function of the interface from another library and writes down the answers, one line
// for each call: name(arguments)=answer.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "probe_functions.h"

#include <climits>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr int unwritten = -77;
const int times[] = {INT_MIN, -1, 0, 1, 11, 12, 39, 40, INT_MAX};
const int few[] = {INT_MIN, -1, 0, 1, 2, 3, 4, 5, INT_MAX}; ///< predictors, contrasts, ROIs
const std::vector<std::vector<int>> voxels = {
    {0, 0, 1},  {7, 7, 2},       {3, 4, 1},       {0, 0, 0},      {7, 7, 3},
    {8, 0, 0},  {0, 8, 0},       {0, 0, 4},       {-1, 0, 1},     {0, -1, 1},
    {0, 0, -1}, {INT_MAX, 0, 1}, {0, INT_MIN, 1}, {0, 1, INT_MAX}};

class Answers {
public:
    const char* finish() {
        text_ = lines_.str();
        lines_.str("");
        return text_.c_str();
    }
    void note(const char* name, const std::vector<double>& arguments, double answer) {
        lines_ << name << '(';
        for (size_t i = 0; i < arguments.size(); ++i)
            lines_ << (i ? "," : "") << long(arguments[i]);
        lines_.precision(17);
        lines_ << ")=" << answer << '\n';
    }
    void note(const char* name, const char* answer) { lines_ << name << "()=" << answer << '\n'; }

    template<typename Result, typename... Arguments>
    void ask(const char* name, Result (*function)(Arguments...), Arguments... arguments) {
        note(name, {double(arguments)...}, double(function(arguments...)));
    }
    void askText(const char* name, void (*function)(char*)) {
        std::string text(veloCortivoTextSize, '#');
        function(&text[0]);
        note(name, text.c_str());
        function(nullptr);
    }

private:
    std::ostringstream lines_;
    std::string text_;
};

Answers answers;

#define ASK(function) answers.ask(#function, function)
#define ASK_AT(function, ...) answers.ask(#function, function, __VA_ARGS__)

void askTexts() {
    answers.askText("tGetVCOPath", tGetVCOPath);
    answers.askText("tGetPluginsPath", tGetPluginsPath);
    answers.askText("tGetProjectName", tGetProjectName);
    answers.askText("tGetWatchFolder", tGetWatchFolder);
    answers.askText("tGetTargetFolder", tGetTargetFolder);
    answers.askText("tGetFeedbackFolder", tGetFeedbackFolder);
}

void askNumbers() {
    int numbers[6] = {unwritten, unwritten, unwritten, unwritten, unwritten, unwritten};
    tGetVersionOfVCO(&numbers[0], &numbers[1], &numbers[2]);
    tGetDimsOfFunctionalData(&numbers[3], &numbers[4], &numbers[5]);
    for (int i = 0; i < 6; ++i)
        answers.note(i < 3 ? "tGetVersionOfVCO" : "tGetDimsOfFunctionalData", {double(i % 3)},
                     numbers[i]);
    ASK(tGetExpectedNrOfTimePoints);
    ASK(tGetCurrentTimePoint);
    ASK(tGetCurrentProtocolCondition);
    ASK(tGetFullNrOfPredictors);
    ASK(tGetCurrentNrOfPredictors);
    ASK(tGetNrOfConfoundPredictors);
    ASK(tGetNrOfContrasts);
    ASK(tGetNrOfROIs);
    answers.note("tGetBetaMaps", {}, tGetBetaMaps() != nullptr);
    answers.note("tGetTimeCourseData", {}, tGetTimeCourseData() != nullptr);
    answers.note("tGetContrastMaps", {}, tGetContrastMaps() != nullptr);
    answers.note("tGetPluginMaps", {}, tGetPluginMaps() != nullptr);
}

void askRegions() {
    for (const int roi : few) {
        ASK_AT(tGetMeanOfROI, roi);
        ASK_AT(tGetNrOfVoxelsOfROI, roi);
        for (const int predictor : few)
            ASK_AT(tGetBetaOfROI, roi, predictor);
        for (const int voxel : {INT_MIN, -1, 0, 1, 5, 6, INT_MAX}) {
            int at[3] = {unwritten, unwritten, unwritten};
            const bool given = tGetCoordsOfVoxelOfROI(roi, voxel, &at[0], &at[1], &at[2]);
            answers.note("tGetCoordsOfVoxelOfROI", {double(roi), double(voxel)},
                         given ? 100 * at[0] + 10 * at[1] + at[2] : at[0] + at[1] + at[2]);
        }
    }
}

void askVoxels() {
    for (const int predictor : few)
        for (const int time : times)
            ASK_AT(tGetValueOfDesignMatrix, predictor, time);
    for (int time = 0; time < 40; ++time)
        for (int predictor = 0; predictor < 4; ++predictor)
            answers.note("design", {double(predictor), double(time)},
                         tGetValueOfDesignMatrix(predictor, time));
    for (const std::vector<int>& v : voxels) {
        for (const int time : times)
            ASK_AT(tGetValueOfVoxelAtTime, v[0], v[1], v[2], time);
        for (const int index : few) {
            ASK_AT(tGetBetaOfVoxel, index, v[0], v[1], v[2]);
            ASK_AT(tGetMapValueOfVoxel, index, v[0], v[1], v[2]);
        }
    }
}

/// The arrays, at the first five voxels.
void askArrays() {
    int size[3] = {};
    tGetDimsOfFunctionalData(&size[0], &size[1], &size[2]);
    const int samples = size[0] * size[1] * size[2];
    for (int i = 0; i < 5; ++i) {
        const std::vector<int>& v = voxels[size_t(i)];
        const int offset = (v[2] * size[1] + v[1]) * size[0] + v[0];
        for (int p = 0; tGetBetaMaps() && p < tGetCurrentNrOfPredictors(); ++p)
            answers.note("betas", {double(p), double(i)}, tGetBetaMaps()[p * samples + offset]);
        for (int c = 0; tGetContrastMaps() && c < tGetNrOfContrasts(); ++c)
            answers.note("maps", {double(c), double(i)}, tGetContrastMaps()[c * samples + offset]);
        for (int t = 0; tGetTimeCourseData() && t < tGetExpectedNrOfTimePoints(); ++t)
            answers.note("samples", {double(t), double(i)}, tGetTimeCourseData()[t][offset]);
    }
}

template<typename Number>
using Product = void (*)(const Number*, const Number*, Number*, int, int, int, bool, bool);
template<typename Number>
using VectorProduct = void (*)(const Number*, const Number*, Number*, int, int, bool);

/// Sizes 2 x 3 times 3 x 4, of numbers that count up; a size of 0 leaves C alone.
template<typename Number>
void multiply(const char* name, Product<Number> product, const char* vectorName,
              VectorProduct<Number> vectorProduct) {
    std::vector<Number> a(6), b(12);
    std::iota(a.begin(), a.end(), Number(1));
    std::iota(b.begin(), b.end(), Number(1));
    for (int how = 0; how < 5; ++how) {
        std::vector<Number> c(8, unwritten), y(3, unwritten);
        product(a.data(), b.data(), c.data(), 2, 4, how < 4 ? 3 : 0, how & 1, how & 2);
        for (size_t i = 0; i < c.size(); ++i)
            answers.note(name, {double(how), double(i)}, c[i]);
        vectorProduct(a.data(), b.data(), y.data(), how < 4 ? 2 : 0, 3, how & 1);
        for (size_t i = 0; i < y.size(); ++i)
            answers.note(vectorName, {double(how), double(i)}, y[i]);
    }
}

void transform() {
    const int n0 = 2, n1 = 3, n2 = 4, half = n2 / 2 + 1;
    auto* values = static_cast<float*>(t_fftwf_malloc(sizeof(float) * n0 * n1 * n2));
    auto* spectrum =
        static_cast<fftwf_complex*>(t_fftwf_malloc(sizeof(fftwf_complex) * n0 * n1 * half));
    const fftwf_plan there = t_fftwf_plan_dft_r2c_3d(n0, n1, n2, values, spectrum, FFTW_ESTIMATE);
    const fftwf_plan back = t_fftwf_plan_dft_c2r_3d(n0, n1, n2, spectrum, values, FFTW_ESTIMATE);
    for (int i = 0; i < n0 * n1 * n2; ++i)
        values[i] = float(i * i % 11);
    t_fftwf_execute(there);
    for (int i = 0; i < n0 * n1 * half * 2; ++i)
        answers.note("spectrum", {double(i / 2), double(i % 2)}, spectrum[i / 2][i % 2]);
    t_fftwf_execute(back);
    for (int i = 0; i < n0 * n1 * n2; ++i)
        answers.note("back", {double(i)}, values[i]);
    t_fftwf_destroy_plan(there);
    t_fftwf_destroy_plan(back);
    t_fftwf_free(values);
    t_fftwf_free(spectrum);
}

class LoggingPlugin : public VeloCortivoPlugin {
    bool initPlugin() override {
        tLogText("There is no window yet");
        return true;
    }
    bool executeAtLaunch() override {
        tLogText("Gr\xc3\xbc\xc3\x9f"
                 "e");
        tLogText("from the probe");
        return true;
    }
};

} // namespace

VELO_CORTIVO_EXPORT const char* getPluginName() {
    return "Probe";
}

VELO_CORTIVO_EXPORT VeloCortivoPlugin* createPlugin() {
    return new LoggingPlugin;
}

VELO_CORTIVO_EXPORT const char* probeState() {
    askTexts();
    askNumbers();
    askRegions();
    askVoxels();
    askArrays();
    return answers.finish();
}

VELO_CORTIVO_EXPORT const char* probeNumerics() {
    multiply<float>("matrixF", t_intel_matrix_matrix_mult_f, "vectorF",
                    t_intel_matrix_vector_mult_f);
    multiply<double>("matrixD", t_intel_matrix_matrix_mult_d, "vectorD",
                     t_intel_matrix_vector_mult_d);
    transform();
    return answers.finish();
}

VELO_CORTIVO_EXPORT const char* probeClassifier() {
    std::vector<float> pairs(3, unwritten);
    ASK(tGetNumberOfClasses);
    answers.note("tGetCurrentClassifierOutput", {}, tGetCurrentClassifierOutput(pairs.data()));
    for (size_t i = 0; i < pairs.size(); ++i)
        answers.note("pair", {double(i)}, pairs[i]);
    return answers.finish();
}

VELO_CORTIVO_EXPORT const ProbeFunctions* probeFunctions() {
    static const ProbeFunctions functions;
    return &functions;
}
