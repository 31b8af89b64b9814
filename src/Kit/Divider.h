#pragma once

#include "Theme/AppTheme.h"

#include <QWidget>

namespace vantrel {

/// A line of one layout pixel, `stroke` unless another colour is given.
class Divider : public QWidget {
    Q_OBJECT

public:
    explicit Divider(Qt::Orientation orientation = Qt::Horizontal,
                     const ThemeColor &color = AppTheme::stroke(), QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    ThemeColor m_color;
};

} // namespace vantrel
