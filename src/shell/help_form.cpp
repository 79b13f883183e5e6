#include "shell/help_form.h"

#include "controls/accessible_names.h"
#include "shell/help_links.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QTextBrowser>
#include <QTextDocument>
#include <QUrl>
#include <QVBoxLayout>

namespace vessa {

namespace {

// A browser that loads pictures and style only from the folders it is allowed.
class GuideBrowser : public QTextBrowser {
public:
    GuideBrowser(const QStringList& allowedFolders, QWidget* parent)
        : QTextBrowser(parent), allowedFolders_(allowedFolders) {}

    QVariant loadResource(int type, const QUrl& name) override {
        const QUrl resolved = source().resolved(name);
        if (resolved.isLocalFile())
            for (const QString& folder : allowedFolders_)
                if (isInFolder(resolved.toLocalFile(), folder))
                    return QTextBrowser::loadResource(type, name);
        // Nothing at all would send the document to read the file itself: an empty
        // picture or text stands in.
        if (type == QTextDocument::ImageResource)
            return QImage();
        return QString();
    }

private:
    const QStringList& allowedFolders_;
};

} // namespace

HelpForm::HelpForm(QStringList allowedFolders, QWidget* parent)
    : QWidget(parent, Qt::Window), allowedFolders_(std::move(allowedFolders)),
      WebBrowser1_(new GuideBrowser(allowedFolders_, this)) {
    setObjectName(QStringLiteral("frmVessaHelp"));
    setWindowTitle(QStringLiteral("Vessa's Illustrated Guide to Brightmere"));
    WebBrowser1_->setObjectName(QStringLiteral("WebBrowser1"));
    WebBrowser1_->setOpenExternalLinks(false);
    // Every link is looked at here before it is followed.
    WebBrowser1_->setOpenLinks(false);
    connect(WebBrowser1_, &QTextBrowser::anchorClicked, this, &HelpForm::linkActivated);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(WebBrowser1_);
    resize(560, 640);
    applyAccessibleNames(this);
}

void HelpForm::navigate(const QString& page) {
    const QString folder = QFileInfo(page).absolutePath();
    if (!allowedFolders_.contains(folder))
        allowedFolders_ << folder;
    WebBrowser1_->setSource(QUrl::fromLocalFile(page));
}

QString HelpForm::currentPage() const {
    return WebBrowser1_->source().toLocalFile();
}

void HelpForm::linkActivated(const QUrl& link) {
    const HelpLink where = followHelpLink(link, currentPage(), allowedFolders_);
    switch (where.action) {
    case HelpLink::Action::Refuse:
        return;
    case HelpLink::Action::Scroll:
        WebBrowser1_->scrollToAnchor(where.anchor);
        return;
    case HelpLink::Action::Show:
    case HelpLink::Action::ShowAndLoadWorld: {
        QUrl page = QUrl::fromLocalFile(where.page);
        if (!where.anchor.isEmpty())
            page.setFragment(where.anchor);
        WebBrowser1_->setSource(page);
        if (where.action == HelpLink::Action::ShowAndLoadWorld)
            Q_EMIT worldWanted(where.world);
        return;
    }
    }
}

} // namespace vessa
