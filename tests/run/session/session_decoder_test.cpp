// The letter decoder of a whole session: live, offline, by the operator's hand, and what it leaves.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/curves_text.h"
#include "decoder/ideal_responses.h"
#include "run/loop/simulated_session.h"
#include "scanner_simulator/command_line.h"

namespace {

class Screen : public DecoderScreen {
public:
    explicit Screen(RunSession& session) : session_(session) {}

    QString lines;            ///< of letters
    QStringList notes;        ///< what was logged beside letters
    std::vector<int> volumes; ///< at which the letters were logged
    Phase lastPhase{};        ///< of the last one
    /// It was refreshed since anything changed.
    [[nodiscard]] bool isCurrent() const { return shown_ == state(); }
    void log(const QString& text) override {
        if (!text.startsWith("Letter ")) {
            notes << text;
            return;
        }
        lines += text;
        volumes.push_back(session_.report.currentVolume);
        lastPhase = session_.phase.now();
    }
    void refresh() override { shown_ = state(); }
    [[nodiscard]] QImage letterDisplay() override { return picture(9); }
    /// As wide as letters have been decoded: it is taken when the letter is on it.
    [[nodiscard]] QImage windowPicture() override {
        return picture(int(session_.decoder.decoder().decodedText(0).size()));
    }

private:
    static QImage picture(int width) {
        QImage image(width, 1, QImage::Format_RGB32);
        image.fill(Qt::white);
        return image;
    }
    [[nodiscard]] QString state() const {
        const SessionDecoder& decoder = session_.decoder;
        return QStringLiteral("%1 %2 %3 %4 %5 %6")
            .arg(decoder.decoder().decodedText(0), decoder.letterHindrance())
            .arg(decoder.decoder().currentVolume())
            .arg(decoder.curves()[0].size())
            .arg(decoder.preparation().settings.UseBeta)
            .arg(decoder.preparation().settings.ABCDMode);
    }

    RunSession& session_;
    QString shown_;
};

} // namespace

/// Windows of ten volumes, which end one volume later, and curves that are mere noise.
class SessionDecoderTest : public SessionFixture {
protected:
    SessionDecoderTest() {
        QDir().mkpath(path("results"));
        EXPECT_TRUE(writeReferences(idealResponses(8, 7000.0), path("results/own.rtc")));
        write(32);
        decoder_.open(screen_);
        operatorHand_.onEndOfVolume = [this](int volume) {
            for (int i = 0; volume == selectAt_ && i < nrOfRegions_; ++i)
                EXPECT_TRUE(session.regions.selectRectangle({i % 4, i, i + 2, i, i + 2}));
            EXPECT_TRUE(screen_.isCurrent() || !decoder_.isOpen()) << volume;
            if (atVolume_)
                atVolume_(volume);
        };
    }
    ~SessionDecoderTest() override { decoder_.close(); }
    void write(int volumes) {
        writeSession(volumes, 0, {{"FeedbackTargetFolder:", '"' + path("feedback/") + '"'}});
        session.settings.TargetFolder = path("results/");
        session.settings.NrOfVolumes = volumes;
        session.settings.NrOfVolumesToSkip = 0;
    }
    [[nodiscard]] DecoderPreparation own() const {
        DecoderPreparation preparation = decoder_.preparation();
        preparation.settings.FullWindowSize = 10;
        preparation.settings.IdealResponseWindowSize = 8;
        preparation.settings.SkipAtBeginOfWindow = 1;
        preparation.settings.TaskVOIWeights = {{{1, 1, 1, 0, 0, 1}, {0, 2}, {1, 0, 1}}};
        preparation.referencesPath = "own.rtc";
        return preparation;
    }
    void recordPrepared() {
        ASSERT_TRUE(decoder_.prepare(own()));
        session.runButtonPressed();
    }
    [[nodiscard]] bool prepareFile(DecoderPreparation preparation, const QString& data) {
        preparation.offline = true;
        preparation.dataPath = path(data);
        return decoder_.prepare(preparation);
    }
    /// The number of volumes that the file still had.
    int playFile() {
        int volumes = 0;
        while (decoder_.nextTR())
            ++volumes;
        return volumes;
    }
    [[nodiscard]] QStringList pictures(const QString& pattern) const {
        return QDir(path("feedback")).entryList({pattern});
    }
    void removePictures() { QDir(path("feedback")).removeRecursively(); }
    [[nodiscard]] QString best() const { return decoder_.decoder().decodedText(0); }
    /// Best letters, then second and third.
    [[nodiscard]] QString text() const {
        const LetterDecoder& decoder = decoder_.decoder();
        return best() + ' ' + decoder.decodedText(1) + ' ' + decoder.decodedText(2);
    }

    SessionDecoder& decoder_ = session.decoder;
    Screen screen_{session};
    int nrOfRegions_ = 6;
    int selectAt_ = 0;
    const QString output_ = "results/_AUTODECODED_test.txt";
    const QString weights_ = "results/ScaledTaskVOIWeights.txt";
    std::function<void(int)> atVolume_;
    ProbeListener operatorHand_{session.listeners, ListenerPlace::Dialogs};
};

TEST_F(SessionDecoderTest, ALetterComesOneVolumeAfterItsWindowOrAtTheEndOfTheRun) {
    EXPECT_EQ(own().settings.NrOfTimePoints, 32);
    ASSERT_TRUE(decoder_.prepare(own()));
    EXPECT_TRUE(screen_.isCurrent());
    EXPECT_EQ(screen_.notes,
              QStringList("Loaded ideal responses \"" + path("results/own.rtc") + '"'));
    EXPECT_TRUE(content(weights_).endsWith(" 0.707107         0  0.707107         0         0"
                                           "         0 \n"));
    // With the same regions and volumes the letters are the same, whenever the regions were
    // selected; a run of another length is expected to have that.
    const struct {
        int volumes;
        int selectAt;
        std::vector<int> letterAt;
        Phase last;
        QStringList pictures;
    } cases[] = {{32, 0, {11, 21, 31}, Phase::Recording, {"1", "2", "3"}},
                 {31, 0, {11, 21, 30}, Phase::Saving, {"1", "2", "3"}},
                 {41, 13, {14, 21, 31, 40}, Phase::Saving, {"2", "3", "4"}},
                 {20, 2, {11}, Phase::Recording, {"1"}}};
    QString letters;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.volumes);
        removePictures();
        EXPECT_EQ(QFile::remove(path(output_)), !letters.isEmpty());
        EXPECT_TRUE(QFile::remove(path(weights_)));
        screen_.volumes.clear();
        screen_.lines.clear();
        selectAt_ = c.selectAt;
        write(c.volumes);
        session.runButtonPressed();
        EXPECT_EQ(screen_.volumes, c.letterAt);
        EXPECT_EQ(screen_.lastPhase, c.last);
        EXPECT_EQ(size_t(best().size()), c.letterAt.size());
        EXPECT_FALSE(best().contains(noLetter));
        EXPECT_TRUE(letters.startsWith(best()) || best().startsWith(letters));
        letters = best();
        EXPECT_EQ(content(output_), screen_.lines.toUtf8());
        EXPECT_TRUE(QFile::exists(path(weights_)));
        EXPECT_EQ(pictures("LetterDisplay-*.png").size(), c.volumes);
        EXPECT_TRUE(QFile::exists(path("feedback/LetterDisplay-1.png")));
        EXPECT_EQ(pictures("BOLDDecoder-*").size(), c.pictures.size());
        for (const QString& letter : c.pictures) {
            const QImage picture(path("feedback/BOLDDecoder-test-" + letter + ".png"));
            EXPECT_EQ(picture.width(), letter.toInt());
        }
    }
}

TEST_F(SessionDecoderTest, AFileOfTheCurvesGivesTheLettersOfTheRun) {
    recordPrepared();
    const QString live = text();
    ASSERT_EQ(live.size(), 11);
    QDir().mkpath(path("data"));
    put("data/run.one.rtc", curvesText(decoder_.curves(), 6));
    ASSERT_TRUE(prepareFile(own(), "data/run.one.rtc"));
    EXPECT_TRUE(QFile::exists(path("data/ScaledTaskVOIWeights.txt")));
    for (int pass = 0; pass < 2; ++pass) {
        EXPECT_EQ(playFile(), 32);
        EXPECT_EQ(text(), live);
        EXPECT_TRUE(decoder_.reloadROIDataForOfflineAnalysis());
        EXPECT_EQ(text(), "  ");
    }
    const QByteArray lettersOfRun = content(output_);
    EXPECT_EQ(content("data/_AUTODECODED_run.one.txt"), lettersOfRun + lettersOfRun);
    EXPECT_EQ(pictures("BOLDDecoder-run.one-*").size(), 3);

    // A run beside it is not decoded, and gives no display of the file's letters.
    removePictures();
    runAgain();
    EXPECT_EQ(content(output_), lettersOfRun);
    EXPECT_EQ(pictures("*"), QStringList());
    decoder_.goToNextLetter();
    EXPECT_EQ(text(), QString(live[0]) + ' ' + live[4] + ' ' + live[8]);

    DecoderPreparation part = own();
    part.settings.NrOfTimePoints = 22;
    ASSERT_TRUE(prepareFile(part, "data/run.one.rtc"));
    EXPECT_EQ(playFile(), 22);

    part.settings.NrOfTimePoints = 33;
    for (const auto& [text, window] : {std::pair("ideal responses", 7), {"VOI time courses", 8}}) {
        part.settings.IdealResponseWindowSize = window;
        messages.expectInformation(
            QStringLiteral("INFO - Problem loading RTC file with %1!\n*").arg(text));
        EXPECT_FALSE(prepareFile(part, "data/run.one.rtc"));
        EXPECT_FALSE(decoder_.nextTR() || decoder_.mayPlay());
        EXPECT_TRUE(decoder_.curves()[0].empty());
        EXPECT_FALSE(decoder_.letterHindrance().isEmpty());
    }
}

TEST_F(SessionDecoderTest, TheSampleMessageIsPlayedWhereNothingElseCanBe) {
    decoder_.setSampleFolder(path("documents/sample"));
    put("results/IdealResponses_rg.rtc", content("results/own.rtc")); // of another window
    atVolume_ = [this](int) { EXPECT_FALSE(decoder_.mayPlay()); };
    session.runButtonPressed();
    EXPECT_FALSE(decoder_.beginPlaying()) << "the run is in memory";
    session.changeSettingsFile(path("other-1.vco"));
    session.settings.TargetFolder = path("results/");
    EXPECT_TRUE(decoder_.mayPlay());
    ASSERT_TRUE(decoder_.beginPlaying());
    EXPECT_EQ(decoder_.preparation().dataPath, path("documents/sample/SampleMessage.rtc"));
    playFile();
    EXPECT_EQ(best(), "HELLO_WORLD");
    EXPECT_FALSE(decoder_.mayPlay()) << "at its end";
    EXPECT_TRUE(QFile::exists(path("documents/sample/_AUTODECODED_SampleMessage.txt")));

    // Where it can't be laid.
    QDir(path("documents")).removeRecursively();
    put("documents", "a file");
    DecoderPreparation inside = decoder_.preparation();
    inside.dataPath = decoder_.samplePath();
    messages.expectInformation("The folder \"" + path("documents/sample") + "\" can't be written*");
    ASSERT_TRUE(decoder_.prepare(inside));
    EXPECT_TRUE(decoder_.isSample());
    playFile();
    EXPECT_EQ(best(), "HELLO_WORLD");
}

TEST_F(SessionDecoderTest, ARunNeedsThreeToSixRegionsAndThoseThatAreExpected) {
    const std::tuple<int, int, int> cases[] = {
        {2, 2, 0}, {3, 3, 3}, {5, 6, 0}, {6, 5, 3}, {7, 6, 0}};
    for (const auto& [regions, expected, letters] : cases) {
        SCOPED_TRACE(regions);
        nrOfRegions_ = regions;
        write(32);
        screen_.notes.clear();
        DecoderPreparation preparation = own();
        preparation.settings.NrOfDataROIs = expected;
        ASSERT_TRUE(decoder_.prepare(preparation));
        session.runButtonPressed();
        EXPECT_EQ(best().size(), letters);
        EXPECT_EQ(screen_.notes.filter("Helper ROI").size(), expected < 6);
        EXPECT_EQ(decoder_.letterHindrance().isEmpty(), letters > 0);
        EXPECT_EQ(decoder_.sizeOfRun(),
                  (CurvesSize{regions == 2 || regions == 7 ? 6 : regions, 32}));
        EXPECT_EQ(decoder_.curves()[5], regions < 6 || expected < 6
                                            ? std::vector<float>(32, 0.5f)
                                            : (*session.regions.list())[5].TimeCourseValues);
    }
}

TEST_F(SessionDecoderTest, TheOperatorGoesThroughTheLettersOfAFinishedRun) {
    atVolume_ = [this](int volume) {
        if (volume == 15) { // neither does anything
            decoder_.goToNextLetter();
            decoder_.goToPreviousLetter();
        }
    };
    recordPrepared();
    const QString letters = best();
    ASSERT_EQ(letters.size(), 3);
    decoder_.goToPreviousLetter();
    EXPECT_EQ(best(), letters.first(2));
    EXPECT_TRUE(screen_.isCurrent());
    decoder_.goToNextLetter();
    EXPECT_EQ(best(), letters);
    EXPECT_EQ(screen_.volumes.size(), 5u);

    // With correlations alone, and of four letters, others are found.
    decoder_.useOnlyCorrForComparisonWithIdealResponses();
    decoder_.goToNextLetter();
    EXPECT_EQ(screen_.volumes.size(), 5u) << "beyond the data";
    EXPECT_FALSE(decoder_.decoder().settings().UseBeta);
    EXPECT_TRUE(screen_.isCurrent());
    decoder_.useCorrForShapeAndBetaForTaskSelection();
    decoder_.changeABCDMode(true);
    decoder_.goToPreviousLetter();
    EXPECT_TRUE(QString("ABCD").contains(decoder_.decoder().latest()->best[0].letter));

    // A reload has the curves again; it writes nothing by itself.
    const QByteArray before = content(output_);
    QFile::remove(path(weights_));
    decoder_.changeABCDMode(false);
    EXPECT_TRUE(screen_.isCurrent());
    decoder_.close();
    runAgain();
    decoder_.open(screen_);
    EXPECT_TRUE(screen_.isCurrent());
    EXPECT_EQ(decoder_.curves()[0].size(), 32u);
    ASSERT_TRUE(session.reloadData());
    EXPECT_TRUE(screen_.isCurrent());
    EXPECT_EQ(content(output_), before);
    EXPECT_FALSE(QFile::exists(path(weights_)));
    EXPECT_EQ(decoder_.letterHindrance(), "");
    decoder_.goToNextLetter();
    decoder_.goToNextLetter();
    EXPECT_EQ(best(), letters.first(2));
    ASSERT_TRUE(decoder_.prepare(decoder_.preparation()));
    EXPECT_EQ(decoder_.curves()[0].size(), 32u);
    session.regions.removeAll();
    EXPECT_EQ(decoder_.letterHindrance(), "The run needs 6 ROIs");
    EXPECT_TRUE(screen_.isCurrent());
    session.changeSettingsFile(path("other-1.vco"));
    EXPECT_EQ(decoder_.letterHindrance(), "There is no run in memory");
    EXPECT_EQ(text(), "  ");
    EXPECT_TRUE(screen_.isCurrent());
}

TEST_F(SessionDecoderTest, AnOutputFileThatCanNotBeOpenedSkipsTheLetter) {
    atVolume_ = [this](int volume) {
        if (volume == 15) {
            EXPECT_TRUE(QFile::rename(path(output_), path("kept.txt")));
            EXPECT_TRUE(QDir().mkpath(path(output_)));
        }
    };
    for (int letter = 2; letter <= 3; ++letter)
        messages.expectWarning("ERROR: Can not open output file \"" + path(output_) +
                               "\" for writing.");
    recordPrepared();
    EXPECT_EQ(messages.shownModeless().size(), 2);
    EXPECT_EQ(best().size(), 1);
    EXPECT_EQ(decoder_.decoder().currentLetter(), 2);
    EXPECT_EQ(pictures("BOLDDecoder-*"), QStringList("BOLDDecoder-test-1.png"));
    EXPECT_EQ(content("kept.txt"), screen_.lines.toUtf8());
}

TEST_F(SessionDecoderTest, ALetterThatIsNotWrittenIsAFault) {
    DecoderOutput output;
    const DecoderPlace place{path("new"), {}};
    ASSERT_TRUE(output.prepareLog(place));
    const QString log = path("new/Auto-Decoded.txt");
    EXPECT_TRUE(QFile::remove(log) && QDir().mkpath(log));
    output.appendLetter(place, "A");
    EXPECT_EQ(output.fault(), "Not written: \"" + log + '"');
    EXPECT_TRUE(QDir().rmdir(log));
    output.appendLetter(place, "B");
    EXPECT_EQ(output.fault(), "");
    EXPECT_EQ(content("new/Auto-Decoded.txt"), "B");
}

TEST_F(SessionDecoderTest, APlayedVolumeGivesNothingAgain) {
    ASSERT_TRUE(decoder_.prepare(own()));
    const QString journal = recordJournal();
    const QString live = text();
    const QByteArray log = content(output_);
    for (const bool openLate : {false, true}) {
        SCOPED_TRACE(openLate);
        cutJournal(journal, 25); // the letters at volumes 11 and 21
        ASSERT_TRUE(QFile::copy(journal, path("kept.vcj")));
        put(output_.toUtf8(), log.first(log.indexOf("Letter 3")));
        removePictures();
        if (openLate) {
            decoder_.close();
            atVolume_ = [&](int volume) {
                if (volume == 26)
                    decoder_.open(screen_);
            };
        }
        EXPECT_TRUE(session.playJournal({journal, {}, {}, false}, PlayPurpose::GoOn));
        EXPECT_EQ(text(), live);
        EXPECT_EQ(content(output_), log);
        EXPECT_EQ(pictures("LetterDisplay-*").size(), openLate ? 5 : 7);
        EXPECT_EQ(pictures("BOLDDecoder-*"), QStringList("BOLDDecoder-test-3.png"));
        ASSERT_TRUE(QFile::rename(path("kept.vcj"), journal));
    }
    runAgain();
    EXPECT_EQ(content(output_).count("Letter "), 6) << "the next run is measured";
}

TEST_F(SessionDecoderTest, ARecoveredRunIsDecodedAsItWasPrepared) {
    ASSERT_TRUE(decoder_.prepare(own()));
    atVolume_ = [this](int volume) {
        if (volume == 10) {
            EXPECT_TRUE(QFile::rename(path("results/own.rtc"), path("own.rtc")));
        }
        if (volume == 12)
            decoder_.useOnlyCorrForComparisonWithIdealResponses();
        if (volume == 22)
            decoder_.useCorrForShapeAndBetaForTaskSelection();
        if (volume == 25)
            decoder_.changeABCDMode(true);
    };
    const QString journal = recordJournal();
    atVolume_ = {};
    EXPECT_TRUE(QFile::rename(path("own.rtc"), path("results/own.rtc")));
    const DecoderSettings settings = decoder_.preparation().settings;
    const QString live = text();
    const QByteArray log = content(output_);
    // As another session has it: not prepared, or for something else.
    DecoderPreparation other = decoder_.preparation();
    other.settings.NrOfDataROIs = 3;
    other.referencesPath = "none.rtc";
    const QString loading = "INFO - Problem loading RTC file with ideal responses!*";
    for (const bool isThere : {true, false}) {
        SCOPED_TRACE(isThere);
        messages.expectInformation(loading);
        EXPECT_FALSE(decoder_.prepare(other));
        if (!isThere) {
            QFile::remove(path("results/own.rtc"));
            messages.expectInformation(loading); // once
        }
        ASSERT_TRUE(QFile::copy(journal, path("copy.vcj")));
        cutJournal(path("copy.vcj"), 31); // with the third window
        removePictures();
        EXPECT_TRUE(session.playJournal({path("copy.vcj"), {}, path("elsewhere/"), false},
                                        PlayPurpose::Recover));
        EXPECT_EQ(decoder_.preparation().settings, settings);
        EXPECT_EQ(text(), isThere ? live : "  ");
        EXPECT_EQ(pictures("*"), QStringList());
        QFile::remove(path("copy.vcj"));
    }
    EXPECT_EQ(volumesIn("elsewhere"), 31);
    EXPECT_EQ(content(output_), log);
    EXPECT_EQ(content("elsewhere/_AUTODECODED_test.txt"), log.mid(log.indexOf("Letter 3")));
}

TEST_F(SessionDecoderTest, ResponsesAreMadeFromARunOrFromFiles) {
    messages.expectInformation("There is no run in memory.");
    EXPECT_FALSE(decoder_.createEmpiricalResponses({}, path("r.rtc")));
    QString protocol = defaultProtocol().replace("NrOfConditions: 3", "NrOfConditions: 10");
    protocol = protocol.section("\nFixation", 0, 0) + "\nRest\n1\n1 4\nColor: 9 9 9\n";
    for (int volume = 5; volume < 14; ++volume)
        protocol += QStringLiteral("\nC%1\n1\n%1 %1\nColor: 9 9 9\n").arg(volume);
    writeSession(32, 0, {}, protocol);
    session.runButtonPressed();
    // The shortest duration stands for 10 s, as it does with the TR of the run.
    EmpiricalOptions options{.WindowTimePoints = 8,
                             .PreTrialBeginDataPoints = 2,
                             .PostTrialDataPoints = 3,
                             .ShortestTaskDuration = 5};
    ASSERT_TRUE(decoder_.createEmpiricalResponses(options, path("run.rtc")));
    const auto references = loadReferences(path("run.rtc"));
    ASSERT_TRUE(references);
    EXPECT_EQ((*references)[3][5], (*references)[0][0]) << "10 s later";
    ROICurves curves;
    for (size_t i = 0; i < curves.size(); ++i)
        curves[i] = (*session.regions.list())[int(i)].TimeCourseValues;
    put("curves.rtc", curvesText(curves, 3));
    const auto make = [&](const QString& text) {
        put("own.prt", text.toUtf8());
        return decoder_.createEmpiricalResponses(options, path("curves.rtc"), path("own.prt"),
                                                 path("file.rtc"));
    };
    ASSERT_TRUE(make(protocol));
    EXPECT_EQ(content("file.rtc"), content("run.rtc"));

    const QString fault = "WARNING - Can not create reference file: ";
    messages.expectWarning(fault + "the protocol needs to be*");
    EXPECT_FALSE(make(QString(protocol).replace("Volumes", "msec")));
    messages.expectWarning(fault + "for each duration*");
    for (const QString late : {"7 7", "10 10", "13 13"})
        protocol.replace('\n' + late + '\n', "\n99 99\n");
    EXPECT_FALSE(make(protocol));
}

// The responses of the program against a subject who spells, with the simulator's regions.
TEST(SessionDecoder, ReadsWhatASimulatedSubjectSpells) {
    const SimulatorCommand command = parseCommandLine({"simulator", "--spell", "EMU"});
    ASSERT_EQ(command.problem, QString());
    SimulatedSession run(command.simulation);
    ASSERT_TRUE(run.scan.writeTruth());
    run.writeAll();
    SessionDecoder& decoder = run.session.decoder;
    Screen screen(run.session);
    decoder.open(screen);
    ASSERT_TRUE(run.session.inspectSettings() && decoder.prepare(decoder.preparation()));
    run.session.requests.preLoadROIFile = run.folder.filePath("truth/Simulation-1/regions.roi");
    EXPECT_EQ(run.run(), QStringList());
    EXPECT_EQ(decoder.decoder().decodedText(0), "EMU");
    decoder.close();
}
