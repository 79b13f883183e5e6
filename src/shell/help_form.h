#pragma once

#include <QStringList>
#include <QWidget>

class QTextBrowser;
class QUrl;

namespace vessa {

// The illustrated guide and the help pages of worlds, shown beside the program. A link
// to a world's help page (World_VessaHelp.html) shows it and asks for its world; links
// that leave the guide's and the pages' folders, or go to the network, are not followed.
class HelpForm : public QWidget {
    Q_OBJECT
public:
    // The pages of allowedFolders may be shown, and the folder of every page the
    // program asks for.
    explicit HelpForm(QStringList allowedFolders = {}, QWidget* parent = nullptr);
    void navigate(const QString& page);
    QString currentPage() const;
    QTextBrowser& browser() const { return *WebBrowser1_; }

Q_SIGNALS:
    // A link led to the help page of the world in folder.
    void worldWanted(const QString& folder);

private:
    void linkActivated(const QUrl& link);

    QStringList allowedFolders_;
    QTextBrowser* WebBrowser1_;
};

} // namespace vessa
