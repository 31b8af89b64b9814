#include "support/Widgets.h"

#include "Kit/AppStyle.h"
#include "Kit/Canvas.h"
#include "Kit/IconButton.h"
#include "Kit/RenderScheduler.h"
#include "Kit/Shapes.h"
#include "Kit/Spinner.h"
#include "Kit/Symbol.h"
#include "Kit/TextField.h"
#include "Kit/TextLabel.h"
#include "Kit/WidthTable.h"
#include "Theme/AppTheme.h"

namespace vantrel {
namespace {

using namespace Qt::StringLiterals;

QImage paintedSymbol(const Symbol &symbol, QSize size, double ratio, const QColor &color) {
    return painted(size, ratio,
                   [&](QPainter &painter) { symbol.paint(painter, QRectF(QPointF(), QSizeF(size)), color); });
}

QString nameOf(QWidget &widget) {
    return accessible(&widget)->text(QAccessible::Name);
}

TEST(SymbolTests, everySymbolIsDrawnWithinItsBoundsAndCentred) {
    const QStringList names =
        u"internaldrive arrow.down.circle camera film photo music.note doc message waveform iphone "
        "arrow.clockwise trash folder.fill doc.fill xmark chevron.left chevron.right chevron.down chevron.up "
        "house folder folder.badge.plus list.bullet square.grid.2x2 magnifyingglass "
        "xmark.circle.fill square minus.square.fill checkmark.square.fill circle "
        "checkmark.circle.fill doc.zipper doc.text sun.max moon info.circle "
        "pause.fill play.fill doc.on.doc"_s.split(u' ');
    for (const QString &name : names) {
        SCOPED_TRACE(name.toStdString());
        ASSERT_TRUE(Symbol::exists(name));
        for (const double ratio : {1.0, 2.0, 3.0}) {
            const Symbol symbol{name, 13, Weight::bold};
            const int side = int(symbol.naturalSize().width() * ratio);
            const int margin = int(10 * ratio);
            const QSize area = symbol.naturalSize().toSize() + QSize(20, 20);
            const QRect ink = inkBounds(paintedSymbol(symbol, area, ratio, Qt::black));
            EXPECT_TRUE(QRect(margin, margin, side, side).contains(ink)) << ratio;
            EXPECT_GT(qMax(ink.width(), ink.height()), side * 0.6) << ratio;
            const QPointF offset =
                QRectF(ink).center() - QRectF(0, 0, side, side).center() - QPointF(margin, margin);
            EXPECT_LE(qMax(qAbs(offset.x()), qAbs(offset.y())), side * 0.08) << ratio;
        }
    }
    EXPECT_FALSE(Symbol::exists(u"no.such.symbol"_s));
    EXPECT_FALSE(Symbol::exists(QString()));
    EXPECT_DEBUG_DEATH(paintedSymbol({u"no.such.symbol"_s}, {20, 20}, 1, Qt::black), "no symbol is named");
}

TEST(SymbolTests, tintsWithExactlyTheColourIsCutThroughAndHasWeights) {
    for (const QColor &color : {QColor(240, 130, 20), QColor(0, 0, 0, 51)}) {
        // The middle of the minus lets the background through; the ground beside it does not.
        const QImage minus = paintedSymbol({u"minus.square.fill"_s, 28}, {40, 40}, 3, color);
        EXPECT_EQ(minus.pixelColor(60, 60).alpha(), 0);
        EXPECT_EQ(minus.pixelColor(60, 40), color);
    }
    double lighter = 0;
    for (const Weight weight : {Weight::regular, Weight::medium, Weight::semibold, Weight::bold}) {
        const QImage image = paintedSymbol({u"xmark"_s, 13, weight}, {20, 20}, 3, Qt::black);
        double ink = 0;
        for (int pixel = 0; pixel < 60 * 60; ++pixel)
            ink += image.pixelColor(pixel % 60, pixel / 60).alphaF();
        EXPECT_GT(ink, std::exchange(lighter, ink));
    }
}

TEST(TextTests, halfPixelsOfFontSizesCount) {
    const QString text(40, u'n');
    const double wide = TextStyle{100, Weight::medium}.width(text) / 100;
    for (const double size : {9.5, 10.5, 11.5, 12.0, 12.5}) {
        const TextStyle style{size, Weight::medium};
        EXPECT_NEAR(style.width(text) / size / wide, 1, 0.012) << size;
    }
    const TextStyle fixed{12.5, Weight::semibold, FontDesign::monospaced};
    EXPECT_NEAR(fixed.width(u"iiii"_s), fixed.width(u"WWWW"_s), 0.01);
}

TEST(TextTests, elisionNeverExceedsItsWidth) {
    const TextStyle style{11, Weight::medium};
    const QString emoji = u"\U0001F600"_s.repeated(60);
    const QString path = u"/home/somebody/Documents/a very long folder/another one/holiday.jpg"_s;
    for (const QString &text : {path, emoji, QString(255, u'W'), u"שלום עולם "_s.repeated(20)}) {
        for (const Elision elision : {Elision::end, Elision::middle}) {
            for (double width = 0; width < 200; width += 7)
                EXPECT_LE(style.width(elidedText(text, style, width, elision)), width) << text.toStdString();
        }
    }
    const QString middle = elidedText(path, style, 150, Elision::middle);
    EXPECT_TRUE(middle.startsWith(u"/home"_s) && middle.endsWith(u".jpg"_s)) << middle.toStdString();
    const QString end = elidedText(path, style, 150, Elision::end);
    EXPECT_TRUE(end.startsWith(u"/home"_s) && end.endsWith(u'…')) << end.toStdString();
    EXPECT_EQ(elidedText(u"short"_s, style, 150), u"short"_s);
}

TEST(TextTests, aWidthTableKnowsHowFarItIsFromTheWidth) {
    const TextStyle style{11, Weight::semibold};
    WidthTable table(style);
    for (const QString &text :
         {u"IMG_20240501_103015.jpg"_s, u"AVATAR To We LTy.png"_s, u"a fi ffi->x2x3 <= 10:30 (@Home).txt"_s,
          u"PANO-(1)-A:B@C.HEIC"_s, u"  blanks  "_s, u"Größe Ελλάδα Москва.jpg"_s,
          u"日本語の写真 한국어.png"_s, u"e\u0301te\u0301 \u1112\u1161\u11AB.txt"_s, u"صورة من العطلة.jpg"_s,
          u"छुट्टी की तस्वीर"_s, u"👨‍👩‍👧‍👦😀.jpg"_s, u"a\u202Eb\nc\u200Bd"_s,
          QString(3, QChar(0xD800))}) {
        SCOPED_TRACE(qPrintable(text));
        const WidthTable::Width width = table.widthOf(text);
        QString trimmed = text;
        while (trimmed.endsWith(u' '))
            trimmed.chop(1);
        EXPECT_NEAR(width.about, style.width(trimmed), width.within);
    }
    EXPECT_LT(table.widthOf(u"IMG_20240501_103015.jpg"_s).within, 1) << "and names like this it knows";
    EXPECT_EQ(table.widthOf(u""_s).about, 0);
}

TEST(TextTests, namesCannotDeceive) {
    const std::pair<QString, QString> cases[] = {
        {u"photo\u202Egpj.exe"_s, u"photo\uFFFDgpj.exe"_s},
        {u"\u2066a\u2069"_s, u"\uFFFDa\uFFFD"_s},
        {u"a.txt\u200E|\u200F|\u061C"_s, u"a.txt\uFFFD|\uFFFD|\uFFFD"_s},
        {u"one\ntwo\r\nthree\u2028four"_s, u"one↵two↵three↵four"_s},
        {u"bell\a tab\t nul"_s + QChar(0), u"bell\uFFFD tab\uFFFD nul\uFFFD"_s},
        {u"שלום.txt"_s, u"שלום.txt"_s},
        {u"café \U0001F600"_s, u"café \U0001F600"_s},
    };
    for (const auto &[text, shown] : cases)
        EXPECT_EQ(displayText(text), shown);
    const auto drawn = [](const QString &text) {
        return painted({80, 20}, 1, [&](QPainter &painter) {
            paintText(painter, {0, 0, 80, 20}, text, {12.5}, Qt::black);
        });
    };
    for (const auto &[typed, sign] : {std::pair(u"a->b"_s, u"a→b"_s),
                                      {u"a<-b"_s, u"a←b"_s},
                                      {u"a=>b"_s, u"a⇒b"_s},
                                      {u"3x4"_s, u"3×4"_s}}) {
        EXPECT_NE(drawn(typed), drawn(sign)) << "the font makes a sign of " << typed.toStdString();
        double width = 0;
        for (const QChar character : typed)
            width += TextStyle{12.5}.width(character);
        EXPECT_NEAR(TextStyle{12.5}.width(typed), width, 0.5) << typed.toStdString();
    }
}

TEST(ShapeTests, linesLieInsideAndAreCrisp) {
    for (const double ratio : {1.0, 2.0, 3.0}) {
        SCOPED_TRACE(ratio);
        const int line = int(ratio);
        const QImage image = painted({60, 60}, ratio, [](QPainter &painter) {
            paintCard(painter, QRectF(10, 10, 40, 40), 10, Qt::white, Qt::black);
        });
        EXPECT_EQ(inkBounds(image), QRect(10 * line, 10 * line, 40 * line, 40 * line));
        const int middle = 30 * line;
        for (int depth = 0; depth < line; ++depth)
            EXPECT_EQ(image.pixelColor(10 * line + depth, middle), QColor(Qt::black));
        EXPECT_EQ(image.pixelColor(11 * line, middle), QColor(Qt::white));
    }
}

TEST(RenderTests, rendersOncePerPassHoweverManySignals) {
    QProgressBar source;
    int renders = 0;
    RenderScheduler rendering([&] { ++renders; });
    rendering.watch(&source, &QObject::objectNameChanged, &QProgressBar::valueChanged);
    const auto rendersAfter = [&](int value) {
        source.setObjectName(QString::number(value));
        source.setValue(value);
        QCoreApplication::processEvents();
        return renders;
    };
    EXPECT_EQ(rendersAfter(1), 1);
    source.setValue(50);
    rendering.renderNow();
    QCoreApplication::processEvents();
    EXPECT_EQ(renders, 2) << "a render at once takes the place of the one that was due";
    {
        RenderScheduler gone([&] { ADD_FAILURE() << "of a destroyed view"; });
        gone.watch(&source, &QProgressBar::valueChanged);
        source.setValue(51);
    }
    EXPECT_EQ(rendersAfter(52), 3);
}

TEST(ControlTests, anIconButtonIsNamedByItsHelpAndPressedByMouseAndKeys) {
    IconButton button({24, 24}, 5);
    button.setHelp(u"Go back"_s);
    EXPECT_EQ(nameOf(button), u"Go back"_s);
    EXPECT_TRUE(button.toolTip().contains(u"Go back"_s));
    button.setLook({.symbol = {u"house"_s, 11}});
    button.show();
    QSignalSpy clicks(&button, &QAbstractButton::clicked);
    for (const bool isEnabled : {false, true}) {
        button.setEnabled(isEnabled);
        click(&button);
        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter})
            QTest::keyClick(&button, key);
        EXPECT_EQ(clicks.count(), isEnabled ? 4 : 0);
    }
    button.setCheckable(true);
    button.click();
    EXPECT_FALSE(button.isChecked()) << "only the model checks a button";
}

TEST(ControlTests, anIconButtonShowsItsStates) {
    QWidget window;
    IconButton button({24, 24}, 5, &window);
    button.setLook({.symbol = {u"house"_s, 8}, .fill = ThemeColor(Qt::red), .disabledOpacity = 0.45});
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    button.clearFocus();
    const QImage plain = button.grab().toImage();
    EXPECT_EQ(plain.pixelColor(12, 20), QColor(Qt::red));
    button.setFocus(Qt::TabFocusReason);
    EXPECT_NE(button.grab().toImage().pixelColor(12, 0), plain.pixelColor(12, 0))
        << "reached with the keyboard";
    button.setEnabled(false);
    EXPECT_NE(button.grab().toImage().pixelColor(12, 20), plain.pixelColor(12, 20));
}

TEST(ControlTests, aLabelYieldsAndIsReadWhole) {
    QWidget parent;
    auto *layout = new QHBoxLayout(&parent);
    layout->setContentsMargins({});
    auto *label = new TextLabel({12.5, Weight::medium}, AppTheme::ink());
    layout->addWidget(label);
    label->setText(u"A name that is far too long for the place it has been given"_s);
    parent.show();
    const auto isElidedAt = [&](QSize size) {
        parent.resize(size);
        QCoreApplication::processEvents();
        EXPECT_EQ(parent.size(), size);
        return label->isElided();
    };
    EXPECT_TRUE(isElidedAt({100, 20}));
    EXPECT_EQ(nameOf(*label), label->text());
    EXPECT_EQ(accessible(label)->role(), QAccessible::StaticText);
    EXPECT_FALSE(isElidedAt(label->sizeHint()));
    label->setMaximumLines(2);
    EXPECT_EQ(label->heightForWidth(220), 2 * label->sizeHint().height());
    EXPECT_EQ(label->heightForWidth(2000), label->sizeHint().height());
    EXPECT_TRUE(isElidedAt({100, 40})) << "two lines are not enough either";
}

TEST(ControlTests, aFieldsTextHasItsSizeAndIsHitWhereItIsSeen) {
    constexpr TextStyle style{12.5, Weight::medium};
    TextField field(style);
    field.setStyleSheet(u"background: white"_s);
    field.resize(300, 24);
    field.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&field));
    const QString text = u"mmmmmmmmmmmmmmmm|"_s;
    field.setText(text);
    const auto lastInk = [&] {
        const QImage image = field.grab().toImage();
        int last = 0;
        for (int x = 0; x < image.width(); ++x)
            for (int y = 0; y < image.height(); ++y)
                last = image.pixelColor(x, y).lightness() < 160 ? x : last;
        return last / image.devicePixelRatio();
    };
    const double end = style.width(text);
    EXPECT_NEAR(lastInk(), end, 3);
    for (const qsizetype letter : {3, 8, 15}) {
        QTest::mouseClick(&field, Qt::LeftButton, {}, QPoint(qRound(style.width(text.left(letter))), 12));
        EXPECT_EQ(field.cursorPosition(), letter);
    }
    // What does not fit fills the field, and its end is where the caret is.
    field.setText(QString(100, u'm'));
    EXPECT_GT(lastInk(), field.width() - 15);
    QTest::mouseClick(&field, Qt::LeftButton, {}, QPoint(field.width() - 2, 12));
    EXPECT_GE(field.cursorPosition(), 99);
}

TEST(ControlTests, aProgressBarFillsItsFractionAndNoMore) {
    for (const auto &[fraction, filled] :
         {std::pair(0.0, 0), {0.5, 50}, {1.0, 100}, {7.0, 100}, {-1.0, 0}, {qQNaN(), 0}}) {
        SCOPED_TRACE(fraction);
        const QImage image = painted({100, 6}, 1, [fraction = fraction](QPainter &painter) {
            paintProgress(painter, {0, 0, 100, 6}, fraction, Qt::red, Qt::blue);
        });
        for (const int x : {3, 48, 52, 96})
            EXPECT_EQ(image.pixelColor(x, 3), QColor(x < filled ? Qt::red : Qt::blue)) << x;
    }
    QProgressBar bar;
    bar.resize(100, 6);
    bar.setRange(0, 1000);
    bar.setValue(300);
    const QImage image = bar.grab().toImage();
    EXPECT_EQ(image.pixel(28, 3), QColor(AppTheme::accent()).rgb());
    EXPECT_NE(image.pixel(32, 3), QColor(AppTheme::accent()).rgb());
}

TEST(ControlTests, aSpinnerTurnsOnlyWhileItIsSeen) {
    QWidget window;
    auto *spinner = new Spinner(Spinner::Size::small, u"Loading"_s, &window);
    EXPECT_FALSE(spinner->isTurning());
    window.show();
    EXPECT_TRUE(spinner->isTurning());
    const QImage before = spinner->grab().toImage();
    EXPECT_GT(inkBounds(before).width(), 8);
    EXPECT_TRUE(QTest::qWaitFor([&] { return spinner->grab().toImage() != before; }));
    window.hide();
    EXPECT_FALSE(spinner->isTurning());
    EXPECT_EQ(nameOf(*spinner), u"Loading"_s);
    EXPECT_EQ(accessible(spinner)->role(), QAccessible::ProgressBar);
    EXPECT_TRUE(accessible(spinner)->state().busy);

    AppStyle::setReducedMotion(true);
    window.show();
    EXPECT_FALSE(spinner->isTurning()) << "animations are switched off";
    AppStyle::setReducedMotion(false);
}

TEST(ControlTests, aScrollBarLiesOverItsContentWhileThereIsSomethingToScroll) {
    QScrollArea area;
    area.setFrameShape(QFrame::NoFrame);
    area.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area.setWidgetResizable(true);
    auto *content = new QWidget;
    area.setWidget(content);
    area.resize(200, 300);
    area.show();
    const QScrollBar *bar = area.verticalScrollBar();
    EXPECT_FALSE(bar->isVisible());

    content->setMinimumHeight(600);
    ASSERT_TRUE(QTest::qWaitFor([&] { return bar->isVisible(); }));
    EXPECT_EQ(content->width(), 200) << "it takes no width";
    EXPECT_EQ(QRect(bar->mapTo(&area, QPoint()), bar->size()), QRect(190, 0, 10, 300));
    const auto thumb = [&] {
        const QImage image = painted(bar->size(), 1, [&](QPainter &painter) {
            area.verticalScrollBar()->render(&painter, {}, {}, QWidget::RenderFlags());
        });
        return inkBounds(image);
    };
    EXPECT_EQ(thumb(), QRect(2, 2, 6, 148)) << "half of what there is";

    // Held below its middle, it goes where the mouse goes; a click beside it turns a page.
    auto *held = area.verticalScrollBar();
    QTest::mousePress(held, Qt::LeftButton, {}, QPoint(5, 100));
    QTest::mouseMove(held, QPoint(5, 174));
    QTest::mouseRelease(held, Qt::LeftButton, {}, QPoint(5, 174));
    EXPECT_NEAR(bar->value(), 150, 1);
    EXPECT_NEAR(thumb().top(), 2 + 74, 1);
    click(held, QPoint(5, 290));
    EXPECT_EQ(bar->value(), 300);

    content->setMinimumHeight(100'000);
    ASSERT_TRUE(QTest::qWaitFor([&] { return bar->maximum() > 1000; }));
    EXPECT_NEAR(thumb().height(), 28, 1) << "never too small to be held";
}

/// A view of the application's own: it paints, and connects nothing.
class Ground : public QWidget {
protected:
    void paintEvent(QPaintEvent *) override { QPainter(this).fillRect(rect(), AppTheme::canvas()); }
};

TEST(ControlTests, everyKindRepaintsInTheNewColours) {
    QWidget window;
    auto *icon = new IconButton({24, 24}, 5);
    icon->setLook({.symbol = {u"house"_s, 11}, .fill = AppTheme::surface()});
    auto *label = new TextLabel({12.5}, AppTheme::ink());
    label->setText(u"Text"_s);
    auto *scroll = new QScrollBar(Qt::Vertical);
    scroll->setRange(0, 100);
    QList<QWidget *> kinds{icon, label, new QProgressBar, scroll, new Card(10), new Divider, new Ground};
    kinds << new Spinner(Spinner::Size::small, u"Busy"_s) << new QPushButton(u"Close"_s)
          << new QLabel(u"A label of the toolkit's"_s);
    int x = 0;
    for (QWidget *widget : kinds) {
        widget->setParent(&window);
        widget->setGeometry(x, 0, 60, 24);
        x += 60;
    }
    window.resize(x, 30);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QCoreApplication::processEvents();
    QList<QImage> before;
    std::vector<std::unique_ptr<PaintedRegion>> painted; // what reaches the screen
    for (QWidget *widget : kinds) {
        before.append(widget->grab().toImage());
        painted.push_back(std::make_unique<PaintedRegion>(widget));
    }
    AppTheme::setScheme(ColorScheme::dark);
    for (qsizetype i = 0; i < kinds.size(); ++i) {
        const char *name = kinds[i]->metaObject()->className();
        EXPECT_TRUE(QTest::qWaitFor([&] { return !painted[size_t(i)]->region.isEmpty(); })) << name;
        EXPECT_NE(kinds[i]->grab().toImage(), before[i]) << name;
    }
    AppTheme::setScheme(ColorScheme::light);
}

TEST(ThemeTests, highContrastMakesInksAndLinesStrong) {
    // As WCAG counts it: 7 is its strictest demand on texts, 3 that on lines.
    const auto brightness = [](const QColor &color) {
        const auto linear = [](double part) {
            return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF()) + 0.05;
    };
    const auto ratio = [&](const QColor &ink, const QColor &ground) {
        QImage pixel(1, 1, QImage::Format_RGB32);
        pixel.fill(ground);
        QPainter(&pixel).fillRect(pixel.rect(), ink);
        const auto [low, high] = std::minmax({brightness(pixel.pixelColor(0, 0)), brightness(ground)});
        return high / low;
    };
    const struct {
        ThemeColor color;
        double least;
    } colors[] = {{AppTheme::ink(), 7},        {AppTheme::inkSecondary(), 7}, {AppTheme::inkTertiary(), 7},
                  {AppTheme::danger(), 4.5},   {AppTheme::stroke(), 3},       {AppTheme::strokeStrong(), 3},
                  {AppTheme::paneStroke(), 3}, {AppTheme::focusRing(), 3}};
    for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark}) {
        AppTheme::setScheme(scheme);
        for (const auto &[color, least] : colors) {
            AppTheme::setContrast(Contrast::normal);
            const QColor usual = color;
            AppTheme::setContrast(Contrast::high);
            EXPECT_NE(QColor(color), usual);
            for (const ThemeColor &ground :
                 {AppTheme::surface(), AppTheme::canvas(), AppTheme::sidebar(), AppTheme::titleBar()})
                EXPECT_GE(ratio(color, ground), least) << QColor(color).name(QColor::HexArgb).toStdString();
        }
        AppTheme::setContrast(Contrast::normal);
    }
    AppTheme::setScheme(ColorScheme::light);
}

TEST(TextTests, appearAsLargeAsTheUserWants) {
    constexpr TextStyle style{12.5, Weight::medium};
    QLineEdit field;
    setTextStyle(&field, {13});
    TextLabel label(style, AppTheme::ink());
    label.setText(u"Text"_s);
    const double width = style.width(u"Text"_s);
    for (const auto &[wanted, scale] :
         {std::pair(1.25, 1.25), {1.5, 1.5}, {9.0, 2.0}, {0.1, 0.5}, {1.0, 1.0}}) {
        AppStyle::setTextScale(wanted);
        EXPECT_NEAR(style.width(u"Text"_s), scale * width, 0.1);
        EXPECT_EQ(field.font().pixelSize(), qRound(13 * scale));
        EXPECT_EQ(QApplication::font().pixelSize(), qRound(13 * scale));
        EXPECT_EQ(label.sizeHint(), QSize(qCeil(scale * width) + 1, style.lineHeight()));
        const QImage picture = painted({300, 80}, 1, [&](QPainter &painter) {
            paintText(painter, {0, 0, 300, 80}, u"Text"_s, style, Qt::black);
        });
        EXPECT_NEAR(inkBounds(picture).width(), scale * width, 3) << scale;
    }
}

TEST(ToolTipTests, areBesideTheirControlAndOverNoOther) {
    constexpr QRect window(0, 0, 800, 600);
    constexpr QSize tip(200, 24);
    const QRect arrow(383, 300, 34, 34);
    const QRect belowIt = arrow.translated(0, 44), aboveIt = arrow.translated(0, -44);
    const QRect row(20, 60, 200, 32);
    // The control, what it is centred on, the others, and where the tip's top left comes to lie.
    const std::tuple<const char *, QRect, int, QList<QRect>, QPoint> cases[] = {
        {"below", arrow, 400, {}, {300, 337}},
        {"above, since there is another below", arrow, 400, {belowIt}, {300, 273}},
        {"beside, between two", arrow, 400, {belowIt, aboveIt}, {420, 304}},
        {"of a row among rows", row, 100, {row.translated(0, 32), row.translated(0, -32)}, {223, 63}},
        {"at the right edge", {760, 10, 34, 34}, 777, {}, {600, 47}},
        {"at the lower edge", {20, 570, 34, 24}, 37, {}, {0, 543}},
        {"with no free place, below", arrow, 400, {window}, {300, 337}},
        {"of a window full of one control", window, 400, {}, {300, 576}},
    };
    for (const auto &[what, part, x, controls, expected] : cases)
        EXPECT_EQ(placeToolTip(tip, part, x, window, controls), expected) << what;
}

class ShownToolTipTests : public ::testing::Test {
protected:
    ShownToolTipTests() {
        window.resize(600, 400);
        for (int i = 0; i < 2; ++i) {
            buttons[i] = new QPushButton(&window);
            buttons[i]->setGeometry(280, 150 + 44 * i, 34, 34);
        }
        window.show();
    }
    static void rest(QWidget *on) {
        QHelpEvent event(QEvent::ToolTip, {5, 5}, on->mapToGlobal(QPoint(5, 5)));
        QCoreApplication::sendEvent(on, &event);
    }
    QWidget *tip() const {
        for (QWidget *child : window.findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly)) {
            if (accessible(child)->role() == QAccessible::ToolTip)
                return child;
        }
        return nullptr;
    }

    QWidget window;
    QPushButton *buttons[2] = {};
};

TEST_F(ShownToolTipTests, oneLineWhereItFitsAndAtMostHalfTheWindow) {
    const QString markup = u"<b>Transfer selected Android items</b> &amp;"_s;
    int oneLine = 0;
    for (const QString &text : {u"Back"_s, markup, QString(240, u'w'), u"a word "_s.repeated(60)}) {
        buttons[0]->setToolTip(text);
        rest(buttons[0]);
        ASSERT_TRUE(tip()) << text.toStdString();
        EXPECT_EQ(accessible(tip())->text(QAccessible::Name), text);
        EXPECT_LE(tip()->width(), window.width() / 2 + 12) << "with its shadow";
        EXPECT_TRUE(window.rect().contains(tip()->geometry()));
        EXPECT_FALSE(tip()->geometry().adjusted(6, 6, -6, -6).intersects(buttons[1]->geometry()));
        if (!oneLine)
            oneLine = tip()->height();
        EXPECT_EQ(tip()->height() > oneLine, text.size() > 100) << text.toStdString();
    }
    EXPECT_EQ(window.findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly).size(), 3);
    const int line = TextStyle{.size = 11.5, .weight = Weight::medium}.lineHeight();
    buttons[0]->setToolTip(u"One\n\nand another"_s);
    rest(buttons[0]);
    EXPECT_EQ(tip()->height(), oneLine + 2 * line) << "a line feed begins a line";
}

TEST_F(ShownToolTipTests, areNotShownAgainForWhatHasBeenPressed) {
    for (QPushButton *button : buttons)
        button->setToolTip(u"Back"_s);
    rest(buttons[0]);
    QTest::mouseClick(buttons[0], Qt::LeftButton);
    rest(buttons[0]);
    EXPECT_TRUE(ToolTips::text().isEmpty());
    rest(buttons[1]);
    EXPECT_FALSE(ToolTips::text().isEmpty()) << "another one";
    rest(buttons[0]);
    EXPECT_TRUE(ToolTips::text().isEmpty());
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(buttons[0], &leave);
    rest(buttons[0]);
    EXPECT_FALSE(ToolTips::text().isEmpty()) << "the mouse is back";

    QHelpEvent late(QEvent::ToolTip, {5, 5}, buttons[1]->mapToGlobal(QPoint(5, 5)));
    ToolTips::show({}, buttons[0], {});
    buttons[1]->move(10, 10);
    QCoreApplication::sendEvent(buttons[1], &late);
    EXPECT_TRUE(ToolTips::text().isEmpty()) << "it has moved from under the mouse";
}

TEST_F(ShownToolTipTests, goAsSoonAsAnythingHappens) {
    buttons[0]->setToolTip(u"Back"_s);
    QWheelEvent wheel({5, 5}, {5, 5}, {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
    QMouseEvent press(QEvent::MouseButtonPress, {5, 5}, {5, 5}, Qt::LeftButton, Qt::LeftButton, {});
    QMouseEvent outside(QEvent::MouseMove, {5, 40}, {5, 40}, Qt::NoButton, {}, {});
    QMouseEvent inside(QEvent::MouseMove, {9, 9}, {9, 9}, Qt::NoButton, {}, {});
    QKeyEvent key(QEvent::KeyPress, Qt::Key_Down, {});
    QEvent leave(QEvent::Leave);
    for (QEvent *event : std::initializer_list<QEvent *>{&inside, &wheel, &outside, &key, &leave, &press}) {
        rest(buttons[0]);
        ASSERT_EQ(ToolTips::text(), u"Back"_s);
        QCoreApplication::sendEvent(buttons[0], event);
        QCoreApplication::processEvents();
        EXPECT_EQ(ToolTips::text().isEmpty(), event != &inside) << int(event->type());
    }
    QCoreApplication::sendEvent(buttons[0], &leave);
    rest(buttons[0]);
    buttons[0]->hide();
    EXPECT_TRUE(ToolTips::text().isEmpty());
    buttons[0]->show();
    rest(buttons[0]);
    delete std::exchange(buttons[0], nullptr);
    EXPECT_TRUE(ToolTips::text().isEmpty());
}

TEST(AppStyleTests, menusAreCardsInBothSchemesAndShowTheirKeys) {
    QMenu menu;
    QAction *chosen = menu.addAction(u"Chosen"_s);
    chosen->setCheckable(true);
    chosen->setChecked(true);
    menu.addAction(u"Off"_s)->setEnabled(false);
    menu.addSeparator();
    QAction *quit = menu.addAction(u"Quit"_s);
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    const auto pixels = [&](const QImage &image, QAction *action, const QColor &color) {
        const QRect item = menu.actionGeometry(action);
        int count = 0;
        for (int y = item.top(); y <= item.bottom(); ++y)
            count += pixelsOf(color, image.copy(item), y - item.top());
        return count;
    };
    for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark}) {
        AppTheme::setScheme(scheme);
        menu.popup({100, 100});
        menu.setActiveAction(quit);
        QCoreApplication::processEvents();
        const QImage image = menu.grab().toImage();
        EXPECT_EQ(image.pixelColor(3, 3).rgba(), AppTheme::surface().resolved(scheme).rgba());
        EXPECT_GT(pixels(image, quit, AppTheme::accent()), 1000) << "what is pointed at";
        EXPECT_EQ(pixels(image, chosen, AppTheme::accent()), 0);
        EXPECT_GT(pixels(image, chosen, AppTheme::ink()), 0);
        EXPECT_EQ(pixels(image, menu.actions().at(1), AppTheme::ink()), 0) << "it is grey";
        EXPECT_EQ(menu.actionGeometry(quit).height(), 26);
        menu.hide();
    }
    AppTheme::setScheme(ColorScheme::light);
}

} // namespace
} // namespace vantrel
