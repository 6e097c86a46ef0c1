// The maps of a plug-in as rows of the list.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/ui/map_rows.h"

class RunSession;

class PluginMapRows : public MapRows {
public:
    /// Of any number of maps only the first ones are listed.
    static constexpr int mostRows = 1000;

    explicit PluginMapRows(RunSession& session) : session_(session) {}

    [[nodiscard]] QString title() const override { return QStringLiteral("Map"); }
    [[nodiscard]] QString toolTip() const override;
    [[nodiscard]] std::vector<MapRow> rows() const override;
    [[nodiscard]] int nrOfUnlisted() const override;
    void toggle(int index, ContrastState bit) override;
    void showAlone(int index) override;

private:
    RunSession& session_;
};
