// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/multi_study_design.h"

#include "base/messages.h"
#include "base/text_reading.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <set>

namespace {

constexpr RgbColor unknownColor{128, 128, 128};
constexpr RgbColor constantColor{255, 255, 255};
constexpr char confoundMark[] = " (confound)"; ///< ends the names of constants and drift terms

bool fail(const QString& text) {
    showCritical(text);
    return false;
}

/// Which columns of the conditions belong to a study: group g has columns g * conditions on. Behind
/// all groups stand the constants.
struct Layout {
    int conditions = 0; ///< of each group
    std::vector<int> groupOfStudy;
    QStringList prefixes; ///< of the names, one for each group

    [[nodiscard]] size_t columns() const {
        return size_t(prefixes.size()) * size_t(conditions) + groupOfStudy.size();
    }
};

Layout layoutOf(const MultiStudyList& list, int conditions) {
    Layout layout{conditions, std::vector<int>(list.studies.size(), 0), {}};
    if (list.separation == SeparatePredictors::None) {
        layout.prefixes << QString();
        return layout;
    }
    const bool bySubject = list.separation == SeparatePredictors::Subjects;
    std::vector<int> numbers;
    for (size_t i = 0; i < list.studies.size(); ++i)
        numbers.push_back(bySubject ? list.studies[i].subject : int(i) + 1);
    const std::set<int> groups(numbers.begin(), numbers.end());
    for (size_t i = 0; i < numbers.size(); ++i)
        layout.groupOfStudy[i] = int(std::distance(groups.begin(), groups.find(numbers[i])));
    for (const int number : groups)
        layout.prefixes << QString(bySubject ? "Subject %1: " : "Study %1: ").arg(number);
    return layout;
}

bool valuesAreFinite(const RTCFile& file) {
    return std::ranges::all_of(file.columns, [](const std::vector<float>& column) {
        return std::ranges::all_of(column, [](float value) { return std::isfinite(value); });
    });
}

bool readDesign(const QString& fileName, RTCFile& file) {
    QString text;
    if (!readTextFile(fileName, text))
        return fail(QString("ERROR: Can not open design matrix file \"%1\" !").arg(fileName));
    const RTCParseResult result = parseRTC(text, file);
    if (result == RTCParseResult::UnknownFormat)
        return fail("Error reading file: Unknown file format!");
    if (file.version >= 2 && file.type != "DesignMatrix")
        return fail("ERROR: RTC file is not of type \"DesignMatrix\" !");
    if (result != RTCParseResult::Ok || !valuesAreFinite(file))
        return fail(QString("ERROR: Design matrix file \"%1\" is damaged or ends too early!")
                        .arg(fileName));
    return true;
}

bool readDesigns(const MultiStudyList& list, const std::vector<FMRHeader>& headers,
                 std::vector<RTCFile>& designs) {
    for (size_t i = 0; i < list.studies.size(); ++i) {
        RTCFile& design = designs.emplace_back();
        if (!readDesign(list.studies[i].designFile, design))
            return false;
        if (design.columns.size() != designs.front().columns.size())
            return fail("ERROR: Different number of predictors in design matrix files!");
        if (design.nrOfDataPoints != headers[i].NrOfVolumes)
            return fail("ERROR: Different number of time points between design matrix and data "
                        "files!");
    }
    return true;
}

/// The names of the first design that has some; a warning when another one has others.
QStringList commonNames(const std::vector<RTCFile>& designs) {
    QStringList names;
    for (const RTCFile& design : designs) {
        if (names.isEmpty())
            names = design.names;
        if (design.names.isEmpty() || design.names == names)
            continue;
        showWarning("WARNING: Predictor names do not match!\n\nPlease check the order of the "
                    "defined predictors for each included design matrix RTC file!");
        break;
    }
    return names;
}

void addPredictor(WholeRunDesign& design, const QString& name, RgbColor color, int condition) {
    const QString label = QString("Predictor: %1").arg(design.predictors.size() + 1);
    design.predictors.push_back({label, name, color});
    design.conditionOfColumn.push_back(condition);
}

void nameColumns(WholeRunDesign& design, const Layout& layout, const QStringList& names,
                 const std::vector<RgbColor>& colors) {
    for (const QString& prefix : layout.prefixes)
        for (int j = 0; j < layout.conditions; ++j) {
            const QString unnamed = QString("Predictor %1").arg(j + 1);
            const QString name = names.isEmpty() ? unnamed : names.value(j);
            const RgbColor color = size_t(j) < colors.size() ? colors[size_t(j)] : unknownColor;
            addPredictor(design, prefix + name, color, j);
        }
    for (size_t i = 0; i < layout.groupOfStudy.size(); ++i)
        addPredictor(design, QString("Study signal level") + confoundMark, constantColor, -1);
}

/// Appends the rows of all studies.
void fillDesign(WholeRunDesign& design, const Layout& layout, const std::vector<RTCFile>& designs) {
    const size_t conditions = size_t(layout.conditions);
    const size_t firstConstant = size_t(layout.prefixes.size()) * conditions;
    for (size_t study = 0; study < designs.size(); ++study) {
        std::vector<float> row(size_t(design.GLMPredictors()), 0.0f);
        row[firstConstant + study] = 1.0f;
        const size_t firstColumn = size_t(layout.groupOfStudy[study]) * conditions;
        for (size_t t = 0; t < size_t(designs[study].nrOfDataPoints); ++t) {
            for (size_t j = 0; j < conditions; ++j)
                row[firstColumn + j] = designs[study].columns[j][t];
            design.GLMDesign.insert(design.GLMDesign.end(), row.begin(), row.end());
        }
    }
}

/// Elements of the matrix; nothing when there are too many.
std::optional<size_t> elementsOf(const Layout& layout, const std::vector<RTCFile>& designs) {
    qint64 points = 0;
    for (const RTCFile& design : designs)
        points += design.nrOfDataPoints;
    const size_t columns = layout.columns();
    if (points > std::numeric_limits<int>::max() ||
        columns > size_t(std::numeric_limits<int>::max()) ||
        !memoryIsAvailable(size_t(points) * columns, sizeof(float)))
        return {};
    return size_t(points) * columns;
}

/// Constants and drift terms, which stand behind all conditions.
int nrOfConfounds(const WholeRunDesign& design) {
    int count = 0;
    for (auto predictor = design.predictors.rbegin();
         predictor != design.predictors.rend() && predictor->name.endsWith(confoundMark);
         ++predictor)
        ++count;
    return count;
}

/// Columns of one group of a model of several runs; 0 when the names don't say.
int conditionsOfGroup(const WholeRunDesign& design) {
    const int conditions = design.GLMPredictors() - nrOfConfounds(design);
    if (conditions <= 0 || design.separation == SeparatePredictors::None)
        return conditions;
    if (design.separation == SeparatePredictors::Studies)
        return conditions / design.nrOfStudies();
    const QString& first = design.predictors.front().name;
    const QString prefix = first.left(first.indexOf(": ") + 2);
    const auto ends = std::ranges::find_if(design.predictors, [&](const GLMPredictor& predictor) {
        return !prefix.startsWith("Subject ") || !predictor.name.startsWith(prefix);
    });
    return int(std::distance(design.predictors.begin(), ends));
}

} // namespace

bool assembleMultiStudyDesign(const MultiStudyList& list, const std::vector<RgbColor>& colors,
                              WholeRunDesign& design, VolumeSize& size) {
    std::vector<FMRHeader> headers;
    std::vector<RTCFile> designs;
    if (!readStudyHeaders(list, headers) || !readDesigns(list, headers, designs))
        return false;
    const Layout layout = layoutOf(list, int(designs.front().columns.size()));
    const std::optional<size_t> elements = elementsOf(layout, designs);
    if (!elements)
        return fail("ERROR: Insufficient memory for creating GLM data structure!");

    WholeRunDesign result;
    result.studies = list.studies;
    for (size_t i = 0; i < headers.size(); ++i)
        result.studies[i].dataPoints = headers[i].NrOfVolumes;
    result.transformation = list.transformation;
    result.separation = list.separation;
    result.CorrectSerialCorrelations = design.CorrectSerialCorrelations;
    nameColumns(result, layout, commonNames(designs), colors);
    result.GLMDesign.reserve(*elements);
    fillDesign(result, layout, designs);
    if (result.GLMDesign.size() != *elements)
        return fail("ERROR: Wrong size of filled design matrix elements");
    design = std::move(result);
    size = headers.front().size();
    return true;
}

std::vector<int> conditionsOfColumns(const WholeRunDesign& design) {
    std::vector<int> result(size_t(design.GLMPredictors()), -1);
    const int columns = design.GLMPredictors() - nrOfConfounds(design);
    const int conditions = conditionsOfGroup(design);
    if (conditions <= 0 || columns % conditions != 0)
        return result;
    for (int j = 0; j < columns; ++j)
        result[size_t(j)] = j % conditions;
    return result;
}

bool addDriftTerms(WholeRunDesign& design, int termsOfStudy) {
    const size_t p = design.predictors.size();
    const size_t terms = size_t(std::max(termsOfStudy, 0));
    const size_t all = p + terms * design.studies.size();
    if (!memoryIsAvailable(size_t(design.GLMDataPoints()) * all, sizeof(float)))
        return fail("ERROR: Insufficient memory for creating GLM data structure!");
    for (int study = 1; study <= design.nrOfStudies(); ++study)
        for (int c = 1; c <= int(terms); ++c)
            addPredictor(design,
                         QString("Study %1: %2").arg(study).arg(confoundName(c, termsOfStudy + 1)) +
                             confoundMark,
                         unknownColor, -1);
    std::vector<float> wider;
    wider.reserve(size_t(design.GLMDataPoints()) * all);
    auto row = design.GLMDesign.begin();
    for (size_t study = 0; study < design.studies.size(); ++study)
        for (int t = 0; t < design.studies[study].dataPoints; ++t, row += ptrdiff_t(p)) {
            wider.insert(wider.end(), row, row + ptrdiff_t(p));
            for (size_t of = 0; of < design.studies.size(); ++of)
                for (int c = 1; c <= int(terms); ++c)
                    wider.push_back(of == study ? confoundValue(c, termsOfStudy + 1, t,
                                                                design.studies[study].dataPoints)
                                                : 0.0f);
        }
    design.GLMDesign = std::move(wider);
    return true;
}
