#pragma once

#include <QBasicTimer>
#include <QProgressBar>

namespace vantrel {

/// The turning mark of work without a known end. It turns only while it is visible, and stands still where
/// the desktop has animations switched off.
class Spinner : public QProgressBar {
    Q_OBJECT

public:
    enum class Size { mini, small };

    /// `name` says to assistive technology what is going on.
    Spinner(Size size, const QString &name, QWidget *parent = nullptr);

    [[nodiscard]] bool isTurning() const { return m_timer.isActive(); }

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void initStyleOption(QStyleOptionProgressBar *option) const override;

private:
    QBasicTimer m_timer;
    int m_step = 0; ///< not the bar's value: assistive technology would read out every step
};

} // namespace vantrel
