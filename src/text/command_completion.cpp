#include "text/command_completion.h"

#include "script/vocabulary.h"

namespace vessa {

namespace {

bool isWordCharacter(QChar c) {
    return c.isLetterOrNumber() || c == u'_' || c == u'.';
}

QStringList startingWith(const QStringList& words, const QString& start) {
    QStringList found;
    for (const QString& word : words)
        if (word.startsWith(start, Qt::CaseInsensitive) && !found.contains(word))
            found << word;
    return found;
}

// The command named, or NoEntry for a name that is none.
int commandNamed(const QString& name) {
    for (int command = 1; command < VocabularySize; ++command)
        if (!CommandNames(command).isEmpty() &&
            CommandNames(command).compare(name, Qt::CaseInsensitive) == 0)
            return command;
    return NoEntry;
}

QStringList valuesOf(int kind, const QStringList& objectNames) {
    const ParameterKind& parameter = ParameterKinds(kind);
    return parameter.Class == ObjectClass ? parameter.Values + objectNames : parameter.Values;
}

// Words for the place in the values of command that follows the text before it.
QStringList valueWords(int command, const QString& before, const QStringList& objectNames) {
    const CommandParameterLists& lists = CommandParameters(command);
    const int slot = static_cast<int>(before.count(u','));
    const QString item = before.mid(before.lastIndexOf(u',') + 1).trimmed();
    const int equals = static_cast<int>(item.indexOf(u'='));
    if (equals >= 0) {
        const QString keyword = item.left(equals).trimmed();
        for (int index = 0; index < lists.Optional.Count(); ++index)
            if (ParameterKinds(lists.Optional[index]).Name.compare(keyword, Qt::CaseInsensitive) ==
                0)
                return valuesOf(lists.Optional[index], objectNames);
        return {};
    }
    if (slot < lists.Essential.Count())
        return valuesOf(lists.Essential[slot], objectNames);
    QStringList words;
    for (int index = 0; index < lists.Optional.Count(); ++index) {
        const int kind = lists.Optional[index];
        if (Keywordless(kind))
            words << valuesOf(kind, objectNames);
        else
            words << ParameterKinds(kind).Name + u'=';
    }
    return words;
}

// The words that may stand where a word begins at start.
QStringList wordsAt(const QString& line, int start, const QString& word,
                    const QStringList& objectNames) {
    const QStringView before = QStringView(line).left(start);
    const int open = static_cast<int>(before.lastIndexOf(u'('));
    const int close = static_cast<int>(before.lastIndexOf(u')'));
    if (open >= 0 && open > close) {
        const QString head = line.left(open).trimmed();
        const int command = commandNamed(head.mid(head.lastIndexOf(u'.') + 1));
        if (command == NoEntry)
            return {};
        return valueWords(command, line.mid(open + 1, start - open - 1), objectNames);
    }
    QStringList words = objectNames;
    const int dot = static_cast<int>(word.lastIndexOf(u'.'));
    if (dot > 0 && objectNames.contains(word.left(dot), Qt::CaseInsensitive))
        for (int command = 1; command < VocabularySize; ++command)
            if (!CommandNames(command).isEmpty())
                words << word.left(dot + 1) + CommandNames(command);
    return words;
}

QString commonStart(const QStringList& words) {
    QString common = words.first();
    for (const QString& word : words) {
        qsizetype length = 0;
        while (length < common.size() && length < word.size() &&
               common[length].toCaseFolded() == word[length].toCaseFolded())
            ++length;
        common.truncate(length);
    }
    return common;
}

} // namespace

int completionWordStart(const QString& line, int caret) {
    int start = std::clamp(caret, 0, static_cast<int>(line.size()));
    while (start > 0 && isWordCharacter(line[start - 1]))
        --start;
    return start;
}

CommandCompletion completeCommandLine(const QString& line, int caret,
                                      const QStringList& objectNames) {
    CommandCompletion completion{line, caret, {}};
    caret = std::clamp(caret, 0, static_cast<int>(line.size()));
    const int start = completionWordStart(line, caret);
    const QString word = line.mid(start, caret - start);
    const QStringList choices = startingWith(wordsAt(line, start, word, objectNames), word);
    if (choices.isEmpty())
        return completion;
    const QString common = choices.size() == 1 ? choices.first() : commonStart(choices);
    if (choices.size() > 1)
        completion.Choices = choices;
    if (common == word)
        return completion;
    completion.Text = line.left(start) + common + line.mid(caret);
    completion.Caret = start + static_cast<int>(common.size());
    return completion;
}

} // namespace vessa
