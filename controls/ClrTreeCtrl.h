#pragma once

#include <QColor>
#include <QIcon>
#include <QTreeWidget>
#include <QVector>
#include <functional>
#include <vector>

// Colours come as Windows colour numbers (0x00BBGGRR): the low byte is red.
using ColorRef = quint32;

// The Qt colour of a Windows colour number: 0x7CFC00 is red 0x00, green 0xFC, blue 0x7C.
QColor ColorFromColorRef(ColorRef color);

// A row of CClrTreeCtrl: its text, an index into the tree's image list, an untyped pointer to
// the object it shows (never owned) and its own text colour (0: the tree's default colour).
class CClrTreeItem : public QTreeWidgetItem
{
public:
    enum
    {
        RowType = QTreeWidgetItem::UserType + 20
    };

    CClrTreeItem(const QString& text, int image, const void* data);

    const void* itemData() const { return m_data; }
    void setItemData(const void* data) { m_data = data; }
    int image() const { return m_image; }
    void setImage(int image);
    ColorRef textColor() const { return m_color; }
    void setTextColor(ColorRef color);

    QVariant data(int column, int role) const override;
    void setData(int column, int role, const QVariant& value) override;

private:
    QString m_text;
    const void* m_data;
    int m_image;
    ColorRef m_color = 0;
};

// A tree whose rows carry their own text colour, an image of a shared image list and a
// pointer to what they show. Rows are appended last under their parent, as the dialogs that
// use it build them.
class CClrTreeCtrl : public QTreeWidget
{
    Q_OBJECT
public:
    // Three-way order of two rows' data: negative, 0 or positive.
    using Compare = std::function<int(const void*, const void*)>;

    explicit CClrTreeCtrl(QWidget* parent = nullptr);

    // The images rows refer to by index; rows already shown take the new icons.
    void SetImageList(const QVector<QIcon>& images);
    const QVector<QIcon>& ImageList() const { return m_images; }
    QIcon Image(int index) const;

    // A new row appended under `parent` (null: a top-level row).
    CClrTreeItem* InsertItem(const QString& text, int image, const void* data,
                             QTreeWidgetItem* parent);
    static CClrTreeItem* Row(QTreeWidgetItem* row);
    static const void* GetItemData(const QTreeWidgetItem* row);
    static void SetItemColor(QTreeWidgetItem* row, ColorRef color);
    static ColorRef GetItemColor(const QTreeWidgetItem* row);
    // The children of `row` in tree order (first child, then each next sibling).
    static std::vector<QTreeWidgetItem*> Children(const QTreeWidgetItem* row);

    // Orders the children of `parent` by `compare` (stable). A row of another tree is left
    // alone: the request is answered by this tree only for its own rows.
    void SortChildrenCB(QTreeWidgetItem* parent, const Compare& compare);
    // Removes every row.
    void DeleteAllItems() { clear(); }

private:
    QVector<QIcon> m_images;
};
