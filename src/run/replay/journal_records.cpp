// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/journal_records.h"

#include "base/byte_reader.h"
#include "base/byte_views.h"
#include "base/byte_writer.h"
#include "run/replay/played_run.h"

#include <QtEndian>
#include <cstring>

namespace {

/// One list of the fields for both directions.
class HeadWriter : public ByteWriter {
public:
    void field(qint64 value) { i64(value); }
    void field(int value) { i32(value); }
    void field(bool value) { u8(value ? 1 : 0); }
    void field(float value) { f32(value); }
    void field(const QString& value) { text(value); }
    void field(const QByteArray& value) { bytes(bytesOf(value)); }
    void field(const QStringList& values) {
        u32(uint32_t(values.size()));
        for (const QString& value : values)
            text(value);
    }
    void field(const std::vector<float>& values) {
        u32(uint32_t(values.size()));
        for (const float value : values)
            f32(value);
    }
};

class HeadReader : public ByteReader {
public:
    using ByteReader::ByteReader;
    void field(qint64& value) { value = i64(); }
    void field(int& value) { value = i32(); }
    void field(bool& value) { value = u8() != 0; }
    void field(float& value) { value = f32(); }
    void field(QString& value) { value = text(); }
    void field(QByteArray& value) { value = sizedBytes(); }
    void field(QStringList& values) {
        values.clear();
        for (uint32_t left = u32(); left > 0 && !failed(); --left)
            values << text();
    }
    void field(std::vector<float>& values) {
        values.clear();
        for (uint32_t left = u32(); left > 0 && !failed(); --left)
            values.push_back(f32());
    }
};

// Fields are appended at the end of a list, never inserted: with an inserted one the version of the
// journal rises.
template<typename Coder, typename Geometry> void codeGeometry(Coder& coder, Geometry& geometry) {
    coder.field(geometry.ResolutionX);
    coder.field(geometry.ResolutionY);
    coder.field(geometry.NrOfSlices);
    coder.field(geometry.pixelSizeX);
    coder.field(geometry.pixelSizeY);
    coder.field(geometry.sliceThickness);
    coder.field(geometry.sliceGap);
}

template<typename Coder, typename Position> void codePosition(Coder& coder, Position& position) {
    coder.field(position.positionInfoValid);
    coder.field(position.sizesFromHeaders);
    coder.field(position.coordinateSystem);
    for (auto* vector : {&position.sliceCenterFirst, &position.sliceCenterLast,
                         &position.rowDirection, &position.columnDirection})
        for (auto& component : *vector)
            coder.field(component);
    coder.field(position.fovRows);
    coder.field(position.fovColumns);
}

template<typename Coder, typename Header> void codeProject(Coder& coder, Header& project) {
    codeGeometry(coder, project);
    coder.field(project.fileVersion);
    coder.field(project.NrOfVolumes);
    coder.field(project.NrOfSkippedVolumes);
    coder.field(project.Prefix);
    coder.field(project.DataStorageFormat);
    coder.field(project.TR);
    coder.field(project.InterSliceTime);
    coder.field(project.TimeResolutionVerified);
    coder.field(project.TE);
    coder.field(project.SliceAcquisitionOrder);
    coder.field(project.SliceAcquisitionOrderVerified);
    coder.field(project.sliceTimes);
    coder.field(project.LoadAMRFile);
    coder.field(project.ShowAMRFile);
    coder.field(project.LayoutNColumns);
    coder.field(project.LayoutNRows);
    coder.field(project.LayoutZoomLevel);
    coder.field(project.SegmentSize);
    coder.field(project.SegmentOffset);
    coder.field(project.ProtocolFiles);
    coder.field(project.VoxelResolutionVerified);
    codePosition(coder, project.position);
    coder.field(project.radiologicalConvention);
    coder.field(project.FirstDataSourceFile);
}

template<typename Coder, typename Head> void codeHead(Coder& coder, Head& head) {
    coder.field(head.startedAt);
    coder.field(head.programVersion);
    for (auto* input : {&head.settings, &head.protocol, &head.contrasts}) {
        coder.field(input->path);
        coder.field(input->content);
    }
    coder.field(head.protocolHeadBytes);
    coder.field(head.projectName);
    coder.field(head.targetFolder);
    coder.field(head.watchFolder);
    codeProject(coder, head.project);
}

} // namespace

std::vector<uint8_t> encodeHead(const RunHead& head) {
    HeadWriter writer;
    codeHead(writer, head);
    return writer.result();
}

bool decodeHead(std::span<const uint8_t> payload, RunHead& head) {
    HeadReader reader(payload);
    codeHead(reader, head);
    const VolumeSize size = head.project.size();
    constexpr int mostVolumes = 1 << 20;
    constexpr int mostSamples = 1 << 16; // along an axis
    const auto isLength = [](int length) { return length > 0 && length <= mostSamples; };
    return !reader.failed() && isLength(size.x) && isLength(size.y) && isLength(size.slices) &&
           head.project.NrOfVolumes > 0 && head.project.NrOfVolumes <= mostVolumes &&
           hasTimesOfARun(head.project);
}

std::vector<uint8_t> encodeArrival(const VolumeArrival& arrival) {
    ByteWriter writer;
    writer.i32(arrival.volume);
    writer.i64(arrival.wallClock);
    writer.i64(arrival.sinceFirstVolume);
    return writer.result();
}

bool decodeVolume(std::span<const uint8_t> payload, VolumeArrival& arrival,
                  std::span<const uint8_t>& samples) {
    ByteReader reader(payload);
    arrival.volume = reader.i32();
    arrival.wallClock = reader.i64();
    arrival.sinceFirstVolume = reader.i64();
    samples = reader.take(reader.remaining());
    return !reader.failed();
}

std::vector<uint8_t> encodeListenerRecord(const ListenerRecord& record) {
    HeadWriter writer;
    writer.u8(uint8_t(record.moment));
    writer.field(record.record.name);
    writer.field(record.record.content);
    return writer.result();
}

bool decodeListenerRecord(std::span<const uint8_t> payload, ListenerRecord& record) {
    ByteReader reader(payload);
    const uint8_t moment = reader.u8();
    record.moment = RecordMoment(moment);
    record.record.name = reader.sizedBytes();
    record.record.content = reader.sizedBytes();
    return !reader.failed() && moment <= uint8_t(RecordMoment::BeforeRegions);
}

std::span<const uint8_t> sampleBytes(std::span<const int16_t> samples,
                                     std::vector<int16_t>& swapped) {
    if constexpr (hostByteOrder == ByteOrder::Big) {
        swapped.resize(samples.size());
        qToLittleEndian<quint16>(samples.data(), qsizetype(samples.size()), swapped.data());
        samples = swapped;
    }
    return {reinterpret_cast<const uint8_t*>(samples.data()), samples.size_bytes()};
}

bool copySamples(std::span<const uint8_t> bytes, std::span<int16_t> samples) {
    if (bytes.size() != samples.size_bytes())
        return false;
    qFromLittleEndian<quint16>(bytes.data(), qsizetype(samples.size()), samples.data());
    return true;
}

bool notAfter(RecordMoment first, RecordMoment second) {
    const auto place = [](RecordMoment moment) {
        return moment == RecordMoment::BeforeRegions ? -1 : int(moment);
    };
    return place(first) <= place(second);
}
