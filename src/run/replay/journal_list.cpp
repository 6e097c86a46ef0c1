// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/journal_list.h"

#include "base/file_writing.h"
#include "base/text_reading.h"

#include <QFileInfo>
#include <algorithm>

QStringList JournalList::read() const {
    QString text;
    if (path_.isEmpty() || !readTextFile(path_, text))
        return {};
    return text.split('\n', Qt::SkipEmptyParts);
}

// A failure is not told: the journal itself is written, and the operator can point at it.
void JournalList::write(const QStringList& journals) const {
    if (!path_.isEmpty())
        static_cast<void>(writeFileAtomically(path_, journals.join('\n').toUtf8()));
}

QStringList JournalList::journals() const {
    QStringList found = read();
    found.removeIf([](const QString& journal) { return !QFileInfo(journal).isFile(); });
    std::ranges::reverse(found);
    return found;
}

void JournalList::add(const QString& journal) const {
    // A path with a line end would come back as two.
    if (journal.contains('\n'))
        return;
    QStringList journals = read();
    journals.removeAll(journal);
    write(journals << journal);
}

void JournalList::remove(const QString& journal) const {
    QStringList left = read();
    if (left.removeAll(journal) > 0)
        write(left);
}
