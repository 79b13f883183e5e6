#include "text/script_font.h"

namespace vessa::script_font {

namespace {

constexpr int kFirstListedSize = 8;
constexpr int kLastListedSize = 24;
// Beyond this a single line of the script no longer fits a window.
constexpr double kLargestSize = 200;

} // namespace

QStringList sizes() {
    QStringList listed;
    for (int size = kFirstListedSize; size <= kLastListedSize; ++size)
        listed << QString::number(size);
    return listed;
}

QStringList effects() {
    return {QStringLiteral("Normal Text"), QStringLiteral("Bold Text")};
}

std::optional<QFont> withName(const QFont& font, const QString& name) {
    if (name.trimmed().isEmpty())
        return std::nullopt;
    QFont named = font;
    named.setFamily(name.trimmed());
    return named;
}

std::optional<QFont> withSize(const QFont& font, const QString& size) {
    bool number = false;
    const double points = size.trimmed().toDouble(&number);
    if (!number || !(points > 0) || points > kLargestSize)
        return std::nullopt;
    QFont sized = font;
    sized.setPointSizeF(points);
    return sized;
}

std::optional<QFont> withEffect(const QFont& font, int index) {
    if (index < 0 || index >= effects().size())
        return std::nullopt;
    QFont bold = font;
    bold.setBold(index == 1);
    return bold;
}

QFont forCodeBox(const QFont& script, const QFont& codeBox) {
    QFont code = codeBox;
    code.setPointSizeF(script.pointSizeF());
    code.setWeight(script.weight());
    return code;
}

} // namespace vessa::script_font
