// What the list of contrasts and maps shows: rows with a name, two marks and a colour.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/contrasts.h"

#include <QString>
#include <optional>
#include <vector>

struct MapRow {
    QString name;
    int state = ContrastOff;       ///< ContrastState bits: the marks in both columns
    std::optional<RgbColor> color; ///< that it is painted with; none where it is not shown

    bool operator==(const MapRow&) const = default;
};

/// A source of rows. It carries out what the operator does with them, and tells whom it concerns;
/// the list shows them anew after each of these calls. An index is below the number of rows.
class MapRows {
public:
    MapRows() = default;
    virtual ~MapRows() = default;
    MapRows(const MapRows&) = delete;
    MapRows& operator=(const MapRows&) = delete;

    [[nodiscard]] virtual QString title() const = 0; ///< above the names
    [[nodiscard]] virtual QString toolTip() const = 0;
    [[nodiscard]] virtual std::vector<MapRow> rows() const = 0;
    /// How many there are beyond those rows.
    [[nodiscard]] virtual int nrOfUnlisted() const { return 0; }

    virtual void toggle(int index, ContrastState bit) = 0;
    virtual void showAlone(int index) = 0;
    virtual void switchAllOff() {}
    [[nodiscard]] virtual bool colorsCanChange() const { return false; }
    virtual void setColor(int index, const RgbColor& color) {
        static_cast<void>(index), static_cast<void>(color);
    }
    /// The contrasts whose statistic can be chosen; null for maps without one.
    [[nodiscard]] virtual const ContrastDefinitions* statistic() const { return nullptr; }
};
