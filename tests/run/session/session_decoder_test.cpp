// The letter decoder of a whole session: live, offline, by the operator's hand, and what it leaves.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "decoder/curves_text.h"
#include "decoder/ideal_responses.h"
#include "run/loop/simulated_session.h"
#include "scanner_simulator/command_line.h"

namespace {

class Screen : public DecoderScreen {
public:
    explicit Screen(RunSession& session) : session_(session) { session.decoder.open(*this); }
    ~Screen() override { session_.decoder.close(); }
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    QString lines;
    QStringList notes;                          ///< what was logged beside letters
    std::vector<std::pair<int, Phase>> letters; ///< when they were logged
    /// It was refreshed since anything changed.
    [[nodiscard]] bool isCurrent() const { return shown_ == state(); }
    void log(const QString& text) override {
        if (!text.startsWith("Letter ")) {
            notes << text;
            return;
        }
        lines += text;
        letters.emplace_back(session_.report.currentVolume, session_.phase.now());
    }
    int refreshes = 0;
    void refresh() override {
        ++refreshes;
        shown_ = state();
    }
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

/// Best letters, then second and third.
QString lettersOf(const LetterDecoder& decoder) {
    return decoder.decodedText(0) + ' ' + decoder.decodedText(1) + ' ' + decoder.decodedText(2);
}

} // namespace

/// Windows of ten volumes, which end one volume later, and curves that are mere noise.
class SessionDecoderTest : public SessionFixture {
protected:
    SessionDecoderTest() {
        QDir().mkpath(path("results"));
        EXPECT_TRUE(writeReferences(idealResponses(8, 7000.0), path("results/own.rtc")));
        write(32);
        operatorHand_.onEndOfVolume = [this](int volume) {
            if (volume == selectAt_)
                selectRegions();
            if (atVolume)
                atVolume(volume);
        };
    }
    void write(int volumes) {
        writeSession(volumes, 0, {{"FeedbackTargetFolder:", '"' + path("feedback/") + '"'}});
        session.settings.TargetFolder = path("results/");
        session.settings.NrOfVolumes = volumes;
        session.settings.NrOfVolumesToSkip = 0;
    }
    void selectRegions() {
        for (int i = 0; i < nrOfRegions_; ++i)
            EXPECT_TRUE(session.regions.selectRectangle({i % 4, i, i + 2, i, i + 2}));
    }
    [[nodiscard]] DecoderPreparation own() const {
        DecoderPreparation preparation = session.decoder.preparation();
        preparation.settings.FullWindowSize = 10;
        preparation.settings.IdealResponseWindowSize = 8;
        preparation.settings.SkipAtBeginOfWindow = 1;
        preparation.settings.TaskVOIWeights = {{{1, 1, 1, 0, 0, 1}, {0, 2}, {1, 0, 1}}};
        preparation.referencesPath = "own.rtc";
        return preparation;
    }
    [[nodiscard]] QStringList pictures(const QString& pattern) const {
        return QDir(path("feedback")).entryList({pattern});
    }
    [[nodiscard]] QString text() const { return lettersOf(session.decoder.decoder()); }

    int nrOfRegions_ = 6;
    const QString output_ = "results/_AUTODECODED_test.txt";
    std::function<void(int)> atVolume;
    int selectAt_ = 0;
    ProbeListener operatorHand_{session.listeners, ListenerPlace::Dialogs};
};

TEST_F(SessionDecoderTest, ALetterComesOneVolumeAfterItsWindowOrAtTheEndOfTheRun) {
    Screen screen(session);
    EXPECT_EQ(own().settings.NrOfTimePoints, 32);
    ASSERT_TRUE(session.decoder.prepare(own()));
    EXPECT_TRUE(screen.isCurrent());
    EXPECT_EQ(screen.notes,
              QStringList("Loaded ideal responses \"" + path("results/own.rtc") + '"'));
    EXPECT_EQ(content("results/ScaledTaskVOIWeights.txt"),
              "      0.5       0.5       0.5         0         0       0.5 \n"
              "        0         1         0         0         0         0 \n"
              " 0.707107         0  0.707107         0         0         0 \n");
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
    for (const auto& test : cases) {
        SCOPED_TRACE(test.volumes);
        for (const QString& picture : pictures("*"))
            QFile::remove(path("feedback/" + picture));
        QFile::remove(path(output_));
        QFile::remove(path("results/ScaledTaskVOIWeights.txt"));
        screen.letters.clear();
        screen.lines.clear();
        selectAt_ = test.selectAt;
        write(test.volumes);
        int before = 0;
        atVolume = [&](int volume) {
            if (volume > test.selectAt + 1) {
                EXPECT_EQ(screen.refreshes, before + 1) << volume;
            }
            before = screen.refreshes;
        };
        session.runButtonPressed();
        std::vector<int> at;
        for (const auto& [volume, phase] : screen.letters)
            at.push_back(volume);
        EXPECT_EQ(at, test.letterAt);
        EXPECT_EQ(screen.letters.back().second, test.last);
        const QString best = session.decoder.decoder().decodedText(0);
        EXPECT_EQ(size_t(best.size()), test.letterAt.size());
        EXPECT_FALSE(best.contains(noLetter));
        EXPECT_TRUE(letters.startsWith(best) || best.startsWith(letters));
        letters = best;
        EXPECT_EQ(content(output_), screen.lines.toUtf8());
        EXPECT_TRUE(QFile::exists(path("results/ScaledTaskVOIWeights.txt")));
        EXPECT_EQ(screen.lines.count("Rank 1: "), best.size());
        EXPECT_EQ(pictures("LetterDisplay-*.png").size(), test.volumes);
        EXPECT_TRUE(QFile::exists(path("feedback/LetterDisplay-1.png")));
        QStringList expected;
        for (const QString& letter : test.pictures) {
            expected << "BOLDDecoder-test-" + letter + ".png";
            EXPECT_EQ(QImage(path("feedback/" + expected.back())).width(), letter.toInt());
        }
        EXPECT_EQ(pictures("BOLDDecoder-*"), expected);
    }
}

TEST_F(SessionDecoderTest, AFileOfTheCurvesGivesTheLettersOfTheRun) {
    Screen screen(session);
    ASSERT_TRUE(session.decoder.prepare(own()));
    session.runButtonPressed();
    const QString live = text();
    ASSERT_EQ(live.size(), 11);
    QDir().mkpath(path("data"));
    put("data/run.one.rtc", curvesText(session.decoder.curves(), 6));

    DecoderPreparation offline = own();
    offline.offline = true;
    offline.dataPath = path("data/run.one.rtc");
    ASSERT_TRUE(session.decoder.prepare(offline));
    EXPECT_TRUE(QFile::exists(path("data/ScaledTaskVOIWeights.txt")));
    for (int pass = 0; pass < 2; ++pass) {
        int volumes = 0;
        while (session.decoder.nextTR())
            ++volumes;
        EXPECT_EQ(volumes, 32);
        EXPECT_EQ(text(), live);
        EXPECT_TRUE(session.decoder.reloadROIDataForOfflineAnalysis());
        EXPECT_EQ(text(), "  ");
    }
    const QByteArray lettersOfRun = content(output_);
    EXPECT_EQ(content("data/_AUTODECODED_run.one.txt"), lettersOfRun + lettersOfRun);
    EXPECT_EQ(pictures("BOLDDecoder-run.one-*").size(), 3);

    // A run beside it is not decoded, and gives no display of the file's letters.
    QDir(path("feedback")).removeRecursively();
    runAgain();
    EXPECT_EQ(content(output_), lettersOfRun);
    EXPECT_EQ(pictures("*"), QStringList());
    session.decoder.goToNextLetter();
    EXPECT_EQ(text(), QString(live[0]) + ' ' + live[4] + ' ' + live[8]);

    // A part of the file.
    offline.settings.NrOfDataROIs = 5;
    offline.settings.NrOfTimePoints = 22;
    ASSERT_TRUE(session.decoder.prepare(offline));
    while (session.decoder.nextTR())
        ;
    EXPECT_EQ(session.decoder.decoder().currentVolume(), 21);
    EXPECT_EQ(session.decoder.decoder().decodedText(0).size(), 2);
    EXPECT_EQ(session.decoder.curves()[5], std::vector<float>(22, 0.5f));

    offline.settings.NrOfTimePoints = 33;
    for (const auto& [text, what] : {std::pair("ideal responses", 0), {"VOI time courses", 1}}) {
        offline.settings.IdealResponseWindowSize = 7 + what;
        messages.expectInformation(
            QStringLiteral("INFO - Problem loading RTC file with %1!\n*").arg(text));
        EXPECT_FALSE(session.decoder.prepare(offline));
        EXPECT_FALSE(session.decoder.nextTR());
        EXPECT_FALSE(session.decoder.mayPlay());
        EXPECT_EQ(session.decoder.curves()[0].size(), 0u);
        EXPECT_FALSE(session.decoder.letterHindrance().isEmpty());
    }
}

TEST_F(SessionDecoderTest, AWindowThatIsNotMeasuredYetHasTheNumbersOfTheFile) {
    Screen screen(session);
    EXPECT_TRUE(writeReferences(idealResponses(12, 7000.0), path("results/own.rtc")));
    DecoderPreparation preparation = own();
    preparation.settings.IdealResponseWindowSize = 12; // 9 of which are compared
    preparation.settings.MeanForPercSignalTo = 11;
    ASSERT_TRUE(session.decoder.prepare(preparation));
    session.runButtonPressed();
    EXPECT_EQ(screen.letters.size(), 2u);
    put("run.rtc", curvesText(session.decoder.curves(), 6));
    preparation.offline = true;
    preparation.dataPath = path("run.rtc");
    ASSERT_TRUE(session.decoder.prepare(preparation));
    while (session.decoder.nextTR())
        ;
    EXPECT_EQ(content("_AUTODECODED_run.txt"), content(output_));
}

TEST_F(SessionDecoderTest, TheSampleMessageIsPlayedWhereNothingElseCanBe) {
    SessionDecoder& decoder = session.decoder;
    const auto played = [&decoder] {
        while (decoder.nextTR())
            ;
        return decoder.decoder().decodedText(0);
    };
    decoder.setSampleFolder(path("documents/sample"));
    put("results/IdealResponses_rg.rtc", content("results/own.rtc")); // of another window
    atVolume = [&decoder](int) { EXPECT_FALSE(decoder.mayPlay()); };
    session.runButtonPressed();
    EXPECT_FALSE(decoder.beginPlaying()) << "the run is in memory";
    session.changeSettingsFile(path("other-1.vco"));
    session.settings.TargetFolder = path("results/");
    EXPECT_TRUE(decoder.mayPlay());
    ASSERT_TRUE(decoder.beginPlaying());
    EXPECT_EQ(decoder.preparation().dataPath, path("documents/sample/SampleMessage.rtc"));
    EXPECT_EQ(played(), "HELLO_WORLD");
    EXPECT_FALSE(decoder.mayPlay()) << "at its end";
    EXPECT_TRUE(QFile::exists(path("documents/sample/_AUTODECODED_SampleMessage.txt")));
    decoder.useOnlyCorrForComparisonWithIdealResponses();
    EXPECT_TRUE(decoder.reloadROIDataForOfflineAnalysis());
    EXPECT_EQ(played(), "HELLO_WORLD");

    // Where it can't be laid.
    QDir(path("documents")).removeRecursively();
    put("documents", "a file");
    DecoderPreparation inside = decoder.preparation();
    inside.dataPath = decoder.samplePath();
    messages.expectInformation("The folder \"" + path("documents/sample") + "\" can't be written*");
    ASSERT_TRUE(decoder.prepare(inside));
    EXPECT_TRUE(decoder.isSample());
    EXPECT_EQ(played(), "HELLO_WORLD");
}

TEST_F(SessionDecoderTest, ARunNeedsThreeToSixRegionsAndThoseThatAreExpected) {
    Screen screen(session);
    const std::tuple<int, int, int> cases[] = {
        {2, 2, 0}, {3, 3, 3}, {5, 6, 0}, {6, 5, 3}, {7, 6, 0}};
    for (const auto& [regions, expected, letters] : cases) {
        SCOPED_TRACE(regions);
        screen.letters.clear();
        nrOfRegions_ = regions;
        write(32);
        DecoderPreparation preparation = own();
        preparation.settings.NrOfDataROIs = expected;
        ASSERT_TRUE(session.decoder.prepare(preparation));
        session.runButtonPressed();
        EXPECT_EQ(int(screen.letters.size()), letters);
        EXPECT_EQ(screen.notes.filter("Helper ROI").size(), expected < 6);
        screen.notes.clear();
        EXPECT_EQ(session.decoder.letterHindrance().isEmpty(), letters > 0);
        EXPECT_EQ(session.decoder.sizeOfRun(),
                  (CurvesSize{regions == 2 || regions == 7 ? 6 : regions, 32}));
        EXPECT_EQ(session.decoder.curves()[5], regions < 6 || expected < 6
                                                   ? std::vector<float>(32, 0.5f)
                                                   : (*session.regions.list())[5].TimeCourseValues);
    }
}

TEST_F(SessionDecoderTest, TheOperatorGoesThroughTheLettersOfAFinishedRun) {
    Screen screen(session);
    ASSERT_TRUE(session.decoder.prepare(own()));
    atVolume = [this](int volume) {
        if (volume == 15) { // neither does anything
            session.decoder.goToNextLetter();
            session.decoder.goToPreviousLetter();
        }
    };
    session.runButtonPressed();
    const QString best = session.decoder.decoder().decodedText(0);
    ASSERT_EQ(best.size(), 3);
    session.decoder.goToPreviousLetter();
    EXPECT_EQ(session.decoder.decoder().decodedText(0), best.first(2));
    EXPECT_TRUE(screen.isCurrent());
    session.decoder.goToNextLetter();
    EXPECT_EQ(session.decoder.decoder().decodedText(0), best);
    EXPECT_EQ(screen.letters.size(), 5u);

    // With correlations alone, and of four letters, others are found.
    session.decoder.useOnlyCorrForComparisonWithIdealResponses();
    session.decoder.goToNextLetter();
    EXPECT_EQ(screen.letters.size(), 5u) << "beyond the data";
    EXPECT_FALSE(session.decoder.decoder().settings().UseBeta);
    EXPECT_TRUE(screen.isCurrent());
    session.decoder.useCorrForShapeAndBetaForTaskSelection();
    session.decoder.changeABCDMode(true);
    session.decoder.goToPreviousLetter();
    EXPECT_TRUE(QString("ABCD").contains(session.decoder.decoder().latest()->best[0].letter));

    // A reload has the curves again; it writes nothing by itself.
    const QByteArray before = content(output_);
    QFile::remove(path("results/ScaledTaskVOIWeights.txt"));
    session.decoder.changeABCDMode(false);
    EXPECT_TRUE(screen.isCurrent());
    session.decoder.close();
    runAgain();
    session.decoder.open(screen);
    EXPECT_TRUE(screen.isCurrent());
    EXPECT_EQ(session.decoder.curves()[0].size(), 32u);
    ASSERT_TRUE(session.reloadData());
    EXPECT_TRUE(screen.isCurrent());
    EXPECT_EQ(content(output_), before);
    EXPECT_FALSE(QFile::exists(path("results/ScaledTaskVOIWeights.txt")));
    EXPECT_EQ(session.decoder.letterHindrance(), "");
    session.decoder.goToNextLetter();
    session.decoder.goToNextLetter();
    EXPECT_EQ(session.decoder.decoder().decodedText(0), best.first(2));
    ASSERT_TRUE(session.decoder.prepare(session.decoder.preparation()));
    EXPECT_EQ(session.decoder.curves()[0].size(), 32u);
    session.regions.removeAll();
    EXPECT_EQ(session.decoder.letterHindrance(), "The run needs 6 ROIs");
    EXPECT_TRUE(screen.isCurrent());
    session.changeSettingsFile(path("other-1.vco"));
    EXPECT_EQ(session.decoder.letterHindrance(), "There is no run in memory");
    EXPECT_EQ(text(), "  ");
    EXPECT_TRUE(screen.isCurrent());
}

TEST_F(SessionDecoderTest, AnOutputFileThatCanNotBeOpenedSkipsTheLetter) {
    Screen screen(session);
    ASSERT_TRUE(session.decoder.prepare(own()));
    atVolume = [this](int volume) {
        if (volume == 15) {
            EXPECT_TRUE(QFile::rename(path(output_), path("kept.txt")));
            EXPECT_TRUE(QDir().mkpath(path(output_)));
        }
    };
    for (int letter = 2; letter <= 3; ++letter)
        messages.expectWarning(QStringLiteral("ERROR: Can not open output file \"%1\" for writing.")
                                   .arg(path(output_)));
    session.runButtonPressed();
    EXPECT_EQ(messages.shownModeless().size(), 2);
    EXPECT_EQ(screen.letters.size(), 1u);
    EXPECT_EQ(session.decoder.decoder().decodedText(0).size(), 1);
    EXPECT_EQ(session.decoder.decoder().currentLetter(), 2);
    EXPECT_EQ(pictures("BOLDDecoder-*"), QStringList("BOLDDecoder-test-1.png"));
    EXPECT_EQ(content("kept.txt"), screen.lines.toUtf8());
}

TEST_F(SessionDecoderTest, ALetterThatIsNotWrittenIsAFault) {
    DecoderOutput output;
    const DecoderPlace place{path("results"), {}};
    ASSERT_TRUE(output.prepareLog(place));
    EXPECT_TRUE(QFile::rename(path("results/Auto-Decoded.txt"), path("kept.txt")));
    EXPECT_TRUE(QDir().mkpath(place.logPath()));
    output.appendLetter(place, "A");
    EXPECT_EQ(output.fault(), "Not written: \"" + path("results/Auto-Decoded.txt") + '"');
    EXPECT_TRUE(QDir().rmdir(place.logPath()));
    output.appendLetter(place, "B");
    EXPECT_EQ(output.fault(), "");
    EXPECT_EQ(content("results/Auto-Decoded.txt"), "B");
}

TEST_F(SessionDecoderTest, APlayedVolumeGivesNothingAgain) {
    auto screen = std::make_unique<Screen>(session);
    ASSERT_TRUE(session.decoder.prepare(own()));
    const QString journal = recordJournal();
    const QString live = text();
    const QByteArray log = content(output_);
    for (const bool openLate : {false, true}) {
        SCOPED_TRACE(openLate);
        cutJournal(journal, 25); // the letters at volumes 11 and 21
        ASSERT_TRUE(QFile::copy(journal, path("kept.vcj")));
        put(output_.toUtf8(), log.first(log.indexOf("Letter 3")));
        QDir(path("feedback")).removeRecursively();
        if (openLate) {
            screen.reset();
            atVolume = [&](int volume) {
                if (volume == 26)
                    screen = std::make_unique<Screen>(session);
            };
        }
        EXPECT_TRUE(session.playJournal({journal, {}, {}, false}, PlayPurpose::GoOn));
        EXPECT_EQ(text(), live);
        EXPECT_EQ(content(output_), log);
        EXPECT_EQ(pictures("LetterDisplay-*").size(), openLate ? 5 : 7);
        EXPECT_EQ(pictures("BOLDDecoder-*"), QStringList("BOLDDecoder-test-3.png"));
        ASSERT_TRUE(QFile::rename(path("kept.vcj"), journal));
    }
    atVolume = {};
    runAgain();
    EXPECT_EQ(content(output_).count("Letter "), 6) << "the next run is measured";
}

TEST_F(SessionDecoderTest, ARecoveredRunIsDecodedAsItWasPrepared) {
    Screen screen(session);
    ASSERT_TRUE(session.decoder.prepare(own()));
    atVolume = [this](int volume) {
        if (volume == 10) {
            EXPECT_TRUE(QFile::rename(path("results/own.rtc"), path("own.rtc")));
        }
        if (volume == 12)
            session.decoder.useOnlyCorrForComparisonWithIdealResponses();
        if (volume == 22)
            session.decoder.useCorrForShapeAndBetaForTaskSelection();
        if (volume == 25)
            session.decoder.changeABCDMode(true);
    };
    const QString journal = recordJournal();
    atVolume = {};
    EXPECT_TRUE(QFile::rename(path("own.rtc"), path("results/own.rtc")));
    const DecoderSettings settings = session.decoder.preparation().settings;
    const QString live = text();
    const QByteArray log = content(output_);
    // As another session has it: not prepared, or for something else.
    DecoderPreparation other = session.decoder.preparation();
    other.settings.NrOfDataROIs = 3;
    other.referencesPath = "none.rtc";
    const QString loading = "INFO - Problem loading RTC file with ideal responses!*";
    for (const bool isThere : {true, false}) {
        SCOPED_TRACE(isThere);
        messages.expectInformation(loading);
        EXPECT_FALSE(session.decoder.prepare(other));
        if (!isThere) {
            QFile::remove(path("results/own.rtc"));
            messages.expectInformation(loading); // once
        }
        ASSERT_TRUE(QFile::copy(journal, path("copy.vcj")));
        cutJournal(path("copy.vcj"), 31); // with the third window
        QDir(path("feedback")).removeRecursively();
        EXPECT_TRUE(session.playJournal({path("copy.vcj"), {}, path("elsewhere/"), false},
                                        PlayPurpose::Recover));
        EXPECT_EQ(session.decoder.preparation().settings, settings);
        EXPECT_EQ(text(), isThere ? live : "  ");
        EXPECT_EQ(pictures("*"), QStringList());
        QFile::remove(path("copy.vcj"));
    }
    EXPECT_EQ(volumesIn("elsewhere"), 31);
    EXPECT_EQ(content(output_), log);
    EXPECT_EQ(content("elsewhere/_AUTODECODED_test.txt"), log.mid(log.indexOf("Letter 3")));
}

TEST(DecoderRecords, ComeBackWholeOrNotAtAll) {
    DecoderSettings settings = defaultDecoderSettings();
    settings.NrOfDataROIs = 4;
    settings.NrOfTimePoints = 420;
    settings.UseBeta = false;
    settings.ABCDMode = true;
    settings.CorrBetaTau = 0.3f;
    settings.TaskVOIWeights[1][4] = 0.123456789f;
    const QByteArray content = encodedDecoder({settings, "/r.rtc"});
    DecoderSettings start;
    start.TimerInterval = settings.TimerInterval = 7; // not recorded
    const auto decoded = decodedDecoder(content, start);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->referencesPath, "/r.rtc");
    EXPECT_EQ(decoded->settings, settings);
    for (qsizetype length = 0; length < content.size(); ++length)
        EXPECT_FALSE(decodedDecoder(content.left(length), start)) << length;
    EXPECT_FALSE(decodedDecoder(char(2) + content.mid(1), start)) << "of a later version";
    std::array<DecoderSettings, 5> wrong;
    wrong.fill(settings);
    wrong[0].NrOfDataROIs = 2;
    wrong[1].NrOfDataROIs = 7;
    wrong[2].NrOfTimePoints = -1;
    wrong[3].CorrBetaTau = 2.0f;
    wrong[4].TaskVOIWeights[2][5] = NAN;
    for (const DecoderSettings& changed : wrong)
        EXPECT_FALSE(decodedDecoder(encodedDecoder({changed, {}}), start));
}

TEST_F(SessionDecoderTest, ResponsesAreMadeFromARunOrFromFiles) {
    messages.expectInformation("There is no run in memory.");
    EXPECT_FALSE(session.decoder.createEmpiricalResponses({}, path("r.rtc")));
    QString protocol = defaultProtocol().replace("NrOfConditions: 3", "NrOfConditions: 10");
    protocol = protocol.section("\nFixation", 0, 0) + "\nRest\n1\n1 4\nColor: 9 9 9\n";
    for (int i = 0; i < 9; ++i)
        protocol += QStringLiteral("\nC%1\n1\n%2 %3\nColor: 9 9 9\n").arg(i).arg(5 + i).arg(5 + i);
    put("ten.prt", protocol.toUtf8());
    writeSession(32, 0, {}, protocol);
    session.runButtonPressed();
    EmpiricalOptions options{.WindowTimePoints = 8,
                             .PreTrialBeginDataPoints = 2,
                             .PostTrialDataPoints = 3,
                             .ShortestTaskDuration = 2};
    ASSERT_TRUE(session.decoder.createEmpiricalResponses(options, path("run.rtc")));
    const auto references = loadReferences(path("run.rtc"));
    ASSERT_TRUE(references);
    EXPECT_EQ((*references)[3][5], (*references)[0][0]) << "10 s later";
    ROICurves curves;
    for (size_t i = 0; i < curves.size(); ++i)
        curves[i] = (*session.regions.list())[int(i)].TimeCourseValues;
    put("curves.rtc", curvesText(curves, 3));
    const auto make = [&](const char* prt) {
        return session.decoder.createEmpiricalResponses(options, path("curves.rtc"), path(prt),
                                                        path("file.rtc"));
    };
    // The shortest duration stands for 10 s, as it does with the TR of the run.
    options.ShortestTaskDuration = 5;
    ASSERT_TRUE(session.decoder.createEmpiricalResponses(options, path("run.rtc")));
    ASSERT_TRUE(make("ten.prt"));
    EXPECT_EQ(session.functionalDocument->project.TR, 2000.0f);
    EXPECT_EQ(content("file.rtc"), content("run.rtc"));

    put("ms.prt", protocol.replace("Volumes", "msec").toUtf8());
    messages.expectWarning("WARNING - Can not create reference file: the protocol needs to be*");
    EXPECT_FALSE(make("ms.prt"));
    options.rois = ResponseROIs::Helpers;
    messages.expectWarning("WARNING - Can not create reference file: not enough ROIs.");
    EXPECT_FALSE(make("ten.prt"));
    options.rois = ResponseROIs::Tasks;
    messages.expectWarning("WARNING - Can not create reference file: protocol needs to have 10*");
    put("three.prt", defaultProtocol().toUtf8());
    EXPECT_FALSE(make("three.prt"));
    put("late.prt", protocol.replace("msec", "Volumes")
                        .replace("\n7 7\n", "\n99 99\n")
                        .replace("\n10 10\n", "\n99 99\n")
                        .replace("\n13 13\n", "\n99 99\n")
                        .toUtf8());
    messages.expectWarning("WARNING - Can not create reference file: for each duration*");
    EXPECT_FALSE(make("late.prt"));
}

// The responses of the program against a subject who spells, with the simulator's regions.
TEST(SessionDecoder, ReadsWhatASimulatedSubjectSpells) {
    const SimulatorCommand command = parseCommandLine({"simulator", "--spell", "EMU"});
    ASSERT_EQ(command.problem, QString());
    SimulatedSession run(command.simulation);
    ASSERT_TRUE(run.scan.writeTruth());
    run.writeAll();
    Screen screen(run.session);
    ASSERT_TRUE(run.session.inspectSettings());
    ASSERT_TRUE(run.session.decoder.prepare(run.session.decoder.preparation()));
    ProbeListener operatorHand(run.session.listeners, ListenerPlace::Dialogs);
    operatorHand.onEndOfVolume = [&](int volume) {
        if (volume == 0) {
            EXPECT_TRUE(
                run.session.regions.load(run.folder.filePath("truth/Simulation-1/regions.roi")));
        }
    };
    EXPECT_EQ(run.run(), QStringList());
    EXPECT_EQ(run.session.decoder.decoder().decodedText(0), "EMU");
}
