// SPDX-License-Identifier: GPL-3.0-or-later
#include "intake/similar_files.h"

#include "base/paths.h"
#include "base/plain_file.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <bit>
#include <filesystem>

namespace {

constexpr qsizetype mostLines = 5;
constexpr int mostEntries = 20000;
constexpr qint64 mostMilliseconds = 50;

bool isDigit(QChar character) {
    return character >= QLatin1Char('0') && character <= QLatin1Char('9');
}

QStringView withoutZeros(QStringView digits) {
    while (digits.size() > 1 && digits.front() == QLatin1Char('0'))
        digits = digits.mid(1);
    return digits;
}

/// Numbers of any length, as in unique identifiers.
int compareNumbers(QStringView a, QStringView b) {
    a = withoutZeros(a);
    b = withoutZeros(b);
    return a.size() != b.size() ? (a.size() < b.size() ? -1 : 1) : a.compare(b);
}

bool comesBefore(const NameShape& a, const NameShape& b) {
    if (a.pattern == b.pattern)
        for (size_t i = 0; i < a.nrOfNumbers(); ++i)
            if (const int order = compareNumbers(a.number(i), b.number(i)))
                return order < 0;
    return a.name < b.name;
}

bool isCompressed(const QString& found, const QString& awaited) {
    constexpr std::array suffixes{".gz", ".zip", ".bz2", ".7z", ".xz", ".zst"};
    return std::ranges::any_of(
        suffixes, [&](const char* suffix) { return found == awaited + QLatin1String(suffix); });
}

QString quoted(const QString& name) {
    return '"' + name + '"';
}

/// With a comma behind the thousands.
QString number(qint64 value) {
    return QLocale(QLocale::English).toString(value);
}

} // namespace

NameShape::NameShape(const QString& written) : name(written), lower(written.toLower()) {
    stem_ = {0, lower.lastIndexOf('.')};
    if (stem_.length < 0)
        stem_.length = lower.size();
    pattern.reserve(lower.size());
    for (qsizetype i = 0; i < lower.size();) {
        Part digits{i, 0};
        while (i < lower.size() && isDigit(lower[i]))
            ++i;
        digits.length = i - digits.start;
        if (digits.length == 0) {
            pattern += lower[i++];
            continue;
        }
        pattern += '0';
        numbers_.push_back(digits);
        if (i == stem_.length)
            lastNumber_ = digits;
    }
}

QStringView NameShape::extension() const {
    return QStringView(lower).mid(std::min(stem_.length + 1, lower.size()));
}

SimilarNames::SimilarNames(const QStringList& awaited) {
    for (const QString& name : awaited)
        awaited_.emplace_back(name);
}

SimilarNames::Kind SimilarNames::kindOf(const NameShape& found, const NameShape& awaited) {
    constexpr qsizetype shortestPart = 4; // less is a part of many names
    if (found.name == awaited.name)
        return {Difference::None};
    if (found.lower == awaited.lower)
        return {Difference::Case};
    if (isCompressed(found.lower, awaited.lower))
        return {Difference::Compressed};
    if (found.pattern == awaited.pattern) {
        constexpr size_t mostBits = 64;
        Kind kind{Difference::Number};
        const size_t count = awaited.nrOfNumbers();
        for (size_t i = 0; i < count; ++i)
            if (compareNumbers(found.number(i), awaited.number(i)) != 0)
                kind.numbersFromEnd |= quint64(1) << std::min(count - 1 - i, mostBits - 1);
        kind.nrOfNumbers = std::popcount(kind.numbersFromEnd);
        return kind.nrOfNumbers > 0 ? kind : Kind{Difference::NrOfDigits};
    }
    if (found.stem() == awaited.stem())
        return {Difference::Extension};
    if (awaited.lower.size() >= shortestPart && found.lower.contains(awaited.lower))
        return {Difference::LongerName};
    if (!awaited.lastNumber().isEmpty() && found.lastNumber() == awaited.lastNumber() &&
        found.extension() == awaited.extension())
        return {Difference::Prefix};
    return {Difference::Other};
}

QString SimilarNames::label(Difference difference) {
    switch (difference) {
    case Difference::Compressed:
        return "Compressed";
    case Difference::Case:
        return "Other case";
    case Difference::Extension:
        return "Other extension";
    case Difference::LongerName:
        return "Longer name";
    case Difference::NrOfDigits:
        return "Other number of digits";
    case Difference::Number:
        return "Other number";
    case Difference::Prefix:
        return "Other prefix";
    case Difference::Folder:
        return "Only folders";
    case Difference::None:
    case Difference::Other:
        break;
    }
    return "Only other files";
}

void SimilarNames::addFile(const QString& name) {
    const NameShape found(name);
    Kind best;
    for (const NameShape& awaited : awaited_)
        best = std::min(best, kindOf(found, awaited));
    add(best, found);
}

void SimilarNames::addFolder(const QString& name) {
    const NameShape found(name);
    const bool isAwaited =
        std::ranges::any_of(awaited_, [&](const NameShape& one) { return one.name == name; });
    add({isAwaited ? Difference::None : Difference::Folder}, found);
}

void SimilarNames::add(const Kind& kind, const NameShape& found) {
    Range& range = ranges_.try_emplace(kind, Range{0, found, found}).first->second;
    ++range.count;
    if (comesBefore(found, range.first))
        range.first = found;
    if (comesBefore(range.last, found))
        range.last = found;
}

QStringList SimilarNames::lines() const {
    QStringList lines;
    for (const auto& [kind, range] : ranges_) {
        const bool isSimilar = kind.difference < Difference::Other;
        if (kind.difference == Difference::None || (!isSimilar && ranges_.begin()->first != kind))
            continue;
        const QString text = label(kind.difference) + ": ";
        lines << (range.count == 1 ? text + quoted(range.first.name)
                                   : QString("%1%2 names from %3 to %4")
                                         .arg(text, number(range.count), quoted(range.first.name),
                                              quoted(range.last.name)));
    }
    return lines;
}

namespace {

/// Why the file of this very name has not been taken; empty when there is none.
QString refusalOf(const QString& path, const ExpectedFile& expected) {
    const QFileInfo entry(path);
    if (!entry.exists())
        return {};
    if (!entry.isFile())
        return QString("Not a file: %1").arg(quoted(paths::fileName(path)));
    const QString name = quoted(paths::fileName(path));
    const auto stamp = fileStamp(path);
    if (!stamp)
        return QString("It can not be opened, check the permission to read it: %1").arg(name);
    const bool isSmall = stamp->size < expected.size;
    if (isSmall || (!expected.atLeast && stamp->size > expected.size))
        return QString("%1, %2 of %3 %4 bytes: %5")
            .arg(isSmall ? "Too small" : "Too large", number(stamp->size),
                 expected.atLeast ? "at least" : "exactly", number(expected.size), name);
    return QString("It is still changing, or not complete: %1").arg(name);
}

/// What tells one folder from the others.
QString endOf(const QString& folder) {
    constexpr qsizetype longest = 48;
    return folder.size() <= longest ? folder : QChar(0x2026) + folder.right(longest - 1);
}

/// One look at all folders, within its limits.
class Look {
public:
    Look(const ExpectedFile& expected, const EventPump& clock)
        : expected_(expected), watch_(clock) {}

    [[nodiscard]] QStringList lines() {
        QStringList folders;
        for (const QString& name : expected_.names) {
            const QString refusal = isOver() ? QString() : refusalOf(name, expected_);
            if (!refusal.isEmpty())
                lines_ << refusal;
            folders << paths::folderWithSlash(name);
        }
        folders.removeDuplicates();
        for (const QString& folder : folders)
            readFolder(folder, folders.size() > 1 ? endOf(folder) + ": " : QString());
        const bool tooMany = lines_.size() > mostLines;
        if (cutShort_ || tooMany)
            lines_ = lines_.first(std::min(lines_.size(), mostLines - 1));
        if (cutShort_)
            lines_ << QString("There is more: only %1 files were looked at").arg(number(entries_));
        else if (tooMany)
            lines_ << "And more";
        return lines_;
    }

private:
    [[nodiscard]] bool isOver() const {
        return entries_ >= mostEntries || watch_.elapsed() > mostMilliseconds;
    }

    [[nodiscard]] QStringList namesIn(const QString& folder) const {
        QStringList names;
        for (const QString& name : expected_.names)
            if (paths::folderWithSlash(name) == folder)
                names << paths::fileName(name);
        return names;
    }

    void readFolder(const QString& folder, const QString& head) {
        namespace files = std::filesystem;
        if (cutShort_ || isOver()) {
            cutShort_ = true;
            return;
        }
        const QString path = folder.isEmpty() ? QDir::currentPath() : folder;
        SimilarNames similar(namesIn(folder));
        std::error_code error;
        files::directory_iterator entry(QFile::encodeName(path).toStdString(), error);
        if (error) {
            const bool isMissing = error == std::errc::no_such_file_or_directory;
            lines_ << head + (isMissing ? "The folder does not exist"
                                        : "The folder can not be read: " +
                                              QString::fromStdString(error.message()));
            return;
        }
        const int entriesBefore = entries_;
        for (; !error && entry != files::directory_iterator(); entry.increment(error)) {
            if (isOver()) {
                cutShort_ = true;
                break;
            }
            ++entries_;
            const std::string name = entry->path().filename().string();
            std::error_code ignored;
            if (entry->is_directory(ignored))
                similar.addFolder(QFile::decodeName(name.c_str()));
            else
                similar.addFile(QFile::decodeName(name.c_str()));
        }
        if (entries_ == entriesBefore && !cutShort_)
            lines_ << head + "The folder is empty";
        for (const QString& line : similar.lines())
            lines_ << head + line;
    }

    const ExpectedFile& expected_;
    StopWatch watch_;
    QStringList lines_;
    int entries_ = 0;
    bool cutShort_ = false;
};

} // namespace

QStringList similarFiles(const ExpectedFile& expected, const EventPump& clock) {
    return Look(expected, clock).lines();
}
