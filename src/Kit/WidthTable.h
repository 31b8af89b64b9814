#pragma once

#include "Kit/TextStyle.h"

#include <QHash>

#include <array>
#include <optional>

namespace vantrel {

/// How wide many short texts are in one style, at a hundredth of what laying them out costs: from the widths
/// of their characters and of the pairs that these make, which are looked up once.
class WidthTable {
public:
    /// In layout pixels: the text is no farther than `within` from being `about` wide.
    struct Width {
        float about = 0;
        float within = 0;
    };

    explicit WidthTable(const TextStyle &style);

    /// Of the text on one line, without blanks at its end. Exact but for a fraction of a pixel in plain Latin
    /// letters; elsewhere scripts may join their letters, and it says so.
    [[nodiscard]] Width widthOf(const QString &text);

private:
    static constexpr char16_t firstPlain = 0x20;
    static constexpr char16_t lastPlain = 0x7E;
    static constexpr std::size_t plainCount = lastPlain - firstPlain + 1;

    [[nodiscard]] std::optional<Width> widthOfPlain(QStringView line) const;
    [[nodiscard]] qint32 step(char16_t before, char16_t character);
    [[nodiscard]] float widthOfOther(char32_t character);

    TextStyle m_style;
    /// By how much a plain character makes a text longer, in parts of a pixel: at the beginning, then behind
    /// each plain one. Whole numbers, of which a processor adds one while it looks the next up.
    std::array<std::array<qint32, plainCount>, 1 + plainCount> m_steps;
    QHash<char32_t, float> m_others;
};

} // namespace vantrel
