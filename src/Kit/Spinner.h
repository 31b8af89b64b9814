#pragma once

#include <QTimer>
#include <QWidget>

namespace vantrel {

/// The turning mark of work without a known end. It turns only while it is visible, and stands still where
/// the desktop has animations switched off.
class Spinner : public QWidget {
    Q_OBJECT

public:
    enum class Size { mini, small };

    /// `name` says to assistive technology what is going on.
    Spinner(Size size, const QString &name, QWidget *parent = nullptr);

    [[nodiscard]] bool isTurning() const { return m_timer.isActive(); }

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QTimer m_timer;
    int m_step = 0;
};

} // namespace vantrel
