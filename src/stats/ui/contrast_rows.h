// The contrasts of a run as rows of the list.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "stats/ui/map_rows.h"

#include <functional>

class ContrastRows : public MapRows {
public:
    /// `edited` is called after each change of selection or colours.
    explicit ContrastRows(std::function<void()> edited) : edited_(std::move(edited)) {}

    /// nullptr for no rows. Not owned: they must outlive this or the next call.
    void setContrasts(ContrastDefinitions* contrasts) { contrasts_ = contrasts; }

    [[nodiscard]] QString title() const override { return QStringLiteral("Contrast"); }
    [[nodiscard]] QString toolTip() const override;
    [[nodiscard]] std::vector<MapRow> rows() const override;
    void toggle(int index, ContrastState bit) override;
    void showAlone(int index) override;
    void switchAllOff() override;
    [[nodiscard]] bool colorsCanChange() const override { return true; }
    void setColor(int index, const RgbColor& color) override;
    [[nodiscard]] const ContrastDefinitions* statistic() const override { return contrasts_; }

private:
    std::function<void()> edited_;
    ContrastDefinitions* contrasts_ = nullptr;
};
