// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/contrast_list.h"

#include "run/window/message_boxes.h"

#include <QHeaderView>
#include <QPainter>

namespace {

constexpr QSize colorIconSize(20, 16);

QColor toQColor(const RgbColor& color) {
    const auto channel = [](int value) { return std::clamp(value, 0, 255); };
    return QColor(channel(color.red), channel(color.green), channel(color.blue));
}

QIcon colorIcon(const RgbColor& color) {
    QPixmap pixmap(colorIconSize);
    pixmap.fill(toQColor(color));
    QPainter painter(&pixmap);
    painter.setPen(QColor(160, 160, 160));
    painter.drawRect(0, 0, colorIconSize.width() - 1, colorIconSize.height() - 1);
    return QIcon(pixmap);
}

QIcon stateIcon(bool on) {
    return QIcon(on ? ":/images/contrast_on.png" : ":/images/contrast_off.png");
}

} // namespace

ContrastList::ContrastList(QWidget* parent)
    : QTreeWidget(parent),
      chooseColor([this](const QColor& initial) { return ::chooseColor(initial, window()); }) {
    setObjectName("ContrastList");
    setColumnCount(4);
    setHeaderLabels({"Contrast", "+", QString(QChar(0x2212)), QString()});
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setIconSize(colorIconSize);
    setTextElideMode(Qt::ElideMiddle);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setAllColumnsShowFocus(true);
    header()->setStretchLastSection(false);
    header()->setSectionsMovable(false);
    header()->setMinimumSectionSize(30);
    header()->setSectionResizeMode(Name, QHeaderView::Stretch);
    for (const int column : {Positive, Negative, Color}) {
        header()->setSectionResizeMode(column, QHeaderView::Fixed);
        header()->resizeSection(column, 32);
        headerItem()->setTextAlignment(column, Qt::AlignCenter);
    }
    setToolTip("Contrasts of the run. Click + to show positive values, \u2212 to show negative "
               "ones (at most four contrasts at once), and the colour to choose another");
    connect(this, &QTreeWidget::itemClicked, this, &ContrastList::slotClickedContrastList);
}

void ContrastList::setContrasts(ContrastDefinitions* contrasts) {
    contrasts_ = contrasts;
    ++generation_;
    clear();
    if (!contrasts_)
        return;
    for (int index = 0; index < contrasts_->NrOfContrasts; ++index) {
        auto* item = new QTreeWidgetItem(this);
        item->setText(Name, contrasts_->ContrastNames.value(index));
        item->setToolTip(Name, contrasts_->ContrastNames.value(index));
        showRow(index);
    }
}

void ContrastList::showRow(int index) {
    QTreeWidgetItem* item = topLevelItem(index);
    const int state = contrasts_->ContrastSelectionStates[size_t(index)];
    item->setIcon(Positive, stateIcon(state & ContrastPositive));
    item->setIcon(Negative, stateIcon(state & ContrastNegative));
    item->setIcon(Color, colorIcon(contrasts_->ContrastColors[size_t(index)]));
}

void ContrastList::slotClickedContrastList(QTreeWidgetItem* item, int column) {
    const int index = indexOfTopLevelItem(item);
    if (!contrasts_ || index < 0 || index >= contrasts_->NrOfContrasts)
        return;
    if (column == Positive)
        toggle(index, ContrastPositive);
    else if (column == Negative)
        toggle(index, ContrastNegative);
    else if (column == Color)
        editColor(index);
}

void ContrastList::toggle(int index, ContrastState bit) {
    if (!toggleContrast(*contrasts_, index, bit))
        return;
    showRow(index);
    Q_EMIT contrastsEdited();
}

void ContrastList::editColor(int index) {
    const int generation = generation_;
    const std::optional<QColor> chosen =
        chooseColor(toQColor(contrasts_->ContrastColors[size_t(index)]));
    if (!chosen || generation != generation_)
        return;
    contrasts_->ContrastColors[size_t(index)] =
        RgbColor{chosen->red(), chosen->green(), chosen->blue()};
    showRow(index);
    Q_EMIT contrastsEdited();
}
