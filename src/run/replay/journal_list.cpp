// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/journal_list.h"

#include "base/file_writing.h"
#include "base/plain_file.h"
#include "base/text_reading.h"

#include <QFileInfo>
#include <QLockFile>
#include <algorithm>

std::optional<QStringList> JournalList::read() const {
    QString text;
    if (path_.isEmpty() || (QFileInfo::exists(path_) && !readTextFile(path_, text)))
        return std::nullopt;
    return text.split('\n', Qt::SkipEmptyParts);
}

// A failure is not told: the journal itself is written, and the operator can point at it.
void JournalList::change(const std::function<void(QStringList&)>& edit) const {
    constexpr int patience = 2000; // milliseconds; another program changes the list in far less
    QLockFile lock(path_ + ".lock");
    std::optional<QStringList> journals;
    if (path_.isEmpty() || !lock.tryLock(patience) || !(journals = read()))
        return;
    const QStringList before = *journals;
    edit(*journals);
    if (*journals != before)
        static_cast<void>(writeFileAtomically(path_, journals->join('\n').toUtf8()));
}

QStringList JournalList::journals() const {
    QStringList found = read().value_or(QStringList());
    found.removeIf([](const QString& journal) { return !fileExists(journal); });
    std::ranges::reverse(found);
    return found;
}

void JournalList::add(const QString& journal) const {
    // A path with a line end would come back as two.
    if (!journal.contains('\n'))
        change([&](QStringList& journals) {
            journals.removeAll(journal);
            journals << journal;
        });
}

void JournalList::remove(const QString& journal) const {
    change([&](QStringList& journals) { journals.removeAll(journal); });
}
