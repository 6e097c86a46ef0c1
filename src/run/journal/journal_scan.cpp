// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/journal/journal_scan.h"

#include "base/plain_file.h"
#include "run/journal/journal_framing.h"

class JournalSource {
public:
    virtual ~JournalSource() = default;
    /// -1 when there is nothing to read from.
    [[nodiscard]] virtual qint64 size() const = 0;
    /// The next bytes, as many as `bytes` holds; false when there are fewer or reading fails.
    [[nodiscard]] virtual bool read(std::span<uint8_t> bytes) = 0;
    /// Passes over bytes; false when there are fewer.
    [[nodiscard]] virtual bool skip(size_t count) = 0;
};

namespace {

class FileSource : public JournalSource {
public:
    explicit FileSource(const QString& path) : file_(path) {
        if (openPlainFile(file_, QIODevice::ReadOnly | QIODevice::Unbuffered))
            size_ = file_.size();
    }
    qint64 size() const override { return size_; }
    bool read(std::span<uint8_t> bytes) override {
        return file_.read(reinterpret_cast<char*>(bytes.data()), qint64(bytes.size())) ==
               qint64(bytes.size());
    }
    bool skip(size_t count) override {
        return count == 0 || file_.seek(file_.pos() + qint64(count));
    }

private:
    QFile file_;
    qint64 size_ = -1; ///< when it was opened: a journal that still grows is read up to there
};

class MemorySource : public JournalSource {
public:
    explicit MemorySource(std::span<const uint8_t> bytes) : bytes_(bytes), rest_(bytes) {}
    qint64 size() const override { return qint64(bytes_.size()); }
    bool read(std::span<uint8_t> bytes) override {
        if (bytes.size() > rest_.size())
            return false;
        std::ranges::copy(rest_.first(bytes.size()), bytes.begin());
        return skip(bytes.size());
    }
    bool skip(size_t count) override {
        if (count > rest_.size())
            return false;
        rest_ = rest_.subspan(count);
        return true;
    }

private:
    std::span<const uint8_t> bytes_;
    std::span<const uint8_t> rest_;
};

} // namespace

JournalCursor::JournalCursor(const QString& path) : source_(std::make_unique<FileSource>(path)) {
    readHead();
}

JournalCursor::JournalCursor(std::span<const uint8_t> bytes)
    : source_(std::make_unique<MemorySource>(bytes)) {
    readHead();
}

JournalCursor::~JournalCursor() = default;

void JournalCursor::readHead() {
    ended_ = true;
    result_.end = JournalEnd::Unreadable;
    if (source_->size() < 0)
        return;
    result_.fileBytes = source_->size();
    JournalHead bytes{};
    const std::span<uint8_t> present =
        std::span(bytes).first(size_t(std::min(result_.fileBytes, qint64(bytes.size()))));
    if (!source_->read(present))
        return;
    switch (checkJournalHead(present)) {
    case JournalHeadState::Good:
        result_.end = JournalEnd::Whole;
        result_.goodBytes = journalHeadBytes;
        ended_ = false;
        break;
    case JournalHeadState::CutOff:
        result_.end = JournalEnd::CutOff;
        break;
    case JournalHeadState::Foreign:
        result_.end = JournalEnd::NotAJournal;
        break;
    }
}

bool JournalCursor::next(JournalRecord& record) {
    return advance(record, {});
}

bool JournalCursor::skim(JournalRecord& record, size_t payloadBytes) {
    return advance(record, payloadBytes);
}

bool JournalCursor::advance(JournalRecord& record, SkimmedBytes skimmedBytes) {
    if (ended_)
        return false;
    ended_ = result_.goodBytes == result_.fileBytes;
    if (ended_)
        return false;
    result_.end = readRecord(record, skimmedBytes);
    ended_ = result_.end != JournalEnd::Whole;
    return !ended_;
}

JournalEnd JournalCursor::readRecord(JournalRecord& record, SkimmedBytes skimmedBytes) {
    const auto rest = uint64_t(result_.fileBytes - result_.goodBytes);
    JournalRecordHeaderBytes bytes{};
    const std::span<uint8_t> present =
        std::span(bytes).first(size_t(std::min(rest, uint64_t(bytes.size()))));
    if (!source_->read(present))
        return JournalEnd::Unreadable;
    if (!beginsLikeRecord(present))
        return JournalEnd::Damaged;
    const JournalRecordHeader header = parsedRecordHeader(bytes);
    if (present.size() < bytes.size() || header.length > rest - bytes.size())
        return JournalEnd::CutOff;
    const size_t length = std::min(size_t(header.length), skimmedBytes.value_or(SIZE_MAX));
    if (length > payload_.size() && !payload_.allocate(length))
        return JournalEnd::Unreadable;
    const std::span<uint8_t> payload = payload_.span().first(length);
    if (!source_->read(payload) || !source_->skip(size_t(header.length) - length))
        return JournalEnd::Unreadable;
    if (!skimmedBytes && checksumWith(checksumOfHeader(bytes), payload) != header.checksum)
        return JournalEnd::Damaged;
    record = {header.kind, payload};
    result_.goodBytes += qint64(bytes.size() + header.length);
    ++result_.nrOfRecords;
    return JournalEnd::Whole;
}
