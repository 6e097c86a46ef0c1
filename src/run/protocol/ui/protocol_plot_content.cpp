// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/protocol/ui/protocol_plot_content.h"

#include "dialogs/appearance.h"
#include "display/plots/plot_colors.h"
#include "display/plots/plot_ranges.h"

#include <algorithm>
#include <map>

namespace {

/// The axis of volumes, for times in the unit of a protocol.
struct VolumeAxis {
    int first;             ///< number of the first unit
    double volumesPerUnit; ///< 0 when it is not known

    /// Where a unit begins.
    [[nodiscard]] double begin(double time) const { return (time - first) * volumesPerUnit + 0.5; }
};

VolumeAxis volumeAxis(const StimulationProtocol& protocol, float TR) {
    if (protocol.resolutionOfTime == ResolutionOfTime::Volumes)
        return {1, 1.0};
    return {0, TR > 0 ? 1.0 / double(TR) : 0.0};
}

/// Index of the condition that holds at a time in the protocol's unit, the first if several do.
std::optional<size_t> conditionAt(const StimulationProtocol& protocol, int time) {
    for (size_t c = 0; c < protocol.conditions.size(); ++c) {
        const ProtocolCondition& condition = protocol.conditions[c];
        for (size_t i = 0; i < size_t(condition.nrOfIntervals); ++i)
            if (condition.from[i] <= time && time <= condition.to[i])
                return c;
    }
    return {};
}

PlotMarkShape shapeOf(const ProtocolCondition& responses, size_t event) {
    if (responses.omission[event] > 0)
        return PlotMarkShape::Cross;
    return responses.accuracy[event] == 0 ? PlotMarkShape::Circle : PlotMarkShape::Disc;
}

QString legendOf(const ProtocolCondition& condition, PlotMarkShape shape) {
    const QString name = condition.name.isEmpty() ? QString("Response") : condition.name;
    if (shape == PlotMarkShape::Disc)
        return name;
    return name + (shape == PlotMarkShape::Circle ? ", incorrect" : ", omission");
}

/// Collects the responses, those of one condition and shape together.
class ResponseMarks {
public:
    ResponseMarks(const StimulationProtocol& protocol, const VolumeAxis& axis, int lastVolume)
        : protocol_(protocol), axis_(axis), end_(lastVolume + 1.5) {}

    void add(size_t table) {
        const ProtocolCondition& responses = protocol_.responseConditions[table];
        for (size_t i = 0; i < size_t(responses.nrOfIntervals); ++i)
            addEvent(table, i);
    }
    [[nodiscard]] std::vector<PlotMarks> marks() && {
        std::vector<PlotMarks> all;
        for (auto& [key, marks] : marks_)
            all.push_back(std::move(marks));
        return all;
    }

private:
    void addEvent(size_t table, size_t event) {
        const ProtocolCondition& responses = protocol_.responseConditions[table];
        const int time = responses.from[event];
        const bool inVolumes = protocol_.resolutionOfTime == ResolutionOfTime::Volumes;
        const double x = axis_.begin(time + (inVolumes ? 0.5 : 0.0));
        const PlotMarkShape shape = shapeOf(responses, event);
        const int reaction = shape == PlotMarkShape::Cross ? 0 : responses.reactionTime[event];
        if (x >= end_ || reaction < 0)
            return;
        const std::optional<size_t> stimulus = conditionAt(protocol_, time);
        const ProtocolCondition& condition = stimulus ? protocol_.conditions[*stimulus] : responses;
        PlotMarks& marks =
            marks_[{stimulus.value_or(protocol_.conditions.size() + table), int(shape)}];
        marks.legend = legendOf(condition, shape);
        marks.color = toQColor(condition.color);
        marks.shape = shape;
        marks.points.emplace_back(x, reaction);
    }

    const StimulationProtocol& protocol_;
    const VolumeAxis axis_;
    const double end_; ///< on the axis, of the last volume
    std::map<std::pair<size_t, int>, PlotMarks> marks_;
};

/// From a little below 0, where the marks of omissions stand.
std::optional<PlotRange> reactionRange(const std::vector<PlotMarks>& all) {
    constexpr double margin = 0.05;
    double largest = 0.0;
    for (const PlotMarks& marks : all)
        for (const QPointF& point : marks.points)
            largest = std::max(largest, point.y());
    if (largest == 0.0)
        return {};
    const double top = roundedOut({0.0, largest * (1 + margin)}).to;
    return PlotRange{-margin * top, top};
}

} // namespace

std::vector<PlotBand> protocolBands(const StimulationProtocol& protocol, float TR) {
    std::vector<PlotBand> bands;
    const VolumeAxis axis = volumeAxis(protocol, TR);
    if (axis.volumesPerUnit == 0.0)
        return bands;
    for (const ProtocolCondition& condition : protocol.conditions)
        for (size_t i = 0; i < size_t(condition.nrOfIntervals); ++i)
            bands.push_back({axis.begin(condition.from[i]), axis.begin(condition.to[i] + 1.0),
                             toQColor(condition.color), condition.name});
    return bands;
}

PlotContent responseContent(const StimulationProtocol& protocol, float TR, int nrOfVolumes,
                            int lastVolume) {
    PlotContent content;
    content.xLabel = "Volume";
    content.yLabel = "Reaction time (ms)";
    content.xStart = 1.0;
    content.xRange = PlotRange{0.5, std::max(nrOfVolumes, 1) + 0.5};
    content.note = protocol.hasResponses ? "Waiting for the first response"
                                         : "The protocol of this run has no responses";
    const VolumeAxis axis = volumeAxis(protocol, TR);
    if (lastVolume < 0 || axis.volumesPerUnit == 0.0)
        return content;
    content.bands = protocolBands(protocol, TR);
    for (PlotBand& band : content.bands)
        band.name.clear(); // the marks have their legend
    ResponseMarks marks(protocol, axis, lastVolume);
    for (size_t table = 0; table < protocol.responseConditions.size(); ++table)
        marks.add(table);
    content.marks = std::move(marks).marks();
    content.yRange = reactionRange(content.marks);
    PlotLine current;
    current.at = lastVolume + 1.0;
    current.color = plotColors::quietText;
    content.lines.push_back(current);
    return content;
}
