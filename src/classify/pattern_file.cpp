// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/pattern_file.h"

#include "base/byte_reader.h"
#include "base/byte_views.h"
#include "base/data_stream.h"
#include "base/file_writing.h"
#include "base/memory.h"
#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "base/text_reading.h"

#include <QDataStream>
#include <QFile>
#include <cmath>
#include <optional>

namespace {

constexpr int fileVersion = 1;

QString versionFault(int found) {
    return QStringLiteral("its version is %1, not %2").arg(found).arg(fileVersion);
}

QString cutFault() {
    return QStringLiteral("it has fewer numbers than the counts at its start state");
}

QString tooLongFault() {
    return QStringLiteral("it has more data than the counts at its start state");
}

/// Feature -1 is the label.
QString numberFault(int exemplar, int feature) {
    return QStringLiteral("the %1 of exemplar %2 is not a finite number")
        .arg(feature < 0 ? QStringLiteral("label") : QStringLiteral("feature %1").arg(feature + 1))
        .arg(exemplar + 1);
}

/// Compares what is stated with the numbers that the content can hold at most.
QString faultOfCounts(int exemplars, int features, qint64 mostNumbers) {
    if (exemplars < 1 || features < 1)
        return QStringLiteral("it has no exemplars or no features");
    return (qint64(features) + 1) * exemplars > mostNumbers ? cutFault() : QString();
}

QByteArray binaryContent(const PatternSet& patterns) {
    QByteArray content;
    content.reserve(10 + qsizetype(sizeof(double)) *
                             qsizetype(patterns.labels.size() + patterns.values.size()));
    QDataStream stream(&content, QIODevice::WriteOnly);
    makeLittleEndian(stream);
    stream << qint16(fileVersion) << qint32(patterns.count()) << qint32(patterns.nrOfFeatures);
    for (int i = 0; i < patterns.count(); ++i) {
        stream << patterns.labels[size_t(i)];
        for (const double value : patterns.features(i))
            stream << value;
    }
    return content;
}

/// Numbers have 17 digits, from which a double is read back as it was.
QByteArray textContent(const PatternSet& patterns) {
    QByteArray content = formatted("FileVersion:   %d\n\nNrOfExemplars: %d\nNrOfFeatures:  %d\n\n",
                                   fileVersion, patterns.count(), patterns.nrOfFeatures);
    for (int i = 0; i < patterns.count(); ++i) {
        content += formatted("%3.17g ", patterns.labels[size_t(i)]);
        for (const double value : patterns.features(i))
            content += formatted(" %.17g", value);
        content += '\n';
    }
    return content;
}

/// Fills `patterns` from a source of numbers, which gives nothing for one that isn't finite.
template<typename NextNumber>
QString readExemplars(int exemplars, PatternSet& patterns, NextNumber nextNumber) {
    const size_t numbers = size_t(exemplars) * size_t(patterns.nrOfFeatures);
    if (!memoryIsAvailable(numbers + size_t(exemplars), sizeof(double)))
        return QStringLiteral("there is not enough memory for it");
    patterns.labels.reserve(size_t(exemplars));
    patterns.values.reserve(numbers);
    for (int exemplar = 0; exemplar < exemplars; ++exemplar)
        for (int feature = -1; feature < patterns.nrOfFeatures; ++feature) {
            const std::optional<double> number = nextNumber();
            if (!number)
                return numberFault(exemplar, feature);
            (feature < 0 ? patterns.labels : patterns.values).push_back(*number);
        }
    return {};
}

QString parseBinary(const QByteArray& content, PatternSet& patterns) {
    ByteReader reader(bytesOf(content));
    const int version = reader.i16();
    const int exemplars = reader.i32();
    patterns.nrOfFeatures = reader.i32();
    if (reader.failed())
        return cutFault();
    if (version != fileVersion)
        return versionFault(version);
    const QString fault = faultOfCounts(exemplars, patterns.nrOfFeatures,
                                        qint64(reader.remaining() / sizeof(double)));
    if (!fault.isEmpty())
        return fault;
    const QString bad = readExemplars(exemplars, patterns, [&reader]() -> std::optional<double> {
        const double number = reader.f64();
        return std::isfinite(number) ? std::optional(number) : std::nullopt;
    });
    return bad.isEmpty() && reader.remaining() > 0 ? tooLongFault() : bad;
}

/// A line of a header: its keyword and a whole number.
bool readCount(TokenStream& stream, const QString& keyword, int& count) {
    if (!tokensAgree(stream.word(), keyword))
        return false;
    count = stream.integer();
    return !stream.failed();
}

QString parseText(const QByteArray& content, PatternSet& patterns) {
    TokenStream stream(QString::fromLatin1(content));
    int version = 0, exemplars = 0;
    if (!readCount(stream, "FileVersion:", version))
        return QStringLiteral("its first line is not \"FileVersion:\" and a number");
    if (version != fileVersion)
        return versionFault(version);
    if (!readCount(stream, "NrOfExemplars:", exemplars) ||
        !readCount(stream, "NrOfFeatures:", patterns.nrOfFeatures))
        return QStringLiteral("the lines \"NrOfExemplars:\" and \"NrOfFeatures:\" are damaged");
    // A number and the blank before it need two characters.
    QString fault =
        faultOfCounts(exemplars, patterns.nrOfFeatures, (content.size() - stream.position()) / 2);
    bool cut = false;
    if (fault.isEmpty())
        fault = readExemplars(exemplars, patterns, [&]() -> std::optional<double> {
            cut = stream.atEnd();
            const double number = stream.real();
            return stream.failed() ? std::nullopt : std::optional(number);
        });
    if (cut)
        return cutFault();
    return fault.isEmpty() && !stream.atEnd() ? tooLongFault() : fault;
}

QByteArray runsText(const std::vector<int>& runs) {
    QByteArray text =
        formatted("FileVersion:   %d\n\nNrOfExemplars: %d\n\n", fileVersion, int(runs.size()));
    for (const int run : runs)
        text += formatted("%d\n", run + 1);
    return text;
}

/// Runs of so many exemplars, from 0; nothing when the text is damaged or has another count.
std::optional<std::vector<int>> parseRuns(const QString& text, int exemplars) {
    TokenStream stream(text);
    int version = 0, count = 0;
    if (!readCount(stream, "FileVersion:", version) || version != fileVersion ||
        !readCount(stream, "NrOfExemplars:", count) || count != exemplars)
        return {};
    std::vector<int> runs;
    for (int i = 0; i < exemplars; ++i) {
        runs.push_back(stream.integer() - 1);
        if (stream.failed() || runs.back() < 0)
            return {};
    }
    return stream.atEnd() ? std::optional(runs) : std::nullopt;
}

void readRuns(const QString& path, PatternSet& patterns) {
    const QString runsPath = patternRunsPath(path);
    if (!fileExists(runsPath))
        return;
    QString text;
    std::optional<std::vector<int>> runs;
    if (readTextFile(runsPath, text))
        runs = parseRuns(text, patterns.count());
    if (runs)
        patterns.runs = *runs;
    else
        showModelessWarning(
            QStringLiteral("WARNING: \"%1\" does not give the run of each of the %2 exemplars. "
                           "The patterns are used as if they came from one run.")
                .arg(runsPath)
                .arg(patterns.count()));
}

} // namespace

QByteArray patternFileContent(const PatternSet& patterns, PatternFileForm form) {
    return form == PatternFileForm::Binary ? binaryContent(patterns) : textContent(patterns);
}

bool parsePatternFile(const QByteArray& content, PatternFileForm form, PatternSet& patterns,
                      QString& fault) {
    PatternSet parsed;
    fault =
        form == PatternFileForm::Binary ? parseBinary(content, parsed) : parseText(content, parsed);
    if (!fault.isEmpty())
        return false;
    patterns = std::move(parsed);
    return true;
}

PatternFileForm patternFileForm(const QByteArray& content) {
    return content.left(64).trimmed().toLower().startsWith("fileversion") ? PatternFileForm::Text
                                                                          : PatternFileForm::Binary;
}

QString patternRunsPath(const QString& patternPath) {
    return paths::withoutExtension(patternPath) + "_runs.txt";
}

// The old list goes first, so that a crash can't leave it beside new patterns.
bool writePatternFile(const QString& path, const PatternSet& patterns, PatternFileForm form) {
    const QString runsPath = patternRunsPath(path);
    if ((!QFile::exists(runsPath) || QFile::remove(runsPath)) &&
        writeFileAtomically(path, patternFileContent(patterns, form)) &&
        (patterns.runs.empty() || writeFileAtomically(runsPath, runsText(patterns.runs))))
        return true;
    showCritical("Unable to open multi-voxel pattern file for writing!");
    return false;
}

bool readPatternFile(const QString& path, PatternSet& patterns) {
    QFile file(path);
    if (!openPlainFile(file)) {
        showCritical(QStringLiteral("Unable to open multi-voxel pattern file \"%1\" for reading!")
                         .arg(path));
        return false;
    }
    QString fault = QStringLiteral("there is not enough memory for it");
    if (memoryIsAvailable(size_t(file.size()), 1)) {
        const QByteArray content = file.readAll();
        if (parsePatternFile(content, patternFileForm(content), patterns, fault)) {
            readRuns(path, patterns);
            return true;
        }
    }
    showCritical(QStringLiteral("ERROR: The multi-voxel pattern file \"%1\" can not be used: %2.")
                     .arg(path, fault));
    return false;
}
