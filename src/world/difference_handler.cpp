#include "world/difference_handler.h"

#include "scene/scene_trees.h"

namespace vessa {

namespace {

QVariantList asList(const QVariant& value) {
    if (value.typeId() != QMetaType::QVariantList)
        throw RunTimeError(RunTimeError::TypeMismatch,
                           QStringLiteral("Type mismatch: expected a list, got %1")
                               .arg(QString::fromLatin1(value.typeName())));
    return value.toList();
}

// Item `index` of a record; a record too short for its tag is an error.
QVariant recordItem(const QVariantList& record, int index) {
    if (index < 0 || index >= record.size())
        throw RunTimeError(
            RunTimeError::SubscriptOutOfRange,
            QStringLiteral("Subscript out of range: a record has no item %1").arg(index));
    return record[index];
}

QString itemText(const QVariantList& record, int index) {
    return recordItem(record, index).toString();
}

bool hasTag(const QVariantList& record, const QString& tag) {
    return itemText(record, 0).toLower() == tag;
}

bool sameName(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

TreeNode* nodeByKey(const TreeControl& tree, const QString& key) {
    if (TreeNode* node = tree.NodeByKey(key))
        return node;
    throw RunTimeError(RunTimeError::ElementNotFound,
                       QStringLiteral("Element not found: no node has the key %1").arg(key),
                       QStringLiteral("TreeView"));
}

int imageOfKind(const QString& kind, int previous) {
    if (kind == QStringLiteral("scene"))
        return object_images::Scene;
    if (kind == QStringLiteral("camera"))
        return object_images::Camera;
    if (kind == QStringLiteral("light"))
        return object_images::Light;
    if (kind == QStringLiteral("model"))
        return object_images::Model;
    return previous;
}

// A node added beside the others at the top of a tree, with another's key,
// text and image.
TreeNode* addTopLevelCopy(TreeControl& tree, const QString& key, const QString& text, int image) {
    TreeNode* node = tree.AddRoot(key, text);
    tree.SetImage(node, image);
    return node;
}

} // namespace

// Local state of one call. The current node is read live while it is in its
// tree; a record may take it out, and then what was last seen of it stands.
struct DifferenceHandler::Batch {
    explicit Batch(DifferenceView* shownBy) : shownBy_(shownBy) {}

    // The window side, for the records that need one.
    DifferenceView& view() const {
        if (!shownBy_)
            throw RunTimeError(RunTimeError::ObjectRequired,
                               QStringLiteral("Object required: no window shows the world"));
        return *shownBy_;
    }

    DifferenceResult result;
    QVariantList records;
    int index = 0;
    int skip = 0;
    int image = 0;
    QString errorText; // of the error records since the last error dialog
    const TreeControl* currentTree = nullptr;
    int currentIndex = 0;
    QString currentKey;
    QString currentText;
    bool soundHandlerArmed = false;
    bool soundHandlerTaken = false;

    void setCurrent(const TreeNode* node) {
        currentTree = &node->Owner();
        currentIndex = node->Index();
        currentKey = node->Key();
        currentText = node->Text();
    }
    void refreshCurrent() {
        if (const TreeNode* live = currentTree ? currentTree->Node(currentIndex) : nullptr)
            setCurrent(live);
    }
    QVariantList recordAt(int at) const {
        if (at < 0 || at >= records.size())
            throw RunTimeError(RunTimeError::SubscriptOutOfRange,
                               QStringLiteral("Subscript out of range: no record %1").arg(at));
        return asList(records[at]);
    }

private:
    DifferenceView* shownBy_;
};

DifferenceResult DifferenceHandler::HandleDifferences(const QVariant& differences,
                                                      DifferenceView* view) {
    Batch batch(view);
    try {
        asRunTimeError([&] { batch.records = asList(differences); });
    } catch (const RunTimeError& e) {
        raiseWithReport(state_, ReportForm::C, QStringLiteral("VB: HandleDifferences -Error"), e);
    }
    for (batch.index = 0; batch.index < batch.records.size(); ++batch.index) {
        if (batch.skip != 0) {
            --batch.skip;
            continue;
        }
        QVariantList record;
        try {
            asRunTimeError([&] {
                record = batch.recordAt(batch.index);
                handleRecord(batch, itemText(record, 0).toLower(), record);
            });
        } catch (const RunTimeError& e) {
            if (!batch.soundHandlerArmed)
                raiseWithReport(state_, ReportForm::C,
                                QStringLiteral("VB: HandleDifferences -Error"), e);
            if (batch.soundHandlerTaken)
                throw;
            batch.soundHandlerTaken = true;
            asRunTimeError([&] { renameSoundInScene(batch, record); });
        }
    }
    return batch.result;
}

void DifferenceHandler::handleRecord(Batch& batch, const QString& tag, const QVariantList& record) {
    if (tag == QStringLiteral("undoemptychange")) {
        batch.result.undoAvailable = !recordItem(record, 2).toBool();
        batch.view().showUndoAvailable(*batch.result.undoAvailable);
    } else if (tag == QStringLiteral("output")) {
        batch.view().appendOutput(itemText(record, 1), QColor(0, 0, 0));
    } else if (tag == QStringLiteral("error")) {
        batch.errorText += itemText(record, 1);
        batch.view().appendOutput(itemText(record, 1), QColor(255, 0, 0));
    } else if (tag == QStringLiteral("popuperrordialog")) {
        popUpErrorDialog(batch, record);
    } else if (tag == QStringLiteral("objectconstruct")) {
        objectConstruct(batch, record);
    } else if (tag == QStringLiteral("soundnamechange")) {
        soundNameChange(batch, record);
    } else if (tag == QStringLiteral("sceneaddsound")) {
        sceneAddSound(batch);
    } else if (tag == QStringLiteral("sceneremovesound")) {
        sceneRemoveSound(batch, record);
    } else if (tag == QStringLiteral("objectnamechange")) {
        objectNameChange(batch, record);
    } else if (tag == QStringLiteral("objectfirstclassorpartchange")) {
        objectFirstClassOrPartChange(batch, record);
    } else if (tag == QStringLiteral("objectparentchange")) {
        objectParentChange(batch, record);
    } else if (tag == QStringLiteral("objectdestruct")) {
        objectDestruct(batch, record);
    } else if (tag == QStringLiteral("objectresurrect")) {
        objectResurrect(batch, record);
    } else if (tag == QStringLiteral("rightmousemenu")) {
        objectMenu_(itemText(record, 2));
    } else if (tag == QStringLiteral("activechanged")) {
        batch.result.worldActive = recordItem(record, 2).toBool();
        batch.view().showWorldActive(*batch.result.worldActive);
    } else if (tag == QStringLiteral("hidenavigator")) {
        // Accepted so that it does not count as unknown.
    } else {
        batch.view().PrintOutput(QStringLiteral("MainForm:HandleDifferences got an unknown tag: ") +
                                 itemText(record, 0));
    }
}

void DifferenceHandler::popUpErrorDialog(Batch& batch, const QVariantList& record) {
    const ErrorFormContent content =
        userErrorContent(recordItem(record, 1), recordItem(record, 2), state_.ErrorLineOffset);
    batch.result.scriptError = scriptErrorPlace(batch.errorText, recordItem(record, 2));
    batch.errorText.clear();
    const bool onTop = batch.view().cameraWindowOnTop();
    if (onTop)
        batch.view().setRenderFormAlwaysOnTop(false);
    batch.view().pumpEvents();
    runTool(engine_, reporter_, QStringLiteral("PlaySystemSound ('Error')"),
            QStringLiteral("MainForm:HandleDifferences: Error playing system error sound."));
    batch.view().showUserError(content);
    if (onTop)
        batch.view().setRenderFormAlwaysOnTop(true);
}

void DifferenceHandler::objectConstruct(Batch& batch, const QVariantList& record) {
    const QString id = itemText(record, 1);
    const QString kind = itemText(record, 2).toLower();
    if (kind == QStringLiteral("sound")) {
        TreeControl& junk = trees_.SoundTreeJunkyard;
        TreeNode* node = junk.Add(nodeByKey(junk, QStringLiteral("NonSceneSounds")),
                                  Relation::Child, soundKey(id), QStringLiteral("Placeholder"));
        junk.SetImage(node, object_images::Sound);
        batch.setCurrent(node);
        return;
    }
    // The engine's holder of destroyed objects is not shown, and nothing names it.
    if (kind == QStringLiteral("junkyard"))
        return;
    if (kind == QStringLiteral("none")) {
        NoParentKey = id;
        return;
    }
    batch.image = imageOfKind(kind, batch.image);
    // A new object comes as construct, parent, name, and is then made in one step.
    // The scene has no parent and comes as construct, name: a batch may end after it.
    const bool threeInARow =
        batch.index + 2 < batch.records.size() &&
        hasTag(batch.recordAt(batch.index + 1), QStringLiteral("objectparentchange")) &&
        hasTag(batch.recordAt(batch.index + 2), QStringLiteral("objectnamechange"));
    const QVariantList parent = threeInARow ? batch.recordAt(batch.index + 1) : QVariantList();
    const QVariantList name = threeInARow ? batch.recordAt(batch.index + 2) : QVariantList();
    TreeControl& tree = trees_.ObjectTree;
    TreeNode* node = nullptr;
    if (threeInARow && !sameName(itemText(parent, 3), NoParentKey)) {
        batch.skip = 2;
        node = tree.Add(nodeByKey(tree, objectKey(itemText(parent, 3))), Relation::Child,
                        objectKey(id), itemText(name, 3));
        tree.SetImage(node, batch.image);
        tree.SetTag(node, itemText(name, 3));
        SetNodeLabels(node, node->Tag());
    } else {
        node = addTopLevelCopy(tree, objectKey(id), QStringLiteral("Placeholder"), batch.image);
    }
    batch.setCurrent(node);
    if (kind == QStringLiteral("scene"))
        tree.SetExpanded(node, true);
    batch.result.objectTreeChanged = true;
}

void DifferenceHandler::soundNameChange(Batch& batch, const QVariantList& record) {
    batch.soundHandlerArmed = true;
    if (TreeNode* node = trees_.SoundTreeJunkyard.NodeByKey(soundKey(itemText(record, 1)))) {
        batch.setCurrent(node);
        trees_.SoundTreeJunkyard.SetText(node, itemText(record, 3));
        return;
    }
    // Not among the sounds out of the scene: the failed look-up takes the
    // handler's jump to the rename of a sound in the scene. A second such
    // look-up in one call climbs to the caller, as it always did.
    throw RunTimeError(
        RunTimeError::ElementNotFound,
        QStringLiteral("Element not found: s%1 is not out of the scene").arg(itemText(record, 1)),
        QStringLiteral("TreeView"));
}

void DifferenceHandler::renameSoundInScene(Batch& batch, const QVariantList& record) {
    TreeNode* node = nodeByKey(trees_.SoundTree, soundKey(itemText(record, 1)));
    batch.setCurrent(node);
    const QString newName = itemText(record, 3);
    followers_.follow(node->Text(), newName);
    trees_.SoundTree.SetText(node, newName);
}

void DifferenceHandler::sceneAddSound(Batch& batch) {
    batch.refreshCurrent();
    if (!batch.currentTree)
        throw RunTimeError(RunTimeError::ObjectRequired,
                           QStringLiteral("Object required: no sound to add to the scene"));
    addTopLevelCopy(trees_.SoundTree, batch.currentKey, batch.currentText, object_images::Sound);
    trees_.SoundTreeJunkyard.Remove(batch.currentIndex);
}

void DifferenceHandler::sceneRemoveSound(Batch& batch, const QVariantList& record) {
    TreeNode* node = nodeByKey(trees_.SoundTree, soundKey(itemText(record, 2)));
    batch.setCurrent(node);
    TreeNode* junk =
        addTopLevelCopy(trees_.SoundTreeJunkyard, node->Key(), node->Text(), object_images::Sound);
    trees_.SoundTreeJunkyard.SetTag(junk, node->Tag());
    trees_.SoundTree.Remove(node->Index());
}

void DifferenceHandler::objectNameChange(Batch& batch, const QVariantList& record) {
    TreeControl& tree = trees_.ObjectTree;
    TreeNode* node = nodeByKey(tree, objectKey(itemText(record, 1)));
    batch.setCurrent(node);
    const QString newName = itemText(record, 3);
    // A node's first name: nothing can refer to it yet.
    if (!node->Tag().trimmed().isEmpty())
        followers_.follow(node->Tag(), newName);
    tree.SetTag(node, newName);
    tree.SetText(node, newName);
    SetNodeLabels(node, newName);
    batch.result.objectTreeChanged = true;
}

void DifferenceHandler::objectFirstClassOrPartChange(Batch& batch, const QVariantList& record) {
    TreeControl& tree = trees_.ObjectTree;
    TreeNode* node = nodeByKey(tree, objectKey(itemText(record, 1)));
    batch.setCurrent(node);
    const int image = node->Image();
    const bool odd = image % 2 != 0;
    if (itemText(record, 3) == QStringLiteral("1")) {
        if (odd)
            tree.SetImage(node, image + 1);
    } else if (!odd) {
        tree.SetImage(node, image - 1);
    }
    batch.result.objectTreeChanged = true;
}

void DifferenceHandler::objectParentChange(Batch& batch, const QVariantList& record) {
    TreeControl& tree = trees_.ObjectTree;
    TreeNode* node = nodeByKey(tree, objectKey(itemText(record, 1)));
    batch.setCurrent(node);
    const QString parentId = itemText(record, 3);
    if (sameName(parentId, NoParentKey)) {
        // Out of the scene's tree: the node starts again at the top, its parts lost.
        const QString key = node->Key(), text = node->Text();
        const int image = node->Image();
        tree.Remove(node->Index());
        batch.setCurrent(addTopLevelCopy(tree, key, text, image));
    } else {
        tree.Move(node, nodeByKey(tree, objectKey(parentId)));
        tree.SetText(node, node->Tag());
        SetNodeLabels(node, node->Tag());
    }
    batch.result.objectTreeChanged = true;
}

void DifferenceHandler::objectDestruct(Batch& batch, const QVariantList& record) {
    TreeControl& tree = trees_.ObjectTree;
    TreeNode* node = nodeByKey(tree, objectKey(itemText(record, 1)));
    batch.setCurrent(node);
    if (sameName(node->Text(), trees_.SelectedObjectName))
        runTool(engine_, reporter_,
                QStringLiteral("_CurrentlySelectedObject = Vessa.GetDefaultScene()"),
                QStringLiteral("MainForm:HandleDifferences: Error getting default scene."));
    if (!node->Parent())
        throw RunTimeError(RunTimeError::ObjectRequired,
                           QStringLiteral("Object required: %1 has no parent").arg(node->Text()));
    TreeNode* junk = addTopLevelCopy(trees_.Junkyard, node->Key(), node->Text(), node->Image());
    // The parent's key rides along, so that a resurrected object finds its place.
    trees_.Junkyard.SetTag(junk, node->Parent()->Key() + QLatin1Char('\r') + node->Tag());
    tree.Remove(node->Index());
    batch.result.objectTreeChanged = true;
}

void DifferenceHandler::objectResurrect(Batch& batch, const QVariantList& record) {
    TreeNode* old = nodeByKey(trees_.Junkyard, objectKey(itemText(record, 1)));
    TreeControl& tree = trees_.ObjectTree;
    TreeNode* node = addTopLevelCopy(tree, old->Key(), old->Text(), old->Image());
    batch.setCurrent(node);
    const qsizetype cut = old->Tag().indexOf(QLatin1Char('\r'));
    if (cut < 0)
        throw RunTimeError::Argument(QStringLiteral("HandleDifferences"));
    tree.Move(node, nodeByKey(tree, old->Tag().left(cut)));
    tree.SetTag(node, old->Tag().mid(cut + 1));
    trees_.Junkyard.Remove(old->Index());
    batch.result.objectTreeChanged = true;
}

} // namespace vessa
