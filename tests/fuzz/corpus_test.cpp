// Runs every target over its corpus, in which the inputs stay that once broke a parser.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/fuzz_target.h"
#include "support/scripted_messages.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

TEST(FuzzCorpus, EveryTargetTakesItsFiles) {
    ASSERT_FALSE(fuzzTargets().empty());
    ScriptedMessages messages;
    messages.acceptAnything();
    const RecordedProgramEnd programEnd;
    for (const FuzzTarget& target : fuzzTargets()) {
        const QDir corpus(QString(VELO_SOURCE_DIR "/tests/fuzz/corpus/") + target.name);
        const QStringList names = corpus.entryList(QDir::Files);
        int nrTaken = 0;
        for (const QString& name : names) {
            SCOPED_TRACE(std::string(target.name) + "/" + name.toStdString());
            QFile file(corpus.filePath(name));
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            const QByteArray bytes = file.readAll();
            // A buffer of just this size lets the sanitizer see one byte too far.
            const std::vector<uint8_t> exact(bytes.begin(), bytes.end());
            nrTaken += target.run(exact);
        }
        EXPECT_GT(nrTaken, 0) << target.name << ": no file gets to the end of its parser";
    }
}
