// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/ui/contrast_rows.h"

QString ContrastRows::toolTip() const {
    return "Contrasts of the run. Click + to show positive values, \u2212 to show negative "
           "ones (at most four contrasts at once), and the colour to choose another. The keys +, "
           "\u2212 and C do the same for the current contrast. A double click on a name shows this "
           "contrast alone. The right button or the Menu key offers t and F maps";
}

std::vector<MapRow> ContrastRows::rows() const {
    std::vector<MapRow> rows;
    for (int index = 0; contrasts_ && index < contrasts_->NrOfContrasts; ++index)
        rows.push_back({contrasts_->ContrastNames.value(index),
                        contrasts_->ContrastSelectionStates[size_t(index)],
                        contrasts_->ContrastColors[size_t(index)]});
    return rows;
}

void ContrastRows::toggle(int index, ContrastState bit) {
    if (toggleContrast(*contrasts_, index, bit))
        edited_();
}

void ContrastRows::showAlone(int index) {
    if (selectContrastAlone(*contrasts_, index))
        edited_();
}

void ContrastRows::switchAllOff() {
    if (!contrasts_)
        return;
    switchContrastsOff(*contrasts_);
    edited_();
}

void ContrastRows::setColor(int index, const RgbColor& color) {
    contrasts_->ContrastColors[size_t(index)] = color;
    edited_();
}
