// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/waiting_notice.h"

#include "base/paths.h"
#include "base/plain_file.h"
#include "intake/similar_files.h"
#include "run/session/run_session.h"

#include <QAbstractTextDocumentLayout>
#include <QEvent>
#include <QLocale>
#include <QPainter>
#include <QTextOption>
#include <cmath>

namespace {

constexpr qint64 millisecondsPerSecond = 1000;
constexpr qint64 almostSecond = millisecondsPerSecond - 1; ///< rounds up

/// "1:05".
QString minutes(qint64 milliseconds) {
    const qint64 seconds = std::max(milliseconds, qint64(0)) / millisecondsPerSecond;
    return QString("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QChar('0'));
}

/// A long path keeps its start and its end.
QString withoutMiddle(const QString& path) {
    constexpr qsizetype longest = 240;
    if (path.size() <= longest)
        return path;
    return path.left(longest / 3) + QChar(0x2026) + path.right(longest * 2 / 3);
}

QString htmlName(const QString& name) {
    return "<b>" + withoutMiddle(name).toHtmlEscaped() + "</b>";
}

/// All awaited names as far as they are few: the first, and the second or how many more.
QString alternatives(QStringList texts) {
    texts.removeDuplicates();
    QString text = htmlName(texts.value(0));
    if (texts.size() == 2)
        text += " or " + htmlName(texts[1]);
    else if (texts.size() > 2)
        text += QString(" or one of %1 others").arg(texts.size() - 1);
    return text;
}

QString sizeText(const ExpectedFile& file) {
    if (file.size <= 0)
        return {};
    return QString(" (%1%2 bytes)")
        .arg(file.atLeast ? "at least " : "", QLocale(QLocale::English).toString(file.size));
}

/// Of the text at its left and right, in pixels.
int marginOf(const QWidget& widget, bool isBand) {
    return widget.fontMetrics().height() * (isBand ? 1 : 3);
}

QStringList headOf(const FileWait& wait) {
    QStringList names;
    QStringList folders;
    for (const QString& path : wait.file.names) {
        names << paths::fileName(path);
        folders << paths::folderWithSlash(path);
    }
    const QString part = wait.missingPart.isEmpty() ? QString() : wait.missingPart + " in ";
    return {"Waiting for " + part.toHtmlEscaped() + alternatives(names) + sizeText(wait.file),
            "in the folder " + alternatives(folders)};
}

} // namespace

WaitingNotice::WaitingNotice(RunSession& session, const EventPump& pump, QWidget* area)
    : QWidget(area), session_(session), pump_(pump), pace_(pump, 2 * millisecondsPerSecond) {
    setObjectName("WaitingNotice");
    setAccessibleName("What the run waits for");
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere); // paths have no blanks
    text_.setDefaultTextOption(option);
    text_.setDocumentMargin(0);
    hide();
    area->installEventFilter(this);
    timer_.setInterval(int(millisecondsPerSecond));
    connect(&timer_, &QTimer::timeout, this, &WaitingNotice::refresh);
    session_.listeners.add(*this, ListenerPlace::Views);
}

void WaitingNotice::documentsArrived(QtCortivoDoc&) {
    if (session_.phase.canBeStopped())
        timer_.start();
    refresh();
}

// A notice must not outlive its wait until the next second.
void WaitingNotice::runPrepared(QtCortivoDoc&) {
    refresh();
}

bool WaitingNotice::beforeVolume(const VolumeAtHand&) {
    refresh();
    return true;
}

void WaitingNotice::loopEnded(QtCortivoDoc&) {
    refresh();
}

bool WaitingNotice::isLong(const FileWait& wait) const {
    const qint64 elapsed = pump_.milliseconds() - wait.start;
    if (session_.phase.now() == Phase::Preparing)
        return elapsed > millisecondsPerSecond;
    return elapsed > std::max(2 * millisecondsPerSecond, qint64(2 * double(session_.settings.TR)));
}

void WaitingNotice::refresh() {
    const bool isRun = session_.phase.canBeStopped();
    if (!isRun)
        timer_.stop();
    const std::optional<FileWait> wait = session_.intake.fileWait;
    if (!isRun || !wait || !isLong(*wait)) {
        shownStart_ = -1;
        hide();
        return;
    }
    if (shownStart_ != wait->start) {
        shownStart_ = wait->start;
        since_ = QTime::currentTime().addMSecs(int(wait->start - pump_.milliseconds()));
        similar_.clear();
    }
    pace_.whenDue([&] { look(*wait); });
    head_ = headOf(*wait) + timesOf(*wait);
    fit();
    raise();
    show();
    update();
}

void WaitingNotice::look(const FileWait& wait) {
    if (wait.missingPart.isEmpty())
        similar_ = similarFiles(wait.file, pump_);
    else if (fileStamp(wait.file.names.value(0)))
        similar_.clear();
    else
        similar_ = QStringList{"The file has gone, or can not be read"};
}

QStringList WaitingNotice::timesOf(const FileWait& wait) const {
    const qint64 elapsed = pump_.milliseconds() - wait.start;
    const QString times = QString("since %1, for %2; time left: %3")
                              .arg(since_.toString("HH:mm:ss"), minutes(elapsed),
                                   minutes(wait.timeOutMilliseconds - elapsed + almostSecond));
    const QString end = QString(" once %1 come or the time is up.")
                            .arg(wait.missingPart.isEmpty() ? "the file has" : "the lines have");
    const bool isStopped = session_.requests.interruptFlag;
    return {times, (isStopped ? "The run stops" : "The run button stops the run") + end};
}

bool WaitingNotice::isBand() const {
    return session_.phase.now() == Phase::Recording;
}

// The band leaves most of the slices free: lines that find no room in it are left out.
void WaitingNotice::fit() {
    constexpr int mostOfHeight = 3;
    const QRect area = parentWidget()->contentsRect();
    const int margin = marginOf(*this, isBand());
    text_.setDefaultFont(font());
    text_.setTextWidth(area.width() - 2 * margin);
    int height = area.height();
    for (qsizetype lines = similar_.size(); lines >= 0; --lines) {
        text_.setHtml(html(lines));
        height = int(std::ceil(text_.size().height())) + 2 * (margin / 2);
        if (!isBand() || height * mostOfHeight <= area.height())
            break;
    }
    setGeometry(area.x(), area.y(), area.width(), isBand() ? height : area.height());
    setAccessibleDescription(text());
}

QString WaitingNotice::html(qsizetype nrOfSimilar) const {
    QString html;
    if (isBand())
        html = QString("%1 %2<br>%3. %4").arg(head_[0], head_[1], head_[2], head_[3]);
    else
        html = "<big>" + head_[0] + "</big><br>" + head_.mid(1).join("<br>");
    if (nrOfSimilar > 0 && !isBand())
        html += "<p style=\"margin-top:6px\">A look into the folder:";
    for (const QString& line : similar_.first(nrOfSimilar))
        html += QString("<br>%1 ").arg(QChar(0x2022)) + line.toHtmlEscaped();
    return html;
}

bool WaitingNotice::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize && isVisible())
        fit();
    return QWidget::eventFilter(watched, event);
}

void WaitingNotice::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(isBand() ? QPalette::Window : QPalette::Base));
    const int margin = marginOf(*this, isBand());
    const int top = isBand() ? margin / 2 : height() / 4;
    const int bar = fontMetrics().height() / 4;
    const int barHeight = isBand() ? height() : int(text_.size().height());
    painter.fillRect(margin - 3 * bar, isBand() ? 0 : top, bar, barHeight,
                     palette().color(QPalette::Highlight));
    painter.translate(margin, top);
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette = palette();
    context.palette.setColor(QPalette::Text, palette().color(QPalette::WindowText));
    text_.documentLayout()->draw(&painter, context);
}
