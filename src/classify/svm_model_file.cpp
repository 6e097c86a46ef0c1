// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/svm_model_file.h"

#include "base/messages.h"
#include "base/plain_file.h"

#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <string_view>

namespace {

constexpr double anyNumber = std::numeric_limits<double>::max();
constexpr int largestInteger = std::numeric_limits<int>::max();
constexpr int mostClasses = 1000;
// More than any volume has voxels. Weights are allocated up to the highest feature.
constexpr int highestFeature = 1 << 24;
// libsvm doubles the length of its line in an int.
constexpr qint64 largestFile = qint64(512) << 20;

enum class Count { One, Classes, Pairs };

/// A line of the header whose values are numbers.
struct Field {
    std::string_view key;
    Count count;
    bool isWhole;
    double lowest;
    double highest;
};
constexpr std::array<Field, 10> fields{{
    {"degree", Count::One, true, 0, largestInteger},
    {"gamma", Count::One, false, 0, anyNumber},
    {"coef0", Count::One, false, -anyNumber, anyNumber},
    {"nr_class", Count::One, true, 2, mostClasses},
    {"total_sv", Count::One, true, 1, largestInteger},
    {"rho", Count::Pairs, false, -anyNumber, anyNumber},
    {"probA", Count::Pairs, false, -anyNumber, anyNumber},
    {"probB", Count::Pairs, false, -anyNumber, anyNumber},
    {"label", Count::Classes, true, -double(largestInteger), largestInteger},
    {"nr_sv", Count::Classes, true, 0, largestInteger},
}};

using Tokens = std::vector<std::string_view>;

Tokens tokensOf(std::string_view line) {
    Tokens tokens;
    for (size_t start = 0; (start = line.find_first_not_of(" \t", start)) != line.npos;) {
        const size_t end = std::min(line.find_first_of(" \t", start), line.size());
        tokens.push_back(line.substr(start, end - start));
        start = end;
    }
    return tokens;
}

/// The whole token as a number.
template<typename Number> std::optional<Number> number(std::string_view token) {
    Number value{};
    const auto [end, error] = std::from_chars(token.data(), token.data() + token.size(), value);
    if (error != std::errc() || end != token.data() + token.size())
        return {};
    return value;
}

std::optional<double> finiteNumber(std::string_view token) {
    const std::optional<double> value = number<double>(token);
    return value && std::isfinite(*value) ? value : std::nullopt;
}

/// One pass over a model file, line by line, as libsvm writes it. libsvm's reader takes any white
/// space between the words of the header; what passes here means the same to it.
class ModelChecker {
public:
    explicit ModelChecker(std::string_view text) : text_(text) {}

    [[nodiscard]] QString fault() {
        if (!isText())
            return QStringLiteral("It is not a text file.");
        if (!readHeader() || !headerIsWhole() || !readVectors())
            return QStringLiteral("Line %1: %2.").arg(lineNumber_).arg(fault_);
        return {};
    }

private:
    bool fail(const QString& fault) {
        fault_ = fault;
        return false;
    }

    [[nodiscard]] bool isText() const {
        return std::ranges::all_of(text_, [](char character) {
            return (character >= ' ' && character <= '~') || character == '\n' ||
                   character == '\r' || character == '\t';
        });
    }

    /// A line without its end is one that was cut, perhaps within a number.
    bool nextLine(Tokens& tokens) {
        const size_t end = text_.find('\n');
        ++lineNumber_;
        if (end == text_.npos)
            return fail("the file ends here");
        std::string_view line = text_.substr(0, end);
        text_.remove_prefix(end + 1);
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        tokens = tokensOf(line);
        return !tokens.empty() || fail("the line is empty");
    }

    bool readHeader() {
        Tokens tokens;
        while (nextLine(tokens)) {
            const std::string_view key = tokens.front();
            if (key == "SV")
                return tokens.size() == 1 || fail("\"SV\" does not stand alone");
            tokens.erase(tokens.begin());
            if (!seen_.insert(key).second)
                return fail("\"" + textOf(key) + "\" appears twice");
            if (key == "svm_type" || key == "kernel_type" ? !takeType(key, tokens)
                                                          : !takeNumbers(key, tokens))
                return false;
        }
        return false;
    }

    static QString textOf(std::string_view key) {
        return QString::fromLatin1(key.data(), qsizetype(std::min(key.size(), size_t(40))));
    }

    bool takeType(std::string_view key, const Tokens& values) {
        static const std::set<std::string_view> machines{"c_svc", "nu_svc"};
        static const std::set<std::string_view> kernels{"linear", "polynomial", "rbf", "sigmoid"};
        if (values.size() != 1 || !(key == "svm_type" ? machines : kernels).contains(values[0]))
            return fail("this " + textOf(key) + " can not be used");
        if (key == "kernel_type")
            kernel_ = values[0];
        return true;
    }

    [[nodiscard]] size_t expected(Count count) const {
        const size_t classes = size_t(numbers_.contains("nr_class") ? one("nr_class") : 0);
        return count == Count::One       ? 1
               : count == Count::Classes ? classes
                                         : classes * (classes - 1) / 2;
    }

    bool takeNumbers(std::string_view key, const Tokens& values) {
        const auto* field = std::ranges::find(fields, key, &Field::key);
        if (field == fields.end())
            return fail("\"" + textOf(key) + "\" is unknown");
        if (field->count != Count::One && !numbers_.contains("nr_class"))
            return fail("\"nr_class\" must stand before \"" + textOf(key) + "\"");
        if (values.size() != expected(field->count))
            return fail(QStringLiteral("\"%1\" has %2 values instead of %3")
                            .arg(textOf(key))
                            .arg(values.size())
                            .arg(expected(field->count)));
        std::vector<double>& taken = numbers_[key];
        for (const std::string_view value : values) {
            const std::optional<double> read =
                field->isWhole ? std::optional<double>(number<int>(value)) : finiteNumber(value);
            if (!read || *read < field->lowest || *read > field->highest)
                return fail("\"" + textOf(key) + "\" has a value that can not be used");
            taken.push_back(*read);
        }
        return true;
    }

    [[nodiscard]] int one(std::string_view key) const { return int(numbers_.at(key).front()); }

    bool headerIsWhole() {
        std::vector<std::string_view> needed{"svm_type", "kernel_type", "nr_class", "total_sv",
                                             "rho",      "label",       "nr_sv"};
        if (kernel_ == "polynomial")
            needed.emplace_back("degree");
        if (kernel_ != "linear")
            needed.emplace_back("gamma");
        if (kernel_ == "polynomial" || kernel_ == "sigmoid")
            needed.emplace_back("coef0");
        for (const std::string_view key : needed)
            if (!seen_.contains(key))
                return fail("\"" + textOf(key) + "\" is missing in the lines before");
        const std::vector<double>& labels = numbers_.at("label");
        if (std::set(labels.begin(), labels.end()).size() != labels.size())
            return fail("two classes have the same label");
        double vectors = 0.0; // exact for so few integers
        for (const double count : numbers_.at("nr_sv"))
            vectors += count;
        return vectors == numbers_.at("total_sv").front() ||
               fail("\"nr_sv\" and \"total_sv\" do not agree");
    }

    bool readVectors() {
        const int vectors = one("total_sv");
        Tokens tokens;
        for (int i = 0; i < vectors; ++i)
            if (!nextLine(tokens) || !checkVector(tokens))
                return false;
        ++lineNumber_;
        return text_.empty() ? hasFeatures_ || fail("no support vector has a feature")
                             : fail("there is more data than stated");
    }

    bool checkVector(const Tokens& tokens) {
        const size_t coefficients = size_t(one("nr_class")) - 1;
        if (tokens.size() < coefficients)
            return fail("coefficients are missing");
        int lastIndex = 0;
        for (size_t i = 0; i < tokens.size(); ++i) {
            if (i < coefficients && !finiteNumber(tokens[i]))
                return fail("a coefficient is not a finite number");
            if (i >= coefficients && !checkFeature(tokens[i], lastIndex))
                return false;
        }
        return true;
    }

    /// "index:value"
    bool checkFeature(std::string_view token, int& lastIndex) {
        const size_t colon = std::min(token.find(':'), token.size());
        const std::optional<int> index = number<int>(token.substr(0, colon));
        if (!index || *index <= lastIndex || *index > highestFeature)
            return fail(QStringLiteral("the numbers of the features do not rise from 1 to %1 at "
                                       "most")
                            .arg(highestFeature));
        if (colon == token.size() || !finiteNumber(token.substr(colon + 1)))
            return fail(QStringLiteral("feature %1 is not a finite number").arg(*index));
        lastIndex = *index;
        hasFeatures_ = true;
        return true;
    }

    std::string_view text_; ///< what is left
    int lineNumber_ = 0;
    QString fault_;
    std::set<std::string_view> seen_;
    std::string_view kernel_;
    std::map<std::string_view, std::vector<double>> numbers_;
    bool hasFeatures_ = false;
};

QString tooLargeFault() {
    return QStringLiteral("It is larger than a model can be.");
}

} // namespace

QString faultOfModelFile(const QByteArray& content) {
    if (content.size() > largestFile)
        return tooLargeFault();
    return ModelChecker({content.constData(), size_t(content.size())}).fault();
}

// libsvm reads a private copy of what was checked, since another program may change the file.
QString readModelQuietly(const QString& path, SVMModel& model) {
    QFile file(path);
    if (!openPlainFile(file))
        return QStringLiteral("It can not be opened for reading.");
    if (file.size() > largestFile)
        return tooLargeFault();
    const QByteArray content = file.readAll();
    const QString fault = faultOfModelFile(content);
    if (!fault.isEmpty())
        return fault;
    const QTemporaryDir folder;
    QFile copy(folder.filePath("model.svm"));
    if (!folder.isValid() || !copy.open(QIODevice::WriteOnly) ||
        copy.write(content) != content.size() || !copy.flush() || !model.load(copy.fileName()))
        return QStringLiteral("There is no room for a temporary copy of it.");
    return {};
}

bool readModelFile(const QString& path, SVMModel& model) {
    const QString fault = readModelQuietly(path, model);
    if (!fault.isEmpty())
        showCritical(
            QStringLiteral("ERROR: The model file \"%1\" can not be used!\n\n%2").arg(path, fault));
    return fault.isEmpty();
}
