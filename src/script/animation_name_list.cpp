#include "script/animation_name_list.h"

#include "script/basic_text.h"

namespace vessa {

void AnimationNameList::Append(const QString& name) {
    if (!text_.isEmpty())
        text_ += u',';
    text_ += name;
}

void AnimationNameList::Remove(const QString& name) {
    text_ = text::ReplaceName(text_, name + u',', QString());
    text_ = text::ReplaceName(text_, u',' + name, QString());
    text_ = text::ReplaceName(text_, name, QString());
}

void AnimationNameList::Rename(const QString& oldName, const QString& newName) {
    text_ = text::ReplaceName(text_, oldName, newName);
}

} // namespace vessa
