// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/glm_file.h"

#include "base/byte_views.h"
#include "base/data_stream.h"
#include "base/file_writing.h"
#include "base/messages.h"
#include "base/plain_file.h"
#include "base/text_reading.h"

#include <QBuffer>
#include <QDataStream>
#include <QSaveFile>
#include <algorithm>
#include <cmath>

namespace {

constexpr qint16 fittedType = 2;
constexpr qint16 savedType = 3;
constexpr qint16 functionalResolution = 3;
constexpr qsizetype longestText = 4095; // bytes before the zero
constexpr qint64 fewestStudyBytes = 6;  // data points and two zeros
constexpr qint64 fewestPredictorBytes = 14;

bool allFinite(std::span<const float> values) {
    return std::ranges::all_of(values, [](float value) { return std::isfinite(value); });
}

/// One pass over a file.
class GLMReader {
public:
    GLMReader(QIODevice& device, const VolumeSize& size, WholeRunModel& model)
        : device_(device), stream_(&device), size_(size), model_(model) {
        makeLittleEndian(stream_);
    }

    [[nodiscard]] GLMParseResult read() {
        GLMParseResult result = readStart();
        if (result != GLMParseResult::Ok)
            return result;
        if (!readStudies() || !readPredictors() || device_.bytesAvailable() != floatBytes())
            return GLMParseResult::Damaged;
        result = readNumbers();
        if (result != GLMParseResult::Ok)
            return result;
        return deriveFromDesign(model_) ? GLMParseResult::Ok : GLMParseResult::NotDerived;
    }

private:
    bool readText(QString& text) {
        QByteArray bytes;
        char character = ' ';
        while (device_.getChar(&character) && character != 0 && bytes.size() < longestText)
            bytes += character;
        text = decodedText(bytes);
        // Anything but a zero here means the end of the file, or a text that is too long.
        return character == 0 && stream_.status() == QDataStream::Ok;
    }

    GLMParseResult readStart() {
        qint16 type = 0, resolution = 0, x = 0, y = 0, slices = 0;
        qint8 reserved = 0, transformation = 0, separation = 0, corrected = 0, maskFlag = 0;
        qint32 maskVoxels = 0;
        QString maskFile;
        stream_ >> type >> reserved >> reserved >> points_ >> predictors_ >> studies_ >>
            transformation >> separation >> resolution >> corrected >> model_.MeanAR1Before >>
            model_.MeanAR1After >> x >> y >> slices >> maskFlag >> maskVoxels;
        const auto isChoice = [](qint8 value) { return value >= 0 && value <= 2; };
        if (stream_.status() != QDataStream::Ok || !readText(maskFile) ||
            (type != fittedType && type != savedType) || !isChoice(transformation) ||
            !isChoice(separation) || corrected < 0 || corrected > 1 ||
            !std::isfinite(model_.MeanAR1Before) || !std::isfinite(model_.MeanAR1After))
            return GLMParseResult::Damaged;
        if (resolution != functionalResolution)
            return GLMParseResult::OtherDataType;
        if (size_.samples() == 0)
            return GLMParseResult::NoFunctionalProject;
        if (size_ != VolumeSize{x, y, slices})
            return GLMParseResult::OtherDimensions;
        model_.GLMType = type;
        model_.size = size_;
        model_.transformation = ZTransformation(transformation);
        model_.separation = SeparatePredictors(separation);
        model_.CorrectSerialCorrelations = corrected == 1;
        return countsArePossible() ? GLMParseResult::Ok : GLMParseResult::Damaged;
    }

    [[nodiscard]] qint64 nrOfMapRows() const {
        return 2 * qint64(predictors_) + (model_.CorrectSerialCorrelations ? 4 : 3);
    }
    /// Everything behind the predictors. Call it only for counts that are possible.
    [[nodiscard]] qint64 floatBytes() const {
        const qint64 floats =
            (qint64(points_) + predictors_) * predictors_ + nrOfMapRows() * qint64(size_.samples());
        return floats * qint64(sizeof(float));
    }
    /// Divisions, since the products of hostile counts may overflow 64 bits.
    [[nodiscard]] bool countsArePossible() const {
        const qint64 bytes = device_.bytesAvailable();
        const qint64 floats = bytes / qint64(sizeof(float));
        return points_ > 0 && predictors_ > 0 && studies_ > 0 &&
               studies_ * fewestStudyBytes + predictors_ * fewestPredictorBytes <= bytes &&
               points_ <= floats / predictors_ && predictors_ <= floats / predictors_ &&
               nrOfMapRows() <= floats / qint64(size_.samples()) && floatBytes() <= bytes;
    }

    bool readStudies() {
        qint64 sum = 0;
        for (qint32 i = 0; i < studies_; ++i) {
            qint32 dataPoints = 0;
            GLMStudy study;
            stream_ >> dataPoints;
            if (dataPoints <= 0 || !readText(study.studyFile) || !readText(study.designFile))
                return false;
            study.dataPoints = dataPoints;
            sum += dataPoints;
            model_.studies.push_back(study);
        }
        return sum == points_;
    }

    bool readPredictors() {
        const auto isChannel = [](qint32 value) { return value >= 0 && value <= 255; };
        for (qint32 i = 0; i < predictors_; ++i) {
            qint32 red = 0, green = 0, blue = 0;
            GLMPredictor predictor;
            if (!readText(predictor.label) || !readText(predictor.name))
                return false;
            stream_ >> red >> green >> blue;
            if (!isChannel(red) || !isChannel(green) || !isChannel(blue))
                return false;
            predictor.color = {red, green, blue};
            model_.predictors.push_back(predictor);
        }
        return stream_.status() == QDataStream::Ok;
    }

    GLMParseResult readNumbers() {
        const size_t p = size_t(predictors_);
        if (!memoryIsAvailable((size_t(points_) + p) * p, sizeof(float)) ||
            !model_.GLMMaps.allocate(size_t(nrOfMapRows()) * size_.samples()))
            return GLMParseResult::InsufficientMemory;
        model_.GLMDesign.resize(size_t(points_) * p);
        model_.GLMInverse.resize(p * p);
        for (const std::span<float> values :
             {std::span<float>(model_.GLMDesign), std::span<float>(model_.GLMInverse),
              model_.GLMMaps.span()})
            if (!readFloats(stream_, values) || !allFinite(values))
                return GLMParseResult::Damaged;
        return GLMParseResult::Ok;
    }

    QIODevice& device_;
    QDataStream stream_;
    VolumeSize size_;
    WholeRunModel& model_;
    qint32 points_ = 0;
    qint32 predictors_ = 0;
    qint32 studies_ = 0;
};

GLMParseResult parseDevice(QIODevice& device, const VolumeSize& size, WholeRunModel& model) {
    model.release();
    const GLMParseResult result = GLMReader(device, size, model).read();
    if (result != GLMParseResult::Ok)
        model.release();
    return result;
}

/// Empty where a message has been shown already.
QString messageOf(GLMParseResult result, const QString& fileName) {
    switch (result) {
    case GLMParseResult::Damaged:
        return QStringLiteral("ERROR: GLM file \"%1\" is damaged or ends too early!\n\nWithout "
                              "this file the model is computed from the data.")
            .arg(fileName);
    case GLMParseResult::OtherDataType:
        return QStringLiteral("ERROR: You try to read a .VMR GLM into a .FMR project !");
    case GLMParseResult::NoFunctionalProject:
        return QStringLiteral("ERROR: You try to read a FMR GLM into a VMR or SRF project !");
    case GLMParseResult::OtherDimensions:
        return QStringLiteral("ERROR: Dimensions of FMR GLM do not fit to loaded .FMR project !");
    case GLMParseResult::InsufficientMemory:
        return QStringLiteral("ERROR: Insufficient memory for creating GLM-VTC map file!");
    case GLMParseResult::Ok:
    case GLMParseResult::NotDerived:
        break;
    }
    return {};
}

/// The text's bytes, and a zero.
void writeText(QDataStream& stream, const QString& text) {
    QByteArray bytes = encodedText(text);
    bytes.replace('\0', "");
    bytes.truncate(longestText);
    stream.writeRawData(bytes.constData(), int(bytes.size() + 1));
}

void writeStart(QDataStream& stream, const WholeRunModel& model) {
    constexpr qint8 noMask = 0;
    constexpr qint32 noMaskVoxels = -1;
    stream << savedType << qint8(0) << qint8(0) << qint32(model.GLMDataPoints())
           << qint32(model.GLMPredictors()) << qint32(model.nrOfStudies())
           << qint8(model.transformation) << qint8(model.separation) << functionalResolution
           << qint8(model.CorrectSerialCorrelations ? 1 : 0) << model.MeanAR1Before
           << model.MeanAR1After << qint16(model.size.x) << qint16(model.size.y)
           << qint16(model.size.slices) << noMask << noMaskVoxels;
    writeText(stream, {});
}

} // namespace

GLMParseResult parseGLM(std::span<const uint8_t> bytes, const VolumeSize& size,
                        WholeRunModel& model) {
    const QByteArray view = byteArrayView(bytes);
    QBuffer buffer;
    buffer.setData(view);
    if (!buffer.open(QIODevice::ReadOnly))
        return GLMParseResult::Damaged;
    return parseDevice(buffer, size, model);
}

QByteArray glmHeader(const WholeRunModel& model) {
    QByteArray header;
    QDataStream stream(&header, QIODevice::WriteOnly);
    makeLittleEndian(stream);
    writeStart(stream, model);
    for (const GLMStudy& study : model.studies) {
        stream << qint32(study.dataPoints);
        writeText(stream, study.studyFile);
        writeText(stream, study.designFile);
    }
    const auto channel = [](int value) { return qint32(std::clamp(value, 0, 255)); };
    for (const GLMPredictor& predictor : model.predictors) {
        writeText(stream, predictor.label);
        writeText(stream, predictor.name);
        stream << channel(predictor.color.red) << channel(predictor.color.green)
               << channel(predictor.color.blue);
    }
    writeFloats(stream, model.GLMDesign);
    writeFloats(stream, model.GLMInverse);
    return header;
}

bool readGLMFile(const QString& fileName, const VolumeSize& size, WholeRunModel& model) {
    model.release();
    QFile file(fileName);
    if (!openPlainFile(file)) {
        showCritical("ERROR: Unable to open GLM file for reading!");
        return false;
    }
    const GLMParseResult result = parseDevice(file, size, model);
    const QString message = messageOf(result, fileName);
    if (!message.isEmpty())
        showCritical(message);
    return result == GLMParseResult::Ok;
}

bool writeGLMFile(const QString& fileName, WholeRunModel& model) {
    QSaveFile file(fileName.isEmpty() ? defaultGLMFileName : fileName);
    bool written = model.isValid() && openToReplace(file);
    if (written) {
        const QByteArray header = glmHeader(model);
        QDataStream stream(&file);
        makeLittleEndian(stream);
        stream.writeRawData(header.constData(), int(header.size()));
        for (int row = 0; row < model.nrOfMapRows(); ++row)
            writeFloats(stream, std::as_const(model).row(row));
        written = stream.status() == QDataStream::Ok && commitFile(file);
    }
    if (!written) {
        showCritical("ERROR: Unable to open GLM VTC map file for writing!");
        return false;
    }
    model.GLMType = savedType;
    return true;
}
