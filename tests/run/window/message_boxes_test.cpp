// The boxes and choosers on the screen: what they show, and what each answer leads to.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/window/message_boxes.h"

#include "support/files.h"

#include <QApplication>
#include <QColorDialog>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

namespace {

/// A name with characters that mean something in rich text and in labels.
const QString text = "Is <b>a&b</b> right?";

using Act = std::function<void(QDialog&)>;

Act key(Qt::Key key) {
    return [key](QDialog& dialog) {
        QWidget* focus = dialog.focusWidget();
        QTest::keyClick(focus ? focus : &dialog, key);
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
        return box->textFormat() == Qt::PlainText ? box->text() : "rich text";
    const auto* label = dialog.findChild<QLabel*>();
    return label->textFormat() == Qt::PlainText && label->wordWrap()
               ? label->text().replace("&&", "&")
               : "not as it should be";
}

class Boxes : public testing::Test {
protected:
    Boxes() {
        installMessageHandler(&boxes_);
        showWindow();
        writeFile(file("old.roi"), "");
    }
    ~Boxes() override { installMessageHandler(nullptr); }

    void showWindow() {
        if (!window_)
            window_ = std::make_unique<QWidget>();
        window_->show();
        window_->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
    }
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

    const Act cancellings[2] = {key(Qt::Key_Escape), [this](QDialog&) { window_.reset(); }};
    MessageBoxes boxes_;
    std::unique_ptr<QWidget> window_;
    QTemporaryDir folder_;
};

template<typename Value> QString shown(const std::optional<Value>& value) {
    return value ? QVariant(*value).toString() : "";
}

QString question() {
    return askQuestion(text) ? "yes" : "";
}
QString integer() {
    return shown(askForInteger({programTitle, text}, 4, {-2, 90}));
}
QString number() {
    return shown(askForNumber({programTitle, text}, 0.5, {-2, 90, 3}));
}
QString name() {
    return shown(askForText({programTitle, text}, "start"));
}

TEST_F(Boxes, ShowTheirTextAndAreAnsweredOrCancelled) {
    const struct {
        std::function<QString()> request;
        Act act;
        QString result;
        QMessageBox::Icon icon = QMessageBox::NoIcon;
        QString title = programTitle;
    } cases[] = {{[] { return showInformation(text), ""; }, key(Qt::Key_Return), "",
                  QMessageBox::Information},
                 {[] { return showCritical(text, "Plug-in"), ""; }, pressed(QMessageBox::Ok), "",
                  QMessageBox::Critical, "Plug-in"},
                 {question, pressed(QMessageBox::Yes), "yes", QMessageBox::Question},
                 {question, pressed(QMessageBox::No), "", QMessageBox::Question},
                 {[] { return announce(" Ready", text, "GO"), ""; }, key(Qt::Key_Return), "",
                  QMessageBox::NoIcon, " Ready"},
                 {integer, key(Qt::Key_Return), "4"},
                 {integer, typed("91"), "9"},        // the last digit is not taken
                 {number, typed("1.2346"), "1.234"}, // nor is a fourth decimal
                 {name, typed("a&b"), "a&b"},
                 {name, typed(""), "start"}};
    for (const auto& row : cases) {
        QApplication::setOverrideCursor(Qt::BusyCursor);
        EXPECT_EQ(answered(row.request, {[&row](QDialog& dialog) {
                               EXPECT_EQ(dialog.windowTitle(), row.title);
                               EXPECT_EQ(textOf(dialog), text);
                               if (auto* box = qobject_cast<QMessageBox*>(&dialog)) {
                                   EXPECT_EQ(box->icon(), row.icon);
                               }
                               row.act(dialog);
                           }}),
                  row.result);
        ASSERT_NE(QApplication::overrideCursor(), nullptr) << "the work goes on";
        EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::BusyCursor);
        QApplication::restoreOverrideCursor();
        for (const Act& cancelling : cancellings) {
            EXPECT_EQ(answered(row.request, {cancelling}), "");
            showWindow();
        }
    }
}

TEST_F(Boxes, HoldUpARunOnlyWhereAnAnswerIsNeeded) {
    bool active = true;
    boxes_.isModeless = [&](MessageLevel level) {
        return active && level != MessageLevel::Critical;
    };
    showInformation(text);
    for (int volume = 0; volume < 3; ++volume)
        showWarning(text); // one box for all of them
    showInformation(text, "Velo-Cortivo Plugin");
    QStringList titles;
    for (QMessageBox* box : open<QMessageBox>()) {
        EXPECT_EQ(textOf(*box), text);
        titles << box->windowTitle();
    }
    ASSERT_EQ(titles.size(), 3);
    EXPECT_EQ(titles.count("Velo-Cortivo Plugin"), 1);
    // They go with their window.
    window_.reset();
    EXPECT_TRUE(open<QMessageBox>().empty());
    showWindow();
    answered([] { return showCritical(text), ""; }, {key(Qt::Key_Return)});
    active = false;
    answered([] { return showWarning(text), ""; }, {key(Qt::Key_Return)});
    EXPECT_TRUE(open<QMessageBox>().empty());
    showWindow();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    showModelessWarning(text);
    EXPECT_FALSE(open<QMessageBox>().at(0)->isModal());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(Boxes, ChooseFilesThatExistAndGiveNewOnesTheirExtension) {
    const auto openFile = [this] { return waitForFileToOpen("Open", file(""), "ROI (*.roi)"); };
    EXPECT_EQ(answered(openFile, {typed("old.roi")}), file("old.roi"));
    for (const Act& cancelling : cancellings) {
        EXPECT_EQ(answered(openFile, {cancelling}), "");
        showWindow();
    }
    // The same without waiting; of a missing file is told at once, in no box that holds up a run.
    QString opened;
    const auto openBeside = [&](const QString& name) {
        chooseFileToOpen("Open", file(""), "ROI (*.roi)",
                         [&](const QString& path) { opened = path; });
        typed(name)(*open<QFileDialog>().at(0));
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        EXPECT_TRUE(open<QFileDialog>().empty());
    };
    openBeside("missing.roi");
    EXPECT_EQ(opened, "");
    QMessageBox* const told = open<QMessageBox>().at(0);
    EXPECT_EQ(told->text(), QString("WARNING: There is no file \"%1\".").arg(file("missing.roi")));
    told->close();
    openBeside("old.roi");
    EXPECT_EQ(opened, file("old.roi"));
    QStringList several;
    QFile(file("old.roi")).copy(file("other.roi"));
    chooseFilesToOpen("Open", file(""), "ROI (*.roi)",
                      [&](const QStringList& paths) { several = paths; });
    QFileDialog* const opener = open<QFileDialog>().at(0);
    const auto* listed = opener->findChild<QFileSystemModel*>(); // fills beside us
    EXPECT_TRUE(QTest::qWaitFor([&] { return listed->rowCount(listed->index(file(""))) > 1; }));
    typed("\"old.roi\" \"other.roi\"")(*opener);
    EXPECT_EQ(several, QStringList({file("old.roi"), file("other.roi")}));
    showWindow();
    const std::tuple<QString, QString, std::vector<Act>, QString> cases[] = {
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
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        acts[0](*open<QFileDialog>().at(0));
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
    OpenChooser subject;
    const auto unwanted = [](const auto&) { ADD_FAILURE(); };
    chooseFileToSave("Save", file("old"), "ROI (*.roi)", unwanted, &subject);
    key(Qt::Key_Return)(*open<QFileDialog>().at(0));
    const QPointer<QMessageBox> box = open<QMessageBox>().at(0);
    chooseFileToSave("Save", file("old"), "ROI (*.roi)", unwanted, &subject);
    EXPECT_TRUE(open<QMessageBox>().empty()) << "the question of the chooser before";
    pressed(QMessageBox::Yes)(*box);
    chooseFileToOpen("Open", file(""), "ROI (*.roi)", unwanted, &subject);
    QFileDialog* const opening = open<QFileDialog>().at(0);
    subject.close();
    EXPECT_TRUE(open<QFileDialog>().empty());
    typed("old.roi")(*opening);

    // The answer itself may be what ends the subject.
    RgbColor chosen;
    const auto choose = [&] {
        chooseColor(
            "Color of a", {1, 2, 300},
            [&](const RgbColor& color) {
                chosen = color;
                subject.close();
            },
            subject);
        return open<QColorDialog>().at(0);
    };
    QColorDialog* colors = choose();
    subject.close();
    EXPECT_FALSE(colors->isVisible());
    key(Qt::Key_Return)(*colors);
    EXPECT_EQ(chosen, RgbColor());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    colors = choose();
    EXPECT_FALSE(colors->isModal());
    key(Qt::Key_Return)(*colors);
    EXPECT_EQ(chosen, (RgbColor{1, 2, 255}));
}

} // namespace
