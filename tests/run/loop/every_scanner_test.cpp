// Each data type, in each way in which its scanners are set up, from the files to the project.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/simulated_session.h"

namespace {

struct Variant {
    const char* name;
    ScannerType type;
    std::function<void(SimulationOptions&)> change = [](SimulationOptions&) {};
};

using enum ScannerType;
using Options = SimulationOptions;

const auto implicitSyntax = [](Options& o) { o.syntax = TransferSyntax::ImplicitLittle; };
const auto bigSyntax = [](Options& o) { o.syntax = TransferSyntax::ExplicitBig; };
const auto bigSamples = [](Options& o) { o.rawDataBigEndian = true; };
template<WatchFolderForm form> void watches(Options& o) {
    o.watchFolder = form;
}

const Variant variants[] = {
    {"Mosaic", SiemensMosaic},
    {"MosaicImplicit", SiemensMosaic, implicitSyntax},
    {"MosaicBigEndian", SiemensMosaic, bigSyntax},
    {"MosaicSeriesMark", SiemensMosaic, watches<WatchFolderForm::SeriesMark>},
    {"MosaicNumberMark", SiemensMosaic, watches<WatchFolderForm::NumberMark>},
    {"Dicom", Dicom},
    {"DicomImplicit", Dicom, implicitSyntax},
    {"DicomBigEndian", Dicom, bigSyntax},
    {"Ima", SiemensIma},
    {"ImaBigEndian", SiemensIma, bigSamples},
    {"ImaFolderList", SiemensIma, watches<WatchFolderForm::List>},
    {"ImaMosaicRisingStudy", SiemensImaMosaic},
    {"ImaMosaicFixedStudy", SiemensImaMosaic, [](Options& o) { o.fixedStudyNumber = true; }},
    {"ImaMosaicBigEndian", SiemensImaMosaic, bigSamples},
    {"ImaMosaicInTwoFiles", SiemensImaMosaic, [](Options& o) { o.mosaicTiles = 2; }},
    {"GeI", GeI},
    {"GeIPastImage999", GeI, [](Options& o) { o.nrOfVolumes = 205; }},
    {"GeXDicom", GeXDicom},
    {"GeHdxtSeries", GeHdxtDicom},
    {"GeHdxtExam", GeHdxtDicom, watches<WatchFolderForm::Exam>},
    {"GeHdxtAnyOrder", GeHdxtDicom, [](Options& o) { o.shuffledSlices = true; }},
    {"GeStanford", GeStanford},
    {"PhilipsRec", PhilipsRec},
    {"Bruker", Bruker2dseq},
    {"AnalyzePhilips", PhilipsAnalyze},
    {"AnalyzePhilipsBigEndian", PhilipsAnalyze, bigSamples},
    {"AnalyzePhilipsAsItIs", PhilipsAnalyze, [](Options& o) { o.imageTransformation = 0; }},
    {"AnalyzePhilipsTurned", PhilipsAnalyze, [](Options& o) { o.imageTransformation = 1; }},
    {"Analyze", AnalyzeNw}};

class EveryScannerTest : public testing::TestWithParam<Variant> {
protected:
    EveryScannerTest() {
        options_.type = GetParam().type;
        options_.blockLength = 2;
        GetParam().change(options_);
    }
    // Five slices fill no mosaic of 2 x 2 or 3 x 3 tiles.
    SimulationOptions options_ = smallScan(16, 5, 14);
};

INSTANTIATE_TEST_SUITE_P(Scanners, EveryScannerTest, testing::ValuesIn(variants),
                         [](const auto& tested) { return std::string(tested.param.name); });

} // namespace

// The program ends in mid-run: the rest is read by a reader that has not seen the beginning.
TEST_P(EveryScannerTest, RunIsSavedAsItWasMeasuredAndGoneOnWithAfterACrash) {
    ASSERT_EQ(problemOf(options_), QString());
    SimulatedSession run(options_);
    run.writeAll();
    run.session.keepsJournals = true;
    EXPECT_EQ(run.run(), QStringList());
    EXPECT_EQ(run.savedVolumes(), options_.nrOfVolumes - options_.nrOfVolumesToSkip);
    EXPECT_TRUE(run.firstVolumeIsSaved());
    QDir results(run.folder.filePath("results"));
    const QString journal = results.filePath(results.entryList({"*.vcj"}).value(0));
    cutJournal(journal, 5);
    const QByteArray whole = run.saved(".fmr");
    ASSERT_TRUE(results.remove("Simulation-1.fmr") && results.remove("Simulation-1.stc"));
    run.session.intake = {};
    // A series that was begun meanwhile is not the one to go on with.
    for (const char* newer : {"../Ser0099", "../0099"})
        ASSERT_TRUE(QDir().mkpath(run.watchFolder() + newer));
    EXPECT_TRUE(run.session.playJournal({journal, {}, {}, false}, PlayPurpose::GoOn));
    EXPECT_EQ(run.savedVolumes(), options_.nrOfVolumes - options_.nrOfVolumesToSkip);
    EXPECT_EQ(run.saved(".fmr"), whole);
}

// Every file comes in two halves, the second one a second after the first.
TEST_P(EveryScannerTest, HalvesOfFilesAreNotTaken) {
    options_.nrOfVolumes = 5;
    SimulatedSession run(options_);
    for (int volume = 0; volume < options_.nrOfVolumes; ++volume)
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
    EXPECT_EQ(run.savedVolumes(), options_.nrOfVolumes - options_.nrOfVolumesToSkip);
}
