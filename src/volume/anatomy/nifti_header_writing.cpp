// SPDX-License-Identifier: GPL-3.0-or-later
#include "volume/anatomy/nifti_header_writing.h"

#include "base/byte_writer.h"

namespace {

/// Writes numbers in the order of the header, whose fields have these sizes.
class HeaderWriter {
public:
    void i16(int64_t value) {
        const auto bits = uint16_t(value);
        bytes_.u8(uint8_t(bits));
        bytes_.u8(uint8_t(bits >> 8));
    }
    void f32(double value) { bytes_.f32(float(value)); }
    void u8(int value) { bytes_.u8(uint8_t(value)); }
    void i32(int value) { bytes_.i32(value); }
    /// Fields that are not used, such as those of the format before NIfTI.
    void zeros(size_t count) {
        while (count-- > 0)
            bytes_.u8(0);
    }
    /// UTF-8 of `size` bytes, the last of them 0, cut between two characters.
    void text(const QString& text, size_t size) {
        QByteArray encoded = text.toUtf8();
        if (size_t(encoded.size()) >= size) {
            qsizetype end = qsizetype(size) - 1;
            while (end > 0 && (uint8_t(encoded[end]) & 0xC0) == 0x80)
                --end;
            encoded.truncate(end);
        }
        bytes_.raw(bytesOf(encoded));
        zeros(size - size_t(encoded.size()));
    }
    [[nodiscard]] QByteArray result() const { return byteArray(bytes_.result()); }

private:
    ByteWriter bytes_;
};

void addDimensions(HeaderWriter& writer, const NiftiHeader& header, bool hasVolumes) {
    writer.i16(hasVolumes ? 4 : 3);
    for (const int64_t side : header.size)
        writer.i16(side);
    writer.i16(header.nrOfVolumes);
    for (int unused = 5; unused < 8; ++unused)
        writer.i16(1);
}

void addVoxelSizes(HeaderWriter& writer, const NiftiHeader& header, const NiftiMeaning& meaning,
                   double handedness, bool hasVolumes) {
    writer.f32(handedness);
    for (const double size : header.voxelSizes)
        writer.f32(size);
    writer.f32(meaning.repetitionTime > 0.0 ? meaning.repetitionTime : double(hasVolumes));
    for (int unused = 5; unused < 8; ++unused)
        writer.f32(0.0);
}

void addPlace(HeaderWriter& writer, const std::optional<NiftiPlace>& place,
              const NiftiRotation& rotation) {
    const NiftiMatrix matrix = place ? place->matrix : NiftiMatrix();
    const int code = place ? int(place->space) : 0;
    writer.i16(code); // of the qform
    writer.i16(code); // of the sform
    for (const double component : rotation.quaternion)
        writer.f32(component);
    for (const auto& row : matrix.rows)
        writer.f32(row[3]);
    for (const auto& row : matrix.rows)
        for (const double element : row)
            writer.f32(element);
}

} // namespace

QByteArray nifti1Header(const NiftiHeader& header, const NiftiMeaning& meaning) {
    constexpr int slicesAlongThird = 3 << 4;
    constexpr int millimetres = 2;
    constexpr int seconds = 8;
    const bool hasVolumes = header.nrOfVolumes > 1 || meaning.repetitionTime > 0.0;
    const NiftiRotation rotation =
        header.bySform ? rotationOf(header.bySform->matrix) : NiftiRotation();
    HeaderWriter writer;
    writer.i32(int(nifti1HeaderBytes));
    writer.zeros(35);
    writer.u8(slicesAlongThird);
    addDimensions(writer, header, hasVolumes);
    for (const float parameter : meaning.intentParameters)
        writer.f32(double(parameter));
    writer.i16(meaning.intentCode);
    writer.i16(int64_t(header.kind));
    writer.i16(int64_t(bytesOf(header.kind)) * 8);
    writer.i16(0); // first slice
    addVoxelSizes(writer, header, meaning, rotation.handedness, hasVolumes);
    writer.f32(double(nifti1DataOffset));
    writer.f32(1.0); // slope
    writer.f32(0.0); // intercept
    writer.i16(0);   // last slice
    writer.u8(0);    // order of slices
    writer.u8(millimetres + (meaning.repetitionTime > 0.0 ? seconds : 0));
    writer.zeros(24); // window of display, times of slices
    writer.text(meaning.description, 80);
    writer.zeros(24); // another file
    addPlace(writer, header.bySform, rotation);
    writer.text(meaning.intentName, 16);
    writer.text("n+1", 4);
    writer.zeros(nifti1DataOffset - nifti1HeaderBytes);
    return writer.result();
}
