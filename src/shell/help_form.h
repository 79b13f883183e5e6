#pragma once

#include <QWidget>

class QTextBrowser;

namespace vessa {

// The illustrated guide, a page of the default world shown beside the program.
class HelpForm : public QWidget {
    Q_OBJECT
public:
    explicit HelpForm(QWidget* parent = nullptr);
    void navigate(const QString& page);
    QString currentPage() const;

private:
    QTextBrowser* WebBrowser1_;
};

} // namespace vessa
