#include "world/script_file_format.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <QStringList>

namespace vessa {

namespace {

using script_file::LineEnd;
using script_file::Separator;

// A value quoted in a message, cut short when it is long.
QString quoted(const QString& value) {
    constexpr int Shown = 40;
    return u'"' + (value.size() > Shown ? value.left(Shown) + QStringLiteral("...") : value) + u'"';
}

// Characters no text file holds: the control characters but tab, line feed, form feed
// and carriage return. UTF-8 never uses these bytes inside a character.
bool isBinaryByte(char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return (value < 0x20 && value != '\t' && value != '\n' && value != '\f' && value != '\r') ||
           value == 0x7F;
}

QString decoded(QByteArrayView bytes) {
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes = bytes.sliced(3);
    QStringDecoder utf8(QStringConverter::Utf8);
    QString text = utf8(bytes);
    return utf8.hasError() ? QString::fromLatin1(bytes) : text;
}

// The file's lines, split at CR LF or LF. As with the line ends of the file, the empty
// text behind the last line end is a line of its own.
struct Lines {
    QStringList lines;
    FileProblem problem;
};

Lines splitLines(const QByteArray& bytes, const QString& fileName) {
    Lines result;
    int line = 1;
    for (const char byte : bytes) {
        if (byte == '\n')
            ++line;
        else if (isBinaryByte(byte)) {
            result.problem = {fileName, line, QStringLiteral("this is not text")};
            return result;
        }
    }
    const QString text = decoded(bytes);
    qsizetype start = 0;
    for (;;) {
        const qsizetype end = text.indexOf(u'\n', start);
        qsizetype length = (end < 0 ? text.size() : end) - start;
        if (length > 0 && text[start + length - 1] == u'\r')
            --length;
        if (length > script_file::MaxLineLength) {
            result.problem = {fileName, static_cast<int>(result.lines.size()) + 1,
                              QStringLiteral("the line is longer than 100,000 characters")};
            return result;
        }
        result.lines.append(text.mid(start, length));
        if (end < 0)
            break;
        start = end + 1;
    }
    return result;
}

bool isSeparator(const QString& line) {
    return line == Separator;
}

QString codeFrom(const QStringList& lines, qsizetype first) {
    QString code;
    for (qsizetype index = first; index < lines.size(); ++index)
        code += lines[index] + LineEnd;
    return code;
}

// Reads the tree, the rows and the code from lines, or says at which line it can't.
class Parser {
public:
    Parser(const QStringList& lines, const QString& fileName) : lines_(lines), file_(fileName) {}

    ScriptFileRead parse() {
        qsizetype codeStart = 1; // an empty tree: the code follows the first line
        if (!isSeparator(lines_[0])) {
            const qsizetype treeEnd = readTree();
            if (!read_.ok())
                return read_;
            codeStart = readRows(treeEnd + 1);
            if (!read_.ok())
                return read_;
        }
        read_.content.code = codeFrom(lines_, codeStart);
        return read_;
    }

private:
    int last() const { return static_cast<int>(lines_.size()) - 1; }

    void refuse(qsizetype index, const QString& message) {
        read_.problem = {file_, static_cast<int>(index) + 1, message};
    }

    // The tree's records from the first line on; answers the index of the "###" after
    // them.
    qsizetype readTree() {
        int previousDepth = 0;
        qsizetype k = 0;
        for (;; k += 4) {
            if (k > 0 && k <= last() && isSeparator(lines_[k]))
                return k;
            if (k + 3 > last()) {
                refuse(std::min<qsizetype>(k, last()),
                       QStringLiteral("the file ends inside the script tree, without the line "
                                      "### that ends it"));
                return k;
            }
            if (read_.content.nodes.size() == script_file::MaxNodes) {
                refuse(k, QStringLiteral("the script has more than 200,000 lines"));
                return k;
            }
            ScriptFileNode node;
            node.text = lines_[k];
            node.tag = lines_[k + 3];
            node.line = static_cast<int>(k) + 1;
            if (!readDepth(k + 1, previousDepth, node.depth) || !readExpanded(k + 2, node.expanded))
                return k;
            previousDepth = node.depth;
            read_.content.nodes.append(node);
        }
    }

    bool readDepth(qsizetype index, int previousDepth, int& depth) {
        bool number = false;
        depth = lines_[index].trimmed().toInt(&number);
        if (!number)
            refuse(index, QStringLiteral("the depth of a line of the script should be a whole "
                                         "number, not ") +
                              quoted(lines_[index]));
        else if (previousDepth == 0 && depth != 1)
            refuse(index,
                   QStringLiteral("the first animation should have depth 1, not %1").arg(depth));
        else if (depth < 1)
            refuse(index, QStringLiteral("a depth of %1, but depths begin at 1").arg(depth));
        else if (depth > previousDepth + 1)
            refuse(index, QStringLiteral("the depth goes from %1 to %2, but a line can only be "
                                         "one deeper than the line before it")
                              .arg(previousDepth)
                              .arg(depth));
        else if (depth > script_file::MaxDepth)
            refuse(index, QStringLiteral("the script is more than 100 levels deep"));
        return read_.ok();
    }

    // A truth value as the older worlds wrote it: a number (not 0 is true), or the words
    // True and False.
    bool readExpanded(qsizetype index, bool& expanded) {
        const QString field = lines_[index].trimmed();
        bool number = false;
        const double value = field.toDouble(&number);
        if (number)
            expanded = value != 0;
        else if (field.compare(u"true", Qt::CaseInsensitive) == 0)
            expanded = true;
        else if (field.compare(u"false", Qt::CaseInsensitive) == 0)
            expanded = false;
        else
            refuse(index, QStringLiteral("should be 1 or 0 (whether the block is open), not ") +
                              quoted(lines_[index]));
        return read_.ok();
    }

    // The rows from index first up to a "###" or the end of the file; answers where the
    // code begins.
    qsizetype readRows(qsizetype first) {
        qsizetype i = first;
        for (; i < last() && !isSeparator(lines_[i]); i += 3) {
            if (i + 2 > last()) {
                refuse(i, QStringLiteral("the event row that begins here is cut short"));
                return i;
            }
            if (read_.content.rows.size() == script_file::MaxRows) {
                refuse(i, QStringLiteral("the event list has more than 100,000 rows"));
                return i;
            }
            read_.content.rows.append(
                {lines_[i], lines_[i + 1], lines_[i + 2], static_cast<int>(i) + 1});
        }
        // A last line with text that no row took: the file was cut in a row.
        if (i == last() && !lines_[i].isEmpty() && !isSeparator(lines_[i]))
            refuse(i, QStringLiteral("the event row that begins here is cut short"));
        return i + 1;
    }

    const QStringList& lines_;
    const QString& file_;
    ScriptFileRead read_;
};

} // namespace

QString FileProblem::text() const {
    return line > 0 ? QStringLiteral("%1 line %2: %3").arg(file).arg(line).arg(message)
                    : QStringLiteral("%1: %2").arg(file, message);
}

ScriptFileRead parseScriptFile(const QByteArray& bytes, const QString& fileName) {
    // Saving makes the file empty before it writes it; an empty file holds no script.
    if (bytes.isEmpty())
        return {};
    const Lines split = splitLines(bytes, fileName);
    if (!split.problem.isEmpty())
        return {{}, split.problem};
    return Parser(split.lines, fileName).parse();
}

ScriptFileRead parsePythonScriptFile(const QByteArray& bytes, const QString& fileName) {
    const Lines split = splitLines(bytes, fileName);
    ScriptFileRead read;
    read.problem = split.problem;
    if (read.ok())
        read.content.code = codeFrom(split.lines, 0);
    return read;
}

FileBytes readScriptFileBytes(const QString& path) {
    FileBytes result;
    const QFileInfo info(path);
    // A pipe or a device would be read for ever.
    if (!info.isFile()) {
        result.problem = {path, 0, QStringLiteral("this is not a file")};
        return result;
    }
    if (info.size() > script_file::MaxBytes) {
        result.problem = {path, 0,
                          QStringLiteral("it is too big for a script file (%1 MB; at most %2 MB)")
                              .arg(info.size() / (1024 * 1024))
                              .arg(script_file::MaxBytes / (1024 * 1024))};
        return result;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        result.problem = {path, 0, QStringLiteral("it can't be read: ") + file.errorString()};
        return result;
    }
    // The file may have grown since it was measured.
    result.bytes = file.read(script_file::MaxBytes + 1);
    if (result.bytes.size() > script_file::MaxBytes)
        result.problem = {path, 0, QStringLiteral("it is too big for a script file")};
    return result;
}

QByteArray scriptFileBytes(const QString& text) {
    return text.toUtf8();
}

} // namespace vessa
