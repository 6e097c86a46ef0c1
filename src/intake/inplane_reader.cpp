// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/inplane_reader.h"

#include "base/messages.h"
#include "base/paths.h"
#include "intake/dicom_volume_reader.h"
#include "intake/ge_headers.h"
#include "intake/image_transformation.h"
#include "intake/inplane_names.h"
#include "intake/raw_volume_reader.h"

namespace {

QString inplanePath(const RunSettings& settings, const QString& name) {
    return paths::join(settings.OverlayInplaneFolder, name);
}

/// Where the samples of a slice are.
enum class RawForm {
    BehindHeader, ///< one file for each slice, exactly as long as header and samples
    EndOfFile,    ///< one file for each slice
    OneFile,      ///< all slices, one after the other
};

/// A scan is one volume, read once.
class RawInplaneReader : public RawVolumeReader {
public:
    RawInplaneReader(const IntakeContext& context, InplaneScan& scan, RawForm form,
                     int settleMilliseconds, InplaneNames names)
        : RawVolumeReader(context), scan_(scan), form_(form),
          settleMilliseconds_(settleMilliseconds), names_(std::move(names)) {}

    [[nodiscard]] bool readFirstVolume() override {
        for (int slice = 0; slice < scan_.size.slices; ++slice) {
            const auto image = awaitSamples(fileOf(slice));
            if (!image)
                return false;
            toHostOrder(image->samples);
            if (!store(image->samples, scan_.slice(slice)))
                return false;
            // Such files have the same orientation as the run's.
            if (form_ == RawForm::OneFile)
                transformSlice(scan_.slice(slice), scan_.size.y, settings().ImageTransformation);
        }
        return true;
    }
    [[nodiscard]] bool readVolume(int) override { return false; }

private:
    [[nodiscard]] RawFile fileOf(int slice) const {
        const qint64 sliceBytes = qint64(scan_.size.sliceSamples() * sizeof(int16_t));
        RawFile file{.expected = {{inplanePath(settings(), names_(slice))}, sliceBytes, true},
                     .part = {.offset = 0, .length = sliceBytes},
                     .settleMilliseconds = settleMilliseconds_};
        switch (form_) {
        case RawForm::BehindHeader:
            file.expected.size = geIHeaderBytes + sliceBytes;
            file.expected.atLeast = false;
            file.part.offset = geIHeaderBytes;
            break;
        case RawForm::EndOfFile:
            file.part.fromEnd = true;
            break;
        case RawForm::OneFile:
            file.expected.size = sliceBytes * scan_.size.slices;
            file.part.offset = sliceBytes * slice;
            break;
        }
        return file;
    }

    InplaneScan& scan_;
    RawForm form_;
    int settleMilliseconds_;
    InplaneNames names_;
};

class DicomInplaneReader : public DicomVolumeReader {
public:
    DicomInplaneReader(const IntakeContext& context, InplaneScan& scan, InplaneNames names)
        : DicomVolumeReader(context, ImageKind::singleSlice()), scan_(scan),
          names_(std::move(names)) {}

    [[nodiscard]] bool readFirstVolume() override {
        for (int slice = 0; slice < scan_.size.slices; ++slice) {
            // Any size counts as arrived, since the length of the header is unknown.
            const ExpectedFile file{{inplanePath(settings(), names_(slice))}, 0, true};
            const auto image = awaitImage(file, Stage::FirstVolume, scan_.size.sliceSamples());
            // As in the loop, the byte order is that of the run, not of the file.
            if (!image || !takeSlice(*image, Stage::Loop, scan_.slice(slice)))
                return false;
        }
        return true;
    }
    [[nodiscard]] bool readVolume(int) override { return false; }

private:
    InplaneScan& scan_;
    InplaneNames names_;
};

} // namespace

bool readInplaneSeries(const IntakeContext& context, InplaneScan& scan) {
    const RunSettings& settings = context.settings;
    const QString type = settings.OverlayInplaneDataType.toUpper();
    const auto readRaw = [&](RawForm form, int settleMilliseconds, const InplaneNames& names) {
        return names &&
               RawInplaneReader(context, scan, form, settleMilliseconds, names).readFirstVolume();
    };
    constexpr int settleMilliseconds = 10;
    if (type == "GE_I")
        return readRaw(RawForm::BehindHeader, 0, threeDigitNames());
    if (type == "GE_MR")
        return readRaw(RawForm::BehindHeader, settleMilliseconds, seriesNames(settings));
    if (type == "GE_EXCITE_DICOM")
        return readRaw(RawForm::EndOfFile, settleMilliseconds, twoNumberNames(settings));
    if (type == "PHILIPS_ANALYZE_DRIN" || type == "ANALYZE_NW")
        return readRaw(RawForm::OneFile, 0,
                       [name = firstInplaneName(settings)](int) { return name; });
    if (type == "DICOM" || type == "SIEMENS_DICOM_MOSAIC") {
        const InplaneNames names = delimitedNames(settings);
        return names && DicomInplaneReader(context, scan, names).readFirstVolume();
    }
    showWarning("ERROR: Can not read high res inplanes - unknown file format");
    return false;
}
