#include "shell/world_dialog.h"

#include "controls/accessible_names.h"
#include "world/world_folder.h"

#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace vessa {

namespace {

QPushButton* namedButton(const char* name, const QString& text, QWidget* parent) {
    auto* button = new QPushButton(text, parent);
    button->setObjectName(QLatin1String(name));
    return button;
}

} // namespace

WorldForm::WorldForm(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("WorldForm"));
    choose_ = new QLabel(this);
    choose_->setObjectName(QStringLiteral("ChooseLabel"));

    places_ = new QListWidget(this);
    places_->setObjectName(QStringLiteral("WorldPlaces"));
    places_->setMaximumWidth(170);

    up_ = namedButton("WorldFolderUp", QStringLiteral("&Up"), this);
    where_ = new QLabel(this);
    where_->setObjectName(QStringLiteral("WorldFolderPath"));
    where_->setTextInteractionFlags(Qt::TextSelectableByMouse);

    list_ = new QListView(this);
    list_->setObjectName(QStringLiteral("WorldList"));
    list_->setModel(&folders_);
    list_->setViewMode(QListView::IconMode);
    list_->setResizeMode(QListView::Adjust);
    list_->setMovement(QListView::Static);
    list_->setUniformItemSizes(true);
    list_->setWordWrap(true);
    list_->setIconSize(QSize(WorldFolderModel::ThumbnailSide, WorldFolderModel::ThumbnailSide));
    list_->setGridSize(
        QSize(WorldFolderModel::ThumbnailSide + 40, WorldFolderModel::ThumbnailSide + 44));
    list_->setMinimumSize(560, 340);
    list_->installEventFilter(this);

    nameLabel_ = new QLabel(QStringLiteral("World name:"), this);
    nameLabel_->setObjectName(QStringLiteral("NameLabel"));
    name_ = new QLineEdit(this);
    name_->setObjectName(QStringLiteral("WorldNameText"));
    nameLabel_->setBuddy(name_);
    ok_ = namedButton("WorldOkButton", QStringLiteral("&Open"), this);
    ok_->setDefault(true);
    cancel_ = namedButton("WorldCancelButton", QStringLiteral("Cancel"), this);

    auto* folderRow = new QHBoxLayout;
    folderRow->addWidget(up_);
    folderRow->addWidget(where_, 1);
    auto* right = new QVBoxLayout;
    right->addLayout(folderRow);
    right->addWidget(list_, 1);
    auto* browse = new QHBoxLayout;
    browse->addWidget(places_);
    browse->addLayout(right, 1);
    auto* nameRow = new QHBoxLayout;
    nameRow->addWidget(nameLabel_);
    nameRow->addWidget(name_, 1);
    nameRow->addWidget(ok_);
    nameRow->addWidget(cancel_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(choose_);
    layout->addLayout(browse, 1);
    layout->addLayout(nameRow);

    connect(places_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0)
            showFolder(places_->item(row)->data(Qt::UserRole).toString());
    });
    connect(up_, &QPushButton::clicked, this, &WorldForm::goUp);
    connect(list_, &QListView::activated, this, &WorldForm::entryActivated);
    connect(list_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& index) { entryChosen(index); });
    connect(name_, &QLineEdit::textEdited, this, &WorldForm::nameEdited);
    connect(ok_, &QPushButton::clicked, this, &WorldForm::accept);
    connect(cancel_, &QPushButton::clicked, this, &WorldForm::reject);

    setTabOrder(places_, up_);
    setTabOrder(up_, list_);
    setTabOrder(list_, name_);
    setTabOrder(name_, ok_);
    setTabOrder(ok_, cancel_);
    applyAccessibleNames(this);
}

void WorldForm::begin(Use use, const QString& worldsFolder, const QString& name) {
    use_ = use;
    chosen_.clear();
    const bool open = use == Use::Open;
    setWindowTitle(open ? QStringLiteral("Vessa47 - Open World")
                        : QStringLiteral("Vessa47 - Save World As..."));
    choose_->setText(open ? QStringLiteral("Choose A World:") : QString());
    choose_->setVisible(open);
    ok_->setText(open ? QStringLiteral("&Open") : QStringLiteral("&Save"));
    ok_->setAccessibleName(open ? accessibleNameOf(ok_->objectName())
                                : accessibleNameOf(ok_->objectName(), QStringLiteral("save")));
    name_->setText(open ? QString() : name);

    const QSignalBlocker quiet(places_);
    places_->clear();
    for (const WorldPlace& place : worldPlaces(worldsFolder)) {
        auto* item = new QListWidgetItem(place.name, places_);
        item->setData(Qt::UserRole, place.path);
        item->setToolTip(place.path);
    }
    places_->setCurrentRow(0);
    showFolder(worldsFolder);
    if (open)
        list_->setFocus();
    else
        name_->setFocus();
}

void WorldForm::showFolder(const QString& folder) {
    if (!folders_.setFolder(folder))
        tell(QStringLiteral("Vessa - Error"), QStringLiteral("Error: the folder %1 can't be read.")
                                                  .arg(QDir::toNativeSeparators(folder)));
    where_->setText(QDir::toNativeSeparators(folders_.folder()));
    up_->setEnabled(!QDir(folders_.folder()).isRoot());
    if (folders_.rowCount() > 0)
        list_->selectionModel()->setCurrentIndex(folders_.index(0),
                                                 QItemSelectionModel::ClearAndSelect);
    updateOkButton();
}

// Return or a double click: a folder is opened, a world is taken.
void WorldForm::entryActivated(const QModelIndex& index) {
    if (!index.isValid())
        return;
    if (!folders_.isWorld(index.row())) {
        showFolder(folders_.path(index.row()));
        return;
    }
    if (use_ == Use::Save)
        name_->setText(index.data().toString());
    else
        name_->clear();
    accept();
}

void WorldForm::entryChosen(const QModelIndex& index) {
    if (use_ == Use::Save && index.isValid() && folders_.isWorld(index.row()) && list_->hasFocus())
        name_->setText(index.data().toString());
    updateOkButton();
}

void WorldForm::nameEdited(const QString& text) {
    if (use_ == Use::Save && text.contains(QLatin1Char('.'))) {
        name_->setText(withoutPeriod(text));
        name_->end(false);
        tell(QStringLiteral("Vessa - World Save"), noPeriodsMessage());
        return;
    }
    // When opening, what is typed finds the world of that name in the list.
    if (use_ == Use::Open) {
        const int row = folders_.rowNamed(text);
        if (row >= 0)
            list_->setCurrentIndex(folders_.index(row));
    }
    updateOkButton();
}

void WorldForm::goUp() {
    const QString left = folders_.folder();
    QDir up(left);
    if (!up.cdUp())
        return;
    showFolder(up.path());
    const int row = folders_.rowNamed(QFileInfo(left).fileName());
    if (row >= 0)
        list_->setCurrentIndex(folders_.index(row));
}

void WorldForm::updateOkButton() {
    if (use_ == Use::Save) {
        ok_->setEnabled(true);
        return;
    }
    const QModelIndex current = list_->currentIndex();
    ok_->setEnabled(!name_->text().isEmpty() ||
                    (current.isValid() && folders_.isWorld(current.row())) ||
                    isWorldFolder(folders_.folder()));
}

void WorldForm::accept() {
    if (use_ == Use::Open)
        openChosen();
    else
        saveChosen();
}

// The world named in the box, else the one chosen in the list, else the folder shown
// when it is a world itself. A plain folder named is browsed into.
void WorldForm::openChosen() {
    const QModelIndex current = list_->currentIndex();
    QString target;
    if (!name_->text().isEmpty())
        target = QDir(folders_.folder()).filePath(name_->text());
    else if (current.isValid() && folders_.isWorld(current.row()))
        target = folders_.path(current.row());
    else if (isWorldFolder(folders_.folder()))
        target = folders_.folder();
    if (target.isEmpty()) {
        tell(QStringLiteral("Vessa"), QStringLiteral("Please specify a world."));
        return;
    }
    if (isWorldFolder(target)) {
        take(target);
        return;
    }
    if (QFileInfo(target).isDir()) {
        name_->clear();
        showFolder(target);
        return;
    }
    tell(QStringLiteral("Vessa47 - World Load"), notAWorldMessage(target));
}

void WorldForm::saveChosen() {
    const QString name = name_->text().trimmed();
    const QString problem = worldNameProblem(name);
    if (!problem.isEmpty()) {
        tell(QStringLiteral("Vessa"), problem);
        name_->setFocus();
        return;
    }
    take(QDir(folders_.folder()).filePath(name));
}

void WorldForm::take(const QString& folder) {
    chosen_ = QDir::cleanPath(folder);
    QDialog::accept();
}

void WorldForm::tell(const QString& title, const QString& text) {
    QMessageBox::information(this, title, text);
}

// Backspace in the list goes up a folder, as in the platform's file windows. Return acts
// on the entry here alone: the list would also hand it on to the dialog's default button.
bool WorldForm::eventFilter(QObject* watched, QEvent* event) {
    if (watched == list_ && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            entryActivated(list_->currentIndex());
            return true;
        }
        if (key->key() == Qt::Key_Backspace ||
            (key->key() == Qt::Key_Up && key->modifiers() == Qt::AltModifier)) {
            goUp();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace vessa
