#include "controls/named_tab_bar.h"

#include <QAccessibleWidget>
#include <QCoreApplication>
#include <QHash>
#include <QPointer>

namespace vessa {

namespace {

// One tab of the bar: pressing it makes it the current tab, as a click does.
class AccessibleTab : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    AccessibleTab(QTabBar* bar, int index) : bar_(bar), index_(index) {}

    bool isValid() const override { return bar_ && index_ < bar_->count(); }
    QObject* object() const override { return nullptr; }
    QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(bar_.data());
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    QAccessible::Role role() const override { return QAccessible::PageTab; }

    QString text(QAccessible::Text kind) const override {
        if (!isValid())
            return {};
        if (kind == QAccessible::Name)
            return bar_->tabText(index_).remove(QLatin1Char('&'));
        if (kind == QAccessible::Description)
            return bar_->tabToolTip(index_);
        return {};
    }
    void setText(QAccessible::Text, const QString&) override {}

    QRect rect() const override {
        if (!isValid())
            return {};
        const QRect tab = bar_->tabRect(index_);
        return {bar_->mapToGlobal(tab.topLeft()), tab.size()};
    }

    QAccessible::State state() const override {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        state.focusable = true;
        state.selectable = true;
        state.selected = bar_->currentIndex() == index_;
        state.focused = state.selected && bar_->hasFocus();
        state.disabled = !bar_->isTabEnabled(index_);
        state.invisible = !bar_->isVisible() || !bar_->isTabVisible(index_);
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& action) override {
        if (isValid() && action == pressAction() && bar_->isTabEnabled(index_))
            bar_->setCurrentIndex(index_);
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

    int index() const { return index_; }

private:
    QPointer<QTabBar> bar_;
    int index_;
};

// The bar: a page tab list under the bar's own name, whose children are its tabs in
// order, so that the platform's selection and focus news of tab n name child n.
class AccessibleNamedTabBar : public QAccessibleWidget {
public:
    explicit AccessibleNamedTabBar(QTabBar* bar)
        : QAccessibleWidget(bar, QAccessible::PageTabList) {}
    ~AccessibleNamedTabBar() override {
        for (QAccessible::Id id : std::as_const(tabs_))
            QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return bar()->count(); }
    QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= bar()->count())
            return nullptr;
        if (const QAccessible::Id id = tabs_.value(index))
            return QAccessible::accessibleInterface(id);
        auto* tab = new AccessibleTab(bar(), index);
        tabs_.insert(index, QAccessible::registerAccessibleInterface(tab));
        return tab;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        if (!child || child->role() != QAccessible::PageTab || child->parent() != this)
            return -1;
        return static_cast<const AccessibleTab*>(child)->index();
    }

private:
    QTabBar* bar() const { return static_cast<QTabBar*>(widget()); }

    mutable QHash<int, QAccessible::Id> tabs_;
};

QAccessibleInterface* namedTabBarFactory(const QString& className, QObject* object) {
    if (className == QLatin1String(NamedTabBar::staticMetaObject.className()))
        return new AccessibleNamedTabBar(static_cast<NamedTabBar*>(object));
    return nullptr;
}

// Before any window exists, so that no tab bar is ever described the platform's way.
void installNamedTabBarFactory() {
    QAccessible::installFactory(namedTabBarFactory);
}

} // namespace

// The constructor keeps this file, and so the factory, in every program that makes a bar.
NamedTabBar::NamedTabBar(QWidget* parent) : QTabBar(parent) {
}

Q_COREAPP_STARTUP_FUNCTION(installNamedTabBarFactory)

} // namespace vessa
