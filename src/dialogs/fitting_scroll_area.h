// The part of a tall form that scrolls when the screen is too small for it.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QScrollArea>

/// As large as its content if there is room; otherwise it scrolls. Forms use it as a promoted
/// QScrollArea.
class FittingScrollArea : public QScrollArea {
    Q_OBJECT

public:
    explicit FittingScrollArea(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    /// As wide as the content: only the height shrinks.
    [[nodiscard]] QSize minimumSizeHint() const override;
};
