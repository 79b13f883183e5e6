#include "shell/help_form.h"

#include "controls/accessible_names.h"

#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

namespace vessa {

HelpForm::HelpForm(QWidget* parent)
    : QWidget(parent, Qt::Window), WebBrowser1_(new QTextBrowser(this)) {
    setObjectName(QStringLiteral("frmVessaHelp"));
    setWindowTitle(QStringLiteral("Vessa's Illustrated Guide to Brightmere"));
    WebBrowser1_->setObjectName(QStringLiteral("WebBrowser1"));
    WebBrowser1_->setOpenExternalLinks(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(WebBrowser1_);
    resize(480, 600);
    applyAccessibleNames(this);
}

void HelpForm::navigate(const QString& page) {
    WebBrowser1_->setSource(QUrl::fromLocalFile(page));
}

QString HelpForm::currentPage() const {
    return WebBrowser1_->source().toLocalFile();
}

} // namespace vessa
