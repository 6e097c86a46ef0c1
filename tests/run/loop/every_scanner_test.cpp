// Each data type, in each way in which its scanners are set up, from the files to the project.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/simulated_session.h"

namespace {

struct Variant {
    const char* name;
    ScannerType type;
    std::function<void(SimulationOptions&)> change = [](SimulationOptions&) {};
};

const Variant variants[] = {
    {"Mosaic", ScannerType::SiemensMosaic},
    {"MosaicImplicit", ScannerType::SiemensMosaic,
     [](auto& o) { o.syntax = TransferSyntax::ImplicitLittle; }},
    {"MosaicBigEndian", ScannerType::SiemensMosaic,
     [](auto& o) { o.syntax = TransferSyntax::ExplicitBig; }},
    {"MosaicSeriesMark", ScannerType::SiemensMosaic,
     [](auto& o) { o.watchFolder = WatchFolderForm::SeriesMark; }},
    {"MosaicNumberMark", ScannerType::SiemensMosaic,
     [](auto& o) { o.watchFolder = WatchFolderForm::NumberMark; }},
    {"Dicom", ScannerType::Dicom},
    {"DicomImplicit", ScannerType::Dicom,
     [](auto& o) { o.syntax = TransferSyntax::ImplicitLittle; }},
    {"DicomBigEndian", ScannerType::Dicom, [](auto& o) { o.syntax = TransferSyntax::ExplicitBig; }},
    {"Ima", ScannerType::SiemensIma},
    {"ImaBigEndian", ScannerType::SiemensIma, [](auto& o) { o.rawDataBigEndian = true; }},
    {"ImaFolderList", ScannerType::SiemensIma,
     [](auto& o) { o.watchFolder = WatchFolderForm::List; }},
    {"ImaMosaicRisingStudy", ScannerType::SiemensImaMosaic},
    {"ImaMosaicFixedStudy", ScannerType::SiemensImaMosaic,
     [](auto& o) { o.fixedStudyNumber = true; }},
    {"ImaMosaicBigEndian", ScannerType::SiemensImaMosaic,
     [](auto& o) { o.rawDataBigEndian = true; }},
    {"ImaMosaicInTwoFiles", ScannerType::SiemensImaMosaic, [](auto& o) { o.mosaicTiles = 2; }},
    {"GeI", ScannerType::GeI},
    {"GeIPastImage999", ScannerType::GeI, [](auto& o) { o.nrOfVolumes = 205; }},
    {"GeXDicom", ScannerType::GeXDicom},
    {"GeHdxtSeries", ScannerType::GeHdxtDicom},
    {"GeHdxtExam", ScannerType::GeHdxtDicom,
     [](auto& o) { o.watchFolder = WatchFolderForm::Exam; }},
    {"GeHdxtAnyOrder", ScannerType::GeHdxtDicom, [](auto& o) { o.shuffledSlices = true; }},
    {"GeStanford", ScannerType::GeStanford},
    {"PhilipsRec", ScannerType::PhilipsRec},
    {"Bruker", ScannerType::Bruker2dseq},
    {"AnalyzePhilips", ScannerType::PhilipsAnalyze},
    {"AnalyzePhilipsBigEndian", ScannerType::PhilipsAnalyze,
     [](auto& o) { o.rawDataBigEndian = true; }},
    {"AnalyzePhilipsAsItIs", ScannerType::PhilipsAnalyze,
     [](auto& o) { o.imageTransformation = 0; }},
    {"AnalyzePhilipsTurned", ScannerType::PhilipsAnalyze,
     [](auto& o) { o.imageTransformation = 1; }},
    {"Analyze", ScannerType::AnalyzeNw},
};

class EveryScannerTest : public testing::TestWithParam<Variant> {};

INSTANTIATE_TEST_SUITE_P(Scanners, EveryScannerTest, testing::ValuesIn(variants),
                         [](const auto& tested) { return std::string(tested.param.name); });

// Five slices, which fill no mosaic of 2 x 2 or 3 x 3 tiles; sides that differ where they may.
SimulationOptions shortRun(ScannerType type) {
    SimulationOptions options;
    options.type = type;
    options.sizeX = options.sizeY = 16;
    options.nrOfSlices = 5;
    options.nrOfVolumes = 14;
    options.nrOfVolumesToSkip = 2;
    options.blockLength = 2;
    return options;
}

} // namespace

TEST_P(EveryScannerTest, RunIsSavedAsItWasMeasured) {
    SimulationOptions options = shortRun(GetParam().type);
    GetParam().change(options);
    ASSERT_EQ(problemOf(options), QString());
    SimulatedSession run(options);
    run.writeAll();
    EXPECT_EQ(run.run(), QStringList());
    EXPECT_EQ(run.display.calls.last(), "ended");
    EXPECT_EQ(run.savedVolumes(), options.nrOfVolumes - options.nrOfVolumesToSkip);
    EXPECT_TRUE(run.firstVolumeIsSaved());
}

// The program ends in mid-run: the rest is read by a reader that has not seen the beginning.
TEST_P(EveryScannerTest, RunIsGoneOnWithAfterACrash) {
    SimulationOptions options = shortRun(GetParam().type);
    GetParam().change(options);
    SimulatedSession run(options);
    run.writeAll();
    run.session.keepsJournals = true;
    EXPECT_EQ(run.run(), QStringList());
    QDir results(run.folder.filePath("results"));
    const QString journal = results.filePath(results.entryList({"*.vcj"}).value(0));
    cutJournal(journal, 5);
    const QByteArray whole = run.saved(".fmr");
    ASSERT_TRUE(results.remove("Simulation-1.fmr"));
    run.session.intake = {};
    // A series that was begun meanwhile is not the one to go on with.
    for (const char* newer : {"../Ser0099", "../0099"})
        ASSERT_TRUE(QDir().mkpath(run.watchFolder() + newer));
    EXPECT_TRUE(run.session.playJournal({journal, {}, {}, false}, PlayPurpose::GoOn));
    EXPECT_EQ(run.savedVolumes(), options.nrOfVolumes - options.nrOfVolumesToSkip);
    EXPECT_EQ(run.saved(".fmr"), whole);
}

// Every file comes in two halves, the second one a second after the first.
TEST_P(EveryScannerTest, HalvesOfFilesAreNotTaken) {
    SimulationOptions options = shortRun(GetParam().type);
    options.nrOfVolumes = 5;
    GetParam().change(options);
    options.nrOfVolumes = 5;
    SimulatedSession run(options);
    for (int volume = 0; volume < options.nrOfVolumes; ++volume)
        for (const ScannerFile& file : run.scan.files(volume)) {
            const qsizetype half = file.bytes.size() / 2 + 1;
            const qint64 due = 3000 * (volume + 1);
            run.pump.after(due, [&run, file, half] {
                run.write({file.name, file.bytes.first(half), file.append});
            });
            run.pump.after(due + 1000, [&run, file, half] {
                run.write({file.name, file.bytes.sliced(half), true});
            });
        }
    EXPECT_EQ(run.run(), QStringList());
    EXPECT_EQ(run.savedVolumes(), options.nrOfVolumes - options.nrOfVolumesToSkip);
}
