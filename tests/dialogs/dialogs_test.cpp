// Shared parts of the dialogs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/appearance.h"
#include "dialogs/dialog_setup.h"
#include "dialogs/fitting_scroll_area.h"
#include "dialogs/number_fields.h"
#include "dialogs/progress_boxes.h"
#include "support/simulated_pump.h"

#include <QApplication>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QTest>
#include <QVBoxLayout>
#include <gtest/gtest.h>

TEST(NumberFields, ReadWhatIsTyped) {
    QLineEdit field;
    for (const auto& [text, number] : std::vector<std::pair<QString, double>>{
             {" 2.5 ", 2.5}, {"-1e3", -1000.0}, {"0", 0.0}, {"3e38", 3e38}}) {
        field.setText(text);
        EXPECT_EQ(numberIn(field), number) << text.toStdString();
    }
    for (const char* text : {"", "4,5", "4 5", "nan", "inf", "4e38", "4mm"}) {
        field.setText(text);
        EXPECT_TRUE(std::isnan(numberIn(field))) << text;
        EXPECT_EQ(numberFault(field, "The width", {0.5, 100, "mm"}),
                  "The width must be a number from 0.5 to 100 mm.");
    }
    for (const double number : {-1.5, 3.0, 3.1}) {
        showNumber(field, number);
        EXPECT_EQ(numberIn(field), number);
        EXPECT_EQ(numberFault(field, "x", {-1.5, 3, {}}),
                  number > 3 ? "x must be a number from -1.5 to 3." : "");
    }
    ThresholdSpinBox box(nullptr);
    box.setLocale(QLocale::c());
    for (const auto& [value, text] : std::vector<std::pair<double, QString>>{
             {2.5, "2.50"}, {0.0001, "0.0001"}, {0.12504, "0.1250"}}) {
        box.setValue(value);
        EXPECT_EQ(box.text(), text);
        EXPECT_EQ(box.value(), text.toDouble()) << "what is shown counts";
    }
    box.setDecimals(8);
    for (const auto& [value, text] :
         std::vector<std::pair<double, QString>>{{0.0, "0.00"},
                                                 {2.5, "2.50"},
                                                 {0.01, "0.01"},
                                                 {0.0031, "0.0031"},
                                                 {4.7e-6, "0.0000047"}}) {
        box.setValue(value);
        EXPECT_EQ(box.text(), text);
    }
    EXPECT_EQ(decimalsFor(double(0.01f)), 2);
    EXPECT_EQ(decimalsFor(-1e-20), 9);
}

TEST(DialogSetup, NamesControlsAndWrapsToolTips) {
    QDialog dialog;
    auto* layout = new QVBoxLayout(&dialog);
    auto* bare = new QLineEdit;
    auto* named = new QSpinBox;
    auto* button = new QPushButton("OK");
    named->setAccessibleName("Its own");
    for (QWidget* widget : std::initializer_list<QWidget*>{bare, named, button}) {
        widget->setToolTip("Up to a < b");
        layout->addWidget(widget);
    }
    prepareDialog(dialog);
    wrapToolTips(dialog); // once more changes nothing
    EXPECT_EQ(bare->toolTip(), "<p>Up to a &lt; b</p>");
    EXPECT_EQ(bare->accessibleName(), "Up to a < b");
    EXPECT_EQ(named->accessibleName(), "Its own");
    EXPECT_EQ(button->accessibleName(), "");
}

TEST(DialogSetup, KeepsWindowsOnTheScreen) {
    const QRect area(100, 50, 1000, 700);
    const std::pair<QRect, QRect> cases[] = {{{200, 100, 300, 200}, {200, 100, 300, 200}},
                                             {{0, 0, 300, 200}, {100, 50, 300, 200}},
                                             {{1000, 700, 300, 200}, {800, 550, 300, 200}},
                                             {{1000, 60, 1200, 900}, area}};
    for (const auto& [frame, expected] : cases)
        EXPECT_EQ(placedWithin(area, frame), expected) << frame.x() << ' ' << frame.y();
}

TEST(DialogSetup, SmallWindowsStandBesideTheMainOneOrAtItsRight) {
    const QRect main(0, 0, 1024, 768);
    const QSize frame(280, 310);
    EXPECT_EQ(placeBeside({0, 0, 1304, 768}, main, frame, 2), QPoint(1064, 40));
    EXPECT_EQ(placeBeside({-280, 0, 1304, 768}, main, frame, 0), QPoint(-280, 0));
    EXPECT_EQ(placeBeside({0, 0, 1303, 768}, main, frame, 1), QPoint(724, 287));
    EXPECT_EQ(placeBeside(main, main, {500, 680}, 0).x(), 0); // the run button stays free
}

TEST(DialogSetup, TallContentScrollsOnlyWhereTheScreenIsTooSmall) {
    for (const bool tall : {false, true}) {
        QDialog dialog;
        auto* area = new FittingScrollArea;
        auto* content = new QWidget;
        const int screen = screenArea(&dialog).height();
        content->setMinimumSize(300, tall ? 2 * screen : screen * 3 / 4);
        (new QVBoxLayout(content))->setContentsMargins({});
        area->setWidget(content);
        auto* layout = new QVBoxLayout(&dialog);
        layout->addWidget(area);
        layout->addWidget(new QPushButton("OK"));
        prepareDialog(dialog);
        dialog.show();
        QCoreApplication::processEvents();
        EXPECT_EQ(area->verticalScrollBar()->maximum() > 0, tall);
        EXPECT_LE(dialog.height(), screen);
        EXPECT_EQ(area->horizontalScrollBar()->maximum(), 0);
    }
}

TEST(ProgressBoxes, WorkThatCanBeCancelledIsByItsButtonAndEscapeOnly) {
    QWidget window;
    window.show();
    SimulatedPump pump;
    for (const bool byButton : {true, false}) {
        const auto progress =
            openCancellableProgressBox(&window, {"WorkDlg", "Working...", "Stop"}, pump);
        auto& box = *window.findChild<QProgressDialog*>("WorkDlg");
        EXPECT_NE(QApplication::overrideCursor(), nullptr);
        // The Return that began the work may repeat itself.
        QTest::keyClick(&box, Qt::Key_Return);
        EXPECT_FALSE(progress->cancelled());
        if (byButton)
            box.findChild<QPushButton*>()->click();
        else
            QTest::keyClick(&box, Qt::Key_Escape);
        EXPECT_TRUE(progress->cancelled());
        EXPECT_TRUE(box.isVisible()) << "until the work has ended";
    }
    pump.giveUpWaiting();
    EXPECT_TRUE(
        openCancellableProgressBox(&window, {"WorkDlg", "Working...", "Stop"}, pump)->cancelled())
        << "the program is to end";
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}
