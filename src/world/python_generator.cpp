#include "world/python_generator.h"

#include "controls/list_control.h"
#include "controls/tree_control.h"
#include "script/basic_text.h"
#include "script/tree_walks.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <vector>

namespace vessa {

namespace {

const QString LineEnd = QStringLiteral("\r\n");
const QString Tab = QStringLiteral("\t");

// An event row as the generator reads it, each column read once.
struct EventRow {
    QString when;
    QString happensTo;
    QString animation;
    QString animationKey;       // the key of the animation's node: its name in lower case
    size_t animationNumber = 0; // the same for rows of the same key
    QString keyEvent;           // When up to " (": "KeyDown" of `KeyDown ("A" key)`
    // Whether the row names a key a test in Python can be written for: it has the " ("
    // of a key event, and a character key behind its double quote, if it has one, that
    // is neither missing nor a double quote or a backslash (`KeyDown ("" key)`), which
    // would break the Python of the whole world.
    bool namesKey = false;
};

bool namesKeyIn(const QString& when, qsizetype bracket) {
    if (bracket < 0)
        return false;
    const qsizetype quote = when.indexOf(u'"');
    if (quote < 0)
        return true;
    const QChar key = quote + 1 < when.size() ? when[quote + 1] : QChar();
    return !key.isNull() && key != u'"' && key != u'\\';
}

// The rows in list order, and for each animation its rows in that order.
struct EventRows {
    std::vector<EventRow> rows;
    std::vector<std::vector<size_t>> ofAnimation;
};

EventRows readRows(const ListControl& list) {
    EventRows read;
    read.rows.reserve(static_cast<size_t>(list.Count()));
    QHash<QString, size_t> numbers;
    for (int position = 0; position < list.Count(); ++position) {
        const ListRow* listRow = list.Row(position);
        EventRow row;
        row.when = listRow->SubItems(1);
        row.happensTo = listRow->SubItems(2);
        row.animation = listRow->SubItems(3);
        row.animationKey = row.animation.toLower();
        auto number = numbers.constFind(row.animationKey);
        if (number == numbers.cend()) {
            number = numbers.insert(row.animationKey, read.ofAnimation.size());
            read.ofAnimation.emplace_back();
        }
        row.animationNumber = *number;
        read.ofAnimation[*number].push_back(read.rows.size());
        const qsizetype bracket = row.when.indexOf(QStringLiteral(" ("));
        row.namesKey = namesKeyIn(row.when, bracket);
        row.keyEvent = row.when.left(bracket);
        read.rows.push_back(std::move(row));
    }
    return read;
}

// A name as Python takes it: each blank becomes "_".
QString underscored(QString name) {
    return name.replace(u' ', u'_');
}

// The Windows key code a key row without a character key tests. Each word found
// overwrites the one before, over the whole When, "KeyDown" and "KeyUp" included; a
// When with none of the words keeps the code of the row before.
int rawKeyCode(const QString& when, int previous) {
    static const std::pair<QString, int> words[] = {
        {QStringLiteral("Enter"), 13}, {QStringLiteral("Space"), 32}, {QStringLiteral("Left"), 37},
        {QStringLiteral("Right"), 39}, {QStringLiteral("Up"), 38},    {QStringLiteral("Down"), 40}};
    int code = previous;
    for (const auto& [word, wordCode] : words) {
        if (when.contains(word, Qt::CaseInsensitive))
            code = wordCode;
    }
    return code;
}

class Generator {
public:
    Generator(const TreeControl& tree, const ListControl& list)
        : tree_(tree), read_(readRows(list)), rows_(read_.rows), done_(rows_.size(), false) {}

    PythonScript make(const QString& code) {
        for (size_t i = 0; i < rows_.size(); ++i) {
            if (done_[i])
                continue;
            if (text::Like(rows_[i].when, u"Key*"))
                keyForm(i);
            else
                plainForm(i);
        }
        defineTheRest();
        script_.handEditedLine = lineOfPosition(buffer_, buffer_.size()) + 2;
        buffer_ += LineEnd + kHandEditedMarker + LineEnd + code;
        script_.text = std::move(buffer_);
        return std::move(script_);
    }

private:
    void notice(size_t i, const QString& message) {
        const EventRow& row = rows_[i];
        script_.notices.append(
            {static_cast<int>(i) + 1,
             QStringLiteral("Row %1 of the event list (%2, %3, %4) %5: the row is left out of "
                            "the world's Python.")
                 .arg(i + 1)
                 .arg(row.when, row.happensTo, row.animation, message)});
    }

    const TreeNode* animationOf(size_t i) {
        const TreeNode* node = tree_.NodeByKey(rows_[i].animationKey);
        if (!node)
            notice(i, QStringLiteral("names an animation this world does not have"));
        return node;
    }

    // "[name]" searched in "[Hop][Fly_Away]", the list of the names defined. Only names
    // with brackets in them can be found there without being one of them; for others a
    // set gives the same answer.
    bool isDefined(const QString& name) const {
        if (bracketed_ || hasBracket(name))
            return doneNames_.contains(u'[' + name + u']');
        return defined_.contains(name);
    }

    static bool hasBracket(const QString& name) {
        return name.contains(u'[') || name.contains(u']');
    }

    void define(const QString& name, const TreeNode* node) {
        buffer_ += LineEnd + name + QStringLiteral(" = ");
        MakePythonNode(node, QString(), buffer_);
        stopClosing();
        doneNames_ += u'[' + name + u']';
        defined_.insert(name);
        bracketed_ = bracketed_ || hasBracket(name);
    }

    // A definition is built stopped: ")" becomes ").stop()", and a plain line loses its
    // comma.
    void stopClosing() {
        buffer_.chop(endsInComma() ? 3 : 2);
        buffer_ += QStringLiteral(".stop()") + LineEnd;
    }

    bool endsInComma() const { return buffer_.size() >= 3 && buffer_[buffer_.size() - 3] == u','; }

    // One function for the key event of row i and its animation, testing the keys of
    // every later row of the same event and animation; each such row is done here.
    void keyForm(size_t i) {
        const EventRow& row = rows_[i];
        if (!row.namesKey) {
            notice(i, QStringLiteral("names no key"));
            return;
        }
        const TreeNode* node = animationOf(i);
        if (!node)
            return;
        const QString name =
            QStringLiteral("TVDef_") + row.keyEvent + u'_' + underscored(row.animation);
        QString responses;
        buffer_ += LineEnd + QStringLiteral("def ") + name + QStringLiteral("(ev):") + LineEnd;
        const std::vector<size_t>& sameAnimation = read_.ofAnimation[row.animationNumber];
        for (auto at = std::lower_bound(sameAnimation.begin(), sameAnimation.end(), i);
             at != sameAnimation.end(); ++at) {
            const size_t j = *at;
            const EventRow& other = rows_[j];
            if (!other.namesKey || !other.when.contains(row.keyEvent, Qt::CaseInsensitive))
                continue;
            done_[j] = true;
            responses += text::Replace(LineEnd + other.happensTo + QStringLiteral(".addresponse(") +
                                           other.keyEvent + QStringLiteral(", ") + name + u')',
                                       u"AnyWhere.", u"Camera._Window.");
            buffer_ += (j == i ? Tab + QStringLiteral("if") : QStringLiteral(" or")) + keyTest(j);
        }
        buffer_ += u':' + LineEnd;
        MakePythonNode(node, Tab + Tab, buffer_);
        if (endsInComma()) {
            buffer_.chop(3);
            buffer_ += LineEnd;
        }
        buffer_ += responses + LineEnd;
    }

    // ` ev.key == "A"` for a character key, ` ev.rawkey == 13` for a named one.
    QString keyTest(size_t j) {
        const QString& when = rows_[j].when;
        const qsizetype quote = when.indexOf(u'"');
        if (quote >= 0)
            return QStringLiteral(" ev.key == \"") + when.mid(quote + 1, 1) + u'"';
        rawKeyCode_ = rawKeyCode(when, rawKeyCode_);
        return QStringLiteral(" ev.rawkey == ") + QString::number(rawKeyCode_);
    }

    // The animation's definition, unless a row has defined it, and the row's response.
    void plainForm(size_t i) {
        const EventRow& row = rows_[i];
        const QString name = underscored(row.animation);
        QString response;
        if (text::Like(row.when, u"World Start")) {
            response = name + QStringLiteral(".Copy().Start()");
        } else {
            response = row.happensTo + QStringLiteral(".addresponse(") + row.when +
                       QStringLiteral(", ") + name + u')';
            response = text::Replace(response, u"AnyWhere.", u"Camera._Window.");
            response = text::Replace(response, u"LeftMouseButtonDown,", u"LeftMouseDown,");
            response = text::Replace(response, u"LeftMouseButtonUp,", u"LeftMouseUp,");
            response = text::Replace(response, u"RightMouseButtonDown,", u"RightMouseDown,");
            response = text::Replace(response, u"RightMouseButtonUp,", u"RightMouseUp,");
        }
        if (isDefined(name)) {
            buffer_ += response + LineEnd;
            return;
        }
        const TreeNode* node = animationOf(i);
        if (!node)
            return;
        define(name, node);
        buffer_ += LineEnd + response + LineEnd;
    }

    // Every animation no row defined, in tree order, under its name as it stands.
    void defineTheRest() {
        static const QString nameSeparator = QStringLiteral(" = ");
        for (const TreeNode* root = tree_.FirstRoot(); root; root = root->Next()) {
            const qsizetype separator = root->Text().indexOf(nameSeparator);
            if (separator < 0) {
                script_.notices.append(
                    {0, QStringLiteral("The animation \"%1\" has no name (a name and \" = \" "
                                       "before it): it is left out of the world's Python.")
                            .arg(root->Text())});
                continue;
            }
            const QString name = root->Text().left(separator);
            if (!isDefined(name))
                define(name, root);
        }
    }

    const TreeControl& tree_;
    const EventRows read_;
    const std::vector<EventRow>& rows_;
    std::vector<bool> done_;
    // The names defined so far as "[Hop][Fly_Away]", and as a set.
    QString doneNames_;
    QSet<QString> defined_;
    bool bracketed_ = false;
    int rawKeyCode_ = 0;
    QString buffer_;
    PythonScript script_;
};

} // namespace

PythonScript MakePythonScript(const TreeControl& TreeView1, const ListControl& ListView1,
                              const QString& code) {
    return Generator(TreeView1, ListView1).make(code);
}

void MakePythonNode(const TreeNode* node, const QString& indent, QString& buffer) {
    TraverseTreeForScript(node, indent, buffer);
}

int lineOfPosition(const QString& text, qsizetype position) {
    // Every LF ends a line, and every CR that no LF follows.
    const QStringView before =
        QStringView(text).first(std::clamp<qsizetype>(position, 0, text.size()));
    qsizetype breaks = before.count(u'\n');
    for (qsizetype cr = before.indexOf(u'\r'); cr >= 0; cr = before.indexOf(u'\r', cr + 1)) {
        if (cr + 1 >= text.size() || text[cr + 1] != u'\n')
            ++breaks;
    }
    return static_cast<int>(breaks);
}

} // namespace vessa
