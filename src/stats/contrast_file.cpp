// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/contrast_file.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "base/text_reading.h"

#include <algorithm>

namespace {

constexpr int newestVersion = 3;
constexpr int valueFieldWidth = 3;

struct Header {
    int version = 0;
    int nrOfContrasts = 0;
    int nrOfValues = 0;
    int baselineInContrasts = 1;
    int baselinePosInProtocol = 1;
};

int keyedInteger(TokenStream& stream) {
    stream.word();
    return stream.integer();
}

QString damagedFileMessage() {
    return QStringLiteral("ERROR: Contrast file is damaged or ends too early!");
}

/// False with a message when this is not a contrast file, or one of a newer version.
bool readHeader(TokenStream& stream, Header& header, QString& message) {
    const QString key = stream.word();
    header.version = stream.integer();
    if (key != "FileVersion:" || stream.failed() || header.version < 1) {
        message = QStringLiteral("ERROR: Can not read file. This file appears not to be a "
                                 "\"contrast (.ctr)\" file!");
        return false;
    }
    if (header.version > newestVersion) {
        message = QStringLiteral("ERROR: Can not read this new version of contrast files!");
        return false;
    }
    header.nrOfContrasts = keyedInteger(stream);
    header.nrOfValues = keyedInteger(stream);
    if (header.version >= 3) {
        header.baselineInContrasts = keyedInteger(stream);
        header.baselinePosInProtocol = keyedInteger(stream);
    }
    if (stream.failed())
        message = damagedFileMessage();
    return !stream.failed();
}

/// The position must be that of a condition, or 0 for a model without baseline, where the list of
/// predictors begins with a separate baseline entry.
bool baselineFits(const Header& header, const DesignMatrix& design, int nrOfConditions) {
    const bool baselineIsCondition = header.baselinePosInProtocol != 0;
    return header.baselinePosInProtocol >= 0 && header.baselinePosInProtocol <= nrOfConditions &&
           baselineIsCondition == (design.NrOfContrastPredictors == nrOfConditions);
}

bool fitsDesign(const Header& header, const DesignMatrix& design, int nrOfConditions) {
    const int conditions =
        header.baselineInContrasts < 1 ? header.nrOfValues - 1 : header.nrOfValues;
    return header.nrOfValues == design.NrOfContrastPredictors && conditions == nrOfConditions;
}

/// True when the rest of the text is long enough for this many contrasts, each with two quotes and
/// at least one character for each value.
bool canHold(const Header& header, qsizetype remaining) {
    return header.nrOfContrasts >= 0 && header.nrOfValues >= 0 &&
           header.nrOfContrasts <= remaining / (qsizetype(header.nrOfValues) + 2);
}

/// A quoted name; characters beyond the limit are dropped.
bool readName(TokenStream& stream, QString& name) {
    if (!readDelimitedString('"', name, stream))
        return false;
    if (name.size() == maximumQuotedLength)
        for (QChar next = stream.character(); next != '"' && !next.isNull();)
            next = stream.character();
    return true;
}

/// Values fill fields of three characters without separator, so "100" and "-10" touch the value
/// before them. A line of exactly this many fields, but with a different number of words, is split
/// by columns.
bool readFields(const QString& line, std::vector<int>& row) {
    const qsizetype count = qsizetype(row.size());
    if (line.size() != count * valueFieldWidth || line.simplified().split(' ').size() == count)
        return false;
    for (size_t i = 0; i < row.size(); ++i) {
        bool valid = false;
        const qsizetype start = qsizetype(i) * valueFieldWidth;
        row[i] = line.mid(start, valueFieldWidth).trimmed().toInt(&valid);
        if (!valid)
            return false;
    }
    return true;
}

/// One row, by columns where its line has fixed fields, else token by token.
void readRow(TokenStream& stream, std::vector<int>& row) {
    const qsizetype start = stream.position();
    QString line;
    while (line.trimmed().isEmpty() && !stream.atEnd())
        line = stream.restOfLine();
    if (readFields(line, row))
        return;
    stream.seek(start);
    for (int& value : row)
        value = stream.integer();
}

void readVectors(TokenStream& stream, const Header& header, ContrastDefinitions& contrasts) {
    contrasts.ContrastValues.assign(size_t(header.nrOfContrasts),
                                    std::vector<int>(size_t(header.nrOfValues), 0));
    if (header.version >= 3) {
        for (std::vector<int>& row : contrasts.ContrastValues)
            readRow(stream, row);
        return;
    }
    for (size_t value = 0; value < size_t(header.nrOfValues); ++value)
        for (std::vector<int>& row : contrasts.ContrastValues)
            row[value] = stream.integer();
}

int readChannel(TokenStream& stream) {
    return std::clamp(stream.integer(), 0, 255);
}

/// All sections after the header. False when the text ends before the last of them.
bool readSections(TokenStream& stream, const Header& header, ContrastDefinitions& contrasts) {
    const auto skipTitle = [&] {
        if (header.version >= 3)
            stream.word();
    };
    skipTitle();
    for (int i = 0; i < header.nrOfContrasts; ++i) {
        QString name;
        if (!readName(stream, name))
            return false;
        contrasts.ContrastNames.append(name);
    }
    skipTitle();
    readVectors(stream, header, contrasts);

    contrasts.ContrastSelectionStates.assign(size_t(header.nrOfContrasts), ContrastPositive);
    if (header.version >= 3) {
        skipTitle();
        for (int& state : contrasts.ContrastSelectionStates) {
            state = stream.integer();
            if (state < ContrastOff || state > ContrastBoth)
                state = ContrastOff;
        }
    }
    skipTitle();
    for (int i = 0; i < header.nrOfContrasts; ++i) {
        const int red = readChannel(stream);
        const int green = readChannel(stream);
        const int blue = readChannel(stream);
        contrasts.ContrastColors.push_back({red, green, blue});
    }
    return !stream.failed();
}

/// A name that can be read back: without quotes, and short enough that the closing quote is found
/// within the limit.
QByteArray writableName(QString name) {
    name.replace('"', '\'');
    name.truncate(maximumQuotedLength - 1);
    return name.toUtf8();
}

/// One line of values. When one of them is wider than its field, columns no longer work, so the
/// values are separated by blanks.
QByteArray vectorLine(const std::vector<int>& values, int count) {
    QByteArray fields;
    QByteArray words;
    for (int i = 0; i < count; ++i) {
        const int value = size_t(i) < values.size() ? values[size_t(i)] : 0;
        fields += formatted("%3i", value);
        words += ' ' + QByteArray::number(value);
    }
    return (fields.size() == qsizetype(count) * valueFieldWidth ? fields : words) + '\n';
}

} // namespace

QString contrastFilePath(const QString& fileName, const QString& projectPath) {
    return fileName.isEmpty() ? paths::withoutExtension(projectPath) + ".ctr" : fileName;
}

bool parseContrasts(const QString& text, ContrastDefinitions& contrasts, const DesignMatrix& design,
                    int nrOfConditions, QString& message) {
    TokenStream stream(text);
    Header header;
    if (!readHeader(stream, header, message))
        return false;
    if (!fitsDesign(header, design, nrOfConditions)) {
        message = QString::fromLatin1(
            formatted("ERROR: Contrast file contains values for %i predictors\nwhich does not fit "
                      "current contrasts with %i predictors",
                      header.nrOfValues, design.NrOfContrastPredictors));
        return false;
    }

    if (header.version >= 3 && !baselineFits(header, design, nrOfConditions)) {
        message =
            QStringLiteral("ERROR: Contrast file states %1 as position of the baseline, which "
                           "contradicts the model. Check \"BaselinePosInProtocol:\" and "
                           "\"BaselineInContrasts:\"!")
                .arg(header.baselinePosInProtocol);
        return false;
    }

    ContrastDefinitions read;
    if (!canHold(header, text.size() - stream.position()) || !readSections(stream, header, read)) {
        message = damagedFileMessage();
        return false;
    }
    read.NrOfContrasts = header.nrOfContrasts;
    read.ActiveContrastStates.assign(size_t(header.nrOfContrasts), ContrastOff);
    read.ConjunctionAnalysis = contrasts.ConjunctionAnalysis;
    read.ContrastsChanged = contrasts.ContrastsChanged;
    read.BaselineInContrasts = header.baselineInContrasts;
    read.BaselinePosInProtocol =
        header.version >= 3 ? header.baselinePosInProtocol : contrasts.BaselinePosInProtocol;
    rebuildContrastWeights(read, design);
    contrasts = std::move(read);
    return true;
}

QByteArray contrastFileText(const ContrastDefinitions& contrasts, int nrOfContrastPredictors) {
    // The lists are parallel; only indices within all of them are contrasts.
    const size_t count =
        std::min({contrasts.ContrastValues.size(), contrasts.ContrastSelectionStates.size(),
                  contrasts.ContrastColors.size()});
    QByteArray text = formatted("FileVersion:           %i\n"
                                "NrOfContrasts:         %i\n"
                                "NrOfValues:            %i\n"
                                "BaselineInContrasts:   %i\n"
                                "BaselinePosInProtocol: %i\n\n",
                                newestVersion, int(count), nrOfContrastPredictors,
                                contrasts.BaselineInContrasts, contrasts.BaselinePosInProtocol);
    text += "ContrastNames:\n";
    for (size_t i = 0; i < count; ++i)
        text += '"' + writableName(contrasts.ContrastNames.value(qsizetype(i))) + "\"\n";
    text += "\nContrastVectors:\n";
    for (size_t i = 0; i < count; ++i)
        text += vectorLine(contrasts.ContrastValues[i], nrOfContrastPredictors);
    text += "\nInitialSelectionState:\n";
    for (size_t i = 0; i < count; ++i)
        text += QByteArray::number(contrasts.ContrastSelectionStates[i]) + '\n';
    text += "\nContrastColors:\n";
    for (size_t i = 0; i < count; ++i) {
        const RgbColor& color = contrasts.ContrastColors[i];
        text += formatted("%4i%4i%4i\n", color.red, color.green, color.blue);
    }
    return text;
}

bool contrastFileHasNoBaseline(const QString& fileName) {
    QString text;
    QString message;
    if (!readTextFile(fileName, text))
        return false;
    TokenStream stream(text);
    Header header;
    return readHeader(stream, header, message) && header.baselinePosInProtocol == 0;
}

int nrOfContrastsInFile(const QString& fileName) {
    QString text;
    QString message;
    if (!readTextFile(fileName, text))
        return 0;
    TokenStream stream(text);
    Header header;
    return readHeader(stream, header, message) && canHold(header, text.size() - stream.position())
               ? header.nrOfContrasts
               : 0;
}

bool readContrastFile(const QString& fileName, ContrastDefinitions& contrasts,
                      const DesignMatrix& design, int nrOfConditions) {
    QString text;
    if (!readTextFile(fileName, text)) {
        showWarning(QStringLiteral("ERROR: Can not open contrast file \"%1\"!").arg(fileName));
        return false;
    }
    QString message;
    if (!parseContrasts(text, contrasts, design, nrOfConditions, message)) {
        showWarning(message);
        return false;
    }
    return true;
}

bool writeContrastFile(const QString& fileName, const ContrastDefinitions& contrasts,
                       int nrOfContrastPredictors) {
    if (writeFileAtomically(fileName, contrastFileText(contrasts, nrOfContrastPredictors)))
        return true;
    showCritical(QStringLiteral("ERROR: Unable to open contrasts file \"%1\"!").arg(fileName));
    return false;
}
