#include "scene/gallery_dialog.h"

#include "controls/accessible_names.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QPushButton>

namespace vessa {

namespace {

const QString AllThemes = QStringLiteral("All objects");
const QString OwnFolder = QStringLiteral("Other objects");

} // namespace

GalleryDialog::GalleryDialog(GalleryModel& gallery, std::function<QString()> chooseOtherFile,
                             QWidget* parent)
    : QDialog(parent), gallery_(gallery), chooseOtherFile_(std::move(chooseOtherFile)),
      search_(new QLineEdit(this)), count_(new QLabel(this)), themes_(new QListWidget(this)),
      objects_(new QListView(this)), other_(new QPushButton(tr("Other file..."), this)),
      add_(new QPushButton(tr("Add"), this)), cancel_(new QPushButton(tr("Cancel"), this)) {
    setObjectName(QStringLiteral("GalleryDialog"));
    setWindowTitle(QStringLiteral("Add An Object"));
    shown_.setSourceModel(&gallery_);

    search_->setObjectName(QStringLiteral("GallerySearch"));
    search_->setPlaceholderText(tr("Type a name, like bunny"));
    search_->setClearButtonEnabled(true);
    auto* searchLabel = new QLabel(tr("&Search:"), this);
    searchLabel->setBuddy(search_);
    count_->setObjectName(QStringLiteral("GalleryCount"));

    themes_->setObjectName(QStringLiteral("GalleryThemes"));
    themes_->setMaximumWidth(170);
    objects_->setObjectName(QStringLiteral("GalleryList"));
    objects_->setModel(&shown_);
    objects_->setViewMode(QListView::IconMode);
    objects_->setIconSize({GalleryModel::PictureSize, GalleryModel::PictureSize});
    objects_->setGridSize({GalleryModel::PictureSize + 28, GalleryModel::PictureSize + 34});
    objects_->setMovement(QListView::Static);
    objects_->setResizeMode(QListView::Adjust);
    objects_->setUniformItemSizes(true);
    objects_->setWordWrap(true);
    objects_->setSelectionMode(QAbstractItemView::SingleSelection);
    objects_->setEditTriggers(QAbstractItemView::NoEditTriggers);

    other_->setObjectName(QStringLiteral("GalleryOtherFile"));
    add_->setObjectName(QStringLiteral("GalleryAdd"));
    cancel_->setObjectName(QStringLiteral("GalleryCancel"));
    add_->setDefault(true);

    auto* top = new QHBoxLayout;
    top->addWidget(searchLabel);
    top->addWidget(search_, 1);
    top->addWidget(count_);
    auto* middle = new QHBoxLayout;
    middle->addWidget(themes_);
    middle->addWidget(objects_, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(other_);
    buttons->addStretch(1);
    buttons->addWidget(add_);
    buttons->addWidget(cancel_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(middle, 1);
    layout->addLayout(buttons);
    setTabOrder(search_, themes_);
    setTabOrder(themes_, objects_);
    setTabOrder(objects_, other_);
    setTabOrder(other_, add_);
    setTabOrder(add_, cancel_);
    applyAccessibleNames(this);
    resize(820, 560);

    connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) {
        shown_.setSearch(text);
        showFound();
    });
    connect(themes_, &QListWidget::currentRowChanged, this, &GalleryDialog::themeChosen);
    connect(objects_, &QListView::activated, this, &GalleryDialog::choose);
    connect(add_, &QPushButton::clicked, this, [this] { choose(objects_->currentIndex()); });
    connect(other_, &QPushButton::clicked, this, &GalleryDialog::chooseOtherFile);
    connect(cancel_, &QPushButton::clicked, this, &QDialog::reject);
    search_->installEventFilter(this);
}

void GalleryDialog::showGallery() {
    fillThemes();
    search_->clear();
    shown_.setSearch(QString());
    themes_->setCurrentRow(0);
    showFound();
    search_->setFocus();
}

void GalleryDialog::fillThemes() {
    const QSignalBlocker quiet(themes_);
    themes_->clear();
    themes_->addItem(AllThemes);
    for (const QString& theme : gallery_.themes())
        themes_->addItem(theme.isEmpty() ? OwnFolder : theme);
}

void GalleryDialog::themeChosen(int row) {
    if (row <= 0) {
        shown_.showAllThemes();
    } else {
        const QString theme = gallery_.themes().value(row - 1);
        shown_.setTheme(theme);
    }
    showFound();
}

// The first object found is the one Return takes, and the count says what there is.
void GalleryDialog::showFound() {
    const int found = shown_.rowCount();
    objects_->setCurrentIndex(shown_.index(0, 0));
    add_->setEnabled(found > 0);
    const QString count = found == 0   ? tr("No object found")
                          : found == 1 ? tr("1 object")
                                       : tr("%1 objects").arg(found);
    count_->setText(count);
    search_->setAccessibleDescription(count);
}

void GalleryDialog::choose(const QModelIndex& index) {
    if (!index.isValid())
        return;
    const QString path = index.data(GalleryModel::PathRole).toString();
    accept();
    Q_EMIT objectChosen(path);
}

void GalleryDialog::chooseOtherFile() {
    const QString path = chooseOtherFile_();
    if (path.isEmpty())
        return;
    accept();
    Q_EMIT objectChosen(path);
}

bool GalleryDialog::eventFilter(QObject* watched, QEvent* event) {
    if (watched != search_ || event->type() != QEvent::KeyPress)
        return QDialog::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Down) {
        objects_->setFocus();
        return true;
    }
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        choose(objects_->currentIndex());
        return true;
    }
    return false;
}

} // namespace vessa
