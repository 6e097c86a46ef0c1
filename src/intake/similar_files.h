// Tells the operator what a watch folder holds instead of the awaited file.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/event_pump.h"
#include "intake/arrival.h"

#include <array>
#include <map>
#include <vector>

/// The parts of a file's name by which names are compared, all in lower case.
class NameShape {
public:
    explicit NameShape(const QString& written);

    QString name; ///< as it is written
    QString lower;
    QString pattern; ///< each number replaced by one digit

    [[nodiscard]] size_t nrOfNumbers() const { return numbers_.size(); }
    [[nodiscard]] QStringView number(size_t index) const { return part(numbers_[index]); }
    [[nodiscard]] QStringView stem() const { return part(stem_); } ///< up to the last "."
    [[nodiscard]] QStringView extension() const;
    [[nodiscard]] QStringView lastNumber() const { return part(lastNumber_); } ///< ends the stem

private:
    struct Part {
        qsizetype start = 0;
        qsizetype length = 0;
    };
    [[nodiscard]] QStringView part(const Part& part) const {
        return QStringView(lower).mid(part.start, part.length);
    }

    std::vector<Part> numbers_;
    Part stem_;
    Part lastNumber_;
};

/// Sorts the names of a folder by how they differ from the awaited ones. Holds the first and last
/// name of each difference only, however many files there are.
class SimilarNames {
public:
    /// Names without folder; any one of them is awaited.
    explicit SimilarNames(const QStringList& awaited);

    void addFile(const QString& name);
    void addFolder(const QString& name);

    /// One line for each difference, the most telling first, such as: Other case: "RUN-1.DCM".
    /// Names that differ in their numbers are told as a range, in the order of these numbers. When
    /// no name is similar, one line tells what is there; none when an awaited file is.
    [[nodiscard]] QStringList lines() const;

private:
    enum class Difference {
        None,
        Compressed,
        Case,
        Extension,
        LongerName,
        NrOfDigits,
        Number,
        Prefix,
        Other,
        Folder
    };
    /// Of numbers, which of them differ: files of one scan differ in fewer of them than others.
    struct Kind {
        Difference difference = Difference::Other;
        int nrOfNumbers = 0;
        quint64 numbersFromEnd = 0; ///< bit 0: the last number of the name differs
        [[nodiscard]] auto operator<=>(const Kind&) const = default;
    };
    struct Range {
        qint64 count = 0;
        NameShape first;
        NameShape last;
    };

    [[nodiscard]] static Kind kindOf(const NameShape& found, const NameShape& awaited);
    [[nodiscard]] static QString label(Difference difference);
    void add(const Kind& kind, const NameShape& found);

    std::vector<NameShape> awaited_;
    std::map<Kind, Range> ranges_;
};

/// Looks at the folders of the awaited names and tells, in at most five lines of plain text, that a
/// folder is missing, can't be read or is empty, that a file is there but not accepted and why, and
/// which names are similar. Reads at most 20,000 entries and, unless the system itself blocks, for
/// at most 50 milliseconds; a line says when that was not enough.
[[nodiscard]] QStringList similarFiles(const ExpectedFile& expected, const EventPump& clock);
