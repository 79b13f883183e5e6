#include "gateway/output_limits.h"

namespace vessa {

QString cutLongLines(const QString& text, qsizetype longestLine) {
    QString out;
    qsizetype start = 0;
    while (start <= text.size()) {
        qsizetype end = text.indexOf(QLatin1Char('\n'), start);
        const bool lastLine = end < 0;
        if (lastLine)
            end = text.size();
        const qsizetype length = end - start;
        out += QStringView(text).mid(start, std::min(length, longestLine));
        if (length > longestLine)
            out += QStringLiteral(" [... %1 more characters]").arg(length - longestLine);
        if (lastLine)
            break;
        out += QLatin1Char('\n');
        start = end + 1;
    }
    return out;
}

} // namespace vessa
