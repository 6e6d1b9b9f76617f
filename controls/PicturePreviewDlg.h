#pragma once

#include <QDialog>
#include <QPoint>
#include <boost/shared_ptr.hpp>

class CPictureBox;
class QPushButton;

namespace ZEVGis::Data
{
class CCatalog;
class CCatalogItem;
} // namespace ZEVGis::Data

// Shows the picture that a catalog's item factory renders for an item. The owner sets the
// picture reference, the item, the catalog and the screen point where the dialog's
// bottom-left corner goes, then runs exec(). Without a picture the user is told so and
// exec() returns Rejected without showing the dialog.
//
// The dialog is modal and keeps the keyboard focus while it is open.
class CPicturePreviewDlg : public QDialog
{
    Q_OBJECT
public:
    enum
    {
        IDD = 129,
        IDC_PICTURE = 100,
        IDCANCEL = 2,
        kNoPictureMsg = 7282
    };

    explicit CPicturePreviewDlg(QWidget* parent = nullptr);
    ~CPicturePreviewDlg() override;

    void SetPictureRef(const QString& reference) { m_pictureRef = reference; }
    void SetItem(boost::shared_ptr<ZEVGis::Data::CCatalogItem> item) { m_item = item; }
    void SetCatalog(boost::shared_ptr<ZEVGis::Data::CCatalog> catalog) { m_catalog = catalog; }
    // Screen point of the dialog's bottom-left corner.
    void SetPosition(int x, int y) { m_position = QPoint(x, y); }

    QString GetPictureRef() const { return m_pictureRef; }
    QPoint GetPosition() const { return m_position; }
    CPictureBox* pictureBox() const { return m_picture; }

    // Runs the start-up (placement, picture) and, when there is a picture, the dialog.
    int exec() override;

protected:
    // Places the dialog and asks the factory for the picture. False when there is none:
    // the user has been told and the dialog is to be cancelled.
    bool OnInitDialog();
    void showEvent(QShowEvent* event) override;

private:
    void placeBottomLeft();

    QString m_pictureRef;
    boost::shared_ptr<ZEVGis::Data::CCatalogItem> m_item;
    boost::shared_ptr<ZEVGis::Data::CCatalog> m_catalog;
    QPoint m_position;
    CPictureBox* m_picture = nullptr;
    QPushButton* m_close = nullptr;
};
