// The program itself, as a process with a home of its own, is told to end.
// SPDX-License-Identifier: GPL-3.0-or-later
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

SimulationOptions movingScan() {
    SimulationOptions options = smallScan(16, 4, 40);
    options.nrOfVolumesToSkip = 0;
    options.motion = HeadMotion::Drift; // so that volumes are corrected, and the log tells of each
    return options;
}

/// The program on the settings of a simulated session, which it starts by itself. Files are awaited
/// for ten minutes.
class ProgramEnd : public testing::TestWithParam<int>, public SimulatedSession {
protected:
    ProgramEnd() : SimulatedSession(movingScan()) {
        QString text = contentOf(path("Simulation-1.vco"));
        text.replace(QRegularExpression("TimeOutSeconds: +30"), "TimeOutSeconds: 600");
        writeFile(path("Simulation-1.vco"), text.toUtf8());
        MasterFile master;
        master.settingsDirectory = path("");
        master.settingsFileName = "Simulation-1.vco";
        master.autoStartRun = true;
        const QString masterFolder = path("data/Velo-Cortivo/VCO/");
        EXPECT_TRUE(QDir().mkpath(masterFolder) && writeMasterFile(masterFolder, master));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        for (const char* home : {"HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"})
            environment.insert(home, path(""));
        environment.insert("XDG_DATA_HOME", path("data"));
        environment.insert("QT_LOGGING_RULES", "*=false"); // what is left are messages
        process.setProcessEnvironment(environment);
    }
    ~ProgramEnd() override {
        process.kill();
        process.waitForFinished();
    }

    [[nodiscard]] QString path(const QString& name) const { return folder.filePath(name); }
    /// Waits until a file that the program writes holds the text.
    [[nodiscard]] bool hasWritten(const QString& name, const QByteArray& text) {
        QElapsedTimer watch;
        for (watch.start(); watch.elapsed() < deadline;)
            if (const bool found =
                    QFile::exists(path(name)) && contentOf(path(name)).contains(text);
                found || process.waitForFinished(20)) // has it ended?
                return found;
        return false;
    }

    QProcess process;
};

INSTANTIATE_TEST_SUITE_P(Volumes, ProgramEnd, testing::Values(0, 5)); // that come

} // namespace

TEST_P(ProgramEnd, ARunThatWaitsForAFileIsSavedAtOnce) {
    const int volumes = GetParam();
    writeVolumes(0, volumes);
    process.start(QCoreApplication::applicationDirPath() + "/../bin/velo-cortivo", QStringList());
    ASSERT_TRUE(volumes > 0 ? hasWritten("results/Simulation-1_3DMC.log", "volume:    5 ")
                            : hasWritten("results/velo-cortivo.lock", ""))
        << process.readAllStandardError().toStdString();
    // Writes that fail don't end it.
    for (const int sent : {SIGPIPE, SIGXFSZ, volumes > 0 ? SIGTERM : SIGINT})
        ASSERT_EQ(::kill(pid_t(process.processId()), sent), 0);
    ASSERT_TRUE(process.waitForFinished(deadline));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(process.readAllStandardError().toStdString(), "");
    EXPECT_FALSE(QFile::exists(path("results/velo-cortivo.lock")));
    EXPECT_EQ(QFileInfo(path("results/Simulation-1.stc")).size(), volumes * 16 * 16 * 4 * 2);
    EXPECT_EQ(QFile::exists(path("results/Simulation-1.fmr")), volumes > 0);
}
