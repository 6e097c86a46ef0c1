// SPDX-License-Identifier: GPL-3.0-or-later
#include "classify/ui/confusion_table.h"

#include "classify/ui/class_names.h"
#include "dialogs/dialog_setup.h"
#include "display/plots/plot_colors.h"
#include "ui_confusion_table.h"

#include <QHeaderView>
#include <algorithm>

namespace {

/// From the ground of plots to their accent; texts on it are always readable.
QColor shade(double share) {
    const auto mixed = [share](int from, int to) { return from + int(share * (to - from)); };
    const QColor& low = plotColors::background;
    const QColor& high = plotColors::accent;
    return {mixed(low.red(), high.red()), mixed(low.green(), high.green()),
            mixed(low.blue(), high.blue())};
}

QTableWidgetItem* cell(int count, int ofRow) {
    const double share = ofRow > 0 ? double(count) / ofRow : 0.0;
    const QString percent = ofRow > 0 ? QString::number(100.0 * share, 'f', 1) + '%' : "-";
    auto* item = new QTableWidgetItem(QStringLiteral("%1\n%2").arg(percent).arg(count));
    item->setTextAlignment(Qt::AlignCenter);
    item->setBackground(shade(share));
    item->setForeground(share > 0.5 ? plotColors::background : plotColors::text);
    return item;
}

} // namespace

ConfusionTable::ConfusionTable(QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::ConfusionTable>()) {
    ui_->setupUi(this);
    ui_->TableWdg->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    ui_->TableWdg->verticalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    connect(ui_->CloseBtn, &QPushButton::clicked, this, &QDialog::reject);
    prepareDialog(*this);
    resize(420, 320);
}

ConfusionTable::~ConfusionTable() = default;

void ConfusionTable::showReport(const PredictionReport& report) {
    QTableWidget& table = *ui_->TableWdg;
    const std::vector<NamedClass> classes = classesOfLabels(report.labels);
    const size_t n = classes.size();
    std::vector<size_t> places; // of the classes in the report's own order
    for (const NamedClass& named : classes)
        places.push_back(
            size_t(std::ranges::find(report.labels, named.label) - report.labels.begin()));
    table.setRowCount(int(n));
    table.setColumnCount(int(n));
    for (size_t row = 0; row < n; ++row) {
        const auto counts = std::span(report.confusion).subspan(places[row] * n, n);
        int ofRow = 0;
        for (const int count : counts)
            ofRow += count;
        for (size_t column = 0; column < n; ++column)
            table.setItem(int(row), int(column), cell(counts[places[column]], ofRow));
        table.setVerticalHeaderItem(int(row), new QTableWidgetItem(classes[row].name));
        table.setHorizontalHeaderItem(int(row),
                                      new QTableWidgetItem("taken for\n" + classes[row].name));
    }
    ui_->SummaryLbl->setText(QStringLiteral("%1 of %2 trials are right (%3%).")
                                 .arg(report.nrOfRight)
                                 .arg(report.targets.size())
                                 .arg(report.percentRight(), 0, 'f', 1));
}
