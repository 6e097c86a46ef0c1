// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/classifier_records.h"

#include "base/byte_reader.h"
#include "base/byte_views.h"
#include "base/byte_writer.h"

namespace {

constexpr uint8_t version = 1;

/// Passes over everything that is recorded, in one order for both ways. `Recorded` may be const.
template<typename Archive, typename Recorded>
void passRecord(Archive& archive, Recorded& recorded) {
    archive.flag(recorded.isPredicting);
    archive.text(recorded.modelPath);
    archive.text(recorded.voxelsPath);
    auto& options = recorded.options;
    archive.number(options.mode);
    archive.number(options.pointPreOnset);
    archive.number(options.haemodynamicDelay);
    archive.number(options.postCondition);
    archive.number(options.trial.preOnset);
    archive.number(options.trial.postOnset);
    archive.flag(options.trial.useTrialDuration);
    archive.flag(options.trial.linearTrend);
    archive.number(options.trial.estimate);
    archive.flag(options.trial.zNormalization);
    archive.number(options.trial.intensityLimit);
}

struct Encoder {
    ByteWriter bytes;

    void flag(bool value) { bytes.u8(value); }
    template<typename Number> void number(Number value) { bytes.i32(int32_t(value)); }
    void text(const QString& value) { bytes.text(value); }
};

struct Decoder {
    ByteReader bytes;

    void flag(bool& value) { value = bytes.u8() != 0; }
    template<typename Number> void number(Number& value) { value = Number(bytes.i32()); }
    void text(QString& value) { value = bytes.text(); }
};

bool isValid(const LiveOptions& options) {
    for (const int volumes :
         {options.pointPreOnset, options.haemodynamicDelay, options.postCondition,
          options.trial.preOnset, options.trial.postOnset})
        if (volumes < 0 || volumes > mostWindowVolumes)
            return false;
    const int mode = int(options.mode);
    const int estimate = int(options.trial.estimate);
    return mode >= 0 && mode <= int(PredictionMode::Continuous) && estimate >= 0 &&
           estimate <= int(TrialEstimate::PercentBeta);
}

} // namespace

QByteArray encodedClassifier(const RecordedClassifier& recorded) {
    Encoder encoder;
    encoder.bytes.u8(version);
    passRecord(encoder, recorded);
    return byteArray(encoder.bytes.result());
}

std::optional<RecordedClassifier> decodedClassifier(const QByteArray& content) {
    Decoder decoder{ByteReader(bytesOf(content))};
    if (decoder.bytes.u8() != version)
        return {};
    RecordedClassifier recorded;
    passRecord(decoder, recorded);
    if (decoder.bytes.failed() || !isValid(recorded.options))
        return {};
    return recorded;
}
