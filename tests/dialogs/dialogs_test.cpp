// Shared parts of the dialogs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/appearance.h"
#include "dialogs/dialog_setup.h"
#include "dialogs/edit_dialog.h"
#include "dialogs/fitting_scroll_area.h"
#include "dialogs/number_fields.h"
#include "dialogs/progress_boxes.h"
#include "support/simulated_pump.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>
#include <gtest/gtest.h>

namespace {

/// Edits an integer; "refused" makes it invalid.
class NumberDialog : public EditDialog {
public:
    static constexpr int refused = 13;

    explicit NumberDialog(int& target) : target_(target), copy_(target) {
        auto* layout = new QVBoxLayout(this);
        box_ = new QSpinBox;
        box_->setToolTip("How many");
        layout->addWidget(box_);
        for (const char* name : {"OkBtn", "ApplyBtn", "ResetBtn", "CancelBtn"}) {
            auto* button = new QPushButton(name);
            button->setObjectName(name);
            layout->addWidget(button);
        }
        connect(box_, &QSpinBox::valueChanged, this, [this](int value) {
            copy_.edited() = value;
            refreshButtons();
        });
        setUpEditing();
        revert();
        open();
    }
    void enter(int value) { box_->setValue(value); }
    void click(const char* name) { button(name)->click(); }
    QPushButton* button(const char* name) { return findChild<QPushButton*>(name); }
    int value() const { return box_->value(); }
    std::function<void()> onMessage = [] {};

protected:
    bool apply() override {
        if (copy_.edited() == refused) {
            onMessage();
            return false;
        }
        target_ = copy_.applied();
        return true;
    }
    void revert() override {
        copy_.revert();
        box_->setValue(copy_.edited());
    }
    bool isChanged() const override { return copy_.isChanged(); }

private:
    int& target_;
    EditedCopy<int> copy_;
    QSpinBox* box_;
};

TEST(EditDialogs, HandOverWhatWasEditedWhenItIsRight) {
    int target = 5;
    NumberDialog dialog(target);
    const auto buttonsAre = [&dialog](bool enabled) {
        return dialog.button("ApplyBtn")->isEnabled() == enabled &&
               dialog.button("ResetBtn")->isEnabled() == enabled;
    };
    EXPECT_TRUE(buttonsAre(false));
    dialog.enter(6);
    EXPECT_TRUE(buttonsAre(true));
    dialog.click("ResetBtn");
    EXPECT_TRUE(buttonsAre(false));
    EXPECT_EQ(dialog.value(), 5);
    dialog.enter(7);
    dialog.click("ApplyBtn");
    EXPECT_TRUE(buttonsAre(false));
    EXPECT_EQ(target, 7);
    EXPECT_TRUE(dialog.isVisible());
    for (const char* name : {"ApplyBtn", "OkBtn"}) {
        dialog.enter(NumberDialog::refused);
        dialog.click(name);
        EXPECT_TRUE(dialog.isVisible() && buttonsAre(true));
    }
    dialog.click("CancelBtn");
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.value(), 7) << "what was applied last";
    dialog.open();
    dialog.enter(8);
    QTest::keyClick(&dialog, Qt::Key_Escape);
    EXPECT_EQ(target, 7);
    dialog.open();
    dialog.enter(9);
    dialog.click("OkBtn");
    EXPECT_EQ(target, 9);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

TEST(EditDialogs, MayGoDuringAMessage) {
    int target = 5;
    auto* dialog = new NumberDialog(target);
    dialog->onMessage = [&] { delete std::exchange(dialog, nullptr); };
    dialog->enter(NumberDialog::refused);
    dialog->accept();
    EXPECT_EQ(dialog, nullptr);
}

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
    for (const auto& [number, fault] : std::vector<std::pair<double, QString>>{
             {-1.5, ""}, {3, ""}, {3.1, "x must be a number from -1.5 to 3."}}) {
        showNumber(field, number);
        EXPECT_EQ(numberIn(field), number);
        EXPECT_EQ(numberFault(field, "x", {-1.5, 3, {}}), fault);
    }
    ThresholdSpinBox box(nullptr);
    box.setLocale(QLocale::c());
    for (const auto& [value, text] : std::vector<std::pair<double, QString>>{{2.5, "2.50"},
                                                                             {0.0001, "0.0001"},
                                                                             {0.12504, "0.1250"},
                                                                             {-1, "0.00"},
                                                                             {1e5, "9999.00"}}) {
        box.setValue(value);
        EXPECT_EQ(box.text(), text);
        EXPECT_EQ(box.value(), text.toDouble()) << "what is shown counts";
    }
    box.stepDown();
    EXPECT_EQ(box.text(), "9998.90");
}

TEST(DialogSetup, NamesControlsAndWrapsToolTips) {
    QDialog dialog;
    auto* layout = new QVBoxLayout(&dialog);
    auto* label = new QLabel("&Width:");
    auto* labelled = new QLineEdit;
    auto* bare = new QLineEdit;
    auto* picture = new QToolButton;
    auto* named = new QSpinBox;
    auto* button = new QPushButton("OK");
    label->setBuddy(labelled);
    named->setAccessibleName("Its own");
    for (QWidget* widget :
         std::initializer_list<QWidget*>{label, labelled, bare, picture, named, button}) {
        widget->setToolTip("Up to a < b");
        layout->addWidget(widget);
    }
    prepareDialog(dialog);
    EXPECT_EQ(bare->toolTip(), "<p>Up to a &lt; b</p>");
    EXPECT_EQ(bare->accessibleName(), "Up to a < b");
    EXPECT_EQ(picture->accessibleName(), "Up to a < b");
    EXPECT_EQ(named->accessibleName(), "Its own");
    EXPECT_EQ(labelled->accessibleName() + button->accessibleName(), "");
    bare->setText("1.5");
    showInFront(dialog);
    returnToControl(*bare);
    EXPECT_EQ(bare->selectedText(), "1.5");
    EXPECT_EQ(dialog.focusWidget(), bare);
}

TEST(DialogSetup, KeepsWindowsOnTheScreen) {
    const QRect area(100, 50, 1000, 700);
    const std::pair<QRect, QRect> cases[] = {
        {{200, 100, 300, 200}, {200, 100, 300, 200}},  {{0, 0, 300, 200}, {100, 50, 300, 200}},
        {{1000, 700, 300, 200}, {800, 550, 300, 200}}, {{1000, 60, 1200, 900}, area},
        {{99, 551, 1000, 200}, {100, 550, 1000, 200}},
    };
    for (const auto& [frame, expected] : cases)
        EXPECT_EQ(placedWithin(area, frame), expected) << frame.x() << ' ' << frame.y();

    QWidget window;
    const QRect screen = screenArea(&window);
    window.setGeometry(screen.right() - 50, 60, 200, screen.height());
    window.show();
    keepOnScreen(window);
    EXPECT_TRUE(screen.contains(window.frameGeometry()));
    EXPECT_EQ(window.width(), 200);
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
        EXPECT_EQ(content->width(), area->viewport()->width());
        EXPECT_GE(area->viewport()->width(), 300);
        dialog.resize(400, 300);
        dialog.hide();
        dialog.show();
        EXPECT_EQ(dialog.size(), QSize(400, 300)) << "as the operator left it";
    }
}

TEST(ProgressBoxes, OnlyCancellableWorkIsCancelled) {
    QWidget window;
    window.setGeometry(340, 60, 800, 600);
    window.show();
    SimulatedPump pump;
    using Act = std::function<void(QProgressDialog&)>;
    const Act acts[] = {[](auto& box) { box.template findChild<QPushButton*>()->click(); },
                        [](auto& box) { QTest::keyClick(&box, Qt::Key_Escape); },
                        [](auto& box) { box.close(); }};
    for (const Act& act : acts)
        for (const bool cancellable : {false, true}) {
            const ProgressBoxLook look{"WorkDlg", "Working...", "Stop"};
            const auto progress = cancellable ? openCancellableProgressBox(&window, look, pump)
                                              : openProgressBox(&window, look);
            auto& box = *window.findChild<QProgressDialog*>("WorkDlg");
            EXPECT_NE(QApplication::overrideCursor(), nullptr);
            EXPECT_EQ(box.value(), cancellable ? -1 : 0); // -1: nothing was told yet
            EXPECT_EQ(box.pos(), QPoint(window.x() + (800 - 320) / 2, window.y() + 600 / 3));
            EXPECT_EQ(box.size(), QSize(320, 110));
            // The Return that began the work may repeat itself.
            if (cancellable)
                QTest::keyClick(&box, Qt::Key_Return);
            EXPECT_FALSE(progress->cancelled());
            act(box);
            progress->setProgress(100);
            EXPECT_TRUE(box.isVisible()) << "until the work has ended";
            EXPECT_EQ(box.value(), 100);
            EXPECT_EQ(progress->cancelled(), cancellable);
        }
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(window.findChild<QProgressDialog*>(), nullptr);
}

TEST(Appearance, ShowsColorsOfFilesWithinTheirRange) {
    EXPECT_EQ(toQColor({300, -1, 128}), QColor(255, 0, 128));
    const QIcon icon = colorIcon({10, 200, 30}, {20, 16});
    for (const auto mode : {QIcon::Normal, QIcon::Selected})
        EXPECT_EQ(icon.pixmap({20, 16}, mode).toImage().pixelColor(10, 8), QColor(10, 200, 30));
}

} // namespace
