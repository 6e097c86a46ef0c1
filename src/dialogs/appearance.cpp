// SPDX-License-Identifier: GPL-3.0-or-later
#include "dialogs/appearance.h"

#include <QFontDatabase>
#include <QPainter>
#include <QScreen>
#include <QWidget>

// scripts/render_art has the same colours.
namespace {
const QColor background(0x0e, 0x14, 0x1b);
const QColor panel(0x15, 0x1d, 0x27);
const QColor control(0x20, 0x2b, 0x38);
const QColor text(0xe3, 0xea, 0xf0);
const QColor disabledText(0x66, 0x75, 0x85);
const QColor accent(0x2f, 0xc4, 0xb2);
} // namespace

QPalette darkPalette() {
    QPalette palette(control, background);
    palette.setColor(QPalette::Window, panel);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, background);
    palette.setColor(QPalette::AlternateBase, panel);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::PlaceholderText, disabledText);
    palette.setColor(QPalette::Button, control);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::ToolTipBase, control);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, background);
    palette.setColor(QPalette::Link, accent);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, disabledText);
    return palette;
}

QColor warningColor() {
    return {0xff, 0xb4, 0x54};
}

QColor toQColor(const RgbColor& color) {
    const auto channel = [](int value) { return std::clamp(value, 0, 255); };
    return {channel(color.red), channel(color.green), channel(color.blue)};
}

QIcon colorIcon(const RgbColor& color, QSize size) {
    QPixmap pixmap(size);
    pixmap.fill(toQColor(color));
    QPainter painter(&pixmap);
    painter.setPen(QColor(160, 160, 160));
    painter.drawRect(0, 0, size.width() - 1, size.height() - 1);
    painter.end();
    QIcon icon(pixmap);
    icon.addPixmap(pixmap, QIcon::Selected); // the style would tint it
    return icon;
}

QFont scaledFont(QFont font, double factor) {
    if (font.pixelSize() > 0)
        font.setPixelSize(std::max(int(font.pixelSize() * factor), 1));
    else
        font.setPointSizeF(font.pointSizeF() * factor);
    return font;
}

QFont numberFont(const QFont& font, double factor) {
    QFont numbers = scaledFont(font, factor);
    numbers.setFamilies(QFontDatabase::systemFont(QFontDatabase::FixedFont).families());
    return numbers;
}

QString windowStyleSheet() {
    return QStringLiteral(R"(
#ImageView { background: #05080b; border: 0; }
#TitleFrm, #MenuBarFrm, #WindowButtonsFrm, #ViewButtonsFrm, #InputPanelFrm {
    background: transparent; border: 0; }
QMenuBar { background: transparent; }
QMenuBar::item { padding: 5px 12px; border-radius: 5px; color: #e3eaf0; background: transparent; }
QMenuBar::item:selected { background: #202b38; }
QMenu { background: #151d27; border: 1px solid #314153; padding: 4px; }
QMenu::item { padding: 6px 28px 6px 24px; border-radius: 4px; }
QMenu::item:selected { background: #24584f; color: #ffffff; }
QMenu::item:disabled { color: #667585; }
QMenu::separator { height: 1px; background: #2a3746; margin: 4px 8px; }
#ContrastBackgroundGrpBx { border: 0; background: transparent; color: #9fb0c0; }
#ContrastBackgroundGrpBx::title { subcontrol-origin: padding; left: 12px; top: 8px; }
#ContrastList { background: #0e141b; border: 1px solid #2a3746; border-radius: 6px; }
#ContrastList:focus { border-color: #2fc4b2; }
#ContrastList::item { height: 26px; }
#ContrastList::item:selected { background: #202b38; color: #e3eaf0; }
QHeaderView::section { background: #151d27; color: #9fb0c0; border: 0; padding: 4px; }
#LogInfos { background: transparent; border: 0; padding: 0 8px; }
QToolButton, QPushButton { background: #202b38; border: 1px solid #314153; border-radius: 6px;
    color: #e3eaf0; padding: 5px; }
QToolButton:hover, QPushButton:hover { border-color: #2fc4b2; }
QToolButton:focus, QPushButton:focus { border-color: #2fc4b2; outline: 0; }
QToolButton:pressed, QPushButton:pressed { background: #18212b; }
QToolButton:checked, QPushButton:checked { background: #1f4b47; border-color: #2fc4b2; }
QToolButton:disabled, QPushButton:disabled { background: #151d27; border-color: #232f3c;
    color: #667585; }
#RecordBtn { padding: 2px; }
#TimeCoursesContainer QToolButton { padding: 1px 7px; border-radius: 4px; }
#TimeCoursesContainer QToolBar QToolButton { padding: 1px 4px; }
#TimeCoursesContainer QToolBar { border: 0; padding: 0; spacing: 2px; background: transparent; }
#TimeCoursesContainer #ShowOptionsBtn { padding: 0 4px; }
#TimeCoursesContainer #qt_toolbar_ext_button { padding: 0; background: #8495a6; }
QCheckBox { spacing: 8px; }
QCheckBox::indicator { width: 20px; height: 16px; image: url(:/images/contrast_off.png); }
QCheckBox::indicator:checked { image: url(:/images/contrast_on.png); }
QCheckBox::indicator:checked:disabled { image: url(:/images/contrast_still.png); }
QCheckBox:focus, QRadioButton:focus { color: #2fc4b2; }
QRadioButton { spacing: 8px; }
QRadioButton::indicator { width: 12px; height: 12px; border: 1px solid #8495a6;
    border-radius: 7px; background: #0e141b; }
QRadioButton::indicator:checked { border-color: #2fc4b2; background: qradialgradient(cx: 0.5,
    cy: 0.5, radius: 0.5, fx: 0.5, fy: 0.5, stop: 0 #2fc4b2, stop: 0.55 #2fc4b2,
    stop: 0.7 #0e141b); }
QRadioButton::indicator:disabled { border-color: #3b4a5a; }
QRadioButton::indicator:checked:disabled { background: qradialgradient(cx: 0.5, cy: 0.5,
    radius: 0.5, fx: 0.5, fy: 0.5, stop: 0 #667585, stop: 0.55 #667585, stop: 0.7 #0e141b); }
QDialog QGroupBox { border: 1px solid #2a3746; border-radius: 6px; margin-top: 12px;
    padding-top: 8px; }
QDialog QGroupBox:focus { border-color: #2fc4b2; }
QDialog QGroupBox::title { subcontrol-origin: margin; left: 10px; padding: 0 4px; }
QDialog QGroupBox::indicator { width: 20px; height: 16px; image: url(:/images/contrast_off.png); }
QDialog QGroupBox::indicator:checked { image: url(:/images/contrast_on.png); }
QDialog QPushButton { min-width: 64px; }
QDialog QPushButton:default { background: #1f4b47; }
#WindowButtonsFrm QToolButton { background: transparent; border-color: transparent; }
#WindowButtonsFrm QToolButton:hover, #WindowButtonsFrm QToolButton:focus {
    border-color: #2fc4b2; }
)");
}

QString wrappedToolTip(const QString& toolTip) {
    const QString paragraph = "<p>";
    if (toolTip.isEmpty() || toolTip.startsWith(paragraph)) // a part has wrapped its own
        return toolTip;
    return paragraph + toolTip.toHtmlEscaped() + "</p>";
}

void wrapToolTips(QWidget& root) {
    for (QWidget* widget : root.findChildren<QWidget*>())
        widget->setToolTip(wrappedToolTip(widget->toolTip()));
}

QRect screenArea(const QWidget* widget) {
    const QScreen* screen = widget->screen();
    return screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
}
