// A session whose run was recorded, and its journal.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/journal/journal_scan.h"
#include "run/journal/journal_writer.h"
#include "run/loop/session_fixture.h"
#include "run/replay/journal_records.h"

class PlayingTest : public SessionFixture {
protected:
    PlayingTest() {
        QDir().mkpath(path("fallback"));
        session.journal.setPlaces(path("fallback/"), JournalList(path("OpenJournals")));
    }
    /// Runs the session, whose journal is then "run.vcj".
    void recordRun(const QMap<QString, QString>& changes = {}) {
        writeSession(20, 0, changes);
        takeJournal();
    }
    /// The same with the settings as they are.
    void takeJournal() {
        QFile::remove(journal_);
        ASSERT_TRUE(QFile::rename(recordJournal(), journal_));
    }
    bool play(PlayPurpose purpose, const QString& target = {}, const QString& settings = {}) {
        return session.playJournal({journal_, settings, target, false}, purpose);
    }
    /// Writes the journal anew with records that `edit` may change; all checksums are right.
    void editJournal(const std::function<void(RecordKind, std::vector<uint8_t>&)>& edit) {
        std::vector<std::pair<uint32_t, std::vector<uint8_t>>> records;
        JournalCursor cursor(journal_);
        for (JournalRecord record; cursor.next(record);) {
            records.push_back({record.kind, {record.payload.begin(), record.payload.end()}});
            edit(RecordKind(record.kind), records.back().second);
        }
        QFile::remove(journal_);
        JournalWriter writer(createJournalFile(journal_));
        for (const auto& [kind, payload] : records)
            EXPECT_TRUE(writer.add(kind, {payload}));
    }
    void editHead(const std::function<void(RunHead&)>& edit) {
        editJournal([&](RecordKind kind, std::vector<uint8_t>& payload) {
            RunHead head;
            if (kind != RecordKind::Head)
                return;
            ASSERT_TRUE(decodeHead(payload, head));
            edit(head);
            payload = encodeHead(head);
        });
    }
    QString journal_ = path("run.vcj");
};
