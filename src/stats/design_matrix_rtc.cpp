// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/design_matrix_rtc.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/text_reading.h"

#include <algorithm>

namespace {

/// Every value takes at least one digit and one blank, so larger counts are invalid.
bool countsArePossible(int columns, int points, qsizetype textSize) {
    return columns >= 0 && points >= 0 && columns <= textSize && points <= textSize &&
           qint64(columns) * points <= textSize;
}

int keyedInteger(TokenStream& stream) {
    stream.word();
    return stream.integer();
}

void skipSeriesHeader(TokenStream& stream, RTCTitle title) {
    int tokens = 14;
    if (title == RTCTitle::Line) {
        stream.word();
        stream.restOfLine();
        tokens -= 2;
    }
    for (int i = 0; i < tokens; ++i)
        stream.word();
}

RTCParseResult parseSeries(TokenStream& stream, qsizetype textSize, RTCScope scope, RTCTitle title,
                           RTCFile& file) {
    file.type.clear();
    const int nrOfSeries = stream.integer();
    file.nrOfDataPoints = keyedInteger(stream);
    if (stream.failed() || !countsArePossible(nrOfSeries, file.nrOfDataPoints, textSize))
        return RTCParseResult::Incomplete;
    if (scope == RTCScope::Names)
        return RTCParseResult::Ok;
    for (int i = 0; i < nrOfSeries && !stream.failed(); ++i) {
        skipSeriesHeader(stream, title);
        std::vector<float>& series = file.columns.emplace_back(size_t(file.nrOfDataPoints));
        for (float& value : series)
            value = float(stream.real());
    }
    return stream.failed() ? RTCParseResult::Incomplete : RTCParseResult::Ok;
}

RTCParseResult parseMatrix(TokenStream& stream, qsizetype textSize, RTCScope scope, RTCFile& file) {
    file.version = stream.integer();
    if (stream.word() != "Type:")
        return RTCParseResult::UnknownFormat;
    file.type = stream.word();
    const int nrOfPredictors = keyedInteger(stream);
    file.nrOfDataPoints = keyedInteger(stream);
    if (stream.failed() || !countsArePossible(nrOfPredictors, file.nrOfDataPoints, textSize))
        return RTCParseResult::Incomplete;
    for (int i = 0; i < nrOfPredictors; ++i) {
        QString name;
        if (!readDelimitedString('"', name, stream))
            return RTCParseResult::Incomplete;
        file.names << name;
    }
    if (scope == RTCScope::Names)
        return RTCParseResult::Ok;
    file.columns.assign(size_t(nrOfPredictors), std::vector<float>(size_t(file.nrOfDataPoints)));
    for (size_t t = 0; t < size_t(file.nrOfDataPoints) && !stream.failed(); ++t)
        for (std::vector<float>& column : file.columns)
            column[t] = float(stream.real());
    return stream.failed() ? RTCParseResult::Incomplete : RTCParseResult::Ok;
}

} // namespace

RTCParseResult parseRTC(const QString& text, RTCFile& file, RTCScope scope, RTCTitle title) {
    file = RTCFile();
    TokenStream stream(text);
    const QString keyword = stream.word();
    if (keyword == "FileVersion:")
        return parseMatrix(stream, text.size(), scope, file);
    if (keyword != "NrOfRTCs:")
        return RTCParseResult::UnknownFormat;
    file.version = 1;
    return parseSeries(stream, text.size(), scope, title, file);
}

QByteArray rtcText(const RTCFile& file, RTCNumbers numbers) {
    QByteArray text = "FileVersion:     2\nType:            " + file.type.toUtf8() + '\n';
    text += formatted("NrOfPredictors:  %i\n", int(file.columns.size()));
    text += formatted("NrOfDataPoints:  %i\n\n", file.nrOfDataPoints);
    for (size_t j = 0; j < file.columns.size(); ++j) {
        QString name = file.names.value(qsizetype(j));
        text += (j == 0 ? "\"" : " \"") + name.replace('"', '\'').toUtf8() + '"';
    }
    text += '\n';
    for (size_t t = 0; t < size_t(std::max(file.nrOfDataPoints, 0)); ++t) {
        for (size_t j = 0; j < file.columns.size(); ++j) {
            const std::vector<float>& column = file.columns[j];
            const double value = t < column.size() ? double(column[t]) : 0.0;
            text += j == 0 ? "" : " ";
            text += numbers == RTCNumbers::Plain ? formatted("%8.6f", value)
                                                 : formatted("%12.6f", value);
        }
        text += '\n';
    }
    return text;
}

RTCFile rtcFileOf(const DesignMatrix& design) {
    RTCFile file;
    const int columns = std::clamp(design.NrOfPredictors, 0, DesignMatrix::maximumPredictors);
    file.names = design.PredictorNames.mid(0, columns);
    file.nrOfDataPoints = design.NrOfVolumes;
    file.columns.assign(design.PredictorColumns.begin(), design.PredictorColumns.begin() + columns);
    return file;
}

bool writeDesignMatrixRTC(const DesignMatrix& design, const QString& fileName) {
    return writeDesignMatrixRTC(rtcFileOf(design), fileName);
}

bool writeDesignMatrixRTC(const RTCFile& design, const QString& fileName) {
    if (writeFileAtomically(fileName, rtcText(design, RTCNumbers::Plain)))
        return true;
    showWarning("ERROR: Can not open .rtc file for writing design matrix file !");
    return false;
}

bool writeGLMDesignMatrixRTC(const RTCFile& design, const QString& fileName) {
    if (writeFileAtomically(fileName, rtcText(design, RTCNumbers::Aligned)))
        return true;
    showWarning(QString("ERROR: Unable to open design matrix file \"%1\"!").arg(fileName));
    return false;
}

QString readPredictorNamesOfRTC(const QString& fileName) {
    QString text;
    if (!readTextFile(fileName, text)) {
        showWarning("ERROR: Can not open file !");
        return {};
    }
    RTCFile file;
    const RTCParseResult result = parseRTC(text, file, RTCScope::Names);
    if (result == RTCParseResult::UnknownFormat ||
        (result == RTCParseResult::Incomplete && file.version != 1 &&
         file.type == "DesignMatrix")) {
        showWarning("Error reading file: Unknown file format!");
        return {};
    }
    if (file.type != "DesignMatrix")
        return " ";
    const QString names = file.names.join(", ");
    return names.isNull() ? QString("") : names;
}
