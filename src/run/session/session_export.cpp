// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/session_export.h"

#include "base/messages.h"
#include "base/paths.h"
#include "run/loop/results_export.h"
#include "run/loop/status_text.h"
#include "run/session/run_session.h"

namespace {

/// Volumes that a project of several runs reports are not in its memory.
int volumesInMemory(const RunSession& session) {
    const QtCortivoDoc& document = *session.functionalDocument;
    return document.multiRunDocument ? 0 : recordedVolumes(session.report, document.project);
}

QString hindranceOfData(const RunSession& session) {
    return session.functionalDocument
               ? exportHindrance(*session.functionalDocument, volumesInMemory(session))
               : QStringLiteral("There is no run in memory");
}

} // namespace

SessionExport::SessionExport(RunSession& session) : session_(session) {
    session_.listeners.add(*this, ListenerPlace::Regions);
}

QString SessionExport::hindrance() const {
    if (!session_.phase.isIdle())
        return QStringLiteral("Not while a run is measured or worked on");
    return hindranceOfData(session_);
}

void SessionExport::chooseFileAndExport() {
    if (!hindrance().isEmpty())
        return;
    const FMRProject& project = session_.functionalDocument->project;
    const QString name = paths::withoutExtension(paths::fileName(project.projectPath)) + ".nii.gz";
    chooseFileToSave(
        "Export As NIfTI", paths::join(project.targetFolder, name), "NIfTI files (*.nii.gz *.nii)",
        [this](const QString& path) { static_cast<void>(exportAsNifti(path)); }, &chooser_);
}

bool SessionExport::exportAsNifti(const QString& path) {
    QString error;
    const bool done = session_.analyse(" Exporting Run... ", [&](ProgressReporter& progress) {
        return hindranceOfData(session_).isEmpty() &&
               exportResults(*session_.functionalDocument, volumesInMemory(session_), path,
                             progress, error);
    });
    if (!error.isEmpty())
        showWarning("ERROR: " + error);
    if (done)
        session_.report.outcomeText =
            exportedText(session_.requests.logFontSize, paths::fileName(path));
    return done;
}
