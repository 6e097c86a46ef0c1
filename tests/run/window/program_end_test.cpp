// The program itself, as a process with a home of its own, is told to end.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/file_writing.h"
#include "base/text_reading.h"
#include "run/loop/simulated_session.h"
#include "run/settings/master_file.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <csignal>
#include <sys/types.h>

namespace {

constexpr int deadline = 60000; // milliseconds; only a fault comes near

SimulationOptions smallScan() {
    SimulationOptions options;
    options.sizeX = options.sizeY = 16;
    options.nrOfSlices = 4;
    options.nrOfVolumes = 40;
    options.nrOfVolumesToSkip = 0;
    options.motion = HeadMotion::Drift; // so that volumes are corrected, and the log tells of each
    return options;
}

/// The program on the settings of a simulated session, which it starts by itself. Files are awaited
/// for ten minutes.
class Program {
public:
    Program() {
        QString text;
        EXPECT_TRUE(readTextFile(path("Simulation-1.vco"), text));
        text.replace(QRegularExpression("TimeOutSeconds: +30"), "TimeOutSeconds: 600");
        EXPECT_TRUE(writeFileAtomically(path("Simulation-1.vco"), text.toUtf8()));
        MasterFile master;
        master.settingsDirectory = path("");
        master.settingsFileName = "Simulation-1.vco";
        master.autoStartRun = true;
        const QString masterFolder = path("data/Velo-Cortivo/VCO/");
        EXPECT_TRUE(QDir().mkpath(masterFolder) && writeMasterFile(masterFolder, master));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        for (const auto& [name, place] : {std::pair{"HOME", ""},
                                          {"XDG_DATA_HOME", "data"},
                                          {"XDG_CONFIG_HOME", "config"},
                                          {"XDG_RUNTIME_DIR", ""}})
            environment.insert(name, path(place));
        environment.insert("QT_LOGGING_RULES", "*=false"); // what is left are messages
        process.setProcessEnvironment(environment);
    }
    ~Program() {
        process.kill();
        process.waitForFinished();
    }

    [[nodiscard]] QString path(const QString& name) const { return session.folder.filePath(name); }
    /// Waits until a file that the program writes holds the text.
    [[nodiscard]] bool hasWritten(const QString& name, const QByteArray& text) {
        QElapsedTimer watch;
        for (watch.start(); watch.elapsed() < deadline;) {
            QFile file(path(name));
            if (file.open(QIODevice::ReadOnly) && file.readAll().contains(text))
                return true;
            if (process.waitForFinished(20)) // has it ended?
                return false;
        }
        return false;
    }

    SimulatedSession session{smallScan()};
    QProcess process;
};

} // namespace

TEST(ProgramEnd, ARunThatWaitsForAFileIsSavedAtOnce) {
    const struct {
        int volumes; ///< those that come
        int signal;
        const char* written; ///< shows how far the run has come
        const char* text;
    } cases[] = {{0, SIGINT, "results/velo-cortivo.lock", ""},
                 {5, SIGTERM, "results/Simulation-1_3DMC.log", "volume:    5 "}};
    for (const auto& [volumes, signal, written, text] : cases) {
        SCOPED_TRACE(volumes);
        Program program;
        for (int volume = 0; volume < volumes; ++volume)
            for (const ScannerFile& file : program.session.scan.files(volume))
                program.session.write(file);
        program.process.start(QCoreApplication::applicationDirPath() + "/../bin/velo-cortivo",
                              QStringList());
        ASSERT_TRUE(program.hasWritten(written, text))
            << program.process.readAllStandardError().toStdString();
        // Writes that fail don't end it.
        for (const int sent : {SIGPIPE, SIGXFSZ, signal})
            ASSERT_EQ(::kill(pid_t(program.process.processId()), sent), 0);
        ASSERT_TRUE(program.process.waitForFinished(deadline));
        EXPECT_EQ(program.process.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program.process.exitCode(), 0);
        EXPECT_EQ(program.process.readAllStandardError().toStdString(), "");
        EXPECT_FALSE(QFile::exists(program.path("results/velo-cortivo.lock")));
        EXPECT_EQ(QFileInfo(program.path("results/Simulation-1.stc")).size(),
                  volumes * 16 * 16 * 4 * 2);
        EXPECT_EQ(QFile::exists(program.path("results/Simulation-1.fmr")), volumes > 0);
    }
}
