#pragma once

#include <QKeySequence>
#include <QObject>
#include <functional>
#include <vector>

class QWidget;

namespace vessa {

// Keys of one text box that come before the window's shortcuts (Alt+P is the Perform
// button's, for one): while the box has the focus, each calls its command.
class BoxKeys : public QObject {
public:
    explicit BoxKeys(QWidget* box);
    void add(const QKeySequence& key, std::function<void()> command);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const std::function<void()>* commandOf(const QEvent& event) const;

    std::vector<std::pair<QKeyCombination, std::function<void()>>> keys_;
};

} // namespace vessa
