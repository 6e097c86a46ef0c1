// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/loop/session_fixture.h"

#include "run/journal/journal_scan.h"
#include "run/replay/journal_records.h"
#include "run/settings/settings_file.h"

namespace {

class ScriptedReader : public VolumeReader {
public:
    ScriptedReader(const IntakeContext& context, const Script& script)
        : project_(context.project), pump_(context.pump), script_(script) {}

    bool readFirstVolume() override {
        fill(project_.firstVolume.span(), 0);
        for (int16_t& sample : project_.firstVolume.span())
            sample = int16_t(sample + script_.firstSample);
        return script_.firstVolumeComes;
    }
    bool readVolume(int volume) override {
        pump_.pumpWait(int(script_.millisecondsPerVolume));
        if (volume > script_.lastVolume)
            return false;
        fill(project_.volumes[size_t(volume)], volume);
        if (script_.atVolume)
            script_.atVolume(volume);
        return true;
    }

private:
    void fill(std::span<int16_t> volume, int index) {
        for (size_t i = 0; i < volume.size(); ++i)
            volume[i] = scriptedSample(i, index);
    }

    FMRProject& project_;
    EventPump& pump_;
    const Script& script_;
};

} // namespace

int savedVolumes(const QByteArray& data, size_t sliceSamples, size_t nrOfSlices,
                 const MeasuredSample& measured) {
    const size_t samples = size_t(data.size()) / 2;
    const size_t volumes = samples / (sliceSamples * nrOfSlices);
    for (size_t offset = 0; offset < samples; ++offset) {
        const size_t slice = offset / sliceSamples / volumes;
        const size_t volume = offset / sliceSamples % volumes;
        const qsizetype at = qsizetype(2 * offset);
        if ((uint8_t(data[at]) | uint8_t(data[at + 1]) << 8) !=
            measured(slice * sliceSamples + offset % sliceSamples, int(volume)))
            return -1;
    }
    return int(volumes);
}

void cutJournal(const QString& path, int volumes) {
    qint64 end = 0;
    JournalCursor cursor(path);
    for (JournalRecord record; cursor.next(record); end = cursor.goodBytes())
        if (RecordKind(record.kind) == RecordKind::MeasuredVolume && volumes-- == 0)
            break;
    ASSERT_TRUE(QFile::resize(path, end));
}

int16_t scriptedSample(size_t voxel, int volume) {
    // A cheap scrambling; only that samples differ and repeat matters.
    uint32_t x = uint32_t(voxel) * 2654435761u + uint32_t(volume) * 40503u;
    x ^= x >> 15;
    return int16_t(500 + int(x * 2246822519u >> 22));
}

std::unique_ptr<ProgressReporter> ProbeDisplay::openSavingProgress() {
    return std::make_unique<Reporter>([this](int percent) {
        progress.push_back(percent);
        if (whileSaving)
            whileSaving();
    });
}

std::unique_ptr<ProgressReporter> ProbeDisplay::openModelProgress(const QString& text) {
    modelText = text;
    auto reporter = std::make_unique<Reporter>([this](int) {
        if (whileModelling)
            whileModelling();
    });
    reporter->isCancelled = &modelCancelled;
    return reporter;
}

SessionFixture::SessionFixture() {
    session.makeReader = [this](const IntakeContext& context) {
        return std::make_unique<ScriptedReader>(context, script);
    };
}

QString SessionFixture::defaultProtocol() {
    return "\nFileVersion: 2\nResolutionOfTime: Volumes\nExperiment: Test\n"
           "BackgroundColor: 0 0 0\nTextColor: 255 255 255\nTimeCourseColor: 255 255 255\n"
           "TimeCourseThick: 3\nReferenceFuncColor: 80 80 80\nReferenceFuncThick: 2\n"
           "NrOfConditions: 3\n"
           "\nFixation\n2\n1 3\n7 9\nColor: 100 100 100\n"
           "\nFaces\n1\n4 6\nColor: 255 0 0\n"
           "\nHouses\n1\n10 14\nColor: 0 0 255\n";
}

void SessionFixture::writeSession(int volumes, int skip, const QMap<QString, QString>& changes,
                                  const QString& protocol) {
    RunSettings settings;
    settings.settingsFilePath = path("test-1.vco");
    settings.settingsFileDir = folder_.path() + "/";
    settings.Title = "Scripted run";
    settings.WatchFolder = path("incoming/");
    settings.TargetFolder = path("results/");
    settings.DataType = "SIEMENS_DICOM_MOSAIC";
    settings.FirstFileName = "001_000004_000001.dcm";
    settings.DicomNameDelimiter = "_";
    settings.MatrixSizeX = settings.MatrixSizeY = 8;
    settings.MosaicResolutionX = settings.MosaicResolutionY = 16;
    settings.NrOfVolumes = volumes;
    settings.NrOfVolumesToSkip = skip;
    settings.NrOfSlices = 4;
    settings.SlicePrefix = "test-";
    settings.ProjectName = "test";
    settings.StimulationProtocol = path("test.prt");
    settings.MotionCorrection = false;
    ASSERT_TRUE(writeSettingsFile(settings));
    if (!changes.isEmpty()) {
        QStringList lines = QString::fromUtf8(content("test-1.vco")).split('\n');
        for (QString& line : lines)
            for (auto change = changes.begin(); change != changes.end(); ++change)
                if (line.startsWith(change.key()))
                    line = change.key() + " " + change.value();
        put("test-1.vco", lines.join('\n').toUtf8());
    }
    put("test.prt", protocol.toUtf8());
    session.settings = RunSettings();
    session.settings.settingsFilePath = path("test-1.vco");
    session.settings.settingsFileDir = folder_.path() + "/";
    session.setRunButton(RunButtonState::Ready);
}

QString SessionFixture::recordJournal() {
    session.keepsJournals = true;
    session.runButtonPressed();
    session.keepsJournals = false;
    const QStringList kept = QDir(path("results")).entryList({"*.vcj"});
    EXPECT_EQ(kept.size(), 1);
    return path("results/" + kept.value(0));
}

void SessionFixture::inPhase(Phase phase, const std::function<void()>& operation) {
    bool done = false;
    const auto once = [&] {
        if (done || session.phase.now() != phase)
            return;
        done = true;
        operation();
    };
    ProbeListener probe(session.listeners, ListenerPlace::Dialogs);
    probe.onStep = [&](VolumeStep step, const VolumeAtHand& hand) {
        if (hand.volume == 20 && step == VolumeStep::Plots)
            once();
        return true;
    };
    display.whenLogged = once; // Preparing and Reloading, with their documents
    display.whileSaving = once;
    display.whileModelling = once;
    Reporter reporter([&](int) { once(); });
    session.setRunButton(RunButtonState::Ready);
    if (phase == Phase::Idle)
        once();
    else if (phase == Phase::Reloading)
        EXPECT_TRUE(session.reloadData());
    else if (phase == Phase::PostProcessing)
        EXPECT_TRUE(postprocess(reporter));
    else
        session.runButtonPressed();
    EXPECT_TRUE(done);
    EXPECT_TRUE(session.phase.isIdle());
    display.whileSaving = display.whileModelling = display.whenLogged = {};
}

bool SessionFixture::postprocess(ProgressReporter& progress) {
    PostprocessingOptions options;
    options.temporal.checked = true;
    return session.postprocess(options, true, progress);
}
