// SPDX-License-Identifier: GPL-3.0-or-later
#include "feedback/ui/subject_screen_chooser.h"

#include <QComboBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QScreen>
#include <QSignalBlocker>
#include <QStandardItemModel>
#include <algorithm>

namespace {

constexpr int screenRole = Qt::UserRole;     // screen of an entry, or nullptr
constexpr int choiceRole = Qt::UserRole + 1; // kind of an entry

} // namespace

SubjectScreenChooser::SubjectScreenChooser(QWidget& mainWindow, QWidget* parent)
    : QWidget(parent), mainWindow_(mainWindow), box_(new QComboBox(this)),
      guard_(mainWindow, display_) {
    box_->setObjectName("SubjectScreenCmBx");
    box_->setToolTip("Where the subject sees the feedback. On a screen of its own nothing else is "
                     "shown; windows and boxes of this program keep off it");
    auto* label = new QLabel("Subject's sc&reen:", this);
    label->setBuddy(box_);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label);
    layout->addWidget(box_, 1);

    for (QScreen* screen : QGuiApplication::screens())
        screenAdded(screen);
    connect(qApp, &QGuiApplication::screenAdded, this, &SubjectScreenChooser::screenAdded);
    connect(qApp, &QGuiApplication::screenRemoved, this, &SubjectScreenChooser::screenRemoved);
    connect(&guard_, &SubjectScreenGuard::mainWindowMoved, this, &SubjectScreenChooser::findHome);
    connect(box_, &QComboBox::activated, this, &SubjectScreenChooser::choose);
    connect(&display_, &SubjectDisplay::closed, this, [this] { choose(0); });
    findHome();
    listScreens();
}

void SubjectScreenChooser::showNow(const SubjectPicture& picture) {
    display_.showNow(picture);
}

void SubjectScreenChooser::choose(int index) {
    choice_ = box_->itemData(index, choiceRole).value<Choice>();
    chosen_ = box_->itemData(index, screenRole).value<QScreen*>();
    chosenName_ = chosen_ ? chosen_->name() : QString();
    apply();
}

void SubjectScreenChooser::screenAdded(QScreen* screen) {
    if (isPluggedIn(screen))
        return;
    screens_.push_back(screen);
    connect(screen, &QScreen::geometryChanged, this, [this, screen] { followScreen(screen); });
    if (choice_ == Choice::Screen && !chosenScreen() && screen->name() == chosenName_)
        chosen_ = screen;
    followScreen(screen);
}

// Called before the system moves the windows of the screen to another one, where the display must
// not appear.
void SubjectScreenChooser::screenRemoved(QScreen* screen) {
    screen->disconnect(this);
    const bool shown = screen == chosenScreen();
    std::erase(screens_, screen);
    if (home_ == screen)
        home_ = nullptr;
    findHome();
    if (shown)
        apply();
    else
        listScreens();
}

void SubjectScreenChooser::followScreen(QScreen* screen) {
    if (screen == chosenScreen())
        apply();
    else
        listScreens();
}

bool SubjectScreenChooser::isPluggedIn(const QScreen* screen) const {
    return std::find(screens_.begin(), screens_.end(), screen) != screens_.end();
}

// Not by its name alone, which two screens of a kind may share.
QScreen* SubjectScreenChooser::chosenScreen() const {
    return isPluggedIn(chosen_) ? chosen_.get() : nullptr;
}

// Where the main window stands; not the subject's screen, from which the guard sends it back.
void SubjectScreenChooser::findHome() {
    QScreen* const subject = chosenScreen();
    QScreen* home = mainWindow_.screen();
    if (!isPluggedIn(home) || home == subject)
        home = home_;
    if (!home) {
        const auto other = std::find_if(screens_.begin(), screens_.end(),
                                        [&](QScreen* screen) { return screen != subject; });
        home = other != screens_.end() ? *other : nullptr;
    }
    if (!home) { // the subject's screen is the only one that is left
        choice_ = Choice::Off;
        chosen_ = nullptr;
        home = subject;
    }
    if (home == home_)
        return;
    home_ = home;
    apply();
}

void SubjectScreenChooser::apply() {
    QScreen* const subject = chosenScreen();
    guard_.protect(subject, home_);
    if (subject)
        display_.showOnScreen(*subject);
    else if (choice_ == Choice::Window && home_)
        display_.showInWindow(*home_, mainWindow_);
    else
        display_.hide();
    listScreens();
}

void SubjectScreenChooser::addEntry(const QString& text, Choice choice, QScreen* screen) {
    box_->addItem(text);
    const int index = box_->count() - 1;
    box_->setItemData(index, QVariant::fromValue(choice), choiceRole);
    box_->setItemData(index, QVariant::fromValue(screen), screenRole);
    if (choice == choice_ && screen == chosenScreen())
        box_->setCurrentIndex(index);
}

void SubjectScreenChooser::disableEntry(int index, const QString& reason) {
    box_->setItemData(index, reason, Qt::ToolTipRole);
    if (auto* model = qobject_cast<QStandardItemModel*>(box_->model()))
        model->item(index)->setEnabled(false);
}

void SubjectScreenChooser::listScreens() {
    const QSignalBlocker quiet(box_);
    box_->clear();
    addEntry("Off", Choice::Off);
    addEntry("In a window", Choice::Window);
    int number = 0;
    for (QScreen* screen : screens_) {
        const QSize pixels = screen->size() * screen->devicePixelRatio();
        addEntry(QString("Screen %1: %2, %3 x %4")
                     .arg(++number)
                     .arg(screen->name())
                     .arg(pixels.width())
                     .arg(pixels.height()),
                 Choice::Screen, screen);
        if (screen == home_)
            disableEntry(box_->count() - 1,
                         "The main window stands on this screen: move it to another one first");
    }
    if (choice_ == Choice::Screen && !chosenScreen()) {
        addEntry("Screen unplugged: " + chosenName_, Choice::Screen);
        disableEntry(box_->count() - 1, "The display returns when the screen does");
    }
}
