// The boxes and choosers on the screen: what they show, and what each answer leads to.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/message_boxes.h"

#include <QApplication>
#include <QColorDialog>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

/// A name with characters that mean something in rich text and in labels.
const QString text = "Is <b>a&b</b> right?";

using Act = std::function<void(QDialog&)>;

Act key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    return [key, modifiers](QDialog& dialog) {
        QWidget* focus = dialog.focusWidget();
        QTest::keyClick(focus ? focus : &dialog, key, modifiers);
    };
}

/// A button that is pressed by its letter shows that for a moment first.
Act letter(Qt::Key letter) {
    return [letter](QDialog& dialog) {
        key(letter, Qt::AltModifier)(dialog);
        EXPECT_TRUE(QTest::qWaitFor([&dialog] { return !dialog.isVisible(); }));
    };
}

Act typed(const QString& input) {
    return [input](QDialog& dialog) {
        auto* field = dialog.findChild<QLineEdit*>();
        field->selectAll();
        QTest::keyClicks(field, input);
        QTest::keyClick(field, Qt::Key_Return);
    };
}

Act pressed(QMessageBox::StandardButton button) {
    return
        [button](QDialog& dialog) { qobject_cast<QMessageBox*>(&dialog)->button(button)->click(); };
}

QString textOf(const QDialog& dialog) {
    if (const auto* box = qobject_cast<const QMessageBox*>(&dialog))
        return box->text();
    const auto* label = dialog.findChild<QLabel*>();
    return label->textFormat() == Qt::PlainText && label->wordWrap()
               ? label->text().replace("&&", "&")
               : "not as it should be";
}

class Boxes : public testing::Test {
protected:
    Boxes() : window_(std::make_unique<QWidget>()) {
        installMessageHandler(&boxes_);
        window_->show();
        window_->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    }
    ~Boxes() override { installMessageHandler(nullptr); }

    /// The result of a request that waits, once these acts were done on the boxes that it opened,
    /// one on each.
    QString answered(const std::function<QString()>& request, std::vector<Act> acts) {
        size_t done = 0;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!dialog || !dialog->isActiveWindow())
                return;
            EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "seems to be busy";
            if (done < acts.size())
                acts[done++](*dialog);
            if (QApplication::activeModalWidget() == dialog) {
                ADD_FAILURE() << "the box stays";
                dialog->reject();
            }
        });
        timer.start(0);
        const QString result = request();
        EXPECT_EQ(done, acts.size());
        return result;
    }
    /// The boxes of a kind that are open, which nobody waits for.
    template<typename Dialog> std::vector<Dialog*> open() {
        std::vector<Dialog*> dialogs;
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (auto* dialog = qobject_cast<Dialog*>(widget); dialog && dialog->isVisible())
                dialogs.push_back(dialog);
        return dialogs;
    }
    QString file(const QString& name) { return folder_.filePath(name); }
    void write(const QString& name) {
        QFile made(file(name));
        EXPECT_TRUE(made.open(QIODevice::WriteOnly));
    }

    MessageBoxes boxes_;
    std::unique_ptr<QWidget> window_;
    QTemporaryDir folder_;
};

template<typename Value> QString shown(const std::optional<Value>& value) {
    return value ? QVariant(*value).toString() : "cancelled";
}

QString question() {
    return askQuestion(text) ? "yes" : "no";
}
QString integer() {
    return shown(askForInteger({"Velo-Cortivo", text}, 4, {-2, 90}));
}
QString number() {
    return shown(askForNumber({"Velo-Cortivo", text}, 0.5, {-2, 90, 3}));
}
QString name() {
    return shown(askForText({"Velo-Cortivo", text}, "start"));
}

TEST_F(Boxes, ShowTheirTextAndTakeEachAnswer) {
    const struct {
        std::function<QString()> request;
        Act act;
        QString result;
        QMessageBox::Icon icon = QMessageBox::NoIcon;
        QString title = "Velo-Cortivo";
    } cases[] = {
        {[] { return showInformation(text), ""; }, key(Qt::Key_Return), "",
         QMessageBox::Information},
        {[] { return showWarning(text), ""; }, key(Qt::Key_Escape), "", QMessageBox::Warning},
        {[] { return showCritical(text, "Plug-in"), ""; }, pressed(QMessageBox::Ok), "",
         QMessageBox::Critical, "Plug-in"},
        {question, pressed(QMessageBox::Yes), "yes", QMessageBox::Question},
        {question, pressed(QMessageBox::No), "no", QMessageBox::Question},
        {question, letter(Qt::Key_Y), "yes", QMessageBox::Question},
        {question, letter(Qt::Key_N), "no", QMessageBox::Question},
        {[] { return askQuestion(text, "Plug-in") ? "yes" : "no"; }, key(Qt::Key_Escape), "no",
         QMessageBox::Question, "Plug-in"},
        {[] { return announce(" Ready", text, "GO"), ""; }, key(Qt::Key_Return), "",
         QMessageBox::NoIcon, " Ready"},
        {integer, key(Qt::Key_Return), "4"},
        {integer, key(Qt::Key_Escape), "cancelled"},
        {integer, typed("-2"), "-2"},
        {integer, typed("91"), "9"}, // the last digit is not taken
        {number, key(Qt::Key_Return), "0.5"},
        {number, typed("91"), "9"},
        {number, typed("1.2346"), "1.234"}, // nor is a fourth decimal
        {name, key(Qt::Key_Return), "start"},
        {name, typed("a&b"), "a&b"},
        {name, typed(""), "start"},
    };
    for (const auto& row : cases) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        QApplication::setOverrideCursor(Qt::BusyCursor);
        const QString result = answered(row.request, {[&row](QDialog& dialog) {
                                            EXPECT_EQ(dialog.windowTitle(), row.title);
                                            EXPECT_EQ(textOf(dialog), text);
                                            if (auto* box = qobject_cast<QMessageBox*>(&dialog)) {
                                                EXPECT_EQ(box->icon(), row.icon);
                                                EXPECT_EQ(box->textFormat(), Qt::PlainText);
                                            }
                                            row.act(dialog);
                                        }});
        EXPECT_EQ(result, row.result);
        for (const auto shape : {Qt::BusyCursor, Qt::WaitCursor}) {
            ASSERT_NE(QApplication::overrideCursor(), nullptr) << "the work goes on";
            EXPECT_EQ(QApplication::overrideCursor()->shape(), shape);
            QApplication::restoreOverrideCursor();
        }
    }
}

TEST_F(Boxes, HoldUpARunOnlyWhereAnAnswerIsNeeded) {
    bool active = true;
    boxes_.runIsActive = [&] { return active; };
    const auto modeless = [] {
        int count = 0;
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (auto* box = qobject_cast<QMessageBox*>(widget); box && box->isVisible()) {
                ++count;
                box->close();
            }
        return count;
    };
    boxes_.show(MessageLevel::Information, text, programTitle);
    boxes_.show(MessageLevel::Warning, text, programTitle);
    EXPECT_EQ(modeless(), 2);
    const auto show = [this](MessageLevel level, const QString& title) {
        return [this, level, title] { return boxes_.show(level, text, title), QString(); };
    };
    answered(show(MessageLevel::Critical, programTitle), {key(Qt::Key_Return)});
    answered(show(MessageLevel::Information, "Velo-Cortivo Plugin"), {key(Qt::Key_Return)});
    active = false;
    answered(show(MessageLevel::Warning, programTitle), {key(Qt::Key_Return)});
    EXPECT_EQ(modeless(), 0);
}

TEST_F(Boxes, CountAsCancelledWhenTheyAreClosedOrTheirWindowGoes) {
    const std::function<QString()> requests[] = {
        [] { return showWarning(text), ""; },
        [] { return announce("t", text, "GO"), ""; },
        [] { return question() == "no" ? "" : "yes"; },
        [] { return integer() == "cancelled" ? "" : "number"; },
        [] { return number() == "cancelled" ? "" : "number"; },
        [] { return name() == "cancelled" ? "" : "text"; },
        [this] { return chooseFileToOpen("t", file(""), "All (*)"); },
        [this] { return waitForFileToSave("t", file("new.roi"), "Region files (*.roi)"); },
    };
    const Act acts[] = {key(Qt::Key_Escape), [](QDialog& dialog) { dialog.close(); },
                        [this](QDialog&) { window_.reset(); }};
    for (const auto& request : requests)
        for (const Act& act : acts) {
            if (!window_)
                window_ = std::make_unique<QWidget>();
            window_->show();
            window_->activateWindow();
            ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
            EXPECT_EQ(answered(request, {act}), "");
        }
}

TEST_F(Boxes, ChooseFilesThatExistAndGiveNewOnesTheirExtension) {
    write("old.roi");
    const auto openFile = [this] {
        return chooseFileToOpen("Open ROI", file(""), "Region files (*.roi)");
    };
    EXPECT_EQ(answered(openFile, {typed("old.roi")}), file("old.roi"));
    const struct {
        QString proposed;
        QString filter;
        std::vector<Act> acts;
        QString result;
    } cases[] = {
        {"new", "Region files (*.roi)", {key(Qt::Key_Return)}, "new.roi"},
        {"", "Region files (*.roi)", {typed("NEW.ROI")}, "NEW.ROI"},
        {"new", "Protocols (*.prt *.rtp);;All (*)", {key(Qt::Key_Return)}, "new.prt"},
        {"new.rtp", "Protocols (*.prt *.rtp)", {key(Qt::Key_Return)}, "new.rtp"},
        {"new", "All (*)", {key(Qt::Key_Return)}, "new"},
        {"old", "ROI (*.roi)", {key(Qt::Key_Return), pressed(QMessageBox::Yes)}, "old.roi"},
        {"old", "ROI (*.roi)", {key(Qt::Key_Return), key(Qt::Key_Return)}, ""},
    };
    for (const auto& [proposed, filter, acts, result] : cases) {
        const QString expected = result.isEmpty() ? result : file(result);
        EXPECT_EQ(answered([&] { return waitForFileToSave("Save", file(proposed), filter); }, acts),
                  expected);
        // The same without waiting.
        QString chosen;
        chooseFileToSave("Save", file(proposed), filter,
                         [&](const QString& path) { chosen = path; });
        auto* dialog = open<QFileDialog>().at(0);
        EXPECT_EQ(dialog->windowTitle(), "Save");
        EXPECT_EQ(dialog->acceptMode(), QFileDialog::AcceptSave);
        EXPECT_TRUE(dialog->testOption(QFileDialog::DontUseNativeDialog));
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        acts[0](*dialog);
        EXPECT_TRUE(open<QFileDialog>().empty());
        if (acts.size() > 1) {
            EXPECT_EQ(chosen, "");
            auto* box = open<QMessageBox>().at(0);
            EXPECT_EQ(box->text(), QString("The file \"%1\" exists already.\n\nDo you want to "
                                           "replace it?")
                                       .arg(file("old.roi")));
            acts[1](*box);
        }
        EXPECT_EQ(chosen, expected);
    }
}

TEST_F(Boxes, ChoosersCloseWithTheirSubjectAndCallNobody) {
    write("old.roi");
    OpenChooser subject;
    const auto unwanted = [](const auto&) { ADD_FAILURE(); };
    chooseFileToSave("Save", file("old"), "ROI (*.roi)", unwanted, &subject);
    key(Qt::Key_Return)(*open<QFileDialog>().at(0));
    const QPointer<QMessageBox> box = open<QMessageBox>().at(0);
    chooseFileToSave("Save", file("old"), "ROI (*.roi)", unwanted, &subject);
    EXPECT_TRUE(open<QMessageBox>().empty()) << "the question of the chooser before";
    pressed(QMessageBox::Yes)(*box);
    QFileDialog* chooser = open<QFileDialog>().at(0);
    subject.close();
    EXPECT_TRUE(open<QFileDialog>().empty());
    key(Qt::Key_Return)(*chooser);

    chooseColor("Color of a", {1, 2, 3}, unwanted, subject);
    auto* colors = open<QColorDialog>().at(0);
    subject.close();
    EXPECT_FALSE(colors->isVisible());
    key(Qt::Key_Return)(*colors);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    // The answer itself may be what ends the subject; and the window may go first.
    RgbColor chosen;
    chooseColor(
        "Color of a", {1, 2, 300},
        [&](const RgbColor& color) {
            chosen = color;
            subject.close();
        },
        subject);
    EXPECT_EQ(open<QColorDialog>().at(0)->windowTitle(), "Color of a");
    EXPECT_FALSE(open<QColorDialog>().at(0)->isModal());
    EXPECT_TRUE(open<QColorDialog>().at(0)->testOption(QColorDialog::DontUseNativeDialog));
    key(Qt::Key_Return)(*open<QColorDialog>().at(0));
    EXPECT_EQ(chosen, (RgbColor{1, 2, 255}));
    chooseColor("Color of a", {}, unwanted, subject);
    window_.reset();
    EXPECT_TRUE(open<QColorDialog>().empty());
}

TEST_F(Boxes, WaitForNobodyAside) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    showWarningAside(text);
    auto* box = open<QMessageBox>().at(0);
    EXPECT_EQ(box->text(), text);
    EXPECT_EQ(box->icon(), QMessageBox::Warning);
    EXPECT_FALSE(box->isModal());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    // One above a dialog stays when that closes, and goes with the window.
    auto dialog = std::make_unique<QDialog>(window_.get());
    dialog->show();
    dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    showWarningAside(text);
    dialog.reset();
    EXPECT_EQ(open<QMessageBox>().size(), 2u);
    window_->activateWindow();
    window_.reset();
    EXPECT_TRUE(open<QMessageBox>().empty());
}

} // namespace
