// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/trf_file.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "volume/anatomy/keyed_values.h"

namespace {

/// The type of a transformation that takes one cube to another, as it is written.
constexpr int cubeToCube = 2;
constexpr int lowestVersion = 3;

void readOtherTypes(KeyedValues& values, int version, TransformationFile& file) {
    file.NrOfTransformationVolumes = values.integer();
    values.real(); // two shifts
    values.real();
    values.integer();
    if (version >= 4)
        values.integer();
    if (version < 5 || values.integer() <= 0)
        return;
    file.matrices[1] = values.nextMatrix();
    file.hasSecondMatrix = true;
}

bool namesACPCFile(const QString& fileName) {
    return fileName.endsWith("_ACPC.trf") || fileName.endsWith("_aACPC.trf");
}

void readFramingCube(KeyedValues& values, TransformationFile& file) {
    if (values.atEnd() || !values.key().startsWith("ACPCVMRFramingCube"))
        return;
    FramingCube cube;
    cube.side = values.nextInteger();
    cube.value = values.real();
    file.framingCube = cube;
}

/// The format has no escape for a quote.
QByteArray quoted(QString name) {
    return '"' + name.replace('"', '\'').toUtf8() + '"';
}

} // namespace

bool parseTransformation(const QString& text, const QString& fileName, TransformationFile& file) {
    KeyedValues values(text);
    TransformationFile found;
    const int version = KeyedValues::isVersionKey(values.key()) ? values.nextInteger() : 1;
    if (version < lowestVersion)
        return false;
    if (version >= 4 && values.text().toUpper() == "MATRIX") {
        found.matrices[0] = values.nextMatrix();
        found.hasMatrix = true;
    }
    found.TransformationType = values.integer();
    found.CoordinateSystem = values.integer();
    if (found.TransformationType != cubeToCube)
        readOtherTypes(values, version, found);
    if (version >= 6 && namesACPCFile(fileName))
        readFramingCube(values, found);
    if (values.failed())
        return false;
    file = found;
    return true;
}

bool readTransformationFile(const QString& path, TransformationFile& file) {
    QString text;
    if (readTextFile(path, text))
        return parseTransformation(text, path, file);
    showWarning(QString("ERROR: Can not open TRF file: \"%1\" !").arg(path));
    return false;
}

QByteArray transformationText(const C3dMatrix& matrix, const QString& sourceFile,
                              const QString& targetFile) {
    QByteArray text = "\nFileVersion:        5\n\nDataFormat:         Matrix\n\n";
    for (size_t row = 0; row < 4; ++row)
        text += formatted("%20.16f %20.16f %20.16f %20.16f\n", double(matrix.at(row, 0)),
                          double(matrix.at(row, 1)), double(matrix.at(row, 2)),
                          double(matrix.at(row, 3)));
    text += formatted("\nTransformationType: %d\nCoordinateSystem:   0\n\n", cubeToCube);
    text += "SourceFile:         " + quoted(sourceFile) + "\n";
    return text + "TargetFile:         " + quoted(targetFile) + "\n";
}
