// The journals of runs that are not saved yet, wherever they lie: a start after a crash looks here.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <functional>
#include <optional>

/// A text file with one path in each line, which several programs may change. A journal that can't
/// be listed is found by hand. Does nothing without a path.
class JournalList {
public:
    explicit JournalList(QString path = {}) : path_(std::move(path)) {}

    /// Those that still exist, the latest first.
    [[nodiscard]] QStringList journals() const;
    /// As the latest, also one that is listed already.
    void add(const QString& journal) const;
    void remove(const QString& journal) const;

private:
    /// Nothing when there is a list that can't be read.
    [[nodiscard]] std::optional<QStringList> read() const;
    void change(const std::function<void(QStringList&)>& edit) const;

    QString path_;
};
