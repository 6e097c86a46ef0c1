// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/dry_run.h"
#include "feedback/feedback_baseline.h"

#include <algorithm>

namespace {

constexpr int mostListed = 4;

/// Volumes from first to last, from 0.
struct Stretch {
    int first = 0;
    int last = 0;
};

struct Block {
    Stretch volumes;
    int known = 0; ///< volume at which its baseline is found
    bool gives = false;
};

/// What the subject is given at a volume.
struct Given {
    bool live = false;
    bool suppressed = false;
    BaselineSource source = BaselineSource::None;
};

struct Forecast {
    const FeedbackChoices& choices;
    const StimulationProtocol& protocol;
    std::vector<Given> volumes;
    std::vector<Block> blocks;
    int first = -1;

    [[nodiscard]] int count() const { return int(volumes.size()); }
    [[nodiscard]] const Given& at(int volume) const { return volumes[size_t(volume)]; }
};

bool hasBaseline(const Given& given) {
    return given.live &&
           (given.source == BaselineSource::Block || given.source == BaselineSource::Model);
}

QString volumesText(const Stretch& stretch) {
    return stretch.first == stretch.last
               ? QString("volume %1").arg(stretch.first + 1)
               : QString("volumes %1 to %2").arg(stretch.first + 1).arg(stretch.last + 1);
}

QString conditionText(const Forecast& forecast, int condition) {
    const QString name = conditionName(forecast.protocol, condition);
    return name.isEmpty() ? QStringLiteral("the condition") : '"' + name + '"';
}

/// The stretches of volumes for which something holds.
template<typename Holds> std::vector<Stretch> stretchesWhere(int count, const Holds& holds) {
    std::vector<Stretch> stretches;
    for (int volume = 0; volume < count; ++volume) {
        if (!holds(volume))
            continue;
        if (stretches.empty() || stretches.back().last != volume - 1)
            stretches.push_back({volume, volume});
        stretches.back().last = volume;
    }
    return stretches;
}

void findBlocks(Forecast& forecast, const VolumeTables& tables) {
    const FeedbackChoices& choices = forecast.choices;
    for (const Stretch& stretch : stretchesWhere(forecast.count(), [&](int volume) {
             return tables.condition(volume) == choices.BaselineCondition;
         })) {
        const int known = stretch.last + 1 + choices.BaselineEndShift;
        if (stretch.last + 1 >= forecast.count()) // it never ends
            continue;
        const bool gives = known < forecast.count() && hasBaseline(forecast.at(known));
        forecast.blocks.push_back({stretch, known, gives});
    }
}

Forecast passedThrough(const FeedbackChoices& choices, const StimulationProtocol& protocol,
                       int nrOfVolumes, float TR) {
    FeedbackChoices shown = choices;
    shown.BlockOutput = false;
    FeedbackDryRun run(shown, protocol,
                       {.signal = MadeUpSignal::None, .nrOfVolumes = nrOfVolumes, .TR = TR});
    Forecast forecast{choices, protocol, {}, {}};
    for (int volume = 0; volume < run.nrOfVolumes(); ++volume) {
        run.goTo(volume);
        forecast.volumes.push_back(
            {run.values().live, !run.frame().levelsShown, run.values().source});
        const Given& given = forecast.volumes.back();
        const bool needsBaseline =
            !choices.UseSVMOutput && choices.type != FeedbackType::TimeCourse;
        const bool shows =
            needsBaseline ? hasBaseline(given) && !given.suppressed : run.values().live;
        if (forecast.first < 0 && shows)
            forecast.first = volume;
    }
    findBlocks(forecast, run.signalsNow().tables);
    return forecast;
}

/// Whether a block gives a baseline the levels have said; this only names the reason.
QString whyNoBaseline(const Block& block, int nrOfVolumes) {
    if (block.volumes.first < firstBaselineVolume)
        return "a block that starts within the first six volumes is never found";
    if (block.known < firstLiveVolume)
        return "it is over before the first feedback";
    if (block.known >= nrOfVolumes)
        return "the run ends first";
    return "fewer than 4 volumes are left of it after the shifts";
}

/// Blocks that give nothing before the first feedback, and the one that gives the first baseline.
QStringList firstBlocksText(const Forecast& forecast) {
    QStringList lines;
    for (const Block& block : forecast.blocks) {
        if (block.gives) {
            lines << QString("The first baseline is that of %1, known at volume %2.")
                         .arg(volumesText(block.volumes))
                         .arg(block.known + 1);
            break;
        }
        if (lines.size() < mostListed)
            lines << QString("No baseline from %1 (%2): %3.")
                         .arg(conditionText(forecast, forecast.choices.BaselineCondition),
                              volumesText(block.volumes), whyNoBaseline(block, forecast.count()));
    }
    if (forecast.blocks.empty())
        lines << QString("No block of %1 ends, so there is never a baseline.")
                     .arg(conditionText(forecast, forecast.choices.BaselineCondition));
    return lines;
}

/// Later blocks that take the baseline away again.
QStringList lostBaselinesText(const Forecast& forecast) {
    QStringList volumes;
    for (const Block& block : forecast.blocks)
        if (forecast.first >= 0 && block.known > forecast.first && block.known < forecast.count() &&
            !block.gives)
            volumes << QString::number(block.known + 1);
    if (volumes.isEmpty())
        return {};
    const bool more = volumes.size() > mostListed;
    return {QString("From volume %1%2 on the level is 0 until the next block ends: too few volumes "
                    "are left of the one before.")
                .arg(QStringList(volumes.mid(0, mostListed)).join(", "), more ? ", ..." : "")};
}

QStringList suppressionText(const Forecast& forecast) {
    QStringList parts;
    for (const Stretch& stretch : stretchesWhere(forecast.count(), [&](int volume) {
             return forecast.at(volume).live && forecast.at(volume).suppressed;
         }))
        parts << volumesText(stretch);
    if (parts.isEmpty())
        return {};
    const bool more = parts.size() > mostListed;
    return {QString("Nothing is shown because of %1: %2%3.")
                .arg(conditionText(forecast, forecast.choices.NoFbCondition),
                     QStringList(parts.mid(0, mostListed)).join(", "), more ? ", ..." : "")};
}

QStringList baselineText(const Forecast& forecast) {
    QStringList lines;
    const std::vector<Stretch> current = stretchesWhere(forecast.count(), [&](int volume) {
        return forecast.at(volume).live && forecast.at(volume).source == BaselineSource::Current;
    });
    if (!current.empty())
        lines << QString("Until a block has ended the baseline is the signal of one volume, the "
                         "latest one up to volume %1.")
                     .arg(firstBaselineVolume + forecast.choices.BaselineEndShift);
    if (forecast.choices.UseTCGLMB0ForBaseline) {
        const auto fitted =
            std::find_if(forecast.volumes.begin(), forecast.volumes.end(), hasBaseline);
        lines << (fitted != forecast.volumes.end()
                      ? QString("The regions' model gives the baseline from volume %1 on.")
                            .arg(fitted - forecast.volumes.begin() + 1)
                      : QString("The regions get no model, so there is no baseline."));
        return lines;
    }
    return lines + firstBlocksText(forecast) + lostBaselinesText(forecast);
}

QString firstLine(const Forecast& forecast) {
    if (forecast.first < 0)
        return "There is no feedback in this run.";
    if (forecast.choices.UseSVMOutput)
        return "The output of the classifier is shown from the first volume on.";
    const QString what = forecast.choices.type == FeedbackType::TimeCourse
                             ? "The curve is shown from volume %1 on."
                             : "Feedback from volume %1 on.";
    return what.arg(forecast.first + 1);
}

} // namespace

FeedbackForecast forecastFeedback(const FeedbackChoices& choices,
                                  const StimulationProtocol& protocol, int nrOfVolumes, float TR) {
    const Forecast forecast = passedThrough(choices, protocol, nrOfVolumes, TR);
    QStringList lines{firstLine(forecast)};
    if (!choices.UseSVMOutput) {
        lines << QString("The first %1 volumes never show any.").arg(firstLiveVolume);
        if (choices.type != FeedbackType::TimeCourse)
            lines << baselineText(forecast) << suppressionText(forecast);
    }
    if (choices.BlockOutput)
        lines << "No output to the subject is chosen: the boxes stay empty all the same.";
    std::vector<int> baselines;
    for (const Block& block : forecast.blocks)
        if (block.gives)
            baselines.push_back(block.known);
    return {forecast.first, std::move(baselines), lines.join('\n')};
}
