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
    const ContrastDefinitions* contrasts = rows_->statistic();
    for (QAction* action : menu_->actions()) {
        action->setEnabled(statisticCanChange_);
        action->setToolTip(statisticCanChange_
                               ? toolTips.value(action->objectName())
                               : "Needs the model of a complete run; while a run is measured, its "
                                 "maps are t maps");
        if (action->actionGroup())
            action->setChecked(action->data() == int(contrasts->shownStatistic));
        else if (action == oneSided_)
            action->setChecked(contrasts->oneSidedTesting);
        if (action->objectName() == "ShowFOfContrast" && menuContrast_ < 0)
            action->setEnabled(false);
    }
}

void ContrastList::contextMenuEvent(QContextMenuEvent* event) {
    if (!rows_ || !rows_->statistic())
        return;
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    QTreeWidgetItem* item = byKey ? currentItem() : itemAt(event->pos());
    menuContrast_ = item ? indexOfTopLevelItem(item) : -1;
    Q_EMIT statisticMenuOpening();
    refreshMenu();
    menu_->popup(byKey && item ? viewport()->mapToGlobal(visualItemRect(item).bottomLeft())
                               : event->globalPos());
}

void ContrastList::setRows(MapRows* rows) {
    rows_ = rows;
    colorChooser_.close();
    menu_->close();
    clear();
    shown_.clear();
    nrOfUnlisted_ = 0;
    if (!rows_)
        return;
    headerItem()->setText(Name, rows_->title());
    setToolTip(wrappedToolTip(rows_->toolTip()));
    showRows();
}

// Only what differs: a plug-in may have its list shown anew at each volume.
void ContrastList::showRows() {
    if (!rows_)
        return;
    std::vector<MapRow> rows = rows_->rows();
    const bool sameItems = rows.size() == shown_.size() && rows_->nrOfUnlisted() == nrOfUnlisted_;
    shown_.swap(rows);
    if (!sameItems)
        makeItems(shown_.size());
    for (size_t index = 0; index < shown_.size(); ++index)
        if (!sameItems || shown_[index] != rows[index])
            showRow(index);
}

void ContrastList::makeItems(size_t nrOfRows) {
    clear();
    QList<QTreeWidgetItem*> items;
    for (size_t index = 0; index < nrOfRows; ++index)
        items << new QTreeWidgetItem;
    nrOfUnlisted_ = rows_->nrOfUnlisted();
    if (nrOfUnlisted_ > 0) {
        auto* more = new QTreeWidgetItem({QStringLiteral("\u2026 and %1 more").arg(nrOfUnlisted_)});
        more->setFlags(Qt::NoItemFlags);
        items << more;
    }
    addTopLevelItems(items);
}

void ContrastList::showRow(size_t index) {
    QTreeWidgetItem* item = topLevelItem(int(index));
    const MapRow& row = shown_[index];
    item->setText(Name, row.name);
    item->setToolTip(Name, "<p>" + row.name.toHtmlEscaped() + "</p>"); // not as HTML
    item->setIcon(Positive, row.state & ContrastPositive ? on_ : off_);
    item->setIcon(Negative, row.state & ContrastNegative ? on_ : off_);
    if (!row.color) {
        item->setIcon(Color, {});
        return;
    }
    QIcon& sample = colors_[toQColor(*row.color).rgb()];
    if (sample.isNull())
        sample = colorIcon(*row.color, colorIconSize);
    item->setIcon(Color, sample);
}

int ContrastList::indexOfRow(QTreeWidgetItem* item) const {
    const int index = indexOfTopLevelItem(item);
    return rows_ && size_t(index) < shown_.size() ? index : -1;
}

void ContrastList::slotClickedContrastList(QTreeWidgetItem* item, int column) {
    const int index = indexOfRow(item);
    if (index < 0)
        return;
    if (column == Color)
        return editColor(index);
    if (column != Positive && column != Negative)
        return;
    rows_->toggle(index, column == Positive ? ContrastPositive : ContrastNegative);
    showRows();
}

void ContrastList::slotDoubleClickedContrastList(QTreeWidgetItem* item, int column) {
    const int index = indexOfRow(item);
    if (index < 0 || column != Name)
        return;
    rows_->showAlone(index);
    showRows();
}

void ContrastList::slotDeleteAllContrasts() {
    if (!rows_)
        return;
    rows_->switchAllOff();
    showRows();
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

// The chooser is modeless, so that a run continues. It closes when the rows are removed.
void ContrastList::editColor(int index) {
    const MapRow& row = shown_[size_t(index)];
    if (!rows_->colorsCanChange() || !row.color)
        return;
    chooseColor(
        "Color of " + row.name, *row.color,
        [this, index](const RgbColor& chosen) {
            rows_->setColor(index, chosen);
            showRows();
        },
        colorChooser_);
}
