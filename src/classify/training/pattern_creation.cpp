// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/training/pattern_creation.h"

#include "base/paths.h"

#include <algorithm>

namespace {

bool holdsClasses(const TrialMaps& maps, const QStringList& classes) {
    const std::vector<TrialClass> held = classesOfMaps(maps.names);
    return std::all_of(classes.begin(), classes.end(), [&](const QString& name) {
        return std::any_of(held.begin(), held.end(),
                           [&](const TrialClass& trials) { return trials.name == name; });
    });
}

PatternEnd faultOf(const TrialMaps& maps, const PatternPlan& plan) {
    if (!(maps.size == plan.size))
        return PatternEnd::OtherSize;
    return holdsClasses(maps, plan.classes) ? PatternEnd::Done : PatternEnd::ClassMissing;
}

double labelOf(const PatternPlan& plan, qsizetype classIndex) {
    if (plan.multiClass)
        return double(classIndex + 1);
    return classIndex == 0 ? 1.0 : -1.0;
}

PatternEnd appendTrials(const TrialMaps& maps, int run, const PatternPlan& plan,
                        MadePatterns& made) {
    std::vector<double> features(plan.voxels.size());
    for (int map = 0; map < maps.count(); ++map) {
        const qsizetype index = plan.classes.indexOf(conditionOfMap(maps.names[map]).value_or(""));
        if (index < 0 && plan.multiClass)
            return PatternEnd::UnknownClass;
        if (index < 0)
            continue;
        const std::span<const float> values = maps.map(map);
        for (size_t i = 0; i < features.size(); ++i)
            features[i] = double(values[plan.voxels.offset(i, maps.size)]);
        made.patterns.append(labelOf(plan, index), features);
        made.patterns.runs.push_back(run);
        ++made.counts[size_t(index)];
    }
    return PatternEnd::Done;
}

PatternEnd addFile(int run, const PatternPlan& plan, MadePatterns& made) {
    TrialMaps maps;
    if (!readTrialMaps(made.file, maps))
        return PatternEnd::MessageShown;
    const PatternEnd fault = faultOf(maps, plan); // the file may have changed
    return fault == PatternEnd::Done ? appendTrials(maps, run, plan, made) : fault;
}

MadePatterns emptyPatterns(const PatternPlan& plan) {
    MadePatterns made;
    made.patterns.nrOfFeatures = int(plan.voxels.size());
    made.counts.assign(size_t(plan.classes.size()), 0);
    return made;
}

} // namespace

MadePatterns checkTrialFiles(const PatternPlan& plan) {
    MadePatterns made = emptyPatterns(plan);
    size_t exemplars = 0;
    for (const QString& file : plan.trialFiles) {
        TrialMaps maps;
        made.file = file;
        made.end = readTrialMapNames(file, maps) ? faultOf(maps, plan) : PatternEnd::MessageShown;
        if (made.end != PatternEnd::Done)
            return made;
        exemplars += size_t(maps.count());
    }
    // Twice, since a growing vector is copied.
    if (!memoryIsAvailable(exemplars, 2 * sizeof(double) * plan.voxels.size()))
        made.end = PatternEnd::OutOfMemory;
    return made;
}

MadePatterns makePatterns(const PatternPlan& plan, ProgressReporter& progress) {
    MadePatterns made = emptyPatterns(plan);
    const int count = int(plan.trialFiles.size());
    for (int run = 0; run < count && made.end == PatternEnd::Done; ++run) {
        made.file = plan.trialFiles[run];
        made.end = StepProgress(progress).advance(run, count) ? addFile(run, plan, made)
                                                              : PatternEnd::Stopped;
    }
    return made;
}

QString patternFault(const MadePatterns& made) {
    const QString file = paths::fileName(made.file);
    switch (made.end) {
    case PatternEnd::Done:
    case PatternEnd::Stopped:
    case PatternEnd::MessageShown:
        return {};
    case PatternEnd::ClassMissing:
        return QStringLiteral("FMP file \"%1\" does not contain selected conditions!\n\nCan not "
                              "continue!")
            .arg(file);
    case PatternEnd::OtherSize:
        return QStringLiteral("The maps of \"%1\" have another size than the run that the region "
                              "belongs to.\n\nLoad a run of the same size, or other trial files.")
            .arg(file);
    case PatternEnd::UnknownClass:
        return "Class id out of range!\n\nVelo-Cortivo needs to close...";
    case PatternEnd::OutOfMemory:
        return "Insufficient memory!\n\nUse a smaller region, or fewer trial files.";
    }
    return {};
}

QString patternFileName(bool training, const QString& region, const QStringList& classes,
                        const std::vector<int>& counts) {
    QStringList numbers;
    for (const int count : counts)
        numbers << QString::number(count);
    return QStringLiteral("%1_%2_%3_%4.mvp")
        .arg(training ? "Train" : "Test", QString(region).replace('-', '_'),
             classes.join('-').replace('/', '_'), numbers.join('-'));
}

QString regionText(int region) {
    return QStringLiteral("ROI %1").arg(region + 1);
}
