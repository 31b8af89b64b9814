#include "Kit/WidthTable.h"

namespace vantrel {

namespace {

constexpr qint32 parts = 4096; // of a pixel
constexpr qint32 unknown = -1; // as no character takes room away

constexpr float rounding = 0.2F;
constexpr float sign = 0.06F;    // of the size: a font may shape signs by what is farther around them
constexpr float kerning = 0.06F; // of the width

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
qint32 WidthTable::step(char16_t before, char16_t character) {
    qint32 &known = m_steps[before == 0 ? 0 : 1 + before - firstPlain][character - firstPlain];
    if (known == unknown) {
        const QString text =
            before == 0 ? QString(QChar(character)) : QString(QChar(before)) + QChar(character);
        const int wide = qRound(m_style.width(text) * parts);
        known = std::max(0, before == 0 ? wide : wide - step(0, before));
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
    QStringView line = text;
    while (line.endsWith(u' '))
        line.chop(1);
    if (const auto plain = widthOfPlain(line))
        return *plain;
    Width width{0, rounding};
    char16_t before = 0;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const char16_t unit = line[i].unicode();
        if (unit >= firstPlain && unit <= lastPlain) {
            width.about += float(step(before, unit)) / parts;
            width.within += isSign(unit) ? sign * float(m_style.size) : 0;
            before = unit;
            continue;
        }
        before = 0;
        char32_t character = unit;
        if (QChar::isHighSurrogate(unit) && i + 1 < line.size() && line[i + 1].isLowSurrogate())
            character = QChar::surrogateToUcs4(line[i], line[i + 1]);
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

/// What most names are: plain characters, and no pair of them seen for the first time.
std::optional<WidthTable::Width> WidthTable::widthOfPlain(QStringView line) const {
    static constexpr auto signs = [] {
        std::array<quint8, plainCount> are{};
        for (std::size_t i = 0; i < plainCount; ++i)
            are[i] = isSign(char16_t(firstPlain + i)) ? 1 : 0;
        return are;
    }();
    qint64 sum = 0;
    qint32 all = 0; // has the sign of what is unknown
    int signCount = 0;
    std::size_t from = 0;
    for (const QChar character : line) {
        const std::size_t to = std::size_t(character.unicode()) - firstPlain;
        if (to >= plainCount)
            return std::nullopt;
        sum += m_steps[from][to];
        all |= m_steps[from][to];
        signCount += signs[to];
        from = 1 + to;
    }
    if (all < 0)
        return std::nullopt;
    return Width{float(sum) / parts, rounding + float(signCount) * sign * float(m_style.size)};
}

} // namespace vantrel
