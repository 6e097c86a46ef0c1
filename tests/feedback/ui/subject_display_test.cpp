// The subject's screen beside that of the operator.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/subject_screen_chooser.h"
#include "support/dialog_checks.h"

#include <QApplication>
#include <QComboBox>
#include <QMenu>
#include <QScreen>
#include <QStandardItemModel>

namespace {

// Before the application begins: a desk of two screens.
[[maybe_unused]] const bool twoScreens =
    qputenv("QT_QPA_PLATFORM",
            "offscreen:configfile=" VELO_SOURCE_DIR "/tests/feedback/ui/two_screens.json");

class HideCounter : public QObject {
public:
    int count = 0;
    bool eventFilter(QObject*, QEvent* event) override {
        count += event->type() == QEvent::Hide;
        return false;
    }
};

class SubjectScreen : public testing::Test {
protected:
    SubjectScreen() {
        main_.setGeometry(100, 100, 400, 300);
        main_.show();
    }
    QComboBox& box() { return *chooser_.findChild<QComboBox*>("SubjectScreenCmBx"); }
    void choose(int index) {
        box().setCurrentIndex(index);
        Q_EMIT box().activated(index);
    }
    const SubjectDisplay& display() { return chooser_.display(); }
    static QScreen* screen(int number) { return QGuiApplication::screens().value(number); }

    QWidget main_;
    SubjectScreenChooser chooser_{main_, &main_};
};

} // namespace

TEST_F(SubjectScreen, IsChosenAmongTheOthersThanTheOperators) {
    ASSERT_EQ(QGuiApplication::screens().size(), 2);
    const auto* model = qobject_cast<QStandardItemModel*>(box().model());
    ASSERT_EQ(box().count(), 4);
    EXPECT_EQ(box().itemText(3), "Screen 2: Scanner, 800 x 600");
    EXPECT_FALSE(model->item(2)->isEnabled());
    EXPECT_TRUE(model->item(2)->toolTip().contains("main window"));
    EXPECT_FALSE(display().isVisible());
    choose(3);
    EXPECT_TRUE(display().isVisible());
    EXPECT_EQ(display().geometry(), screen(1)->geometry());
    EXPECT_TRUE(display().windowFlags() & Qt::FramelessWindowHint);
    EXPECT_EQ(display().cursor().shape(), Qt::BlankCursor);
    choose(1);
    EXPECT_TRUE(screen(0)->geometry().contains(display().frameGeometry()));
    const_cast<SubjectDisplay&>(display()).close();
    EXPECT_EQ(box().currentText(), "Off");
}

TEST_F(SubjectScreen, KeepsTheRatioOfThePicture) {
    choose(3);
    FeedbackFrame frame;
    frame.kind = FeedbackFrame::Kind::Thermometer;
    frame.thermometers = {{}};
    // 200 x 300 on 800 x 600: twice as large, from x = 200 to 600. A white border all around.
    chooser_.showNow({frame, {200, 300}, {}});
    const QImage shown = const_cast<SubjectDisplay&>(display()).grab().toImage();
    for (const auto& [x, white] : std::vector<std::pair<int, bool>>{
             {100, false}, {198, false}, {201, true}, {210, false}, {597, true}, {602, false}})
        EXPECT_EQ(shown.pixelColor(x, 100) == QColor(Qt::white), white) << x;
    EXPECT_EQ(shown.pixelColor(300, 1), QColor(Qt::white));
    // 900 x 501 on 800 x 600 is 800 x 445.3: its upper edge is at y = 77.
    chooser_.showNow({frame, {900, 501}, {}});
    const QImage reduced = const_cast<SubjectDisplay&>(display()).grab().toImage();
    EXPECT_EQ(reduced.pixelColor(300, 77), QColor(Qt::white));
    EXPECT_EQ(reduced.pixelColor(300, 76), QColor(Qt::black));
}

TEST_F(SubjectScreen, SurvivesToBeUnplugged) {
    choose(3);
    QScreen* const scanner = screen(1);
    Q_EMIT qApp->screenRemoved(scanner);
    EXPECT_FALSE(display().isVisible());
    EXPECT_EQ(box().currentText(), "Screen unplugged: Scanner");
    Q_EMIT qApp->screenAdded(scanner);
    EXPECT_TRUE(display().isVisible());
    EXPECT_EQ(display().geometry(), scanner->geometry());
    EXPECT_EQ(box().currentText(), "Screen 2: Scanner, 800 x 600");
    const_cast<SubjectDisplay&>(display()).setGeometry(1024, 0, 300, 300);
    HideCounter hidden;
    const_cast<SubjectDisplay&>(display()).installEventFilter(&hidden);
    Q_EMIT scanner->geometryChanged(scanner->geometry());
    EXPECT_EQ(display().geometry(), scanner->geometry());
    choose(3);
    EXPECT_EQ(hidden.count, 0) << "it would flicker";
    // The operator's own screen goes: what is left is needed.
    Q_EMIT qApp->screenRemoved(screen(0));
    EXPECT_FALSE(display().isVisible());
    EXPECT_EQ(box().currentText(), "Off");
}

TEST_F(SubjectScreen, IsLeftByAllOtherWindows) {
    QWidget early;
    early.setGeometry(1100, 100, 200, 200);
    early.show();
    choose(3);
    const QRect desk = screen(0)->geometry();
    EXPECT_TRUE(desk.contains(early.frameGeometry()));
    QDialog late(&main_);
    late.setGeometry(900, 100, 300, 200); // half of it
    late.show();
    QMenu menu;
    menu.addAction("x");
    menu.popup({1200, 200});
    main_.move(1500, 100);
    for (const QWidget* window :
         {static_cast<QWidget*>(&late), static_cast<QWidget*>(&menu), &main_})
        EXPECT_TRUE(desk.contains(window->frameGeometry())) << window->metaObject()->className();
    EXPECT_EQ(display().geometry(), screen(1)->geometry());
    choose(0);
    late.move(1300, 100);
    EXPECT_EQ(late.pos(), QPoint(1300, 100)) << "nobody sees it";
}
