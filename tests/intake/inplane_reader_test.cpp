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
        EXPECT_TRUE(scan.allocate({2, 1, 2}));
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

TEST(InplaneReader, TakesTheFilesOfEachType) {
    // Type, first name, files and their settling times together.
    using Files = QMap<QString, QByteArray>;
    const std::vector<std::tuple<const char*, QString, Files, int>> cases{
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
        {"SIEMENS_DICOM_MOSAIC",
         "a-b-0099.dcm",
         {{"a-b-0099.dcm", dicom(first)}, {"a-b-0100.dcm", dicom(second)}},
         20},
    };
    for (const auto& [type, firstName, files, milliseconds] : cases) {
        for (const ByteOrder order : {ByteOrder::Little, ByteOrder::Big}) {
            SCOPED_TRACE(type);
            InplaneRun run(type, firstName);
            run.state.rawDataByteOrder = order;
            for (auto file = files.begin(); file != files.end(); ++file)
                run.write(file.key(), file.value());
            EXPECT_TRUE(run.read());
            // DICOM files too go by the order of the run.
            EXPECT_EQ(run.values(), order == ByteOrder::Little
                                        ? (std::vector{0x0201, 0x0403, 0x0605, 0x0807})
                                        : (std::vector{0x0102, 0x0304, 0x0506, 0x0708}));
            EXPECT_EQ(run.pump.milliseconds(), milliseconds);
        }
    }
}

TEST(InplaneReader, WaitsForWholeFilesUntilTheTimeOut) {
    for (const auto& [type, name, tooEarly, whole] :
         {std::tuple{"GE_MR", "I1", header + first + "x", header + first},
          {"ANALYZE_NW", "a.img", first + "abc", first + first},
          {"GE_EXCITE_DICOM", "i1.MRDC.1", "abc", first}}) {
        SCOPED_TRACE(type);
        InplaneRun run(type, name);
        for (const char* next : {"I2", "i2.MRDC.2"})
            run.write(next, whole);
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
        run.messages.expectWarning(message);
        EXPECT_FALSE(run.read());
        EXPECT_EQ(run.pump.milliseconds(), 0);
    }
}

} // namespace
