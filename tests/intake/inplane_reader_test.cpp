// The inplane overlay series in all its forms.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/inplane_reader.h"

#include "intake_run.h"
#include "run/settings/first_file_names.h"

namespace {

// Two slices of 2 x 1 samples.
struct InplaneRun : IntakeRun {
    InplaneRun(const QString& type, const QString& firstName) : IntakeRun("DICOM", 64, 64, 2) {
        settings.OverlayInplaneFolder = settings.WatchFolder;
        settings.OverlayInplaneDataType = type;
        settings.OverlayInplaneFirstFileName = firstName;
        settings.ImageTransformation = 1;
        deriveInplaneFirstFile(settings);
        EXPECT_TRUE(scan.allocate(2, 1, 2));
    }
    bool read() { return readInplaneSeries({settings, project, state, pump}, scan); }
    std::vector<int> values() const {
        return {scan.samples.span().begin(), scan.samples.span().end()};
    }
    InplaneScan scan;
};

const QByteArray first = QByteArray::fromHex("01020304");
const QByteArray second = QByteArray::fromHex("05060708");
const QByteArray header(7904, 'h');

QByteArray dicom(const QByteArray& samples) {
    return DicomBytes().meta().header(0x7FE0, 0x0010, "OW", 4).raw(samples + "tail").bytes;
}

struct Series {
    QString type;
    QString firstName;
    QMap<QString, QByteArray> files;
    int milliseconds; ///< settling times of all files
};

TEST(InplaneReader, TakesTheFilesOfEachType) {
    const std::vector<Series> cases{
        {"ge_i", "anything", {{"I.001", header + first}, {"I.002", header + second}}, 0},
        {"GE_MR",
         "E1S2I9.MR",
         {{"E1S2I9.MR", header + first}, {"E1S2I10.MR", header + second}},
         20},
        {"GE_EXCITE_DICOM",
         "i98.MRDC.9",
         {{"i98.MRDC.9", "a" + first}, {"i99.MRDC.10", "more" + second}},
         20},
        // Turned by 180 degrees, slice by slice.
        {"PHILIPS_ANALYZE_DRIN",
         "D:\\scans\\in.img",
         {{"in.img", QByteArray::fromHex("0304010207080506ff")}},
         0},
        {"ANALYZE_NW", "in.img", {{"in.img", QByteArray::fromHex("0304010207080506")}}, 0},
        {"DICOM",
         "a-b-0099.dcm",
         {{"a-b-0099.dcm", dicom(first)}, {"a-b-0100.dcm", dicom(second)}},
         20},
        {"SIEMENS_DICOM_MOSAIC", "x-9", {{"x-9", dicom(first)}, {"x-10", dicom(second)}}, 20},
    };
    for (const Series& series : cases) {
        for (const ByteOrder order : {ByteOrder::Little, ByteOrder::Big}) {
            SCOPED_TRACE(series.type.toStdString());
            InplaneRun run(series.type, series.firstName);
            run.state.rawDataByteOrder = order;
            for (auto file = series.files.begin(); file != series.files.end(); ++file)
                run.write(file.key(), file.value());
            EXPECT_TRUE(run.read());
            // DICOM files too go by the order of the run.
            EXPECT_EQ(run.values(), order == ByteOrder::Little
                                        ? (std::vector{0x0201, 0x0403, 0x0605, 0x0807})
                                        : (std::vector{0x0102, 0x0304, 0x0506, 0x0708}));
            EXPECT_EQ(run.pump.milliseconds(), series.milliseconds);
        }
    }
}

TEST(InplaneReader, WaitsForWholeFilesUntilTheTimeOut) {
    for (const auto& [type, tooEarly, whole] :
         {std::tuple{"GE_MR", header + first + "x", header + first},
          {"ANALYZE_NW", first + "abc", first + first},
          {"GE_EXCITE_DICOM", QByteArray("abc"), first}}) {
        SCOPED_TRACE(type);
        const bool isMR = type == QString("GE_MR");
        InplaneRun run(type, isMR ? "I1" : "i1.MRDC.1");
        const QString name = run.settings.OverlayInplaneFirstFileName;
        run.write(isMR ? "I2" : "i2.MRDC.2", whole);
        run.write(name, tooEarly);
        EXPECT_FALSE(run.read());
        EXPECT_EQ(run.pump.milliseconds(), 1100);
        run.pump.after(950, [&] { run.write(name, whole); });
        EXPECT_TRUE(run.read());
    }
}

TEST(InplaneReader, RefusesNamesAndTypesThatItDoesNotKnow) {
    const char* noDelimiter = "ERROR: Could not split file name, delimiter - not found!";
    const char* noNumber = "ERROR: No image number found in high res inplane file name \"*";
    for (const auto& [type, firstName, message] :
         {std::tuple{"SIEMENS_IMA", "1-2-3.ima",
                     "ERROR: Can not read high res inplanes - unknown file format"},
          {"DICOM", "a.b-c", noDelimiter},
          {"DICOM", "a-b.dcm", noNumber},
          {"GE_EXCITE_DICOM", "i1.MRDC", noNumber}}) {
        InplaneRun run(type, firstName);
        run.messages.expect(MessageLevel::Warning, message);
        EXPECT_FALSE(run.read());
        EXPECT_EQ(run.pump.milliseconds(), 0);
    }
}

} // namespace
