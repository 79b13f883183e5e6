#include "script/animation_name_list.h"

#include "script/basic_text.h"

namespace vessa {

void AnimationNameList::Append(const QString& name) {
    if (!text_.isEmpty())
        text_ += u',';
    text_ += name;
}

void AnimationNameList::Remove(const QString& name) {
    text_ = text::Replace(text_, name + u',', QString());
    text_ = text::Replace(text_, u',' + name, QString());
    text_ = text::Replace(text_, name, QString());
}

void AnimationNameList::Rename(const QString& oldName, const QString& newName) {
    text_ = text::Replace(text_, oldName, newName);
}

} // namespace vessa
