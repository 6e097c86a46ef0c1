// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/session/session_multi_run.h"

#include "base/messages.h"
#include "base/paths.h"

#include <QDir>

/// While files of a run are read for the plots. A box that is waited for would let auto-start
/// replace the document in the middle.
class SessionMultiRun::ModelessMessages {
public:
    explicit ModelessMessages(SessionMultiRun& owner) : owner_(owner) { ++owner_.readers_; }
    ~ModelessMessages() { --owner_.readers_; }
    ModelessMessages(const ModelessMessages&) = delete;
    ModelessMessages& operator=(const ModelessMessages&) = delete;

private:
    SessionMultiRun& owner_;
};

SessionMultiRun::SessionMultiRun(const Parts& parts) : parts_(parts) {
    // Before the plots, so that they find the curves, or none.
    parts_.listeners.add(*this, ListenerPlace::Regions);
}

void SessionMultiRun::takeSettings() {
    const int selected = project_.selectedMultiRun;
    const QStringList found = project_.mvcoFileNames;
    project_ = multiRunProjectOf(parts_.settings);
    project_.mvcoFileNames = found;
    project_.selectedMultiRun = selected < project_.nrOfMultiRunFiles ? selected : 0;
}

std::vector<MultiRunMenuRow> SessionMultiRun::menu() {
    using Kind = MultiRunMenuRow::Kind;
    std::vector<MultiRunMenuRow> rows;
    for (int i = 0; project_.multiRunProject && i < project_.nrOfMultiRunFiles; ++i) {
        const QString path = projectPathOf(project_, i);
        if (path.isEmpty()) {
            // Whichever it was, the first one is named.
            showWarning(
                QStringLiteral(" ERROR: Can not read vco file \"%1\" for multi-run analysis.")
                    .arg(project_.multiRunFiles.first()));
            return rows;
        }
        rows.push_back({Kind::Run, paths::fileName(path), i, i == project_.selectedMultiRun});
    }
    if (!project_.multiRunProject)
        rows.push_back({Kind::Note, "<Single-run analysis>"});
    rows.push_back({Kind::Separator, {}});
    project_.settingsFolder =
        paths::folderWithSlash(paths::withForwardSlashes(parts_.settings.settingsFilePath));
    project_.mvcoFileNames = QDir(project_.settingsFolder)
                                 .entryList({"*.mvco"}, QDir::Files | QDir::NoSymLinks, QDir::Name);
    for (int i = 0; i < project_.mvcoFileNames.size(); ++i)
        rows.push_back({Kind::ProjectFile, project_.mvcoFileNames[i], i});
    if (project_.mvcoFileNames.isEmpty())
        rows.push_back({Kind::Note, "<No *.mvco files in watch directory>"});
    return rows;
}

QString SessionMultiRun::projectFile(int index) const {
    return index >= 0 && index < project_.mvcoFileNames.size()
               ? paths::join(project_.settingsFolder, project_.mvcoFileNames[index])
               : QString();
}

void SessionMultiRun::select(int index) {
    if (!project_.multiRunProject || index < 0 || index >= project_.nrOfMultiRunFiles)
        return;
    project_.selectedMultiRun = index;
    if (!showsProject() || document_->regions.count() <= plotsWithChoice)
        return;
    for (int region = plotsWithChoice; region < document_->regions.count(); ++region)
        renewCurve(region);
    parts_.listeners.regionsChanged(*document_);
}

bool SessionMultiRun::showsProject() const {
    return document_ && document_->multiRunDocument && project_.multiRunProject &&
           parts_.report.runFinished;
}

int SessionMultiRun::indexOfValue(int value) const {
    return project_.nrOfMultiRunFiles - value - 1;
}

int SessionMultiRun::indexOfRegion(int region) const {
    return region < plotsWithChoice ? indexOfValue(values_[size_t(region)])
                                    : project_.selectedMultiRun;
}

void SessionMultiRun::showRun(int plot, int value) {
    if (plot < 0 || plot >= plotsWithChoice || !showsProject())
        return;
    if (value == -1)
        value = project_.nrOfMultiRunFiles - 1;
    else if (value == project_.nrOfMultiRunFiles)
        value = 0;
    const int index = indexOfValue(value);
    const ModelessMessages modeless(*this);
    if (index >= 0 && index < project_.nrOfMultiRunFiles && plot < document_->regions.count()) {
        // Read anew, as its files are now.
        PlottedRun run;
        if (loadPlottedRun(run, project_, index, analysis_.conditions, document_->design)) {
            runs_[index] = std::move(run);
            values_[size_t(plot)] = value;
            renewCurve(plot);
        }
    }
    parts_.listeners.regionsChanged(*document_);
}

std::optional<PlottedRunChoice> SessionMultiRun::choice(int plot) const {
    if (!showsProject() || plot < 0 || plot >= plotsWithChoice ||
        plot >= document_->regions.count())
        return {};
    const PlottedRun* run = runOfRegion(plot);
    return PlottedRunChoice{run ? paths::fileName(run->study.studyFile) : QString(),
                            values_[size_t(plot)], project_.nrOfMultiRunFiles};
}

const PlottedRun* SessionMultiRun::runOfRegion(int region) const {
    if (!showsProject())
        return nullptr;
    const auto found = runs_.find(indexOfRegion(region));
    return found == runs_.end() ? nullptr : &found->second;
}

void SessionMultiRun::settingsFileChanged() {
    project_ = MultiRunProject{};
    analysis_ = MultiRunAnalysis{};
    values_ = {};
    runs_.clear();
}

void SessionMultiRun::documentsLeaving() {
    document_ = nullptr;
    values_ = {};
    runs_.clear();
}

PlottedRun* SessionMultiRun::loaded(int index) {
    const auto found = runs_.find(index);
    if (found != runs_.end())
        return &found->second;
    PlottedRun run;
    if (!loadPlottedRun(run, project_, index, analysis_.conditions, document_->design))
        return nullptr;
    return &(runs_[index] = std::move(run));
}

// A region whose run can't be read is left without values, and not tried again until the operator
// chooses a run.
void SessionMultiRun::renewCurve(int region) {
    const ModelessMessages modeless(*this);
    RegionOfInterest& renewed = document_->regions[region];
    forgetCurve(renewed); // also where the run can't be read
    if (const PlottedRun* run = loaded(indexOfRegion(region)))
        (void)loadCurve(renewed, *run, document_->project.size(),
                        parts_.requests.regions.BestVoxelSelection);
}

// New regions have room for a curve and no value in it yet; those whose run could not be read have
// no room either.
void SessionMultiRun::regionsChanged(QtCortivoDoc& functional) {
    if (!showsProject())
        return;
    for (int i = 0; i < functional.regions.count(); ++i)
        if (functional.regions[i].CurrentTimePoint < 0 && functional.regions[i].NrOfValues() > 0)
            renewCurve(i);
}
