// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/decoder_output.h"

#include "base/file_writing.h"
#include "base/messages.h"
#include "base/paths.h"
#include "decoder/decoder_files.h"

#include <QDir>

namespace {

void makeFolder(const DecoderPlace& place) {
    if (!place.folder.isEmpty())
        QDir().mkpath(place.folder);
}

} // namespace

QString DecoderPlace::logPath() const {
    return paths::join(folder, dataName.isEmpty()
                                   ? QStringLiteral("Auto-Decoded.txt")
                                   : QStringLiteral("_AUTODECODED_%1.txt").arg(dataName));
}

bool DecoderOutput::prepareLog(const DecoderPlace& place) {
    if (!place.isWritable)
        return true;
    makeFolder(place);
    if (appendToLog(place.logPath(), {}, false))
        return true;
    showModelessWarning(outputFileFault(place.logPath()));
    return false;
}

void DecoderOutput::appendLetter(const DecoderPlace& place, const QString& text) {
    const bool written = !place.isWritable || appendToLog(place.logPath(), text.toUtf8(), false);
    logFault_ = written ? QString() : QStringLiteral("Not written: \"%1\"").arg(place.logPath());
}

// The folder of a run is known when the run is prepared, at the latest.
void DecoderOutput::writeScaledWeights(const DecoderPlace& place, const TaskWeights& scaled) {
    if (place.folder.isEmpty() || !place.isWritable)
        return;
    makeFolder(place);
    const QString path = paths::join(place.folder, QStringLiteral("ScaledTaskVOIWeights.txt"));
    if (!writeFileAtomically(path, scaledWeightsText(scaled)))
        showModelessWarning(outputFileFault(path));
}

void DecoderOutput::beginDisplays(const QString& feedbackFolder) {
    displays_.begin(feedbackFolder, QStringLiteral("LetterDisplay"));
}

void DecoderOutput::writeWindow(const DecoderPlace& place, const QString& feedbackFolder,
                                const QImage& picture, int letter) {
    if (!place.isWritable)
        return;
    windows_.begin(feedbackFolder.isEmpty() ? place.folder : feedbackFolder,
                   place.dataName.isEmpty() ? QStringLiteral("BOLDDecoder")
                                            : QStringLiteral("BOLDDecoder-%1").arg(place.dataName));
    windows_.writePicture(picture, letter);
}

QString DecoderOutput::fault() const {
    for (const QString& fault : {logFault_, displays_.fault()})
        if (!fault.isEmpty())
            return fault;
    return windows_.fault();
}
