#pragma once

#include <QFont>
#include <QStringList>

#include <optional>

namespace vessa {

// The font the script's views share, as the three font lists over the code box change
// it. A choice that can't be applied (a size that is not one) gives nothing, and the
// font stays as it was.
namespace script_font {

// The sizes the size list offers; the user may type another.
QStringList sizes();
// The effect list's entries, by index: not bold, then bold.
QStringList effects();

std::optional<QFont> withName(const QFont& font, const QString& name);
std::optional<QFont> withSize(const QFont& font, const QString& size);
std::optional<QFont> withEffect(const QFont& font, int index);

// The code box keeps its fixed-width family, so that indentation stays lined up; it
// takes the script's size and weight.
QFont forCodeBox(const QFont& script, const QFont& codeBox);

} // namespace script_font

} // namespace vessa
