// SPDX-License-Identifier: GPL-3.0-or-later
#include "stats/ui/contrast_list.h"

#include "dialogs/appearance.h"

#include <QActionGroup>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>

namespace {

constexpr QSize colorIconSize(20, 16);

QIcon stateIcon(const QString& path) {
    QIcon icon(path);
    icon.addFile(path, {}, QIcon::Selected);
    return icon;
}

} // namespace

ContrastList::ContrastList(QWidget* parent)
    : QTreeWidget(parent), off_(stateIcon(":/images/contrast_off.png")),
      on_(stateIcon(":/images/contrast_on.png")), menu_(new QMenu(this)) {
    setObjectName("ContrastList");
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
    setToolTip(
        "Contrasts of the run. Click + to show positive values, \u2212 to show negative "
        "ones (at most four contrasts at once), and the colour to choose another. The keys +, "
        "\u2212 and C do the same for the current contrast. A double click on a name shows this "
        "contrast alone. The right button or the Menu key offers t and F maps");
    connect(this, &QTreeWidget::itemClicked, this, &ContrastList::slotClickedContrastList);
    connect(this, &QTreeWidget::itemDoubleClicked, this,
            &ContrastList::slotDoubleClickedContrastList);
    makeMenu();
}

void ContrastList::makeMenu() {
    menu_->setObjectName("ContrastStatisticMenu");
    menu_->setToolTipsVisible(true);
    addStatistic("&t Maps", "ShowTMaps", ShownStatistic::T);
    addStatistic("&F of This Contrast", "ShowFOfContrast", ShownStatistic::FOfContrast);
    addStatistic("F of &All Selected Contrasts", "ShowFOfSelected", ShownStatistic::FOfSelected);
    menu_->addSeparator();
    oneSided_ = menu_->addAction("&One-Sided (Betas Agree With Weights)");
    oneSided_->setObjectName("OneSidedTesting");
    oneSided_->setCheckable(true);
    connect(oneSided_, &QAction::triggered, this, &ContrastList::oneSidedTestingChosen);
}

void ContrastList::addStatistic(const QString& text, const char* name, ShownStatistic statistic) {
    auto* group = menu_->findChild<QActionGroup*>();
    if (!group)
        group = new QActionGroup(menu_);
    QAction* action = menu_->addAction(text);
    action->setObjectName(name);
    action->setCheckable(true);
    action->setData(int(statistic));
    group->addAction(action);
    connect(action, &QAction::triggered, this,
            [this, statistic] { Q_EMIT statisticChosen(statistic, menuContrast_); });
}

void ContrastList::setStatisticCanChange(bool can) {
    statisticCanChange_ = can;
}

void ContrastList::refreshMenu() {
    static const QHash<QString, QString> toolTips = {
        {"ShowTMaps", "The t value of each selected contrast"},
        {"ShowFOfContrast", "Shows this contrast alone: how much its conditions explain together, "
                            "whatever the sign of each"},
        {"ShowFOfSelected", "One map: how much all selected contrasts explain together"},
        {"OneSidedTesting", "Show only voxels in which the beta of each condition has the sign of "
                            "its weight"}};
    for (QAction* action : menu_->actions()) {
        action->setEnabled(statisticCanChange_);
        action->setToolTip(statisticCanChange_
                               ? toolTips.value(action->objectName())
                               : "Needs the model of a complete run; while a run is measured, its "
                                 "maps are t maps");
        if (action->actionGroup())
            action->setChecked(action->data() == int(contrasts_->shownStatistic));
        else if (action == oneSided_)
            action->setChecked(contrasts_->oneSidedTesting);
        if (action->objectName() == "ShowFOfContrast" && menuContrast_ < 0)
            action->setEnabled(false);
    }
}

void ContrastList::contextMenuEvent(QContextMenuEvent* event) {
    if (!contrasts_)
        return;
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    QTreeWidgetItem* item = byKey ? currentItem() : itemAt(event->pos());
    menuContrast_ = item ? indexOfTopLevelItem(item) : -1;
    Q_EMIT statisticMenuOpening();
    refreshMenu();
    menu_->popup(byKey && item ? viewport()->mapToGlobal(visualItemRect(item).bottomLeft())
                               : event->globalPos());
}

void ContrastList::setContrasts(ContrastDefinitions* contrasts) {
    contrasts_ = contrasts;
    colorChooser_.close();
    menu_->close();
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
    const RgbColor& color = contrasts_->ContrastColors[size_t(index)];
    QIcon& sample = colors_[toQColor(color).rgb()];
    if (sample.isNull())
        sample = colorIcon(color, colorIconSize);
    item->setIcon(Positive, state & ContrastPositive ? on_ : off_);
    item->setIcon(Negative, state & ContrastNegative ? on_ : off_);
    item->setIcon(Color, sample);
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

void ContrastList::slotDoubleClickedContrastList(QTreeWidgetItem* item, int column) {
    const int index = indexOfTopLevelItem(item);
    if (!contrasts_ || column != Name || !selectContrastAlone(*contrasts_, index))
        return;
    showRows();
    Q_EMIT contrastsEdited();
}

void ContrastList::slotDeleteAllContrasts() {
    if (!contrasts_)
        return;
    switchContrastsOff(*contrasts_);
    showRows();
    Q_EMIT contrastsEdited();
}

void ContrastList::showRows() {
    if (!contrasts_)
        return;
    for (int index = 0; index < contrasts_->NrOfContrasts; ++index)
        showRow(index);
}

void ContrastList::keyPressEvent(QKeyEvent* event) {
    const int key = event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)
                        ? int(Qt::Key_unknown)
                        : event->key();
    if (key == Qt::Key_Plus)
        slotClickedContrastList(currentItem(), Positive);
    else if (key == Qt::Key_Minus)
        slotClickedContrastList(currentItem(), Negative);
    else if (key == Qt::Key_C)
        slotClickedContrastList(currentItem(), Color);
    else
        QTreeWidget::keyPressEvent(event);
}

void ContrastList::toggle(int index, ContrastState bit) {
    if (!toggleContrast(*contrasts_, index, bit))
        return;
    showRow(index);
    Q_EMIT contrastsEdited();
}

// The chooser is modeless, so that a run continues. It closes when the contrasts are removed.
void ContrastList::editColor(int index) {
    chooseColor(
        "Color of " + contrasts_->ContrastNames.value(index),
        contrasts_->ContrastColors[size_t(index)],
        [this, index](const RgbColor& chosen) {
            contrasts_->ContrastColors[size_t(index)] = chosen;
            showRow(index);
            Q_EMIT contrastsEdited();
        },
        colorChooser_);
}
