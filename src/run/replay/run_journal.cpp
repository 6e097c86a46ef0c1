// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/replay/run_journal.h"

#include "base/messages.h"
#include "base/paths.h"
#include "run/loop/run_protocol.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace {

constexpr int mostNames = 100;

RunHead headOf(const RunParts& run, const RunInputs& inputs) {
    QtCortivoDoc& document = run.document;
    RunHead head;
    head.startedAt = QDateTime::currentMSecsSinceEpoch();
    head.programVersion = VELO_VERSION;
    head.settings = inputs.settings;
    if (const GrowingTextFile* lines = arrivingLines(document)) {
        const QString& tdat = document.protocol.tdatPath;
        const QString& path =
            isProtocolPathSet(tdat) ? tdat : document.protocol.realTimeProtocolPath;
        // A name alone means the current folder, which is another one when the run goes on.
        head.protocol = {QFileInfo(path).absoluteFilePath(), lines->head(false)};
        head.protocolHeadBytes = lines->skippedBytes();
    } else {
        head.protocol = inputs.protocol;
    }
    head.contrasts = inputs.contrasts;
    head.projectName = run.settings.ProjectName;
    head.targetFolder = document.project.targetFolder;
    head.watchFolder = run.intake.watchFolder;
    head.project = document.project;
    return head;
}

/// A path that nothing has, in a folder; empty when the name and its numbers are all taken.
QString freeJournalPath(const QString& folder, const QString& name) {
    for (int number = 1; number <= mostNames; ++number) {
        const QString unique = number == 1 ? name : name + '-' + QString::number(number);
        const QString path = QDir(folder).absoluteFilePath(unique + journalExtension);
        if (!QFile::exists(path))
            return path;
    }
    return {};
}

} // namespace

void RunJournal::setPlaces(const QString& fallbackFolder, const JournalList& list) {
    fallbackFolder_ = fallbackFolder;
    list_ = list;
}

void RunJournal::createFile(const RunParts& run, const RunInputs& inputs) {
    const QString& targetFolder = run.document.project.targetFolder;
    const QString& projectName = run.settings.ProjectName;
    const QString name = paths::withoutExtension(paths::fileName(projectName)) + '-' +
                         QDateTime::currentDateTime().toString("yyyyMMdd-hhmmss");
    for (const QString& folder : {targetFolder, fallbackFolder_}) {
        if (folder.isEmpty())
            continue;
        path_ = freeJournalPath(folder, name);
        if (!path_.isEmpty())
            start(createOutput(path_), true);
        if (!writer_)
            continue; // what has the name, if anything, is not ours
        if (writeBeginning(run, inputs))
            return;
        end(JournalEnding::Removed); // a full disk takes an empty file
    }
    path_.clear();
}

bool RunJournal::writeBeginning(const RunParts& run, const RunInputs& inputs) {
    add(RecordKind::Head, encodeHead(headOf(run, inputs)));
    addSamples(RecordKind::FirstVolume, run.document.project.firstVolume.span());
    // One that volume 0 gives is made from the volumes again.
    if (run.settings.MotionCorrection && run.settings.IntraSessionMotionCorrection)
        addSamples(RecordKind::MotionTarget, run.document.motion.motionTarget.span());
    return holdsRun();
}

void RunJournal::start(std::unique_ptr<JournalOutput> output, bool isNew) {
    faultTold_ = false;
    if (output)
        writer_ = std::make_unique<JournalWriter>(std::move(output), isNew);
}

void RunJournal::begin(const RunParts& run, const RunInputs& inputs) {
    end(JournalEnding::Unfinished);
    const FMRProject& project = run.document.project;
    volume_ = -1;
    moment_ = RecordMoment::Waiting;
    createFile(run, inputs);
    if (!writer_)
        return showModelessWarning(
            QStringLiteral("WARNING: No journal of this run can be written in folder \"%1\". The "
                           "run goes on without: until it is saved, its data are in memory only.")
                .arg(project.targetFolder));
    list_.add(path_);
    if (QFileInfo(paths::folderWithSlash(path_)) != QFileInfo(project.targetFolder))
        showModelessWarning(QStringLiteral("WARNING: The journal of this run can not be written in "
                                           "folder \"%1\". It is in folder \"%2\".")
                                .arg(project.targetFolder, fallbackFolder_));
}

void RunJournal::goOn(const QString& path, qint64 wholeBytes, int latestVolume) {
    continueFile(path, wholeBytes, latestVolume);
    if (!writer_)
        tellOfNoContinuation(path);
}

void RunJournal::goOnInCopy(const QString& path, qint64 wholeBytes, int latestVolume) {
    const QString copy = freeJournalPath(
        paths::folderWithSlash(path), paths::withoutExtension(paths::fileName(path)) + "-goes-on");
    // What has the name by now, if anything, is not ours.
    if (!copy.isEmpty() && QFile::copy(path, copy))
        continueFile(copy, wholeBytes, latestVolume);
    if (!writer_)
        return tellOfNoContinuation(path);
    list_.remove(path);
}

void RunJournal::continueFile(const QString& path, qint64 wholeBytes, int latestVolume) {
    path_ = path;
    volume_ = latestVolume;
    moment_ = RecordMoment::Waiting;
    start(continueJournalFile(path, wholeBytes), false);
    clock_.restart();
    if (writer_) // the file may have been opened from elsewhere, and the program may end once more
        list_.add(path_);
    else
        path_.clear(); // it is not ours to remove
}

void RunJournal::tellOfNoContinuation(const QString& path) {
    showModelessWarning(
        QStringLiteral("WARNING: The journal \"%1\" can not be continued. The run "
                       "goes on without: until it is saved, the data of new volumes "
                       "are in memory only.")
            .arg(path));
}

bool RunJournal::holdsRun() {
    return writer_ && writer_->finish() && writer_->fault() == JournalFault::None &&
           QFile::exists(path_);
}

void RunJournal::end(JournalEnding ending) {
    if (path_.isEmpty())
        return;
    if (ending == JournalEnding::Kept)
        add(RecordKind::Saved, {});
    if (writer_ && ending == JournalEnding::Removed)
        writer_->abandon();
    writer_.reset();
    if (ending == JournalEnding::Removed)
        QFile::remove(path_);
    if (ending != JournalEnding::Unfinished)
        list_.remove(path_);
    path_.clear();
}

void RunJournal::endPlayed(const QString& path, qint64 wholeBytes, JournalEnding ending) {
    if (journalIsInUse(path))
        return;
    path_ = path;
    if (ending == JournalEnding::Kept)
        start(continueJournalFile(path, wholeBytes), false);
    end(ending);
}

void RunJournal::add(RecordKind kind, std::span<const uint8_t> content,
                     std::span<const uint8_t> samples) {
    if (writer_)
        writer_->add(uint32_t(kind), {content, samples});
    tellOfFault();
}

void RunJournal::addSamples(RecordKind kind, std::span<const int16_t> samples) {
    add(kind, {}, sampleBytes(samples, swapped_));
}

void RunJournal::tellOfFault() {
    if (!writer_ || faultTold_ || writer_->fault() == JournalFault::None)
        return;
    faultTold_ = true;
    const QString reason = writer_->fault() == JournalFault::QueueFull
                               ? QStringLiteral("the disk is too slow")
                               : QStringLiteral("writing failed; the disk may be full, or gone");
    showModelessWarning(QStringLiteral("WARNING: The journal \"%1\" of this run ends here: %2. The "
                                       "run goes on without: until it is saved, the data of "
                                       "further volumes are in memory only.")
                            .arg(path_, reason));
}

bool RunJournal::beforeVolume(const VolumeAtHand& hand) {
    moment_ = RecordMoment::BeforeRegions;
    // The latest volume of a journal that is continued is in it already.
    if (!writer_ || hand.volume <= volume_)
        return true;
    if (volume_ < 0)
        clock_.restart();
    volume_ = hand.volume;
    const FMRProject& project = hand.document.project;
    add(RecordKind::MeasuredVolume,
        encodeArrival({hand.volume, QDateTime::currentMSecsSinceEpoch(), clock_.elapsed()}),
        sampleBytes(project.volumes[size_t(hand.volume)], swapped_));
    return true;
}

bool RunJournal::atStep(VolumeStep step, const VolumeAtHand&) {
    if (step == VolumeStep::RegionTimeCourses)
        moment_ = RecordMoment::BeforeModel;
    if (step == VolumeStep::AfterModel)
        moment_ = RecordMoment::AfterModel;
    return true;
}

void RunJournal::endOfVolume(const VolumeAtHand&) {
    moment_ = RecordMoment::Waiting;
    tellOfFault();
}

void RunJournal::loopEnded(QtCortivoDoc&) {
    add(RecordKind::LoopEnded, {});
}

void RunJournal::recordMade(const RunRecord& record) {
    if (writer_)
        add(RecordKind::Listener, encodeListenerRecord({moment_, record}));
}
