#pragma once

#include <QString>

namespace vessa {

// The names of the animations, joined by ",", as the event editor offers them. It is
// kept by replacing whole names, so that "Action1" never touches "Action10".
class AnimationNameList {
public:
    const QString& Text() const { return text_; }
    void SetText(const QString& text) { text_ = text; }
    // The name alone into an empty list, otherwise joined on with ",".
    void Append(const QString& name);
    // Three replacements, case ignored: name + ",", "," + name, then name alone.
    void Remove(const QString& name);
    // Every occurrence of oldName as a whole name becomes newName.
    void Rename(const QString& oldName, const QString& newName);

private:
    QString text_;
};

} // namespace vessa
