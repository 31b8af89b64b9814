#include "Kit/WidthTable.h"

namespace vantrel {

namespace {

constexpr float unknown = -1000;

/// Whether a font may shape it by more than what is right beside it.
constexpr bool isSign(char16_t plain) {
    const char16_t small = plain | 0x20;
    return !(small >= u'a' && small <= u'z') && !(plain >= u'0' && plain <= u'9') && plain != u'_' &&
           plain != u'.' && plain != u' ';
}

/// Whether its width is its own, whatever is beside it.
bool standsAlone(char32_t character) {
    constexpr char32_t firstSyllable = 0xAC00; // before it the parts that syllables are put together from
    switch (QChar::script(character)) {
    case QChar::Script_Latin:
    case QChar::Script_Greek:
    case QChar::Script_Cyrillic:
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
        return true;
    case QChar::Script_Hangul:
        return character >= firstSyllable;
    default:
        return false;
    }
}

} // namespace

WidthTable::WidthTable(const TextStyle &style) : m_style(style) {
    for (auto &steps : m_steps)
        steps.fill(unknown);
}

/// `before` is 0 at the beginning.
float WidthTable::step(char16_t before, char16_t character) {
    float &known = m_steps[before == 0 ? 0 : 1 + before - firstPlain][character - firstPlain];
    if (known == unknown) {
        const QString text =
            before == 0 ? QString(QChar(character)) : QString(QChar(before)) + QChar(character);
        known = float(m_style.width(text) - (before == 0 ? 0.0 : double(step(0, before))));
    }
    return known;
}

float WidthTable::widthOfOther(char32_t character) {
    auto known = m_others.constFind(character);
    if (known == m_others.constEnd())
        known = m_others.insert(character, float(m_style.width(QString::fromUcs4(&character, 1))));
    return *known;
}

WidthTable::Width WidthTable::widthOf(const QString &text) {
    constexpr float rounding = 0.2F;
    constexpr float sign = 0.06F;    // of the size: a font may shape signs by what is farther around them
    constexpr float kerning = 0.06F; // of the width
    Width width{0, rounding};
    const QChar *const units = text.constData();
    qsizetype end = text.size();
    while (end > 0 && units[end - 1] == u' ')
        --end;
    char16_t before = 0;
    for (qsizetype i = 0; i < end; ++i) {
        const char16_t unit = units[i].unicode();
        if (unit >= firstPlain && unit <= lastPlain) {
            width.about += step(before, unit);
            width.within += isSign(unit) ? sign * float(m_style.size) : 0;
            before = unit;
            continue;
        }
        before = 0;
        char32_t character = unit;
        if (QChar::isHighSurrogate(unit) && i + 1 < end && units[i + 1].isLowSurrogate())
            character = QChar::surrogateToUcs4(units[i], units[i + 1]);
        i += QChar::requiresSurrogates(character) ? 1 : 0;
        const float own = widthOfOther(character);
        if (QChar::isMark(character) || !QChar::isPrint(character)) {
            width.within += own;
        } else {
            width.about += own;
            width.within += standsAlone(character) ? own * kerning : own;
        }
    }
    return width;
}

} // namespace vantrel
