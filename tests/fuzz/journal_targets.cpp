// Journals, with the checksums that they have and with good ones.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/byte_reader.h"
#include "base/byte_views.h"
#include "fuzz/fuzz_target.h"
#include "run/document/qt_cortivo_doc.h"
#include "run/journal/journal_framing.h"
#include "run/journal/journal_scan.h"
#include "run/replay/journal_records.h"
#include "run/replay/operator_records.h"

#include <algorithm>

namespace {

JournalScanResult checkedScan(std::span<const uint8_t> bytes) {
    size_t payloadBytes = 0;
    JournalCursor cursor(bytes);
    JournalRecord record;
    while (cursor.next(record)) {
        payloadBytes += record.payload.size();
        ByteReader reader(record.payload);
        const size_t textBytes = reader.sizedBytes().size();
        require(textBytes <= record.payload.size(), "no text is longer than its record");
    }
    const JournalScanResult result = cursor.result();
    require(result.fileBytes == qint64(bytes.size()), "all of the file is counted");
    const size_t headers = size_t(result.nrOfRecords) * journalRecordHeaderBytes;
    const size_t good = result.goodBytes == 0 ? 0 : journalHeadBytes + headers + payloadBytes;
    require(result.goodBytes == qint64(good) && good <= bytes.size(), "good bytes are in records");
    require((result.end == JournalEnd::Whole) == (good == bytes.size() && good > 0),
            "a whole journal is good to its end");
    JournalCursor skimming(bytes);
    while (skimming.skim(record, 1)) {
    }
    require(skimming.goodBytes() >= result.goodBytes, "what can be read can be skimmed");
    return result;
}

/// Gives what looks like a record its checksum, as no fuzzer would find it.
void repairChecksums(std::span<uint8_t> bytes) {
    size_t position = journalHeadBytes;
    while (position + journalRecordHeaderBytes <= bytes.size()) {
        JournalRecordHeaderBytes header;
        std::ranges::copy(bytes.subspan(position, header.size()), header.begin());
        JournalRecordHeader parsed = parsedRecordHeader(header);
        const auto rest = bytes.subspan(position + header.size());
        if (parsed.length > rest.size())
            return;
        const auto payload = rest.first(size_t(parsed.length));
        parsed.checksum = checksumWith(checksumOfHeader(header), payload);
        const JournalRecordHeaderBytes repaired = encodedRecordHeader(parsed);
        std::ranges::copy(repaired, bytes.begin() + ptrdiff_t(position));
        position += header.size() + payload.size();
    }
}

bool journal(std::span<const uint8_t> bytes) {
    const JournalScanResult result = checkedScan(bytes);
    std::vector<uint8_t> repaired(bytes.begin(), bytes.end());
    repairChecksums(repaired);
    require(checkedScan(repaired).goodBytes >= result.goodBytes, "what was good stays so");
    if (result.goodBytes == 0)
        return false;
    const JournalScanResult kept = checkedScan(bytes.first(size_t(result.goodBytes)));
    require(kept.end == JournalEnd::Whole && kept.nrOfRecords == result.nrOfRecords,
            "cut after its good bytes a journal is whole");
    return true;
}

// The payloads of a run's journal, whatever kind they are said to be.
bool runRecords(std::span<const uint8_t> bytes) {
    RunHead head;
    const bool isHead = decodeHead(bytes, head);
    if (isHead) {
        RunHead again;
        require(decodeHead(encodeHead(head), again) &&
                    again.settings.content == head.settings.content &&
                    again.project.sliceTimes.size() == head.project.sliceTimes.size(),
                "a head is written as it was read");
    }
    VolumeArrival arrival;
    std::span<const uint8_t> samples;
    const bool isVolume = decodeVolume(bytes, arrival, samples);
    require(samples.size() <= bytes.size(), "samples are in their record");
    ListenerRecord record;
    const bool isListener = decodeListenerRecord(bytes, record);
    RunListeners listeners;
    OperatorRequests requests;
    QtCortivoDoc document(QtCortivoDoc::Kind::Functional);
    document.contrasts.NrOfContrasts = 1;
    document.contrasts.ContrastSelectionStates = {ContrastOff};
    document.contrasts.ContrastColors.resize(1);
    OperatorRecords operatorRecords(listeners, requests);
    operatorRecords.documentsArrived(document);
    listeners.play({"maps", byteArray(bytes)});
    listeners.play(record.record);
    require(document.contrasts.ContrastSelectionStates.size() == 1, "contrasts keep their number");
    return isHead || isVolume || isListener;
}

} // namespace

std::vector<FuzzTarget> journalTargets() {
    return {{"journal", journal}, {"run_records", runRecords}};
}
