#pragma once

#include <QTabBar>

namespace vessa {

// A tab bar that a screen reader knows by its own name. The platform names a tab bar
// after its current tab, which hides what the row of tabs is for; here the bar says its
// accessible name, and each tab is a page tab of its own that can be pressed.
class NamedTabBar : public QTabBar {
    Q_OBJECT
public:
    explicit NamedTabBar(QWidget* parent = nullptr);
};

} // namespace vessa
