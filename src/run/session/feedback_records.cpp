// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/feedback_records.h"

#include "base/byte_reader.h"
#include "base/byte_views.h"
#include "base/byte_writer.h"

#include <cmath>

namespace {

constexpr uint8_t version = 1;

/// Passes over everything that is recorded, in one order for both ways. `Choices` may be const.
template<typename Archive, typename Choices> void passChoices(Archive& archive, Choices& choices) {
    archive.number(choices.roiMode);
    archive.flag(choices.UseSVMOutput);
    archive.number(choices.type);
    archive.flag(choices.BlockOutput);
    archive.flag(choices.VisualizeROIs);
    for (auto& maximum : choices.MaxPSC)
        archive.real(maximum);
    archive.flag(choices.SetToMaxValue);
    archive.number(choices.NrOfPastValues);
    archive.number(choices.DisplayBaseLevel);
    archive.flag(choices.UseTCGLMB0ForBaseline);
    archive.flag(choices.ShowConditionNameAsInstruction);
    archive.flag(choices.ShowValues);
    archive.number(choices.NoFbCondition);
    archive.number(choices.NoFbStartShift);
    archive.number(choices.NoFbStopShift);
    archive.number(choices.BaselineStartShift);
    archive.number(choices.BaselineEndShift);
}

template<typename Archive, typename Settings>
void passDelayed(Archive& archive, Settings& settings) {
    archive.number(settings.condition);
    archive.number(settings.BaselineFrom);
    archive.number(settings.BaselineTo);
    archive.number(settings.ModulationFrom);
    archive.number(settings.ModulationTo);
    archive.number(settings.UpdateFeedbackFile);
    archive.real(settings.ScaleFactor);
    archive.text(settings.fileName);
}

struct Encoder {
    ByteWriter bytes;

    void flag(bool value) { bytes.u8(value); }
    template<typename Number> void number(Number value) { bytes.i32(int32_t(value)); }
    template<typename Real> void real(Real value) { bytes.f32(float(value)); }
    void text(const QString& value) { bytes.text(value); }
};

struct Decoder {
    ByteReader bytes;

    void flag(bool& value) { value = bytes.u8() != 0; }
    template<typename Number> void number(Number& value) { value = Number(bytes.i32()); }
    template<typename Real> void real(Real& value) { value = Real(bytes.f32()); }
    void text(QString& value) { value = bytes.text(); }
};

bool isWithin(int value, int least, int most) {
    return value >= least && value <= most;
}

bool isValid(const FeedbackChoices& choices) {
    constexpr int mostVolumes = 100000;
    for (const float maximum : choices.MaxPSC)
        if (!std::isfinite(maximum))
            return false;
    for (const int shift : {choices.NoFbStartShift, choices.NoFbStopShift,
                            choices.BaselineStartShift, choices.BaselineEndShift})
        if (!isWithin(shift, 0, mostVolumes))
            return false;
    return isWithin(choices.roiMode, noROIMode, nrOfROIModes - 1) &&
           isWithin(int(choices.type), 0, nrOfFeedbackTypes - 1) &&
           isWithin(choices.NrOfPastValues, 0, mostVolumes) &&
           isWithin(choices.DisplayBaseLevel, 0, thermometerSteps) && choices.NoFbCondition >= -1;
}

bool isValid(const DelayedFeedbackSettings& settings) {
    return std::isfinite(settings.ScaleFactor) && delayedFeedbackFault(settings).isEmpty();
}

} // namespace

QByteArray encodedFeedback(const RecordedFeedback& recorded) {
    Encoder encoder;
    encoder.bytes.u8(version);
    passChoices(encoder, recorded.choices);
    encoder.flag(recorded.delayed.has_value());
    if (recorded.delayed)
        passDelayed(encoder, *recorded.delayed);
    return byteArray(encoder.bytes.result());
}

std::optional<RecordedFeedback> decodedFeedback(const QByteArray& content) {
    Decoder decoder{ByteReader(bytesOf(content))};
    if (decoder.bytes.u8() != version)
        return {};
    RecordedFeedback recorded;
    passChoices(decoder, recorded.choices);
    bool delayed = false;
    decoder.flag(delayed);
    if (delayed)
        passDelayed(decoder, recorded.delayed.emplace());
    if (decoder.bytes.failed() || !isValid(recorded.choices) ||
        (recorded.delayed && !isValid(*recorded.delayed)))
        return {};
    return recorded;
}
