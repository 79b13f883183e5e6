#pragma once

#include "controls/tree_control.h"

#include <QAbstractItemModel>
#include <QIcon>
#include <QList>

#include <functional>

namespace vessa {

// Shows a TreeControl to Qt's item views. The control stays the owner of the data: this
// model forwards its announcements and turns its nodes into indexes, one column wide.
// Each item's accessible description tells its depth and its parent's text, since the
// platform's tree accessibility does not expose nesting by itself.
class TreeItemModel : public QAbstractItemModel, private TreeObserver {
    Q_OBJECT
public:
    using LabelEditHandler = std::function<void(TreeNode* node, const QString& text)>;

    explicit TreeItemModel(TreeControl& tree, QObject* parent = nullptr);
    ~TreeItemModel() override;

    TreeControl& Tree() const { return tree_; }
    // Icons by image number; image 0 and numbers beyond the list show none.
    void SetImageList(const QList<QIcon>& icons);
    // Receives the text of a finished in-place edit; without one the text is set as typed.
    void SetLabelEditHandler(LabelEditHandler handler) { labelEdited_ = std::move(handler); }
    // The caption of the one column. Its header is never shown, but assistive technology
    // reads it out; without a caption it would say the column's number.
    void setColumnCaption(std::function<QString()> caption) { caption_ = std::move(caption); }

    QModelIndex IndexOf(const TreeNode* node) const;
    static TreeNode* NodeOf(const QModelIndex& index);
    static QString AccessibleDescription(const TreeNode& node);

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    void NodeAboutToBeAdded(TreeNode* parent, int row) override;
    void NodeAdded(TreeNode* node) override;
    void NodeAboutToBeRemoved(TreeNode* node) override;
    void NodeRemoved() override;
    void NodeChanged(TreeNode* node) override;
    void AboutToClear() override;
    void Cleared() override;
    void DropHighlightChanged(TreeNode* previous, TreeNode* node) override;
    void Refresh(const TreeNode* node);

    TreeControl& tree_; // Not owned.
    QList<QIcon> icons_;
    LabelEditHandler labelEdited_;
    std::function<QString()> caption_;
};

} // namespace vessa
