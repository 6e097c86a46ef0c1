// Series of real scanners from the settings file to the saved project, held against what an
// independent reader found in the same files (tests/intake/make_expected.py).
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/session_fixture.h"
#include "support/test_data.h"

#include "run/loop/motion_parameters_file.h"

#include <QCryptographicHash>
#include <cmath>
#include <optional>

namespace {

struct ExpectedMosaic {
    QString name;          ///< below the folder of scanner files
    QByteArray digest;     ///< of the slices, one behind the other
    QList<double> numbers; ///< as the head of the table lists them
    [[nodiscard]] int whole(int index) const { return int(numbers[index]); }
};

QList<ExpectedMosaic> expectedMosaics() {
    QFile file(VELO_SOURCE_DIR "/tests/intake/expected_mosaics.tsv");
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QList<ExpectedMosaic> table;
    for (QByteArray line = file.readLine(); !line.isEmpty(); line = file.readLine()) {
        if (line.startsWith('#'))
            continue;
        const QList<QByteArray> fields = line.trimmed().split('\t');
        ExpectedMosaic row{fields[0], fields[1], {}};
        for (const QByteArray& number : fields.mid(2))
            row.numbers << number.toDouble();
        table << row;
    }
    return table;
}

// Of 16-bit little-endian samples.
QByteArray digestOf(const QByteArray& samples) {
    return QCryptographicHash::hash(samples, QCryptographicHash::Sha256).toHex();
}

// The first value behind a key of the project file; not a number where the key is missing.
double fmrValue(const QByteArray& text, const QByteArray& key) {
    const qsizetype start = text.indexOf('\n' + key + ':');
    return start < 0 ? std::nan("")
                     : text.mid(start + key.size() + 2).split('\n').first().trimmed().toDouble();
}

class RealSeriesTest : public SessionFixture {
protected:
    RealSeriesTest() { session.makeReader = makeVolumeReader; }

    // Runs on these files, under names that count up. TR and geometry of the settings are wrong.
    void record(const QStringList& files, const ExpectedMosaic& sizes, int skip,
                std::optional<MotionMethod> method = {}) {
        const int analysed = int(files.size()) - skip;
        const QString protocol = defaultProtocol().section("NrOfConditions", 0, 0) +
                                 QString("NrOfConditions: 2\n\nRest\n1\n1 %1\nColor: 9 9 9\n"
                                         "\nTask\n1\n%1 %2\nColor: 255 0 0\n")
                                     .arg((analysed + 1) / 2)
                                     .arg(analysed);
        writeSession(int(files.size()), skip,
                     {{"MosaicResolutionX:", QString::number(sizes.whole(0))},
                      {"MosaicResolutionY:", QString::number(sizes.whole(1))},
                      {"MatrixSizeX:", QString::number(sizes.whole(2))},
                      {"MatrixSizeY:", QString::number(sizes.whole(3))},
                      {"NrOfSlices:", QString::number(sizes.whole(4))},
                      {"MotionCorrection:", QString::number(method.has_value())}},
                     protocol);
        if (method)
            put("test-1.vco",
                "\nMotionCorrectionMethod: " + QByteArray::number(int(*method)) + '\n',
                QIODevice::Append);
        QDir(path("incoming")).removeRecursively();
        ASSERT_TRUE(QDir().mkpath(path("incoming")));
        for (int i = 0; i < files.size(); ++i)
            ASSERT_TRUE(QFile::link(
                QFileInfo(files[i]).absoluteFilePath(),
                path(QString("incoming/001_000004_%1.dcm").arg(i + 1, 6, 10, QChar('0')))));
        session.runButtonPressed();
    }

    void expectData(const QList<ExpectedMosaic>& series, int skip) {
        const QByteArray data = content("results/test.stc");
        const ExpectedMosaic& first = series[0];
        const qsizetype sliceBytes = qsizetype(2) * first.whole(2) * first.whole(3);
        const qsizetype volumes = series.size() - skip;
        ASSERT_EQ(data.size(), volumes * first.whole(4) * sliceBytes);
        for (qsizetype volume = 0; volume < volumes; ++volume) {
            QByteArray slices;
            for (int slice = 0; slice < first.whole(4); ++slice)
                slices += data.mid((slice * volumes + volume) * sliceBytes, sliceBytes);
            EXPECT_EQ(digestOf(slices), series[volume + skip].digest) << "volume " << volume;
        }
    }

    void expectHeader(const ExpectedMosaic& first, int volumes) {
        const QByteArray text = content("results/test.fmr");
        QMap<QByteArray, double> expected{{"NrOfVolumes", volumes},
                                          {"ResolutionX", first.numbers[2]},
                                          {"ResolutionY", first.numbers[3]},
                                          {"TimeResolutionVerified", 1},
                                          {"VoxelResolutionVerified", 1},
                                          {"PosInfosVerified", 1},
                                          {"SliceAcquisitionOrderVerified", first.whole(8) != 0},
                                          {"FoVCols", first.numbers[2] * first.numbers[9]},
                                          {"FoVRows", first.numbers[3] * first.numbers[10]}};
        const QByteArrayList fromHeader =
            QByteArray("NrOfSlices TR InterSliceTime TE SliceAcquisitionOrder InplaneResolutionX "
                       "InplaneResolutionY SliceThickness SliceGap Slice1CenterX Slice1CenterY "
                       "Slice1CenterZ SliceNCenterX SliceNCenterY SliceNCenterZ RowDirX RowDirY "
                       "RowDirZ ColDirX ColDirY ColDirZ")
                .split(' ');
        for (int i = 0; i < fromHeader.size(); ++i)
            expected[fromHeader[i]] = first.numbers[4 + i];
        for (auto entry = expected.begin(); entry != expected.end(); ++entry)
            EXPECT_NEAR(fmrValue(text, entry.key()), entry.value(), 1e-4)
                << entry.key().constData();
    }
};

} // namespace

TEST_F(RealSeriesTest, IsSavedAsTheScannerMeasuredIt) {
    SKIP_WITHOUT(scannerDataFolder());
    // A folder is a series; the mosaic that was written in many encodings is one for each of them.
    QMap<QString, QList<ExpectedMosaic>> allSeries;
    for (const ExpectedMosaic& file : expectedMosaics())
        allSeries[file.name.section('/', 0, file.name.startsWith("dicom_odd") ? -1 : -2)] << file;
    EXPECT_GE(allSeries.size(), 27);
    for (const QList<ExpectedMosaic>& series : allSeries) {
        SCOPED_TRACE(series[0].name.toStdString());
        QStringList files;
        for (const ExpectedMosaic& file : series)
            files << scannerDataFolder() + '/' + file.name;
        const int skip = files.size() > 10 ? 4 : files.size() > 2 ? 1 : 0;
        // What a header doesn't state stays from the header before, which was of another scanner.
        session.intake.header = DicomHeader();
        record(files, series[0], skip);
        EXPECT_EQ(display.calls.last(), "ended");
        EXPECT_EQ(digestOf(content("results/test-firstvol.img")), series[0].digest);
        expectData(series, skip);
        expectHeader(series[0], int(files.size()) - skip);
    }
}

TEST_F(RealSeriesTest, MotionIsThatOfAnIndependentEstimate) {
    const QString folder = scannerDataFolder() + "/siemens_mosaic/run_60_volumes/";
    SKIP_WITHOUT(folder);
    QStringList files;
    for (const QFileInfo& file : QDir(folder).entryInfoList({"*.dcm"}, QDir::Files, QDir::Name))
        files << file.filePath();
    QFile reference(scannerDataFolder() +
                    "/siemens_mosaic/run_60_volumes_reference/motion_from_volume_5.txt");
    ASSERT_TRUE(reference.open(QIODevice::ReadOnly));
    std::vector<std::array<double, nrOfMotionParameters>> expected;
    for (QByteArray line = reference.readLine(); !line.isEmpty(); line = reference.readLine()) {
        if (line.startsWith('#'))
            continue;
        const QByteArrayList values = line.simplified().split(' ');
        for (size_t i = 0; auto& value : expected.emplace_back())
            value = values[qsizetype(i++)].toDouble();
    }
    ASSERT_EQ(expected.size(), 56u);
    // Bounds of the mean differences, in mm and degrees. The coarse grid and scaled derivatives of
    // the standard method leave it this far from a full fit; least squares is as near as the
    // reference is good. docs/performance.md tells more.
    const struct {
        MotionMethod method;
        std::array<double, nrOfMotionParameters> bounds;
    } methods[] = {{MotionMethod::Standard, {0.015, 0.04, 0.035, 0.08, 0.05, 0.03}},
                   {MotionMethod::LeastSquares, {0.02, 0.02, 0.02, 0.03, 0.03, 0.03}}};
    for (const auto& [method, bounds] : methods) {
        record(files, {{}, {}, {320, 320, 64, 64, 18}}, 4, method);
        const MotionCorrection& motion = session.functionalDocument->motion;
        ASSERT_EQ(motion.motionParameters[0].size(), 56u);
        for (size_t i = 0; i < nrOfMotionParameters; ++i) {
            double sum = 0.0;
            for (size_t volume = 0; volume < expected.size(); ++volume)
                sum += std::abs(double(motion.motionParameters[i][volume]) - expected[volume][i]);
            EXPECT_LE(sum / 56.0, bounds[i]) << "method " << int(method) << " parameter " << i;
        }
    }
}

TEST_F(RealSeriesTest, CompressedAndEnhancedFilesAreRefusedByName) {
    const QString folder = scannerDataFolder() + "/siemens_mosaic/";
    SKIP_WITHOUT(folder);
    QStringList files{scannerDataFolder() +
                      "/dicom_odd/one_mosaic_in_many_encodings/04_deflated.dcm"};
    for (int number = 4; number <= 9; ++number)
        files << folder + QString("transfer_syntaxes/%1.dcm").arg(number);
    for (const QFileInfo& file :
         QDir(folder + "enhanced_to_refuse").entryInfoList({"*.dcm", "*.img"}))
        files << file.filePath();
    EXPECT_EQ(files.size(), 10);
    const ExpectedMosaic sizes{{}, {}, {384, 384, 64, 64, 35}};
    for (const QString& file : files) {
        SCOPED_TRACE(file.toStdString());
        messages.expectWarning("ERROR: File \"" + path("incoming/001_000004_000001.dcm") +
                               "\" is *");
        messages.expectWarning("TIME OUT: Expected first file did not arrive!");
        record({file}, sizes, 0);
        EXPECT_TRUE(session.report.startFailed);
        const QString reason = messages.shown().at(messages.shown().size() - 2);
        EXPECT_TRUE(reason.contains("is compressed") || reason.contains("multi-frame"));
    }
}
