#include "controls/PicturePreviewDlg.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "catalog/ModuleConfiguration.h"
#include "controls/ControlId.h"
#include "controls/PictureBox.h"
#include "host/HostServices.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QShowEvent>
#include <QVBoxLayout>

using ZEVGis::Data::ICatalogItemFactory;

CPicturePreviewDlg::CPicturePreviewDlg(QWidget* parent) : QDialog(parent)
{
    setControlId(this, IDD);
    setModal(true);

    m_picture = new CPictureBox(this);
    setControlId(m_picture, IDC_PICTURE);
    m_picture->setMinimumSize(64, 64);

    // Qt's standard Close button: its text comes with Qt's translations ("Zatvori").
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    m_close = buttons->button(QDialogButtonBox::Close);
    setControlId(m_close, IDCANCEL);
    m_close->setDefault(true);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_picture, 1);
    layout->addWidget(buttons);

    resize(320, 300);
}

CPicturePreviewDlg::~CPicturePreviewDlg() = default;

int CPicturePreviewDlg::exec()
{
    if (!OnInitDialog())
    {
        setResult(Rejected);
        return Rejected;
    }
    return QDialog::exec();
}

// Bottom-left corner of the window (frame included) at the given point, size kept.
void CPicturePreviewDlg::placeBottomLeft()
{
    move(m_position.x(), m_position.y() - frameGeometry().height());
}

void CPicturePreviewDlg::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    // The frame is known only now.
    if (!event->spontaneous())
        placeBottomLeft();
}

bool CPicturePreviewDlg::OnInitDialog()
{
    // Lay the dialog out now so that the box has its real place before the picture is made.
    if (QLayout* l = layout())
        l->activate();
    placeBottomLeft();

    m_picture->SetDrawMode(CPictureBox::PictureDrawStretched);
    const QRect boxOnScreen(m_picture->mapToGlobal(QPoint(0, 0)), m_picture->size());

    QImage picture;
    int mode = CPictureBox::PictureDrawStretched;
    if (m_catalog && m_item)
    {
        if (boost::shared_ptr<ICatalogItemFactory> factory = m_catalog->GetFactory())
            picture = factory->CreatePictureBitmap(m_pictureRef, m_item.get(), boxOnScreen, &mode);
        setWindowTitle(m_item->GetName());
    }

    if (!picture.isNull())
    {
        m_picture->SetDrawMode(unsigned(mode));
        m_picture->SetBitmap(picture);
        return true;
    }
    m_picture->SetBitmap(QImage());
    ZEVGis::Host::HostServices::current().alert(
        ZEVGis::CModuleConfiguration::Instance()->GetMsg(kNoPictureMsg), parentWidget());
    return false;
}
