// Runs every target over its corpus, which keeps inputs that once broke a parser.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/fuzz_target.h"
#include "support/files.h"
#include "support/scripted_messages.h"

#include <QDirIterator>

namespace {

// How many files of a folder the parser accepts.
int nrOfFilesTaken(const FuzzTarget& target, const QString& folder) {
    ScriptedMessages messages;
    messages.acceptAnything();
    const RecordedProgramEnd programEnd;
    int nrTaken = 0;
    for (QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories); files.hasNext();) {
        const QByteArray bytes = contentOf(files.next());
        SCOPED_TRACE(files.filePath().toStdString());
        // With a buffer of exactly this size the sanitizer catches a read beyond its end.
        const std::vector<uint8_t> exact(bytes.begin(), bytes.end());
        nrTaken += target.run(exact);
    }
    return nrTaken;
}

TEST(FuzzCorpus, EveryTargetTakesItsFiles) {
    for (const FuzzTarget& target : allTargets())
        EXPECT_GT(
            nrOfFilesTaken(target, QString(VELO_SOURCE_DIR "/tests/fuzz/corpus/") + target.name), 0)
            << target.name;
}

} // namespace
