#include "export/web_page_options.h"

#include <cmath>

namespace vessa {

namespace {

constexpr float kPresetRatio = 1.3333333333f;

QString rounded(double value) {
    return QString::number(static_cast<long long>(std::floor(value + 0.5)));
}

} // namespace

void WebPageOptions::preset() {
    AspectRatio = kPresetRatio;
    width_ = QStringLiteral("320");
    height_ = QStringLiteral("240");
    aspect_ = true;
}

void WebPageOptions::setWidthText(const QString& text) {
    width_ = text;
    if (aspect_ && !text.isEmpty() && AspectRatio > 0)
        height_ = rounded(text.toDouble() / AspectRatio);
}

void WebPageOptions::setHeightText(const QString& text) {
    height_ = text;
    if (aspect_ && !text.isEmpty())
        width_ = rounded(text.toDouble() * AspectRatio);
}

void WebPageOptions::setAspectChecked(bool checked) {
    if (checked && !aspect_ && height_.toDouble() > 0)
        AspectRatio = static_cast<float>(width_.toDouble() / height_.toDouble());
    aspect_ = checked;
}

void WebPageOptions::optionClicked(int index) {
    static const QString options[] = {QStringLiteral("Left"), QStringLiteral("Center"),
                                      QStringLiteral("Right")};
    if (index >= 0 && index < 3)
        SelectedOption = options[index];
}

bool WebPageOptions::acceptsKey(const QString& text) {
    for (const QChar c : text) {
        if (!c.isDigit())
            return false;
    }
    return true;
}

QString pageNameProblem(const QString& name) {
    if (name.isEmpty())
        return QStringLiteral("Please specify a name.");
    const QString lower = name.toLower();
    if (!lower.endsWith(QStringLiteral(".html")) && !lower.endsWith(QStringLiteral(".htm")))
        return QStringLiteral("The file name must end in '.html' or in '.htm'.");
    return {};
}

} // namespace vessa
