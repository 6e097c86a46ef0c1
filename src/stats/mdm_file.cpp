// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "base/plain_file.h"
#include "base/text_reading.h"
#include "stats/multi_study_design.h"

#include <QFileInfo>

namespace {

constexpr int fileVersion = 1;

/// A key and its whole number.
bool readKeyed(TokenStream& stream, const char* key, int& value) {
    const bool found = stream.word() == QLatin1String(key);
    value = stream.integer();
    return found && !stream.failed();
}

/// A key and a choice from 0 to 2.
template<typename Choice> bool readChoice(TokenStream& stream, const char* key, Choice& choice) {
    int value = 0;
    const bool read = readKeyed(stream, key, value) && value >= 0 && value <= 2;
    choice = read ? Choice(value) : Choice::None;
    return read;
}

/// A path in double quotes; false when it is empty or the closing quote is missing.
bool readPath(const QString& text, TokenStream& stream, QString& path) {
    constexpr int maximumPathLength = 4096;
    return readDelimitedString('"', path, stream, maximumPathLength) && !path.isEmpty() &&
           text[stream.position() - 1] == '"';
}

bool readSubjects(TokenStream& stream, std::vector<GLMStudy>& studies) {
    int own = 1;
    if (stream.atEnd()) {
        for (GLMStudy& study : studies)
            study.subject = own++;
        return true;
    }
    bool good = stream.word() == "Subjects:";
    for (GLMStudy& study : studies) {
        study.subject = stream.integer();
        good = good && study.subject >= 1;
    }
    return good && !stream.failed();
}

QByteArray quoted(QString path) {
    return '"' + path.replace('"', '\'').toUtf8() + '"';
}

bool notFound(const char* what, const QString& name) {
    showCritical(QString("ERROR in \"addStudyAndDesignMatrix\": %1 file name  \"%2\" not found! ")
                     .arg(what, name));
    return false;
}

} // namespace

bool addStudyAndDesignMatrix(MultiStudyList& list, const QString& studyFile,
                             const QString& designFile) {
    if (!fileExists(studyFile))
        return notFound("Study", studyFile);
    if (!fileExists(designFile))
        return notFound("Design matrix", designFile);
    if (readPredictorNamesOfRTC(designFile).isNull())
        return false;
    GLMStudy study;
    study.studyFile = studyFile;
    study.designFile = designFile;
    list.studies.push_back(study);
    return true;
}

QByteArray mdmText(const MultiStudyList& list) {
    QByteArray text = formatted("FileVersion:         %i\n"
                                "zTransformation:     %i\n"
                                "SeparatePredictors:  %i\n\n"
                                "NrOfStudies:         %i\n",
                                fileVersion, int(list.transformation), int(list.separation),
                                int(list.studies.size()));
    for (const GLMStudy& study : list.studies)
        text += quoted(study.studyFile) + ' ' + quoted(study.designFile) + '\n';
    if (list.separation == SeparatePredictors::Subjects && !list.studies.empty()) {
        text += "Subjects:";
        for (const GLMStudy& study : list.studies)
            text += ' ' + QByteArray::number(study.subject);
        text += '\n';
    }
    return text;
}

bool parseMDM(const QString& text, MultiStudyList& list) {
    constexpr qsizetype fewestStudyCharacters = 6; // two letters in quotes
    TokenStream stream(text);
    MultiStudyList read;
    int version = 0;
    int nrOfStudies = 0;
    if (!readKeyed(stream, "FileVersion:", version) || version != fileVersion ||
        !readChoice(stream, "zTransformation:", read.transformation) ||
        !readChoice(stream, "SeparatePredictors:", read.separation) ||
        !readKeyed(stream, "NrOfStudies:", nrOfStudies) || nrOfStudies < 0 ||
        nrOfStudies > text.size() / fewestStudyCharacters)
        return false;
    read.studies.resize(size_t(nrOfStudies));
    for (GLMStudy& study : read.studies)
        if (!readPath(text, stream, study.studyFile) || !readPath(text, stream, study.designFile))
            return false;
    if (read.separation == SeparatePredictors::Subjects && !readSubjects(stream, read.studies))
        return false;
    list = std::move(read);
    return true;
}

bool writeMDMFile(const QString& fileName, const MultiStudyList& list) {
    if (writeFileAtomically(fileName, mdmText(list)))
        return true;
    showCritical("ERROR: Can not open .mdm file !");
    return false;
}

bool readMDMFile(const QString& fileName, MultiStudyList& list) {
    QString text;
    if (!readTextFile(fileName, text)) {
        showCritical("ERROR: Can not open .mdm file !");
        return false;
    }
    if (!parseMDM(text, list)) {
        showCritical(
            QString("ERROR: \"%1\" is no list of runs (.mdm), or ends too early!").arg(fileName));
        return false;
    }
    const QString folder = paths::folderWithSlash(fileName);
    for (GLMStudy& study : list.studies)
        for (QString* path : {&study.studyFile, &study.designFile})
            if (QFileInfo(*path).isRelative())
                *path = paths::join(folder, *path);
    return true;
}
